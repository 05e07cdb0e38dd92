#include "post/names.hpp"

#include <limits>

namespace {

constexpr double TWO_PI = 6.283185307179586;
constexpr double INF = std::numeric_limits<double>::infinity();

} // namespace

BodyMode body_mode(const P2fFile &p2f, int mode) {
    int first = 0;
    for (int b = 1; b <= p2f.NBODY; ++b) {
        const int modes = 6 + p2f.NEWMDS(b);
        if (mode <= first + modes)
            return {b, mode - first};
        first += modes;
    }
    return {};
}

std::string mode_name(const BodyMode &mode) {
    constexpr const char *RIGID[] = {"surge", "sway", "heave", "roll", "pitch", "yaw"};
    return mode.number >= 1 && mode.number <= 6 ? RIGID[mode.number - 1]
                                                : "mode " + std::to_string(mode.number);
}

bool is_rotation(const P2fFile &p2f, int mode) {
    const int number = body_mode(p2f, mode).number;
    return number >= 4 && number <= 6;
}

Frequency frequency_kind(const P2fFile &p2f, int period) {
    // At a limit the solver leaves what was typed, 0 or a negative number, in the place of the wave number;
    // waves longer than 2 pi 1e6 lengths count as infinite frequency.
    constexpr f32 LIMIT = 1.0e-6f;
    const f32 k = p2f.WVNH(period);
    return k > LIMIT ? Frequency::wave : k < -LIMIT ? Frequency::zero : Frequency::infinite;
}

double period_of(const P2fFile &p2f, int period) {
    const Frequency kind = frequency_kind(p2f, period);
    return kind == Frequency::wave ? static_cast<double>(p2f.PER(period)) : kind == Frequency::zero ? INF : 0;
}

double omega_of(const P2fFile &p2f, int period) {
    const Frequency kind = frequency_kind(p2f, period);
    return kind == Frequency::wave   ? TWO_PI / static_cast<double>(p2f.PER(period))
           : kind == Frequency::zero ? 0
                                     : INF;
}

double wave_number_of(const P2fFile &p2f, int period) {
    const Frequency kind = frequency_kind(p2f, period);
    return kind == Frequency::wave   ? static_cast<double>(p2f.WVNH(period))
           : kind == Frequency::zero ? 0
                                     : INF;
}

UnitNames unit_names(double gravity) {
    if (gravity > 9.7 && gravity < 9.9)
        return {"m", "kg", "N"};
    if (gravity > 32 && gravity < 32.4)
        return {"ft", "slug", "lbf"};
    return {"L", "M", "F"};
}

Scales scales_of(const P2fFile &p2f, double density) {
    const double gravity = static_cast<double>(p2f.GRAV);
    return {density, gravity, static_cast<double>(p2f.ULEN(1)), unit_names(gravity)};
}
