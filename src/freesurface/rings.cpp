#include "freesurface/rings.hpp"

#include <cmath>

namespace {

constexpr double HALF_PI = 1.5707963267948966;

// For the ends of an open contour, which lie on x = 0 or on y = 0.
bool nearer_to_x0(SurfacePoint p) {
    return std::fabs(p.x) < std::fabs(p.y);
}

} // namespace

SurfacePoint contour_centre(const std::vector<WaterSide> &sides, const Contour &contour) {
    double S = 0, Sx = 0, Sy = 0;
    for (const int k : contour.sides) {
        const SurfacePoint a = sides[k].from;
        const SurfacePoint b = sides[k].to;
        const double sx = a.x + b.x;
        const double sy = a.y + b.y;
        S += (b.x - a.x) * sy;
        Sx += sx * (b.x - a.x) * sy;
        Sy -= sy * (b.y - a.y) * sx;
    }
    SurfacePoint centre{0.5 * Sx / S, 0.5 * Sy / S};
    if (contour.open) {
        const bool starts_on_x0 = nearer_to_x0(sides[contour.sides.front()].from);
        const bool ends_on_x0 = nearer_to_x0(sides[contour.sides.back()].to);
        if (starts_on_x0 || ends_on_x0)
            centre.x = 0;
        if (!starts_on_x0 || !ends_on_x0)
            centre.y = 0;
    }
    return centre;
}

bool seen_from_centre(const std::vector<WaterSide> &sides, const Contour &contour, SurfacePoint centre) {
    double turned = 0;
    for (const int k : contour.sides) {
        const SurfacePoint a{sides[k].from.x - centre.x, sides[k].from.y - centre.y};
        const SurfacePoint b{sides[k].to.x - centre.x, sides[k].to.y - centre.y};
        const double cross = a.x * b.y - a.y * b.x;
        if (!(cross < 0))
            return false;
        turned += std::atan2(-cross, a.x * b.x + a.y * b.y);
    }
    // Once around is 2 pi, and from plane to plane half or a quarter of it. An open contour that turns by 2
    // pi meets its plane twice on the same side of the centre.
    return turned < (contour.open ? 3 : 6) * HALF_PI;
}

void FSRAD(const std::vector<WaterSide> &sides, const Contour &contour, SurfacePoint centre, double WLMEAN,
           SurfacePanels &panels) {
    double S = 0;
    for (const int k : contour.sides)
        S += (sides[k].to.x - sides[k].from.x) * (sides[k].from.y + sides[k].to.y);
    const auto count = static_cast<std::int64_t>(contour.sides.size());
    const int m = static_cast<int>(static_cast<std::int64_t>(std::fabs(S) / (WLMEAN * WLMEAN)) / count) + 1;
    const auto factor = [&](int i) { return i == m ? 0 : std::cos(i * HALF_PI / m); };
    const auto at = [&](double f, SurfacePoint p) -> SurfacePoint {
        return {centre.x + f * (p.x - centre.x), centre.y + f * (p.y - centre.y)};
    };
    for (const int k : contour.sides) {
        const SurfacePoint P = sides[k].from;
        const SurfacePoint Q = sides[k].to;
        for (int i = 0; i < m; ++i) {
            const double outer = factor(i);
            const double inner = factor(i + 1);
            panels.push_back(
                {i == 0 ? Q : at(outer, Q), i == 0 ? P : at(outer, P), at(inner, P), at(inner, Q)});
        }
    }
}
