#include "import.hpp"

#include "../support/arguments.hpp"
#include "check.hpp"
#include "gdf_file.hpp"
#include "hull_steps.hpp"

#include "exchange/mesh_read.hpp"
#include "exchange/part_file.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

struct ImportRequest {
    MeshReadRequest read;
    HullRequest hull;
    std::string output;
    double scale = 1, turn = 0, waterline = 0, draught = 0, size = 0;
    std::vector<double> shift = {0, 0, 0};
    double ULEN = 1, GRAV = 9.80665;
};

void tell_step(const std::string &step, const std::string &line) {
    std::printf("%-9s %s\n", step.c_str(), line.c_str());
}
int fail(const std::string &error) {
    std::fflush(stdout);
    std::fprintf(stderr, "vorda-mesh: %s\n", error.c_str());
    return 1;
}

// Puts the points where the options say, z = 0 in the free surface.
void place(const ImportRequest &r, MergedVertices &mesh) {
    const double angle = r.turn * 3.14159265358979323846 / 180, c = std::cos(angle), s = std::sin(angle);
    double keel = 1e300;
    for (BodyPoint &p : mesh.points) {
        const double x = r.scale * p[0], y = r.scale * p[1];
        p = {c * x - s * y + r.shift[0], s * x + c * y + r.shift[1], r.scale * p[2] + r.shift[2]};
        keel = std::min(keel, p[2]);
    }
    const double surface = r.draught > 0 ? keel + r.draught : r.waterline;
    for (BodyPoint &p : mesh.points)
        p[2] -= surface;
    char line[200];
    std::snprintf(line, sizeof line,
                  "scaled by %g, turned by %g degrees, shifted by %g, %g, %g; z = 0 was at %g, draught %g",
                  r.scale, r.turn, r.shift[0], r.shift[1], r.shift[2], surface, surface - keel);
    tell_step("placed", line);
}

int run_import(ImportRequest r) {
    ReadMesh read;
    std::string error;
    r.read.size = r.size / r.scale;
    r.hull.ULEN = r.ULEN;
    if (!read_mesh(r.read, read, error))
        return fail(error);
    const std::string file = std::filesystem::path(r.read.file).filename().string();
    tell_step("read", file + ": " + std::to_string(read.mesh.points.size()) + " vertices, " +
                          std::to_string(read.mesh.of_panel.size()) + " panels");
    for (const std::string &note : read.notes)
        tell_step("note", note);
    Hull hull{std::move(read.mesh), {}};
    place(r, hull.mesh);
    if (!make_hull(r.hull, hull, tell_step, error))
        return fail(r.read.file + ": " + error);

    GdfBody body;
    body.title = "Imported from " + file.substr(0, 50);
    body.ULEN = r.ULEN;
    body.GRAV = r.GRAV;
    for (const std::size_t axis : {0u, 1u})
        body.index[axis] = hull.symmetric[axis] ? 1 : 0;
    body.panels = panels_of(hull.mesh);
    PartFile part(r.output);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return fail(error);
    put_gdf(out, body);
    if (std::fflush(out) != 0)
        return fail(r.output + " cannot be written");
    // The checks are of what the solver will read, rounded as in the file.
    std::vector<BodyFile> bodies;
    if (!read_body_files(part.part(), false, bodies))
        return 1;
    if (!part.keep(error))
        return fail(error);
    tell_step("written", r.output + ": " + std::to_string(body.panels.size()) + " panels, ISX, ISY = " +
                             std::to_string(body.index[0]) + ", " + std::to_string(body.index[1]) + "\n");
    bodies.front().name = r.output;
    return check_bodies(bodies, true);
}

} // namespace

std::function<int()> add_import(CLI::App &app) {
    const auto r = std::make_shared<ImportRequest>();
    CLI::App *command = app.add_subcommand(
        "import",
        "makes a geometry file of a mesh or CAD model of another program: cuts it at the waterline,\n"
        "orients it, finds its symmetry and checks it");
    command->add_option("FILE", r->read.file, "mesh or CAD model: " + mesh_extensions())->required();
    command->add_option("-o,--output", r->output, "name of the GDF file")->required();
    command->add_option("--scale", r->scale, "factor of all lengths, first of all")->check(positive_number());
    command->add_option("--turn", r->turn, "angle about z, then [degrees]");
    command->add_option("--shift", r->shift, "added to x, y, z, then [length]")->expected(3);
    CLI::Option *waterline =
        command->add_option("--waterline", r->waterline, "height z of the free surface after that [length]");
    command->add_option("--draught", r->draught, "depth of the lowest point instead [length]")
        ->check(positive_number())
        ->excludes(waterline);
    command
        ->add_option("--part", r->hull.part,
                     "what is written: auto (as symmetry allows), full, half-x (x >= 0), half-y, quarter")
        ->check(CLI::IsMember({"auto", "full", "half-x", "half-y", "quarter"}));
    command
        ->add_option("--size", r->size, "panels of a CAD model; 0: a fortieth of its largest extent [length]")
        ->check(CLI::NonNegativeNumber);
    command
        ->add_option("--merge", r->hull.merge,
                     "vertices nearer to each other are one; 0: 1e-6 of the size [length]")
        ->check(CLI::NonNegativeNumber);
    command->add_flag("--recombine", r->hull.recombine,
                      "joins triangles to quadrilaterals of 1 % warp at most");
    command->add_flag("--lid", r->hull.lid, "adds the inner free surface, normal down");
    command->add_option("--ulen", r->ULEN, "length scale ULEN of the file [length]")
        ->check(positive_number());
    command->add_option("--gravity", r->GRAV, "gravity GRAV of the file")->check(positive_number());
    return [=] { return command->parsed() ? run_import(*r) : -1; };
}
