#include "modes/matrices.hpp"

#include "post/vector3.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t RIGID = 6;
constexpr double SAME = 1e-3; // difference of a shape and its image, of its size, that does not count

Vec3 mirrored(Vec3 r, std::size_t axis) {
    r[axis] = -r[axis];
    return r;
}

// +1 or -1: u at the image of r is that sign times the image of u; 0: neither.
int parity_of(const ModeShape &shape, const PreFile &pre, std::size_t axis) {
    double even = 0, odd = 0, size = 0;
    for (const PrePanel &panel : pre.panels) {
        if (dot(panel.normal, panel.normal) == 0)
            continue;
        const Vec3 image = mirrored(shape.at(panel.at).u, axis), there = shape.at(mirrored(panel.at, axis)).u;
        const Vec3 less = plus(there, times(-1.0, image)), more = plus(there, image);
        even += dot(less, less);
        odd += dot(more, more);
        size += dot(image, image) + dot(there, there);
    }
    const double least = SAME * SAME * size;
    return even <= least ? 1 : odd <= least ? -1 : 0;
}

// Parities of the rigid modes about x = 0 and y = 0.
constexpr int PARITY[2][7] = {{0, -1, 1, 1, 1, -1, -1}, {0, 1, -1, 1, -1, 1, -1}};

// The images of the panels: how often the integral over them counts for a product of two modes.
double images_of(const PreFile &pre, int a, int b) {
    double images = 1;
    if (pre.ISX == 1)
        images *= 1 + PARITY[0][a] * PARITY[0][b];
    if (pre.ISY == 1)
        images *= 1 + PARITY[1][a] * PARITY[1][b];
    return images;
}

Rows square(std::size_t n) {
    return Rows(n, std::vector<double>(n, 0.0));
}

// Rows of a formula that takes u_i first and the motion j after it, made symmetric.
void make_symmetric(Rows &C) {
    for (std::size_t i = RIGID; i < C.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            if (j >= RIGID)
                C[i][j] = (C[i][j] + C[j][i]) / 2;
            C[j][i] = C[i][j];
        }
}

struct Node {
    double x, weight;
};
// Places and weights along x, in pieces of 5 Gauss points; no piece reaches over a break.
std::vector<Node> nodes_between(double from, double to, std::vector<double> breaks) {
    constexpr int PIECES = 24;
    constexpr double AT[5] = {-0.9061798459386640, -0.5384693101056831, 0, 0.5384693101056831,
                              0.9061798459386640};
    constexpr double OF[5] = {0.2369268850561891, 0.4786286704993665, 0.5688888888888889, 0.4786286704993665,
                              0.2369268850561891};
    if (from == to)
        return {{from, 1}};
    breaks.insert(breaks.end(), {from, to});
    std::sort(breaks.begin(), breaks.end());
    std::vector<Node> nodes;
    for (std::size_t k = 0; k + 1 < breaks.size(); ++k) {
        const double a = breaks[k], b = breaks[k + 1];
        if (a < from || b > to || a == b)
            continue;
        const double half = (b - a) / PIECES / 2;
        for (int piece = 0; piece < PIECES; ++piece)
            for (int g = 0; g < 5; ++g)
                nodes.push_back({a + half * (2 * piece + 1 + AT[g]), half * OF[g]});
    }
    return nodes;
}
std::vector<double> breaks_of(const BodyModes &modes) {
    std::vector<double> all;
    for (const ModeShape &shape : modes.shapes)
        all.insert(all.end(), shape.breaks.begin(), shape.breaks.end());
    return all;
}

// Calls with each small mass and the displacements of all modes there.
template <class Use> void for_masses(const BodyModes &modes, const std::vector<MassPart> &parts, Use use) {
    std::vector<Displacement> all;
    for (const MassPart &part : parts) {
        const double length = part.to > part.from ? part.to - part.from : 1;
        for (const Node &node : nodes_between(part.from, part.to, breaks_of(modes)))
            for (const int corner : {0, 1, 2, 3}) {
                const double y = part.y + (corner % 2 == 0 ? -1 : 1) * part.radius_y;
                const double z = part.z + (corner < 2 ? -1 : 1) * part.radius_z;
                all.clear();
                for (const ModeShape &shape : modes.shapes)
                    all.push_back(shape.at({node.x, y, z}));
                use(part.mass * node.weight / length / 4, all);
            }
    }
}

} // namespace

int symmetry_of(const ModeShape &shape, const PreFile &pre, char &plane) {
    int parity[2] = {1, 1};
    for (const std::size_t axis : {0u, 1u}) {
        if ((axis == 0 ? pre.ISX : pre.ISY) != 1)
            continue;
        parity[axis] = parity_of(shape, pre, axis);
        if (parity[axis] == 0) {
            plane = axis == 0 ? 'x' : 'y';
            return 0;
        }
    }
    for (const int mode : {3, 5, 4, 6})
        if (PARITY[0][mode] == parity[0] && PARITY[1][mode] == parity[1])
            return mode;
    return 0;
}

Rows pressure_stiffness(const BodyModes &modes, const PreFile &pre) {
    const std::size_t n = modes.shapes.size();
    Rows C = square(n);
    std::vector<double> along(n), pressure(n);
    for (const PrePanel &panel : pre.panels) {
        if (panel.plate || dot(panel.normal, panel.normal) == 0)
            continue;
        for (std::size_t i = 0; i < n; ++i) {
            const Displacement d = modes.shapes[i].at(panel.at);
            along[i] = dot(panel.normal, d.u);
            pressure[i] = d.u[2] + panel.z * (d.slope[0][0] + d.slope[1][1] + d.slope[2][2]);
        }
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j < n; ++j)
                C[i][j] += panel.area * along[i] * pressure[j];
    }
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            C[i][j] *= images_of(pre, modes.ISYM[i], modes.ISYM[j]);
    make_symmetric(C);
    return C;
}

Rows mass_of_modes(const BodyModes &modes, const std::vector<MassPart> &parts) {
    const std::size_t n = modes.shapes.size();
    Rows M = square(n);
    for_masses(modes, parts, [&](double dm, const std::vector<Displacement> &all) {
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j < n; ++j)
                M[i][j] += dm * dot(all[i].u, all[j].u);
    });
    return M;
}

Rows weight_stiffness(const BodyModes &modes, const std::vector<MassPart> &parts, double gravity) {
    const std::size_t n = modes.shapes.size();
    Rows C = square(n);
    for_masses(modes, parts, [&](double dm, const std::vector<Displacement> &all) {
        for (std::size_t i = RIGID; i < n; ++i)
            for (std::size_t j = 0; j < n; ++j)
                C[i][j] += gravity * dm * dot(all[i].u, all[j].slope[2]);
    });
    make_symmetric(C);
    return C;
}

Rows beam_stiffness(const BodyModes &modes, const std::vector<BeamStretch> &beams) {
    const std::size_t n = modes.shapes.size();
    Rows K = square(n);
    for (const BeamStretch &beam : beams)
        for (const Node &node : nodes_between(beam.from, beam.to, breaks_of(modes))) {
            if (beam.from == beam.to)
                continue;
            std::vector<Curvature> all;
            for (const ModeShape &shape : modes.shapes)
                all.push_back(shape.bends ? shape.bends(node.x) : Curvature{});
            for (std::size_t i = 0; i < n; ++i)
                for (std::size_t j = 0; j < n; ++j)
                    K[i][j] += node.weight * (beam.ei_vertical * all[i].vertical * all[j].vertical +
                                              beam.ei_horizontal * all[i].horizontal * all[j].horizontal +
                                              beam.gj * all[i].twist * all[j].twist);
        }
    return K;
}
