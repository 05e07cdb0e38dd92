#include "show.hpp"

#include "body_files.hpp"
#include "mesh/picture.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>

namespace {

struct ShowRequest {
    std::string file, output;
    std::string view = "all";
    std::vector<double> from = {40, 25};
    Surroundings around;
    bool lids = false, no_images = false;
};
const std::map<std::string, PictureView> VIEWS = {{"all", PictureView::all},
                                                  {"side", PictureView::side},
                                                  {"front", PictureView::front},
                                                  {"top", PictureView::top},
                                                  {"perspective", PictureView::perspective}};

bool wrong(const std::string &words) {
    std::fprintf(stderr, "vorda-mesh: %s\n", words.c_str());
    return false;
}

// Adds the panels of a body with their images, in place, and what the check finds.
void add_body(const ShowRequest &r, const BodyFile &file, bool named, Picture &picture) {
    const double L = static_cast<double>(file.head.ULEN);
    const BodyMesh mesh = mesh_of(file, r.around);
    std::vector<DrawnPanel> panels;
    bool interior = false;
    for (const BodyPanel &panel : mesh.panels) {
        interior = interior || panel.kind == PanelKind::interior;
        panels.push_back({panel});
        for (BodyPoint &p : panels.back().panel.at)
            for (double &c : p)
                c *= L;
    }
    for (const MeshFinding &finding : check_mesh(mesh, {0, interior})) {
        (finding.wrong ? picture.faults : picture.notes)
            .push_back((named ? file.name + ": " : "") + told(finding));
        for (const int NP : finding.panels)
            if (finding.wrong)
                panels[static_cast<std::size_t>(NP) - 1].fault = true;
    }
    const int index[2] = {file.head.ISX, file.head.ISY};
    for (std::size_t axis = 0; axis < 2; ++axis)
        for (std::size_t k = 0, n = panels.size(); k < n && index[axis] == 1 && !r.no_images; ++k)
            panels.push_back(image_of(panels[k], axis));
    // Those in their own axes stand at z of the run already.
    Placement place = file.place;
    place.XBODY[2] = 0;
    if (in_own_axes(file))
        for (DrawnPanel &drawn : panels)
            for (BodyPoint &p : drawn.panel.at)
                p = placed(p, place);
    picture.panels.insert(picture.panels.end(), panels.begin(), panels.end());
}

// The free-surface panels of an FDF file.
bool add_surface(const std::string &name, Picture &picture) {
    FreeReader in;
    std::string title;
    f32 radius = 0, x[8];
    int NPF = 0, NTCL = 0;
    if (!in.open(name))
        return wrong(name + " cannot be opened");
    if (!in.line(title, std::string::npos) || !in.read(radius) || !in.read(NPF, NTCL) || !in.read_array(x, 4))
        return wrong("no head of an FDF file: " + in.fault());
    for (int i = 0; i < NPF; ++i) {
        if (!in.read_array(x, 8))
            return wrong("free-surface panel " + std::to_string(i + 1) + ": " + in.fault());
        DrawnPanel drawn;
        drawn.panel.kind = PanelKind::made;
        // Clockwise from above in the file.
        for (std::size_t v = 0; v < 4; ++v)
            drawn.panel.at[3 - v] = {static_cast<double>(x[v]), static_cast<double>(x[v + 4]), 0};
        picture.panels.push_back(drawn);
    }
    return true;
}

bool write_text(const std::string &name, const std::string &text) {
    const std::string unfinished = name + ".part";
    std::FILE *file = std::fopen(unfinished.c_str(), "w");
    bool good = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
    good = file != nullptr && std::fclose(file) == 0 && good &&
           std::rename(unfinished.c_str(), name.c_str()) == 0;
    if (good)
        return true;
    const int why = errno;
    std::remove(unfinished.c_str());
    return wrong(name + " cannot be written: " + std::strerror(why));
}

bool ends_with(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

int show(const ShowRequest &r) {
    Picture picture;
    picture.view = VIEWS.at(r.view);
    picture.azimuth = r.from[0];
    picture.elevation = r.from[1];
    picture.waterline = !r.around.tank;
    if (ends_with(r.file, ".fdf") || ends_with(r.file, ".FDF")) {
        if (!add_surface(r.file, picture))
            return 1;
    } else {
        std::vector<BodyFile> bodies;
        if (!read_body_files(r.file, r.lids, bodies))
            return 1;
        for (const BodyFile &body : bodies)
            add_body(r, body, bodies.size() > 1, picture);
    }
    const auto given = std::count_if(picture.panels.begin(), picture.panels.end(),
                                     [](const DrawnPanel &drawn) { return !drawn.image; });
    picture.title = r.file.substr(r.file.rfind('/') + 1) + ", " + std::to_string(given) + " panels";
    if (const auto images = picture.panels.size() - static_cast<std::size_t>(given); images > 0)
        picture.title += " and " + std::to_string(images) + " images";
    for (const DrawnPanel &drawn : picture.panels)
        for (const BodyPoint &p : drawn.panel.at)
            for (const double c : p)
                if (!(std::fabs(c) < 1e30))
                    return wrong("a vertex is too far away to be drawn"), 1;
    const std::string svg = picture_svg(picture);
    if (svg.empty())
        return wrong(r.file + " has no panels, or all in one point"), 1;
    return write_text(r.output, svg) ? 0 : 1;
}

} // namespace

std::function<int()> add_show(CLI::App &app) {
    const auto r = std::make_shared<ShowRequest>();
    CLI::App *command =
        app.add_subcommand("show", "draws the panels of a file, faults in red, as an SVG picture");
    command->add_option("FILE", r->file, "geometry file, global geometry file, IDF or FDF file")->required();
    command->add_option("-o,--output", r->output, "name of the SVG file")->required();
    std::vector<std::string> names;
    names.reserve(std::size(VIEWS));
    for (const auto &[name, view] : VIEWS)
        names.push_back(name);
    command->add_option("--view", r->view, "all, or one of side, front, top, perspective")
        ->check(CLI::IsMember(names));
    command->add_option("--from", r->from, "azimuth and elevation of the perspective's eye, degrees")
        ->expected(2)
        ->allow_extra_args(false)
        ->check(CLI::Range(-360.0, 360.0));
    command->add_flag("--no-images", r->no_images, "the given panels alone");
    command->add_option("--depth", r->around.depth, "water depth, for the check; 0: infinite");
    command->add_flag("--tank", r->around.tank, "a filled tank: normals out of the fluid");
    command->add_flag("--lids", r->lids, "the global file holds BDTYP and FSDMP (IFSLID)");
    return [=] { return command->parsed() ? show(*r) : -1; };
}
