#include "mesh/edges.hpp"

#include "mesh/vectors.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

namespace {

constexpr double CELL = 16; // size of a cell of the hash, in tolerances

using Cell = std::array<std::int64_t, 3>;
struct CellHash {
    std::size_t operator()(const Cell &c) const {
        std::uint64_t h = 0;
        for (const std::int64_t v : c)
            h = (h ^ static_cast<std::uint64_t>(v)) * 0x9e3779b97f4a7c15ull;
        return static_cast<std::size_t>(h ^ (h >> 32));
    }
};

double distance2(const BodyPoint &a, const BodyPoint &b) {
    const BodyPoint d = minus(a, b);
    return dot(d, d);
}

// The points found so far, by the cell that they lie in.
class PointGrid {
  public:
    PointGrid(double tolerance, std::vector<BodyPoint> &points) : tolerance_(tolerance), points_(points) {}

    // The number of the point at p; a new one when none is near.
    int number(const BodyPoint &p) {
        Cell low, high;
        for (std::size_t c = 0; c < 3; ++c) {
            low[c] = cell(p[c] - tolerance_);
            high[c] = cell(p[c] + tolerance_);
        }
        for (std::int64_t i = low[0]; i <= high[0]; ++i)
            for (std::int64_t j = low[1]; j <= high[1]; ++j)
                for (std::int64_t k = low[2]; k <= high[2]; ++k)
                    if (const int found = in_cell({i, j, k}, p); found >= 0)
                        return found;
        cells_[{cell(p[0]), cell(p[1]), cell(p[2])}].push_back(static_cast<int>(points_.size()));
        points_.push_back(p);
        return static_cast<int>(points_.size()) - 1;
    }

  private:
    std::int64_t cell(double v) const {
        return static_cast<std::int64_t>(std::floor(v / (CELL * tolerance_)));
    }
    int in_cell(const Cell &at, const BodyPoint &p) const {
        const auto found = cells_.find(at);
        if (found == cells_.end())
            return -1;
        for (const int i : found->second)
            if (distance2(points_[static_cast<std::size_t>(i)], p) <= tolerance_ * tolerance_)
                return i;
        return -1;
    }

    double tolerance_;
    std::vector<BodyPoint> &points_;
    std::unordered_map<Cell, std::vector<int>, CellHash> cells_;
};

} // namespace

MergedVertices merge_vertices(const std::vector<BodyPanel> &panels, double tolerance) {
    MergedVertices merged;
    PointGrid grid(tolerance, merged.points);
    for (const BodyPanel &panel : panels) {
        std::array<int, 4> numbers{};
        for (std::size_t v = 0; v < 4; ++v)
            numbers[v] = grid.number(panel.at[v]);
        merged.of_panel.push_back(numbers);
    }
    return merged;
}

std::vector<int> merge_points(const std::vector<BodyPoint> &points, double tolerance) {
    std::vector<BodyPoint> kept;
    std::vector<int> of_kept, merged;
    PointGrid grid(tolerance, kept);
    for (const BodyPoint &p : points) {
        const std::size_t number = static_cast<std::size_t>(grid.number(p));
        if (number == of_kept.size())
            of_kept.push_back(static_cast<int>(merged.size()));
        merged.push_back(of_kept[number]);
    }
    return merged;
}

MeshEdges edges_of(const MergedVertices &vertices, const std::vector<bool> &counts) {
    std::vector<PanelSide> sides;
    for (std::size_t p = 0; p < vertices.of_panel.size(); ++p) {
        for (std::size_t v = 0; counts[p] && v < 4; ++v) {
            const int a = vertices.of_panel[p][v], b = vertices.of_panel[p][(v + 1) % 4];
            if (a != b)
                sides.push_back({a, b, static_cast<int>(p)});
        }
    }
    const auto ends = [](const PanelSide &s) { return std::minmax(s.a, s.b); };
    std::stable_sort(sides.begin(), sides.end(),
                     [&](const PanelSide &s, const PanelSide &t) { return ends(s) < ends(t); });
    MeshEdges edges;
    for (std::size_t first = 0; first < sides.size();) {
        std::size_t last = first;
        while (last < sides.size() && ends(sides[last]) == ends(sides[first]))
            ++last;
        if (last - first == 1)
            edges.open.push_back(sides[first]);
        else if (last - first > 2)
            edges.crowded.emplace_back(sides.begin() + static_cast<std::ptrdiff_t>(first),
                                       sides.begin() + static_cast<std::ptrdiff_t>(last));
        else
            (sides[first].a == sides[first + 1].a ? edges.same_sense : edges.shared)
                .push_back({sides[first], sides[first + 1]});
        first = last;
    }
    return edges;
}

MeshPieces pieces_of(const MeshEdges &edges, const std::vector<bool> &counts) {
    const std::size_t n = counts.size();
    std::vector<std::vector<std::pair<int, int>>> neighbours(n); // panel and whether it agrees
    const auto link = [&](const std::vector<std::array<PanelSide, 2>> &sides, int agrees) {
        for (const auto &[s, t] : sides) {
            neighbours[static_cast<std::size_t>(s.panel)].push_back({t.panel, agrees});
            neighbours[static_cast<std::size_t>(t.panel)].push_back({s.panel, agrees});
        }
    };
    link(edges.shared, 1);
    link(edges.same_sense, -1);
    MeshPieces o{std::vector<int>(n, -1), std::vector<int>(n, 0), 0};
    for (std::size_t start = 0; start < n; ++start) {
        if (!counts[start] || o.piece[start] >= 0)
            continue;
        std::vector<std::size_t> open{start};
        o.piece[start] = o.pieces;
        o.sense[start] = 1;
        while (!open.empty()) {
            const std::size_t p = open.back();
            open.pop_back();
            for (const auto &[q, agrees] : neighbours[p]) {
                const std::size_t to = static_cast<std::size_t>(q);
                if (o.piece[to] >= 0)
                    continue;
                o.piece[to] = o.pieces;
                o.sense[to] = agrees * o.sense[p];
                open.push_back(to);
            }
        }
        ++o.pieces;
    }
    return o;
}
