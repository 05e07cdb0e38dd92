#include "exchange/hull_cells.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

// A triangle has a corner twice.
std::vector<Vector3> without_doubles(const std::vector<Vector3> &corners) {
    std::vector<Vector3> kept;
    for (std::size_t k = 0; k < corners.size(); ++k)
        if (corners[k] != corners[(k + 1) % corners.size()])
            kept.push_back(corners[k]);
    return kept;
}

void mirror(const Image &image, double length, HullCell &cell) {
    for (Vector3 &corner : cell.corners)
        corner = {length * image.sx * corner[0], length * image.sy * corner[1], length * corner[2]};
    cell.normal = {image.sx * cell.normal[0], image.sy * cell.normal[1], cell.normal[2]};
    if (image.sx * image.sy < 0)
        std::reverse(cell.corners.begin(), cell.corners.end());
}

HullCell panel_cell(const P2fFile &p, const PanelKinds &kinds, int J) {
    HullCell cell;
    cell.body = body_of_panel(p, J);
    cell.panel = J;
    cell.IFSP = p.IFSP.empty() ? 0 : p.IFSP(J);
    cell.kind = kinds.plate(J) ? CellKind::plate : kinds.hull(J) ? CellKind::hull : CellKind::inside;
    const double angle = d(p.XBODY(4, cell.body)) * std::numbers::pi / 180, c = std::cos(angle),
                 s = std::sin(angle);
    std::vector<Vector3> corners;
    for (int v = 1; v <= 4; ++v) {
        const double x = d(p.XVER(v, 1, J)), y = d(p.XVER(v, 2, J));
        corners.push_back({c * x - s * y + d(p.XBODY(1, cell.body)), s * x + c * y + d(p.XBODY(2, cell.body)),
                           d(p.XVER(v, 3, J)) + d(p.XBODY(3, cell.body))});
    }
    cell.corners = without_doubles(corners);
    cell.area = d(p.PMOM(1, J));
    cell.normal = {d(p.TRM(3, 1, J)), d(p.TRM(3, 2, J)), d(p.TRM(3, 3, J))};
    return cell;
}

HullCell surface_cell(const P2fFile &p, int J) {
    HullCell cell;
    cell.kind = CellKind::surface;
    cell.panel = J;
    std::vector<Vector3> corners;
    for (int v = 1; v <= 4; ++v) {
        Vector3 corner;
        for (int k = 1; k <= 3; ++k)
            corner[static_cast<std::size_t>(k - 1)] =
                d(p.XCTF(k, J)) + d(p.XIVF(v, J)) * d(p.TRMF(1, k, J)) + d(p.ETVF(v, J)) * d(p.TRMF(2, k, J));
        corners.push_back(corner);
    }
    cell.corners = without_doubles(corners);
    cell.area = d(p.PMOMF(1, J));
    cell.normal = {d(p.TRMF(3, 1, J)), d(p.TRMF(3, 2, J)), d(p.TRMF(3, 3, J))};
    return cell;
}

} // namespace

std::vector<HullCell> hull_cells(const P2fFile &p, double length) {
    const PanelKinds kinds(p);
    const std::vector<Image> images = images_of(p);
    std::vector<HullCell> cells;
    const auto add = [&](HullCell cell, std::size_t image) {
        cell.image = static_cast<int>(image) + 1;
        cell.area *= length * length;
        mirror(images[image], length, cell);
        if (cell.corners.size() >= 3)
            cells.push_back(std::move(cell));
    };
    for (std::size_t g = 0; g < images.size(); ++g)
        for (int J = 1; images[g].body && J <= p.NEQN; ++J)
            add(panel_cell(p, kinds, J), g);
    for (std::size_t g = 0; g < images.size(); ++g)
        for (int J = 1; p.IWADD == 1 && images[g].body && J <= p.NFSP; ++J)
            add(surface_cell(p, J), g);
    return cells;
}

void add_geometry(const std::vector<HullCell> &cells, VtuFile &file) {
    for (const HullCell &cell : cells) {
        for (const Vector3 &corner : cell.corners) {
            file.corners.push_back(static_cast<std::int32_t>(file.points.size() / 3));
            file.points.insert(file.points.end(), corner.begin(), corner.end());
        }
        file.ends.push_back(static_cast<std::int32_t>(file.corners.size()));
    }
}

void add_marks(const std::vector<HullCell> &cells, const std::string &length_unit, VtuFile &file) {
    using Marks = std::vector<std::int32_t>;
    Marks body, panel, image, kind, ifsp;
    std::vector<double> area, normal;
    for (const HullCell &cell : cells) {
        body.push_back(cell.body);
        panel.push_back(cell.panel);
        image.push_back(cell.image);
        kind.push_back(static_cast<std::int32_t>(cell.kind));
        ifsp.push_back(cell.IFSP);
        area.push_back(cell.area);
        normal.insert(normal.end(), cell.normal.begin(), cell.normal.end());
    }
    file.on_cells.push_back({"body", "", 1, std::move(body)});
    file.on_cells.push_back({"panel", "", 1, std::move(panel)});
    file.on_cells.push_back({"image", "", 1, std::move(image)});
    file.on_cells.push_back({"kind", "", 1, std::move(kind)});
    file.on_cells.push_back({"IFSP", "", 1, std::move(ifsp)});
    file.on_cells.push_back({"area", length_unit + "^2", 1, std::move(area)});
    file.on_cells.push_back({"normal", "", 3, std::move(normal)});
}
