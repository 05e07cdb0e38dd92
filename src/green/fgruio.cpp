#include "green/fgruio.hpp"

#include "green/depth_block.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cassert>

namespace {

// Methods: 0 near, m far with MODES[m] evanescent modes. A point has at least 1 + 6 H/X of them, which leaves
// exp(-6 pi).
constexpr int METHODS = 6, MODES[METHODS] = {0, 1, 2, 4, 7, DEPTH_MODES};
enum Method { NEAR = 0, FAR = 1 };
constexpr int SURFACE = 3; // position of the image in the free surface, whose 1/r1 stays out

int method_of(f32 X, f32 H) {
    if (H >= 2 * X)
        return NEAR;
    const f32 ratio = 6 * H / X;
    const int needed = 1 + (ratio < DEPTH_MODES - 1 ? static_cast<int>(ratio) : DEPTH_MODES - 1);
    int m = FAR;
    while (MODES[m] < needed)
        ++m;
    return m;
}

// The first fault among the arguments; null when there is none.
const char *fault(const DepthPoints &p, f32 H, bool new_depth) {
    if (p.n < 1)
        return nullptr;
    for (int i = 0; i < p.n; ++i) {
        const f32 X = p.X[i], X3 = p.Z[i], X6 = p.ZETA[i];
        if (X > 1e8f)
            return "X to big in FGRUIO";
        if (X < 0)
            return "X negative in FGRUIO";
        if (X3 < 0)
            return "X3 negative in FGRUIO";
        if (X6 < 0)
            return "X6 negative in FGRUIO";
        if (new_depth && H > 1e8f)
            return "H too big in FGRUIO";
        if (H < 1e-8f)
            return "H too small in FGRUIO";
        if (X3 > H)
            return "X3 > H in FGRUIO";
        if (X6 > H)
            return "X6 > H in FGRUIO";
        if (H >= 2 * X && X + (X3 + X6) < 1e-8f)
            return "X+X3X6 too small in FGRUIO";
    }
    return nullptr;
}

// The four images of the near points, the first `n` of `sorted`, and the deep-water functions there, position
// by position; the last point fills up the last block.
void evaluate_images(const DepthPoints &p, f32 H, int n, DepthWork &work) {
    const int count = padded(n);
    f32 *X = work.X.data(), *Y = work.Y.data();
    int *ISNG = work.ISNG.data();
    for (int i = 0; i < count; ++i) {
        const int at = work.sorted(1 + (i < n ? i : n - 1));
        const f32 z = p.Z[at], zeta = p.ZETA[at];
        const f32 position[POSITIONS] = {2 * H - (z - zeta), 2 * H + (z - zeta),
                                         2 * H + ((H - z) + (H - zeta)), z + zeta};
        for (int q = 0; q < POSITIONS; ++q) {
            X[q * count + i] = p.X[at];
            Y[q * count + i] = position[q];
            ISNG[q * count + i] = q == SURFACE ? 3 : 1;
        }
    }
    InfiniteArrays value;
    for (int j = 0; j < INFINITE_VALUES; ++j)
        value.value[j] = &work.F(1, j + 1);
    // All images but the last are deeper than H.
    const int distant = H > DISTANT ? SURFACE * count : 0;
    IGRUIO_distant(distant, X, Y, value);
    IGRUIO({POSITIONS * count - distant, X + distant, Y + distant, ISNG + distant}, work.infinite,
           value.from(distant));
}

// The block of points `first` to `first` + GREEN_LANES - 1 of `sorted`, from 0; `n` near points.
void evaluate(int method, f32 H, int first, int n, const DepthWork &work, DepthBlock &block) {
    depth_propagating(work.state, H, method != NEAR, block);
    if (method != NEAR) {
        depth_far(work.state, H, MODES[method], block);
        return;
    }
    const f32 *F[POSITIONS][INFINITE_VALUES];
    for (int q = 0; q < POSITIONS; ++q) {
        for (int j = 0; j < INFINITE_VALUES; ++j)
            F[q][j] = &work.F(1 + q * padded(n) + first, j + 1);
    }
    depth_near(work.state, H, F, block);
}

} // namespace

bool DepthWork::alloc(int n) {
    const int all = POSITIONS * padded(n);
    return method.alloc(n) && sorted.alloc(n) && ISNG.alloc(all) && X.alloc(all) && Y.alloc(all) &&
           F.alloc(all, INFINITE_VALUES) && infinite.alloc(all);
}

Status FGRUIO(const DepthPoints &points, f32 H, DepthWork &work, const DepthArrays &result) {
    const int n = points.n;
    const bool new_depth = H != work.H;
    if (const char *text = fault(points, H, new_depth))
        return MSGOUT(text);
    if (n < 1)
        return Status::ok;
    assert(work.sorted.size() >= n);
    if (new_depth) {
        HGRUIO(H, work.state);
        work.H = H;
    }
    int first[METHODS + 1] = {}; // of each method in `sorted`, then where the next one goes
    for (int i = 0; i < n; ++i)
        ++first[1 + (work.method(i + 1) = method_of(points.X[i], H))];
    for (int m = 1; m <= METHODS; ++m)
        first[m] += first[m - 1];
    const int near = first[1];
    for (int i = 0; i < n; ++i)
        work.sorted(1 + first[work.method(i + 1)]++) = i;
    if (near > 0)
        evaluate_images(points, H, near, work);

    DepthBlock block;
    for (int m = 0, begin = 0; m < METHODS; begin = first[m], ++m) {
        for (; begin < first[m]; begin += GREEN_LANES) {
            const int count = std::min(first[m] - begin, GREEN_LANES);
            const int *list = &work.sorted(1 + begin);
            for (int k = 0; k < GREEN_LANES; ++k) {
                const int i = list[k < count ? k : count - 1];
                block.X[k] = points.X[i];
                block.Z[k] = points.Z[i];
                block.ZETA[k] = points.ZETA[i];
            }
            evaluate(m, H, begin, near, work, block);
            for (int j = 0; j < DEPTH_VALUES; ++j) {
                for (int k = 0; k < count; ++k) {
                    result.re[j][list[k]] = block.re[j][k];
                    result.im[j][list[k]] = block.im[j][k];
                }
            }
        }
    }
    return Status::ok;
}
