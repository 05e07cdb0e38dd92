// The wave of a period.
#pragma once

#include "green/gstate.hpp"

// What depends on the frequency of a period alone.
struct PeriodWave {
    f32 W = 0;     // WVN0: deep-water wave number, or the mark of a limit frequency
    f32 F = 1;     // depth factor WVNH / WVN0
    int IPLIM = 0; // 0 a wave, 1 zero frequency, 2 infinite frequency
    f32 NU = 1;    // scale of all lengths in the wave term
    f32 NUL = 0;   // factor of the logarithmic plane of the Rankine store
    f32 HNU = 0;   // depth argument of the Green function
    f32 LOGT = 0;  // -ln(NU^2): what the scaling of the logarithm leaves behind
};
PeriodWave frequency_variables(f32 W, f32 HBOT, f32 F);

// The depth state of the Green function for the deep-water wave number W, and the depth factor WVNH / WVN0 in
// F: 1 in deep water and at limit frequencies (W <= 0), where `state` stays as it is. Failed: the depth times
// W is outside 1e-5 to 1e5; the message is out.
[[nodiscard]] Status depth_state(f32 W, f32 HBOT, GSTATE &state, f32 &F);
