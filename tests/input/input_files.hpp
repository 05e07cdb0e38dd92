// Input files of a small sound run, and ways to spoil them.
#pragma once

#include "input/input.hpp"
#include "run_folder.hpp"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

// What a single-body run reads: title, 2 panels of a box side and a bottom panel.
inline const std::string GOOD_POT = "Control of a test\n"                // 1
                                    " 0\n"                               // 2 I2ND
                                    " 1\n"                               // 3 ISOR
                                    " 0\n"                               // 4 IRR
                                    " 50. 0 0 0 0\n"                     // 5 HBOT, XBODY
                                    " 0 1 0\n"                           // 6 IQUAD, ILOG, IDIAG
                                    " 0 0\n"                             // 7 IRAD, IDIFF
                                    " 1 0 1 0 0 0\n"                     // 8 MODE
                                    " 2\n"                               // 9 NPER
                                    " 8. 10.\n"                          // 10 PER
                                    " 2\n"                               // 11 NBETA
                                    " 0. 30.\n";                         // 12 BETA
inline const std::string GOOD_GDF = "Side and bottom\n"                  // 1
                                    " 2.0 9.80665\n"                     // 2
                                    " 0 0\n"                             // 3
                                    " 2\n"                               // 4
                                    " 4 2 0  4 0 0\n"                    // 5
                                    " 4 0 -2  4 2 -2\n"                  // 6
                                    " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\n"; // 7
inline const std::string GOOD_NAMES = "box.gdf\nbox.pot\n";
inline const std::string GOOD_GLOBAL = "Two bodies\n"    // 1
                                       " -1. 9.8\n"      // 2
                                       " 2\n"            // 3
                                       "a.gdf\n"         // 4
                                       " 0 10 0 0\n"     // 5
                                       " 0 0\n"          // 6
                                       " 1 0 0 0 0 0\n"  // 7
                                       "b.gdf\n"         // 8
                                       " 0 -10 0 0\n"    // 9
                                       " 0 0\n"          // 10
                                       " 0 1 0 0 0 0\n"; // 11

// The text with line n (from 1) replaced; a replacement may hold several lines, or none when it is empty.
inline std::string with_line(const std::string &text, int n, const std::string &replacement) {
    std::istringstream in(text);
    std::string out;
    std::string line;
    for (int k = 1; std::getline(in, line); ++k) {
        if (k != n)
            out += line + "\n";
        else if (!replacement.empty())
            out += replacement + "\n";
    }
    return out;
}
// Its first n lines.
inline std::string first_lines(const std::string &text, int n) {
    std::istringstream in(text);
    std::string out;
    std::string line;
    for (int k = 1; k <= n && std::getline(in, line); ++k)
        out += line + "\n";
    return out;
}

// Contents by file name; `changes` are put over the sound ones.
using InputFiles = std::map<std::string, std::string>;
inline InputFiles good_files(InputFiles changes = {}) {
    changes.merge(InputFiles{{"fnames.vrd", GOOD_NAMES}, {"box.gdf", GOOD_GDF}, {"box.pot", GOOD_POT}});
    return changes;
}
inline InputFiles good_bodies(InputFiles changes = {}) {
    changes.merge(InputFiles{{"box.gdf", GOOD_GLOBAL}, {"a.gdf", GOOD_GDF}, {"b.gdf", GOOD_GDF}});
    return good_files(changes);
}

// The input stage as the driver runs it.
inline Status run_input(RunState &run) {
    if (failed(GETIP1(run)) || (run.opt.IRR == 3 && failed(generate_free_surface(run))))
        return Status::failed;
    choose_solver(run.opt, run.mesh.NEQN);
    if (failed(INECHO(run)))
        return Status::failed;
    Options &opt = run.opt;
    opt.NCORE = std::min(std::max(opt.MAXSCR, 2), opt.ISOLVE >= 2 ? opt.NBLKSZ : run.mesh.NEQN);
    return INCHK(run);
}

// A run in a folder with the files.
struct InputRun {
    RunFolder folder;
    RunState run;
    Status status = Status::ok;
    explicit InputRun(const InputFiles &files, const std::string &console = {}) {
        for (const auto &[name, text] : files)
            folder.write(name, text);
        folder.answer(console);
        status = run_input(run);
    }
};

// One that must succeed.
struct SoundRun : InputRun {
    explicit SoundRun(const InputFiles &files, const std::string &console = {}) : InputRun(files, console) {
        EXPECT_EQ(status, Status::ok) << folder.list_text();
    }
};
