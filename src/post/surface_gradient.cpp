#include "post/surface_gradient.hpp"

#include "base/lapack.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <set>

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

constexpr double SMOOTH = 0.6;       // cosine of the angle of normals above which the surface is one
constexpr double STEEP = 0.15;       // vertical component of the normal of a wall
constexpr double SAME = 1e-3;        // vertices nearer than that part of the panel's size are one
constexpr int UNKNOWNS = 5;          // slopes and second derivatives in the tangent plane
constexpr double INDEPENDENT = 0.02; // below it the columns of a fit count as dependent

Vector3 normal_of(const P2fFile &p, int J, const Image &image) {
    return {image.sx * d(p.TRM(3, 1, J)), image.sy * d(p.TRM(3, 2, J)), d(p.TRM(3, 3, J))};
}

Vector3 vertex_of(const P2fFile &p, int J, int v, const Image &image) {
    const int body = body_of_panel(p, J);
    const double angle = d(p.XBODY(4, body)) * std::numbers::pi / 180;
    const double x = d(p.XVER(v, 1, J)), y = d(p.XVER(v, 2, J));
    return {image.sx * (std::cos(angle) * x - std::sin(angle) * y + d(p.XBODY(1, body))),
            image.sy * (std::sin(angle) * x + std::cos(angle) * y + d(p.XBODY(2, body))),
            d(p.XVER(v, 3, J)) + d(p.XBODY(3, body))};
}

// Vertices of all images by a grid of cells.
class VertexGrid {
  public:
    struct Owner {
        int panel;
        std::size_t image;
    };
    VertexGrid(const P2fFile &p, const std::vector<Image> &images, const PanelKinds &kinds, double cell)
        : p_(p), cell_(cell) {
        for (std::size_t g = 0; g < images.size(); ++g)
            for (int J = 1; images[g].body && J <= p.NEQN; ++J)
                for (int v = 1; kinds.hull(J) && !kinds.plate(J) && v <= 4; ++v)
                    cells_[key(vertex_of(p, J, v, images[g]))].push_back({J, g});
    }
    // Adds the panels with a vertex in the cells around that one, of the same body.
    void collect(int J, int v, std::set<std::pair<std::size_t, int>> &found) const {
        const Key at = key(vertex_of(p_, J, v, {1, 1, true}));
        for (int k = 0; k < 27; ++k) {
            const auto cell = cells_.find({at[0] + k % 3 - 1, at[1] + k / 3 % 3 - 1, at[2] + k / 9 - 1});
            if (cell == cells_.end())
                continue;
            for (const Owner &owner : cell->second)
                if (body_of_panel(p_, owner.panel) == body_of_panel(p_, J))
                    found.insert({owner.image, owner.panel});
        }
    }

  private:
    using Key = std::array<long, 3>;
    Key key(const Vector3 &at) const {
        return {std::lround(at[0] / cell_), std::lround(at[1] / cell_), std::lround(at[2] / cell_)};
    }

    const P2fFile &p_;
    double cell_;
    std::map<Key, std::vector<Owner>> cells_;
};

// A panel of a vertical wall with a side in the free surface.
bool is_at_waterline(const P2fFile &p, int J) {
    const double bottom = d(p.XBODY(3, body_of_panel(p, J))), size = std::sqrt(d(p.PMOM(1, J)));
    int wet = 0;
    for (int v = 1; v <= 4; ++v)
        wet += std::abs(d(p.XVER(v, 3, J)) + bottom) < SAME * size ? 1 : 0;
    return wet >= 2 && std::abs(d(p.TRM(3, 3, J))) < STEEP;
}

} // namespace

SurfaceGradient::SurfaceGradient(const P2fFile &p2f, const PanelKinds &kinds)
    : p_(p2f), images_(images_of(p2f)), stencil_(static_cast<std::size_t>(p2f.NEQN)) {
    double smallest = 1e30;
    for (int J = 1; J <= p_.NEQN; ++J)
        smallest = std::min(smallest, std::sqrt(d(p_.PMOM(1, J))));
    const VertexGrid grid(p_, images_, kinds, SAME * smallest);
    for (int J = 1; J <= p_.NEQN; ++J) {
        if (!kinds.hull(J) || kinds.plate(J))
            continue;
        std::set<std::pair<std::size_t, int>> found;
        for (int v = 1; v <= 4; ++v)
            grid.collect(J, v, found);
        const bool wall = is_at_waterline(p_, J);
        Stencil &stencil = stencil_[static_cast<std::size_t>(J) - 1];
        for (const auto &[image, panel] : found) {
            if (dot(normal_of(p_, J, {1, 1, true}), normal_of(p_, panel, images_[image])) < SMOOTH)
                continue;
            if (panel != J || image != 0)
                stencil.of.push_back({panel, image, 0});
            if (wall && is_at_waterline(p_, panel))
                stencil.of.push_back({panel, image, -d(p_.XCT(3, panel))});
        }
        fit(J, stencil);
    }
}

Vector3 SurfaceGradient::centroid(const Neighbour &n) const {
    const Image &image = images_[n.image];
    return {image.sx * d(p_.XCT(1, n.panel)), image.sy * d(p_.XCT(2, n.panel)),
            n.height > 0 ? n.height : d(p_.XCT(3, n.panel))};
}

void SurfaceGradient::fit(int J, Stencil &stencil) const {
    const int m = static_cast<int>(stencil.of.size()), n = UNKNOWNS, most = std::max(m, n),
              work_size = 64 * most;
    if (m < n)
        return;
    const double size = std::sqrt(d(p_.PMOM(1, J)));
    Array<double, 2> A, unit;
    std::vector<double> work(static_cast<std::size_t>(work_size));
    std::array<int, UNKNOWNS> pivot{};
    if (!A.alloc(m, n) || !unit.alloc(most, m))
        return;
    for (int k = 1; k <= m; ++k) {
        const Vector3 away = plus(centroid(stencil.of[static_cast<std::size_t>(k) - 1]),
                                  times(-1.0, Vector3{d(p_.XCT(1, J)), d(p_.XCT(2, J)), d(p_.XCT(3, J))}));
        double at[2];
        for (int axis = 1; axis <= 2; ++axis)
            at[axis - 1] =
                dot(Vector3{d(p_.TRM(axis, 1, J)), d(p_.TRM(axis, 2, J)), d(p_.TRM(axis, 3, J))}, away) /
                size;
        const double weight = 1 / std::max(std::hypot(at[0], at[1]), 1e-6);
        const double row[UNKNOWNS] = {at[0], at[1], at[0] * at[0] / 2, at[0] * at[1], at[1] * at[1] / 2};
        for (int c = 1; c <= n; ++c)
            A(k, c) = weight * row[c - 1];
        unit(k, k) = weight;
    }
    int rank = 0, info = 0;
    dgelsy_(&m, &n, &m, A.data(), &m, unit.data(), &most, pivot.data(), &INDEPENDENT, &rank, work.data(),
            &work_size, &info);
    if (info != 0 || rank < n)
        return;
    for (int axis = 1; axis <= 2; ++axis)
        for (int k = 1; k <= m; ++k)
            stencil.along[static_cast<std::size_t>(axis) - 1].push_back(unit(axis, k) / size);
}

std::size_t SurfaceGradient::image_of(double sx, double sy) const {
    std::size_t g = 0;
    while (images_[g].sx != sx || images_[g].sy != sy)
        ++g;
    return g;
}

Complex3 SurfaceGradient::along(int J, int g, View<const c64, 2> phi, double nu) const {
    const Stencil &stencil = stencil_[static_cast<std::size_t>(J) - 1];
    const Image &own = images_[static_cast<std::size_t>(g) - 1];
    c64 slope[2] = {};
    for (std::size_t k = 0; k < stencil.of.size(); ++k) {
        const Neighbour &n = stencil.of[k];
        const Image &other = images_[n.image];
        c64 value = phi(n.panel, static_cast<int>(image_of(own.sx * other.sx, own.sy * other.sy)) + 1);
        // phi(h) - phi(-h) = 2 h nu phi(0), phi(0) the mean of both.
        value *= (1 + nu * n.height) / (1 - nu * n.height);
        for (std::size_t axis = 0; axis < 2; ++axis)
            slope[axis] += stencil.along[axis][k] * (value - phi(J, g));
    }
    Complex3 result{};
    for (int axis = 1; axis <= 2; ++axis) {
        const Vector3 direction = {own.sx * d(p_.TRM(axis, 1, J)), own.sy * d(p_.TRM(axis, 2, J)),
                                   d(p_.TRM(axis, 3, J))};
        result = plus(result, times(slope[axis - 1], direction));
    }
    return result;
}
