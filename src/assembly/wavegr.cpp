#include "assembly/wavegr.hpp"

#include "assembly/period_rows.hpp"
#include "state/messages.hpp"

Status WAVEGR(const RunState &run, const PeriodWave &wave, ThreadState &thread) {
    PanelArrays panels;
    SourceWeights weights;
    HeightFactors heights;
    if (!panels.make(run) || !weights.make(run, wave.NUL, thread) ||
        !make_heights(run, wave, panels, thread.gstate, heights))
        return MSGOUT(" RAM too small to allocate WAVEGR arrays ");
    if (failed(start_right_hand_sides(run, wave.NUL, thread)))
        return Status::failed;
    if (run.dipoles.IDIPOL)
        add_dipole_rows(run, thread);
    const AssemblyFrame frame{run, wave, panels, weights, thread.gstate, heights};
    if (failed(run.memory.INCORE ? rows_in_core(frame, thread) : rows_on_scratch(frame, thread)))
        return Status::failed;
    if (run.dipoles.IDIPOL && wave.IPLIM == 2)
        clear_open_plates(run, thread);
    return Status::ok;
}
