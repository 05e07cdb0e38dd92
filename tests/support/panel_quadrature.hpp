// The panel integrals by their definitions, in double precision: each triangle of the panel is split until it
// is small against its distance from the field point, and then integrated with a product Gauss rule.
#pragma once

#include "geometry/panel.hpp"

#include <cmath>

namespace quadrature {

struct Integrals {
    double D = 0, S = 0, SX = 0, SY = 0, DX = 0, DY = 0, DZ = 0;
    double L = 0, LZ = 0, LX = 0, LY = 0, LZX = 0, LZY = 0;
};

struct Point2 {
    double x, y;
};

class PanelQuadrature {
  public:
    PanelQuadrature(const Panel &p, double X, double Y, double Z, bool logarithm)
        : X_(X), Y_(Y), Z_(Z), logarithm_(logarithm) {
        double length = 0;
        for (int r = 0; r < 3; ++r) {
            k_[r] = p.TRM[r + 1][3];
            length += k_[r] * k_[r];
        }
        for (double &k : k_)
            k /= std::sqrt(length);
        const auto vertex = [&p](int i) { return Point2{p.XIV[i], p.ETV[i]}; };
        triangle(vertex(1), vertex(2), vertex(3), 0);
        triangle(vertex(1), vertex(3), vertex(4), 0);
    }
    const Integrals &result() const { return sum_; }

  private:
    static constexpr int DEPTH = 34;          // what is left at the field point is below 2^-34 of the panel
    static constexpr double SMALLNESS = 0.45; // largest ratio of side to distance

    static double distance(Point2 a, Point2 b) { return std::hypot(a.x - b.x, a.y - b.y); }

    void triangle(Point2 a, Point2 b, Point2 c, int depth) {
        const double twice = (b.y - a.y) * (c.x - a.x) - (b.x - a.x) * (c.y - a.y); // clockwise is positive
        if (twice == 0)
            return;
        const Point2 middle{(a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3};
        const double size = std::fmax(distance(a, b), std::fmax(distance(b, c), distance(c, a)));
        const double away = std::sqrt(std::pow(X_ - middle.x, 2) + std::pow(Y_ - middle.y, 2) + Z_ * Z_);
        if (size > SMALLNESS * away && depth < DEPTH) {
            const Point2 ab{(a.x + b.x) / 2, (a.y + b.y) / 2}, bc{(b.x + c.x) / 2, (b.y + c.y) / 2},
                ca{(c.x + a.x) / 2, (c.y + a.y) / 2};
            triangle(a, ab, ca, depth + 1);
            triangle(ab, b, bc, depth + 1);
            triangle(ca, bc, c, depth + 1);
            triangle(ab, bc, ca, depth + 1);
            return;
        }
        static constexpr double node[6] = {0.033765242898424, 0.169395306766868, 0.380690406958402,
                                           0.619309593041598, 0.830604693233132, 0.966234757101576};
        static constexpr double weight[6] = {0.085662246189585, 0.180380786524069, 0.233956967286346,
                                             0.233956967286346, 0.180380786524069, 0.085662246189585};
        for (int i = 0; i < 6; ++i)
            for (int j = 0; j < 6; ++j) {
                const double s = node[i], t = node[j] * (1 - s);
                point(a.x + s * (b.x - a.x) + t * (c.x - a.x), a.y + s * (b.y - a.y) + t * (c.y - a.y),
                      weight[i] * weight[j] * (1 - s) * twice);
            }
    }

    void point(double xi, double eta, double w) {
        const double x = X_ - xi, y = Y_ - eta, r2 = x * x + y * y + Z_ * Z_;
        const double r = std::sqrt(r2), r3 = r * r2, r5 = r3 * r2;
        sum_.S += w / r;
        sum_.D += w * Z_ / r3;
        sum_.SX -= w * x / r3;
        sum_.SY -= w * y / r3;
        sum_.DX -= 3 * w * Z_ * x / r5;
        sum_.DY -= 3 * w * Z_ * y / r5;
        sum_.DZ += w * (1 / r3 - 3 * Z_ * Z_ / r5);
        if (!logarithm_)
            return;
        const double f = r + k_[0] * x + k_[1] * y + k_[2] * Z_;
        const double fx = x / r + k_[0], fy = y / r + k_[1], fz = Z_ / r + k_[2];
        sum_.L += w * std::log(f);
        sum_.LZ -= w * fz / f;
        sum_.LX += w * fx / f;
        sum_.LY += w * fy / f;
        sum_.LZX += w * (Z_ * x / (r3 * f) + fz * fx / (f * f));
        sum_.LZY += w * (Z_ * y / (r3 * f) + fz * fy / (f * f));
    }

    double X_, Y_, Z_;
    bool logarithm_;
    double k_[3];
    Integrals sum_;
};

inline Integrals panel(const Panel &p, double X, double Y, double Z, bool logarithm = true) {
    return PanelQuadrature(p, X, Y, Z, logarithm).result();
}

} // namespace quadrature
