#include "post/section_loads.hpp"

#include "post/vector3.hpp"

#include <algorithm>
#include <cmath>

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

using Polygon = std::vector<Vector3>;

// The part of a polygon with x <= station.
Polygon behind(const Polygon &whole, double station) {
    Polygon part;
    for (std::size_t k = 0; k < whole.size(); ++k) {
        const Vector3 &a = whole[k], &b = whole[(k + 1) % whole.size()];
        if (a[0] <= station)
            part.push_back(a);
        if ((a[0] <= station) != (b[0] <= station))
            part.push_back(plus(a, times((station - a[0]) / (b[0] - a[0]), plus(b, times(-1.0, a)))));
    }
    return part;
}

// Calls action(place, area): three points of each triangle of a fan, exact for quadratic functions.
template <class Action> void integrate(const Polygon &polygon, Action action) {
    for (std::size_t k = 2; k < polygon.size(); ++k) {
        const Vector3 &a = polygon[0], &b = polygon[k - 1], &c = polygon[k];
        const Vector3 n = cross(plus(b, times(-1.0, a)), plus(c, times(-1.0, a)));
        const double area = std::sqrt(dot(n, n)) / 2;
        for (const auto &[p, q] : {std::pair{a, b}, {b, c}, {c, a}})
            action(times(0.5, plus(p, q)), area / 3);
    }
}

// A panel of the body in its axes, dimensional.
struct HullPanel {
    Polygon corner;
    Vector3 normal;
    c64 phi;
    double low; // smallest x
};

std::vector<HullPanel> panels_of(const P2fFile &p2f, int body, const HullState &state, double L) {
    const PanelKinds kinds(p2f);
    const std::vector<Image> images = images_of(p2f);
    const int first = modes_before(p2f, body);
    std::vector<HullPanel> panels;
    for (std::size_t g = 0; g < images.size(); ++g)
        for (int J = 1; images[g].body && J <= p2f.NEQN; ++J) {
            if (!kinds.hull(J) || body_of_panel(p2f, J) != body)
                continue;
            // Bodies with images stand on the planes of symmetry, unturned: body axes are mirrored alike.
            HullPanel panel{{},
                            {images[g].sx * d(p2f.VEL(first + 1, J)), images[g].sy * d(p2f.VEL(first + 2, J)),
                             d(p2f.VEL(first + 3, J))},
                            state.phi(J, static_cast<int>(g) + 1),
                            1e300};
            for (int v = 1; v <= 4; ++v) {
                panel.corner.push_back({images[g].sx * d(p2f.XVER(v, 1, J)) * L,
                                        images[g].sy * d(p2f.XVER(v, 2, J)) * L, d(p2f.XVER(v, 3, J)) * L});
                panel.low = std::min(panel.low, panel.corner.back()[0]);
            }
            panels.push_back(panel);
        }
    return panels;
}

// The share of a mass part with x <= station: its mass, centre and length.
struct Share {
    double mass;
    Vector3 centre;
    double length;
};
Share share_behind(const MassPart &part, double station) {
    const double from = std::min(part.from, part.to), to = std::max(part.from, part.to);
    if (station < from || (to == from && station < to))
        return {0, {}, 0};
    const double end = std::min(to, station), length = to - from;
    return {length > 0 ? part.mass * (end - from) / length : part.mass,
            {(from + end) / 2, part.y, part.z},
            end - from};
}

template <class T> void add(std::array<T, 6> &load, const std::array<T, 3> &F, const std::array<T, 3> &M) {
    for (std::size_t c = 0; c < 3; ++c) {
        load[c] += F[c];
        load[c + 3] += M[c];
    }
}

// One station.
class Section {
  public:
    Section(const SectionRequest &request, double station, const Scales &scales, double omega)
        : about_{station, request.y, request.z}, scales_(scales), omega2_(omega * omega) {
        load_.station = station;
    }
    void add_mass(const MassPart &part, const Complex3 &xi, const Complex3 &alpha) {
        const Share share = share_behind(part, load_.station);
        if (share.mass == 0)
            return;
        const Vector3 arm = plus(share.centre, times(-1.0, about_));
        const Complex3 gravity = {-alpha[1] * scales_.gravity, alpha[0] * scales_.gravity, 0};
        const Complex3 force =
            times(share.mass, plus(times(-omega2_, plus(xi, cross(alpha, share.centre))), gravity));
        // About its own centre: along x evenly spread, across by the radii.
        const double along = share.length * share.length / 12, y2 = part.radius_y * part.radius_y,
                     z2 = part.radius_z * part.radius_z;
        const Complex3 own = {-omega2_ * share.mass * (y2 + z2) * alpha[0],
                              -omega2_ * share.mass * (along + z2) * alpha[1],
                              -omega2_ * share.mass * (along + y2) * alpha[2]};
        add(load_.wave, force, plus(cross(arm, force), own));
        const Vector3 weight = {0, 0, share.mass * scales_.gravity};
        add(load_.calm, weight, cross(arm, weight));
    }
    // `origin`: height of the body's origin above the free surface.
    void add_panel(const HullPanel &panel, double origin, const Complex3 &xi, const Complex3 &alpha) {
        if (panel.low >= load_.station)
            return;
        const double weight = scales_.density * scales_.gravity;
        integrate(behind(panel.corner, load_.station), [&](const Vector3 &r, double area) {
            const c64 head = panel.phi - (xi[2] + alpha[0] * r[1] - alpha[1] * r[0]);
            const Vector3 moment = cross(plus(r, times(-1.0, about_)), panel.normal);
            add(load_.wave, times(-weight * area * head, panel.normal), times(-weight * area * head, moment));
            const double depth = -(r[2] + origin);
            add(load_.calm, times(-weight * area * depth, panel.normal),
                times(-weight * area * depth, moment));
        });
    }
    const SectionLoad &load() const { return load_; }

  private:
    Vector3 about_;
    const Scales &scales_;
    double omega2_;
    SectionLoad load_;
};

bool extra_modes_move(const P2fFile &p2f, Motions xi, int b) {
    for (int j = 1; moves(xi) && j <= p2f.NMODES; ++j)
        if (body_mode(p2f, j).number > 6 && xi(j, b) != 0.0)
            return true;
    return false;
}

} // namespace

bool form_section_loads(const P2fFile &p2f, int t, int b, Motions xi, const Scales &scales,
                        const SectionRequest &request, std::vector<SectionLoad> &loads, std::string &error) {
    if (!scales.dimensional()) {
        error = "section loads need a density";
        return false;
    }
    if (extra_modes_move(p2f, xi, b)) {
        error = "section loads are not formed for moving extra modes: hold them fixed";
        return false;
    }
    HullState state;
    if (!form_hull_state(p2f, t, b, xi, Part::total, {}, state, error))
        return false;
    const std::vector<HullPanel> panels = panels_of(p2f, request.body, state, scales.length);
    const double origin = d(p2f.XBODY(3, request.body)) * scales.length;
    Complex3 shift{}, turn{};
    const int first = modes_before(p2f, request.body);
    for (int c = 0; moves(xi) && c < 3; ++c) {
        shift[static_cast<std::size_t>(c)] = xi(first + c + 1, b);
        turn[static_cast<std::size_t>(c)] = xi(first + c + 4, b);
    }
    loads.clear();
    for (const double station : request.stations) {
        Section section(request, station, scales, omega_of(p2f, t));
        for (const MassPart &part : request.parts)
            section.add_mass(part, shift, turn);
        for (const HullPanel &panel : panels)
            section.add_panel(panel, origin, shift, turn);
        loads.push_back(section.load());
    }
    return true;
}
