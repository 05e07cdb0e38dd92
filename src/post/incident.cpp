#include "post/incident.hpp"

#include <cmath>

DepthProfile depth_profile(const P2fFile &p2f, int t) {
    return {static_cast<double>(p2f.WVNH(t)), static_cast<double>(p2f.HBOT)};
}

// By exponentials of negative arguments, so that neither a deep bottom nor a short wave overflows.
double DepthProfile::value(double z) const {
    if (H <= 0)
        return std::exp(K * z);
    return std::exp(K * z) * (1 + std::exp(-2 * K * (z + H))) / (1 + std::exp(-2 * K * H));
}

double DepthProfile::slope(double z) const {
    if (H <= 0)
        return K * std::exp(K * z);
    return K * std::exp(K * z) * (1 - std::exp(-2 * K * (z + H))) / (1 + std::exp(-2 * K * H));
}

WaveAt incident_wave(const P2fFile &p2f, int t, int b, const double (&at)[3]) {
    const DepthProfile profile = depth_profile(p2f, t);
    const double F = profile.value(at[2]), Fz = profile.slope(at[2]);
    WaveAt wave{};
    int reflections = 0;
    for (const double sx : {1.0, -1.0})
        for (const double sy : {1.0, -1.0}) {
            if ((sx < 0 && p2f.ISX != -1) || (sy < 0 && p2f.ISY != -1))
                continue;
            const double kx = sx * profile.K * static_cast<double>(p2f.COSBET(b)),
                         ky = sy * profile.K * static_cast<double>(p2f.SINBET(b));
            const c64 e = std::polar(1.0, -(kx * at[0] + ky * at[1])), i(0, 1);
            wave.phi += F * e;
            wave.gradient[0] -= i * kx * F * e;
            wave.gradient[1] -= i * ky * F * e;
            wave.gradient[2] += Fz * e;
            ++reflections;
        }
    wave.phi /= reflections;
    for (c64 &component : wave.gradient)
        component /= reflections;
    return wave;
}
