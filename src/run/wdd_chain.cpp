#include "run/wdd_chain.hpp"

#include "boundary/bvel.hpp"
#include "boundary/source_rhs.hpp"
#include "boundary/wdd_sums.hpp"
#include "solve/solve.hpp"

namespace {

// The matrix of the potentials or of the sources through the solves of a period: the first one prepares it,
// the last one lets it go.
class Chain {
  public:
    Chain(const RunState &run, ThreadState &thread, int ISRC, int (&ITER)[2])
        : run_(run), thread_(thread), ISRC_(ISRC), ITER_(ITER) {}

    Status solve(Array<c32, 2> &radiation, Array<c32, 3> &diffraction, const ModeLists *modes = nullptr) {
        return solve({run_.opt.IRAD, run_.opt.IDIFF}, radiation, diffraction, modes);
    }
    // A second set of diffraction, if there is one.
    Status solve(Array<c32, 3> &diffraction) {
        return run_.opt.IDIFF == 1 ? solve({-1, 1}, thread_.PHIR, diffraction, nullptr) : Status::ok;
    }
    void last_one_comes() { last_ = true; }

  private:
    Status solve(SolveRequest request, View<c32, 2> radiation, View<c32, 3> diffraction,
                 const ModeLists *modes) {
        request.FACT = prepared_ ? 0 : 1;
        request.KEEP = last_ ? 0 : 1;
        request.ISRC = ISRC_;
        request.modes = modes;
        prepared_ = true;
        return SOLVE(run_, request, radiation, diffraction, thread_, ITER_);
    }

    const RunState &run_;
    ThreadState &thread_;
    int ISRC_;
    int (&ITER_)[2];
    bool prepared_ = false;
    bool last_ = false;
};

Status solve_sources(const RunState &run, const PeriodWave &wave, ThreadState &thread, int (&ITER)[2]) {
    SRCRHS(run, wave, thread.SRCR, thread);
    Chain sources(run, thread, 1, ITER);
    if (run.opt.IDIFF != 1)
        sources.last_one_comes();
    if (failed(sources.solve(thread.SRCR, thread.SRCD)))
        return Status::failed;
    sources.last_one_comes();
    return sources.solve(thread.second.SRCD2);
}

} // namespace

Status solve_second_order(const RunState &run, const PeriodWave &wave, ThreadState &thread,
                          PeriodCounts &counts) {
    const Symmetry &sym = run.sym;
    SecondOrder &second = thread.second;
    Chain potentials(run, thread, 0, counts.potentials);
    if (failed(potentials.solve(thread.PHIR, thread.PHID)) || failed(potentials.solve(second.PHID2)) ||
        failed(solve_sources(run, wave, thread, counts.sources)) || failed(BVELWD(run, thread)) ||
        failed(WDDFS(run, wave, thread)) || failed(WDDRHS(run, wave, thread)))
        return Status::failed;
    const ModeLists surge{sym.NMCLS1, sym.MODCLS1, sym.MODPOS};
    const ModeLists sway{sym.NMCLS2, sym.MODCLS2, sym.MODPOS};
    const ModeLists yaw{sym.NMCLS3, sym.MODCLS3, sym.MODPOS};
    if (failed(potentials.solve(second.W2R0, second.W2D0)) || failed(potentials.solve(second.W2D0B)) ||
        failed(potentials.solve(second.W2R1, second.W2D1, &surge)) ||
        failed(potentials.solve(second.W2R2, second.W2D2, &sway)))
        return Status::failed;
    potentials.last_one_comes();
    return potentials.solve(second.W2R3, second.W2D3, &yaw);
}
