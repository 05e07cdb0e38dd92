#include "solve/itrcc.hpp"

#include "base/lapack.hpp"
#include "solve/sweep_kernels.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <new>
#include <omp.h>

namespace {

constexpr f32 NOTHING = 1.0e-12f; // largest squared scaled right-hand side that is taken for zero
constexpr double TINY = 1.0e-300; // what has no reciprocal
constexpr std::int64_t GROUP_LIMIT = 512ll
                                     << 20; // bytes of the vectors of all columns that are worked together

constexpr std::int64_t SHARED_LENGTH = 4096; // vector elements that are worth a call of the other cores

// The iteration of one right-hand side.
struct Iteration {
    int N = 0;
    Array<f32, 3> XR;    // residual of each iterate, real and imaginary parts (N,2,MAXIT)
    Array<f32, 3> WS;    // the iterates; the first is zero and not stored (N,2,MAXIT)
    Array<f32, 2> Y;     // solution of the sweep (N,2)
    Array<f32, 1> SCALE; // what the residual is measured against (N)
    // Differences of products of residuals are small where a sweep makes the residual many times larger: in
    // single precision nothing would be left of them.
    Array<c64, 2> GRAM; // products of the residuals (MAXIT,MAXIT)
    Array<c64, 2> RMAT; // residual matrix
    Array<c64, 1> CW;   // its right-hand side, then the weights of the residuals (MAXIT)
    double size = 1;    // largest modulus of the right-hand side, which is worked in units of it
    f32 BMAX = 0;       // largest squared right-hand side
    bool active = true;
    IterativeColumn *column = nullptr;

    [[nodiscard]] bool alloc(int n) {
        N = n;
        return XR.alloc_unset(n, 2, MAXIT) && WS.alloc_unset(n, 2, MAXIT) && Y.alloc(n, 2) &&
               SCALE.alloc(n) && GRAM.alloc(MAXIT, MAXIT) && RMAT.alloc(MAXIT, MAXIT) && CW.alloc(MAXIT);
    }
    Split residual(int k) { return {&XR(1, 1, k), &XR(1, 2, k)}; }
    Split iterate(int k) { return {&WS(1, 1, k), &WS(1, 2, k)}; }
    Split y() { return {&Y(1, 1), &Y(1, 2)}; }
};

// The residual is measured absolutely, and what a right-hand side is large against depends on the unit of
// length and on the wave: it is worked with a largest modulus of 1. In double, which holds the quotient of
// any two numbers in single precision.
void start(Iteration &it) {
    const Split x = it.residual(1);
    double largest = 0;
    for (int i = 0; i < it.N; ++i)
        largest = std::max(largest, std::abs(std::complex<double>(it.column->B[i])));
    it.size = largest > 0 ? largest : 1;
    for (int i = 0; i < it.N; ++i) {
        const std::complex<double> b = std::complex<double>(it.column->B[i]) / it.size;
        const f32 size = static_cast<f32>(std::abs(b));
        x.re[i] = static_cast<f32>(b.real());
        x.im[i] = static_cast<f32>(b.imag());
        it.SCALE(i + 1) = std::max(size, 1.0f);
        it.BMAX = std::max(it.BMAX, size * size);
    }
    it.GRAM(1, 1) = squared_norm(it.N, x);
}

void finish(Iteration &it, int k, Outcome outcome, ConstSplit solution) {
    for (int i = 0; i < it.N; ++i)
        it.column->B[i] = {static_cast<f32>(it.size * static_cast<double>(solution.re[i])),
                           static_cast<f32>(it.size * static_cast<double>(solution.im[i]))};
    it.column->ITER = k;
    it.column->outcome = outcome;
    it.active = false;
}

// Products of the new raw residual j with all before it.
void extend_gram(Iteration &it, int j) {
    const Split r = it.residual(j);
    for (int i = 1; i < j; ++i) {
        it.GRAM(i, j) = hermitian_product(it.N, it.residual(i), r);
        it.GRAM(j, i) = std::conj(it.GRAM(i, j));
    }
    it.GRAM(j, j) = squared_norm(it.N, r);
}

// Weights CW of the residuals before j; the raw residual has the weight that is left. False: the system is
// singular, or the sweep has left the range of numbers.
bool find_weights(Iteration &it, int j) {
    const int k = j - 1;
    if (!std::isfinite(it.GRAM(j, j).real()))
        return false;
    double largest = 0;
    for (int l = 1; l <= k; ++l) {
        for (int i = 1; i <= k; ++i) {
            it.RMAT(i, l) = it.GRAM(i, l) - it.GRAM(j, l) - it.GRAM(i, j) + it.GRAM(j, j);
            largest = std::max(largest, std::abs(it.RMAT(i, l)));
        }
        it.CW(l) = it.GRAM(j, j) - it.GRAM(l, j);
    }
    if (largest < TINY) {
        // The sweep left every residual as it was: no combination is better than the new iterate.
        std::fill_n(it.CW.data(), k, c64(0));
        return true;
    }
    int IPS[MAXIT];
    const int lead = MAXIT;
    const int one = 1;
    int info = 0;
    zgetrf_(&k, &k, it.RMAT.data(), &lead, IPS, &info);
    if (info != 0)
        return false;
    zgetrs_("N", &k, &one, it.RMAT.data(), &lead, IPS, it.CW.data(), &lead, &info, 1);
    return std::all_of(it.CW.data(), it.CW.data() + k, [](c64 w) { return std::isfinite(std::abs(w)); });
}

// Iteration k of one column after its sweep.
void advance(Iteration &it, int k, f32 EPS) {
    const SerialBlas serial;
    const int j = k + 1;
    const int N = it.N;
    if (it.BMAX < NOTHING)
        return finish(it, k, Outcome::converged, it.y());
    extend_gram(it, j);
    if (!find_weights(it, j)) {
        it.column->ITER = k;
        it.column->outcome = Outcome::singular;
        it.active = false;
        return;
    }
    c64 c0 = 1;
    for (int l = 1; l <= k; ++l)
        c0 -= it.CW(l);
    // The Gauss-Seidel step is added to the last iterate; the first iterate is zero.
    if (k > 1)
        add_vector(N, it.iterate(k), it.y());
    scale_vector(N, c32(c0), it.y(), it.iterate(j));
    scale_vector(N, c32(c0), it.residual(j), it.residual(j));
    for (int l = 1; l <= k; ++l) {
        if (l > 1)
            add_scaled(N, c32(it.CW(l)), it.iterate(l), it.iterate(j));
        add_scaled(N, c32(it.CW(l)), it.residual(l), it.residual(j));
    }
    if (largest_ratio(N, it.residual(j), it.SCALE.data()) < EPS)
        return finish(it, k, Outcome::converged, it.iterate(j));
    if (j == MAXIT)
        return finish(it, k, Outcome::not_converged, it.iterate(j));
    // The smallest residual has the same product with every residual it was combined from: no new products.
    c64 v = c0 * it.GRAM(j, j);
    for (int l = 1; l <= k; ++l)
        v += it.GRAM(j, l) * it.CW(l);
    for (int l = 1; l <= k; ++l) {
        it.GRAM(l, j) = v;
        it.GRAM(j, l) = std::conj(v);
    }
    it.GRAM(j, j) = v;
}

Status iterate_group(f32 EPS, const Sweep &sweep, std::vector<Iteration> &group) {
    for (Iteration &it : group)
        start(it);
    std::vector<SweepColumn> at_work;
    std::vector<Iteration *> active;
    for (int k = 1; k < MAXIT; ++k) {
        at_work.clear();
        active.clear();
        for (Iteration &it : group) {
            if (!it.active)
                continue;
            const Split r = it.residual(k + 1);
            const std::size_t count = static_cast<std::size_t>(it.N);
            std::copy_n(it.residual(k).re, count, r.re);
            std::copy_n(it.residual(k).im, count, r.im);
            at_work.push_back({r, it.y()});
            active.push_back(&it);
        }
        if (active.empty())
            break;
        if (failed(sweep(at_work)))
            return Status::failed;
        const int count = static_cast<int>(active.size());
        const bool shared = std::int64_t{count} * active[0]->N > SHARED_LENGTH;
#pragma omp parallel for schedule(dynamic, 1) if (shared)
        for (int c = 0; c < count; ++c)
            advance(*active[static_cast<std::size_t>(c)], k, EPS);
    }
    return Status::ok;
}

// Columns that are worked together: all, unless their vectors take too much.
std::size_t group_size(int N, std::size_t count) {
    const std::int64_t bytes = std::int64_t{N} * 2 * MAXIT * 2 * static_cast<std::int64_t>(sizeof(f32));
    return std::min(count, static_cast<std::size_t>(std::max<std::int64_t>(1, GROUP_LIMIT / bytes)));
}

bool make_group(int N, std::size_t size, std::vector<Iteration> &group) {
    try {
        group = std::vector<Iteration>(size);
    } catch (const std::bad_alloc &) {
        return false;
    }
    return std::all_of(group.begin(), group.end(), [N](Iteration &it) { return it.alloc(N); });
}

} // namespace

std::int64_t iteration_memory(int N, int columns) {
    const std::int64_t vectors = 4 * MAXIT + 3, small = 2 * MAXIT * MAXIT + MAXIT;
    const std::size_t size = group_size(N, static_cast<std::size_t>(std::max(columns, 0)));
    return static_cast<std::int64_t>(size) * (4 * vectors * N + 8 * small);
}

Status ITRCC(int N, f32 EPS, const Sweep &sweep, std::vector<IterativeColumn> &columns) {
    std::size_t size = group_size(N, columns.size());
    for (std::size_t first = 0; first < columns.size(); first += size) {
        size = std::min(size, columns.size() - first);
        std::vector<Iteration> group;
        while (!make_group(N, size, group)) {
            if (size == 1)
                return MSGOUT(" RAM too small. Allocation error in SOLVE ");
            size = (size + 1) / 2;
        }
        for (std::size_t c = 0; c < size; ++c)
            group[c].column = &columns[first + c];
        if (failed(iterate_group(EPS, sweep, group)))
            return Status::failed;
    }
    return Status::ok;
}
