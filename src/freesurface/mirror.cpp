#include "freesurface/mirror.hpp"

#include "state/messages.hpp"

#include <limits>

namespace {

// Vertex of a panel that becomes vertex i of its image.
constexpr int IMAGE_VERTEX[5] = {0, 2, 1, 4, 3};

// The images in the plane where coordinate `axis` is 0.
Status reflect(int axis, int first, int &NP, Array<f32, 3> &XVER) {
    const std::int64_t last = first + 2 * static_cast<std::int64_t>(NP) - 1;
    if (last > std::numeric_limits<int>::max() || failed(XVGROW(last, XVER)))
        return MSGOUT("RAM too small for reflected panels");
    for (int i = 0; i < NP; ++i) {
        for (int c = 1; c <= 3; ++c) {
            for (int v = 1; v <= 4; ++v) {
                const f32 x = XVER(IMAGE_VERTEX[v], c, first + i);
                XVER(v, c, first + NP + i) = c == axis ? -x : x;
            }
        }
    }
    NP *= 2;
    return Status::ok;
}

} // namespace

Status XVGROW(std::int64_t capacity, Array<f32, 3> &XVER) {
    const std::int64_t held = XVER.empty() ? 0 : XVER.dim(3);
    if (capacity <= held)
        return Status::ok;
    const bool good = XVER.empty() ? XVER.alloc(4, 3, capacity) : XVER.resize_last(capacity);
    return good ? Status::ok : MSGOUT("Insufficient memory to allocate XVER array");
}

Status REFLEC(int first, int &NP, int &ISX, int &ISY, Array<f32, 3> &XVER) {
    for (const int axis : {1, 2}) {
        int &index = axis == 1 ? ISX : ISY;
        if (index != 1 && index != -2)
            continue;
        if (failed(reflect(axis, first, NP, XVER)))
            return Status::failed;
        index = index == 1 ? 0 : -1;
    }
    return Status::ok;
}
