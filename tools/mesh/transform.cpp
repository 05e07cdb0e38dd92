#include "transform.hpp"

#include "../support/arguments.hpp"
#include "gdf_file.hpp"

#include "exchange/part_file.hpp"

#include <cstdio>
#include <memory>

namespace {

struct TransformRequest {
    std::string file, output, mirror = "none";
    std::vector<std::string> join;
    double scale = 1, turn = 0;
    std::vector<double> shift = {0, 0, 0};
    bool full = false, divide = false, split = false, lids = false;
};

int fail(const std::string &error) {
    std::fprintf(stderr, "vorda-mesh: %s\n", error.c_str());
    return 1;
}

void scale(GdfBody &body, double factor) {
    for (GdfPanel &panel : body.panels)
        for (BodyPoint &p : panel.at)
            for (double &v : p)
                v *= factor;
    body.ULEN *= factor; // dipole records are in units of it
}

void mirror(GdfBody &body, std::size_t axis) {
    for (GdfPanel &panel : body.panels) {
        for (BodyPoint &p : panel.at)
            p[axis] = 0 - p[axis];
        reverse(panel);
    }
}

// All bodies in one: what is symmetric for all of them stays so.
GdfBody joined(std::vector<GdfBody> &bodies) {
    for (const int axis : {0, 1}) {
        bool all = true;
        for (const GdfBody &body : bodies)
            all = all && is_mirrored(body, axis);
        for (GdfBody &body : bodies)
            if (!all && is_mirrored(body, axis))
                add_images(body, axis);
    }
    GdfBody one = bodies.front();
    for (std::size_t b = 1; b < bodies.size(); ++b)
        for (GdfPanel panel : bodies[b].panels) {
            panel.DTHK *= bodies[b].ULEN / one.ULEN;
            one.panels.push_back(panel);
        }
    return one;
}

// The bodies of a global file, or the connected pieces of each.
std::vector<GdfBody> pieces(const GdfBody &body) {
    constexpr double SAME = 1e-6; // over the size
    const MergedVertices mesh = joined(body, SAME);
    const std::vector<bool> all(mesh.of_panel.size(), true);
    const MeshPieces found = pieces_of(edges_of(mesh, all), all);
    std::vector<GdfBody> parts(static_cast<std::size_t>(found.pieces), body);
    for (GdfBody &part : parts)
        part.panels.clear();
    for (std::size_t p = 0; p < body.panels.size(); ++p)
        parts[static_cast<std::size_t>(found.piece[p])].panels.push_back(body.panels[p]);
    return parts;
}

int write_one(const std::string &name, const GdfBody &body) {
    std::string error;
    if (!write_gdf(name, body, error))
        return fail(error);
    std::printf("%s: panels %zu, ISX, ISY = %d, %d\n", name.c_str(), body.panels.size(), body.index[0],
                body.index[1]);
    return 0;
}

int run_transform(const TransformRequest &r) {
    std::vector<GdfBody> bodies;
    for (std::size_t f = 0; f <= r.join.size(); ++f)
        if (!read_gdf(f == 0 ? r.file : r.join[f - 1], r.lids, bodies))
            return 1;
    for (GdfBody &body : bodies) {
        if ((body.index[0] < 0 || body.index[1] < 0) &&
            (r.turn != 0 || r.shift[0] != 0 || r.shift[1] != 0 || bodies.size() > 1))
            return fail(body.name + " has a wall (index below 0): it cannot be moved or joined");
        put_in_place(body);
        scale(body, r.scale);
        move_body(body, r.turn, {r.shift[0], r.shift[1], r.shift[2]});
        if (r.mirror != "none")
            mirror(body, r.mirror == "x" ? 0 : 1);
        for (const int axis : {0, 1})
            if (r.full && is_mirrored(body, axis))
                add_images(body, axis);
        if (r.divide)
            divide(body);
    }
    if (!r.split)
        return write_one(r.output, bodies.size() == 1 ? bodies.front() : joined(bodies));
    // The parts of a file: bodies when it names several, else connected pieces.
    std::vector<GdfBody> parts = bodies.size() > 1 ? bodies : pieces(bodies.front());
    const std::size_t dot = r.output.rfind('.') == std::string::npos ? r.output.size() : r.output.rfind('.');
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (write_one(r.output.substr(0, dot) + "_" + std::to_string(i + 1) + r.output.substr(dot),
                      parts[i]) != 0)
            return 1;
    return 0;
}

} // namespace

std::function<int()> add_transform(CLI::App &app) {
    const auto r = std::make_shared<TransformRequest>();
    CLI::App *command =
        app.add_subcommand("transform", "scales, turns, shifts, mirrors, divides, joins and splits geometry "
                                        "files; bodies of a global file in place");
    command->add_option("FILE", r->file, "geometry file, or global geometry file")->required();
    command->add_option("-o,--output", r->output, "name of the GDF file")->required();
    command->add_option("--scale", r->scale, "factor of all lengths, of ULEN too, first of all")
        ->check(positive_number());
    command->add_option("--turn", r->turn, "angle about z, then [degrees]");
    command->add_option("--shift", r->shift, "added to x, y, z, then [length]")->expected(3);
    command->add_option("--mirror", r->mirror, "then: x turns the sign of x, y that of y")
        ->check(CLI::IsMember({"none", "x", "y"}));
    command->add_flag("--full", r->full, "writes the images of symmetry as panels");
    command->add_flag("--divide", r->divide, "each panel in four, within its face");
    command->add_option("--join", r->join, "geometry files whose panels are added, treated alike");
    command->add_flag("--split", r->split,
                      "one file NAME_1.gdf ... for each body of a global file, or connected piece");
    command->add_flag("--lids", r->lids, "the global file holds BDTYP and FSDMP (IFSLID)");
    return [=] { return command->parsed() ? run_transform(*r) : -1; };
}
