#include "post/field.hpp"

#include "green/field_kernels.hpp"
#include "post/field_sums.hpp"
#include "post/incident.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double PI4 = 4 * std::numbers::pi;

std::vector<Panel> panels_of(const P2fFile &p2f) {
    std::vector<Panel> panels;
    for (int J = 1; J <= p2f.NEQN; ++J) {
        Panel panel{};
        for (int k = 1; k <= 4; ++k) {
            panel.XIV[k] = p2f.XIV(k, J);
            panel.ETV[k] = p2f.ETV(k, J);
            panel.SIDE[k] = p2f.SIDE(k, J);
            panel.GJAC[k] = p2f.GJAC(k, J);
            for (int c = 1; c <= 3; ++c)
                panel.XGP[k][c] = p2f.XGP(k, c, J);
        }
        for (int c = 1; c <= 3; ++c) {
            panel.XCT[c] = p2f.XCT(c, J);
            for (int r = 1; r <= 3; ++r)
                panel.TRM[r][c] = p2f.TRM(r, c, J);
        }
        std::copy_n(&p2f.PMOM(1, J), 13, panel.PMOM + 1);
        std::copy_n(&p2f.PSIZ(1, J), 2, panel.PSIZ + 1);
        measure_regions(panel);
        panels.push_back(panel);
    }
    return panels;
}

// What the kernels of a panel are multiplied with: V and VN, one column for each image.
struct PairColumns {
    Array<f32, 3> V, VN; // (NEQN,2,images), real and imaginary
    bool alloc(int n, int images) { return V.alloc(n, 2, images) && VN.alloc(n, 2, images); }
    static void set(Array<f32, 3> &A, int J, int g, c64 value) {
        A(J, 1, g) = static_cast<f32>(value.real());
        A(J, 2, g) = static_cast<f32>(value.imag());
    }
    static SplitColumn column(const Array<f32, 3> &A, int g) { return {&A(1, 1, g), &A(1, 2, g)}; }
};

// The columns of one heading and part: Green's identity, and sources where the file has them.
struct Strengths {
    int b;
    FieldPart part;
    PairColumns identity, sources;
};

void fill(const P2fFile &p2f, const PanelKinds &kinds, const HullState &state, Strengths &s) {
    for (int g = 1; g <= static_cast<int>(state.phi.dim(2)); ++g)
        for (int J = 1; J <= p2f.NEQN; ++J) {
            if (kinds.hull(J)) {
                PairColumns::set(s.identity.VN, J, g, -state.phi(J, g) / PI4);
                if (s.part == RADIATED && !kinds.plate(J))
                    PairColumns::set(s.identity.V, J, g, state.vn(J, g) / PI4);
            }
            if (p2f.ISOR == 1)
                PairColumns::set(kinds.plate(J) ? s.sources.VN : s.sources.V, J, g, state.source(J, g));
        }
}

// Solutions, geometry and wave of a period.
class Period {
  public:
    bool prepare(const P2fFile &p2f, int t, Motions xi, bool velocity, std::string &error) {
        if (kinds_.lid_body && p2f.ISOR != 1) {
            error = "a lid body (BDTYP=3) is part of the wave field: set ISOR=1 in the run for the sources";
            return false;
        }
        if (velocity && p2f.IDIPOL == 1) {
            error = "velocities beside dipole panels are not formed: ask for potentials alone";
            return false;
        }
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (const FieldPart part : {SCATTERED, RADIATED}) {
                if (part == RADIATED && !moves(xi))
                    continue;
                HullState state;
                const HullWants wants{.source = velocity || p2f.ISOR == 1};
                if (!form_hull_state(p2f, t, b, xi, part == SCATTERED ? Part::diffraction : Part::radiation,
                                     wants, state, error))
                    return false;
                Strengths s{b, part, {}, {}};
                const int count = static_cast<int>(state.phi.dim(2));
                if (!s.identity.alloc(p2f.NEQN, count) || !s.sources.alloc(p2f.NEQN, count)) {
                    error = "not enough memory";
                    return false;
                }
                fill(p2f, kinds_, state, s);
                strengths.push_back(std::move(s));
            }
        wave.HBOT = p2f.HBOT;
        wave.NU = static_cast<f32>(deep_wave_number(p2f, t));
        f32 ratio = 1;
        INIT_HGRN98_ARRAYS(gstate_);
        if (p2f.HBOT > 0 && HGRN98(wave.NU * p2f.HBOT, ratio, gstate_) != 0) {
            error =
                "the depth of period " + std::to_string(t) + " is outside the range of the Green function";
            return false;
        }
        wave.gstate = &gstate_;
        if (panels.make(panels_of(p2f), p2f.IQUAD))
            return true;
        error = "not enough memory";
        return false;
    }
    explicit Period(const P2fFile &p2f) : images(images_of(p2f)), by_sources(p2f.ISOR == 1), kinds_(p2f) {}

    std::vector<Image> images;
    bool by_sources;
    std::vector<Strengths> strengths;
    FieldPanels panels;
    FieldWave wave;
    bool only_sources() const { return kinds_.lid_body; }

  private:
    PanelKinds kinds_;
    GSTATE gstate_;
};

// Work arrays of one thread and the sums of one point.
class PointSums {
  public:
    bool alloc(const Period &period) {
        const std::size_t n = period.strengths.size();
        identity.resize(n);
        sources.resize(n);
        gradient.resize(n);
        return work_.alloc(period.panels) && kernel_.alloc(period.panels, PG_GF3);
    }
    // False: an integral has no value there.
    bool form(const Period &period, const Vector3 &p, bool velocity) {
        std::fill(identity.begin(), identity.end(), 0.0);
        std::fill(sources.begin(), sources.end(), 0.0);
        std::fill(gradient.begin(), gradient.end(), Complex3{});
        const int want = WANT_V + WANT_VN + (velocity ? WANT_HORIZONTAL + WANT_GF3 : 0);
        const int n = period.panels.n;
        for (std::size_t g = 0; g < period.images.size(); ++g) {
            // An image of the panels seen from the point is the panels seen from an image of the point.
            const Image &image = period.images[g];
            const f32 P[4] = {0, static_cast<f32>(image.sx * p[0]), static_cast<f32>(image.sy * p[1]),
                              static_cast<f32>(p[2])};
            if (failed(PANGRD(P, period.panels, period.wave, 1, want, work_, kernel_)))
                return false;
            const auto kernel = [&](int column) {
                return SplitColumn{&kernel_.re(1, column), &kernel_.im(1, column)};
            };
            const int at = static_cast<int>(g) + 1;
            for (std::size_t k = 0; k < period.strengths.size(); ++k) {
                const Strengths &s = period.strengths[k];
                identity[k] += product(n, kernel(PG_VN), PairColumns::column(s.identity.VN, at));
                if (s.part == RADIATED)
                    identity[k] += product(n, kernel(PG_V), PairColumns::column(s.identity.V, at));
                if (!period.by_sources)
                    continue;
                const SplitColumn q = PairColumns::column(s.sources.V, at);
                sources[k] += product(n, kernel(PG_V), q) +
                              product(n, kernel(PG_VN), PairColumns::column(s.sources.VN, at));
                if (velocity)
                    gradient[k] = plus(gradient[k], Complex3{-image.sx * product(n, kernel(PG_GP1), q),
                                                             -image.sy * product(n, kernel(PG_GP2), q),
                                                             product(n, kernel(PG_GF3), q)});
            }
        }
        return true;
    }
    std::vector<c64> identity, sources; // by the strengths of the period
    std::vector<Complex3> gradient;

  private:
    FieldWork work_;
    KernelValues kernel_;
};

void add_incident(const P2fFile &p2f, int t, int point, const Vector3 &p, bool velocity, Field &field) {
    for (int b = 1; b <= p2f.NBETA; ++b) {
        const WaveAt wave = incident_wave(p2f, t, b, {p[0], p[1], p[2]});
        field.phi(point, INCIDENT + 1, b) = wave.phi;
        for (int c = 1; velocity && c <= 3; ++c)
            field.gradient(c, point, INCIDENT + 1, b) = wave.gradient[c - 1];
    }
}

} // namespace

c64 Field::total(int point, int b) const {
    return phi(point, 1, b) + phi(point, 2, b) + phi(point, 3, b);
}
c64 Field::total_gradient(int axis, int point, int b) const {
    return gradient(axis, point, 1, b) + gradient(axis, point, 2, b) + gradient(axis, point, 3, b);
}

bool form_field(const P2fFile &p2f, int t, Motions xi, const FieldRequest &request, Field &field,
                std::string &error) {
    Period period(p2f);
    if (!period.prepare(p2f, t, xi, request.velocity, error))
        return false;
    const int n = static_cast<int>(request.points.size());
    bool memory = field.phi.alloc(n, FIELD_PARTS, p2f.NBETA) &&
                  (!request.velocity || field.gradient.alloc(3, n, FIELD_PARTS, p2f.NBETA));
    double largest = 0, difference = 0;
    constexpr int STRIP = 16; // points that a core takes at a time
#pragma omp parallel reduction(max : largest, difference)
    {
        PointSums sums;
        const bool made = sums.alloc(period);
#pragma omp critical(field_memory)
        memory = memory && made;
#pragma omp barrier
#pragma omp for schedule(dynamic, STRIP)
        for (int i = 1; i <= n; ++i) {
            const std::size_t at = static_cast<std::size_t>(i) - 1;
            if (!memory || request.mark[at] != PointMark::fluid ||
                !sums.form(period, request.points[at], request.velocity))
                continue;
            add_incident(p2f, t, i, request.points[at], request.velocity, field);
            for (std::size_t k = 0; k < period.strengths.size(); ++k) {
                const Strengths &s = period.strengths[k];
                field.phi(i, s.part + 1, s.b) = period.only_sources() ? sums.sources[k] : sums.identity[k];
                largest = std::max(largest, std::abs(sums.identity[k]));
                if (period.by_sources && !period.only_sources())
                    difference = std::max(difference, std::abs(sums.identity[k] - sums.sources[k]));
                for (std::size_t c = 0; request.velocity && c < 3; ++c)
                    field.gradient(static_cast<int>(c) + 1, i, s.part + 1, s.b) = sums.gradient[k][c];
            }
        }
    }
    field.by_sources = largest > 0 ? difference / largest : 0;
    if (!memory)
        error = "not enough memory";
    return memory;
}
