// MOD files of extra modes: what is taken from them, where it goes, and what each fault says. Truth: the
// file's numbers.
#include "geometry/rdmod.hpp"
#include "hull_meshes.hpp"
#include "run_folder.hpp"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

constexpr int PANELS = 2;
constexpr int EXTRA = 2;
constexpr int ORDER = 6 + EXTRA;

// Value of extra mode m on panel k of the file, and element i, j of its matrix.
double mode_value(int m, int k) {
    return 10 * k + m + 0.5;
}
double element(int i, int j) {
    return 100 * i + j;
}

// Lines of a sound file: two titles, three integers, NEWMDS, ISYM, two panels, eight rows.
std::vector<std::string> good_lines() {
    std::vector<std::string> lines = {"first title", "second title", " 0 0 2 comment", " 2", " 3, 5"};
    for (int k = 1; k <= PANELS; ++k)
        lines.push_back(" " + std::to_string(mode_value(1, k)) + "\n " + std::to_string(mode_value(2, k)) +
                        " rest");
    for (int i = 1; i <= ORDER; ++i) {
        std::string row;
        for (int j = 1; j <= ORDER; ++j)
            row += " " + std::to_string(element(i, j));
        lines.push_back(row);
    }
    return lines;
}
std::string joined(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += line + "\n";
    return text;
}

// Bodies of two bottom panels each; extra[b] as NEWMDS of body b + 1. The files are a.mod, b.mod, ... (.pre
// in a first pass).
void set_bodies(const std::vector<int> &extra, RunState &run) {
    const int count = static_cast<int>(extra.size());
    std::vector<hulls::Quads> plates(extra.size());
    for (int b = 0; b < count; ++b)
        hulls::add_patch(plates[static_cast<std::size_t>(b)], {0, 0, -1.0 - b}, {2, 0, 0}, {0, 1, 0}, PANELS,
                         1);
    hulls::set_bodies(plates, run, extra);
    run.files.FILNAM.resize(4 + count);
    run.opt.IMDRUN = 1;
    for (int b = 1; b <= count; ++b) {
        const bool first_pass = run.bodies.NEWMDS(b) < 0;
        if (first_pass)
            run.opt.IMDRUN = -1;
        run.files.FILNAM(4 + b) =
            std::string(1, static_cast<char>('a' + b - 1)) + (first_pass ? ".pre" : ".mod");
    }
}

// Modes of the body that starts at mode row m and panel ip1.
void expect_modes(const RunState &run, int m, int ip1) {
    EXPECT_EQ(run.bodies.MODE(m + 6), 3);
    EXPECT_EQ(run.bodies.MODE(m + 7), 5);
    for (int ip = 1; ip <= run.mesh.NEQN; ++ip) {
        const int k = ip - ip1 + 1;
        for (int e = 1; e <= EXTRA; ++e)
            EXPECT_EQ(run.mesh.VEL(m + 5 + e, ip), k < 1 || k > PANELS ? 0 : mode_value(e, k)) << ip;
    }
    for (int i = 1; i <= ORDER; ++i)
        for (int j = 1; j <= ORDER; ++j) {
            if (i > 6 || j > 6) {
                EXPECT_EQ(run.bodies.CHYD(m + i - 1, m + j - 1), element(i, j)) << i << " " << j;
            }
        }
}

TEST(Rdmod, LaterBodyHasItsOwnBlock) {
    // Bodies 2 and 3 have extra modes: rows 7 to 14 and 15 to 22.
    const RunFolder folder;
    folder.write("b.mod", joined(good_lines()));
    folder.write("c.mod", joined(good_lines()));
    RunState run;
    set_bodies({0, EXTRA, EXTRA}, run);
    ASSERT_EQ(hulls::pre_pass(run), Status::ok) << folder.list_text();
    expect_modes(run, 7, 3);
    expect_modes(run, 15, 5);
    const auto body_of = [](int m) { return m < 7 ? 1 : m < 15 ? 2 : 3; };
    for (int i = 1; i <= 22; ++i)
        for (int j = 1; j <= 22; ++j) {
            if (body_of(i) != body_of(j)) {
                EXPECT_EQ(run.bodies.CHYD(i, j), 0) << i << " " << j;
            }
        }
    // The rigid blocks are those of the hulls, not of the file.
    RunState rigid;
    set_bodies({0, 0, 0}, rigid);
    ASSERT_EQ(hulls::pre_pass(rigid), Status::ok);
    for (int i = 1; i <= 6; ++i)
        for (int j = 1; j <= 6; ++j) {
            EXPECT_EQ(run.bodies.CHYD(6 + i, 6 + j), rigid.bodies.CHYD(6 + i, 6 + j)) << i << " " << j;
            EXPECT_EQ(run.bodies.CHYD(14 + i, 14 + j), rigid.bodies.CHYD(12 + i, 12 + j)) << i << " " << j;
        }
    EXPECT_EQ(run.bodies.MODE(9), 3) << "heave of body 2";
    EXPECT_EQ(run.bodies.MODE(17), 3) << "heave of body 3";
    EXPECT_EQ(run.mesh.VEL(17, 5), 1);
}

// Panels 1 and 2 of body 2 are 3 and 4 of the run.
TEST(Rdmod, FaultsHaveTheirMessage) {
    // clang-format off
    const struct {
        const char *label;
        std::size_t line;        // line that is replaced, from 0
        const char *replacement; // null: the file ends before it
        const char *message;
    } rows[] = {
        {"no_titles", 1, nullptr, "Error reading MOD file, header lines of body N=2"},
        {"no_integers", 2, nullptr, "Error reading MOD file, ISX,ISY,NEQN line"},
        {"bad_integers", 2, " 0 0 two", "Error reading MOD file, ISX,ISY,NEQN line"},
        {"no_newmds", 3, nullptr, "Error reading MOD file, NEWMDS line "},
        {"other_newmds", 3, " 3", "Error reading MOD file, NEWMDS line "},
        {"no_isym", 4, nullptr, "Error reading MOD file, ISYM line "},
        {"isym_is_no_rigid_mode", 4, " 3 7", "Error reading MOD file, ISYM line "},
        {"no_panels", 5, nullptr, "Error reading MOD file, modes VEL of panel N=3"},
        {"fewer_panels", 6, nullptr, "Error reading MOD file, modes VEL of panel N=4"},
        {"bad_panel", 6, " 1. nan", "Error reading MOD file, modes VEL of panel N=4"},
        {"other_isx", 2, " 1 0 2", "Inconsistent integers in MOD and GDF files "},
        {"other_isy", 2, " 0 -1 2", "Inconsistent integers in MOD and GDF files "},
        {"other_count", 2, " 0 0 3", "Inconsistent integers in MOD and GDF files "},
        {"no_matrix", 7, nullptr, "Error reading MOD file, matrix C, line =1"},
        {"short_matrix", 13, nullptr, "Error reading MOD file, matrix C, line =7"},
        {"bad_last_row", 14, " 1 2 3 4 5 6 7 x", "Error reading MOD file, matrix C, line =8"},
    };
    // clang-format on
    for (const auto &row : rows) {
        SCOPED_TRACE(row.label);
        std::vector<std::string> lines = good_lines();
        if (row.replacement == nullptr)
            lines.resize(row.line);
        else
            lines.at(row.line) = row.replacement;
        const RunFolder folder;
        folder.write("b.mod", joined(lines));
        RunState run;
        set_bodies({0, EXTRA}, run);
        EXPECT_EQ(hulls::pre_pass(run), Status::failed);
        EXPECT_TRUE(folder.told(row.message)) << folder.list_text();
        EXPECT_EQ(first_fault(), row.message);
    }
}

} // namespace
