// vorda-p2f drift: mean drift by the waves far away and by the pressures on the hull.
#include "moving.hpp"

#include "post/wave_tables.hpp"

Show set_up_drift(CLI::App &app) {
    const auto tables = add_table_options(app, {"drift", "bodies", "energy"});
    const auto request = add_moving(app);
    const auto sources = std::make_shared<bool>(false);
    app.add_flag("--sources", *sources, "far field of the sources instead of the potentials (ISOR=1)");
    return [=](const P2fFile &p2f) {
        MovingBodies bodies;
        std::string error, why;
        if (!move_bodies(*request, p2f, bodies, error))
            return refuse(error);
        const Scales &scales = bodies.of_case.scales;
        const bool lid = PanelKinds(p2f).lid_body;
        const FarFieldOf from =
            *sources || (lid && p2f.ISOR == 1) ? FarFieldOf::sources : FarFieldOf::potentials;
        Table drift = drift_table(scales), of_bodies = body_drift_table(scales),
              energy = energy_table(scales);
        bool pressures = p2f.ISOR == 1;
        if (!pressures)
            why = "the file has no sources: set ISOR=1 in the run";
        for (const int t : bodies.periods) {
            std::vector<FarDrift> far;
            std::vector<std::vector<NearDrift>> near;
            if (!form_far_drift(p2f, t, bodies.motions(t), from, far, error))
                return refuse(error);
            pressures = pressures && form_near_drift(p2f, t, bodies.motions(t), near, why);
            add_drift_rows(drift, p2f, scales, t, far,
                           pressures ? near : std::vector<std::vector<NearDrift>>());
            add_energy_rows(energy, p2f, scales, t, far);
            if (pressures)
                add_body_drift_rows(of_bodies, p2f, scales, t, near);
        }
        drift.notes.insert(drift.notes.end(), bodies.notes.begin(), bodies.notes.end());
        if (!pressures) {
            if (tables->wanted == "bodies")
                return refuse(why);
            drift.notes.push_back("No drift by pressures: " + why + ".");
            return show_tables(*tables, {drift, energy});
        }
        return show_tables(*tables, {drift, of_bodies, energy});
    };
}
