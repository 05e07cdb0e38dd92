// vorda-p2f coef: added mass, damping and exciting force of every period.
#include "../support/arguments.hpp"
#include "command.hpp"

#include "post/coefficients.hpp"

Show set_up_coef(CLI::App &app) {
    const auto tables = add_table_options(app, {"radiation", "exciting"});
    const auto density = add_density(app, false);
    const auto gravity = std::make_shared<double>(0);
    app.add_option("--gravity", *gravity, "gravity, when not that of the file")
        ->check(positive_number())
        ->default_str("");
    return [=](const P2fFile &p2f) {
        Coefficients coefficients;
        if (!form_coefficients(p2f, coefficients))
            return refuse("not enough memory");
        Scales scales = scales_of(p2f, *density);
        if (*gravity > 0)
            scales.gravity = *gravity;
        std::vector<Table> made;
        if (p2f.IRAD >= 0)
            made.push_back(radiation_table(p2f, scales, coefficients));
        if (p2f.IDIFF >= 0)
            made.push_back(exciting_table(p2f, scales, coefficients));
        return show_tables(*tables, made);
    };
}
