#include "freesurface/front.hpp"

#include "freesurface/edge_grid.hpp"
#include "freesurface/front_boundary.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double NEAR = 1.5;   // candidates farther from an end of the edge come last, in H
constexpr double REACH = 4;    // candidates are looked for that near to the ideal point, in H
constexpr double FARTHEST = 2; // distance of the ideal point from its edge, in H
constexpr double POOR = 0.99;  // largest cosine of a good triangle
constexpr double E1 = 0.001;   // tolerance on old edges, in H
constexpr double E2 = 1.0e-6;  // tolerance on new edges, in H
constexpr double CELL = 2;     // cell of the edge grid, in H

struct Edge {
    int a, b;
};
struct Candidate {
    double R; // distance to the farther end of the edge
    int node;
};

class Front {
  public:
    explicit Front(double H_) : H(H_), FALL(CELL * H_, E1 * H_, E2 * H_) {}

    void add_loop(const std::vector<FrontNode> &nodes) {
        const int first = static_cast<int>(FPT.size());
        const int n = static_cast<int>(nodes.size());
        for (const FrontNode &node : nodes)
            FPT.push_back(node.at);
        for (int k = 0; k < n; ++k) {
            add_edge(FRONT.end(), {first + k, first + (k + 1) % n});
            boundary.push_back(nodes[static_cast<std::size_t>(k)]);
            follower.push_back(first + (k + 1) % n);
        }
    }
    bool is_empty() const { return FRONT.empty(); }

    // Makes one panel; false when the edge finds no partner.
    bool step(SurfacePanels &panels) {
        const auto [a, b] = FRONT.front();
        const int c = choose(a, b);
        if (c < 0)
            return false;
        panels.push_back(panel(a, b, c));
        advance(a, b, c);
        return true;
    }

  private:
    SurfacePoint point(int node) const { return FPT[static_cast<std::size_t>(node)]; }

    void add_edge(std::vector<Edge>::iterator place, Edge edge) {
        FRONT.insert(place, edge);
        FALL.add({{edge.a, edge.b}, {point(edge.a), point(edge.b)}});
    }

    // The nodes of the front on the right of the edge and within the reach of `centre`, those nearest to both
    // its ends first.
    std::vector<Candidate> candidates(int a, int b, SurfacePoint centre, double reach) const {
        std::vector<Candidate> list;
        for (std::size_t f = 1; f < FRONT.size(); ++f) {
            const int i = FRONT[f].b;
            const SurfacePoint V = point(i);
            if (i == a || i == b || !(distance(centre, V) < reach) || !(EDGDST(point(a), point(b), V) < 0))
                continue;
            list.push_back({std::max(distance(point(a), V), distance(point(b), V)), i});
        }
        std::stable_sort(list.begin(), list.end(),
                         [](const Candidate &p, const Candidate &q) { return p.R < q.R; });
        return list;
    }

    bool is_free(int a, int b, int c) const {
        return !FALL.crosses({{c, a}, {point(c), point(a)}}) && !FALL.crosses({{c, b}, {point(c), point(b)}});
    }

    // True when a node of the front lies in the triangle or on its rim. New edges may pass that close
    // to a node without crossing an edge, and out of the area; and a small hole may lie in the triangle
    // as a whole.
    bool holds_node(int a, int b, int c) const {
        const SurfacePoint A = point(a), B = point(b), Z = point(c);
        const double rim = E1 * H;
        const auto [x1, x2] = std::minmax({A.x, B.x, Z.x});
        const auto [y1, y2] = std::minmax({A.y, B.y, Z.y});
        for (const Edge &edge : FRONT) {
            const int i = edge.b;
            const SurfacePoint V = point(i);
            if (V.x < x1 - rim || V.x > x2 + rim || V.y < y1 - rim || V.y > y2 + rim || i == a || i == b ||
                i == c)
                continue;
            if (EDGDST(A, B, V) < rim && EDGDST(B, Z, V) < rim && EDGDST(Z, A, V) < rim &&
                std::min({distance(V, A), distance(V, B), distance(V, Z)}) > rim)
                return true;
        }
        return false;
    }

    // The first candidate that makes a good triangle without crossing an edge, else the first that makes a
    // poor one; -1 when there is none.
    int best_of(const std::vector<Candidate> &list, int a, int b, bool empty_ones) const {
        int poor = -1;
        for (const Candidate &candidate : list) {
            const int c = candidate.node;
            if (!is_free(a, b, c) || (empty_ones && holds_node(a, b, c)))
                continue;
            if (TRIQ(point(a), point(b), point(c)).Q < POOR)
                return c;
            if (poor < 0)
                poor = c;
        }
        return poor;
    }

    int choose(int a, int b) {
        const SurfacePoint A = point(a), B = point(b);
        const double L = distance(A, B);
        // No farther than FARTHEST: a short edge could not see its own neighbours from there.
        const double out = std::min(H * H / (L * L), FARTHEST * H / L);
        const SurfacePoint ideal{(A.x + B.x) / 2 + out * (B.y - A.y), (A.y + B.y) / 2 - out * (B.x - A.x)};
        const int new_node = static_cast<int>(FPT.size());
        FPT.push_back(ideal);
        std::vector<Candidate> list = candidates(a, b, ideal, REACH * H);
        const auto far_ones =
            std::find_if(list.begin(), list.end(), [&](const Candidate &p) { return !(p.R < NEAR * H); });
        list.insert(far_ones, {0, new_node});
        int chosen = best_of(list, a, b, true);
        // The reach may miss what lies between long edges. Some node of the front sees the edge.
        if (chosen < 0)
            chosen = best_of(candidates(a, b, ideal, std::numeric_limits<double>::infinity()), a, b, true);
        if (chosen < 0)
            chosen = best_of(list, a, b, false);
        if (chosen != new_node)
            FPT.pop_back();
        return chosen;
    }

    // The boundary point to keep on the edge from p to q, when it is one of the boundary.
    const SurfacePoint *bulge(int p, int q) const {
        const std::size_t k = static_cast<std::size_t>(p);
        return k < boundary.size() && follower[k] == q && boundary[k].has_bulge ? &boundary[k].FBLG : nullptr;
    }

    SurfacePanel panel(int a, int b, int c) const {
        const SurfacePoint A = point(a), B = point(b), Z = point(c);
        // A flat triangle gets no fourth vertex: of its angles the one across from the boundary edge decides.
        const auto not_flat = [](SurfacePoint p, SurfacePoint q, SurfacePoint across) {
            return std::fabs(TRIQ(p, q, across).G) < POOR;
        };
        if (const SurfacePoint *P = bulge(c, a); P != nullptr && not_flat(Z, A, B))
            return {Z, B, A, *P};
        if (const SurfacePoint *P = bulge(a, b); P != nullptr && not_flat(A, B, Z))
            return {Z, B, *P, A};
        if (const SurfacePoint *P = bulge(b, c); P != nullptr && not_flat(B, Z, A))
            return {Z, *P, B, A};
        return {Z, B, A, A};
    }

    bool drop(int a, int b) {
        const auto found =
            std::find_if(FRONT.begin() + 1, FRONT.end(), [&](const Edge &e) { return e.a == a && e.b == b; });
        if (found == FRONT.end())
            return false;
        FRONT.erase(found);
        return true;
    }

    void advance(int a, int b, int c) {
        const bool bc = drop(b, c);
        const bool ca = drop(c, a);
        FRONT.erase(FRONT.begin());
        if (!bc)
            add_edge(FRONT.begin(), {c, b});
        if (!ca)
            add_edge(FRONT.begin(), {a, c});
    }

    double H;
    EdgeGrid FALL;                   // all edges ever made
    std::vector<SurfacePoint> FPT;   // nodes: those of the boundary, then new ones
    std::vector<Edge> FRONT;         // the open front, the area to fill on its right; the first is worked on
    std::vector<FrontNode> boundary; // nodes of the loops
    std::vector<int> follower;       // the next node in the loop of a boundary node
};

} // namespace

TriangleShape TRIQ(SurfacePoint a, SurfacePoint b, SurfacePoint c) {
    const double L = distance(a, b), A = distance(a, c), B = distance(b, c);
    const double G = (L * L - A * A - B * B) / (2 * A * B);
    const double at_a = (L * L + A * A - B * B) / (2 * L * A);
    const double at_b = (L * L - A * A + B * B) / (2 * L * B);
    return {std::max({std::fabs(G), std::fabs(at_a), std::fabs(at_b)}), G, A, B};
}

FrontEnd FSFRNT(const std::vector<Polygon> &polygons, double H, std::int64_t limit, SurfacePanels &panels) {
    Front front(H);
    for (const Polygon &polygon : polygons) {
        SurfacePanels tips;
        const std::vector<FrontNode> nodes = boundary_nodes(polygon, H, tips);
        if (nodes.size() < 3)
            return FrontEnd::stuck;
        front.add_loop(nodes);
        panels.insert(panels.end(), tips.begin(), tips.end());
    }
    for (std::int64_t made = 0; !front.is_empty(); ++made) {
        if (made == limit)
            return FrontEnd::out_of_steps;
        if (!front.step(panels))
            return FrontEnd::stuck;
    }
    return FrontEnd::filled;
}
