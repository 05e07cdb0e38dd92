// Impulse responses: what a simulation in the time domain takes from a hand-over file.
#pragma once

#include "post/forces.hpp"
#include "post/motions.hpp"

// K(t) of a pair of modes and what it gives back (W. E. Cummins 1962; T. F. Ogilvie 1964):
//   force(i) = -A_inf x''(j) - integral of K(t - s) x'(j)(s) ds,
//   K(t) = 2/pi integral of B cos(omega t),  A(omega) = A_inf - 1/omega integral of K sin(omega t).
struct RadiationResponse {
    int i = 0, j = 0;          // modes, i <= j
    std::vector<double> K;     // at the times
    double added_mass_run = 0; // at infinite frequency in the run; NaN when it has none
    double added_mass_B = 0;   // A_inf from A and K, the mean over the frequencies by weights omega
    double error_A = 0,
           error_B = 0; // largest, back from K, over the root of the largest values of both modes alone
};
// force(t) per elevation eta at the global origin: integral of f(s) eta(t - s) ds, f(t) = 1/pi Re integral of
// X exp(i omega t); it begins before t = 0, as the wave meets the body before it meets the origin.
struct ExcitingResponse {
    int mode = 0, heading = 0;
    std::vector<double> f; // at the times of both signs
    double error = 0;      // largest, back from f, over the largest X of the mode and heading
};
struct ImpulseResponses {
    std::vector<double> times;      // 0 to the length
    std::vector<double> both_times; // -length to length
    std::vector<RadiationResponse> radiation;
    std::vector<ExcitingResponse> exciting;
    std::vector<std::string> notes; // where frequencies or times are too coarse or too short
};

// Step and length of the times; 0: what the frequencies of the run allow.
struct ImpulseTimes {
    double step = 0, length = 0;
};
// Between frequencies B and X are splined, B from 0 at frequency 0, X from the force of the waterplane;
// behind the last frequency they follow the power of omega that the last ones fall with. All pairs of modes
// of which B is not round-off. X may be empty. False, with the reason in `error`, for a run of less than four
// frequencies.
[[nodiscard]] bool form_impulse(const P2fFile &p2f, const Scales &scales, const RadiationForces &R,
                                const Array<c64, 3> &X, const ImpulseTimes &wanted,
                                ImpulseResponses &responses, std::string &error);
