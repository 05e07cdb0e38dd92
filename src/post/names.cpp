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

bool dimensional_scales(const P2fFile &p2f, double density, Scales &scales, std::string &error) {
    constexpr double SEA_WATER = 1025;                                    // kg/m^3
    constexpr double SLUG_FT3 = 14.59390294 / (0.3048 * 0.3048 * 0.3048); // kg/m^3
    scales = scales_of(p2f, density);
    if (density > 0)
        return true;
    if (scales.names.length == "L") {
        error =
            "gravity is neither in m/s^2 nor in ft/s^2: give the density of the water in the units of the "
            "run";
        return false;
    }
    scales.density = scales.names.length == "ft" ? SEA_WATER / SLUG_FT3 : SEA_WATER;
    return true;
}

std::vector<int> solved_modes(const P2fFile &p2f) {
    std::vector<int> modes;
    for (int m = 1; m <= p2f.NMODES; ++m)
        if (p2f.MODPOS(m) > 0)
            modes.push_back(m);
    return modes;
}
