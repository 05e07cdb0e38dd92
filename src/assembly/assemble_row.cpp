#include "assembly/assemble_row.hpp"

#include <algorithm>

bool RowWork::alloc(const RunState &run) {
    const int n = run.mesh.NEQN;
    return row.alloc(n, run.sym.NSYMG, run.opt, run.dipoles.IDIPOL) && sums.alloc(n, run.opt.ISOR == 1);
}

Status assemble_row(const AssemblyFrame &f, const TileRow &at, const std::uint16_t *code, RowWork &work,
                    BlockSums &sums) {
    for (int from = 0; from < at.I; from += PART) {
        const RowPart part{at.I, from, std::min(PART, at.I - from)};
        free_surface_pairs(f, at, part, code + from, work.row);
        if (failed(wave_coefficients(f, part, code + from, work.row)))
            return Status::failed;
        for (int s = 1; s <= f.run.sym.NSYMR; ++s)
            class_sums(f, at, part, s, work.row, work.sums, sums);
    }
    return Status::ok;
}
