#include "post/forces.hpp"

#include "post/incident.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr int HELD = 3; // IDIP of a plate that is no part of the moving body

double d(f32 x) {
    return static_cast<double>(x);
}

// Panels of a body: from first, up to last.
struct PanelRange {
    int first, last;
};
PanelRange panels_of(const P2fFile &p2f, int body) {
    int before = 0;
    for (int b = 1; b < body; ++b)
        before += p2f.NEQNB(b);
    return {before + 1, before + p2f.NEQNB(body)};
}

bool moves(const P2fFile &p2f, int ip) {
    return p2f.IDIP.empty() || p2f.IDIP(ip) != HELD;
}

int body_images(const P2fFile &p2f) {
    return (p2f.ISX == 1 ? 2 : 1) * (p2f.ISY == 1 ? 2 : 1);
}

// Integral of a potential of the class of the mode over the mode's body and its images, non-dimensional.
c64 pressure_integral(const P2fFile &p2f, int mode, const c32 *potential) {
    const PanelRange range = panels_of(p2f, body_of_mode(p2f, mode));
    c64 sum = 0;
    for (int ip = range.first; ip <= range.last; ++ip)
        if (moves(p2f, ip))
            sum += d(p2f.PMOM(1, ip)) * d(p2f.VEL(mode, ip)) * c64(potential[ip - 1]);
    return sum * static_cast<double>(body_images(p2f));
}

// Dimension of a force per unit amplitude on the mode.
double force_unit(const P2fFile &p2f, const Scales &scales, int mode) {
    return scales.density * scales.gravity * std::pow(scales.length, is_rotation(p2f, mode) ? 3 : 2);
}

// A place on a panel with its share of the area and the normal velocities there.
struct Sample {
    double at[3], weight;
    std::vector<double> velocity; // of the modes of the panel's body
};

// Rigid velocities at a point, in the axes of the body.
void rigid_velocities(const P2fFile &p2f, int body, int ip, Sample &sample) {
    const double heading = d(p2f.XBODY(4, body)) * 3.14159265358979323846 / 180;
    const double s = std::sin(heading), c = std::cos(heading);
    const double x = sample.at[0] - d(p2f.XBODY(1, body)), y = sample.at[1] - d(p2f.XBODY(2, body));
    const double r[3] = {c * x + s * y, -s * x + c * y, sample.at[2] - d(p2f.XBODY(3, body))};
    const double n1 = d(p2f.TRM(3, 1, ip)), n2 = d(p2f.TRM(3, 2, ip));
    const double n[3] = {c * n1 + s * n2, -s * n1 + c * n2, d(p2f.TRM(3, 3, ip))};
    for (std::size_t k = 0; k < 3; ++k) {
        sample.velocity[k] = n[k];
        sample.velocity[3 + k] = r[(k + 1) % 3] * n[(k + 2) % 3] - r[(k + 2) % 3] * n[(k + 1) % 3];
    }
}

Sample centroid_of(const P2fFile &p2f, int body, int ip) {
    const int before = modes_before(p2f, body), modes = 6 + p2f.NEWMDS(body);
    Sample sample{{d(p2f.XCT(1, ip)), d(p2f.XCT(2, ip)), d(p2f.XCT(3, ip))}, d(p2f.PMOM(1, ip)), {}};
    for (int m = 1; m <= modes; ++m)
        sample.velocity.push_back(d(p2f.VEL(before + m, ip)));
    return sample;
}

// The centroid, or the four Gauss points of a run that integrates with them.
std::vector<Sample> samples_of(const P2fFile &p2f, int body, int ip) {
    const Sample centroid = centroid_of(p2f, body, ip);
    if (p2f.IQUAD != 1)
        return {centroid};
    std::vector<Sample> four(4, centroid);
    for (int k = 1; k <= 4; ++k) {
        Sample &point = four[static_cast<std::size_t>(k - 1)];
        for (int c = 1; c <= 3; ++c)
            point.at[c - 1] = d(p2f.XGP(k, c, ip));
        point.weight = d(p2f.GJAC(k, ip));
        rigid_velocities(p2f, body, ip, point);
    }
    return four;
}

// The panels of the hull as a body's waves meet them, and the signs of all modes on each image.
struct Hull {
    struct Panel {
        int ip, before; // panel, mode before the first of its body
        bool plate;     // fluid on both sides
        Sample centroid;
        std::vector<Sample> samples;
    };
    std::vector<Panel> panels;
    std::vector<Image> images;             // that are part of a body
    std::vector<std::vector<double>> sign; // of image and mode
    std::vector<int> solved;
};

Hull hull_of(const P2fFile &p2f) {
    Hull hull;
    const PanelKinds kinds(p2f);
    for (int b = 1; b <= p2f.NBODY; ++b) {
        const PanelRange range = panels_of(p2f, b);
        for (int ip = range.first; ip <= range.last; ++ip)
            if (kinds.hull(ip))
                hull.panels.push_back({ip, modes_before(p2f, b), kinds.plate(ip), centroid_of(p2f, b, ip),
                                       samples_of(p2f, b, ip)});
    }
    for (const Image &image : images_of(p2f)) {
        if (!image.body)
            continue;
        hull.images.push_back(image);
        hull.sign.emplace_back();
        for (int m = 1; m <= p2f.NMODES; ++m)
            hull.sign.back().push_back(mode_parity(p2f, m, image));
    }
    hull.solved = solved_modes(p2f);
    return hull;
}

// Integrals of the incident wave of one period and heading, non-dimensional, by mode from 0.
struct WaveIntegrals {
    std::vector<c64> pressure;     // by all samples
    std::vector<c64> at_centroids; // by the centroids, as the solver takes the pressure
    std::vector<c64> haskind;      // of the radiation potential times the normal velocity of the wave
};

WaveIntegrals integrate_wave(const P2fFile &p2f, const Hull &hull, int t, int b) {
    const std::size_t modes = static_cast<std::size_t>(p2f.NMODES);
    WaveIntegrals sum{std::vector<c64>(modes), std::vector<c64>(modes), std::vector<c64>(modes)};
    for (std::size_t g = 0; g < hull.images.size(); ++g) {
        const Image &image = hull.images[g];
        const auto wave_at = [&](const Sample &s) {
            return incident_wave(p2f, t, b, {image.sx * s.at[0], image.sy * s.at[1], s.at[2]});
        };
        for (const Hull::Panel &panel : hull.panels) {
            const auto add = [&](const Sample &s, c64 phi, std::vector<c64> &to) {
                for (std::size_t m = 0; !panel.plate && m < s.velocity.size(); ++m) {
                    const std::size_t mode = static_cast<std::size_t>(panel.before) + m;
                    to[mode] += hull.sign[g][mode] * s.weight * s.velocity[m] * phi;
                }
            };
            c64 flux = 0;
            for (const Sample &s : panel.samples) {
                const WaveAt wave = wave_at(s);
                flux += s.weight * (image.sx * d(p2f.TRM(3, 1, panel.ip)) * wave.gradient[0] +
                                    image.sy * d(p2f.TRM(3, 2, panel.ip)) * wave.gradient[1] +
                                    d(p2f.TRM(3, 3, panel.ip)) * wave.gradient[2]);
                add(s, wave.phi, sum.pressure);
            }
            if (panel.samples.size() > 1)
                add(panel.centroid, wave_at(panel.centroid).phi, sum.at_centroids);
            for (const int m : hull.solved)
                if (p2f.IRAD >= 0)
                    sum.haskind[static_cast<std::size_t>(m - 1)] +=
                        hull.sign[g][static_cast<std::size_t>(m - 1)] *
                        c64(p2f.PHIR(panel.ip, p2f.MODPOS(m), t)) * flux;
        }
    }
    if (p2f.IQUAD != 1)
        sum.at_centroids = sum.pressure;
    return sum;
}

// The force of a level raised by 1.
double level_force(const Hull &hull, int mode) {
    double sum = 0;
    for (const std::vector<double> &sign : hull.sign)
        for (const Hull::Panel &p : hull.panels) {
            const std::size_t own = static_cast<std::size_t>(mode - 1 - p.before);
            if (!p.plate && mode > p.before && own < p.centroid.velocity.size())
                sum +=
                    sign[static_cast<std::size_t>(mode - 1)] * p.centroid.weight * p.centroid.velocity[own];
        }
    return sum;
}

void exciting_at(const P2fFile &p2f, const Scales &scales, const Hull &hull, int t, int b,
                 ExcitingForces &X) {
    const Frequency kind = frequency_kind(p2f, t);
    if (kind == Frequency::infinite)
        return;
    const bool haskind = X.no_haskind.empty();
    if (kind == Frequency::zero) {
        for (const int m : hull.solved) {
            const c64 force = force_unit(p2f, scales, m) * level_force(hull, m);
            X.froude_krylov(m, b, t) = X.pressure(m, b, t) = force;
            if (haskind)
                X.haskind(m, b, t) = force;
        }
        return;
    }
    const WaveIntegrals wave = integrate_wave(p2f, hull, t, b);
    for (const int m : hull.solved) {
        const std::size_t at = static_cast<std::size_t>(m - 1);
        const double unit = force_unit(p2f, scales, m);
        const c64 total = pressure_integral(p2f, m, &p2f.PHID(1, b, class_of(p2f, m), t));
        X.froude_krylov(m, b, t) = unit * wave.pressure[at];
        X.scattering(m, b, t) = unit * (total - wave.at_centroids[at]);
        X.pressure(m, b, t) = X.froude_krylov(m, b, t) + X.scattering(m, b, t);
        if (haskind)
            X.haskind(m, b, t) = unit * (wave.pressure[at] - wave.haskind[at]);
    }
}

constexpr const char *NO_MEMORY = "there is not enough memory";

} // namespace

std::vector<double> level_forces(const P2fFile &p2f, const Scales &scales) {
    const Hull hull = hull_of(p2f);
    std::vector<double> forces(static_cast<std::size_t>(p2f.NMODES));
    for (const int m : hull.solved)
        forces[static_cast<std::size_t>(m - 1)] = force_unit(p2f, scales, m) * level_force(hull, m);
    return forces;
}

bool form_exciting(const P2fFile &p2f, const Scales &scales, ExcitingForces &X, std::string &error) {
    if (p2f.IDIFF < 0 || p2f.NBETA == 0) {
        error = "the run has no diffraction solutions: it needs IDIFF 0 or 1 and a heading";
        return false;
    }
    X.no_haskind = p2f.IRAD < 0               ? "the run has no radiation solutions (IRAD=-1)"
                   : PanelKinds(p2f).lid_body ? "a lid takes energy, and the file does not tell how much"
                                              : "";
    bool made = true;
    for (Array<c64, 3> *part : {&X.froude_krylov, &X.scattering, &X.pressure, &X.haskind})
        made = made && ((part == &X.haskind && !X.no_haskind.empty()) ||
                        part->alloc(p2f.NMODES, p2f.NBETA, p2f.NPER));
    if (!made) {
        error = NO_MEMORY;
        return false;
    }
    const Hull hull = hull_of(p2f);
#pragma omp parallel for schedule(dynamic)
    for (int t = 1; t <= p2f.NPER; ++t)
        for (int b = 1; b <= p2f.NBETA; ++b)
            exciting_at(p2f, scales, hull, t, b, X);
    return true;
}

bool form_radiation(const P2fFile &p2f, const Scales &scales, RadiationForces &R, std::string &error) {
    if (p2f.IRAD < 0) {
        error = "the run has no radiation solutions: it needs IRAD 0 or 1";
        return false;
    }
    for (Array<double, 3> *part : {&R.A, &R.A_odd, &R.B, &R.B_odd})
        if (!part->alloc(p2f.NMODES, p2f.NMODES, p2f.NPER)) {
            error = NO_MEMORY;
            return false;
        }
    const std::vector<int> solved = solved_modes(p2f);
#pragma omp parallel for schedule(dynamic)
    for (int t = 1; t <= p2f.NPER; ++t) {
        const bool waves = frequency_kind(p2f, t) == Frequency::wave;
        const auto coefficient = [&](int i, int j) -> c64 {
            if (class_of(p2f, i) != class_of(p2f, j))
                return 0;
            return std::conj(pressure_integral(p2f, i, &p2f.PHIR(1, p2f.MODPOS(j), t)));
        };
        for (const int i : solved) {
            for (const int j : solved) {
                if (j > i)
                    break;
                const int levers = (is_rotation(p2f, i) ? 1 : 0) + (is_rotation(p2f, j) ? 1 : 0);
                const double unit = scales.density * std::pow(scales.length, 3 + levers),
                             omega = waves ? omega_of(p2f, t) : 0;
                const c64 ij = coefficient(i, j), ji = i == j ? ij : coefficient(j, i);
                const c64 even = unit * (ij + ji) / 2.0, odd = unit * (ij - ji) / 2.0;
                R.A(i, j, t) = R.A(j, i, t) = even.real();
                R.B(i, j, t) = R.B(j, i, t) = omega * even.imag();
                R.A_odd(i, j, t) = odd.real();
                R.A_odd(j, i, t) = -odd.real();
                R.B_odd(i, j, t) = omega * odd.imag();
                R.B_odd(j, i, t) = -omega * odd.imag();
            }
        }
    }
    return true;
}

double relative_difference(const P2fFile &p2f, const Array<c64, 3> &a, const Array<c64, 3> &b, int mode,
                           int period) {
    const auto kind = [&](int m) {
        const int number = m - modes_before(p2f, body_of_mode(p2f, m));
        return number <= 3 ? 1 : number <= 6 ? 2 : number;
    };
    double difference = 0, size = 0;
    for (int m = 1; m <= p2f.NMODES; ++m) {
        if (body_of_mode(p2f, m) != body_of_mode(p2f, mode) || kind(m) != kind(mode))
            continue;
        for (int h = 1; h <= p2f.NBETA; ++h) {
            difference = std::max(difference, std::abs(a(m, h, period) - b(m, h, period)));
            size = std::max(size, std::abs(a(m, h, period)));
        }
    }
    return size > 0 ? difference / size : 0;
}
