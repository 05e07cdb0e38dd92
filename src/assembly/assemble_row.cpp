#include "assembly/assemble_row.hpp"

bool RowWork::alloc(const RunState &run) {
    const int n = run.mesh.NEQN;
    return row.alloc(n, run.sym.NSYMG, run.opt, run.dipoles.IDIPOL) && sums.alloc(n, run.opt.ISOR == 1);
}

Status assemble_row(const AssemblyFrame &f, const TileRow &at, const std::uint16_t *code, RowWork &work,
                    BlockSums &sums) {
    free_surface_pairs(f, at, code, work.row);
    if (failed(wave_coefficients(f, at.I, code, work.row)))
        return Status::failed;
    for (int s = 1; s <= f.run.sym.NSYMR; ++s)
        class_sums(f, at, s, work.row, work.sums, sums);
    return Status::ok;
}
