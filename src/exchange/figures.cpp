#include "exchange/plot.hpp"

#include "exchange/named_arrays.hpp"
#include "post/table_cells.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace {

constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t MOST_CURVES = 8; // that can be told apart
constexpr double NOTHING = 1e-4;       // of the largest value of its kind: no phase worth a mark

std::size_t at(int k) {
    return static_cast<std::size_t>(k - 1);
}

// Numbers of the modes of a body that share a figure.
struct Group {
    std::string name, title;
    std::vector<int> numbers;
};

class Figures {
  public:
    Figures(const DataSet &data, const PlotRequest &request)
        : d(data), p(*data.p2f), over_frequency_(request.over_frequency),
          headings_(request.headings.empty() ? chosen(data.headings) : request.headings) {
        groups();
    }

    std::vector<PlotFigure> make() {
        if (!d.R.A.empty()) {
            for (const Group &group : groups_)
                radiation(group);
            couplings();
        }
        if (!d.headings.empty()) {
            const std::string &l = d.of_case.scales.names.length, &f = d.of_case.scales.names.force;
            over_headings("exciting", "Exciting force", d.X.pressure, 1,
                          {f + "/" + l, f + " " + l + "/" + l});
            if (!d.xi.empty())
                over_headings("rao", "Motion", d.xi, DEGREES, {l + "/" + l, "deg/" + l});
        }
        if (!d.far.empty() || !d.near.empty())
            drift();
        return std::move(figures_);
    }

  private:
    static std::vector<int> chosen(const std::vector<int> &all) {
        if (all.size() <= MOST_CURVES)
            return all;
        std::vector<int> some;
        for (std::size_t k = 0; k < MOST_CURVES; ++k)
            some.push_back(all[k * (all.size() - 1) / (MOST_CURVES - 1)]);
        return some;
    }

    void groups() {
        groups_ = {{"translation", "translations", {1, 2, 3}}, {"rotation", "rotations", {4, 5, 6}}};
        int most = 0;
        for (int b = 1; b <= p.NBODY; ++b)
            most = std::max(most, p.NEWMDS(b));
        for (int first = 7; first <= 6 + most; first += 3) {
            const int last = std::min(first + 2, 6 + most);
            Group group{"modes_" + std::to_string(first) + "_to_" + std::to_string(last), "extra modes", {}};
            for (int k = first; k <= last; ++k)
                group.numbers.push_back(k);
            groups_.push_back(group);
        }
    }

    // The mode of a body, 0 when it has none of that number or it was not solved.
    int mode_of(int body, int number) const {
        const int mode = modes_before(p, body) + number;
        return number <= 6 + p.NEWMDS(body) && p.MODPOS(mode) > 0 ? mode : 0;
    }

    PlotCurve curve(const std::string &name, const std::function<double(int)> &value) const {
        PlotCurve made{name, {}, false, NONE, NONE};
        for (const int t : d.waves)
            made.points.emplace_back(over_frequency_ ? omega_of(p, t) : period_of(p, t), value(t));
        if (!over_frequency_)
            std::reverse(made.points.begin(), made.points.end());
        for (const int t : d.order) {
            if (frequency_kind(p, t) == Frequency::zero)
                made.at_zero = value(t);
            if (frequency_kind(p, t) == Frequency::infinite)
                made.at_infinity = value(t);
        }
        return made;
    }
    std::string of_body(int body) const { return p.NBODY > 1 ? "body " + std::to_string(body) : ""; }

    // A row: added mass and damping of the modes i and j (numbers) of all bodies.
    void add_pair(PlotFigure &figure, int i, int j) {
        const UnitNames &unit = d.of_case.scales.names;
        const int levers = (i >= 4 && i <= 6 ? 1 : 0) + (j >= 4 && j <= 6 ? 1 : 0);
        const std::string what = mode_name({1, i}) + (i == j ? "" : "-" + mode_name({1, j})),
                          mass = unit.mass + (levers == 0   ? ""
                                              : levers == 1 ? " " + unit.length
                                                            : " " + unit.length + "^2");
        PlotPanel A{"added mass, " + what, mass, {}, PlotPanel::Range::any},
            B{"damping, " + what, mass + "/s", {}, PlotPanel::Range::any};
        for (int body = 1; body <= p.NBODY; ++body) {
            const int m = mode_of(body, i), n = mode_of(body, j);
            if (m == 0 || n == 0)
                continue;
            A.curves.push_back(curve(of_body(body), [&](int t) { return d.R.A(m, n, t); }));
            B.curves.push_back(curve(of_body(body), [&](int t) { return d.R.B(m, n, t); }));
        }
        if (A.curves.empty())
            return;
        figure.panels.push_back(std::move(A));
        figure.panels.push_back(std::move(B));
    }
    void radiation(const Group &group) {
        PlotFigure figure{"radiation_" + group.name, "Added mass and damping, " + group.title, 2, {}, ""};
        for (const int k : group.numbers)
            add_pair(figure, k, k);
        keep(std::move(figure));
    }
    // The three largest pairs of rigid modes, by their added mass and damping over that of the modes alone.
    void couplings() {
        constexpr double LEAST = 0.01;
        constexpr std::size_t SHOWN = 3;
        struct Pair {
            double share;
            int i, j;
        };
        std::vector<Pair> pairs;
        for (int i = 1; i <= 6; ++i)
            for (int j = i + 1; j <= 6; ++j) {
                double share = 0;
                for (int body = 1; body <= p.NBODY; ++body) {
                    const int m = mode_of(body, i), n = mode_of(body, j);
                    for (const int t : d.waves)
                        if (m > 0 && n > 0)
                            share = std::max(share, std::abs(d.R.A(m, n, t)) /
                                                        std::sqrt(std::abs(d.R.A(m, m, t) * d.R.A(n, n, t))));
                }
                if (share > LEAST)
                    pairs.push_back({share, i, j});
            }
        std::stable_sort(pairs.begin(), pairs.end(),
                         [](const Pair &a, const Pair &b) { return a.share > b.share; });
        PlotFigure figure{"radiation_coupling", "Added mass and damping, largest couplings", 2, {}, ""};
        for (std::size_t k = 0; k < std::min(SHOWN, pairs.size()); ++k)
            add_pair(figure, pairs[k].i, pairs[k].j);
        keep(std::move(figure));
    }

    std::string heading_name(int b) const {
        char text[48];
        std::snprintf(text, sizeof text, "heading %g°", static_cast<double>(p.BETA(b)));
        return text;
    }

    // Modulus and phase of a complex quantity of the modes, a figure for each body and group. `angle`: what
    // rotations are shown in; units of translations and rotations.
    void over_headings(const std::string &name, const std::string &title, const Array<c64, 3> &values,
                       double angle, const std::array<std::string, 2> &units) {
        double largest[2] = {};
        for (const int m : d.modes)
            for (const int t : d.waves)
                for (const int b : headings_)
                    largest[rotations(p, m)] = std::max(largest[rotations(p, m)], std::abs(values(m, b, t)));
        for (int body = 1; body <= p.NBODY; ++body)
            for (const Group &group : groups_) {
                PlotFigure figure{name + (p.NBODY > 1 ? "_" + body_name(body) : "") + "_" + group.name,
                                  title + (p.NBODY > 1 ? ", " + of_body(body) : "") + ", " + group.title,
                                  2,
                                  {},
                                  "Per unit wave amplitude. " + std::string(Convention().note())};
                for (const int number : group.numbers) {
                    const int m = mode_of(body, number), turn = m > 0 ? rotations(p, m) : 0;
                    if (m == 0)
                        continue;
                    PlotPanel size{mode_name({body, number}),
                                   units[static_cast<std::size_t>(turn)],
                                   {},
                                   PlotPanel::Range::from_zero},
                        phase{"phase, " + mode_name({body, number}), "deg", {}, PlotPanel::Range::degrees};
                    const double least = NOTHING * largest[turn], unit = turn == 1 ? angle : 1;
                    for (const int b : headings_) {
                        size.curves.push_back(curve(heading_name(b), [&](int t) {
                            return unit * without_round_off(std::abs(values(m, b, t)), largest[turn]);
                        }));
                        phase.curves.push_back(curve(heading_name(b), [&](int t) {
                            return std::abs(values(m, b, t)) > least ? std::arg(values(m, b, t)) * DEGREES
                                                                     : NONE;
                        }));
                    }
                    figure.panels.push_back(std::move(size));
                    figure.panels.push_back(std::move(phase));
                }
                keep(std::move(figure));
            }
    }

    // Over rho g L, or over rho g L^2: on all bodies together about the global origin.
    double far_of(const FarDrift &drift, int component) const {
        return component == 0 ? drift.surge : component == 1 ? drift.sway : drift.yaw;
    }
    double near_of(const std::vector<NearDrift> &bodies, int component) const {
        double sum[3] = {};
        for (int body = 1; body <= p.NBODY; ++body) {
            const NearDrift &one = bodies[at(body)];
            const double x = one.total(0), y = one.total(1);
            sum[0] += x;
            sum[1] += y;
            sum[2] += one.total(5) + static_cast<double>(p.XBODY(1, body)) * y -
                      static_cast<double>(p.XBODY(2, body)) * x;
        }
        return sum[component];
    }
    void drift() {
        const Scales &s = d.of_case.scales;
        const std::string &l = s.names.length, &f = s.names.force;
        PlotFigure figure{"drift",
                          "Mean drift on all bodies over the amplitude squared, global axes and origin",
                          1,
                          {},
                          d.near.empty() || d.far.empty()
                              ? ""
                              : "Lines: by the waves far away. Marks alone: by the pressures on the hull."};
        constexpr const char *NAMES[3] = {"surge", "sway", "yaw"};
        double largest = 0; // what is small beside it is round-off
        for (const int t : d.waves)
            for (const int b : headings_)
                for (int c = 0; c < 3; ++c)
                    largest = std::max(largest, std::abs(d.far.empty() ? near_of(d.near[at(t)][at(b)], c)
                                                                       : far_of(d.far[at(t)][at(b)], c)));
        const auto cleared = [&](double value) { return std::abs(value) > NOTHING * largest ? value : 0; };
        for (int c = 0; c < 3; ++c) {
            PlotPanel panel{NAMES[c],
                            c < 2 ? f + "/" + l + "^2" : f + " " + l + "/" + l + "^2",
                            {},
                            PlotPanel::Range::any};
            const double unit = s.density * s.gravity * s.length * (c < 2 ? 1 : s.length);
            for (const int b : headings_) {
                const auto has_waves_of = [&](int t) { return frequency_kind(p, t) == Frequency::wave; };
                if (!d.far.empty())
                    panel.curves.push_back(curve(heading_name(b), [&](int t) {
                        return has_waves_of(t) ? unit * cleared(far_of(d.far[at(t)][at(b)], c)) : NONE;
                    }));
                if (d.near.empty())
                    continue;
                PlotCurve marks = curve(d.far.empty() ? heading_name(b) : "", [&](int t) {
                    return has_waves_of(t) ? unit * cleared(near_of(d.near[at(t)][at(b)], c)) : NONE;
                });
                marks.marks_only = !d.far.empty();
                panel.curves.push_back(std::move(marks));
            }
            figure.panels.push_back(std::move(panel));
        }
        keep(std::move(figure));
    }

    void keep(PlotFigure figure) {
        if (!figure.panels.empty())
            figures_.push_back(std::move(figure));
    }

    const DataSet &d;
    const P2fFile &p;
    bool over_frequency_;
    std::vector<int> headings_;
    std::vector<Group> groups_;
    std::vector<PlotFigure> figures_;
};

} // namespace

bool has_even_frequencies(const DataSet &data) {
    constexpr std::size_t FEW = 8; // that may be even by chance
    constexpr double EVEN = 0.01;
    if (data.waves.size() < FEW)
        return false;
    const auto omega = [&](std::size_t k) { return omega_of(*data.p2f, data.waves[k]); };
    const double step =
        (omega(data.waves.size() - 1) - omega(0)) / static_cast<double>(data.waves.size() - 1);
    for (std::size_t k = 1; k < data.waves.size(); ++k)
        if (std::abs(omega(k) - omega(k - 1) - step) > EVEN * step)
            return false;
    return true;
}

std::vector<PlotFigure> figures_of(const DataSet &data, const PlotRequest &request) {
    return Figures(data, request).make();
}
