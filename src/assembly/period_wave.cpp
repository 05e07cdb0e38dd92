#include "assembly/period_wave.hpp"

#include "state/messages.hpp"
#include "state/state.hpp"

#include <cmath>

PeriodWave frequency_variables(f32 W, f32 HBOT, f32 F) {
    PeriodWave wave;
    wave.W = W;
    wave.F = F;
    wave.IPLIM = limit_of(W);
    if (wave.IPLIM == 0) {
        wave.NU = W;
        wave.NUL = W;
        wave.LOGT = -std::log(W * W);
    }
    wave.HNU = wave.NU * HBOT;
    return wave;
}

Status depth_state(f32 W, f32 HBOT, GSTATE &state, f32 &F) {
    F = 1;
    if (!(HBOT > 0 && W > 0))
        return Status::ok;
    INIT_HGRN98_ARRAYS(state);
    return HGRN98(W * HBOT, F, state) > 0 ? MSGOUT("Error return in HGRN98: depth HBOT is illegal ")
                                          : Status::ok;
}
