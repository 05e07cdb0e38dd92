#include "exchange/dataset.hpp"

#include <algorithm>
#include <optional>

namespace {

void sort_axes(DataSet &data) {
    const P2fFile &p2f = *data.p2f;
    for (const int t : by_frequency(p2f)) {
        if (!data.order.empty() && omega_of(p2f, t) == omega_of(p2f, data.order.back())) {
            data.notes.push_back("Period " + std::to_string(t) + " is there twice; the first one is taken.");
            continue;
        }
        data.order.push_back(t);
        if (frequency_kind(p2f, t) == Frequency::wave)
            data.waves.push_back(t);
    }
    for (int b = 1; p2f.IDIFF >= 0 && b <= p2f.NBETA; ++b)
        data.headings.push_back(b);
    std::stable_sort(data.headings.begin(), data.headings.end(),
                     [&](int a, int b) { return p2f.BETA(a) < p2f.BETA(b); });
    data.modes = solved_modes(p2f);
}

bool form_matrices(DataSet &data, MotionSystem &system, std::string &error) {
    const P2fFile &p2f = *data.p2f;
    const LoadedCase &of = data.of_case;
    if (!form_mass(p2f, of.masses, data.M) || !form_stiffness(p2f, of.bodies, of.masses, of.scales, data.C) ||
        !data.C_external.alloc(p2f.NMODES, p2f.NMODES) || !data.B_external.alloc(p2f.NMODES, p2f.NMODES)) {
        error = "there is not enough memory";
        return false;
    }
    std::string why;
    if (p2f.IRAD < 0 || !form_system(p2f, of.file, of.bodies, data.R, of.scales, system, why)) {
        if (!why.empty())
            data.notes.push_back("No motions: " + why + (why.back() == '?' ? "" : "."));
        return true;
    }
    for (int j = 1; j <= p2f.NMODES; ++j)
        for (int i = 1; i <= p2f.NMODES; ++i) {
            data.M(i, j) = system.M(i, j);
            data.C_external(i, j) = system.C(i, j) - data.C(i, j);
            data.B_external(i, j) = system.B(i, j);
        }
    data.notes.insert(data.notes.end(), system.notes.begin(), system.notes.end());
    return true;
}

void form_responses(DataSet &data, const MotionSystem &system) {
    const P2fFile &p2f = *data.p2f;
    if (system.free.empty())
        return;
    std::string why;
    std::vector<std::string> notes;
    if (!data.headings.empty() && !form_motions(p2f, system, data.R, data.X.pressure, data.xi, why)) {
        data.xi.release();
        data.notes.push_back("No motions: " + why + ".");
    }
    if (!form_natural(p2f, system, data.R, data.natural, notes, why))
        data.notes.push_back("No natural periods: " + why + ".");
    data.notes.insert(data.notes.end(), notes.begin(), notes.end());
}

// Each thread has periods of its own: what is parallel within a period waits for too much else.
void form_drift(DataSet &data) {
    const P2fFile &p2f = *data.p2f;
    if (data.xi.empty() || data.waves.empty())
        return;
    const FarFieldOf from =
        PanelKinds(p2f).lid_body && p2f.ISOR == 1 ? FarFieldOf::sources : FarFieldOf::potentials;
    std::optional<SurfaceGradient> gradient;
    if (p2f.ISOR == 1)
        gradient.emplace(p2f, PanelKinds(p2f));
    std::string no_far, no_near = gradient ? "" : "the file has no sources: set ISOR=1 in the run";
    data.far.resize(static_cast<std::size_t>(p2f.NPER));
    data.near.resize(static_cast<std::size_t>(p2f.NPER));
    const int count = static_cast<int>(data.waves.size());
#pragma omp parallel for schedule(dynamic)
    for (int k = 0; k < count; ++k) {
        const int t = data.waves[static_cast<std::size_t>(k)];
        const std::size_t at = static_cast<std::size_t>(t - 1);
        std::string far_fault, near_fault;
        const bool far = form_far_drift(p2f, t, data.motions(t), from, data.far[at], far_fault),
                   near = !gradient ||
                          form_near_drift(p2f, t, data.motions(t), *gradient, data.near[at], near_fault);
#pragma omp critical(drift_fault)
        {
            no_far = far ? no_far : far_fault;
            no_near = near ? no_near : near_fault;
        }
    }
    if (!no_far.empty()) {
        data.far.clear();
        data.notes.push_back("No drift by the waves far away: " + no_far + ".");
    }
    if (!no_near.empty()) {
        data.near.clear();
        data.notes.push_back("No drift by pressures: " + no_near + ".");
    }
}

} // namespace

bool form_data_set(const DataWants &wants, DataSet &data, std::string &error) {
    const P2fFile &p2f = *data.p2f;
    const Scales &scales = data.of_case.scales;
    if (p2f.IDIFF < 0 && p2f.IRAD < 0) {
        error = "the file has no solutions: the run needs IRAD or IDIFF 0 or 1";
        return false;
    }
    sort_axes(data);
    MotionSystem system;
    if ((p2f.IRAD >= 0 && !form_radiation(p2f, scales, data.R, error)) ||
        (!data.headings.empty() && !form_exciting(p2f, scales, data.X, error)) ||
        !form_matrices(data, system, error))
        return false;
    if (p2f.IRAD < 0)
        data.notes.emplace_back("No added mass, damping and motions: set IRAD=1 in the run.");
    if (data.headings.empty())
        data.notes.emplace_back("No exciting forces and motions: set IDIFF=1 and headings in the run.");
    else if (!data.X.no_haskind.empty())
        data.notes.push_back("No exciting force by Haskind's relation: " + data.X.no_haskind + ".");
    if (!data.of_case.given)
        data.notes.emplace_back(NO_CASE_NOTE);
    form_responses(data, system);
    if (wants.drift)
        form_drift(data);
    std::string why;
    if (wants.impulse && p2f.IRAD >= 0 &&
        !form_impulse(p2f, scales, data.R, data.X.pressure, {}, data.impulse, why)) {
        data.impulse = {};
        data.notes.push_back("No impulse responses: " + why + ".");
    }
    return true;
}
