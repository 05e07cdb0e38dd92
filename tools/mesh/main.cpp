// vorda-mesh: panels of simple hulls as GDF files.
#include "../support/arguments.hpp"
#include "check.hpp"
#include "export.hpp"
#include "import.hpp"
#include "shapes.hpp"
#include "transform.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

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

// What a shape takes beside the common options: sizes, counts, flags and the options of plates,
// by their names.
struct Option {
    const char *name, *text;
};
struct Shape {
    const char *name, *text, *title;
    bool of_plates;
    std::vector<Option> options;
    Panels (*quarter)(const Request &);
};

constexpr Option RADIUS{"--radius", "radius"}, DRAFT{"--draft", "draft"},
    LENGTH{"--length", "length, along x"}, BEAM{"--beam", "beam, along y"}, AROUND{"--nu", "panels around"},
    ALONG{"--nu", "panels along half the length"}, ACROSS{"--nv", "panels along half the beam"},
    OUTWARD{"--nw", "panels from the axis to the edge"},
    LID{"--lid", "adds the inner free surface, normal down"};

// clang-format off
const Shape SHAPES[] = {
    {"hemisphere", "floating hemisphere", "Hemisphere", false,
     {RADIUS, AROUND, {"--nv", "panels from the waterline to the bottom"}},
     [](const Request &r) { return hemisphere(r.radius, r.nu, r.nv); }},
    {"cylinder", "truncated vertical cylinder", "Truncated cylinder", false,
     {RADIUS, DRAFT, AROUND, {"--nv", "panels down the side"}, OUTWARD,
      {"--standing", "no bottom: the cylinder stands on the sea bed"}, LID},
     [](const Request &r) { return cylinder(r.radius, r.draft, r.nu, r.nv, r.nw, !r.standing, r.lid); }},
    {"box", "rectangular barge", "Barge", false,
     {LENGTH, BEAM, DRAFT, ALONG, ACROSS, {"--nw", "panels down the draft"}, LID},
     [](const Request &r) { return box(r.length, r.beam, r.draft, r.nu, r.nv, r.nw, r.lid); }},
    {"wigley", "Wigley hull with parabolic sections and waterlines", "Wigley hull", false,
     {LENGTH, BEAM, DRAFT, ALONG, {"--nv", "panels down the draft"}},
     [](const Request &r) { return wigley(r.length, r.beam, r.draft, r.nu, r.nv); }},
    {"disc", "horizontal disc without thickness, of dipole panels", "Disc", true,
     {RADIUS, {"--depth", "depth below the free surface"}, AROUND, OUTWARD},
     [](const Request &r) { return heave_plate(r.radius, -r.depth, r.nu, r.nw); }},
    {"plates", "two vertical plates without thickness, across x, from the free surface", "Two plates", true,
     {{"--distance", "distance of the plates"}, BEAM, DRAFT, {"--nu", "panels along half the beam"},
      {"--nv", "panels down the draft"}},
     [](const Request &r) { return twin_plates(r.distance, r.beam, r.draft, r.nu, r.nv); }},
    {"tank", "closed rectangular tank, normals out of the fluid", "Tank", false,
     {LENGTH, BEAM, {"--height", "height"}, {"--depth", "depth of its top below z = 0"}, ALONG, ACROSS,
      {"--nw", "panels down the height"}},
     [](const Request &r) { return tank(r.length, r.beam, r.height, -r.depth, r.nu, r.nv, r.nw); }},
};
// clang-format on

CLI::App *add_shape(CLI::App &app, const Shape &shape, Request &r) {
    CLI::App *command = app.add_subcommand(shape.name, shape.text);
    command->add_option("-o,--output", r.output, "name of the GDF file")->required();
    command->add_option("--part", r.part, "quarter, half-x (x >= 0, symmetric about x = 0), half-y, full")
        ->check(CLI::IsMember({"quarter", "half-x", "half-y", "full"}));
    command->add_option("--offset", r.offset, "added to x, y, z of all vertices")->expected(3);
    command->add_option("--ulen", r.ULEN, "length scale ULEN of the file")->check(positive_number());
    command->add_option("--gravity", r.GRAV, "gravity GRAV of the file")->check(positive_number());
    if (shape.of_plates) {
        command->add_option("--idip", r.mark, "mark IDIP of the panels");
        command->add_option("--dpora", r.porosity[0], "porosity coefficient DPORA");
        command->add_option("--dporb", r.porosity[1], "porosity coefficient DPORB");
    }
    const std::map<std::string, double *> sizes = {
        {"--length", &r.length}, {"--beam", &r.beam},         {"--draft", &r.draft},  {"--radius", &r.radius},
        {"--depth", &r.depth},   {"--distance", &r.distance}, {"--height", &r.height}};
    const std::map<std::string, int *> counts = {{"--nu", &r.nu}, {"--nv", &r.nv}, {"--nw", &r.nw}};
    const std::map<std::string, bool *> flags = {{"--lid", &r.lid}, {"--standing", &r.standing}};
    for (const auto &[name, text] : shape.options) {
        if (sizes.count(name) > 0)
            command->add_option(name, *sizes.at(name), text)->check(positive_number());
        else if (counts.count(name) > 0)
            command->add_option(name, *counts.at(name), text)->check(CLI::Range(1, 10000));
        else
            command->add_flag(name, *flags.at(name), text);
    }
    return command;
}

} // namespace

int main(int argc, char **argv) {
    CLI::App app(
        "Writes the panels of a simple hull, free surface at z = 0, as a GDF file, or checks such a file.\n"
        "Panel counts are those of one quarter.",
        "vorda-mesh");
    set_up_program(app);
    app.require_subcommand(1);
    Request r;
    std::vector<CLI::App *> commands;
    for (const Shape &shape : SHAPES)
        commands.push_back(add_shape(app, shape, r));
    CheckRequest check;
    CLI::App *check_command =
        app.add_subcommand("check", "says what is wrong with the mesh of a geometry file");
    check_command->add_option("FILE", check.file, "geometry file, or global geometry file")->required();
    check_command->add_option("--depth", check.depth, "water depth; 0: infinite");
    check_command->add_option("--wave-length", check.wave_length, "shortest wave, to judge the panels by");
    check_command->add_flag("--tank", check.tank, "a filled tank: normals out of the fluid");
    check_command->add_flag("--lids", check.lids, "the global file holds BDTYP and FSDMP (IFSLID)");
    MeshCommands others;
    for (const auto add : {add_import, add_export, add_transform})
        add(app, others);
    CLI11_PARSE(app, argc, argv);
    for (const MeshCommand &command : others)
        if (command.app->parsed())
            return command.run();
    if (check_command->parsed())
        return check_gdf(check);

    const Shape *shape = SHAPES;
    for (CLI::App *command : commands) {
        if (command->parsed())
            break;
        ++shape;
    }
    int ISX = 0;
    int ISY = 0;
    const Panels panels = part_of(shape->quarter(r), r.part, ISX, ISY);
    if (!write_gdf(r, std::string(shape->title) + ", " + r.part, panels, ISX, ISY)) {
        std::fprintf(stderr, "vorda-mesh: %s cannot be written: %s\n", r.output.c_str(),
                     std::strerror(errno));
        return 1;
    }
    return 0;
}
