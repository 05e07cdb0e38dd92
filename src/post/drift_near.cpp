#include "post/drift_near.hpp"

#include "post/waterline.hpp"

#include <cmath>
#include <numbers>

namespace {

enum { WATERLINE, VELOCITY, MOTION, ROTATION };

double d(f32 value) {
    return static_cast<double>(value);
}

// Motion of a body's origin and its rotation, non-dimensional, global axes.
struct RigidMotion {
    Complex3 xi{}, alpha{};
    Complex3 at(const Vector3 &r) const { return plus(xi, cross(alpha, r)); }
    c64 height(const Vector3 &r) const { return xi[2] + alpha[0] * r[1] - alpha[1] * r[0]; }
};

Complex3 turned(double degrees, const Complex3 &v) {
    const double c = std::cos(degrees * std::numbers::pi / 180),
                 s = std::sin(degrees * std::numbers::pi / 180);
    return {c * v[0] - s * v[1], s * v[0] + c * v[1], v[2]};
}

RigidMotion rigid_motion(const P2fFile &p2f, int body, int b, Motions xi) {
    RigidMotion m;
    if (!moves(xi))
        return m;
    const int first = modes_before(p2f, body);
    for (int c = 0; c < 3; ++c) {
        m.xi[static_cast<std::size_t>(c)] = xi(first + c + 1, b);
        m.alpha[static_cast<std::size_t>(c)] = unit_motion(p2f, first + c + 4) * xi(first + c + 4, b);
    }
    m.xi = turned(d(p2f.XBODY(4, body)), m.xi);
    m.alpha = turned(d(p2f.XBODY(4, body)), m.alpha);
    return m;
}

// The second-order rotation of the mean: symmetric.
struct MeanRotation {
    double H[3][3] = {};
    explicit MeanRotation(const Complex3 &alpha) {
        double size = 0;
        for (const c64 &a : alpha)
            size += std::norm(a) / 4;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                H[i][j] = (alpha[i] * std::conj(alpha[j])).real() / 4 - (i == j ? size : 0);
    }
    Vector3 operator*(const Vector3 &r) const {
        Vector3 result{};
        for (std::size_t i = 0; i < 3; ++i)
            result[i] = H[i][0] * r[0] + H[i][1] * r[1] + H[i][2] * r[2];
        return result;
    }
};

// One body in one heading.
class Body {
  public:
    Body(const P2fFile &p2f, int t, int body, const RigidMotion &motion, const HullState &state,
         const SurfaceGradient &gradient)
        : p(p2f), body_(body), nu(deep_wave_number(p2f, t)), m(motion), H(motion.alpha), s(state),
          gradient_(gradient) {}

    NearDrift drift(const PanelKinds &kinds, int first_panel, const std::vector<WaterlineSide> &sides) {
        const std::vector<Image> images = images_of(p);
        for (std::size_t g = 0; g < images.size(); ++g) {
            if (!images[g].body)
                continue;
            image_ = images[g];
            at_ = static_cast<int>(g) + 1;
            for (int J = first_panel + 1; J <= first_panel + p.NEQNB(body_); ++J)
                if (kinds.hull(J))
                    add_panel(J);
        }
        for (const WaterlineSide &side : sides)
            if (side.body == body_)
                add_waterline(side);
        add_rotation();
        return result_;
    }

  private:
    Vector3 from_origin(double x, double y, double z) const {
        return {image_.sx * x - d(p.XBODY(1, body_)), image_.sy * y - d(p.XBODY(2, body_)),
                z - d(p.XBODY(3, body_))};
    }
    Vector3 centroid(int J) const { return from_origin(d(p.XCT(1, J)), d(p.XCT(2, J)), d(p.XCT(3, J))); }
    Vector3 normal(int J) const {
        return {image_.sx * d(p.TRM(3, 1, J)), image_.sy * d(p.TRM(3, 2, J)), d(p.TRM(3, 3, J))};
    }
    void add(int term, double value, const Vector3 &r, const Vector3 &N) {
        const Vector3 moment = cross(r, N);
        for (std::size_t c = 0; c < 3; ++c) {
            result_.term[static_cast<std::size_t>(term)][c] += value * N[c];
            result_.term[static_cast<std::size_t>(term)][c + 3] += value * moment[c];
        }
    }

    void add_panel(int J) {
        const double area = d(p.PMOM(1, J));
        const Vector3 r = centroid(J), N = normal(J);
        const Complex3 v = hull_velocity(p, gradient_, s, J, at_, nu);
        add(VELOCITY, -area / (4 * nu) * (std::norm(v[0]) + std::norm(v[1]) + std::norm(v[2])), r, N);
        add(MOTION, area / 2 * dot(m.at(r), conj(v)).real(), r, N);
        const c64 phi = s.phi(J, at_);
        F1_ = plus(F1_, times(area * phi, N));
        M1_ = plus(M1_, times(area * phi, cross(r, N)));
        // What depends on the place within the panel.
        for (int k = 1; k <= 4; ++k) {
            const Vector3 q = from_origin(d(p.XGP(k, 1, J)), d(p.XGP(k, 2, J)), d(p.XGP(k, 3, J)));
            const double w = d(p.GJAC(k, J)), z = q[2] + d(p.XBODY(3, body_));
            const Vector3 arm = cross(q, N);
            F1_ = plus(F1_, times(-w * m.height(q), N));
            M1_ = plus(M1_, times(-w * m.height(q), arm));
            F0_ = plus(F0_, times(-w * z, N));
            M0_ = plus(M0_, times(-w * z, arm));
            add(ROTATION, -w * (H * q)[2], q, N);
        }
    }

    void add_waterline(const WaterlineSide &side) {
        const double steep = 1 - side.normal[2] * side.normal[2];
        if (steep < 1e-6)
            return; // a hull of no draught has no side that the waves could climb
        const Vector3 r = {side.middle[0] - d(p.XBODY(1, body_)), side.middle[1] - d(p.XBODY(2, body_)),
                           -d(p.XBODY(3, body_))};
        const c64 relative = side_elevation(p, gradient_, s, side, nu) - m.height(r);
        add(WATERLINE, std::norm(relative) * side.length / std::sqrt(steep) / 4, r, side.normal);
    }

    void add_rotation() {
        const Complex3 first = plus(F1_, cross(m.alpha, F0_));
        const Vector3 F = plus(times(0.5, real(cross(conj(m.alpha), F1_))), H * F0_);
        const Vector3 M = plus(plus(times(0.5, real(cross(conj(m.alpha), M1_))), H * M0_),
                               times(0.5, real(cross(conj(m.xi), first))));
        for (std::size_t c = 0; c < 3; ++c) {
            result_.term[ROTATION][c] += F[c];
            result_.term[ROTATION][c + 3] += M[c];
        }
    }

    const P2fFile &p;
    int body_;
    double nu;
    RigidMotion m;
    MeanRotation H;
    const HullState &s;
    const SurfaceGradient &gradient_;
    Image image_{1, 1, true};
    int at_ = 1;
    Complex3 F1_{}, M1_{}; // first-order pressure force on the hull at rest
    Vector3 F0_{}, M0_{};  // hydrostatic
    NearDrift result_;
};

std::string unfit(const P2fFile &p2f, Motions xi) {
    if (p2f.IDIPOL == 1)
        return "drift by pressures is not formed for dipole panels, whose two sides the file does not tell "
               "apart";
    for (int j = 1; moves(xi) && j <= p2f.NMODES; ++j)
        for (int b = 1; j - modes_before(p2f, body_of_mode(p2f, j)) > 6 && b <= p2f.NBETA; ++b)
            if (xi(j, b) != 0.0)
                return "drift by pressures is not formed for moving extra modes: hold them fixed";
    return "";
}

} // namespace

const char *const NEAR_DRIFT_NAMES[NEAR_DRIFT_TERMS] = {"waterline", "velocity", "motion", "rotation"};

double NearDrift::total(std::size_t component) const {
    double sum = 0;
    for (const auto &t : term)
        sum += t[component];
    return sum;
}

bool form_near_drift(const P2fFile &p2f, int t, Motions xi, std::vector<std::vector<NearDrift>> &drift,
                     std::string &error) {
    return form_near_drift(p2f, t, xi, SurfaceGradient(p2f, PanelKinds(p2f)), drift, error);
}

bool form_near_drift(const P2fFile &p2f, int t, Motions xi, const SurfaceGradient &gradient,
                     std::vector<std::vector<NearDrift>> &drift, std::string &error) {
    error = unfit(p2f, xi);
    if (!error.empty())
        return false;
    const PanelKinds kinds(p2f);
    const std::vector<WaterlineSide> sides = waterline_sides(p2f);
    drift.assign(static_cast<std::size_t>(p2f.NBETA), {});
    for (int b = 1; b <= p2f.NBETA; ++b) {
        HullState state;
        if (!form_hull_state(p2f, t, b, xi, Part::total, {.velocity = true}, state, error))
            return false;
        int panels = 0;
        for (int body = 1; body <= p2f.NBODY; ++body) {
            Body one(p2f, t, body, rigid_motion(p2f, body, b, xi), state, gradient);
            drift[static_cast<std::size_t>(b - 1)].push_back(one.drift(kinds, panels, sides));
            panels += p2f.NEQNB(body);
        }
    }
    return true;
}
