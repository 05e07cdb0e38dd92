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
    // Half of a side hull: both ends on x = 0.
    const Polygon hull_at_plane = divided({{0, 0.8}, {1, 0.8}, {1, 1.2}, {0, 1.2}}, 0.1);
    Polygon open_hull = reversed({hull_at_plane.begin(), hull_at_plane.begin() + 25});
    // clang-format off
    return {
        whole("cylinder", circle(1, 48)),
        whole("barge", barge()),
        whole("ship_with_bulb", ship(), false),
        whole("horseshoe", horseshoe(), false),
        {"moonpool", {{circle(1, 48)}, {reversed(circle(0.4, 20))}}, {circle(1, 48), reversed(circle(0.4, 20))}, 0, 0, false},
        {"two_columns", {{circle(0.5, 24, -1)}, {circle(0.4, 20, 1)}}, {circle(0.5, 24, -1), circle(0.4, 20, 1)}},
        {"half", {{half, false}}, {half}, 0, 1},
        {"quarter", {{quarter, false}}, {joined(quarter, {{0, 0}})}, 1, 1},
        {"half_with_moonpool", {{half, false}, {half_pool, false}}, {joined(half, half_pool)}, 0, 1, false},
        {"quarter_with_moonpool", {{quarter, false}, {quarter_pool, false}}, {joined(quarter, quarter_pool)}, 1, 1, false},
        {"off_the_planes", {{off_axis}}, {off_axis}, 1, 1},
        {"side_hull", {{open_hull, false}}, {open_hull}, 1, 0},
        {"side_hull_of_a_quarter", {{open_hull, false}}, {open_hull}, 1, 1},
    };
    // clang-format on
}

void expect_one_cover(const Shape &shape, int ISOR) {
    SCOPED_TRACE(std::string(shape.label) + (ISOR == 1 ? ", rings" : ", front"));
    for (const f32 ZB : {0.0f, 0.3f}) {
        const RunFolder folder;
        Body body(shape.waterlines, 4, ZB);
        body.run.opt.ISX = shape.ISX;
        body.run.opt.ISY = shape.ISY;
        ASSERT_EQ(body.generate(ISOR), Status::ok) << folder.list_text();
        EXPECT_EQ(folder.list_has("WARNING: Rings"), ISOR == 1 && !shape.rings) << folder.list_text();
        EXPECT_FALSE(folder.list_has("not completed")) << folder.list_text();
        cover_of(body, shape.inside).expect_once(AREA);
        EXPECT_EQ(body.run.mesh.NEQN, body.run.bodies.NEQNB(1));
        for (int i = body.first_new(); i <= body.last_new(); ++i)
            for (int v = 1; v <= 4; ++v)
                EXPECT_EQ(body.run.mesh.XVER(v, 3, i), -ZB);
    }
}
TEST(Generated, panels_cover_the_inside_once) {
    for (const Shape &shape : shapes())
        for (const int ISOR : {0, 1})
            expect_one_cover(shape, ISOR);
}

TEST(Generated, rings_are_as_many_as_the_area_asks_for) {
    const RunFolder folder;
    Body body({{circle(1, 40)}}, 2);
    ASSERT_EQ(body.generate(1), Status::ok);
    // Twice the area over the squared side is 20 / tan(pi / 40) = 254.1, six times the sides: 6 rings more
    // than one.
    ASSERT_EQ(body.run.mesh.NEQN - body.hull[0], 40 * 7);
    const int first = body.first_new();
    for (int ring = 0; ring < 7; ++ring) {
        const Polygon p = body.panel(first + ring);
        ASSERT_EQ(p.size(), ring == 6 ? 3u : 4u);
        EXPECT_NEAR(std::hypot(p[0].x, p[0].y), std::cos(ring * PI / 14), 1e-6);
        EXPECT_NEAR(std::hypot(p[2].x, p[2].y), ring == 6 ? 0 : std::cos((ring + 1) * PI / 14), 1e-6);
    }
}

TEST(Generated, two_bodies_keep_their_panels_marks_and_files) {
    const RunFolder folder;
    Body body({{{circle(1, 24)}}, {{circle(0.5, 20, 3)}}}, 4, {0, 0.2f});
    RunState &run = body.run;
    body.dipoles();
    for (int i = 1; i <= run.mesh.NEQN; ++i) {
        const bool at_waterline = (i - 1) % 4 == 0;
        run.dipoles.IDIP(i) = at_waterline ? 0 : i;
        run.dipoles.DTHK(i) = static_cast<f32>(i);
    }
    run.bodies.NDIPB(2) = 1;
    ASSERT_TRUE(run.bodies.BDTYP.alloc(2) && run.bodies.IPANB0.alloc(2) && run.bodies.IPANB1.alloc(2));
    run.opt.IFSLID = 1;
    std::vector<f32> second; // the hull of body 2
    for (int i = 97; i <= 96 + 80; ++i)
        for (int k = 0; k < 12; ++k)
            second.push_back(run.mesh.XVER.slice(i).data()[k]);
    ASSERT_EQ(body.generate(), Status::ok) << folder.list_text();
    const int moved = run.bodies.NEQNB(1) - 96;
    EXPECT_GT(moved, 20);
    for (int i = 0; i < 80; ++i) {
        for (int k = 0; k < 12; ++k)
            EXPECT_EQ(run.mesh.XVER.slice(97 + moved + i).data()[k],
                      second[static_cast<std::size_t>(12 * i + k)]);
        EXPECT_EQ(run.dipoles.IDIP(97 + moved + i), i % 4 == 0 ? 0 : 97 + i);
        EXPECT_EQ(run.dipoles.DTHK(97 + moved + i), 97 + i);
    }
    for (int i = 97; i < 97 + moved; ++i)
        EXPECT_EQ(run.dipoles.IDIP(i), 0);
    EXPECT_GE(run.dipoles.IDIP.dim(1), run.mesh.NEQN);
    EXPECT_EQ(run.bodies.IPANB0(2), run.bodies.NEQNB(1) + 1);
    EXPECT_EQ(run.bodies.NEQNB(1) + run.bodies.NEQNB(2), run.mesh.NEQN);
    cover_of(body, {circle(1, 24)}, 100, 1).expect_once(AREA);
    cover_of(body, {circle(0.5, 20, 3)}, 100, 2).expect_once(AREA);
    EXPECT_EQ(folder.read("run.idf").substr(0, 56),
              " Free surface discretizaton; GDF=body5.gdf           \n 1");
    EXPECT_NE(folder.read("second.idf").find("\n " + std::to_string(run.bodies.NEQNB(2)) + " 1\n"),
              std::string::npos);
}

TEST(Generated, bodies_without_waterline_and_lids_are_left_alone) {
    const RunFolder folder;
    Body body({{{circle(1, 24)}}, {{circle(0.5, 20, 3)}}}, 2, {0, 0});
    RunState &run = body.run;
    ASSERT_TRUE(run.bodies.BDTYP.alloc(2) && run.bodies.IPANB0.alloc(2) && run.bodies.IPANB1.alloc(2));
    run.opt.IFSLID = 1;
    run.bodies.BDTYP(1) = 3;
    ASSERT_EQ(body.generate(), Status::ok);
    EXPECT_EQ(run.bodies.NEQNB(1), 48);
    EXPECT_GT(run.bodies.NEQNB(2), 40);
    EXPECT_FALSE(folder.exists("run.idf"));
    EXPECT_TRUE(folder.exists("second.idf"));
    Body deep({{circle(1, 24)}}, 2);
    deep.run.bodies.NWLB(1) = 0;
    ASSERT_EQ(deep.generate(), Status::ok);
    EXPECT_EQ(deep.run.mesh.NEQN, 48);
    EXPECT_FALSE(folder.exists("run.idf"));
}

TEST(Generated, a_plate_through_the_surface_bounds_no_inside) {
    const RunFolder folder;
    Body body({{circle(1, 24)}, {{{2, 0}, {2.3, 0}, {2.6, 0}}, false}}, 2);
    Dipoles &dipoles = body.dipoles();
    for (int i = 49; i <= 52; ++i)
        dipoles.IDIP(i) = 1;
    ASSERT_EQ(body.generate(), Status::ok) << folder.list_text();
    cover_of(body, {circle(1, 24)}).expect_once(AREA);
}

TEST(Generated, short_sides_do_not_break_a_contour) {
    const RunFolder folder;
    Polygon line = circle(1, 40);
    const SurfacePoint p = line[5];
    line.insert(line.begin() + 5, {p.x + 1e-5, p.y}); // a gap of 1e-4 sides, and one without length
    line.insert(line.begin() + 20, line[20]);
    for (const int ISOR : {0, 1}) {
        Body body({{line}}, 4);
        ASSERT_EQ(body.generate(ISOR), Status::ok) << folder.list_text();
        cover_of(body, {circle(1, 40)}).expect_once(1e-5);
    }
}

TEST(Generated, bad_waterlines) {
    Polygon gap = circle(1, 40);
    gap.pop_back();
    Polygon off_plane = arc(1, PI - 0.2, 0, 20);
    Polygon knot = circle(1, 40);
    for (std::size_t i = 0; i < 20; ++i)
        knot[i].y *= -1; // the halves cross in (1, 0) and (-1, 0)
    const char *const OPEN = "Waterline panels do not form a closed contour";
    const char *const NOT_COMPLETED = "WARNING: Free surface panelling is not completed";
    // clang-format off
    const struct {
        const char *label;
        std::vector<Line> waterlines;
        int ISY;
        const char *message;
        bool fails;
    } rows[] = {
        {"open", {{gap, false}}, 0, OPEN, true},
        {"one end off the plane", {{off_plane, false}}, 1, OPEN, true},
        {"two panels side by side", {{{{0, 1}, {1, 1}, {2, 1}}, false}}, 1, OPEN, true},
        {"two panels there and back", {{{{0, 1}, {1, 1}}}}, 0, NOT_COMPLETED, false},
        {"inside out", {{reversed(circle(1, 40))}}, 0, NOT_COMPLETED, false},
        {"crosses itself", {{divided({{0, 0}, {0, 1}, {1, 1}, {1.6, 0.2}, {1.6, 0.8}, {1, 0}}, 0.1)}}, 0, "Free-surface panels cover less than 95 per cent of the waterplane", true},
        {"as coarse as a hull may be", {{circle(1, 300)}}, 0, "Number of free-surface panels exceeds limit 600", true},
    };
    // clang-format on
    for (const auto &row : rows) {
        SCOPED_TRACE(row.label);
        const RunFolder folder;
        Body body(row.waterlines, 1);
        body.run.opt.ISY = row.ISY;
        const int NEQN = body.run.mesh.NEQN;
        EXPECT_EQ(body.generate(), row.fails ? Status::failed : Status::ok);
        EXPECT_TRUE(folder.told(row.message) || folder.list_has(row.message)) << folder.list_text();
        EXPECT_EQ(folder.told("Error in generating free-surface panels for body N=1"), row.fails);
        EXPECT_EQ(body.run.mesh.NEQN, NEQN);
        EXPECT_EQ(folder.exists("run.idf"), !row.fails);
        EXPECT_FALSE(folder.exists("run.idf.part"));
    }
    for (const int ISOR : {0, 1}) { // crossing lines end in some way, and orderly
        const RunFolder folder;
        Body body({{knot}}, 4);
        const Status status = body.generate(ISOR);
        EXPECT_EQ(folder.exists("run.idf"), status == Status::ok);
        EXPECT_TRUE(folder.list_has("not completed") || folder.list_has("Error in generating"))
            << folder.list_text();
    }
}

TEST(Generated, file_that_cannot_be_written_is_not_left_behind) {
    const RunFolder folder;
    Body body({{circle(1, 24)}}, 2);
    EXPECT_EQ(body.generate(0, "no/such/folder.idf"), Status::failed);
    EXPECT_TRUE(folder.told("Error writing generated geometry file of body N=1")) << folder.list_text();
    EXPECT_TRUE(folder.told("Error in generating free-surface panels for body N=1"));
}

} // namespace
