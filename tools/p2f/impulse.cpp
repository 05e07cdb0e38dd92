// vorda-p2f impulse: impulse responses for the time domain.
#include "../support/arguments.hpp"
#include "command.hpp"

#include "post/result_tables.hpp"

Show set_up_impulse(CLI::App &app) {
    const auto tables = add_table_options(app, {"check", "radiation", "exciting"});
    const auto density = add_density(app, true);
    const auto times = std::make_shared<ImpulseTimes>();
    app.add_option("--step", times->step,
                   "step of the times, s [a quarter of what the highest frequency needs]")
        ->check(positive_number())
        ->default_str("");
    app.add_option("--length", times->length, "last time, s [as far as the step of the frequencies allows]")
        ->check(positive_number())
        ->default_str("");
    return [=](const P2fFile &p2f) {
        Scales scales;
        std::string error;
        ExcitingForces X;
        RadiationForces R;
        ImpulseResponses r;
        if (!dimensional_scales(p2f, *density, scales, error) || !form_radiation(p2f, scales, R, error))
            return refuse(error);
        const bool waves = p2f.IDIFF >= 0 && p2f.NBETA > 0;
        if ((waves || tables->wanted == "exciting") && !form_exciting(p2f, scales, X, error))
            return refuse(error);
        if (!form_impulse(p2f, scales, R, X.pressure, *times, r, error))
            return refuse(error);
        std::vector<Table> made = {impulse_check_table(p2f, scales, r)};
        if (tables->csv) {
            made.push_back(radiation_response_table(p2f, scales, r));
            made.push_back(exciting_response_table(p2f, scales, r));
        }
        return show_tables(*tables, made);
    };
}
