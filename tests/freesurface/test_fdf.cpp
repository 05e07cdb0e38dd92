// Panels of the free surface around a body and their file. Truth: each point of the ring lies in one panel
// and no point in two, in no panel inside the body or beyond a symmetry plane; normals point up; what a
// person sees in a file.
#include "base/text.hpp"
#include "freesurface/fdf.hpp"
#include "freesurface/fdfgen.hpp"
#include "run_folder.hpp"
#include "waterline_body.hpp"

#include <random>

namespace {

using lines::PI;

// A closed curve, clockwise, and the part of it inside the planes when its middle lies on them.
struct Shape {
    const char *name;
    double length, beam; // 0 beam: a circle
    bool box;
};
constexpr Shape SHAPES[] = {
    {"circle", 2, 2, false}, {"ellipse", 4, 1.6, false}, {"box", 4, 1, true}, {"column", 2, 2, true}};

// Points of the shape about (x, y) from angle a0 to a1 (of a circle that is stretched), clockwise from a1.
Polygon points_of(const Shape &shape, double x, double y, double a0, double a1, int n) {
    Polygon points;
    for (int i = 0; i <= n; ++i) {
        const double a = a1 + (a0 - a1) * i / n;
        double u = std::cos(a), v = std::sin(a);
        if (shape.box) { // out to the square
            const double out = std::max(std::fabs(u), std::fabs(v));
            u /= out;
            v /= out;
        }
        const auto rounded = [](double t) { return std::fabs(t) < 1e-9 ? 0.0 : t; };
        points.push_back({rounded(x + shape.length / 2 * u), rounded(y + shape.beam / 2 * v)});
    }
    return points;
}

// Where the middle of the body is and which part of it there is; angles in units of pi / 2.
struct Place {
    const char *name;
    int ISX, ISY;
    double x, y;
    int from, quarters;
    double radii; // radius of the outer curve for the circle of unit radius
};
// About the middle of the half circle of a fine mesh, its points are 0.363 to 1.185 away.
constexpr double HALF_CIRCLE = 10 * (1 - 2 / PI) + 1.1855;
const Place PLACES[] = {
    {"_whole_off_centre", 0, 0, -7, 3, 0, 4, 6},
    {"_half_y_below_0_off_centre", 0, 1, 5, 0, 2, 2, HALF_CIRCLE},
    {"_half_x_above_0_off_centre", 1, 0, 0, -4, -1, 2, HALF_CIRCLE},
    {"_half_x_below_0", 1, 0, 0, 0, 1, 2, HALF_CIRCLE},
    {"_second_quarter", 1, 1, 0, 0, 1, 1, 6},
    {"_third_quarter", 1, 1, 0, 0, 2, 1, 6},
    {"_fourth_quarter", 1, 1, 0, 0, -1, 1, 6},
    {"_beside_y_0", 0, 1, 3, -2, 0, 4, 6},
    {"_in_a_quarter", 1, 1, -2.6, 1.4, 0, 4, 6},
};

// Vertices of free-surface panel i.
Polygon panel_of(const SurfaceMesh &s, int i) {
    Polygon points;
    for (int v = 1; v <= 4; ++v)
        points.push_back({s.XCTF(1, i) + s.XIVF(v, i) * s.TRMF(1, 1, i) + s.ETVF(v, i) * s.TRMF(2, 1, i),
                          s.XCTF(2, i) + s.XIVF(v, i) * s.TRMF(1, 2, i) + s.ETVF(v, i) * s.TRMF(2, 2, i)});
    return points;
}

void expect_one_cover(const Shape &shape, const Place &place) {
    SCOPED_TRACE(std::string(shape.name) + place.name);
    const RunFolder folder;
    const int N = 6 * place.quarters;
    const bool closed = place.quarters == 4;
    lines::Line line{
        points_of(shape, place.x, place.y, place.from * PI / 2, (place.from + place.quarters) * PI / 2, N),
        closed};
    Polygon inside = line.points; // to the planes, for the test of points
    if (closed)
        line.points.pop_back();
    else
        inside.push_back({place.x, place.y});
    lines::Body body({line});
    RunState &run = body.run;
    run.opt.ISX = place.ISX;
    run.opt.ISY = place.ISY;
    run.bodies.ULEN(1) = 2; // the file is dimensional
    run.opt.RULEN = 0.5f;
    SurfaceMesh surface;
    ASSERT_EQ(FDFSTG(run, surface), Status::ok) << folder.list_text();
    EXPECT_TRUE(folder.told("Creates the free surface data file FDF"));
    const bool ring_on_planes = place.quarters < 4;
    const int J = place.quarters == 4 ? N / 2 : place.quarters == 2 ? N : 2 * N;
    ASSERT_EQ(surface.NFSP, N * J);
    for (int i = 1; i <= surface.NFSP; ++i)
        ASSERT_GT(surface.TRMF(3, 3, i), 0.9999f) << "normal of panel " << i;
    FreeReader in;
    std::string title;
    f32 ROUT = 0;
    ASSERT_TRUE(in.open(run.files.FILNAM(5)) && in.line(title, 72) && in.read(ROUT));
    if (std::string(shape.name) == "circle") {
        EXPECT_NEAR(ROUT, place.radii, 0.02 * place.radii);
    }
    std::mt19937 random(3);
    std::uniform_real_distribution<double> unit(-1.1, 1.1);
    const double dx = place.ISX == 1 && !ring_on_planes ? std::fabs(place.x) : 1e9,
                 dy = place.ISY == 1 && !ring_on_planes ? std::fabs(place.y) : 1e9;
    // The ring reaches that far: the outer curve has chords, of up to 53 degrees for the box.
    const double sure = 0.85 * std::min({static_cast<double>(ROUT), dx, dy});
    for (int k = 0; k < 400; ++k) {
        const double scale = k % 2 == 0 ? ROUT : shape.length;
        const SurfacePoint p{place.x + scale * unit(random), place.y + scale * unit(random)};
        int count = 0;
        for (int i = 1; i <= surface.NFSP; ++i)
            count += lies_inside(panel_of(surface, i), p) ? 1 : 0;
        const double a = std::atan2(p.y - place.y, p.x - place.x) / (PI / 2) - place.from;
        const bool beyond =
            ring_on_planes ? std::fmod(a + 8, 4.0) > place.quarters
                           : (place.ISX == 1 && p.x * place.x < 0) || (place.ISY == 1 && p.y * place.y < 0);
        ASSERT_LE(count, beyond || lies_inside(inside, p) ? 0 : 1) << p.x << " " << p.y;
        if (!beyond && !lies_inside(inside, p) && distance(p, {place.x, place.y}) < sure) {
            ASSERT_EQ(count, 1) << p.x << " " << p.y;
        }
    }
    // The outer points stand in equal steps of the angle, where no plane clips their curve; but for the long
    // box, whose rays would leave it twice.
    const auto outer = [&](int ray) {
        const Polygon end = panel_of(surface, (ray + 1) * J);
        return distance(end[2], end[3]);
    };
    const bool by_angle = std::string(shape.name) != "box";
    for (int ray = 1; ray < N && by_angle && (ring_on_planes || (place.ISX == 0 && place.ISY == 0)); ++ray)
        EXPECT_NEAR(outer(ray), outer(0), 1e-3 * outer(0)) << ray;
    // Radial steps grow to twice the first.
    const double first = distance(panel_of(surface, 1)[0], panel_of(surface, 1)[3]);
    const double last = distance(panel_of(surface, J)[0], panel_of(surface, J)[3]);
    EXPECT_NEAR(last, 2 * first, 1e-4);
}

TEST(Fdf, PanelsCoverTheRingOnce) {
    for (const Shape &shape : SHAPES)
        for (const Place &place : PLACES)
            expect_one_cover(shape, place);
}

TEST(FdfContour, IsChainedFromAnySide) {
    // A half circle as sides in any order, one of them a point.
    const Polygon arc = points_of(SHAPES[0], 0, 0, 0, PI, 8);
    for (int start = 0; start < 8; ++start) {
        std::vector<WaterSide> sides;
        for (int k = 0; k < 8; ++k) {
            const std::size_t i = static_cast<std::size_t>((3 * k + start) % 8);
            sides.push_back({arc[i + 1], arc[i]});
        }
        sides.push_back({arc[4], arc[4]});
        std::vector<SurfacePoint> XYCH;
        int NSHORT = 0;
        WLCHN(sides, 1e-5, XYCH, NSHORT);
        EXPECT_EQ(NSHORT, 1);
        ASSERT_EQ(XYCH.size(), 9u);
        for (std::size_t i = 0; i < 9; ++i)
            EXPECT_LT(distance(XYCH[i], arc[8 - i]), 1e-12);
        EXPECT_NEAR(WLCENT(XYCH, 1e-5).centre.x, 0, 1e-12);
    }
}

TEST(FdfContour, ThatMakesNoRingIsTold) {
    const lines::Line ring{lines::circle(1, 12)}, other{lines::circle(1, 12, 5)}, few{lines::circle(1, 3)};
    // Its middle is not inside it.
    const lines::Line horseshoe{lines::divided(
        {{-1, -1}, {-1, 1}, {-0.8, 1}, {-0.8, -0.8}, {0.8, -0.8}, {0.8, 1}, {1, 1}, {1, -1}}, 0.2)};
    const struct {
        const char *message;
        std::vector<lines::Line> lines;
        int ISY;
    } rows[] = {
        {"More than one intersection with free surface, Unable to create FDF file", {ring, other}, 0},
        {"Too few waterline panels to create the FDF file, NWL=3", {few}, 0},
        {"Unable to open or create FDF file", {ring}, -1},
        {"Unable to open or create FDF file", {horseshoe}, 0},
    };
    for (const auto &row : rows) {
        const RunFolder folder;
        lines::Body body(row.lines);
        body.run.opt.ISY = row.ISY;
        SurfaceMesh surface;
        EXPECT_EQ(FDFSTG(body.run, surface), Status::failed);
        EXPECT_TRUE(folder.list_has(row.message)) << folder.list_text();
        EXPECT_FALSE(folder.exists(body.run.files.FILNAM(5)));
    }
}

TEST(FdfFile, FaultsAreTold) {
    const std::string head = "any title\n 6.\n 1 0\n 0 0 0 0\n", panel = "1 2 2 1\n 1 1 0 0\n";
    const struct {
        std::string text;
        const char *message; // null: it is read
        int panels;
    } rows[] = {
        {head + panel, nullptr, 1},
        {head + "1,2 2\n1,1 1 0 0 and more\n 17 18\n", nullptr, 1}, // in any lines; numbers behind it
        {"t\n1\n0 0\n0\n", nullptr, 0},
        {"", "Unable to read header of FDF", 0},
        {"t\nsix\n", "Unable to read partition radius", 0},
        {"t\n6.\n1\n", "Unable to read NPF and NTCL ", 0},
        {"t\n6.\n1 one\n", "Unable to read NPF and NTCL ", 0},
        {"t\n6.\n-1 0\n0\n", "Unable to read NPF and NTCL ", 0},
        {"t\n6.\n1 0\nx 0 0 0\n", "Error in reading the parmameter NAL,DELR,NCIRE,NGSP", 0},
        {head + "1 2 2 1\n", "Unable to read free-surface panel I=1", 0},
        {head + "1 2 2 1 x 1 0 0\n", "Unable to read free-surface panel I=1", 0},
        {head + "1 1 1 1 0 0 0 0\n", "panel area is less than 1.E-10 for panel I=1", 0},
        {head + panel + panel + "end\n", nullptr, 1}, // whole numbers again
        {head + panel + "end\n", "Extra data at the end of f-s data file", 0},
        {head + panel + "1.5 2.5\n", "Extra data at the end of f-s data file", 0},
    };
    lines::Body body({{lines::circle(1, 12), true}});
    RunState &run = body.run;
    run.opt.RULEN = 0.5f;
    for (const auto &row : rows) {
        const RunFolder folder;
        folder.write(run.files.FILNAM(5), row.text);
        SurfaceMesh surface;
        const Status status = FDFSTG(run, surface);
        EXPECT_EQ(failed(status), row.message != nullptr) << row.text << folder.list_text();
        if (row.message != nullptr) {
            EXPECT_TRUE(folder.list_has(row.message)) << row.text << folder.list_text();
            continue;
        }
        EXPECT_EQ(surface.NFSP, row.panels);
        if (row.panels == 1) {
            EXPECT_FLOAT_EQ(surface.PMOMF(1, 1), 0.25f);
            EXPECT_FLOAT_EQ(surface.XCTF(1, 1), 0.75f);
        }
    }
    const RunFolder folder;
    SurfaceMesh surface;
    EXPECT_EQ(RDFDF(run, surface), Status::failed);
    EXPECT_TRUE(folder.list_has("Unable to open FDF file"));
    run.bodies.XBODY(4, 1) = 1e-3f;
    EXPECT_EQ(FDFSTG(run, surface), Status::failed);
    EXPECT_TRUE(folder.told("XBODY must be 0.0 when IWADD=1"));
    run.bodies.XBODY(4, 1) = 0;
    run.files.FILNAM(5) = "no/such/folder.fdf";
    EXPECT_EQ(FDFSTG(run, surface), Status::failed);
    EXPECT_TRUE(folder.list_has("Unable to open or create FDF file"));
    EXPECT_TRUE(folder.list_has("no/such/folder.fdf"));
}

} // namespace
