#include "makers.hpp"

#include "../support/arguments.hpp"
#include "shapes.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <memory>

namespace {

// What a shape takes beside the common options: sizes, counts, flags, files, by their names. A value here
// is the default of this shape.
struct Option {
    const char *name, *text;
    double value = std::numeric_limits<double>::quiet_NaN();
    Option is(double v) const { return {name, text, v}; }
};
enum class Kind { hull, half, plates }; // `half`: made for y >= 0, no symmetry about x = 0
struct Shape {
    const char *name, *text, *title;
    Kind kind;
    std::vector<Option> options;
    Maker *make;
};

struct Request {
    const Shape *shape = nullptr;
    CLI::App *command = nullptr;
    Sizes sizes;
    std::string output, part = "quarter";
    std::vector<double> offset = {0, 0, 0};
    double porosity[2] = {0, 0};
    int mark = 1;
    double ULEN = 1, GRAV = 9.80665;
};

constexpr Option RADIUS{"--radius", "radius"}, DRAFT{"--draft", "draft"},
    LENGTH{"--length", "length, along x"}, BEAM{"--beam", "beam, along y"}, HEIGHT{"--height", "height"},
    MIDDLE{"--depth", "depth of its middle below z = 0"}, AROUND{"--nu", "panels around"},
    ALONG{"--nu", "panels along half the length"}, ACROSS{"--nv", "panels along half the beam"},
    TO_BOTTOM{"--nv", "panels from the waterline to the bottom"}, POLES{"--nv", "panels from top to bottom"},
    DOWN_DRAFT{"--nv", "panels down the draft"}, OUTWARD{"--nw", "panels from the axis to the edge"},
    LID{"--lid", "adds the inner free surface, normal down"},
    COSINE{"--cosine", "panels finer towards edges and waterline"};

// clang-format off
const Shape SHAPES[] = {
    {"hemisphere", "floating hemisphere", "Hemisphere", Kind::hull, {RADIUS, AROUND, TO_BOTTOM}, hemisphere},
    {"ellipsoid", "floating lower half of an ellipsoid", "Ellipsoid", Kind::hull,
     {LENGTH.is(4), BEAM.is(2), DRAFT, AROUND, TO_BOTTOM}, ellipsoid},
    {"cylinder", "truncated vertical cylinder", "Truncated cylinder", Kind::hull,
     {RADIUS, DRAFT, AROUND, {"--nv", "panels down the side"}, OUTWARD,
      {"--standing", "no bottom: the cylinder stands on the sea bed"}, LID, COSINE}, cylinder},
    {"box", "rectangular barge", "Barge", Kind::hull,
     {LENGTH, BEAM, DRAFT, ALONG, ACROSS, {"--nw", "panels down the draft"}, LID, COSINE}, box},
    {"wigley", "Wigley hull with parabolic sections and waterlines", "Wigley hull", Kind::hull,
     {LENGTH, BEAM, DRAFT, ALONG, DOWN_DRAFT, COSINE}, wigley},
    {"catamaran", "two Wigley hulls side by side", "Catamaran", Kind::hull,
     {LENGTH.is(4), {"--beam", "beam of each hull", 0.4}, DRAFT.is(0.25), {"--distance", "distance of their middle planes", 1.2},
      ALONG, DOWN_DRAFT, COSINE}, catamaran},
    {"moonpool", "ring with a moonpool, its lower corners rounded; half a torus by default", "Moonpool ring", Kind::hull,
     {RADIUS, {"--inner", "radius of the moonpool", 0.5}, DRAFT.is(0.25),
      {"--bilge", "radius of the corners of the section; 0: sharp", 0.25}, AROUND, {"--nv", "panels down each wall above the bilge", 4},
      {"--nw", "panels along the flat bottom"}, {"--nb", "panels around each bilge", 4}, COSINE}, moonpool},
    {"semisub", "semi-submersible of two pontoons along x with round columns", "Semi-submersible", Kind::hull,
     {{"--length", "length of the pontoons", 80}, {"--beam", "beam of a pontoon", 14}, {"--height", "height of the pontoons", 8},
      DRAFT.is(20), {"--distance", "distance of the middle planes of the pontoons", 50}, {"--columns", "columns on each pontoon"},
      {"--span", "distance of the first and the last column", 56}, {"--radius", "radius of the columns", 5},
      {"--nu", "panels along half the beam of a pontoon; 8 times as many around a column", 3}, {"--nv", "panels down a column", 4},
      {"--nw", "panels down a pontoon", 3}, {"--nb", "panels from a column to the edge of the pontoon"},
      {"--cosine", "panels of walls and columns finer towards edges and waterline"}}, semisubmersible},
    {"ship", "ship hull by a table of offsets", "Ship", Kind::half,
     {{"--table", "file: heights of the waterlines; then a line for each station: x and half-breadths"},
      {"--draft", "draft above the lowest waterline; 0: up to the highest", 0}, {"--nu", "panels along the length", 24},
      {"--nv", "panels around half a section"}, {"--nw", "panels across half a transom", 3},
      {"--cosine", "panels finer towards the ends"}}, ship},
    {"sphere", "submerged sphere", "Sphere", Kind::hull, {RADIUS, MIDDLE.is(2), AROUND, POLES}, sphere},
    {"closed-ellipsoid", "submerged ellipsoid", "Submerged ellipsoid", Kind::hull,
     {LENGTH.is(4), BEAM.is(2), HEIGHT, MIDDLE.is(2), AROUND, POLES}, closed_ellipsoid},
    {"closed-cylinder", "submerged cylinder with both ends, vertical or horizontal", "Submerged cylinder", Kind::hull,
     {RADIUS, {"--length", "length"}, MIDDLE.is(2), {"--horizontal", "the axis lies along x"},
      {"--nu", "panels around a quarter of the circle"}, {"--nv", "panels along the length (horizontal: half of it)"}, OUTWARD,
      COSINE}, closed_cylinder},
    {"closed-box", "submerged box", "Submerged box", Kind::hull,
     {LENGTH, BEAM, HEIGHT, MIDDLE, ALONG, ACROSS, {"--nw", "panels down the height"}, COSINE}, closed_box},
    {"disc", "horizontal disc without thickness, of dipole panels", "Disc", Kind::plates,
     {RADIUS, {"--depth", "depth below the free surface"}, AROUND, OUTWARD, COSINE}, disc_plate},
    {"plates", "two vertical plates without thickness, across x, from the free surface", "Two plates", Kind::plates,
     {{"--distance", "distance of the plates"}, BEAM, DRAFT, {"--nu", "panels along half the beam"}, DOWN_DRAFT, COSINE},
     twin_plates},
    {"tank", "closed rectangular tank, normals out of the fluid", "Tank", Kind::hull,
     {LENGTH, BEAM, HEIGHT, {"--depth", "depth of its top below z = 0"}, ALONG, ACROSS, {"--nw", "panels down the height"},
      COSINE}, tank},
};
// clang-format on

void add_option(CLI::App *command, const Option &option, Sizes &s, bool may_be_0) {
    const std::map<std::string, double *> sizes = {{"--length", &s.length}, {"--beam", &s.beam},
                                                   {"--draft", &s.draft},   {"--radius", &s.radius},
                                                   {"--depth", &s.depth},   {"--distance", &s.distance},
                                                   {"--height", &s.height}, {"--inner", &s.inner},
                                                   {"--bilge", &s.bilge},   {"--span", &s.span}};
    const std::map<std::string, int *> counts = {
        {"--nu", &s.nu}, {"--nv", &s.nv}, {"--nw", &s.nw}, {"--nb", &s.nb}, {"--columns", &s.columns}};
    const std::map<std::string, bool *> flags = {{"--lid", &s.lid},
                                                 {"--standing", &s.standing},
                                                 {"--horizontal", &s.horizontal},
                                                 {"--cosine", &s.cosine}};
    const auto &[name, text, value] = option;
    const bool given = !std::isnan(value);
    if (const auto size = sizes.find(name); size != sizes.end()) {
        if (given)
            *size->second = value;
        command->add_option(name, *size->second, text)->check(number_from_0(may_be_0));
    } else if (const auto count = counts.find(name); count != counts.end()) {
        if (given)
            *count->second = static_cast<int>(value);
        command->add_option(name, *count->second, text)->check(CLI::Range(1, 10000));
    } else if (const auto flag = flags.find(name); flag != flags.end()) {
        command->add_flag(name, *flag->second, text);
    } else {
        command->add_option(name, s.table, text)->required();
    }
}

void add_shape(CLI::App &app, const Shape &shape, Request &r) {
    r.shape = &shape;
    CLI::App *command = r.command = app.add_subcommand(shape.name, shape.text);
    command->add_option("-o,--output", r.output, "name of the GDF file")->required();
    if (shape.kind == Kind::half) {
        r.part = "half-y";
        command->add_option("--part", r.part, "half-y (y >= 0, symmetric about y = 0), full")
            ->check(CLI::IsMember({"half-y", "full"}));
    } else {
        command->add_option("--part", r.part, "quarter, half-x (x >= 0, symmetric about x = 0), half-y, full")
            ->check(CLI::IsMember({"quarter", "half-x", "half-y", "full"}));
    }
    command->add_option("--offset", r.offset, "added to x, y, z of all vertices")->expected(3);
    command->add_option("--ulen", r.ULEN, "length scale ULEN of the file")->check(positive_number());
    command->add_option("--gravity", r.GRAV, "gravity GRAV of the file")->check(positive_number());
    if (shape.kind == Kind::plates) {
        command->add_option("--idip", r.mark, "mark IDIP of the panels");
        command->add_option("--dpora", r.porosity[0], "porosity coefficient DPORA");
        command->add_option("--dporb", r.porosity[1], "porosity coefficient DPORB");
    }
    for (const Option &option : shape.options)
        add_option(command, option, r.sizes, option.value == 0 || std::strcmp(option.name, "--bilge") == 0);
}

// A sum of products of two counts is below this: more than a million panels are refused before they are made.
bool counts_too_large(const Sizes &s) {
    const double u = s.nu, v = s.nv, w = s.nw;
    return too_many(u * v) || too_many(u * w) || too_many(v * w);
}

// Adds the images that the wanted part holds; the symmetry indices of what is left.
void fill_part(const Request &r, Panels &panels, int &ISX, int &ISY) {
    ISX = r.part == "quarter" || r.part == "half-x" ? 1 : 0;
    ISY = r.part == "quarter" || r.part == "half-y" ? 1 : 0;
    if (ISX == 0 && r.shape->kind != Kind::half)
        panels = mirrored(panels, 0);
    if (ISY == 0)
        panels = mirrored(panels, 1);
}

bool write_gdf(const Request &r, const Panels &panels, int ISX, int ISY) {
    const std::string unfinished = r.output + ".part";
    std::FILE *file = std::fopen(unfinished.c_str(), "w");
    if (file == nullptr)
        return false;
    const bool plates = r.shape->kind == Kind::plates;
    std::fprintf(file, "%s, %s\n %.9g %.9g\n %d %d\n %zu%s\n", r.shape->title, r.part.c_str(), r.ULEN, r.GRAV,
                 ISX, ISY, panels.size(), plates ? " 1" : "");
    for (const MeshPanel &panel : panels)
        for (const Point &p : panel.vertex)
            std::fprintf(file, " %.9g %.9g %.9g\n", p[0] + r.offset[0], p[1] + r.offset[1],
                         p[2] + r.offset[2]);
    for (std::size_t i = 0; plates && i < panels.size(); ++i)
        std::fprintf(file, " %d %.9g %.9g 0\n", panels[i].plate ? r.mark : 0, r.porosity[0], r.porosity[1]);
    bool good = std::ferror(file) == 0;
    good = std::fclose(file) == 0 && good && std::rename(unfinished.c_str(), r.output.c_str()) == 0;
    if (!good) {
        const int why = errno;
        std::remove(unfinished.c_str());
        errno = why;
    }
    return good;
}

// Numbers of single precision hold all vertices, as the solver reads them.
bool in_range(const Request &r, const Panels &panels) {
    for (const MeshPanel &panel : panels)
        for (const Point &p : panel.vertex)
            for (std::size_t c = 0; c < 3; ++c)
                if (!(std::fabs(p[c] + r.offset[c]) < 1e30))
                    return false;
    return true;
}

int make(const Request &r) {
    Panels panels;
    std::string wrong = counts_too_large(r.sizes) ? "--nu, --nv, --nw: more than a million panels"
                                                  : r.shape->make(r.sizes, panels);
    if (wrong.empty() && !in_range(r, panels))
        wrong = "the sizes are too large for numbers of single precision";
    int ISX = 0, ISY = 0;
    if (wrong.empty()) {
        fill_part(r, panels, ISX, ISY);
        if (!write_gdf(r, panels, ISX, ISY))
            wrong = r.output + " cannot be written: " + std::strerror(errno);
    }
    if (wrong.empty())
        return 0;
    std::fprintf(stderr, "vorda-mesh: %s\n", wrong.c_str());
    return 1;
}

} // namespace

std::function<int()> add_makers(CLI::App &app) {
    const auto requests = std::make_shared<std::vector<Request>>(std::size(SHAPES));
    for (std::size_t i = 0; i < requests->size(); ++i)
        add_shape(app, SHAPES[i], (*requests)[i]);
    return [requests] {
        for (const Request &r : *requests)
            if (r.command->parsed())
                return make(r);
        return -1;
    };
}
