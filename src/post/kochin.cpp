#include "post/kochin.hpp"

#include "post/incident.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double PI = std::numbers::pi;

double d(f32 value) {
    return static_cast<double>(value);
}

// A quadrature point of a panel: place, weight, what the wave does with depth there.
struct Point {
    double x, y, w, F, Fz;
    int panel;
};

std::vector<Point> quadrature(const P2fFile &p2f, int t) {
    const DepthProfile profile = depth_profile(p2f, t);
    std::vector<Point> points;
    for (int J = 1; J <= p2f.NEQN; ++J) {
        const auto add = [&](double x, double y, double z, double w) {
            points.push_back({x, y, w, profile.value(z), profile.slope(z), J});
        };
        if (p2f.IQUAD == 1)
            for (int k = 1; k <= 4; ++k)
                add(d(p2f.XGP(k, 1, J)), d(p2f.XGP(k, 2, J)), d(p2f.XGP(k, 3, J)), d(p2f.GJAC(k, J)));
        else
            add(d(p2f.XCT(1, J)), d(p2f.XCT(2, J)), d(p2f.XCT(3, J)), d(p2f.PMOM(1, J)));
    }
    return points;
}

// Integrals of W and dW/dn over each panel, with the signs of each class summed over the images, and their
// derivatives by the angle: (4,NEQN,NSYMR).
enum { W_, WN, DW, DWN };
using ClassIntegrals = Array<c64, 3>;

void integrate(const P2fFile &p2f, int t, double theta, const std::vector<Point> &points,
               const std::vector<Image> &images, ClassIntegrals &sum) {
    const double K = d(p2f.WVNH(t)), c = std::cos(theta), s = std::sin(theta);
    const c64 i(0, 1);
    std::fill_n(sum.data(), sum.size(), c64(0));
    for (const Image &image : images)
        for (const Point &p : points) {
            const double x = image.sx * p.x, y = image.sy * p.y;
            const double n1 = image.sx * d(p2f.TRM(3, 1, p.panel)), n2 = image.sy * d(p2f.TRM(3, 2, p.panel)),
                         n3 = d(p2f.TRM(3, 3, p.panel));
            const c64 e = p.w * std::polar(1.0, K * (x * c + y * s));
            const c64 turn = i * (K * (y * c - x * s)); // derivative of the exponent
            const c64 along = i * (K * (n1 * c + n2 * s)) * p.F + n3 * p.Fz;
            const c64 values[4] = {e * p.F, e * along, turn * e * p.F,
                                   e * (turn * along + i * (K * (n2 * c - n1 * s)) * p.F)};
            for (int k = 1; k <= p2f.NSYMR; ++k)
                for (int v = 0; v < 4; ++v)
                    sum(v + 1, p.panel, k) += parity(p2f.ICLS[k], image) * values[v];
        }
}

struct ValueAndSlope {
    c64 value = 0, slope = 0;
};

// One angle of all functions.
class Angle {
  public:
    Angle(const P2fFile &p2f, const PanelKinds &kinds, int t, const ClassIntegrals &sum)
        : p(p2f), is(kinds), t_(t), I(sum) {}

    ValueAndSlope motion_of_potentials(int mode, int s) const {
        ValueAndSlope H;
        for (int J = 1; J <= p.NEQN; ++J) {
            if (!is.hull(J))
                continue;
            const double vn = is.plate(J) ? 0 : d(p.VEL(mode, J));
            const c64 phi(p.PHIR(J, p.MODPOS(mode), t_));
            H.value += vn * I(W_ + 1, J, s) - phi * I(WN + 1, J, s);
            H.slope += vn * I(DW + 1, J, s) - phi * I(DWN + 1, J, s);
        }
        return H;
    }
    void add_scatter_of_potentials(int b, int s, ValueAndSlope &H) const {
        for (int J = 1; J <= p.NEQN; ++J) {
            if (!is.hull(J))
                continue;
            const c64 phi(p.PHID(J, b, s, t_));
            H.value -= phi * I(WN + 1, J, s);
            H.slope -= phi * I(DWN + 1, J, s);
        }
    }
    // The unknown of a plate is a jump over -4 pi.
    void add_sources(const c32 *source, int s, ValueAndSlope &H) const {
        for (int J = 1; J <= p.NEQN; ++J) {
            const bool plate = is.plate(J);
            const c64 q = 4 * PI * c64(source[J - 1]);
            H.value += q * I(plate ? WN + 1 : W_ + 1, J, s);
            H.slope += q * I(plate ? DWN + 1 : DW + 1, J, s);
        }
    }

  private:
    const P2fFile &p;
    const PanelKinds &is;
    int t_;
    const ClassIntegrals &I;
};

} // namespace

double far_field_factor(const P2fFile &p2f, int t) {
    const double K = d(p2f.WVNH(t)), nu = deep_wave_number(p2f, t);
    const double H = std::max(d(p2f.HBOT), 0.0);
    return K * K / (nu + (K * K - nu * nu) * H);
}

std::vector<double> kochin_angles(const P2fFile &p2f, int t) {
    double reach2 = 0;
    for (int J = 1; J <= p2f.NEQN; ++J)
        reach2 = std::max(reach2, d(p2f.XCT(1, J)) * d(p2f.XCT(1, J)) + d(p2f.XCT(2, J)) * d(p2f.XCT(2, J)));
    // exp(i K x cos theta) has harmonics up to K R and a few more; a product of two has twice as many.
    const int n = 4 * static_cast<int>(std::ceil(d(p2f.WVNH(t)) * std::sqrt(reach2))) + 60;
    std::vector<double> theta(static_cast<std::size_t>(n));
    for (std::size_t k = 0; k < theta.size(); ++k)
        theta[k] = 2 * PI * static_cast<double>(k) / n;
    return theta;
}

bool form_kochin(const P2fFile &p2f, int t, const std::vector<double> &theta, FarFieldOf from, Kochin &kochin,
                 std::string &error) {
    if (!has_waves(p2f, t)) {
        error = "period " + std::to_string(t) + " is a limit frequency, which has no waves";
        return false;
    }
    if (from == FarFieldOf::sources && p2f.ISOR != 1) {
        error = "the file has no sources: set ISOR=1 in the run";
        return false;
    }
    if (from == FarFieldOf::potentials && PanelKinds(p2f).lid_body) {
        error = "a lid body (BDTYP=3) is part of the far field: set ISOR=1 in the run for the sources";
        return false;
    }
    const int n = static_cast<int>(theta.size());
    kochin.theta = theta;
    bool memory = kochin.motion.alloc(n, p2f.NMODES) && kochin.dmotion.alloc(n, p2f.NMODES) &&
                  kochin.scatter.alloc(n, p2f.NBETA) && kochin.dscatter.alloc(n, p2f.NBETA);
    const std::vector<Point> points = quadrature(p2f, t);
    const std::vector<Image> images = images_of(p2f);
    const PanelKinds kinds(p2f);
#pragma omp parallel
    {
        ClassIntegrals sum;
        const bool made = sum.alloc(4, p2f.NEQN, p2f.NSYMR);
#pragma omp critical(kochin_memory)
        memory = memory && made;
#pragma omp barrier
#pragma omp for schedule(dynamic, 1)
        for (int k = 1; k <= n; ++k) {
            if (!memory)
                continue;
            integrate(p2f, t, theta[static_cast<std::size_t>(k - 1)], points, images, sum);
            const Angle angle(p2f, kinds, t, sum);
            for (int s = 1; s <= p2f.NSYMR; ++s) {
                for (int m = 1; p2f.IRAD >= 0 && m <= p2f.NMCLS[s]; ++m) {
                    const int mode = p2f.MODCLS(m, s);
                    ValueAndSlope H;
                    if (from == FarFieldOf::sources)
                        angle.add_sources(&p2f.SRCR(1, p2f.MODPOS(mode), t), s, H);
                    else
                        H = angle.motion_of_potentials(mode, s);
                    kochin.motion(k, mode) = H.value;
                    kochin.dmotion(k, mode) = H.slope;
                }
                for (int b = 1; p2f.IDIFF >= 0 && b <= p2f.NBETA; ++b) {
                    ValueAndSlope H{kochin.scatter(k, b), kochin.dscatter(k, b)};
                    if (from == FarFieldOf::sources)
                        angle.add_sources(&p2f.SRCD(1, b, s, t), s, H);
                    else
                        angle.add_scatter_of_potentials(b, s, H);
                    kochin.scatter(k, b) = H.value;
                    kochin.dscatter(k, b) = H.slope;
                }
            }
        }
    }
    if (!memory)
        error = "not enough memory";
    return memory;
}

bool far_field_damping(const P2fFile &p2f, int t, const Kochin &kochin, Array<double, 2> &B) {
    if (!B.alloc(p2f.NMODES, p2f.NMODES))
        return false;
    const int n = static_cast<int>(kochin.theta.size());
    int walls = 1; // the waves of a body beside a wall fill a half or a quarter of the circle
    for (const Image &image : images_of(p2f))
        walls = std::max(walls, image.body ? 1 : (p2f.ISX == -1 ? 2 : 1) * (p2f.ISY == -1 ? 2 : 1));
    const double factor = far_field_factor(p2f, t) / (4 * PI) * (2 * PI / n) / walls;
    for (int i = 1; i <= p2f.NMODES; ++i)
        for (int j = 1; j <= p2f.NMODES; ++j) {
            c64 sum = 0;
            for (int k = 1; k <= n; ++k)
                sum += kochin.motion(k, i) * std::conj(kochin.motion(k, j));
            B(i, j) = factor * sum.real();
        }
    return true;
}
