#include "freesurface/fsproj.hpp"

#include "freesurface/mirror.hpp"
#include "geometry/panel.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr f32 SHORT_SIDE2 = 1.0e-8f; // squared length below which a projected side is collapsed
constexpr f32 AT_SURFACE = 1.0e-4f;  // a vertex that near to the surface lies in it
constexpr f32 SAME_ANGLE = 1.0e-4f;  // sides whose directions differ by no more are parallel
constexpr f32 PI = PI2 / 2;

// True when the projection of the panel is to be added.
bool has_projection(View<const f32, 2> vertex, f32 ZB) {
    f32 angle[4];
    int sides = 0; // those with a length
    int short_sides = 0;
    int in_surface = 0;
    for (int k = 1; k <= 4; ++k) {
        const f32 dx = vertex(JP[k], 1) - vertex(k, 1);
        const f32 dy = vertex(JP[k], 2) - vertex(k, 2);
        if (dx * dx + dy * dy < SHORT_SIDE2)
            ++short_sides;
        else
            angle[sides++] = std::atan2(dy, dx);
        in_surface += std::fabs(vertex(k, 3) + ZB) < AT_SURFACE ? 1 : 0;
    }
    if (short_sides >= 2 || in_surface == 4)
        return false;
    // Three parallel sides lie on one line, whichever way each of them runs along it.
    int parallel = 0;
    for (int i = 0; i < sides; ++i) {
        for (int j = i + 1; j < sides; ++j) {
            const f32 between = std::fmod(std::fabs(angle[i] - angle[j]), PI);
            parallel += std::min(between, PI - between) <= SAME_ANGLE ? 1 : 0;
        }
    }
    return parallel < 3;
}

} // namespace

Status FSPROJ(int first, int &NP, f32 ZB, View<const int, 1> IDIP, Array<f32, 3> &XVER) {
    const auto is_dipole = [&](int panel) { return panel <= IDIP.dim(1) && IDIP(panel) != 0; };
    const int old_end = first + NP;
    std::int64_t added = 0;
    for (int p = first; p < old_end; ++p)
        added += !is_dipole(p) && has_projection(XVER.slice(p), ZB) ? 1 : 0;
    if (old_end + added - 1 > std::numeric_limits<int>::max() || failed(XVGROW(old_end + added - 1, XVER)))
        return MSGOUT(" For IRR=2, RAM too small for free-surface panels");
    int next = old_end;
    for (int p = first; p < old_end; ++p) {
        if (is_dipole(p) || !has_projection(XVER.slice(p), ZB))
            continue;
        for (int v = 1; v <= 4; ++v) {
            XVER(v, 1, next) = XVER(5 - v, 1, p);
            XVER(v, 2, next) = XVER(5 - v, 2, p);
            XVER(v, 3, next) = -ZB;
        }
        ++next;
    }
    NP = next - first;
    return Status::ok;
}
