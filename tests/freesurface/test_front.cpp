// The advancing front alone. Truth: areas by the shoelace formula, grid counts, figures worked out by hand,
// and the search of near edges against that of all edges.
#include "waterline_body.hpp"

#include "freesurface/edge_grid.hpp"
#include "freesurface/front_boundary.hpp"
#include "run_folder.hpp"

#include <chrono>
#include <random>

namespace {

using namespace lines;

TEST(Boundary, long_sides_are_divided_and_short_ones_skipped) {
    // Clockwise, H = 1: a side of 3, one of 1, and one of 3 in ten pieces, of which every second
    // point is skipped.
    Polygon polygon = {{0, 0}, {0, 1}, {3, 1}, {3, 0}};
    for (int i = 9; i >= 1; --i)
        polygon.push_back({0.3 * i, i == 7 ? -0.05 : 0});
    SurfacePanels tips;
    const std::vector<FrontNode> nodes = boundary_nodes(polygon, 1, tips);
    ASSERT_EQ(nodes.size(), 4u + 2 + 4); // the long side has 3 edges, the fine one 5
    EXPECT_NEAR(nodes[2].at.x, 1, 1e-15);
    EXPECT_NEAR(nodes[3].at.x, 2, 1e-15);
    for (std::size_t k = 0; k < nodes.size(); ++k)
        EXPECT_GE(distance(nodes[k].at, nodes[(k + 1) % nodes.size()].at), 0.5);
}

TEST(Boundary, the_farthest_skipped_point_outside_is_kept) {
    // A chamfered corner of short sides at (4, 4): the last two of its points are skipped.
    const Polygon polygon = {{0, 0}, {0, 4}, {3.9, 4}, {3.98, 3.98}, {4, 3.9}, {4, 0}};
    SurfacePanels panels, tips;
    const std::vector<FrontNode> nodes = boundary_nodes(polygon, 1, tips);
    ASSERT_EQ(FSFRNT({polygon}, 1, 200, panels), FrontEnd::filled);
    double area = 0;
    bool kept = false;
    for (const SurfacePanel &p : panels) {
        area -= clockwise_area({p.begin(), p.end()});
        for (const SurfacePoint v : p)
            kept = kept || distance(v, {4, 3.9}) == 0;
    }
    int bulges = 0;
    for (const FrontNode &node : nodes) {
        if (node.has_bulge) {
            ++bulges;
            EXPECT_EQ(node.FBLG.x, 4);
            EXPECT_EQ(node.FBLG.y, 3.9);
        }
    }
    EXPECT_EQ(bulges, 1);
    EXPECT_TRUE(kept);
    EXPECT_NEAR(area, clockwise_area(polygon), 1e-3 * clockwise_area(polygon));
}

TEST(Boundary, a_spike_is_cut_off_with_its_skipped_points) {
    const Polygon polygon = {{0, 0}, {0, 2}, {1, 2}, {1.02, 3}, {1.04, 2}, {2, 2}, {2, 0}};
    SurfacePanels tips;
    for (const FrontNode &node : boundary_nodes(polygon, 1, tips)) {
        EXPECT_LE(node.at.y, 2);
        EXPECT_FALSE(node.has_bulge);
    }
    EXPECT_EQ(tips.size(), 1u); // it is a corner of the area
}

TEST(FSFRNT, three_nodes_make_one_triangle) {
    SurfacePanels panels;
    EXPECT_EQ(FSFRNT({{{0, 0}, {0.5, 0.8}, {1, 0}}}, 1, 1, panels), FrontEnd::filled);
    ASSERT_EQ(panels.size(), 1u);
    EXPECT_LT(clockwise_area({panels[0].begin(), panels[0].end()}), 0);
    SurfacePanels none;
    EXPECT_EQ(FSFRNT({{{0, 0}, {1, 0}}}, 1, 10, none), FrontEnd::stuck);
}

TEST(FSFRNT, stops_at_its_limit) {
    SurfacePanels panels;
    EXPECT_EQ(FSFRNT({divided({{0, 0}, {0, 1}, {1, 1}, {1, 0}}, 0.1)}, 0.14, 50, panels),
              FrontEnd::out_of_steps);
    EXPECT_EQ(panels.size(), 50u);
}

// Edges of every direction, and such as share nodes or lie on one line: the grid finds what a search
// of all finds.
TEST(EdgeGrid, near_edges_are_enough) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-10, 10), step(-3, 3);
    std::vector<SurfacePoint> nodes(400);
    for (SurfacePoint &p : nodes)
        p = {std::round(place(random)), place(random)};
    std::uniform_int_distribution<int> any(0, 399);
    EdgeGrid grid(2, 0.001, 1e-6);
    std::vector<FrontEdge> all;
    int crossings = 0;
    for (int k = 0; k < 2000; ++k) {
        const int a = any(random);
        int b = any(random);
        for (int tries = 0; tries < 50 && (a == b || distance(nodes[a], nodes[b]) > 4); ++tries)
            b = any(random);
        if (a == b)
            continue;
        const FrontEdge edge{{a, b}, {nodes[a], nodes[b]}};
        bool crosses = false;
        for (const FrontEdge &old_edge : all)
            crosses = crosses || edges_cross(edge, old_edge, 0.001, 1e-6);
        EXPECT_EQ(grid.crosses(edge), crosses);
        crossings += crosses ? 1 : 0;
        if (!crosses || k % 5 == 0) {
            grid.add(edge);
            all.push_back(edge);
        }
    }
    EXPECT_GT(crossings, 100);
    EXPECT_LT(crossings, 1900);
}

TEST(EdgeGrid, crossings_by_hand) {
    // clang-format off
    const struct {
        const char *label;
        FrontEdge s, t;
        bool cross;
    } rows[] = {
        {"plain", {{1, 2}, {{0, 0}, {2, 2}}}, {{3, 4}, {{0, 2}, {2, 0}}}, true},
        {"apart", {{1, 2}, {{0, 0}, {2, 2}}}, {{3, 4}, {{3, 0}, {5, 0}}}, false},
        {"a node on an edge", {{1, 2}, {{0, 0}, {2, 0}}}, {{3, 4}, {{1, 0}, {1, 1}}}, false},
        {"an edge over a node", {{3, 4}, {{1, 1}, {1, 0}}}, {{1, 2}, {{0, 0}, {2, 0}}}, false},
        {"common node", {{1, 2}, {{0, 0}, {2, 2}}}, {{2, 3}, {{2, 2}, {4, 0}}}, false},
        {"the same edge", {{1, 2}, {{0, 0}, {2, 2}}}, {{2, 1}, {{2, 2}, {0, 0}}}, false},
        {"on one line, apart", {{1, 2}, {{0, 0}, {0, 1}}}, {{3, 4}, {{0, 2}, {0, 3}}}, false},
        {"on one line, touching", {{1, 2}, {{0, 0}, {1, 0}}}, {{2, 4}, {{1, 0}, {3, 0}}}, false},
        {"on one line, over each other", {{1, 2}, {{0, 0}, {2, 0}}}, {{1, 4}, {{0, 0}, {3, 0}}}, true},
        {"vertical over each other", {{1, 2}, {{1, 0}, {1, 2}}}, {{3, 4}, {{1, 1}, {1, 5}}}, true},
        {"parallel", {{1, 2}, {{0, 0}, {2, 0}}}, {{3, 4}, {{0, 0.1}, {2, 0.1}}}, false},
    };
    // clang-format on
    for (const auto &row : rows)
        EXPECT_EQ(edges_cross(row.s, row.t, 1e-3, 1e-6), row.cross) << row.label;
}

// Star-shaped waterlines with teeth of any depth, with sides of very different length.
TEST(FSFRNT, fills_two_hundred_random_stars) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> radius(0.35, 1.0), part(0.3, 1.0);
    std::uniform_int_distribution<int> corners(3, 24);
    int filled = 0;
    double worst = 0, worst_points = 0;
    for (int k = 0; k < 200; ++k) {
        const RunFolder folder;
        const int n = corners(random);
        std::vector<double> angle(1, 0);
        for (int i = 0; i < n; ++i)
            angle.push_back(angle.back() + part(random));
        Polygon star;
        for (int i = 0; i < n; ++i) {
            const double a = -2 * PI * angle[static_cast<std::size_t>(i)] / angle.back(), r = radius(random);
            star.push_back({r * std::cos(a), r * std::sin(a)});
        }
        const Polygon line = divided(star, 0.06);
        Body body({{line}}, 8);
        ASSERT_EQ(body.generate(), Status::ok) << k << folder.list_text();
        if (folder.list_has("WARNING: Free surface panelling is not completed"))
            continue;
        ++filled;
        const Cover cover = cover_of(body, {line}, 80);
        worst = std::max(worst, std::fabs(cover.area / cover.wanted - 1));
        EXPECT_EQ(cover.wrong_normals, 0) << k;
        worst_points =
            std::max(worst_points, static_cast<double>(cover.doubled + cover.missed) / cover.points);
        EXPECT_EQ(cover.doubled, 0) << k;
    }
    EXPECT_EQ(filled, 200);
    EXPECT_LT(worst_points, 3e-3); // points in such slivers; the worst is 1.05e-3
    EXPECT_LT(worst, 1e-3);        // of slivers that are left out; the worst is 4.4e-4
}

// Ten thousand panels. The limit is that of a user's patience; one core of a small machine needs much less.
TEST(FSFRNT, fills_ten_thousand_panels_in_seconds) {
    const double side = 0.014;
    const Polygon square = divided({{0, 0}, {0, 1}, {1, 1}, {1, 0}}, side);
    SurfacePanels panels;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(FSFRNT({square}, 1.0 * side, 100000, panels), FrontEnd::filled);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GE(panels.size(), 10000u);
    EXPECT_LT(seconds, 5);
}

// Half a waterline from stern (-1) to bow (1): the half breadth B (1 - x^2).
Polygon parabola(double B, int n) {
    Polygon points;
    for (int i = 0; i <= n; ++i) {
        const double x = -1 + 2.0 * i / n;
        points.push_back({x, B * (1 - x * x)});
    }
    return points;
}
// The two sides, one mirrored, joined at bow and stern.
Polygon hull_of(const Polygon &one, const Polygon &other) {
    Polygon line = one;
    for (std::size_t i = other.size() - 1; i-- > 1;)
        line.push_back({other[i].x, -other[i].y});
    return line;
}
// Bow of a half angle of 6 degrees, parallel body and transom.
Polygon transom_ship(int n) {
    const double bow = 0.2 / std::tan(PI / 30);
    return divided({{-1, -0.2}, {-1, 0.2}, {3 - bow, 0.2}, {3, 0}, {3 - bow, -0.2}}, 8.0 / n);
}

double longest_edge(const Body &body) {
    double longest = 0;
    for (int i = body.first_new(); i <= body.last_new(); ++i) {
        const Polygon p = body.panel(i);
        for (std::size_t k = 0; k < p.size(); ++k)
            longest = std::max(longest, distance(p[k], p[(k + 1) % p.size()]));
    }
    return longest;
}

// Sharp ends, unequal sides, columns of very different size, a pool of fine panels. Whatever the order
// of the panels.
TEST(FSFRNT, fills_what_ships_are_made_of) {
    const Polygon large = circle(6, 60), small = circle(0.3, 12, 8),
                  barge = divided({{-2, -1}, {-2, 1}, {2, 1}, {2, -1}}, 0.25),
                  pool = reversed(circle(0.5, 120));
    struct Row {
        std::string label;
        std::vector<Polygon> lines;
    };
    std::vector<Row> rows = {{"transom 80", {transom_ship(80)}},
                             {"transom 200", {transom_ship(200)}},
                             {"columns", {large, small}},
                             {"fine pool", {barge, pool}}};
    for (const double ratio : {0.04, 0.05, 0.07})
        for (const int n : {40, 80, 150})
            rows.push_back({"demihull " + std::to_string(ratio) + " " + std::to_string(n),
                            {hull_of(parabola(ratio, n), parabola(ratio, n))}});
    for (const int n : {40, 80, 150})
        rows.push_back({"one flat side " + std::to_string(n), {hull_of(parabola(0.1, n), parabola(0, n))}});
    for (const Row &row : rows) {
        for (const bool in_order : {false, true}) {
            SCOPED_TRACE(row.label + (in_order ? " in order" : ""));
            const RunFolder folder;
            std::vector<Line> lines;
            double H = 0; // of the coarsest line
            for (const Polygon &line : row.lines) {
                lines.push_back({line, true, in_order});
                double own = 0;
                for (std::size_t k = 0; k < line.size(); ++k)
                    own += distance(line[k], line[(k + 1) % line.size()]);
                H = std::max(H, 1.4 * own / static_cast<double>(line.size()));
            }
            Body body(lines, 8);
            ASSERT_EQ(body.generate(), Status::ok) << folder.list_text();
            EXPECT_FALSE(folder.list_has("not completed")) << folder.list_text();
            const Cover cover = cover_of(body, row.lines, 200);
            EXPECT_NEAR(cover.area, cover.wanted, 1e-3 * cover.wanted);
            EXPECT_EQ(cover.wrong_normals + cover.doubled + cover.outside, 0);
            EXPECT_LT(longest_edge(body), 2.5 * H);
        }
    }
}

} // namespace
