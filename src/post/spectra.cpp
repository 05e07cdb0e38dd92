#include "post/spectra.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14159265358979323846;

// Integral by the trapezoidal rule of n steps.
template <class Function> double integral(double from, double to, int n, Function f) {
    const double h = (to - from) / n;
    double sum = (f(from) + f(to)) / 2;
    for (int k = 1; k < n; ++k)
        sum += f(from + k * h);
    return sum * h;
}

// Frequencies with waves, rising, and their periods.
std::vector<int> waves_of(const P2fFile &p2f) {
    std::vector<int> order;
    for (const int t : by_frequency(p2f))
        if (frequency_kind(p2f, t) == Frequency::wave)
            order.push_back(t);
    return order;
}

constexpr int STEPS = 64; // between two frequencies of the run, for the shape of the spectrum

} // namespace

WaveSpectrum::WaveSpectrum(const CaseSpectrum &from) : from_(from) {
    if (from_.type == "table") {
        for (std::size_t k = 1; k < from_.values.size(); ++k)
            variance_ += (from_.values[k].first - from_.values[k - 1].first) *
                         (from_.values[k].second + from_.values[k - 1].second) / 2;
        return;
    }
    // Behind u = 8 peak frequencies the shape is u^-5.
    constexpr double END = 8;
    const double peak = 2 * PI / from_.period;
    const double whole = integral(0, END * peak, 8000, [this](double w) { return shape(w); }) +
                         shape(END * peak) * END * peak / 4;
    variance_ = from_.height * from_.height / 16;
    factor_ = variance_ / whole;
}

double WaveSpectrum::shape(double omega) const {
    if (omega <= 0)
        return 0;
    constexpr double WIDTH_BELOW = 0.07, WIDTH_ABOVE = 0.09;
    const double u = omega * from_.period / (2 * PI), width = u < 1 ? WIDTH_BELOW : WIDTH_ABOVE;
    return std::pow(u, -5) * std::exp(-1.25 * std::pow(u, -4)) *
           std::pow(from_.gamma, std::exp(-(u - 1) * (u - 1) / (2 * width * width)));
}

double WaveSpectrum::density(double omega) const {
    if (from_.type != "table")
        return factor_ * shape(omega);
    const auto above = std::lower_bound(from_.values.begin(), from_.values.end(), omega,
                                        [](const auto &value, double w) { return value.first < w; });
    if (above == from_.values.end())
        return 0;
    if (above == from_.values.begin())
        return above->first == omega ? above->second : 0;
    const auto &[w1, s1] = *(above - 1);
    return s1 + (above->second - s1) * (omega - w1) / (above->first - w1);
}

std::vector<double> heading_shares(const P2fFile &p2f, const CaseSpectrum &spectrum) {
    constexpr double WIDEST = 45.0001; // degrees between headings that a response is linear in
    std::vector<double> shares(static_cast<std::size_t>(p2f.NBETA));
    struct Direction {
        double angle; // 0 to 360
        std::size_t heading;
    };
    std::vector<Direction> all;
    const auto turned = [](double angle) { return angle - 360 * std::floor(angle / 360); };
    for (int b = 1; b <= p2f.NBETA; ++b)
        all.push_back({turned(static_cast<double>(p2f.BETA(b))), static_cast<std::size_t>(b - 1)});
    std::sort(all.begin(), all.end(),
              [](const Direction &a, const Direction &b) { return a.angle < b.angle; });
    // Gives energy at an angle to the headings beside it.
    const auto give = [&](double angle, double energy) {
        angle = turned(angle);
        const auto next = std::lower_bound(all.begin(), all.end(), angle - 1e-4,
                                           [](const Direction &d, double a) { return d.angle < a; });
        const Direction &above = next == all.end() ? all.front() : *next,
                        &below = next == all.begin() ? all.back() : *(next - 1);
        const double up = turned(above.angle - angle + 1e-4) - 1e-4, down = turned(angle - below.angle);
        if (std::abs(up) < 2e-4)
            shares[above.heading] += energy;
        else if (up + down <= WIDEST) {
            shares[above.heading] += energy * down / (up + down);
            shares[below.heading] += energy * up / (up + down);
        }
    };
    if (spectrum.spreading <= 0) {
        give(spectrum.heading, 1);
        return shares;
    }
    constexpr int ANGLES = 3600;
    const auto spread = [&](int k) {
        return std::pow(std::abs(std::cos(PI * k / ANGLES)), 2 * spectrum.spreading);
    };
    double whole = 0;
    for (int k = 0; k < ANGLES; ++k)
        whole += spread(k);
    for (int k = 0; k < ANGLES; ++k)
        give(spectrum.heading + 360.0 * k / ANGLES, spread(k) / whole);
    return shares;
}

std::array<double, 4> response_moments(const P2fFile &p2f, const WaveSpectrum &spectrum,
                                       const std::vector<double> &shares,
                                       const std::function<double(int heading, int period)> &square) {
    std::array<double, 4> moments{};
    const std::vector<int> order = waves_of(p2f);
    std::vector<double> mean; // over the headings, of each frequency
    for (const int t : order) {
        mean.push_back(0);
        for (int b = 1; b <= p2f.NBETA; ++b)
            if (const double share = shares[static_cast<std::size_t>(b - 1)]; share > 0)
                mean.back() += share * square(b, t);
    }
    for (std::size_t k = 0; k + 1 < order.size(); ++k) {
        const double w1 = omega_of(p2f, order[k]), w2 = omega_of(p2f, order[k + 1]);
        for (std::size_t power = 0; power < 4; ++power)
            moments[power] += integral(w1, w2, STEPS, [&](double w) {
                const double h = w2 > w1 ? mean[k] + (mean[k + 1] - mean[k]) * (w - w1) / (w2 - w1) : 0;
                return std::pow(w, 2.0 * static_cast<double>(power)) * h * spectrum.density(w);
            });
    }
    return moments;
}

SeaStatistics sea_statistics(double m0, double m2, double hours) {
    if (!(m0 > 0 && m2 > 0))
        return {};
    const double period = 2 * PI * std::sqrt(m0 / m2);
    const double crossings = std::max(hours * 3600 / period, 1.0);
    return {2 * std::sqrt(m0), period, std::sqrt(2 * m0 * std::log(crossings))};
}

double frequencies_covered(const P2fFile &p2f, const WaveSpectrum &spectrum) {
    const std::vector<int> order = waves_of(p2f);
    double inside = 0;
    for (std::size_t k = 0; k + 1 < order.size(); ++k)
        inside += integral(omega_of(p2f, order[k]), omega_of(p2f, order[k + 1]), STEPS,
                           [&](double w) { return spectrum.density(w); });
    return spectrum.variance() > 0 ? inside / spectrum.variance() : 0;
}
