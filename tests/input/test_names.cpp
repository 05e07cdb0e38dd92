// File names: normal form, extensions, the console, and the old result file.
#include "input_files.hpp"

#include "input/names.hpp"

namespace {

TEST(FNNORM, cuts_at_blanks) {
    const std::pair<const char *, const char *> rows[] = {
        {"  a.gdf", "a.gdf"}, {"a.gdf comment", "a.gdf"}, {"\ta.gdf\r", "a.gdf"}, {"   ", ""}, {"", ""}};
    for (const auto &[given, wanted] : rows) {
        std::string name = given;
        FNNORM(name);
        EXPECT_EQ(name, wanted);
    }
}

TEST(SETEXT, replaces_from_the_first_dot_of_the_own_name) {
    const std::pair<const char *, const char *> rows[] = {
        {"hull.gdf", "hull.pre"},
        {"  hull.gdf", "hull.pre"},
        {"hull.v2.gdf", "hull.pre"},
        {"hull", "hull.pre"},
        {"hull gdf", "hull.pre"},
        {"../run.v2/hull.gdf", "../run.v2/hull.pre"},
        {"./hull", "./hull.pre"},
        {"/a.b/.hidden.gdf", "/a.b/.hidden.pre"},
        {"a_name_with_more_than_twenty_letters.gdf", "a_name_with_more_than_twenty_letters.pre"}};
    for (const auto &[given, wanted] : rows) {
        NameTable names;
        names.resize(5);
        names(1) = given;
        SETEXT(names, 1, 4, 4);
        EXPECT_EQ(names(4), wanted);
        EXPECT_EQ(names(1), given);
    }
}

TEST(ConsoleNames, are_asked_for_when_missing) {
    const struct {
        const char *label;
        const char *names; // contents of fnames.vrd; null: no file
        const char *typed;
        bool asks_gdf, asks_pot;
    } rows[] = {
        {"both_there", "  box.gdf first\r\nbox.pot\r\n", "", false, false},
        {"no_newline", "box.gdf\nbox.pot", "", false, false},
        {"no_file", nullptr, " box.gdf\nbox.pot \n", true, true},
        {"empty_file", "", "box.gdf\nbox.pot\n", true, true},
        {"one_name", "box.gdf\n", "box.pot\n", false, true},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.label);
        InputFiles files = good_files();
        files.erase("fnames.vrd");
        if (row.names != nullptr)
            files["fnames.vrd"] = row.names;
        const SoundRun in(files, row.typed);
        const NameTable &names = in.run.files.FILNAM;
        EXPECT_EQ(names(1) + " " + names(2) + " " + names(3), "box.gdf box.pot box.p2f");
        const std::string gdf = " \n fnames.vrd          file cannot be opened or is incomplete; \n \n"
                                " Enter full name of geometric data file (GDF):          \n";
        const std::string pot = " \n Enter full name of potential control file (POT):       \n \n \n";
        EXPECT_EQ(in.folder.list_has(gdf), row.asks_gdf) << in.folder.list_text();
        EXPECT_EQ(in.folder.list_has(pot), row.asks_pot) << in.folder.list_text();
    }
}

TEST(Names, free_surface_file_is_line_5) {
    const SoundRun in(good_files({{"config.vrd", "IWADD=1\n"},
                                  {"box.pot", with_line(GOOD_POT, 7, " 0 1")},
                                  {"fnames.vrd", GOOD_NAMES + "x\ny\n ring.fdf z\n"},
                                  {"ring.fdf", "Ring of panels\n"}}));
    EXPECT_EQ(in.run.files.FILNAM(5), "ring.fdf");
    EXPECT_EQ(in.run.files.HEADER(5), "Ring of panels");
    const InputFiles files =
        good_files({{"config.vrd", "IWADD=1\n"}, {"box.pot", with_line(GOOD_POT, 7, " 0 1")}});
    const SoundRun asked(files, "typed.fdf\n");
    EXPECT_EQ(asked.run.files.FILNAM(5), "typed.fdf");
    EXPECT_TRUE(asked.folder.list_has(" \n Enter full name of free-surface panel file (FDF):      \n"));
    EXPECT_FALSE(asked.folder.list_has("Free Surface Data File"));
    // The console ends before a name.
    InputFiles none = good_files(), one = good_files({{"fnames.vrd", "box.gdf\n"}});
    none.erase("fnames.vrd");
    for (const auto &[given, what] : {std::pair{none, "GDF"}, {one, "POT"}, {files, "FDF"}}) {
        const InputRun silent(given);
        EXPECT_EQ(silent.status, Status::failed);
        EXPECT_EQ(first_fault(),
                  std::string("Error reading the name of the ") + what + " file from the console");
    }
}

TEST(Names, an_old_result_that_stays_ends_the_run) {
    RunFolder folder;
    for (const auto &[name, text] : good_files())
        folder.write(name, text);
    std::filesystem::create_directory("box.p2f"); // unlink refuses a folder, for root as well
    RunState run;
    EXPECT_EQ(run_input(run), Status::failed);
    EXPECT_EQ(first_fault(), "Error removing old P2F file ");
    EXPECT_TRUE(folder.list_has("(box.p2f: ")) << folder.list_text();
}

} // namespace
