#include "post/waterline.hpp"

#include <cmath>
#include <numbers>

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

Vector3 normal_on(const P2fFile &p2f, int J, const Image &image) {
    return {image.sx * d(p2f.TRM(3, 1, J)), image.sy * d(p2f.TRM(3, 2, J)), d(p2f.TRM(3, 3, J))};
}

// A vertex of a panel, in z = 0.
Vector3 vertex_in_surface(const P2fFile &p2f, int body, int J, int vertex, const Image &image) {
    const double angle = d(p2f.XBODY(4, body)) * std::numbers::pi / 180, c = std::cos(angle),
                 s = std::sin(angle);
    const double x = d(p2f.XVER(vertex, 1, J)), y = d(p2f.XVER(vertex, 2, J));
    return {image.sx * (c * x - s * y + d(p2f.XBODY(1, body))),
            image.sy * (s * x + c * y + d(p2f.XBODY(2, body))), 0};
}

} // namespace

std::vector<WaterlineSide> waterline_sides(const P2fFile &p2f) {
    std::vector<WaterlineSide> sides;
    const std::vector<Image> images = images_of(p2f);
    int panels = 0, w = 0;
    for (int body = 1; !p2f.IWLP.empty() && body <= p2f.NBODY; ++body) {
        for (const int end = w + p2f.NWLB(body); w < end;) {
            ++w;
            const int J = panels + p2f.IWLP(w);
            for (std::size_t g = 0; g < images.size(); ++g) {
                if (!images[g].body)
                    continue;
                const Vector3 a = vertex_in_surface(p2f, body, J, p2f.IWLE(w), images[g]),
                              b = vertex_in_surface(p2f, body, J, p2f.IWLE(w) % 4 + 1, images[g]);
                sides.push_back({body, J, static_cast<int>(g) + 1, times(0.5, plus(a, b)),
                                 normal_on(p2f, J, images[g]), std::hypot(b[0] - a[0], b[1] - a[1])});
            }
        }
        panels += p2f.NEQNB(body);
    }
    return sides;
}

Complex3 hull_velocity(const P2fFile &p2f, const SurfaceGradient &gradient, const HullState &state, int J,
                       int g, double nu) {
    if (gradient.has(J)) {
        const Vector3 N = normal_on(p2f, J, gradient.images()[static_cast<std::size_t>(g) - 1]);
        return plus(gradient.along(J, g, state.phi.view(), nu), times(state.vn(J, g), N));
    }
    if (state.velocity.empty())
        return {};
    return {state.velocity(1, J, g), state.velocity(2, J, g), state.velocity(3, J, g)};
}

c64 side_elevation(const P2fFile &p2f, const SurfaceGradient &gradient, const HullState &state,
                   const WaterlineSide &side, double nu) {
    const Image &image = gradient.images()[static_cast<std::size_t>(side.image) - 1];
    const Complex3 v = hull_velocity(p2f, gradient, state, side.panel, side.image, nu);
    const double x = side.middle[0] - image.sx * d(p2f.XCT(1, side.panel)),
                 y = side.middle[1] - image.sy * d(p2f.XCT(2, side.panel)), up = -d(p2f.XCT(3, side.panel));
    return (state.phi(side.panel, side.image) + v[0] * x + v[1] * y + v[2] * up / 2.0) / (1 - nu * up / 2);
}
