#include "boundary/steady_flow.hpp"

#include "boundary/field_loop.hpp"
#include "green/field_kernels.hpp"
#include "state/symmetry.hpp"

#include <vector>

namespace {

constexpr int YAW = 6;

// A steady flow: its number, the parity type of its sources, and whether its potential is kept.
struct Flow {
    int d, type;
    bool potential;
};

std::vector<Flow> flows_of(const Symmetry &sym) {
    std::vector<Flow> flows;
    for (int c = 1; c <= sym.NSYMR; ++c)
        for (int k = 1; k <= sym.WMODC[c]; ++k) {
            const int mode = sym.WMODM(k, c);
            flows.push_back({sym.WMODP(mode), sym.ICLS[c], mode != YAW});
        }
    return flows;
}

struct LidWork {
    FieldWork field;
    KernelValues at, below; // at the field point, and a step below it
    bool alloc(const FieldPanels &panels) {
        return field.alloc(panels) && at.alloc(panels, PG_GF3) && below.alloc(panels, PG_GF3);
    }
};

// Sum over the panels of a column times the sources of flow d.
f32 sum_of_sources(const KernelValues &values, int column, const SteadyFlow &flow, int d) {
    const f32 *value = &values.re(1, column), *source = &flow.STB2(1, d);
    f32 sum = 0;
    for (std::int64_t NP = 0; NP < flow.STB2.dim(1); ++NP)
        sum += value[NP] * source[NP];
    return sum;
}

Status waterline_potential(const RunState &run, const FieldPanels &panels, const std::vector<Flow> &flows,
                           int u, LidWork &work, SteadyFlow &result) {
    const Symmetry &sym = run.sym;
    const f32 *centre = &run.mesh.XCT(1, run.waterline.IWLP(u));
    for (int d = 1; d <= 2; ++d)
        result.STB1(u, d) = -centre[d - 1];
    for (int g = 1; g <= sym.NSYMG; ++g) {
        const int m = sym.ISYMG[g];
        const f32 P[4] = {0, static_cast<f32>(SGX[m]) * centre[0], static_cast<f32>(SGY[m]) * centre[1],
                          centre[2]};
        if (failed(PANGRD(P, panels, {run.opt.HBOT, RIGID_LID, nullptr}, 0, WANT_V, work.field, work.at)))
            return Status::failed;
        for (const Flow &f : flows)
            if (f.potential)
                result.STB1(u, f.d) +=
                    static_cast<f32>(SGN[f.type][m]) * sum_of_sources(work.at, PG_V, result, f.d);
    }
    return Status::ok;
}

Status surface_flow(const RunState &run, const FieldPanels &panels, const std::vector<Flow> &flows, f32 STEP,
                    int J, LidWork &work, SteadyFlow &result) {
    const Symmetry &sym = run.sym;
    const FieldWave lid{run.opt.HBOT, RIGID_LID, nullptr};
    for (int d = 1; d <= 2; ++d)
        result.STF1(J, d) = -run.surface.XCTF(d, J);
    for (int d = 1; d <= 3; ++d)
        result.STF2(J, 1, d) = result.STF2(J, 2, d) = result.STF3(J, d) = 0;
    for (int g = 1; g <= sym.NSYMG; ++g) {
        const int m = sym.ISYMG[g];
        const f32 sx = static_cast<f32>(SGX[m]), sy = static_cast<f32>(SGY[m]);
        const f32 x = sx * run.surface.XCTF(1, J), y = sy * run.surface.XCTF(2, J);
        if (failed(PANGRD({0, x, y, 0}, panels, lid, 0, WANT_V | WANT_HORIZONTAL, work.field, work.at)) ||
            failed(PANGRD({0, x, y, -STEP}, panels, lid, 0, WANT_GF3, work.field, work.below)))
            return Status::failed;
        for (const Flow &f : flows) {
            const f32 s = static_cast<f32>(SGN[f.type][m]);
            if (f.potential)
                result.STF1(J, f.d) += s * sum_of_sources(work.at, PG_V, result, f.d);
            // The gradient in the field point is minus that in the panel point.
            result.STF2(J, 1, f.d) -= s * sx * sum_of_sources(work.at, PG_GP1, result, f.d);
            result.STF2(J, 2, f.d) -= s * sy * sum_of_sources(work.at, PG_GP2, result, f.d);
            // The vertical velocity vanishes at the lid.
            result.STF3(J, f.d) -= s * sum_of_sources(work.below, PG_GF3, result, f.d) / STEP;
        }
    }
    return Status::ok;
}

} // namespace

Status WDDSTB(const RunState &run, const ThreadState &thread, SteadyFlow &flow) {
    for (int i = 1; i <= run.mesh.NEQN; ++i) {
        for (int d = 1; d <= 3; ++d) {
            flow.STB2(i, d) = thread.SRCR(i, d).real();
            for (int a = 1; a <= 3; ++a)
                flow.STB3(i, a, d) = thread.VELR(i, a, d).real();
        }
        flow.STB3(i, 1, 1) -= 1;
        flow.STB3(i, 2, 2) -= 1;
        flow.STB3(i, 1, 3) += run.mesh.XCT(2, i);
        flow.STB3(i, 2, 3) -= run.mesh.XCT(1, i);
    }
    FieldPanels panels;
    if (!panels.make(run.mesh, run.opt.IQUAD))
        return MSGOUT(" RAM too small ");
    const std::vector<Flow> flows = flows_of(run.sym);
    return for_field_points<LidWork>(
        run.bodies.NWLB(1), [&](LidWork &work) { return work.alloc(panels); },
        [&](int u, LidWork &work) { return waterline_potential(run, panels, flows, u, work, flow); });
}

Status WDDSTF(const RunState &run, SteadyFlow &flow) {
    FieldPanels panels;
    if (!panels.make(run.mesh, run.opt.IQUAD))
        return MSGOUT(" RAM too small ");
    const f32 STEP = DZSTEP(run.mesh.NEQN, run.mesh.PMOM);
    const std::vector<Flow> flows = flows_of(run.sym);
    return for_field_points<LidWork>(
        run.surface.NFSP, [&](LidWork &work) { return work.alloc(panels); },
        [&](int J, LidWork &work) { return surface_flow(run, panels, flows, STEP, J, work, flow); });
}
