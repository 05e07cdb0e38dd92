#include "post/impulse.hpp"

#include "post/spline.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr double ROUND_OFF =
    1e-3; // of the dampings of the two modes, of the forces of a kind: nothing to speak of

// A function of frequency with its continuation.
struct Curve {
    std::vector<double> omega;
    std::vector<c64> value;
};

// Continues a curve by its asymptote, a omega^-3 + b omega^-5 (that of a wall-sided body; J. N. Newman,
// Marine hydrodynamics, 1977, for the wave maker), fitted to the last values, the phase as it turns with
// omega^2, until nothing is left.
void add_tail(Curve &curve) {
    constexpr std::size_t FITTED = 8;
    constexpr double STEP = 1.04, END = 40; // ratios of frequencies
    const std::size_t n = curve.omega.size(), first = n - std::min(n - 1, FITTED);
    const double last = curve.omega[n - 1], before = curve.omega[n - 2];
    const c64 ratio_of_last = curve.value[n - 2] == 0.0 ? 1.0 : curve.value[n - 1] / curve.value[n - 2];
    const bool real =
        std::all_of(curve.value.begin(), curve.value.end(), [](c64 v) { return v.imag() == 0; });
    const double turn = real ? 0 : std::arg(ratio_of_last) / (last * last - before * before);
    const auto phase = [&](double w) { return std::polar(1.0, turn * (w * w - last * last)); };
    // Least squares in u = (omega/last)^-2 of value (omega/last)^3 = a + b u, the phase turned back.
    double u1 = 0, u2 = 0, count = 0;
    c64 v0 = 0, v1 = 0;
    for (std::size_t k = first; k < n; ++k) {
        const double w = curve.omega[k], r = w / last, u = 1 / (r * r);
        const c64 v = curve.value[k] * r * r * r / phase(w);
        count += 1;
        u1 += u;
        u2 += u * u;
        v0 += v;
        v1 += u * v;
    }
    const double det = count * u2 - u1 * u1;
    const c64 b = (count * v1 - u1 * v0) / det, a = (v0 - b * u1) / count;
    // What oscillates, as between bodies, has no such tail: it fades at once.
    constexpr double POOR = 0.1;
    double residual = 0, size = 0;
    for (std::size_t k = first; k < n; ++k) {
        const double w = curve.omega[k], r = w / last;
        const c64 fit = (a + b / (r * r)) / (r * r * r) * phase(w);
        residual += std::norm(curve.value[k] - fit);
        size += std::norm(curve.value[k]);
    }
    if (residual > POOR * POOR * size) {
        curve.omega.push_back(2 * last - before);
        curve.value.push_back(0);
        return;
    }
    const c64 rest = curve.value[n - 1] - a - b; // of the fit at the last frequency
    double r = 1;
    while ((r *= STEP) < END) {
        curve.omega.push_back(last * r);
        curve.value.push_back((a / (r * r * r) + (b + rest) / std::pow(r, 5)) * phase(last * r));
    }
    curve.omega.push_back(last * END);
    curve.value.push_back(0);
}

CubicSpline spline_of(const Curve &curve, bool imaginary, bool level) {
    std::vector<double> y;
    for (const c64 v : curve.value)
        y.push_back(imaginary ? v.imag() : v.real());
    return {curve.omega, y, level};
}

struct Run {
    std::vector<int> periods; // with waves, by rising frequency
    std::vector<double> omega;
    int infinite = 0; // period of that limit, or 0
};

Run frequencies_of(const P2fFile &p2f) {
    Run run;
    for (const int t : by_frequency(p2f)) {
        const double w = omega_of(p2f, t);
        if (std::isinf(w))
            run.infinite = t;
        else if (w > 0 && (run.omega.empty() || w > run.omega.back())) {
            run.periods.push_back(t);
            run.omega.push_back(w);
        }
    }
    return run;
}

// Largest value of a coefficient over the frequencies.
double most(const Run &run, const Array<double, 3> &values, int i, int j) {
    double value = 0;
    for (const int t : run.periods)
        value = std::max(value, std::abs(values(i, j, t)));
    return value;
}
// Of a pair, by the two modes alone.
double size_of(const Run &run, const Array<double, 3> &values, int i, int j) {
    return std::sqrt(most(run, values, i, i) * most(run, values, j, j));
}

RadiationResponse radiation_of(const Run &run, const RadiationForces &R, int i, int j,
                               const std::vector<double> &times) {
    RadiationResponse r{i, j, {}, std::numeric_limits<double>::quiet_NaN(), 0, 0, 0};
    Curve B{{0}, {0}};
    for (std::size_t k = 0; k < run.omega.size(); ++k) {
        B.omega.push_back(run.omega[k]);
        B.value.push_back(R.B(i, j, run.periods[k]));
    }
    add_tail(B);
    const CubicSpline damping = spline_of(B, false, true);
    for (const double t : times)
        r.K.push_back(2 / PI * damping.transform(t).real());
    const CubicSpline kernel(times, r.K, true);
    std::vector<c64> back;
    double weights = 0;
    const double largest_A = size_of(run, R.A, i, j), largest_B = size_of(run, R.B, i, j);
    for (std::size_t k = 0; k < run.omega.size(); ++k) {
        const double w = run.omega[k], A = R.A(i, j, run.periods[k]);
        back.push_back(kernel.transform(w));
        r.added_mass_B += w * (A + back.back().imag() / w);
        weights += w;
    }
    r.added_mass_B /= weights;
    if (run.infinite > 0)
        r.added_mass_run = R.A(i, j, run.infinite);
    const double limit = run.infinite > 0 ? r.added_mass_run : r.added_mass_B;
    for (std::size_t k = 0; k < run.omega.size(); ++k) {
        const double A = limit - back[k].imag() / run.omega[k];
        r.error_A = std::max(r.error_A, std::abs(A - R.A(i, j, run.periods[k])) / largest_A);
        r.error_B = std::max(r.error_B, std::abs(back[k].real() - R.B(i, j, run.periods[k])) / largest_B);
    }
    return r;
}

ExcitingResponse exciting_of(const Run &run, const Array<c64, 3> &X, double level, int mode, int heading,
                             const std::vector<double> &times) {
    ExcitingResponse r{mode, heading, {}, 0};
    Curve force{{0}, {level}};
    double largest = 0;
    for (std::size_t k = 0; k < run.omega.size(); ++k) {
        force.omega.push_back(run.omega[k]);
        force.value.push_back(X(mode, heading, run.periods[k]));
        largest = std::max(largest, std::abs(force.value.back()));
    }
    add_tail(force);
    const CubicSpline real = spline_of(force, false, true), imaginary = spline_of(force, true, false);
    for (const double t : times)
        r.f.push_back((real.transform(t).real() - imaginary.transform(t).imag()) / PI);
    const CubicSpline kernel(times, r.f, false);
    for (std::size_t k = 0; k < run.omega.size(); ++k)
        r.error = std::max(r.error, std::abs(kernel.transform(-run.omega[k]) - force.value[k + 1]) / largest);
    return r;
}

std::vector<double> times_of(double from, double to, double step) {
    std::vector<double> times;
    const int n = std::max(2, static_cast<int>(std::lround((to - from) / step)));
    for (int k = 0; k <= n; ++k)
        times.push_back(from + (to - from) * k / n);
    return times;
}

std::string seconds(double t) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g s", t);
    return text;
}

// Tells where the results cannot be relied on.
void judge(const Run &run, const P2fFile &p2f, const ImpulseTimes &used, ImpulseResponses &r) {
    constexpr double SMALL = 0.01; // of the largest value
    double gap = run.omega[0];
    for (std::size_t k = 1; k < run.omega.size(); ++k)
        gap = std::max(gap, run.omega[k] - run.omega[k - 1]);
    if (used.length > 1.001 * PI / gap)
        r.notes.push_back("WARNING: frequencies " + std::to_string(gap) +
                          " rad/s apart tell nothing of times beyond " + seconds(PI / gap) +
                          ": give a closer step or a shorter length.");
    if (used.step > 1.001 * PI / run.omega.back())
        r.notes.push_back("WARNING: a step of " + seconds(used.step) +
                          " is too long for the highest frequency: " + seconds(PI / run.omega.back()) +
                          " at most.");
    const auto outlasts = [&](const std::vector<double> &values) {
        double all = 0, end = 0;
        for (std::size_t k = 0; k < values.size(); ++k) {
            all = std::max(all, std::abs(values[k]));
            if (10 * k >= 9 * values.size())
                end = std::max(end, std::abs(values[k]));
        }
        return end > SMALL * all;
    };
    std::string late, high;
    for (const RadiationResponse &pair : r.radiation) {
        const std::string name = " (" + full_mode_name(p2f, pair.i) +
                                 (pair.i == pair.j ? "" : " by " + full_mode_name(p2f, pair.j)) + ")";
        late += outlasts(pair.K) ? name : "";
        high += pair.error_B > SMALL || pair.error_A > SMALL ? name : "";
    }
    if (!late.empty())
        r.notes.push_back("WARNING: K has not died out at the end of the times:" + late + ".");
    if (!high.empty())
        r.notes.push_back(
            "WARNING: A and B do not come back within 1 % of their largest value; more or higher "
            "frequencies, or longer times:" +
            high + ".");
}

} // namespace

bool form_impulse(const P2fFile &p2f, const Scales &scales, const RadiationForces &R, const Array<c64, 3> &X,
                  const ImpulseTimes &wanted, ImpulseResponses &r, std::string &error) {
    const Run run = frequencies_of(p2f);
    if (run.omega.size() < 4) {
        error = "the run has " + std::to_string(run.omega.size()) +
                " frequencies with waves: impulse responses need many, such as 60 in even steps of frequency";
        return false;
    }
    double gap = run.omega[0];
    for (std::size_t k = 1; k < run.omega.size(); ++k)
        gap = std::max(gap, run.omega[k] - run.omega[k - 1]);
    ImpulseTimes used = wanted;
    if (used.length <= 0)
        used.length = PI / gap;
    if (used.step <= 0)
        used.step = std::min(PI / run.omega.back() / 4, used.length / 20);
    if (used.length / used.step > 1e6) {
        error = "more than a million steps of time";
        return false;
    }
    r = {};
    r.times = times_of(0, used.length, used.step);
    r.both_times = times_of(-used.length, used.length, used.step);
    const std::vector<int> solved = solved_modes(p2f);
    // A mode that sends out no waves, as yaw of a body of revolution, has nothing but round-off.
    constexpr double NO_WAVES = 1e-6;
    double largest = 0;
    const auto waves = [&](int m) {
        return most(run, R.B, m, m) * (is_rotation(p2f, m) ? std::pow(scales.length, -2) : 1);
    };
    for (const int m : solved)
        largest = std::max(largest, waves(m));
    for (const int i : solved)
        for (const int j : solved)
            if (j >= i && waves(i) > NO_WAVES * largest && waves(j) > NO_WAVES * largest &&
                most(run, R.B, i, j) > ROUND_OFF * size_of(run, R.B, i, j))
                r.radiation.push_back(radiation_of(run, R, i, j, r.times));
    if (!X.empty()) {
        const std::vector<double> level = level_forces(p2f, scales);
        double size[2] = {};
        const auto force = [&](int m, int b) {
            double value = 0;
            for (const int t : run.periods)
                value = std::max(value, std::abs(X(m, b, t)));
            return value;
        };
        for (const int m : solved)
            for (int b = 1; b <= p2f.NBETA; ++b)
                size[is_rotation(p2f, m) ? 1 : 0] = std::max(size[is_rotation(p2f, m) ? 1 : 0], force(m, b));
        for (const int m : solved)
            for (int b = 1; b <= p2f.NBETA; ++b)
                if (force(m, b) > ROUND_OFF * size[is_rotation(p2f, m) ? 1 : 0])
                    r.exciting.push_back(
                        exciting_of(run, X, level[static_cast<std::size_t>(m - 1)], m, b, r.both_times));
    }
    judge(run, p2f, used, r);
    return true;
}
