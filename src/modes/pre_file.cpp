#include "modes/pre_file.hpp"

#include "base/text.hpp"
#include "post/vector3.hpp"

#include <cmath>
#include <numbers>

namespace {

// Six digits of the file in each of the factors of r x N.
constexpr double ROUNDING = 1e-4;

// A place of the file, global and in units of the geometry file, in the axes of the body.
Vec3 in_body_axes(const ModeFile &file, const Vec3 &global) {
    const double angle = file.heading * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    const Vec3 r = plus(times(file.unit_length, global), times(-1.0, file.place));
    return {c * r[0] + s * r[1], -s * r[0] + c * r[1], r[2]};
}

// The rigid rotations of the file are r x N about the origin of the body.
bool stands_there(const PrePanel &panel, double unit_length) {
    const Vec3 r = times(1 / unit_length, panel.at), turn = cross(r, panel.normal);
    const double size = 1 + std::sqrt(dot(r, r));
    for (std::size_t c = 0; c < 3; ++c)
        if (std::fabs(turn[c] - panel.rigid[3 + c]) > ROUNDING * size)
            return false;
    return true;
}

} // namespace

bool read_pre(const std::string &name, const ModeFile &file, PreFile &pre, std::string &error) {
    FreeReader in;
    std::string title;
    int count = 0, modes = 0;
    if (!in.open(name) || !in.line(title, 72) || !in.read(pre.ISX, pre.ISY, count, modes) || count < 1 ||
        title.find("Filename:") == std::string::npos) {
        error = name + " is not there or no PRE file: the first pass of a run with NEWMDS leaves it";
        return false;
    }
    for (int k = 1; k <= count; ++k) {
        f32 v[10];
        int dipole = 0;
        if (!in.read(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], dipole)) {
            error = name + " is not whole, panel " + std::to_string(k) + ": " + in.fault();
            return false;
        }
        PrePanel panel;
        const Vec3 global = {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
        panel.at = in_body_axes(file, global);
        panel.z = global[2] * file.unit_length;
        panel.area = static_cast<double>(v[3]) * file.unit_length * file.unit_length;
        for (std::size_t m = 0; m < 6; ++m)
            panel.rigid[m] = static_cast<double>(v[4 + m]);
        panel.normal = {panel.rigid[0], panel.rigid[1], panel.rigid[2]};
        panel.plate = dipole != 0;
        if (!stands_there(panel, file.unit_length)) {
            error = "panel " + std::to_string(k) + " of " + name +
                    " does not lie where place and heading of " + file.name +
                    " put the body: give those of XBODY";
            return false;
        }
        pre.panels.push_back(panel);
    }
    return true;
}
