// Panels on the same points: given twice, or the two faces of a wall without thickness.
#include "mesh/merge.hpp"

#include <algorithm>
#include <map>

namespace {

// The corners of a panel in one order, whichever way it runs; which corner of a triangle is told twice says
// nothing.
std::array<int, 4> key_of(std::array<int, 4> corners) {
    if (is_triangle(corners))
        corners[3] = -1;
    std::sort(corners.begin(), corners.end());
    return corners;
}

using Side = std::pair<int, int>;
std::vector<Side> sides_of(const std::array<int, 4> &corners) {
    std::vector<Side> sides;
    for (std::size_t v = 0; v < 4; ++v)
        if (corners[v] != corners[(v + 1) % 4])
            sides.push_back(std::minmax(corners[v], corners[(v + 1) % 4]));
    return sides;
}

// Panels in the same place; the first of them speaks for all.
struct Place {
    std::size_t first;
    int copies;
};

} // namespace

void erase_doubled(MergedVertices &mesh, MergeCounts &counts) {
    std::vector<std::pair<std::array<int, 4>, std::size_t>> keys;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        keys.push_back({key_of(mesh.of_panel[p]), p});
    std::sort(keys.begin(), keys.end());
    std::vector<bool> out(mesh.of_panel.size(), false);
    std::vector<Place> pairs; // places with an even number of panels: all out for now
    for (std::size_t i = 0; i < keys.size();) {
        std::size_t end = i + 1;
        while (end < keys.size() && keys[end].first == keys[i].first)
            out[keys[end++].second] = true;
        if ((end - i) % 2 == 0) {
            out[keys[i].second] = true;
            pairs.push_back({keys[i].second, static_cast<int>(end - i)});
        }
        counts.doubled += static_cast<int>(end - i) - 1;
        i = end;
    }
    if (pairs.empty()) {
        (void)erase_panels(mesh, out);
        return;
    }
    // The sides of those places: which of them share one, and how many panels are left there.
    std::map<Side, std::vector<std::size_t>> places;
    std::map<Side, int> left;
    for (std::size_t i = 0; i < pairs.size(); ++i)
        for (const Side &side : sides_of(mesh.of_panel[pairs[i].first])) {
            places[side].push_back(i);
            left[side] = 0;
        }
    for (std::size_t p = 0; p < out.size(); ++p)
        if (!out[p])
            for (const Side &side : sides_of(mesh.of_panel[p]))
                if (const auto found = left.find(side); found != left.end())
                    ++found->second;
    // Place by place with its neighbours: a hole has one panel left at its edge, a wall two.
    std::vector<bool> seen(pairs.size(), false);
    for (std::size_t start = 0; start < pairs.size(); ++start) {
        std::vector<std::size_t> patch{start};
        int holes = 0, closed = 0;
        if (seen[start])
            continue;
        seen[start] = true;
        for (std::size_t k = 0; k < patch.size(); ++k)
            for (const Side &side : sides_of(mesh.of_panel[pairs[patch[k]].first])) {
                holes += left[side] % 2;
                closed += left[side] > 0 && left[side] % 2 == 0 ? 1 : 0;
                for (const std::size_t other : places[side])
                    if (!seen[other]) {
                        seen[other] = true;
                        patch.push_back(other);
                    }
            }
        const bool stays = holes > closed || closed == 0; // with no edge at all it is a surface given twice
        for (const std::size_t i : patch) {
            out[pairs[i].first] = !stays;
            if (!stays) {
                counts.doubled -= pairs[i].copies - 1;
                counts.folded += pairs[i].copies;
            }
        }
    }
    (void)erase_panels(mesh, out);
}
