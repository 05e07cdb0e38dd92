#include "run/wdd_flows.hpp"

#include "assembly/wavegr.hpp"
#include "boundary/bvel.hpp"
#include "boundary/steady_flow.hpp"
#include "run/period_loop.hpp"
#include "solve/solve.hpp"
#include "state/messages.hpp"

namespace {

constexpr f32 LOW_WAVE_NUMBER = 1.0e-4f;

// The normal velocities of the three modes, in their columns.
void normal_velocities(const RunState &run, const ModeLists &modes, View<c32, 2> SRCR) {
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int k = 1; k <= modes.NMCLS[s]; ++k) {
            const int mode = modes.MODCLS(k, s);
            for (int i = 1; i <= run.mesh.NEQN; ++i)
                SRCR(i, modes.MODPOS(mode)) = run.mesh.VEL(mode, i);
        }
    }
}

} // namespace

Status allocate_flows(RunState &run) {
    SteadyFlow &flow = run.flow;
    const int n = run.mesh.NEQN, panels = run.surface.NFSP;
    const bool made = flow.STB1.alloc(n, 3) && flow.STB2.alloc(n, 3) && flow.STB3.alloc(n, 3, 3) &&
                      flow.STF1.alloc(panels, 2) && flow.STF2.alloc(panels, 2, 3) &&
                      flow.STF3.alloc(panels, 3);
    return made ? Status::ok : MSGOUT(" RAM too small ");
}

Status solve_flows(RunState &run, ScratchStore &scratch) {
    ThreadState thread;
    thread.scratch = &scratch;
    f32 F = 1; // of the depth state alone: the step itself has 1
    if (failed(allocate_solution(run, thread)) || failed(ALLOCATE_WA(run, thread, true)) ||
        failed(depth_state(LOW_WAVE_NUMBER, run.opt.HBOT, thread.gstate, F)) ||
        failed(WAVEGR(run, frequency_variables(LOW_WAVE_NUMBER, run.opt.HBOT, 1), thread)))
        return Status::failed;
    const ModeLists modes{run.sym.WMODC, run.sym.WMODM, run.sym.WMODP};
    normal_velocities(run, modes, thread.SRCR);
    SolveRequest request{0, -1};
    request.ISRC = 1;
    request.modes = &modes;
    int ITER[2];
    if (failed(SOLVE(run, request, thread.SRCR, thread.SRCD, thread, ITER)) ||
        failed(BVEL(run, modes, thread)) || failed(WDDSTB(run, thread, run.flow)))
        return Status::failed;
    return WDDSTF(run, run.flow);
}
