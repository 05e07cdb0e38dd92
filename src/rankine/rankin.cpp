#include "rankine/rankin.hpp"

#include "rankine/rankine_planes.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <atomic>
#include <new>

namespace {

// Field rows that are worked together: their elements of a column go to the store as one piece.
constexpr int ROWS = NEAR_ROWS;

// The columns of a block of rows that hold something, plane after plane: tile[(plane * columns + column) *
// ROWS + row]. Planes: per class and level the dipole, source and normal-derivative influence and three of
// the gradient.
struct Block {
    Array<std::uint8_t, 2> mask; // near bits (padded panels, ROWS)
    Array<std::uint8_t, 1> bits; // those of all rows (padded panels)
    Array<int, 1> column;        // place of a panel among the columns, from 0; -1: nothing near (NEQN)
    Array<int, 1> panel;         // panel of a column (NEQN)
    Array<bool, 1> logarithm;    // column holds something in level 1 (NEQN)
    Array<int, 1> listed;        // panels that some row has a code with (NEQN)
    Array<int, 1> of_row;        // those of one row (NEQN + 1)
    PairTargets targets;
    PairChunk chunk; // pairs of a row that are worked together
    Array<f32, 1> tile;
    Array<f32, 3> rhs; // right-hand sides of the rows (NSYMD or 1, 0:1, ROWS)
    int columns = 0, listings = 0;

    [[nodiscard]] bool alloc(const RankineInput &in) {
        return mask.alloc(std::max(in.points.padded, 1), ROWS) && column.alloc(in.mesh.NEQN) &&
               panel.alloc(in.mesh.NEQN) && listed.alloc(in.mesh.NEQN) && of_row.alloc(in.mesh.NEQN + 1) &&
               bits.alloc(std::max(in.points.padded, 1)) && logarithm.alloc(in.mesh.NEQN) &&
               rhs.alloc(std::max(in.sym.NSYMD, 1), Range{0, 1}, ROWS);
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

// What went wrong, over all threads.
struct Faults {
    std::atomic<bool> memory{false};
    std::atomic<bool> integral{false};

    bool any() const { return memory || integral; }
};

class Sweep {
  public:
    Sweep(const RankineInput &in, RankineStore &store, Faults &faults)
        : in_(in), sym_(in.sym), planes_(in.opt, in.sym), feed_(in), store_(store), faults_(faults),
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
        mark_columns(first, b);
    }

  private:
    void find_columns(int first, int rows, Block &b) const {
        b.bits.fill(0);
        std::uint8_t *bits = b.bits.data();
        const int N = NEQN_;
        for (int r = 1; r <= rows; ++r) {
            std::uint8_t *mask = &b.mask(1, r);
            pairs_of(in_, first + r - 1, mask);
#pragma omp simd
            for (int i = 0; i < N; ++i)
                bits[i] = static_cast<std::uint8_t>(bits[i] | mask[i]);
        }
        const int near_bits = (1 << in_.images.count) - 1;
        b.columns = b.listings = 0;
        for (int B = 1; B <= NEQN_; ++B) {
            if (bits[B - 1] != 0)
                b.listed(++b.listings) = B;
            const bool near = (bits[B - 1] & near_bits) != 0;
            b.column(B) = near ? b.columns : -1;
            if (near) {
                b.panel(++b.columns) = B;
                b.logarithm(b.columns) = false;
            }
        }
    }

    bool row(int A, int r, Block &b) const {
        b.chunk.count = 0;
        const std::uint8_t *mask = &b.mask(1, r);
        const int *listed = b.listed.data();
        const int images = in_.images.count;
        std::uint16_t *code = &store_.ICODM(pair_place(A) + 1);
        int *with_code = b.of_row.data(), found = 0; // those of this row
        for (int c = 0; c < b.listings; ++c) {
            with_code[found] = listed[c];
            found += mask[listed[c] - 1] != 0 ? 1 : 0;
        }
        for (int c = 0; c < found; ++c) {
            const int B = with_code[c], bits = mask[B - 1];
            const bool surface = (bits & PAIR_SURFACE) != 0;
            if (B <= A)
                code[B - 1] = surface ? CODE_SURFACE : 0;
            for (int p = 1; p <= images; ++p) {
                if ((bits & (1 << (p - 1))) == 0)
                    continue;
                b.chunk.add({A, B, p, surface});
                if (b.chunk.full() && !add_chunk(r, b))
                    return false;
            }
        }
        if (!add_chunk(r, b))
            return false;
        if ((b.mask(A, r) & PAIR_SURFACE) == 0 && !in_.dipole(A))
            add_half_solid_angle(planes_, element(A, r, b));
        return true;
    }

    // Adds what the pairs of the chunk have to the tile, in the order of the pairs.
    bool add_chunk(int r, Block &b) const {
        PairChunk &chunk = b.chunk;
        if (!rankine_pairs(in_, chunk)) {
            faults_.integral = true;
            return false;
        }
        PairTargets &to = b.targets;
        f32 *tile = b.tile.data() + (r - 1);
        const int *column = b.column.data();
        to.plane = std::int64_t{b.columns} * ROWS;
        f32 *rhs = right_hand_sides_ ? &b.rhs(1, 0, r) : nullptr;
        for (int i = 0; i < chunk.count; ++i) {
            to.element[i] = tile + std::int64_t{column[chunk.pair[i].source - 1]} * ROWS;
            to.rhs[i] = rhs;
        }
        for (int i = 0; i < chunk.count; ++i) {
            const DirectedPair &pair = chunk.pair[i];
            if (pair.source > pair.field)
                continue;
            std::uint16_t &code = store_.ICODM(pair_place(pair.field) + pair.source);
            code = static_cast<std::uint16_t>(code + (chunk.digit[i] << (3 * (pair.image - 1))));
        }
        for (int n = 0; n < chunk.holders[1]; ++n)
            b.logarithm(column[chunk.pair[chunk.holder[1][n]].source - 1] + 1) = true;
        scatter_terms(in_, planes_, chunk, to);
        feed_.add(chunk, planes_.levels, to);
        chunk.count = 0;
        return true;
    }

    static PlaneElement element(int B, int r, Block &b) {
        return {b.tile.data() + std::int64_t{b.column(B)} * ROWS + (r - 1), std::int64_t{b.columns} * ROWS};
    }

    // Other threads set other bits of the same words.
    void mark_columns(int first, const Block &b) const {
        const int piece = (first - 1) / ROWS;
        const unsigned bit = 1u << piece % 16;
        for (int c = 1; c <= b.columns; ++c)
            std::atomic_ref(store_.near_rows(b.panel(c), piece / 16 + 1))
                .fetch_or(static_cast<std::uint16_t>(bit), std::memory_order_relaxed);
    }

    void copy_out(int first, int rows, Block &b) const {
        const f32 *from = b.tile.data();
        // Zeros are left out: their pages may take no memory.
        const auto copy_plane = [&](View<f32, 4> to, int third, int k) {
            for (int c = 1; c <= b.columns; ++c, from += ROWS)
                if (k == 0 || b.logarithm(c))
                    std::copy_n(from, rows, &to(first, b.panel(c), third, k));
        };
        for (const PlaneTerm &plane : planes_.list) {
            const int s = plane.cls, k = plane.level;
            if (plane.term == DIPOLE)
                copy_plane(store_.RKDM, s, k);
            else if (plane.term == SOURCE)
                copy_plane(store_.RKSM, s, k);
            else if (plane.term == NORMAL)
                copy_plane(store_.RKNM, s, k);
            else
                copy_plane(store_.RKVM, 3 * (s - 1) + 1 + plane.term - VELOCITY, k);
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
    ModeFeed feed_;
    RankineStore &store_;
    Faults &faults_;
    bool right_hand_sides_;
    int NEQN_;
};

} // namespace

Status RANKIN(const Options &opt, const Bodies & /*bodies*/, const Mesh &mesh, const Dipoles &dipoles,
              const Symmetry &sym, RankineStore &store, RowShare share) {
    Faults faults;
    try {
        const RankineInput in(opt, mesh, dipoles, sym);
        if (failed(surface_panels_allowed(in)))
            return Status::failed;
        const Sweep sweep(in, store, faults);
#pragma omp parallel
        {
            Block block;
            if (!block.alloc(in))
                faults.memory = true;
#pragma omp for schedule(dynamic)
            for (int first = 1 + share.part * ROWS; first <= mesh.NEQN; first += share.parts * ROWS)
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
