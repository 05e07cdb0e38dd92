#include "mesh/slivers.hpp"

#include "mesh/vectors.hpp"

#include <algorithm>

namespace {

constexpr double SLIVER = 1e-3; // area of a piece that is merged away, in mean areas
constexpr double MOVED = 5e-3;  // distance by which the surface may move there, in sides of the mean panel
constexpr double TURNED = 0.5;  // cosine of the angle by which a panel may turn
constexpr int PASSES = 4;       // a sliver that is merged away may leave another one

struct Merger {
    MergedVertices &mesh;
    double least = 0, moved = 0;          // area, distance
    std::vector<std::vector<int>> around; // panels at each point

    const BodyPoint &at(int i) const { return mesh.points[static_cast<std::size_t>(i)]; }
    bool has(int panel, int point) const {
        const auto &corners = mesh.of_panel[static_cast<std::size_t>(panel)];
        return std::count(corners.begin(), corners.end(), point) > 0;
    }
    // Coordinates that are 0 count as planes: a point on more of them stays.
    bool may_go(int goes, int stays) const {
        for (std::size_t c = 0; c < 3; ++c)
            if (at(goes)[c] == 0 && at(stays)[c] != 0)
                return false;
        for (const int p : around[static_cast<std::size_t>(goes)]) {
            if (has(p, stays))
                continue;
            const BodyPanel before = panel_of(mesh, static_cast<std::size_t>(p));
            const PanelShape old = shape_of(before);
            if (old.area < least)
                continue; // another sliver, whichever way it looks
            BodyPanel after = before;
            for (std::size_t v = 0; v < 4; ++v)
                if (mesh.of_panel[static_cast<std::size_t>(p)][v] == goes)
                    after.at[v] = at(stays);
            if (std::fabs(dot(old.normal, minus(at(stays), at(goes)))) > moved ||
                dot(shape_of(after).normal, old.normal) < TURNED)
                return false;
        }
        return true;
    }
    void go(int goes, int stays) {
        for (const int p : around[static_cast<std::size_t>(goes)]) {
            for (int &c : mesh.of_panel[static_cast<std::size_t>(p)])
                c = c == goes ? stays : c;
            around[static_cast<std::size_t>(stays)].push_back(p);
        }
        around[static_cast<std::size_t>(goes)].clear();
    }
    // Takes the shortest side that can go; false: none can.
    bool shrink(const std::array<int, 4> corners) {
        std::vector<std::pair<double, std::pair<int, int>>> sides;
        for (std::size_t v = 0; v < 4; ++v) {
            const int a = corners[v], b = corners[(v + 1) % 4];
            if (a != b)
                sides.push_back({distance(at(a), at(b)), {a, b}});
        }
        std::sort(sides.begin(), sides.end());
        for (const auto &[size, ends] : sides)
            for (const auto &[goes, stays] : {ends, std::pair<int, int>{ends.second, ends.first}})
                if (may_go(goes, stays)) {
                    go(goes, stays);
                    return true;
                }
        return false;
    }
};

} // namespace

int merge_slivers(MergedVertices &mesh, const std::vector<bool> &marked) {
    double total = 0;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        total += shape_of(panel_of(mesh, p)).area;
    const double mean = total / static_cast<double>(std::max<std::size_t>(1, mesh.of_panel.size()));
    Merger merger{mesh, SLIVER * mean, MOVED * std::sqrt(mean), {}};
    merger.around.resize(mesh.points.size());
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        for (std::size_t v = 0; v < 4; ++v)
            if (v == 0 || mesh.of_panel[p][v] != mesh.of_panel[p][v - 1])
                merger.around[static_cast<std::size_t>(mesh.of_panel[p][v])].push_back(static_cast<int>(p));
    int merged = 0;
    for (int pass = 0; pass < PASSES; ++pass)
        for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
            if (!marked[p])
                continue;
            const std::array<int, 4> corners = mesh.of_panel[p];
            const double area = shape_of(panel_of(mesh, p)).area;
            std::vector<int> distinct(corners.begin(), corners.end());
            std::sort(distinct.begin(), distinct.end());
            distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
            if (area >= merger.least || distinct.size() < 3 || !merger.shrink(corners))
                continue;
            merged += distinct.size() == 3 ? 1 : 0; // a triangle is gone with one side
        }
    return merged;
}
