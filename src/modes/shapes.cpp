#include "modes/beam.hpp"
#include "modes/mode_types.hpp"
#include "modes/point_shape.hpp"
#include "post/vector3.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

// The turn `angle` about the axis through `at`: u = angle axis x (r - at).
Displacement turned(const Vec3 &axis, double angle, const Vec3 &r, const Vec3 &at) {
    Displacement d;
    const Vec3 e = times(angle, axis);
    d.u = cross(e, plus(r, times(-1.0, at)));
    d.slope = {{{0, -e[2], e[1]}, {e[2], 0, -e[0]}, {-e[1], e[0], 0}}};
    return d;
}
Vec3 unit(std::size_t axis) {
    Vec3 e{};
    e[axis] = 1;
    return e;
}

// Sections stay plane and stand upright on the bent axis: u = (-(z - z0) w', 0, w), or (-(y - y0) v', v, 0).
Displacement bent(const BeamValue &w, double arm, std::size_t across) {
    Displacement d;
    d.u[0] = -arm * w.slope;
    d.u[across] = w.w;
    d.slope[0][0] = -arm * w.curvature;
    d.slope[0][across] = -w.slope;
    d.slope[across][0] = w.slope;
    return d;
}
// They turn by t about the axis, arms y and z from it.
Displacement twisted(const BeamValue &t, double y, double z) {
    Displacement d;
    d.u = {0, -z * t.w, y * t.w};
    d.slope = {{{0, 0, 0}, {-z * t.slope, 0, -t.w}, {y * t.slope, t.w, 0}}};
    return d;
}

bool make_beam(const ModeFile &, const ModeEntry &entry, ModeShape &shape, std::string &error) {
    if (!(entry.to > entry.from)) {
        error = "to has to lie before from, at a larger x";
        return false;
    }
    if (entry.number < 1 || entry.number > 100) {
        error = "number of a beam's mode is from 1 to 100";
        return false;
    }
    const BeamEnds ends = entry.type == "cantilever" ? BeamEnds::clamped_free : BeamEnds::free_free;
    const bool torsion = entry.direction == "torsion", upwards = entry.direction == "vertical";
    const double beta =
        torsion ? torsion_parameter(ends, entry.number) : bending_parameter(ends, entry.number);
    const double from = entry.from, L = entry.to - entry.from, y = entry.y, z = entry.z;
    const auto value = [=](double x) {
        const double s = (x - from) / L;
        BeamValue v = torsion ? torsion_mode(ends, beta, s) : bending_mode(ends, beta, s);
        v.slope /= L;
        v.curvature /= L * L;
        return v;
    };
    shape.at = [=](const Vec3 &r) {
        const BeamValue v = value(r[0]);
        return torsion ? twisted(v, r[1] - y, r[2] - z)
                       : bent(v, upwards ? r[2] - z : r[1] - y, upwards ? 2 : 1);
    };
    shape.bends = [=](double x) {
        const BeamValue v = value(x);
        return torsion ? Curvature{0, 0, v.slope}
                       : Curvature{upwards ? v.curvature : 0, upwards ? 0 : v.curvature, 0};
    };
    shape.breaks = {entry.from, entry.to};
    return true;
}

double value_of(const Polynomial &terms, const Vec3 &r) {
    double sum = 0;
    for (const PolynomialTerm &term : terms)
        sum += term.factor * std::pow(r[0], term.powers[0]) * std::pow(r[1], term.powers[1]) *
               std::pow(r[2], term.powers[2]);
    return sum;
}
Polynomial derivative(Polynomial terms, std::size_t axis) {
    for (PolynomialTerm &term : terms) {
        term.factor *= term.powers[axis];
        term.powers[axis] = std::max(term.powers[axis] - 1, 0);
    }
    return terms;
}

bool make_polynomial(const ModeFile &, const ModeEntry &entry, ModeShape &shape, std::string &error) {
    const std::array<Polynomial, 3> u = entry.terms;
    if (u[0].empty() && u[1].empty() && u[2].empty()) {
        error = "a polynomial needs dx, dy or dz";
        return false;
    }
    std::array<std::array<Polynomial, 3>, 3> slopes;
    for (std::size_t k = 0; k < 3; ++k)
        for (std::size_t l = 0; l < 3; ++l)
            slopes[k][l] = derivative(u[k], l);
    shape.at = [u, slopes](const Vec3 &r) {
        Displacement d;
        for (std::size_t k = 0; k < 3; ++k) {
            d.u[k] = value_of(u[k], r);
            for (std::size_t l = 0; l < 3; ++l)
                d.slope[k][l] = value_of(slopes[k][l], r);
        }
        return d;
    };
    // The axis of the beam is that of the entry; a section's turn about x is half the curl.
    const Polynomial up = derivative(slopes[2][0], 0), across = derivative(slopes[1][0], 0);
    const Polynomial turn_z = derivative(slopes[2][1], 0), turn_y = derivative(slopes[1][2], 0);
    const double y = entry.y, z = entry.z;
    shape.bends = [=](double x) {
        const Vec3 r = {x, y, z};
        return Curvature{value_of(up, r), value_of(across, r),
                         (value_of(turn_z, r) - value_of(turn_y, r)) / 2};
    };
    return true;
}

bool make_hinge(const ModeFile &, const ModeEntry &entry, ModeShape &shape, std::string &error) {
    if (entry.fore == entry.aft) {
        error = "fore and aft are equal: the body turns as a whole, which is a rigid mode";
        return false;
    }
    const Vec3 axis = unit(static_cast<std::size_t>(entry.axis)), at = entry.at;
    const double fore = entry.fore, aft = entry.aft;
    shape.at = [=](const Vec3 &r) { return turned(axis, r[0] > at[0] ? fore : aft, r, at); };
    shape.bends = [](double) { return Curvature{}; };
    shape.breaks = {at[0]};
    return true;
}

} // namespace

ModeShape rigid_shape(int mode) {
    ModeShape shape;
    const Vec3 axis = unit(static_cast<std::size_t>((mode - 1) % 3));
    shape.at = [=](const Vec3 &r) {
        Displacement d;
        d.u = axis;
        return mode <= 3 ? d : turned(axis, 1, r, Vec3{});
    };
    shape.bends = [](double) { return Curvature{}; };
    return shape;
}

const std::vector<ModeType> &mode_types() {
    constexpr const char *BEAM = "number, direction, from, to, y, z";
    static const std::vector<ModeType> TYPES = {
        {"free-free", BEAM, "from, to", "mode of a uniform beam with free ends; straight on beyond them",
         make_beam},
        {"cantilever", BEAM, "from, to", "mode of a uniform beam that is held at `from` and free at `to`",
         make_beam},
        {"polynomial", "dx, dy, dz, y, z", "", "displacements as polynomials of x, y, z", make_polynomial},
        {"hinge", "at, axis, fore, aft, spring", "at",
         "parts of the body before and behind a place turn about an axis there", make_hinge},
        {"points", "file, method, neighbours, number", "file",
         "displacements given at points, as a structural "
         "program has them",
         make_point_shape},
    };
    return TYPES;
}

const ModeType &mode_type(const std::string &name) {
    const auto &types = mode_types();
    return *std::find_if(types.begin(), types.end(), [&](const ModeType &t) { return name == t.name; });
}

std::string mode_type_names() {
    std::string names;
    for (const ModeType &type : mode_types())
        names += (names.empty() ? "" : ", ") + std::string(type.name);
    return names;
}

std::string mode_type_rows() {
    std::string rows;
    for (const ModeType &type : mode_types())
        rows += "| `" + std::string(type.name) + "` | " + type.what + " | " + type.keys + " |\n";
    return rows;
}

bool listed(const std::string &word, const std::string &list) {
    const std::string all = ", " + list + ", ";
    return all.find(", " + word + ", ") != std::string::npos;
}
