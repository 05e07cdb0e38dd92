#include "gdf_file.hpp"

#include "exchange/part_file.hpp"
#include "geometry/dipoles.hpp"
#include "input/gdf.hpp"
#include "input/names.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double SAME_POINT = 1e-9; // over the size: vertices that a file gives twice

// The rest of a body's file behind its title line.
Status read_rest(FreeReader &in, GdfHead &head, GdfBody &body) {
    Bodies counts;
    Array<f32, 3> XVER;
    Dipoles dipoles;
    if (failed(read_gdf_symmetry(in, 0, head)) || !counts.NEQNB.alloc(1) || !counts.NDIPB.alloc(1) ||
        failed(read_gdf_counts(in, 0, 1, counts)))
        return Status::failed;
    const int n = counts.NEQNB(1);
    if (!XVER.alloc(4, 3, n))
        return gdf_fault("RAM is not sufficient to read .gdf inputs", 0);
    if (failed(read_gdf_panels(in, {1, n, static_cast<f32>(-body.place[2]), 1.0f}, XVER)))
        return Status::failed;
    const bool plates = counts.NDIPB(1) == 1;
    if (plates && failed(read_dipoles(in, 1, n, dipoles)))
        return Status::failed;
    body.title = head.title;
    body.ULEN = static_cast<double>(head.ULEN);
    body.GRAV = static_cast<double>(head.GRAV);
    body.index[0] = head.ISX;
    body.index[1] = head.ISY;
    for (int i = 1; i <= n; ++i) {
        GdfPanel panel;
        for (int v = 1; v <= 4; ++v)
            for (int c = 1; c <= 3; ++c)
                panel.at[static_cast<std::size_t>(v - 1)][static_cast<std::size_t>(c - 1)] =
                    static_cast<double>(XVER(v, c, i));
        if (plates) {
            panel.IDIP = dipoles.IDIP(i);
            panel.DPORA = static_cast<double>(dipoles.DPORA(i));
            panel.DPORB = static_cast<double>(dipoles.DPORB(i));
            panel.DTHK = static_cast<double>(dipoles.DTHK(i));
        }
        body.panels.push_back(panel);
    }
    return Status::ok;
}

// What a global file says of body b, and the body's file.
Status read_global_body(FreeReader &in, int b, bool lids, GdfBody &body) {
    f32 XBODY[4] = {}, damping = 0;
    int problems[2], modes[6], type = 0;
    bool good = in.line(body.name, std::string::npos);
    FNNORM(body.name);
    good = good && in.read_array(XBODY, 4) && in.read_array(problems, 2) && in.read_array(modes, 6) &&
           (!lids || in.read(type, damping));
    if (!good)
        return MSGOUT_with("Error reading XBODY coordinates in global GDF file for body N=", b, in.fault());
    for (std::size_t c = 0; c < 3; ++c)
        body.place[c] = static_cast<double>(XBODY[c]);
    body.heading = static_cast<double>(XBODY[3]);
    body.lid = type == 3;
    FreeReader of_body;
    GdfHead head;
    return failed(read_gdf_title(body.name, b, of_body, head)) ? Status::failed
                                                               : read_rest(of_body, head, body);
}

} // namespace

Status read_gdf(const std::string &file, bool lids, std::vector<GdfBody> &bodies) {
    FreeReader in;
    GdfHead head;
    if (failed(read_gdf_title(file, 0, in, head)))
        return Status::failed;
    if (head.ULEN > 0) {
        bodies.emplace_back();
        bodies.back().name = file;
        return read_rest(in, head, bodies.back());
    }
    int NBODY = 0;
    if (!in.read(NBODY) || NBODY < 1)
        return MSGOUT_with("Error reading global GDF file:  parameter NBODY ", 0, in.fault());
    for (int b = 1; b <= NBODY; ++b) {
        bodies.emplace_back();
        if (failed(read_global_body(in, b, lids, bodies.back())))
            return Status::failed;
    }
    return Status::ok;
}

void put_gdf(std::FILE *file, const GdfBody &body) {
    const bool plates =
        std::any_of(body.panels.begin(), body.panels.end(), [](const GdfPanel &p) { return p.IDIP != 0; });
    std::fprintf(file, "%s\n %.9g %.9g\n %d %d\n %zu%s\n", body.title.c_str(), body.ULEN, body.GRAV,
                 body.index[0], body.index[1], body.panels.size(), plates ? " 1" : "");
    for (const GdfPanel &panel : body.panels)
        for (const BodyPoint &p : panel.at)
            std::fprintf(file, " %.9g %.9g %.9g\n", p[0], p[1], p[2]);
    for (const GdfPanel &panel : body.panels)
        if (plates)
            std::fprintf(file, " %d %.9g %.9g %.9g\n", panel.IDIP, panel.DPORA, panel.DPORB, panel.DTHK);
}

bool write_gdf(const std::string &name, const GdfBody &body, std::string &error) {
    PartFile part(name);
    std::FILE *file = part.open(error);
    if (file == nullptr)
        return false;
    put_gdf(file, body);
    return part.keep(error);
}

bool is_mirrored(const GdfBody &body, int axis) {
    return body.index[axis] == 1 || body.index[axis] == -2;
}

void reverse(GdfPanel &panel) {
    std::reverse(panel.at.begin(), panel.at.end());
}

void add_images(GdfBody &body, int axis) {
    const std::size_t n = body.panels.size();
    for (std::size_t p = 0; p < n; ++p) {
        GdfPanel image = body.panels[p];
        for (BodyPoint &v : image.at)
            v[static_cast<std::size_t>(axis)] = 0 - v[static_cast<std::size_t>(axis)];
        reverse(image);
        body.panels.push_back(image);
    }
    body.index[axis] = 0;
}

void move_body(GdfBody &body, double degrees, const BodyPoint &shift) {
    for (const int axis : {0, 1})
        if (is_mirrored(body, axis) && (degrees != 0 || shift[static_cast<std::size_t>(axis)] != 0))
            add_images(body, axis);
    // Quarter turns exactly: a side in a plane stays in a plane.
    const double angle = degrees * 3.14159265358979323846 / 180, quarters = degrees / 90;
    const bool whole = quarters == std::floor(quarters);
    const double c = whole ? std::round(std::cos(angle)) : std::cos(angle),
                 s = whole ? std::round(std::sin(angle)) : std::sin(angle);
    for (GdfPanel &panel : body.panels)
        for (BodyPoint &p : panel.at)
            p = {c * p[0] - s * p[1] + shift[0], s * p[0] + c * p[1] + shift[1], p[2] + shift[2]};
}

void put_in_place(GdfBody &body) {
    move_body(body, body.heading, body.place);
    body.place = {};
    body.heading = 0;
}

MergedVertices mesh_of(const GdfBody &body) {
    MergedVertices mesh;
    for (const GdfPanel &panel : body.panels) {
        std::array<int, 4> corners;
        for (std::size_t v = 0; v < 4; ++v) {
            corners[v] = static_cast<int>(mesh.points.size());
            mesh.points.push_back(panel.at[v]);
        }
        mesh.of_panel.push_back(corners);
    }
    const std::vector<int> to = merge_points(mesh.points, SAME_POINT * std::max(size_of(mesh), 1e-30));
    for (std::array<int, 4> &corners : mesh.of_panel)
        for (int &c : corners)
            c = to[static_cast<std::size_t>(c)];
    (void)tidy(mesh);
    return mesh;
}

std::vector<GdfPanel> panels_of(const MergedVertices &mesh) {
    std::vector<GdfPanel> panels;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
        GdfPanel panel;
        panel.at = panel_of(mesh, p).at;
        panels.push_back(panel);
    }
    return panels;
}
