#include "mesh/checks.hpp"

#include "mesh/edges.hpp"
#include "mesh/vectors.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr double MERGED = 1.0e-5;       // vertices nearer than that are one, over the size of the body
constexpr double VOLUMES = 0.01;        // difference of the three volumes, over the largest
constexpr double SMALL_PANEL = 1.0e-3;  // longest side of a panel that is hardly meant, in ULEN
constexpr double PER_WAVE = 1.0 / 6;    // longest side, in wave lengths
constexpr double SLENDER = 20;          // aspect
constexpr double WARPED = 0.05;         // warp
constexpr double NEAR_SURFACE = 0.05;   // depth of a top row that was to reach the surface, in mean sides
constexpr double BESIDE = 0.25;         // distance of the ends of two sides that were to be one, in sides
constexpr double ON_SIDE = 1.0e-3;      // distance of a point from a side that it lies on, in sides
constexpr std::size_t MOST_OPEN = 2000; // open sides of which the causes are looked for
constexpr std::size_t NAMED = 5;        // panels that a line names

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

// Collects panels of one kind of finding, from panels that count from 0.
void add(std::vector<MeshFinding> &findings, MeshFinding finding, const std::vector<int> &from_0) {
    for (const int p : from_0)
        finding.panels.push_back(p + 1);
    std::sort(finding.panels.begin(), finding.panels.end());
    finding.panels.erase(std::unique(finding.panels.begin(), finding.panels.end()), finding.panels.end());
    if (!finding.panels.empty())
        findings.push_back(std::move(finding));
}

// The body at work: its measures, merged points and the sides of the panels that close it.
struct Check {
    const BodyMesh &mesh;
    const MeshLimits &limits;
    MeshMeasures measures;
    double size; // largest extent
    std::vector<bool> closes;
    MergedVertices vertices;
    MeshEdges edges;

    Check(const BodyMesh &the_mesh, const MeshLimits &the_limits)
        : mesh(the_mesh), limits(the_limits), measures(measure(the_mesh)), size(0) {
        for (std::size_t c = 0; c < 3; ++c)
            size = std::max(size, measures.high[c] - measures.low[c]);
        // Panels that are all one point still need a tolerance.
        if (size <= 0)
            size =
                std::max({1.0, std::fabs(measures.high[0]), std::fabs(measures.high[1]), -measures.low[2]});
        for (const BodyPanel &panel : mesh.panels)
            closes.push_back(panel.kind == PanelKind::hull || panel.kind == PanelKind::interior);
        vertices = merge_vertices(mesh.panels, MERGED * size);
        edges = edges_of(vertices, closes);
    }
    const BodyPoint &point(int i) const { return vertices.points[static_cast<std::size_t>(i)]; }
    bool both(const PanelSide &s, std::size_t axis, double value) const {
        const double tolerance = IN_SURFACE * size;
        return std::fabs(point(s.a)[axis] - value) <= tolerance &&
               std::fabs(point(s.b)[axis] - value) <= tolerance;
    }
    // A side where the mesh may end: waterline, symmetry plane or wall, the bottom of the water.
    bool may_end(const PanelSide &s) const {
        for (std::size_t axis = 0; axis < 2; ++axis)
            if ((mesh.symmetric[axis] || mesh.wall[axis]) && both(s, axis, 0))
                return true;
        return (!mesh.tank && both(s, 2, 0)) || (mesh.depth > 0 && both(s, 2, -mesh.depth));
    }
};

// Panels turned against the others of their piece; and a hull that is turned as a whole.
void check_orientation(const Check &c, std::vector<MeshFinding> &findings) {
    std::vector<int> turned;
    if (!c.edges.same_sense.empty()) {
        const MeshPieces o = pieces_of(c.edges, c.closes);
        std::vector<int> sum(static_cast<std::size_t>(o.pieces));
        for (std::size_t p = 0; p < o.piece.size(); ++p)
            if (o.piece[p] >= 0)
                sum[static_cast<std::size_t>(o.piece[p])] += o.sense[p];
        for (std::size_t p = 0; p < o.piece.size(); ++p)
            if (o.piece[p] >= 0 && o.sense[p] * (sum[static_cast<std::size_t>(o.piece[p])] >= 0 ? 1 : -1) < 0)
                turned.push_back(static_cast<int>(p));
    }
    add(findings, {"panels are turned against their neighbours", {}, "reverse the order of their vertices"},
        turned);
    const bool outward = c.measures.mean_volume < 0;
    if (turned.empty() && c.measures.surface > 0 && outward != c.mesh.tank && c.measures.mean_volume != 0)
        findings.push_back(
            {c.mesh.tank ? "the normals of the tank point into the fluid"
                         : "all normals point into the water: the volume is negative",
             {},
             c.mesh.tank ? "reverse the order of the vertices of all panels"
                         : "reverse the order of the vertices of all panels (right for a filled tank only)"});
}

// Why a side of one panel only stands open.
enum class Open { gap, junction, below_surface, missing };
Open cause_of(const Check &c, const PanelSide &s, double &gap) {
    const BodyPoint &a = c.point(s.a), &b = c.point(s.b);
    const double length = distance(a, b);
    gap = BESIDE * length;
    Open cause = Open::missing;
    for (const PanelSide &t : c.edges.open) {
        if (t.panel == s.panel && t.a == s.a && t.b == s.b)
            continue;
        // The other side of a crack runs the other way, its ends near these.
        const double apart = std::max(distance(a, c.point(t.b)), distance(b, c.point(t.a)));
        if (apart < gap && (t.a != s.b || t.b != s.a)) {
            gap = apart;
            cause = Open::gap;
        }
    }
    if (cause == Open::gap)
        return cause;
    for (const PanelSide &t : c.edges.open) {
        for (const int end : {t.a, t.b}) {
            if (end == s.a || end == s.b)
                continue;
            const BodyPoint &p = c.point(end);
            if (distance(a, p) + distance(p, b) < (1 + ON_SIDE * ON_SIDE) * length)
                return Open::junction;
            // And the long side, seen from one of the short ones.
            const BodyPoint &u = c.point(t.a), &v = c.point(t.b);
            const double whole = distance(u, v);
            for (const BodyPoint *q : {&a, &b})
                if (whole > length && distance(u, *q) > ON_SIDE * whole &&
                    distance(*q, v) > ON_SIDE * whole &&
                    distance(u, *q) + distance(*q, v) < (1 + ON_SIDE * ON_SIDE) * whole)
                    return Open::junction;
        }
    }
    if (!c.mesh.tank && std::max(a[2], b[2]) > -BESIDE * length)
        return Open::below_surface;
    return Open::missing;
}

void check_edges(const Check &c, std::vector<MeshFinding> &findings) {
    std::vector<int> gaps, junctions, below, missing, crowded;
    double widest = 0;
    std::vector<PanelSide> open;
    for (const PanelSide &s : c.edges.open)
        if (!c.may_end(s))
            open.push_back(s);
    for (const PanelSide &s : open) {
        double gap = 0;
        const Open cause = open.size() <= MOST_OPEN ? cause_of(c, s, gap) : Open::missing;
        (cause == Open::gap             ? gaps
         : cause == Open::junction      ? junctions
         : cause == Open::below_surface ? below
                                        : missing)
            .push_back(s.panel);
        if (cause == Open::gap)
            widest = std::max(widest, gap);
    }
    for (const std::vector<PanelSide> &sides : c.edges.crowded)
        for (const PanelSide &s : sides)
            crowded.push_back(s.panel);
    add(findings,
        {"sides do not meet those of the next panel, up to " + number(widest) + " ULEN apart",
         {},
         "give common vertices the same coordinates"},
        gaps);
    add(findings,
        {"a vertex lies in the middle of a neighbour's side",
         {},
         "divide the long panel there, or leave it where the error is small",
         false},
        junctions);
    add(findings, {"sides near the surface end below z = 0", {}, "give the vertices of the waterline z = 0"},
        below);
    add(findings,
        {"sides where no other panel begins: a panel is missing, or the body is open",
         {},
         "close the surface there"},
        missing);
    add(findings,
        {"sides that more than two panels share", {}, "remove panels that are given twice or lie inside"},
        crowded);
}

// Panels on the same points.
void check_doubles(const Check &c, std::vector<MeshFinding> &findings) {
    std::vector<std::pair<std::array<int, 4>, int>> keys;
    for (std::size_t p = 0; p < c.vertices.of_panel.size(); ++p) {
        if (c.mesh.panels[p].kind == PanelKind::made)
            continue;
        std::array<int, 4> key = c.vertices.of_panel[p];
        std::sort(key.begin(), key.end());
        keys.push_back({key, static_cast<int>(p)});
    }
    std::sort(keys.begin(), keys.end());
    std::vector<int> doubled;
    for (std::size_t i = 1; i < keys.size(); ++i)
        if (keys[i].first == keys[i - 1].first) {
            doubled.push_back(keys[i - 1].second);
            doubled.push_back(keys[i].second);
        }
    add(findings, {"panels lie on the same place", {}, "remove one of each pair"}, doubled);
}

void check_shapes(const Check &c, std::vector<MeshFinding> &findings) {
    std::vector<int> small, slender, warped, long_ones, in_surface;
    const double longest = c.limits.shortest_wave * PER_WAVE;
    double worst = 0;
    for (std::size_t p = 0; p < c.mesh.panels.size(); ++p) {
        const BodyPanel &panel = c.mesh.panels[p];
        if (panel.kind == PanelKind::made)
            continue;
        const PanelShape shape = shape_of(panel);
        const int number_0 = static_cast<int>(p);
        if (shape.longest < SMALL_PANEL)
            small.push_back(number_0);
        if (shape.aspect > SLENDER)
            slender.push_back(number_0);
        if (shape.warp > WARPED)
            warped.push_back(number_0);
        if (longest > 0 && shape.longest > longest) {
            long_ones.push_back(number_0);
            worst = std::max(worst, shape.longest);
        }
        const bool flat = std::fabs(shape.centre[2]) <= IN_SURFACE * c.size && shape.normal[2] > 0.999;
        if (panel.kind == PanelKind::hull && flat && !c.mesh.tank)
            in_surface.push_back(number_0);
    }
    add(findings, {"panels smaller than 1e-3 ULEN", {}, "check the unit of length and ULEN", false}, small);
    add(findings, {"panels more than 20 times as long as wide", {}, "divide them along", false}, slender);
    add(findings,
        {"panels bent out of their plane by more than 5 per cent of their size", {}, "divide them", false},
        warped);
    add(findings,
        {"panels longer than a sixth of the shortest wave, " + number(c.limits.shortest_wave) +
             " ULEN: up to " + number(worst),
         {},
         "take smaller panels, or trust the short waves less",
         false},
        long_ones);
    add(findings,
        {"panels in z = 0 with their normal up count as hull without draught",
         {},
         "turn them when interior free surface is meant",
         false},
        in_surface);
}

void check_body(const Check &c, std::vector<MeshFinding> &findings) {
    const MeshMeasures &m = c.measures;
    if (m.surface <= 0)
        return;
    const auto [low, high] = std::minmax({m.volume[0], m.volume[1], m.volume[2]});
    const double largest = std::max(std::fabs(low), std::fabs(high));
    // A body that stands on the bottom is open there: no volume by z.
    const bool stands = c.mesh.depth > 0 && std::fabs(m.low[2] + c.mesh.depth) <= IN_SURFACE * c.size;
    if (high - low > VOLUMES * largest && !stands)
        findings.push_back({"the three volumes differ by more than 1 per cent: " + number(m.volume[0]) +
                                ", " + number(m.volume[1]) + ", " + number(m.volume[2]) + " ULEN^3",
                            {},
                            "the surface is open, or panels are turned"});
    std::vector<int> sunk;
    for (std::size_t p = 0; p < c.mesh.panels.size() && c.mesh.depth > 0; ++p) {
        const auto &at = c.mesh.panels[p].at;
        if (std::any_of(at.begin(), at.end(),
                        [&](const BodyPoint &v) { return v[2] < -c.mesh.depth - IN_SURFACE * c.size; }))
            sunk.push_back(static_cast<int>(p));
    }
    add(findings, {"panels below the bottom", {}, "check the depth, and the height of the body"}, sunk);
    if (!c.mesh.tank && m.high[2] < 0 && m.high[2] > -NEAR_SURFACE * m.mean && c.limits.treated)
        findings.push_back({"the top of the body lies " + number(-m.high[2]) +
                                " ULEN below z = 0: it has no waterline, and gets no interior panels",
                            {},
                            "give the vertices of the waterline z = 0, or IRR = 0 for a submerged body"});
}

} // namespace

std::vector<MeshFinding> check_mesh(const BodyMesh &mesh, const MeshLimits &limits) {
    std::vector<MeshFinding> findings;
    if (mesh.panels.empty())
        return findings;
    const Check c(mesh, limits);
    check_orientation(c, findings);
    check_edges(c, findings);
    check_doubles(c, findings);
    check_body(c, findings);
    check_shapes(c, findings);
    return findings;
}

std::string told(const MeshFinding &finding) {
    std::string text = finding.what;
    for (std::size_t i = 0; i < std::min(NAMED, finding.panels.size()); ++i)
        text += (i == 0 ? ": panel " : ", ") + std::to_string(finding.panels[i]);
    if (finding.panels.size() > NAMED)
        text += " and " + std::to_string(finding.panels.size() - NAMED) + " more";
    return text + "; " + finding.remedy;
}
