#include "rankine/rankin.hpp"

#include "rankine/rankine_pair.hpp"
#include "run/messages.hpp"
#include "run/symmetry.hpp"

#include <algorithm>
#include <atomic>
#include <new>

namespace {

// Field rows that are worked together: their elements of a column go to the store as one piece.
constexpr int ROWS = 16;

// The columns of a block of rows that hold something, plane after plane: tile[(plane * columns + column) *
// ROWS + row]. Planes: per class and level the dipole, source and normal-derivative influence and three of
// the gradient.
struct Block {
    Array<std::uint8_t, 2> mask; // near bits (padded panels, ROWS)
    Array<int, 1> column;        // place of a panel among the columns, from 0; -1: nothing near (NEQN)
    Array<int, 1> panel;         // panel of a column (NEQN)
    Array<f32, 1> tile;
    Array<f32, 3> rhs; // right-hand sides of the rows (NSYMD or 1, 0:1, ROWS)
    int columns = 0;

    [[nodiscard]] bool alloc(const RankineInput &in) {
        return mask.alloc(std::max(in.points.padded, 1), ROWS) && column.alloc(in.mesh.NEQN) &&
               panel.alloc(in.mesh.NEQN) && rhs.alloc(std::max(in.sym.NSYMD, 1), Range{0, 1}, ROWS);
    }
    // Room for the columns of this block in all planes, zeroed.
    [[nodiscard]] bool clear_tile(int planes) {
        const std::int64_t size = std::int64_t{planes} * columns * ROWS;
        if (tile.empty() || tile.size() < size)
            return tile.alloc(size + size / 4);
        std::fill_n(tile.data(), size, 0.0f);
        return true;
    }
};

// Which planes there are.
struct Planes {
    int per_class;                // of one class and level
    int source, normal, velocity; // place of the first of its kind, -1: absent; dipole is 0
    int levels, classes;

    Planes(const Options &opt, const Symmetry &sym) {
        int next = 1;
        source = opt.ISCATT == 1 ? next++ : -1;
        normal = opt.ISOR == 1 ? next++ : -1;
        velocity = opt.ISOR == 1 ? next : -1;
        per_class = next + (opt.ISOR == 1 ? 3 : 0);
        levels = opt.ILOG + 1;
        classes = sym.NSYMR;
    }
    int all() const { return per_class * levels * classes; }
    int first(int s, int k) const { return ((s - 1) * levels + k) * per_class; }
};

// What went wrong, over all threads.
struct Faults {
    std::atomic<bool> memory{false};
    std::atomic<bool> integral{false};

    bool any() const { return memory || integral; }
};

// The first panel that lies in z = 0 with itself or a panel before it; 0: there is none.
int first_surface_row(const RankineInput &in) {
    const PairPoints &at = in.points;
    f32 largest = 0;
    for (const f32 size : at.size)
        largest = std::max(largest, size);
    const auto in_surface = [](f32 sum, f32 size) { return sum * sum <= SURFACE2 * size; };
    for (std::size_t A = 0; A < in.panels.size(); ++A) {
        if (!in_surface(at.z[A], largest))
            continue;
        for (std::size_t B = 0; B <= A; ++B)
            if (in_surface(at.z[A] + at.z[B], std::max(at.size[A], at.size[B])))
                return static_cast<int>(A) + 1;
    }
    return 0;
}

class Sweep {
  public:
    Sweep(const RankineInput &in, RankineStore &store, Faults &faults)
        : in_(in), sym_(in.sym), planes_(in.opt, in.sym), store_(store), faults_(faults),
          right_hand_sides_(in.opt.IRAD != -1), NEQN_(in.mesh.NEQN) {}

    // Rows first .. first + ROWS - 1.
    void block(int first, Block &b) const {
        const int rows = std::min(ROWS, NEQN_ - first + 1);
        find_columns(first, rows, b);
        if (!b.clear_tile(planes_.all())) {
            faults_.memory = true;
            return;
        }
        b.rhs.fill(0);
        for (int r = 1; r <= rows; ++r)
            if (!row(first + r - 1, r, b))
                return;
        copy_out(first, rows, b);
    }

  private:
    void find_columns(int first, int rows, Block &b) const {
        for (int r = 1; r <= rows; ++r)
            near_pairs(in_.points, first + r - 2, in_.images, &b.mask(1, r));
        const int near_bits = (1 << in_.images.count) - 1;
        b.columns = 0;
        for (int B = 1; B <= NEQN_; ++B) {
            int bits = 0;
            for (int r = 1; r <= rows; ++r)
                bits |= b.mask(B, r);
            b.column(B) = (bits & near_bits) != 0 ? b.columns : -1;
            if ((bits & near_bits) != 0)
                b.panel(++b.columns) = B;
        }
    }

    bool row(int A, int r, Block &b) const {
        for (int B = 1; B <= NEQN_; ++B) {
            const int bits = b.mask(B, r);
            if (bits == 0)
                continue;
            const bool surface = (bits & PAIR_SURFACE) != 0;
            int code = surface ? CODE_SURFACE : 0;
            for (int p = 1; p <= in_.images.count; ++p) {
                if ((bits & (1 << (p - 1))) == 0)
                    continue;
                RankineTerms terms;
                if (!rankine_pair(in_, A, B, p, surface, terms)) {
                    faults_.integral = true;
                    return false;
                }
                code += terms.digit << (3 * (p - 1));
                scatter(terms, sym_.ISYMG[p], B, surface, r, b);
            }
            if (B <= A)
                store_.ICODM(B, A) = code;
        }
        add_diagonal(A, r, b);
        return true;
    }

    // Adds the terms of image m to all classes.
    void scatter(const RankineTerms &t, int m, int B, bool surface, int r, Block &b) const {
        const std::int64_t plane = std::int64_t{b.columns} * ROWS;
        f32 *at = b.tile.data() + std::int64_t{b.column(B)} * ROWS + (r - 1);
        const f32 mark = surface ? static_cast<f32>(in_.mesh.IFSP(B)) : 0;
        const bool feeds = right_hand_sides_ && !in_.dipole(B);
        for (int s = 1; s <= planes_.classes; ++s) {
            const f32 e = static_cast<f32>(SGN[sym_.ICLS[s]][m]);
            for (int k = 0; k < planes_.levels; ++k) {
                f32 *to = at + planes_.first(s, k) * plane;
                to[0] += e * (surface ? mark * t.S[k] : t.D[k]);
                if (planes_.source > 0)
                    to[planes_.source * plane] += e * t.S[k];
                if (planes_.normal > 0) {
                    to[planes_.normal * plane] += e * (surface ? mark * t.S[k] : t.N[k]);
                    if (!surface) {
                        to[planes_.velocity * plane] += static_cast<f32>(SGX[m]) * e * t.V[k][1];
                        to[(planes_.velocity + 1) * plane] += static_cast<f32>(SGY[m]) * e * t.V[k][2];
                        to[(planes_.velocity + 2) * plane] += e * t.V[k][3];
                    }
                }
                if (feeds)
                    for (int n = 1; n <= sym_.NMCLS[s]; ++n) {
                        const int q = sym_.MODCLS(n, s);
                        b.rhs(sym_.MODPOS(q), k, r) += in_.mesh.VEL(q, B) * t.S[k] * e;
                    }
            }
        }
    }

    // The half solid angle of the panel itself; a panel in z = 0 has none of its own, nor has a dipole panel.
    void add_diagonal(int A, int r, Block &b) const {
        if ((b.mask(A, r) & PAIR_SURFACE) != 0 || in_.dipole(A))
            return;
        const std::int64_t plane = std::int64_t{b.columns} * ROWS;
        f32 *at = b.tile.data() + std::int64_t{b.column(A)} * ROWS + (r - 1);
        for (int s = 1; s <= planes_.classes; ++s) {
            f32 *to = at + planes_.first(s, 0) * plane;
            to[0] += PI2;
            if (planes_.normal > 0)
                to[planes_.normal * plane] += PI2;
        }
    }

    void copy_out(int first, int rows, Block &b) const {
        const f32 *from = b.tile.data();
        const auto copy_plane = [&](View<f32, 4> to, int third, int k) {
            for (int c = 1; c <= b.columns; ++c, from += ROWS)
                std::copy_n(from, rows, &to(first, b.panel(c), third, k));
        };
        for (int s = 1; s <= planes_.classes; ++s)
            for (int k = 0; k < planes_.levels; ++k) {
                copy_plane(store_.RKDM, s, k);
                if (planes_.source > 0)
                    copy_plane(store_.RKSM, s, k);
                if (planes_.normal > 0) {
                    copy_plane(store_.RKNM, s, k);
                    for (int axis = 1; axis <= 3; ++axis)
                        copy_plane(store_.RKVM, 3 * (s - 1) + axis, k);
                }
            }
        if (right_hand_sides_)
            for (int k = 0; k < planes_.levels; ++k)
                for (int c = 1; c <= sym_.NSYMD; ++c)
                    for (int r = 1; r <= rows; ++r)
                        store_.RHSRAN(first + r - 1, c, k) = b.rhs(c, k, r);
    }

    const RankineInput &in_;
    const Symmetry &sym_;
    Planes planes_;
    RankineStore &store_;
    Faults &faults_;
    bool right_hand_sides_;
    int NEQN_;
};

} // namespace

Status RANKIN(const Options &opt, const Bodies & /*bodies*/, const Mesh &mesh, const Dipoles &dipoles,
              const Symmetry &sym, RankineStore &store) {
    Faults faults;
    try {
        const RankineInput in(opt, mesh, dipoles, sym);
        if (const int row = opt.ILOG == 0 ? first_surface_row(in) : 0) {
            MSGOUT(" ILOG=0 and panel NP in free surface, NP=", row);
            return MSGOUT(" Error in evaluating Rankine matrix");
        }
        const Sweep sweep(in, store, faults);
#pragma omp parallel
        {
            Block block;
            if (!block.alloc(in))
                faults.memory = true;
#pragma omp for schedule(dynamic)
            for (int first = 1; first <= mesh.NEQN; first += ROWS)
                if (!faults.any())
                    sweep.block(first, block);
        }
    } catch (const std::bad_alloc &) {
        faults.memory = true;
    }
    if (faults.memory)
        return MSGOUT(" RAM too small.  Allocation error in RANKIN ");
    if (faults.integral)
        return MSGOUT(" Error in evaluating Rankine matrix");
    return Status::ok;
}
