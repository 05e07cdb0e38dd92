// All fields of a run on all panels and their images, whatever part of the body the run had, for comparisons
// of runs.
#pragma once

#include "case_folder.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

namespace whole_fields {

// Potential, source and velocity, in global axes.
using Values = std::array<c64, 5>;
enum Kind { POTENTIAL, SOURCE, VELOCITY, KINDS };
constexpr std::size_t FIRST[KINDS + 1] = {0, 1, 2, 5}; // of a kind among the values

// A panel or image of one.
struct Place {
    std::array<double, 5> at;  // centroid, IFSP, IDIP
    std::vector<Values> field; // of each period: the headings with all their classes, then the modes
};

// Sign at the image with signs sx, sy of a function of parity type T.
inline double parity(int T, double sx, double sy) {
    return (T == 2 || T == 3 ? sx : 1) * (T == 3 || T == 4 ? sy : 1);
}

// With the fields of the first `modes` modes.
inline Place place_of(const P2fFile &p2f, int ip, double sx, double sy, int modes) {
    const double turn[3] = {sx, sy, 1};
    const auto mark = [ip](const Array<int, 1> &marks) { return marks.empty() ? 0.0 : marks(ip); };
    Place place;
    for (int c = 0; c < 3; ++c)
        place.at[static_cast<std::size_t>(c)] = turn[c] * static_cast<double>(p2f.XCT(c + 1, ip));
    place.at[3] = mark(p2f.IFSP);
    place.at[4] = mark(p2f.IDIP);
    const int fields = p2f.NBETA + modes;
    place.field.resize(static_cast<std::size_t>(p2f.NPER * fields));
    for (int t = 1; t <= p2f.NPER; ++t) {
        const auto add = [&](int f, double sign, c32 potential, const c32 *source, const auto &velocity) {
            Values &v = place.field[static_cast<std::size_t>((t - 1) * fields + f - 1)];
            v[0] += sign * c64(potential);
            for (int c = 0; source != nullptr && c < 3; ++c)
                v[static_cast<std::size_t>(2 + c)] += turn[c] * sign * c64(velocity(c + 1));
            v[1] += source != nullptr ? sign * c64(*source) : 0;
        };
        for (int s = 1; s <= p2f.NSYMR; ++s) {
            const double sign = parity(p2f.ICLS[s], sx, sy);
            for (int k = 1; p2f.IRAD >= 0 && k <= p2f.NMCLS[s]; ++k) {
                const int mode = p2f.MODCLS(k, s), col = p2f.MODPOS(mode);
                if (mode <= modes)
                    add(p2f.NBETA + mode, sign, p2f.PHIR(ip, col, t),
                        p2f.ISOR == 1 ? &p2f.SRCR(ip, col, t) : nullptr,
                        [&](int c) { return p2f.VELR(ip, 3 * (col - 1) + c, t); });
            }
            for (int b = 1; p2f.IDIFF >= 0 && b <= p2f.NBETA; ++b)
                add(b, sign, p2f.PHID(ip, b, s, t), p2f.ISOR == 1 ? &p2f.SRCD(ip, b, s, t) : nullptr,
                    [&](int c) { return p2f.VELD(ip, 3 * (b - 1) + c, s, t); });
        }
    }
    return place;
}

inline std::vector<Place> whole(const P2fFile &p2f, int modes) {
    std::vector<Place> places;
    for (const double sx : {1.0, -1.0})
        for (const double sy : {1.0, -1.0})
            for (int ip = 1; (sx > 0 || p2f.ISX == 1) && (sy > 0 || p2f.ISY == 1) && ip <= p2f.NEQN; ++ip)
                places.push_back(place_of(p2f, ip, sx, sy, modes));
    return places;
}

// The place of the same centroid and marks.
inline const Place &same_place(const std::vector<Place> &places, const Place &to) {
    const auto distance = [&](const Place &p) {
        double d = 0;
        for (std::size_t c = 0; c < 5; ++c)
            d += std::abs(p.at[c] - to.at[c]);
        return d;
    };
    return *std::min_element(places.begin(), places.end(),
                             [&](const Place &p, const Place &q) { return distance(p) < distance(q); });
}

inline bool every_place(const Place &) {
    return true;
}

// How the fields of run b differ from those of run a at the places of a where `counts` is true, of each
// kind; the modes that both have, and the first `periods` periods (0: all).
struct Difference {
    double largest[KINDS] = {}; // over the largest value of all fields
    double rms[KINDS] =
        {}; // root mean square over that of the field, largest of all fields that are not small
};
inline Difference difference(const SolvedRun &a, const SolvedRun &b,
                             bool (*counts)(const Place &) = every_place, int periods = 0) {
    const int modes = std::min(a.p2f.NMODES, b.p2f.NMODES);
    const std::vector<Place> places = whole(a.p2f, modes), others = whole(b.p2f, modes);
    std::size_t fields = places.front().field.size();
    if (periods > 0)
        fields = fields / static_cast<std::size_t>(a.p2f.NPER) * static_cast<std::size_t>(periods);
    Difference result;
    for (std::size_t kind = 0; kind < KINDS; ++kind) {
        std::vector<double> errors(fields), sizes(fields);
        double error = 0, size = 1e-30;
        for (const Place &place : places) {
            if (!counts(place))
                continue;
            const Place &same = same_place(others, place);
            for (std::size_t f = 0; f < fields; ++f) {
                for (std::size_t v = FIRST[kind]; v < FIRST[kind + 1]; ++v) {
                    const double e = std::abs(place.field[f][v] - same.field[f][v]),
                                 s = std::abs(place.field[f][v]);
                    error = std::max(error, e);
                    size = std::max(size, s);
                    errors[f] += e * e;
                    sizes[f] += s * s;
                }
            }
        }
        result.largest[kind] = error / size;
        const double whole_size = *std::max_element(sizes.begin(), sizes.end());
        for (std::size_t f = 0; f < fields; ++f) {
            if (sizes[f] > 1e-3 * whole_size)
                result.rms[kind] = std::max(result.rms[kind], std::sqrt(errors[f] / sizes[f]));
        }
    }
    return result;
}

} // namespace whole_fields
