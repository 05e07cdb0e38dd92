#include "mesh/projection.hpp"

#include "mesh/vectors.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double DEGREES = 0.017453292519943295;
constexpr double AWAY = 2.5; // distance of the eye, over the diagonal of what is seen

} // namespace

Camera camera_of(const Picture &picture, PictureView view) {
    switch (view) {
    case PictureView::side:
        return {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}};
    case PictureView::front:
        return {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}};
    case PictureView::top:
        return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    default:
        break;
    }
    const double a = picture.azimuth * DEGREES, e = picture.elevation * DEGREES;
    Camera camera{{-std::sin(a), std::cos(a), 0},
                  {-std::sin(e) * std::cos(a), -std::sin(e) * std::sin(a), std::cos(e)},
                  {std::cos(e) * std::cos(a), std::cos(e) * std::sin(a), std::sin(e)}};
    BodyPoint low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};
    for (const DrawnPanel &drawn : picture.panels)
        for (const BodyPoint &p : drawn.panel.at)
            for (std::size_t c = 0; c < 3; ++c) {
                low[c] = std::min(low[c], p[c]);
                high[c] = std::max(high[c], p[c]);
            }
    double diagonal = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        camera.centre[c] = (low[c] + high[c]) / 2;
        diagonal = std::hypot(diagonal, high[c] - low[c]);
    }
    camera.distance = AWAY * diagonal;
    return camera;
}

PlanePoint project(const Camera &camera, const BodyPoint &p) {
    const BodyPoint d{p[0] - camera.centre[0], p[1] - camera.centre[1], p[2] - camera.centre[2]};
    const double x = dot(d, camera.right), y = dot(d, camera.up), towards = dot(d, camera.eye);
    if (camera.distance <= 0)
        return {x, y, towards};
    const double scale = camera.distance / (camera.distance - towards);
    return {x * scale, y * scale, 1 / (camera.distance - towards)};
}
