// A folder with a PRE file of a box, written panel by panel, and files of modes.
#pragma once

#include "modes/make_modes.hpp"
#include "modes/mode_types.hpp"
#include "temporary_folder.hpp"

#include <cstdio>

// The sides, ends and bottom of a box of 4 x 2 x 1 below z = 0 with its centre at x = y = 0, in panels of
// 1/n.
inline std::string box_pre(int n = 4) {
    std::string lines;
    int count = 0;
    const auto add = [&](double x, double y, double z, int axis, double sign) {
        const double N[3] = {axis == 0 ? sign : 0, axis == 1 ? sign : 0, axis == 2 ? sign : 0};
        char line[200];
        std::snprintf(line, sizeof line, "%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E   0\n",
                      x, y, z, 1.0 / (n * n), N[0], N[1], N[2], y * N[2] - z * N[1], z * N[0] - x * N[2],
                      x * N[1] - y * N[0]);
        lines += line;
        ++count;
    };
    const auto place = [n](int k, double low) { return low + (k + 0.5) / n; };
    for (int k = 0; k < n; ++k)
        for (int i = 0; i < 4 * n; ++i) {
            add(place(i, -2), -1, place(k, -1), 1, 1);
            add(place(i, -2), 1, place(k, -1), 1, -1);
        }
    for (int k = 0; k < n; ++k)
        for (int j = 0; j < 2 * n; ++j) {
            add(-2, place(j, -1), place(k, -1), 0, 1);
            add(2, place(j, -1), place(k, -1), 0, -1);
        }
    for (int j = 0; j < 2 * n; ++j)
        for (int i = 0; i < 4 * n; ++i)
            add(place(i, -2), place(j, -1), -1, 2, 1);
    return " SHAPEX Input,  Filename: box.pre\n       0       0     " + std::to_string(count) + "       7\n" +
           lines;
}

class ModeFolder : public TemporaryFolder {
  public:
    ModeFolder() { write("box.pre", box_pre()); }
    std::string name(const std::string &file) const { return (path() / file).string(); }
    bool make(const std::string &modes, std::string &error, bool with_case = false) const {
        write("modes.toml", modes);
        std::vector<ModeSummary> told;
        return make_modes(
            {name("box.pre"), name("modes.toml"), name("box.mod"), with_case ? name("case.toml") : ""}, told,
            error);
    }
    // Modes and panels of the text.
    BodyModes modes_of(const std::string &text, ModeFile &file, PreFile &pre) const {
        BodyModes modes;
        std::string error;
        write("modes.toml", text);
        EXPECT_TRUE(read_mode_file(name("modes.toml"), file, error)) << error;
        EXPECT_TRUE(read_pre(name("box.pre"), file, pre, error)) << error;
        for (int m = 1; m <= 6; ++m) {
            modes.shapes.push_back(rigid_shape(m));
            modes.ISYM.push_back(m);
        }
        for (const ModeEntry &entry : file.modes) {
            modes.shapes.emplace_back();
            modes.ISYM.push_back(3);
            EXPECT_TRUE(mode_type(entry.type).make(file, entry, modes.shapes.back(), error)) << error;
        }
        return modes;
    }
};
