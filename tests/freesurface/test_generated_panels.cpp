// Panels generated from the waterline. Truth: the area inside the waterline by the shoelace formula, and a
// count of how many panels hold each point of a fine grid.
#include "waterline_body.hpp"

#include "run_folder.hpp"

namespace {

using namespace lines;

// The sides here are all kept, so that the panels cover the inside but for the rounding of vertices to f32.
constexpr double AREA = 1e-6;

struct Shape {
    const char *label;
    std::vector<Line> waterlines;
    std::vector<Polygon> inside; // polygons that bound it; those of holes run the other way
    int ISX = 0, ISY = 0;
    bool rings = true; // rings cover the inside once
};
void PrintTo(const Shape &shape, std::ostream *out) {
    *out << shape.label;
}

Polygon arc(double radius, double from, double to, int n) {
    Polygon points;
    for (int i = 0; i <= n; ++i) {
        const double a = from + (to - from) * i / n;
        points.push_back({radius * std::cos(a), radius * std::sin(a)});
    }
    return points;
}
Polygon joined(Polygon a, const Polygon &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
Polygon barge() {
    return divided({{-1, -0.6}, {-1, 0.6}, {1, 0.6}, {1, -0.6}}, 0.1);
}
Polygon horseshoe() {
    return divided({{-1, -1}, {-1, 1}, {1, 1}, {1, 0.5}, {-0.5, 0.5}, {-0.5, -0.5}, {1, -0.5}, {1, -1}}, 0.1);
}
Shape whole(const char *label, const Polygon &outline, bool rings = true) {
    return {label, {{outline}}, {outline}, 0, 0, rings};
}

std::vector<Shape> shapes() {
    const Polygon half = arc(1, PI, 0, 24);
    const Polygon quarter = arc(1, PI, PI / 2, 12);
    const Polygon half_pool = arc(0.4, 0, PI, 12);
    const Polygon quarter_pool = arc(0.4, PI / 2, PI, 6);
    const Polygon off_axis = circle(0.5, 24, 0.2, 1.2);
    Polygon hull_at_plane = {{0, 1}}; // half of a side hull: both ends on x = 0
    hull_at_plane = divided({{0, 0.8}, {1, 0.8}, {1, 1.2}, {0, 1.2}}, 0.1);
    Polygon open_hull = reversed({hull_at_plane.begin(), hull_at_plane.begin() + 25});
    return {
        whole("cylinder", circle(1, 48)),
        whole("barge", barge()),
        whole("ship_with_bulb", ship(), false),
        whole("horseshoe", horseshoe(), false),
        {"moonpool",
         {{circle(1, 48)}, {reversed(circle(0.4, 20))}},
         {circle(1, 48), reversed(circle(0.4, 20))},
         0,
         0,
         false},
        {"two_columns",
         {{circle(0.5, 24, -1)}, {circle(0.4, 20, 1)}},
         {circle(0.5, 24, -1), circle(0.4, 20, 1)}},
        {"half", {{half, false}}, {half}, 0, 1},
        {"quarter", {{quarter, false}}, {joined(quarter, {{0, 0}})}, 1, 1},
        {"half_with_moonpool", {{half, false}, {half_pool, false}}, {joined(half, half_pool)}, 0, 1, false},
        {"quarter_with_moonpool",
         {{quarter, false}, {quarter_pool, false}},
         {joined(quarter, quarter_pool)},
         1,
         1,
         false},
        {"off_the_planes", {{off_axis}}, {off_axis}, 1, 1},
        {"side_hull", {{open_hull, false}}, {open_hull}, 1, 0},
        {"side_hull_of_a_quarter", {{open_hull, false}}, {open_hull}, 1, 1},
    };
}

class Generated : public testing::TestWithParam<std::tuple<Shape, int>> {};
TEST_P(Generated, panels_cover_the_inside_once) {
    const auto &[shape, ISOR] = GetParam();
    for (const f32 ZB : {0.0f, 0.3f}) {
        const RunFolder folder;
        Body body(shape.waterlines, 4, ZB);
        body.run.opt.ISX = shape.ISX;
        body.run.opt.ISY = shape.ISY;
        ASSERT_EQ(body.generate(ISOR), Status::ok) << folder.list_text();
        EXPECT_EQ(folder.list_has("WARNING: Rings"), ISOR == 1 && !shape.rings) << folder.list_text();
        EXPECT_FALSE(folder.list_has("not completed")) << folder.list_text();
        const Cover cover = cover_of(body, shape.inside);
        EXPECT_NEAR(cover.area, cover.wanted, AREA * cover.wanted);
        EXPECT_EQ(cover.wrong_normals, 0);
        EXPECT_EQ(cover.missed, 0);
        EXPECT_EQ(cover.doubled, 0);
        EXPECT_EQ(cover.outside, 0);
        EXPECT_EQ(body.run.mesh.NEQN, body.run.bodies.NEQNB(1));
        for (int i = body.first_new(); i <= body.last_new(); ++i)
            for (int v = 1; v <= 4; ++v)
                EXPECT_EQ(body.run.mesh.XVER(v, 3, i), -ZB);
    }
}
INSTANTIATE_TEST_SUITE_P(shapes, Generated,
                         testing::Combine(testing::ValuesIn(shapes()), testing::Values(0, 1)),
                         [](const auto &row) {
                             return std::string(std::get<0>(row.param).label) +
                                    (std::get<1>(row.param) == 1 ? "_rings" : "_front");
                         });

} // namespace
