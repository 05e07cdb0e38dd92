// vorda-p2f field: elevation, pressure, potential and velocity at points of the fluid.
#include "moving.hpp"
#include "point_list.hpp"

#include "base/text.hpp"
#include "post/wave_tables.hpp"

namespace {

struct FieldOptions {
    std::string file;
    std::vector<double> grid;
    double z = 0;
    bool velocity = false;
};

bool points_of(const FieldOptions &options, double length, const P2fFile &p2f, FieldRequest &request,
               std::string &error) {
    std::vector<Vector3> points;
    if (options.file.empty() && options.grid.empty()) {
        error = "give points by --points or --grid";
        return false;
    }
    if (!options.file.empty() && !read_points(options.file, points, error))
        return false;
    if (!options.grid.empty() && !grid_points(options.grid, options.z, points, error))
        return false;
    for (const Vector3 &p : points)
        request.points.push_back(times(1 / length, p));
    request.mark = mark_points(p2f, request.points);
    return true;
}

} // namespace

Show set_up_field(CLI::App &app) {
    const auto tables = add_table_options(app, {"wave", "velocity"});
    const auto request = add_moving(app);
    const auto convention = add_convention(app);
    const auto options = std::make_shared<FieldOptions>();
    app.add_option("--points", options->file, "list of points: x, y, z in a line, global axes");
    app.add_option("--grid", options->grid, "level grid: X0 X1 NX Y0 Y1 NY")->expected(6);
    app.add_option("--z", options->z, "height of the grid, 0 or below");
    app.add_flag("--velocity", options->velocity, "velocities as well (ISOR=1)");
    return [=](const P2fFile &p2f) {
        MovingBodies bodies;
        FieldRequest at;
        std::string error;
        if (!move_bodies(*request, p2f, bodies, error))
            return refuse(error);
        const Scales &scales = bodies.of_case.scales;
        at.velocity = options->velocity || tables->wanted == "velocity";
        if (!points_of(*options, scales.length, p2f, at, error))
            return refuse(error);
        Table wave = field_table(scales, *convention), velocity = field_velocity_table(scales, *convention);
        double by_sources = 0;
        for (const int t : bodies.periods) {
            Field field;
            if (!form_field(p2f, t, bodies.motions(t), at, field, error))
                return refuse(error);
            by_sources = std::max(by_sources, field.by_sources);
            for (const int b : bodies.headings) {
                if (!tables->csv || tables->wanted != "velocity")
                    add_field_rows(wave, p2f, scales, {t, b}, at, field, *convention);
                if (at.velocity)
                    add_field_velocity_rows(velocity, p2f, scales, {t, b}, at, field, *convention);
            }
        }
        wave.notes.insert(wave.notes.end(), bodies.notes.begin(), bodies.notes.end());
        if (p2f.ISOR == 1 && by_sources > 0)
            wave.notes.push_back("Scattered and radiated waves from the sources differ by " +
                                 trimmed(fixed(8, 4, static_cast<f32>(by_sources))) +
                                 " of the largest at most.");
        std::vector<Table> all;
        all.push_back(std::move(wave));
        if (at.velocity)
            all.push_back(std::move(velocity));
        return show_tables(*tables, all);
    };
}
