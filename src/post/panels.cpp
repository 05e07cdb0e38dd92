#include "post/panels.hpp"

#include "post/waterline.hpp"

#include <cmath>
#include <numbers>

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

bool extra_modes_move(const P2fFile &p2f, Motions xi, int b) {
    for (int j = 1; moves(xi) && j <= p2f.NMODES; ++j)
        if (body_mode(p2f, j).number > 6 && xi(j, b) != 0.0)
            return true;
    return false;
}

// The motions of a unit motion of one mode, as a column.
bool unit_column(const P2fFile &p2f, int mode, Array<c64, 2> &xi) {
    if (!xi.alloc(p2f.NMODES, 1))
        return false;
    xi(mode, 1) = 1;
    return true;
}

} // namespace

Vector3 from_body(const P2fFile &p2f, int body, const Vector3 &at) {
    const double angle = d(p2f.XBODY(4, body)) * std::numbers::pi / 180, c = std::cos(angle),
                 s = std::sin(angle);
    const double x = at[0] - d(p2f.XBODY(1, body)), y = at[1] - d(p2f.XBODY(2, body));
    return {c * x + s * y, c * y - s * x, at[2] - d(p2f.XBODY(3, body))};
}

c64 rise(const P2fFile &p2f, int body, Motions xi, int b, const Vector3 &r) {
    const int first = modes_before(p2f, body);
    return xi(first + 3, b) + xi(first + 4, b) * r[1] - xi(first + 5, b) * r[0];
}

bool form_panels(const P2fFile &p2f, int t, Motions xi, const PanelLoad &load, const Scales &scales,
                 const SurfaceGradient &gradient, PanelValues &values, std::string &error) {
    if (!scales.dimensional()) {
        error = "pressures need a density";
        return false;
    }
    const bool of_mode = load.kind == PanelLoad::Kind::mode;
    const int b = of_mode ? 1 : load.index;
    Array<c64, 2> unit;
    if (of_mode && !unit_column(p2f, load.index, unit)) {
        error = "not enough memory";
        return false;
    }
    const Motions moving = of_mode ? Motions(unit.view()) : xi;
    const bool hydrostatic = load.kind == PanelLoad::Kind::total && load.hydrostatic && moves(xi);
    if (hydrostatic && extra_modes_move(p2f, xi, b)) {
        error = "the hydrostatic part is not formed for moving extra modes: hold them fixed";
        return false;
    }
    const Part part = of_mode                                     ? Part::radiation
                      : load.kind == PanelLoad::Kind::diffraction ? Part::diffraction
                                                                  : Part::total;
    HullState state;
    if (!form_hull_state(p2f, t, b, moving, part, {.velocity = p2f.ISOR == 1}, state, error))
        return false;
    const PanelKinds kinds(p2f);
    const std::vector<Image> images = images_of(p2f);
    const int n = p2f.NEQN, count = static_cast<int>(images.size());
    if (!values.pressure.alloc(n, count) || (p2f.ISOR == 1 && !values.velocity.alloc(3, n, count))) {
        error = "not enough memory";
        return false;
    }
    const double nu = deep_wave_number(p2f, t), omega = omega_of(p2f, t), L = scales.length;
    const c64 speed = c64(0, scales.gravity / omega) / L; // of the gradient of a potential
    for (int g = 1; g <= count; ++g)
        for (int J = 1; J <= n; ++J) {
            const Image &image = images[static_cast<std::size_t>(g) - 1];
            if (!kinds.hull(J) || !image.body)
                continue;
            c64 head = state.phi(J, g); // over the amplitude
            if (hydrostatic)
                head -= rise(p2f, body_of_panel(p2f, J), xi, b,
                             times(L, from_body(p2f, body_of_panel(p2f, J),
                                                {image.sx * d(p2f.XCT(1, J)), image.sy * d(p2f.XCT(2, J)),
                                                 d(p2f.XCT(3, J))})));
            values.pressure(J, g) = scales.density * scales.gravity * head;
            if (p2f.ISOR != 1 || kinds.plate(J))
                continue;
            const Complex3 v = hull_velocity(p2f, gradient, state, J, g, nu);
            for (int c = 1; c <= 3; ++c)
                values.velocity(c, J, g) = speed * v[static_cast<std::size_t>(c) - 1];
        }
    return true;
}
