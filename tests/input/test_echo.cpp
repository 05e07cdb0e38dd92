// The echo of the input, block sizes and the two passes of an extra-mode analysis. Truth: the lines as the
// format tells them, and block sizes counted by hand.
#include "input_files.hpp"

#include "input/echo.hpp"

namespace {

std::string joined(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += line + "\n";
    return text;
}
std::string title(const std::string &text) {
    return " " + text + std::string(72 - text.size(), ' ') + "\n \n";
}

TEST(Echo, of_two_bodies_and_long_names) {
    const std::string name = "a_body_file_with_a_long_name.gdf";
    InputFiles files = good_bodies();
    files[name] = files["a.gdf"];
    files["box.gdf"] = with_line(GOOD_GLOBAL, 4, "  " + name + " comment");
    files["b.gdf"] = with_line(GOOD_GDF, 1, std::string(80, 'x'));
    const SoundRun in(files);
    const std::string wanted =
        " NBODY data from Global GDF    :         box.gdf             \n" + title("Two bodies") +
        " Input from Geometric Data Files:         \n" + "                               N=  1     " + name +
        "\n" + title("Side and bottom") + "                               N=  2     b.gdf               \n" +
        title(std::string(72, 'x')) + " Input from Potential Control File:      box.pot             \n" +
        title("Control of a test") + " \n";
    EXPECT_EQ(joined(in.run.HDRSCR), wanted);
    EXPECT_TRUE(in.folder.list_has(wanted));
}

TEST(BlockSizes, cover_the_matrix) {
    // clang-format off
    const struct {
        int ISOLVE, NEQN, NBLKSZ, NBLKLS, blocks;
        const char *warning;
    } rows[] = {
        {3, 2500, 834, 832, 3, nullptr},
        {7, 20, 3, 2, 7, nullptr},
        {6, 20, 4, 4, 5, "WARNING: Number of blocks is reset to 5"},
        {2000, 1500, 1, 0, 0, "WARNING: Block size = 1 ; ISOLVE is reset to ="},
        {2, 1, 1, 0, 0, "WARNING: Block size = 1 ; ISOLVE is reset to ="},
        {1, 9, 9, 0, 1, "WARNING: Block size = NEQN ; ISOLVE is reset to =1"},
        {2147483647, 9, 1, 0, 0, "WARNING: Block size = 1 ; ISOLVE is reset to ="},
    };
    // clang-format on
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.ISOLVE << " blocks for " << row.NEQN);
        const RunFolder folder;
        int NBLKSZ = 0, NBLKLS = 0, ISOLVE = row.ISOLVE;
        BLKSIZ(row.NEQN, NBLKSZ, NBLKLS, ISOLVE);
        EXPECT_EQ((std::vector{NBLKSZ, NBLKLS, ISOLVE}), (std::vector{row.NBLKSZ, row.NBLKLS, row.blocks}));
        EXPECT_EQ(folder.list_has("WARNING"), row.warning != nullptr) << folder.list_text();
        EXPECT_TRUE(row.warning == nullptr || folder.told(row.warning)) << folder.list_text();
    }
}

TEST(Solver, falls_back_to_blocks_when_the_matrix_is_too_large) {
    InputRun in(good_files());
    RunState &run = in.run;
    for (const bool drift : {false, true}) {
        run.mesh.NEQN = 2500;
        run.opt.MAXSCR = 1000;
        run.opt.ISOLVE = 1;
        run.opt.NBLKSZ = 0;
        run.opt.IWADD = drift ? 1 : 0;
        choose_solver(run.opt, run.mesh.NEQN);
        EXPECT_EQ(run.opt.ISOLVE, drift ? 1 : 3);
        EXPECT_EQ(run.opt.NBLKSZ, drift ? 0 : 834);
    }
    EXPECT_TRUE(in.folder.told("Switched from direct solver to block-iterative solver"));
    EXPECT_TRUE(in.folder.told("Because matrix is too large"));
}

TEST(ExtraModes, second_pass_names_the_mod_file) {
    const SoundRun in(good_files({{"config.vrd", "NEWMDS=2\n"}, {"box.mod", "first title\nsecond title\n"}}));
    EXPECT_EQ(in.run.opt.IMDRUN, 1);
    EXPECT_EQ(in.run.bodies.NEWMDS(1), 2);
    EXPECT_EQ(in.run.files.FILNAM(5), "box.mod");
    EXPECT_FALSE(in.folder.exists("box.pre.part"));
    const std::string titles = title("first title"); // without its empty line
    EXPECT_NE(joined(in.run.HDRSCR)
                  .find(" Input from Extra Mode MOD File:         box.mod             \n" +
                        titles.substr(0, titles.size() - 2) + title("second title")),
              std::string::npos)
        << joined(in.run.HDRSCR);
}

TEST(ExtraModes, faults) {
    struct Row {
        const char *names;
        const char *mod;
        const char *message;
    };
    const Row rows[] = {
        {"box.gdf\nbox.pot\n", "one title\n", "Error reading MOD file, header lines of body N=1"},
        {"box.mod\nbox.pot\n", nullptr, "The PRE or MOD file would replace the GDF file of body N=1"},
        {"box.pre\nbox.pot\n", nullptr, "The PRE or MOD file would replace the GDF file of body N=1"}};
    for (const Row &row : rows) {
        InputFiles files = good_files();
        files["config.vrd"] = "NEWMDS=1\n";
        files["fnames.vrd"] = row.names;
        files[std::string(row.names).substr(0, 7)] = GOOD_GDF;
        if (row.mod != nullptr)
            files["box.mod"] = row.mod;
        const InputRun in(files);
        EXPECT_EQ(in.status, Status::failed);
        EXPECT_EQ(first_fault(), row.message);
        EXPECT_EQ(in.folder.read(std::string(row.names).substr(0, 7)), GOOD_GDF);
    }
}

} // namespace
