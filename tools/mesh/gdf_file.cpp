#include "gdf_file.hpp"

#include "body_files.hpp"

#include "exchange/part_file.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double SAME_POINT = 1e-9; // over the size: vertices that a file gives twice

GdfBody body_of(const BodyFile &file) {
    GdfBody body;
    body.name = file.name;
    body.title = file.head.title;
    body.ULEN = static_cast<double>(file.head.ULEN);
    body.GRAV = static_cast<double>(file.head.GRAV);
    body.index[0] = file.head.ISX;
    body.index[1] = file.head.ISY;
    for (std::size_t c = 0; c < 3; ++c)
        body.place[c] = static_cast<double>(file.place.XBODY[c]);
    body.heading = static_cast<double>(file.place.XBODY[3]);
    for (int i = 1; i <= file.n; ++i) {
        GdfPanel panel;
        for (int v = 1; v <= 4; ++v)
            for (int c = 1; c <= 3; ++c)
                panel.at[static_cast<std::size_t>(v - 1)][static_cast<std::size_t>(c - 1)] =
                    static_cast<double>(file.XVER(v, c, i));
        if (file.has_dipoles) {
            panel.IDIP = file.dipoles.IDIP(i);
            panel.DPORA = static_cast<double>(file.dipoles.DPORA(i));
            panel.DPORB = static_cast<double>(file.dipoles.DPORB(i));
            panel.DTHK = static_cast<double>(file.dipoles.DTHK(i));
        }
        body.panels.push_back(panel);
    }
    return body;
}

} // namespace

bool read_gdf(const std::string &file, bool lids, std::vector<GdfBody> &bodies) {
    std::vector<BodyFile> files;
    if (!read_body_files(file, lids, files))
        return false;
    for (const BodyFile &body : files)
        bodies.push_back(body_of(body));
    return true;
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

void divide(GdfBody &body) {
    const auto middle = [](const BodyPoint &a, const BodyPoint &b) {
        return BodyPoint{(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
    };
    std::vector<GdfPanel> parts;
    for (const GdfPanel &panel : body.panels) {
        std::array<BodyPoint, 4> p = panel.at;
        std::size_t twice = 0; // a triangle has a vertex that the next one repeats
        while (twice < 4 && p[twice] != p[(twice + 1) % 4])
            ++twice;
        if (twice < 4)
            std::rotate(p.begin(), p.begin() + static_cast<std::ptrdiff_t>((twice + 1) % 4), p.end());
        const std::size_t corners = twice < 4 ? 3 : 4;
        std::array<BodyPoint, 4> side;
        for (std::size_t k = 0; k < corners; ++k)
            side[k] = middle(p[k], p[(k + 1) % corners]);
        GdfPanel part = panel;
        const BodyPoint centre = middle(side[0], side[2]);
        for (std::size_t k = 0; k < corners; ++k) {
            const BodyPoint &before = side[(k + corners - 1) % corners];
            part.at = {p[k], side[k], corners == 3 ? before : centre, before};
            parts.push_back(part);
        }
        if (corners == 3) {
            part.at = {side[0], side[1], side[2], side[2]};
            parts.push_back(part);
        }
    }
    body.panels = std::move(parts);
}

MergedVertices joined(const GdfBody &body, double same) {
    MergedVertices mesh;
    for (const GdfPanel &panel : body.panels) {
        std::array<int, 4> corners;
        for (std::size_t v = 0; v < 4; ++v) {
            corners[v] = static_cast<int>(mesh.points.size());
            mesh.points.push_back(panel.at[v]);
        }
        mesh.of_panel.push_back(corners);
    }
    const std::vector<int> to = merge_points(mesh.points, same * std::max(size_of(mesh), 1e-30));
    for (std::array<int, 4> &corners : mesh.of_panel)
        for (int &c : corners)
            c = to[static_cast<std::size_t>(c)];
    return mesh;
}

MergedVertices mesh_of(const GdfBody &body) {
    MergedVertices mesh = joined(body, SAME_POINT);
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
