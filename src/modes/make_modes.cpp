#include "modes/make_modes.hpp"

#include "exchange/part_file.hpp"
#include "modes/mode_types.hpp"
#include "post/vector3.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr std::size_t RIGID = 6;
constexpr double LARGEST = 1e18; // normal velocity of which the solver can form the square

std::string number_text(const char *form, double value) {
    char text[40];
    std::snprintf(text, sizeof text, form, value == 0 ? 0.0 : value); // no -0
    return text;
}

// Shapes and symmetries of all modes of the body.
bool form_modes(const ModeFile &file, const PreFile &pre, BodyModes &modes, std::string &error) {
    for (int m = 1; m <= static_cast<int>(RIGID); ++m) {
        modes.shapes.push_back(rigid_shape(m));
        modes.ISYM.push_back(m);
    }
    for (const ModeEntry &entry : file.modes) {
        ModeShape shape;
        std::string why;
        if (!mode_type(entry.type).make(file, entry, shape, why)) {
            error = file.at(entry.line, why);
            return false;
        }
        char plane = 0;
        const int like = entry.like != 0 ? entry.like : symmetry_of(shape, pre, plane);
        if (like == 0) {
            error = file.at(entry.line,
                            std::string("the mode is neither even nor odd about ") + plane +
                                " = 0, and the run has panels of one side alone: panel the whole body, "
                                "or tell the symmetry of its image by like");
            return false;
        }
        modes.shapes.push_back(std::move(shape));
        modes.ISYM.push_back(like);
    }
    return true;
}

// Mass and stiffness of structure and weight; rows of modes with values of their own have these alone.
struct Structure {
    Rows M, K;
};
Structure structure_of(const ModeFile &file, const BodyModes &modes) {
    Structure s{mass_of_modes(modes, file.parts), beam_stiffness(modes, file.beams)};
    for (std::size_t k = 0; k < file.modes.size(); ++k) {
        const ModeEntry &entry = file.modes[k];
        const std::size_t m = RIGID + k;
        const auto own = [m](Rows &rows, double value) {
            for (std::size_t j = 0; j < rows.size(); ++j)
                rows[m][j] = rows[j][m] = 0;
            rows[m][m] = value;
        };
        if (entry.mass)
            own(s.M, *entry.mass);
        if (entry.stiffness)
            own(s.K, *entry.stiffness);
        const double turn = entry.fore - entry.aft;
        if (!entry.stiffness && entry.type == "hinge")
            s.K[m][m] += entry.spring * turn * turn;
    }
    return s;
}

std::string mod_text(const ModeFile &file, const PreFile &pre, const BodyModes &modes, const Rows &C) {
    const std::size_t n = modes.shapes.size();
    std::string text = "Extra modes by vorda-modes\n" + file.title.substr(0, 72) + "\n" +
                       std::to_string(pre.ISX) + " " + std::to_string(pre.ISY) + " " +
                       std::to_string(pre.panels.size()) + "\n" + std::to_string(n - RIGID) + "\n";
    for (std::size_t m = RIGID; m < n; ++m)
        text += std::to_string(modes.ISYM[m]) + (m + 1 < n ? " " : "\n");
    for (const PrePanel &panel : pre.panels)
        for (std::size_t m = RIGID; m < n; ++m)
            text += number_text("%.7e", dot(panel.normal, modes.shapes[m].at(panel.at).u)) +
                    (m + 1 < n ? " " : "\n");
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j) {
            // Lengths in units of the geometry file: of the area, and of an arm for each rigid turn.
            const int arms = (i >= 3 && i < RIGID ? 1 : 0) + (j >= 3 && j < RIGID ? 1 : 0);
            const bool extra = i >= RIGID || j >= RIGID;
            text += number_text("%.7e", extra ? C[i][j] / std::pow(file.unit_length, 2 + arms) : 0) +
                    (j + 1 < n ? " " : "\n");
        }
    return text;
}

std::string matrix_text(const char *name, const Rows &rows) {
    std::string text = std::string(name) + " = [\n";
    for (const std::vector<double> &row : rows) {
        text += "  [";
        for (std::size_t j = 0; j < row.size(); ++j)
            text += (j > 0 ? ", " : "") + number_text("%.9e", row[j]);
        text += "],\n";
    }
    return text + "]\n";
}

// The body for `vorda-p2f motions --case`: its rigid mass, and all modes' mass and outer stiffness.
std::string case_text(const ModeFile &file, const BodyModes &modes, const Structure &s) {
    const PartsTogether whole = together(file.parts);
    Rows stiffness = weight_stiffness(modes, file.parts, file.gravity);
    for (std::size_t i = 0; i < stiffness.size(); ++i)
        for (std::size_t j = 0; j < stiffness.size(); ++j)
            stiffness[i][j] += s.K[i][j];
    std::string text = "# Masses and stiffness of all modes, by vorda-modes from " + file.name +
                       ". Stiffness: structure, and weight of the extra modes.\n[[body]]\nnumber = " +
                       std::to_string(file.number) + "\nmass = " + number_text("%.9e", whole.mass) +
                       "\ncentre = [";
    for (std::size_t c = 0; c < 3; ++c)
        text += number_text("%.9g", whole.centre[c]) + (c < 2 ? ", " : "]\n");
    return text + matrix_text("mass_matrix", s.M) + matrix_text("stiffness", stiffness);
}

std::string described(const ModeEntry &entry) {
    if (entry.type == "free-free" || entry.type == "cantilever")
        return entry.type + ", " + entry.direction + ", number " + std::to_string(entry.number);
    return entry.type == "points" ? "points of " + entry.file + ", " + std::to_string(entry.number)
                                  : entry.type;
}

// What a user of --case has to give.
bool fit_for_motions(const ModeFile &file, std::string &error) {
    if (file.parts.empty()) {
        error = file.name + ": --case needs the mass of the body as tables [[part]]";
        return false;
    }
    for (const ModeEntry &entry : file.modes)
        if (entry.type == "points" && !entry.stiffness) {
            error = file.at(entry.line,
                            "--case needs the stiffness of a mode that is given at points: generalised "
                            "mass times the square of its dry frequency");
            return false;
        }
    return true;
}

} // namespace

bool make_modes(const ModesRequest &request, std::vector<ModeSummary> &told, std::string &error) {
    ModeFile file;
    PreFile pre;
    BodyModes modes;
    const bool motions = !request.case_file.empty();
    if (!read_mode_file(request.modes, file, error) || (motions && !fit_for_motions(file, error)) ||
        !read_pre(request.pre, file, pre, error) || !form_modes(file, pre, modes, error))
        return false;
    const Structure s = structure_of(file, modes);
    for (std::size_t k = 0; k < file.modes.size(); ++k) {
        const std::size_t m = RIGID + k;
        ModeSummary summary{described(file.modes[k]), modes.ISYM[m], 0, s.M[m][m], s.K[m][m]};
        for (const PrePanel &panel : pre.panels)
            summary.largest =
                std::max(summary.largest, std::fabs(dot(panel.normal, modes.shapes[m].at(panel.at).u)));
        if (!(summary.largest > 0 && summary.largest < LARGEST)) {
            error = file.at(file.modes[k].line, summary.largest == 0
                                                    ? "the mode moves no panel of the body"
                                                    : "the displacement is too large somewhere on the body");
            return false;
        }
        told.push_back(summary);
    }
    return write_whole(request.mod, mod_text(file, pre, modes, pressure_stiffness(modes, pre)), error) &&
           (!motions || write_whole(request.case_file, case_text(file, modes, s), error));
}
