#include "modes/beam.hpp"

#include <cmath>
#include <numbers>

namespace {

constexpr double PI = std::numbers::pi;

// The root of f in (low, high), where it changes its sign once.
template <class F> double root_between(double low, double high, F f) {
    const bool rises = f(high) > 0;
    for (int k = 0; k < 80; ++k) {
        const double middle = (low + high) / 2;
        ((f(middle) > 0) == rises ? high : low) = middle;
    }
    return (low + high) / 2;
}

// In halves about the middle, q = 2 s - 1: even or odd, without differences of large numbers.
BeamValue free_mode(double beta, double s) {
    const double k = beta / 2, q = 2 * s - 1, c = std::cos(k), si = std::sin(k);
    // cosh(k q) / cosh k and sinh(k q) / cosh k
    const double fore = std::exp(k * (q - 1)), aft = std::exp(-k * (q + 1)), both = 1 + std::exp(-2 * k);
    const double ch = (fore + aft) / both, sh = (fore - aft) / both, th = std::tanh(k);
    const bool even = std::fabs(si + c * th) < std::fabs(si - c * th); // of the frequency equations
    BeamValue v;
    if (even) {
        v.w = (std::cos(k * q) / c + ch) / 2;
        v.slope = k * (-std::sin(k * q) / c + sh);
        v.curvature = 2 * k * k * (-std::cos(k * q) / c + ch);
    } else {
        v.w = (std::sin(k * q) / si + sh / th) / 2;
        v.slope = k * (std::cos(k * q) / si + ch / th);
        v.curvature = 2 * k * k * (-std::sin(k * q) / si + sh / th);
    }
    return v;
}

// cosh - cos - sigma (sinh - sin) of beta s, over its value at the tip; the growing and the decaying
// exponential apart.
BeamValue held_mode(double beta, double s) {
    const double c = std::cos(beta), si = std::sin(beta), e = std::exp(-beta);
    const double below = (1 - e * e) / 2 + si * e; // (sinh + sin) e
    const double grows = (si - c - e) / below / 2; // (1 - sigma) e^beta / 2
    const double sigma = ((1 + e * e) / 2 + c * e) / below;
    const double up = grows * std::exp(beta * (s - 1)), down = (1 + sigma) / 2 * std::exp(-beta * s);
    const double tip = grows + (1 + sigma) / 2 * e - c + sigma * si;
    const double cs = std::cos(beta * s), ss = std::sin(beta * s);
    return {(up + down - cs + sigma * ss) / tip, beta * (up - down + ss + sigma * cs) / tip,
            beta * beta * (up + down + cs - sigma * ss) / tip};
}

// Beyond its ends a beam goes on straight.
BeamValue straight_on(const BeamValue &end, double along) {
    return {end.w + along * end.slope, end.slope, 0};
}

} // namespace

double bending_parameter(BeamEnds ends, int n) {
    if (ends == BeamEnds::clamped_free)
        return root_between((n - 1) * PI, n * PI,
                            [](double b) { return std::cos(b) + 2 * std::exp(-b) / (1 + std::exp(-2 * b)); });
    const bool even = n % 2 == 1;
    const double low = n * PI / 2;
    return 2 * root_between(low, low + PI / 2, [even](double k) {
               return std::sin(k) + (even ? 1 : -1) * std::cos(k) * std::tanh(k);
           });
}

BeamValue bending_mode(BeamEnds ends, double beta, double s) {
    const auto inside = [=](double t) {
        return ends == BeamEnds::free_free ? free_mode(beta, t) : held_mode(beta, t);
    };
    if (s < 0)
        return ends == BeamEnds::free_free ? straight_on(inside(0), s) : BeamValue{};
    return s > 1 ? straight_on(inside(1), s - 1) : inside(s);
}

double torsion_parameter(BeamEnds ends, int n) {
    return ends == BeamEnds::free_free ? n * PI : (n - 0.5) * PI;
}

BeamValue torsion_mode(BeamEnds ends, double beta, double s) {
    const double t = s < 0 ? 0 : s > 1 ? 1 : s;
    const bool within = t == s;
    if (ends == BeamEnds::free_free) {
        const double tip = std::cos(beta), c = std::cos(beta * t) / tip;
        return {c, within ? -beta * std::sin(beta * t) / tip : 0, within ? -beta * beta * c : 0};
    }
    const double tip = std::sin(beta), v = std::sin(beta * t) / tip;
    return {v, within ? beta * std::cos(beta * t) / tip : 0, within ? -beta * beta * v : 0};
}
