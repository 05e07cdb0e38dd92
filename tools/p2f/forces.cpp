// vorda-p2f forces: exciting force, added mass and damping, each in two ways.
#include "../support/arguments.hpp"
#include "command.hpp"

#include "post/kochin.hpp"
#include "post/result_tables.hpp"

#include <cmath>
#include <limits>

namespace {

// Damping from the waves far away, dimensional; empty, with the reason, where the file does not allow it.
bool far_damping(const P2fFile &p2f, const Scales &scales, Array<double, 3> &B, std::string &why) {
    if (!B.alloc(p2f.NMODES, p2f.NMODES, p2f.NPER)) {
        why = "there is not enough memory";
        return false;
    }
    for (int t = 1; t <= p2f.NPER; ++t) {
        if (frequency_kind(p2f, t) != Frequency::wave)
            continue;
        Kochin kochin;
        Array<double, 2> one;
        const FarFieldOf from =
            PanelKinds(p2f).lid_body && p2f.ISOR == 1 ? FarFieldOf::sources : FarFieldOf::potentials;
        if (!form_kochin(p2f, t, kochin_angles(p2f, t), from, kochin, why)) {
            B.release();
            return false;
        }
        if (!far_field_damping(p2f, t, kochin, one)) {
            why = "there is not enough memory";
            B.release();
            return false;
        }
        for (int j = 1; j <= p2f.NMODES; ++j)
            for (int i = 1; i <= p2f.NMODES; ++i)
                B(i, j, t) = scales.density * omega_of(p2f, t) *
                             std::pow(scales.length, 3 + rotations(p2f, i) + rotations(p2f, j)) * one(i, j);
    }
    return true;
}

} // namespace

Show set_up_forces(CLI::App &app) {
    const auto tables = add_table_options(app, {"exciting", "radiation"});
    const auto density = add_density(app, true);
    const auto convention = add_convention(app);
    return [=](const P2fFile &p2f) {
        std::vector<Table> made;
        std::string error;
        Scales scales;
        if (!dimensional_scales(p2f, *density, scales, error))
            return refuse(error);
        ExcitingForces X;
        RadiationForces R;
        if (p2f.IDIFF < 0 && p2f.IRAD < 0)
            return refuse("the file has no solutions: the run needs IRAD or IDIFF 0 or 1");
        if (p2f.IDIFF >= 0) {
            if (!form_exciting(p2f, scales, X, error))
                return refuse(error);
            made.push_back(force_table(p2f, scales, X, *convention));
        }
        if (p2f.IRAD >= 0) {
            Array<double, 3> far;
            std::string why;
            if (!form_radiation(p2f, scales, R, error))
                return refuse(error);
            const bool good = far_damping(p2f, scales, far, why);
            made.push_back(added_mass_table(p2f, scales, R, far));
            if (!good)
                made.back().notes.push_back("No damping far away: " + why + ".");
        }
        if (tables->wanted == "exciting" && p2f.IDIFF < 0)
            return refuse("the run has no diffraction solutions: it needs IDIFF 0 or 1");
        if (tables->wanted == "radiation" && p2f.IRAD < 0)
            return refuse("the run has no radiation solutions: it needs IRAD 0 or 1");
        return show_tables(*tables, made);
    };
}
