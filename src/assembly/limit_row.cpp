#include "assembly/limit_row.hpp"

#include "geometry/panel.hpp"
#include "rankine/panint.hpp"
#include "state/messages.hpp"
#include "state/symmetry.hpp"

namespace {

// Takes the image of one directed pair off: field panel `field` as image g, source panel `source`, entry e.
// With V its gradient, too; the mirror turns the vertical component.
Status remove_image(const RunState &run, int field, int g, int source, std::int64_t e, const Split &S,
                    const Split &D, const Split *V) {
    const Mesh &mesh = run.mesh;
    const f32 mirrored[4] = {0, static_cast<f32>(SGX[g]) * mesh.XCT(1, field),
                             static_cast<f32>(SGY[g]) * mesh.XCT(2, field), -mesh.XCT(3, field)};
    const f32 normal[4] = {0, static_cast<f32>(SGX[g]) * mesh.TRM(3, 1, field),
                           static_cast<f32>(SGY[g]) * mesh.TRM(3, 2, field), -mesh.TRM(3, 3, field)};
    const Panel panel = panel_of(mesh, source);
    FieldIntegrals integrals;
    const int status = is_dipole(run.dipoles, field)
                           ? PANDNF(mirrored, normal, run.dipoles.DEPS(field), panel, 0, integrals)
                           : PANFLD(mirrored, panel, 0, V != nullptr ? 1 : 0, integrals);
    if (status != 0)
        return MSGOUT("Error evaluating Rankine image for infinite-frequency case");
    const f32 *gradient = is_dipole(run.dipoles, source) ? integrals.GD : integrals.GS;
    S.re[e] -= 2 * integrals.S;
    D.re[e] -= 2 * integrals.D;
    for (int c = 0; V != nullptr && c < 3; ++c)
        V[c].re[e] -= (c == 2 ? -2 : 2) * gradient[c + 1];
    return Status::ok;
}

} // namespace

Status infinite_frequency_images(const RunState &run, const RowPart &part, const std::uint16_t *code,
                                 WaveRow &row) {
    const int I = part.I;
    Status status = Status::ok;
    for (int m = 0; m < run.sym.NSYMG; ++m) {
        const int g = run.sym.ISYMG[m + 1];
        for (int j = 0; j < part.n; ++j) {
            if (((code[j] >> (3 * m)) & 3) <= 1)
                continue;
            const int J = part.from + j + 1;
            const std::int64_t e = static_cast<std::int64_t>(m) * part.n + j;
            // Pairs in the free surface have no velocity influence.
            const bool velocities = row.velocities && row.EB(j + 1) != 0;
            if (failed(remove_image(run, I, g, J, e, row.SPR, row.DPR, velocities ? row.VPR : nullptr)))
                status = Status::failed;
            if (J < I &&
                failed(remove_image(run, J, g, I, e, row.SPC, row.DPC, velocities ? row.VPC : nullptr)))
                status = Status::failed;
        }
    }
    return status;
}
