// Strips of interior panels. Truth: structured lids, whose strips are known rows.
#include "freesurface/fsmark.hpp"
#include "freesurface/fsstrip.hpp"
#include "freesurface/waterline.hpp"
#include "hull_meshes.hpp"
#include "run_folder.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

namespace {

// Waterline lists, marks and strips of the bodies that are set in `run`.
void find_strips(RunState &run) {
    Waterline &line = run.waterline;
    const int N = run.mesh.NEQN;
    ASSERT_TRUE(line.IWLP.alloc(N) && line.IWLE.alloc(N) && run.bodies.NWLB.alloc(run.bodies.NBODY));
    line.NWL = 0;
    int first = 1;
    for (int b = 1; b <= run.bodies.NBODY; ++b) {
        const int n = run.bodies.NEQNB(b);
        const View<const f32, 3> panels(run.mesh.XVER.slice(first).data(), {Range(4), Range(3), Range(n)});
        const View<int, 1> IWLP(line.IWLP.data() + line.NWL, {Range(n)});
        const View<int, 1> IWLE(line.IWLE.data() + line.NWL, {Range(n)});
        ASSERT_EQ(WLFIND(panels, 0, IWLP, IWLE, run.bodies.NWLB(b)), Status::ok);
        for (int w = 1; run.opt.IRR == 4 && w <= run.bodies.NWLB(b); ++w)
            IWLP(w) += first - 1;
        line.NWL += run.bodies.NWLB(b);
        first += n;
    }
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    ASSERT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::ok);
    ASSERT_EQ(fill_strips(run, run.strips), Status::ok);
}

// The strip of each waterline panel; no panel stands in two.
std::vector<std::vector<int>> strips_of(const RunState &run) {
    std::vector<std::vector<int>> strips;
    std::set<int> seen;
    int at = 0;
    for (int w = 1; w <= run.waterline.NWL; ++w) {
        strips.emplace_back();
        for (int left = run.strips.IRRP(++at); left > 0; --left) {
            strips.back().push_back(run.strips.IRRP(++at));
            EXPECT_TRUE(seen.insert(strips.back().back()).second) << strips.back().back();
            EXPECT_EQ(run.mesh.IFSP(strips.back().back()), 1);
        }
    }
    return strips;
}
std::size_t total(const std::vector<std::vector<int>> &strips) {
    std::size_t n = 0;
    for (const auto &strip : strips)
        n += strip.size();
    return n;
}

// Panels of which waterline panel, each by its centroid's distances from the planes of symmetry.
using Place = std::pair<int, int>; // thousandths
std::map<Place, std::set<Place>> heads_of_panels(const RunState &run) {
    const auto place = [&](int p) {
        return Place{static_cast<int>(std::lround(1000 * std::fabs(run.mesh.XCT(1, p)))),
                     static_cast<int>(std::lround(1000 * std::fabs(run.mesh.XCT(2, p))))};
    };
    std::map<Place, std::set<Place>> heads;
    const auto strips = strips_of(run);
    for (int w = 1; w <= run.waterline.NWL; ++w)
        for (const int p : strips[static_cast<std::size_t>(w - 1)])
            heads[place(p)].insert(place(run.strips.head(w)));
    return heads;
}

// Row j from the end x = l/2 and column i from the side y = 1 grow by one panel a round and meet on the
// diagonal, where the nearer waterline panel wins, and of equals that of the end.
TEST(Fsstrp, StripsGrowInTurnOnEveryPartOfTheMesh) {
    const int n = 4;
    for (const double l : {4.0, 2.0}) {
        SCOPED_TRACE(l);
        // The panels of the lid begin with any of their vertices.
        hulls::Quads quarter = hulls::quarter_box(l, 2, -1, 0, n, true);
        for (std::size_t k = 3 * n * n; k < quarter.size(); ++k)
            std::rotate(quarter[k].begin(), quarter[k].begin() + k / 2 % 4, quarter[k].end());
        RunState part;
        part.opt.IRR = 1;
        part.opt.ISX = part.opt.ISY = 1;
        hulls::set_body(quarter, part);
        find_strips(part);
        const auto heads = heads_of_panels(part);
        ASSERT_EQ(heads.size(), static_cast<std::size_t>(n * n)) << "the strips are the whole lid";
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) { // i and j from the corner
                const bool of_side = l > 2 ? j <= i : j < i;
                const int x = static_cast<int>(1000 * l / 2 * (n - i - 0.5) / n), y = 1000 - 125 - 250 * j;
                const Place end{static_cast<int>(500 * l), y}, side{x, 1000};
                EXPECT_EQ(heads.at({x, y}), std::set<Place>{of_side ? side : end}) << i << " " << j;
            }
        }
        hulls::Quads full = hulls::mirrored(quarter);
        for (const int order : {0, 1, 2}) { // as mirrored, and out of order
            std::shuffle(full.begin(), full.end(), std::mt19937(static_cast<unsigned>(order)));
            RunState whole;
            whole.opt.IRR = 1;
            hulls::set_body(order == 0 ? hulls::mirrored(quarter) : full, whole);
            find_strips(whole);
            EXPECT_EQ(heads_of_panels(whole), heads) << order;
            EXPECT_EQ(total(strips_of(whole)), static_cast<std::size_t>(4 * n * n));
        }
    }
}

// Rings of panels on the unit disc inside a hemisphere, triangles at the centre, normals down.
hulls::Quads disc(int around, int rings) {
    hulls::Quads mesh;
    const auto at = [&](int i, int j) -> hulls::Point {
        const double r = 1 - static_cast<double>(i) / rings, a = 6.283185307179586 * j / around;
        return {r * std::cos(a), r * std::sin(a), 0};
    };
    for (int j = 0; j < around; ++j)
        for (int i = 0; i < rings; ++i)
            mesh.push_back({at(i, j), at(i, j + 1), at(i + 1, j + 1), at(i + 1, j)});
    return mesh;
}

TEST(Fsstrp, TriangleEndsItsStrip) {
    // All triangles of the disc meet in the centre: a strip that went on over its collapsed side would
    // swallow them.
    const int rings = 3, around = 8;
    hulls::Quads mesh = hulls::hemisphere(1, 2);
    const int hull = static_cast<int>(mesh.size());
    for (const auto &quad : disc(around, rings))
        mesh.push_back(quad);
    RunState run;
    run.opt.IRR = 1;
    hulls::set_body(mesh, run);
    find_strips(run);
    ASSERT_EQ(run.waterline.NWL, around);
    const auto strips = strips_of(run);
    for (int w = 0; w < around; ++w) {
        const auto &strip = strips[static_cast<std::size_t>(w)];
        ASSERT_EQ(strip.size(), static_cast<std::size_t>(rings));
        for (int k = 0; k < rings; ++k)
            EXPECT_EQ(strip[static_cast<std::size_t>(k)], hull + 1 + w * rings + k);
    }
}

TEST(Fsstrp, EmptyStrips) {
    RunState run;
    run.opt.IRR = 1;
    hulls::set_body(hulls::box(4, 2, -1, 0, 2, false), run); // no lid
    find_strips(run);
    ASSERT_EQ(run.waterline.NWL, 8);
    for (int w = 1; w <= 8; ++w)
        EXPECT_EQ(run.strips.IRRP(w), 0);
    // A waterline side without length has no strip, though panels with such a vertex are there.
    RunState lid;
    lid.opt.IRR = 1;
    hulls::set_body(hulls::quarter_box(4, 2, -1, 0, 2, true), lid);
    find_strips(lid);
    const int hull = lid.waterline.IWLP(1), side = lid.waterline.IWLE(1), next = side % 4 + 1;
    for (int c = 1; c <= 3; ++c)
        lid.mesh.XVER(side, c, hull) = lid.mesh.XVER(next, c, hull);
    ASSERT_EQ(fill_strips(lid, lid.strips), Status::ok);
    EXPECT_EQ(lid.strips.IRRP(1), 0);
}

// Two quarter boxes with lids, one after the other.
void two_boxes(RunState &run, int n) {
    const hulls::Quads box = hulls::quarter_box(4, 2, -1, 0, n, true);
    hulls::set_bodies({box, box}, run);
    run.bodies.XBODY(2, 2) = 30;
}

TEST(Fsstrp, NumbersCountOverTheMesh) {
    RunState run;
    run.opt.IRR = 1;
    two_boxes(run, 3);
    find_strips(run);
    const int one = run.bodies.NEQNB(1), lines = run.bodies.NWLB(1);
    const auto strips = strips_of(run);
    EXPECT_EQ(total(strips), 18u);
    for (int w = 1; w <= lines; ++w) {
        EXPECT_EQ(run.strips.head(w + lines), run.strips.head(w) + one);
        const auto &first = strips[static_cast<std::size_t>(w - 1)];
        const auto &second = strips[static_cast<std::size_t>(w + lines - 1)];
        ASSERT_EQ(first.size(), second.size());
        for (std::size_t k = 0; k < first.size(); ++k)
            EXPECT_EQ(second[k], first[k] + one);
    }
}

TEST(Fsnear, EachPanelGoesToTheNearestOfAllBodies) {
    RunState run;
    run.opt.IRR = 4;
    two_boxes(run, 3);
    find_strips(run);
    const auto strips = strips_of(run);
    EXPECT_EQ(total(strips), 18u);
    for (int w = 1; w <= run.waterline.NWL; ++w) {
        const int head = run.strips.head(w);
        EXPECT_EQ(head, run.waterline.IWLP(w));
        const auto &strip = strips[static_cast<std::size_t>(w - 1)];
        EXPECT_TRUE(std::is_sorted(strip.begin(), strip.end()));
        for (const int p : strip) {
            const auto distance = [&](int h) {
                return std::hypot(run.mesh.XCT(1, p) - run.mesh.XCT(1, h),
                                  run.mesh.XCT(2, p) - run.mesh.XCT(2, h));
            };
            for (int other = 1; other <= run.waterline.NWL; ++other)
                EXPECT_LE(distance(head), distance(run.strips.head(other)) + 1e-5f);
        }
    }
}

TEST(Fsnear, FirstOfEqualsWins) {
    // Interior panel in the middle between two waterline panels, listed in falling order of their numbers.
    Mesh mesh;
    mesh.NEQN = 3;
    ASSERT_TRUE(mesh.XCT.alloc(3, 3) && mesh.IFSP.alloc(3));
    mesh.XCT(1, 2) = -1;
    mesh.XCT(1, 3) = 1;
    mesh.XCT(3, 3) = -5; // height does not count
    mesh.IFSP(1) = 1;
    Array<int, 1> head, IRRP;
    ASSERT_TRUE(head.alloc(2) && IRRP.alloc(3));
    head(1) = 3;
    head(2) = 2;
    int used = 0;
    FSNEAR(mesh, head, IRRP, used);
    EXPECT_EQ(used, 3);
    EXPECT_EQ(IRRP(1), 1);
    EXPECT_EQ(IRRP(2), 1);
    EXPECT_EQ(IRRP(3), 0);
}

} // namespace
