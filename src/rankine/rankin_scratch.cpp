#include "rankine/rankin_scratch.hpp"

#include "rankine/rankin.hpp"
#include "rankine/rankine_planes.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <new>

namespace {

// Row and column of one outer panel A in all planes, from panel 1 on.
struct OuterPanel {
    Array<f32, 2> row;            // influence on A from B (NEQN, planes)
    Array<f32, 2> column;         // influence on B from A (NEQN, planes)
    Array<std::uint16_t, 1> code; // pair codes (NEQN)
    Array<std::uint8_t, 1> mask;
    PairChunk chunk; // pairs that are worked together
    PairTargets targets;
    const ModeFeed &feed;
    Array<f32, 3> rhs; // right-hand sides of all panels (NSYMD,0:1,NEQN)

    explicit OuterPanel(const ModeFeed &modes) : feed(modes) {}
    [[nodiscard]] bool alloc(const RankineInput &in, int planes) {
        const int n = in.mesh.NEQN;
        return row.alloc(n, planes) && column.alloc(n, planes) && code.alloc(n) &&
               mask.alloc(std::max(in.points.padded, 1)) &&
               rhs.alloc(std::max(in.sym.NSYMD, 1), Range{0, 1}, n);
    }
};

// Adds what the pairs of the chunk have to row and column of A, in the order of the pairs. False: an integral
// has no value.
bool add_chunk(const RankineInput &in, const Planes &planes, int A, OuterPanel &outer) {
    if (!rankine_pairs(in, outer.chunk))
        return false;
    PairTargets &to = outer.targets;
    to.plane = in.mesh.NEQN;
    for (int i = 0; i < outer.chunk.count; ++i) {
        const DirectedPair &pair = outer.chunk.pair[i];
        const bool of_row = pair.field == A;
        to.element[i] = of_row ? &outer.row(pair.source, 1) : &outer.column(pair.field, 1);
        to.rhs[i] = in.opt.IRAD != -1 ? &outer.rhs(1, 0, pair.field) : nullptr;
        if (of_row) {
            std::uint16_t &code = outer.code(pair.source);
            code = static_cast<std::uint16_t>(code + (outer.chunk.digit[i] << (3 * (pair.image - 1))));
        }
    }
    scatter_terms(in, planes, outer.chunk, to);
    outer.feed.add(outer.chunk, planes.levels, to);
    outer.chunk.count = 0;
    return true;
}

// All pairs of A with B = 1..A, both directions in one visit. False: an integral has no value.
bool visit(const RankineInput &in, const Planes &planes, int A, OuterPanel &outer) {
    for (int p = 1; p <= planes.all(); ++p) {
        std::fill_n(&outer.row(1, p), A, 0.0f);
        std::fill_n(&outer.column(1, p), A, 0.0f);
    }
    pairs_of(in, A, outer.mask.data());
    for (int B = 1; B <= A; ++B) {
        const int bits = outer.mask(B);
        const bool surface = (bits & PAIR_SURFACE) != 0;
        outer.code(B) = surface ? CODE_SURFACE : 0;
        for (int p = 1; p <= in.images.count; ++p) {
            if ((bits & (1 << (p - 1))) == 0)
                continue;
            outer.chunk.add({A, B, p, surface});
            if (A != B)
                outer.chunk.add({B, A, p, surface});
            if (outer.chunk.full() && !add_chunk(in, planes, A, outer))
                return false;
        }
    }
    if (!add_chunk(in, planes, A, outer))
        return false;
    if ((outer.mask(A) & PAIR_SURFACE) == 0 && !in.dipole(A))
        add_half_solid_angle(planes, {&outer.row(A, 1), in.mesh.NEQN});
    return true;
}

// The records of A: per class and level column and row of each matrix, of the gradient its three components
// together; then the codes.
bool write_records(const Planes &planes, int A, OuterPanel &outer, RecordFile &unit) {
    bool good = true;
    const auto write = [&](int first, int count) {
        const auto part = [&](Array<f32, 2> &array, int c, int length) {
            return c < count ? bytes_of(&array(1, first + c), length) : Bytes{};
        };
        good = good &&
               unit.write({part(outer.column, 0, A - 1), part(outer.column, 1, A - 1),
                           part(outer.column, 2, A - 1)}) &&
               unit.write({part(outer.row, 0, A), part(outer.row, 1, A), part(outer.row, 2, A)});
    };
    for (int p = 0; p < planes.all(); ++p) {
        const int term = planes.list[static_cast<std::size_t>(p)].term;
        if (term <= VELOCITY)
            write(p + 1, term == VELOCITY ? 3 : 1);
    }
    return good && unit.write({bytes_of(outer.code.data(), A)});
}

bool write_right_hand_sides(const RankineInput &in, OuterPanel &outer, RecordFile &unit) {
    Array<f32, 2> RHSRAN;
    if (!RHSRAN.alloc(in.mesh.NEQN, in.sym.NSYMD))
        return false;
    bool good = true;
    for (int k = 0; good && k <= in.opt.ILOG; ++k) {
        for (int c = 1; c <= in.sym.NSYMD; ++c) {
            for (int ip = 1; ip <= in.mesh.NEQN; ++ip)
                RHSRAN(ip, c) = outer.rhs(c, k, ip);
        }
        good = unit.write({bytes_of(RHSRAN.data(), RHSRAN.size())});
    }
    return good && unit.flush();
}

Status sweep(const RankineInput &in, RecordFile &rows, RecordFile &right_hand_sides) {
    const Planes planes(in.opt, in.sym);
    const ModeFeed feed(in);
    OuterPanel outer(feed);
    if (!outer.alloc(in, planes.all()))
        return MSGOUT(" RAM too small.  Allocation error in RANKIN ");
    for (int A = 1; A <= in.mesh.NEQN; ++A) {
        if (!visit(in, planes, A, outer))
            return MSGOUT(" Error in evaluating Rankine matrix");
        if (!write_records(planes, A, outer, rows))
            return MSGOUT_with(" Error writing scratch file in RANKIN ", 0, rows.error());
    }
    if (!rows.flush())
        return MSGOUT_with(" Error writing scratch file in RANKIN ", 0, rows.error());
    if (in.opt.IRAD != -1 && !write_right_hand_sides(in, outer, right_hand_sides))
        return MSGOUT_with(" Error writing scratch file in RANKIN ", 0, right_hand_sides.error());
    return Status::ok;
}

} // namespace

Status rankin_on_scratch(const Options &opt, const Mesh &mesh, const Dipoles &dipoles, const Symmetry &sym,
                         RecordFile &rows, RecordFile &right_hand_sides) {
    if (!rows.open_scratch() || !right_hand_sides.open_scratch())
        return MSGOUT_with(" Error opening scratch file in RANKIN ", 0,
                           rows.error() + right_hand_sides.error());
    try {
        const RankineInput in(opt, mesh, dipoles, sym);
        if (failed(surface_panels_allowed(in)))
            return Status::failed;
        return sweep(in, rows, right_hand_sides);
    } catch (const std::bad_alloc &) {
        return MSGOUT(" RAM too small.  Allocation error in RANKIN ");
    }
}
