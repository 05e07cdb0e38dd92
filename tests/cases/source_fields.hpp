// What the sources of a hand-over file make on the panels, beside the boundary values they were solved for.
// Bodies at the origin: the first three modes are the normal.
#pragma once

#include "case_folder.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

namespace fields {

using Vector = std::array<c64, 3>;

// One radiation column, or one heading of a class.
struct Field {
    bool radiation = true;
    int column = 1; // of PHIR, or the heading
    int s = 1;      // active class of a diffraction field
    int mode = 1;   // of a radiation field
    int t = 1;      // period
};

inline std::vector<Field> all_fields(const P2fFile &p2f) {
    std::vector<Field> list;
    for (int t = 1; t <= p2f.NPER; ++t) {
        for (int k = 1; p2f.IRAD >= 0 && k <= p2f.NSYMD; ++k)
            list.push_back({true, p2f.MODPOS(p2f.MODLST(k)), 0, p2f.MODLST(k), t});
        for (int s = 1; p2f.IDIFF >= 0 && s <= p2f.NSYMR; ++s)
            for (int b = 1; b <= p2f.NBETA; ++b)
                list.push_back({false, b, s, 0, t});
    }
    return list;
}

// Velocity of the part of the incident wave, e^{-i K (x cos beta + y sin beta)} cosh K(z+H)/cosh KH, that is
// in class s.
inline Vector incident_velocity(const P2fFile &p2f, int panel, const Field &f) {
    if (p2f.WVNH(f.t) <= 0)
        return {}; // limit frequencies have no incident wave
    const double K = static_cast<double>(p2f.WVNH(f.t)), H = static_cast<double>(p2f.HBOT);
    const double cb = static_cast<double>(p2f.COSBET(f.column)),
                 sb = static_cast<double>(p2f.SINBET(f.column));
    const double z = static_cast<double>(p2f.XCT(3, panel));
    const double a = K * static_cast<double>(p2f.XCT(1, panel)) * cb,
                 b = K * static_cast<double>(p2f.XCT(2, panel)) * sb;
    const double F = H > 0 ? std::cosh(K * (z + H)) / std::cosh(K * H) : std::exp(K * z);
    const double Fz = H > 0 ? K * std::sinh(K * (z + H)) / std::cosh(K * H) : K * F;
    const c64 odd(0, -1); // of e^{-i a} = cos a - i sin a
    Vector sum{};
    for (int k = 1; k <= p2f.NDCLS; ++k) {
        const int part = p2f.IDCLS[(f.s - 1) * p2f.NDCLS + k];
        const bool odd_x = part == 2 || part == 3, odd_y = part == 3 || part == 4;
        const c64 X = odd_x ? odd * std::sin(a) : std::cos(a), dX = odd_x ? odd * std::cos(a) : -std::sin(a);
        const c64 Y = odd_y ? odd * std::sin(b) : std::cos(b), dY = odd_y ? odd * std::cos(b) : -std::sin(b);
        sum[0] += F * K * cb * dX * Y;
        sum[1] += F * K * sb * X * dY;
        sum[2] += Fz * X * Y;
    }
    return sum;
}

inline Vector velocity_of_sources(const P2fFile &p2f, int panel, const Field &f) {
    Vector v;
    for (int axis = 1; axis <= 3; ++axis) {
        const int at = 3 * (f.column - 1) + axis;
        v[static_cast<std::size_t>(axis - 1)] =
            c64(f.radiation ? p2f.VELR(panel, at, f.t) : p2f.VELD(panel, at, f.s, f.t));
    }
    return v;
}

inline c64 potential(const P2fFile &p2f, int panel, const Field &f) {
    return c64(f.radiation ? p2f.PHIR(panel, f.column, f.t) : p2f.PHID(panel, f.column, f.s, f.t));
}

inline double normal(const P2fFile &p2f, int panel, std::size_t axis) {
    return static_cast<double>(p2f.VEL(static_cast<int>(axis) + 1, panel));
}
inline c64 along_normal(const P2fFile &p2f, int panel, const Vector &v) {
    return normal(p2f, panel, 0) * v[0] + normal(p2f, panel, 1) * v[1] + normal(p2f, panel, 2) * v[2];
}

// What the body condition asks of the sources.
inline c64 boundary_value(const P2fFile &p2f, int panel, const Field &f) {
    if (f.radiation)
        return static_cast<double>(p2f.VEL(f.mode, panel));
    return -along_normal(p2f, panel, incident_velocity(p2f, panel, f));
}

inline bool on_hull(const P2fFile &p2f, int panel) {
    return p2f.IFSP.empty() || p2f.IFSP(panel) != 1;
}

// Largest normal velocity on the hull that the sources of the field are to make. Near 0 for a sphere that
// turns, or a heading along a plane of symmetry in the classes without a wave.
inline double wanted_normal_velocity(const P2fFile &p2f, const Field &f) {
    double size = 0;
    for (int ip = 1; ip <= p2f.NEQN; ++ip) {
        if (on_hull(p2f, ip))
            size = std::max(size, std::abs(boundary_value(p2f, ip, f)));
    }
    return size;
}
constexpr double STILL = 0.05; // less than this is a field of discretisation errors

// Largest error of the normal velocity on a hull panel of any field, as a fraction of the largest one wanted.
inline double normal_velocity_error(const P2fFile &p2f) {
    double worst = 0;
    for (const Field &f : all_fields(p2f)) {
        const double size = wanted_normal_velocity(p2f, f);
        double error = 0;
        for (int ip = 1; ip <= p2f.NEQN; ++ip) {
            if (!on_hull(p2f, ip))
                continue;
            error = std::max(error, std::abs(along_normal(p2f, ip, velocity_of_sources(p2f, ip, f)) -
                                             boundary_value(p2f, ip, f)));
        }
        if (size > STILL)
            worst = std::max(worst, error / size);
    }
    return worst;
}

// Differences of a potential from panel to neighbour against the mean velocity of the two along the way: root
// of the sum of squares of the errors over that of the velocities, largest of all fields. Neighbours: a
// panel's nearest of the same face, within `reach`, where `regular` says that the flow has no singularity of
// an edge; all fields, or those of one mode.
inline double tangential_velocity_error(const P2fFile &p2f, double reach,
                                        bool (*regular)(const P2fFile &, int), int only_mode = 0) {
    struct Pair {
        int i, j;
        std::array<double, 3> way;
        double length;
    };
    std::vector<Pair> pairs;
    for (int i = 1; i <= p2f.NEQN; ++i) {
        for (int j = i + 1; j <= p2f.NEQN; ++j) {
            Pair pair{i, j, {}, 0};
            double facing = 0;
            for (std::size_t c = 0; c < 3; ++c) {
                const int axis = static_cast<int>(c) + 1;
                pair.way[c] = static_cast<double>(p2f.XCT(axis, j)) - static_cast<double>(p2f.XCT(axis, i));
                pair.length += pair.way[c] * pair.way[c];
                facing += normal(p2f, i, c) * normal(p2f, j, c);
            }
            pair.length = std::sqrt(pair.length);
            if (regular(p2f, i) && regular(p2f, j) && facing > 0.7 && pair.length < reach)
                pairs.push_back(pair);
        }
    }
    double worst = 0;
    for (const Field &f : all_fields(p2f)) {
        if (wanted_normal_velocity(p2f, f) < STILL || (only_mode != 0 && f.mode != only_mode))
            continue;
        double errors = 0, sizes = 0;
        for (const Pair &pair : pairs) {
            c64 along = 0;
            double speed = 0;
            for (const int ip : {pair.i, pair.j}) {
                Vector v = velocity_of_sources(p2f, ip, f);
                const Vector wave = f.radiation ? Vector{} : incident_velocity(p2f, ip, f);
                for (std::size_t c = 0; c < 3; ++c) {
                    v[c] += wave[c];
                    along += v[c] * pair.way[c] / (2 * pair.length);
                    speed += std::norm(v[c]) / 2;
                }
            }
            const c64 difference = (potential(p2f, pair.j, f) - potential(p2f, pair.i, f)) / pair.length;
            errors += std::norm(along - difference);
            sizes += speed;
        }
        worst = std::max(worst, std::sqrt(errors / sizes));
    }
    return worst;
}

} // namespace fields
