#include "post/hull_state.hpp"

#include "post/incident.hpp"

#include <algorithm>

namespace {

// All parts of the incident wave have a class.
bool has_all_classes(const P2fFile &p2f) {
    for (int type = 1; type <= 4; ++type) {
        const bool odd_x = type == 2 || type == 3, odd_y = type == 3 || type == 4;
        if ((odd_x && p2f.ISX == -1) || (odd_y && p2f.ISY == -1))
            continue; // no such wave beside a wall
        const int *end = p2f.IDCLS + 1 + p2f.NSYMR * p2f.NDCLS;
        if (std::find(p2f.IDCLS + 1, end, type) == end)
            return false;
    }
    return true;
}

std::string missing(const P2fFile &p2f, int t, int b, Motions xi, Part part, HullWants wants) {
    if (!has_waves(p2f, t))
        return "period " + std::to_string(t) + " is a limit frequency, which has no waves";
    if (part != Part::radiation && p2f.IDIFF < 0)
        return "the file has no diffraction: set IDIFF=1 in the run";
    if (part != Part::radiation && !has_all_classes(p2f))
        return "the file has no diffraction of some symmetry classes: set IDIFF=1 in the run";
    if ((wants.velocity || wants.source) && p2f.ISOR != 1)
        return "the file has no sources and no velocities: set ISOR=1 in the run";
    if (part == Part::diffraction || !moves(xi))
        return "";
    for (int j = 1; j <= p2f.NMODES; ++j)
        if (xi(j, b) != 0.0 && p2f.IRAD < 0)
            return "the file has no radiation: set IRAD=1 in the run";
        else if (xi(j, b) != 0.0 && p2f.MODPOS(j) == 0)
            return "mode " + std::to_string(j) + " moves but was not solved: set IRAD=1 in the run";
    return "";
}

// Adds one column with a factor: its signs on the images are those of class s.
class Adder {
  public:
    Adder(const P2fFile &p2f, const std::vector<Image> &images, HullState &state)
        : p(p2f), images_(images), s_(state) {}

    // A column of a class; of the velocity the three components one after the other. Null: not wanted.
    struct SolutionColumn {
        const c32 *potential, *velocity, *source;
    };
    void add(int s, c64 factor, SolutionColumn column) {
        const std::int64_t n = p.NEQN;
        for (std::size_t g = 0; g < images_.size(); ++g) {
            const int at = static_cast<int>(g) + 1;
            const c64 f = factor * parity(p.ICLS[s], images_[g]);
            const c64 turn[3] = {f * images_[g].sx, f * images_[g].sy, f};
            for (int J = 1; J <= n; ++J)
                s_.phi(J, at) += f * c64(column.potential[J - 1]);
            for (int J = 1; column.source != nullptr && J <= n; ++J)
                s_.source(J, at) += f * c64(column.source[J - 1]);
            for (int c = 0; column.velocity != nullptr && c < 3; ++c)
                for (int J = 1; J <= n; ++J)
                    s_.velocity(c + 1, J, at) += turn[c] * c64(column.velocity[c * n + J - 1]);
        }
    }
    void add_normal_velocity(int s, int mode, c64 factor) {
        constexpr int HELD = 3; // a plate that is no part of the moving body
        for (std::size_t g = 0; g < images_.size(); ++g) {
            const c64 f = factor * parity(p.ICLS[s], images_[g]);
            for (int J = 1; J <= p.NEQN; ++J)
                if (p.IDIP.empty() || p.IDIP(J) != HELD)
                    s_.vn(J, static_cast<int>(g) + 1) += f * static_cast<double>(p.VEL(mode, J));
        }
    }
    void add_incident_velocity(int t, int b) {
        for (std::size_t g = 0; g < images_.size(); ++g)
            for (int J = 1; J <= p.NEQN; ++J) {
                const double at[3] = {images_[g].sx * static_cast<double>(p.XCT(1, J)),
                                      images_[g].sy * static_cast<double>(p.XCT(2, J)),
                                      static_cast<double>(p.XCT(3, J))};
                const WaveAt wave = incident_wave(p, t, b, at);
                for (int c = 0; c < 3; ++c)
                    s_.velocity(c + 1, J, static_cast<int>(g) + 1) += wave.gradient[c];
            }
    }

  private:
    const P2fFile &p;
    const std::vector<Image> &images_;
    HullState &s_;
};

} // namespace

bool form_hull_state(const P2fFile &p2f, int t, int b, Motions xi, Part part, HullWants wants,
                     HullState &state, std::string &error) {
    error = missing(p2f, t, b, xi, part, wants);
    if (!error.empty())
        return false;
    const std::vector<Image> images = images_of(p2f);
    const int n = p2f.NEQN, count = static_cast<int>(images.size());
    if (!state.phi.alloc(n, count) || !state.vn.alloc(n, count) ||
        (wants.velocity && !state.velocity.alloc(3, n, count)) ||
        (wants.source && !state.source.alloc(n, count))) {
        error = "not enough memory";
        return false;
    }
    Adder adder(p2f, images, state);
    for (int s = 1; part != Part::radiation && s <= p2f.NSYMR; ++s)
        adder.add(s, 1,
                  {&p2f.PHID(1, b, s, t), wants.velocity ? &p2f.VELD(1, 3 * (b - 1) + 1, s, t) : nullptr,
                   wants.source ? &p2f.SRCD(1, b, s, t) : nullptr});
    // A run for wave drift damping has the incident wave in VELD.
    if (part != Part::radiation && wants.velocity && p2f.IWADD != 1)
        adder.add_incident_velocity(t, b);
    const double nu = deep_wave_number(p2f, t);
    for (int j = 1; part != Part::diffraction && moves(xi) && j <= p2f.NMODES; ++j) {
        if (xi(j, b) == 0.0)
            continue;
        const c64 factor = nu * unit_motion(p2f, j) * xi(j, b);
        const int s = class_of(p2f, j), column = p2f.MODPOS(j);
        adder.add(s, factor,
                  {&p2f.PHIR(1, column, t), wants.velocity ? &p2f.VELR(1, 3 * (column - 1) + 1, t) : nullptr,
                   wants.source ? &p2f.SRCR(1, column, t) : nullptr});
        adder.add_normal_velocity(s, j, factor);
    }
    return true;
}
