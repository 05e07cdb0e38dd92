// vorda-mesh: panels of simple hulls as GDF files.
#include "shapes.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

struct Request {
    std::string output;
    std::string part = "quarter";
    double length = 1, beam = 1, draft = 1, radius = 1;
    int nu = 8, nv = 8, nw = 4;
    bool lid = false;
    bool standing = false;
    std::vector<double> offset = {0, 0, 0};
    double distance = 1, depth = 1, height = 1;
    double porosity[2] = {0, 0};
    int mark = 1;
    double ULEN = 1, GRAV = 9.80665;
};

// Panels of the wanted part and its symmetry indices.
Panels part_of(const Panels &quarter, const std::string &part, int &ISX, int &ISY) {
    ISX = part == "quarter" || part == "half-x" ? 1 : 0;
    ISY = part == "quarter" || part == "half-y" ? 1 : 0;
    Panels panels = quarter;
    if (ISX == 0)
        panels = mirrored(panels, 0);
    if (ISY == 0)
        panels = mirrored(panels, 1);
    return panels;
}

bool write_gdf(const Request &request, const std::string &title, Panels panels, int ISX, int ISY) {
    std::FILE *file = std::fopen(request.output.c_str(), "w");
    if (file == nullptr)
        return false;
    std::fprintf(file, "%s\n", title.c_str());
    const auto is_plate = [](const MeshPanel &panel) { return panel.plate; };
    const bool plates = std::any_of(panels.begin(), panels.end(), is_plate);
    std::fprintf(file, " %.9g %.9g\n %d %d\n %zu%s\n", request.ULEN, request.GRAV, ISX, ISY, panels.size(),
                 plates ? " 1" : "");
    for (const MeshPanel &panel : panels) {
        for (const Point &p : panel.vertex)
            std::fprintf(file, " %.9g %.9g %.9g\n", p[0] + request.offset[0], p[1] + request.offset[1],
                         p[2] + request.offset[2]);
    }
    for (std::size_t i = 0; plates && i < panels.size(); ++i)
        std::fprintf(file, " %d %.9g %.9g 0\n", panels[i].plate ? request.mark : 0, request.porosity[0],
                     request.porosity[1]);
    const bool good = std::ferror(file) == 0;
    return std::fclose(file) == 0 && good;
}

} // namespace

int main(int argc, char **argv) {
    CLI::App app("Writes the panels of a simple hull, free surface at z = 0, as a GDF file.\n"
                 "Panel counts are those of one quarter.");
    app.require_subcommand(1);
    Request r;
    const auto common = [&](CLI::App *shape) {
        shape->add_option("-o,--output", r.output, "name of the GDF file")->required();
        shape->add_option("--part", r.part, "quarter, half-x (x >= 0, symmetric about x = 0), half-y, full")
            ->check(CLI::IsMember({"quarter", "half-x", "half-y", "full"}));
        shape->add_option("--offset", r.offset, "added to x, y, z of all vertices")->expected(3);
        shape->add_option("--ulen", r.ULEN, "length scale ULEN of the file")->check(CLI::PositiveNumber);
        shape->add_option("--gravity", r.GRAV, "gravity GRAV of the file")->check(CLI::PositiveNumber);
    };
    const auto count = [](CLI::App *shape, const char *name, int &value, const char *text) {
        shape->add_option(name, value, text)->check(CLI::Range(1, 10000));
    };
    const auto size = [](CLI::App *shape, const char *name, double &value, const char *text) {
        shape->add_option(name, value, text)->check(CLI::PositiveNumber);
    };
    CLI::App *sphere = app.add_subcommand("hemisphere", "floating hemisphere");
    common(sphere);
    size(sphere, "--radius", r.radius, "radius");
    count(sphere, "--nu", r.nu, "panels around");
    count(sphere, "--nv", r.nv, "panels from the waterline to the bottom");
    CLI::App *tube = app.add_subcommand("cylinder", "truncated vertical cylinder");
    common(tube);
    size(tube, "--radius", r.radius, "radius");
    size(tube, "--draft", r.draft, "draft");
    count(tube, "--nu", r.nu, "panels around");
    count(tube, "--nv", r.nv, "panels down the side");
    count(tube, "--nw", r.nw, "panels from the axis to the edge");
    tube->add_flag("--standing", r.standing, "no bottom: the cylinder stands on the sea bed");
    tube->add_flag("--lid", r.lid, "adds the inner free surface, normal down");
    CLI::App *barge = app.add_subcommand("box", "rectangular barge");
    common(barge);
    size(barge, "--length", r.length, "length, along x");
    size(barge, "--beam", r.beam, "beam, along y");
    size(barge, "--draft", r.draft, "draft");
    count(barge, "--nu", r.nu, "panels along half the length");
    count(barge, "--nv", r.nv, "panels along half the beam");
    count(barge, "--nw", r.nw, "panels down the draft");
    barge->add_flag("--lid", r.lid, "adds the inner free surface, normal down");
    CLI::App *hull = app.add_subcommand("wigley", "Wigley hull with parabolic sections and waterlines");
    common(hull);
    size(hull, "--length", r.length, "length, along x");
    size(hull, "--beam", r.beam, "beam, along y");
    size(hull, "--draft", r.draft, "draft");
    count(hull, "--nu", r.nu, "panels along half the length");
    count(hull, "--nv", r.nv, "panels down the draft");
    const auto plate_options = [&](CLI::App *shape) {
        shape->add_option("--idip", r.mark, "mark IDIP of the panels");
        shape->add_option("--dpora", r.porosity[0], "porosity coefficient DPORA");
        shape->add_option("--dporb", r.porosity[1], "porosity coefficient DPORB");
    };
    CLI::App *plate = app.add_subcommand("disc", "horizontal disc without thickness, of dipole panels");
    common(plate);
    plate_options(plate);
    size(plate, "--radius", r.radius, "radius");
    size(plate, "--depth", r.depth, "depth below the free surface");
    count(plate, "--nu", r.nu, "panels around");
    count(plate, "--nw", r.nw, "panels from the axis to the edge");
    CLI::App *twin = app.add_subcommand("plates", "two vertical plates without thickness, across x, from the free surface");
    common(twin);
    plate_options(twin);
    size(twin, "--distance", r.distance, "distance of the plates");
    size(twin, "--beam", r.beam, "beam, along y");
    size(twin, "--draft", r.draft, "draft");
    count(twin, "--nu", r.nu, "panels along half the beam");
    count(twin, "--nv", r.nv, "panels down the draft");
    CLI::App *closed = app.add_subcommand("tank", "closed rectangular tank, normals out of the fluid");
    common(closed);
    size(closed, "--length", r.length, "length, along x");
    size(closed, "--beam", r.beam, "beam, along y");
    size(closed, "--height", r.height, "height");
    size(closed, "--depth", r.depth, "depth of its top below z = 0");
    count(closed, "--nu", r.nu, "panels along half the length");
    count(closed, "--nv", r.nv, "panels along half the beam");
    count(closed, "--nw", r.nw, "panels down the height");
    CLI11_PARSE(app, argc, argv);

    int ISX = 0;
    int ISY = 0;
    Panels quarter;
    std::string title;
    if (sphere->parsed()) {
        quarter = hemisphere(r.radius, r.nu, r.nv);
        title = "Hemisphere";
    } else if (tube->parsed()) {
        quarter = cylinder(r.radius, r.draft, r.nu, r.nv, r.nw, !r.standing, r.lid);
        title = "Truncated cylinder";
    } else if (barge->parsed()) {
        quarter = box(r.length, r.beam, r.draft, r.nu, r.nv, r.nw, r.lid);
        title = "Barge";
    } else if (plate->parsed()) {
        quarter = heave_plate(r.radius, -r.depth, r.nu, r.nw);
        title = "Disc";
    } else if (twin->parsed()) {
        quarter = twin_plates(r.distance, r.beam, r.draft, r.nu, r.nv);
        title = "Two plates";
    } else if (closed->parsed()) {
        quarter = tank(r.length, r.beam, r.height, -r.depth, r.nu, r.nv, r.nw);
        title = "Tank";
    } else {
        quarter = wigley(r.length, r.beam, r.draft, r.nu, r.nv);
        title = "Wigley hull";
    }
    const Panels panels = part_of(quarter, r.part, ISX, ISY);
    if (!write_gdf(r, title + ", " + r.part, panels, ISX, ISY)) {
        std::fprintf(stderr, "vorda-mesh: %s cannot be written: %s\n", r.output.c_str(), std::strerror(errno));
        return 1;
    }
    return 0;
}
