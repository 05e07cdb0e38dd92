// Geometry files of one and several bodies. Truth: panel counts and positions of simple shapes, and the
// direction of a panel's normal from the cross product of its diagonals in double precision.
#include "input_files.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Vector = std::array<double, 3>;

// Centre of panel p and its normal: the vertices 1, 2, 3, 4 run clockwise seen from the side that
// it points to.
Vector centre(const Mesh &mesh, int p) {
    Vector c{};
    for (int d = 1; d <= 3; ++d)
        for (int v = 1; v <= 4; ++v)
            c[static_cast<std::size_t>(d - 1)] += 0.25 * mesh.XVER(v, d, p);
    return c;
}
Vector normal(const Mesh &mesh, int p) {
    const auto along = [&](int v, int w) {
        return Vector{mesh.XVER(v, 1, p) - mesh.XVER(w, 1, p), mesh.XVER(v, 2, p) - mesh.XVER(w, 2, p),
                      mesh.XVER(v, 3, p) - mesh.XVER(w, 3, p)};
    };
    const Vector a = along(4, 2), b = along(3, 1);
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Of the files in the working directory, without the cross-checks.
Status read_geometry(const InputFiles &files, RunState &run) {
    for (const auto &[name, text] : files)
        std::ofstream(name) << text;
    return GETIP1(run);
}

TEST(SingleBody, is_mirrored_where_it_must_be) {
    // clang-format off
    const struct {
        const char *label;
        const char *symmetry; // ISX, ISY in the file
        const char *place;    // XBODY
        int panels;
        int ISX, ISY; // after reading
    } cases[] = {
        {"none", " 0 0", "3 4 0 30", 2, 0, 0},
        {"walls", " -1 -1", "3 4 0 0", 2, -1, -1},
        {"x_in_place", " 1 0", "0 4 0 0", 2, 1, 0},
        {"x_off", " 1 0", "3 0 0 0", 4, 0, 0},
        {"y_in_place", " 0 1", "3 0 0 0", 2, 0, 1},
        {"y_off", " 0 1", "0 4 0 0", 4, 0, 0},
        {"xy_in_place", " 1 1", "0 0 0 0", 2, 1, 1},
        {"xy_off", " 1 1", "3 4 0 0", 8, 0, 0},
        {"xy_off_y", " 1 1", "0 4 0 0", 4, 1, 0},
        {"xy_off_x", " 1 1", "3 0 0 0", 4, 0, 1},
        {"turned", " 1 1", "0 0 0 10", 8, 0, 0},
        {"turned_y", " 0 1", "0 0 0 10", 4, 0, 0},
        {"wall_off", " -2 0", "3 0 0 0", 4, -1, 0},
        {"wall_in_place", " -2 0", "0 0 0 0", 2, -2, 0},
        {"wall_off_y", " -2 1", "0 4 0 0", 4, -2, 0},
        {"wall_and_plane", " -2 1", "3 0 0 0", 4, -1, 1},
        {"wall_kept", " -1 1", "3 4 0 0", 4, -1, 0},
        {"illegal", " 3 0", "1 1 0 0", 2, 3, 0},
    };
    // clang-format on
    for (const auto &row : cases) {
        SCOPED_TRACE(row.label);
        const RunFolder folder;
        RunState run;
        ASSERT_EQ(
            read_geometry(good_files({{"box.gdf", with_line(GOOD_GDF, 3, row.symmetry)},
                                      {"box.pot", with_line(GOOD_POT, 5, std::string(" 50. ") + row.place)}}),
                          run),
            Status::ok)
            << folder.list_text();
        EXPECT_EQ(run.mesh.NEQN, row.panels);
        EXPECT_EQ(run.bodies.NEQNB(1), row.panels);
        EXPECT_EQ(run.opt.ISX, row.ISX);
        EXPECT_EQ(run.opt.ISY, row.ISY);
        EXPECT_EQ(run.waterline.NWL, row.panels / 2);
        // The hull lies around the axis x = y = 0: into it is towards the axis, and upwards at the bottom.
        for (int p = 1; p <= row.panels; ++p) {
            const Vector n = normal(run.mesh, p), c = centre(run.mesh, p);
            EXPECT_GT(p % 2 == 1 ? -(n[0] * c[0] + n[1] * c[1]) : n[2], 0) << "panel " << p;
        }
    }
}

TEST(SingleBodyFile, lengths_are_divided_by_ulen) {
    const SoundRun in(
        good_files({{"box.pot", with_line(GOOD_POT, 5, " 50. 3 4 -1 45")},
                    {"box.gdf", GOOD_GDF + "0\n \n"}})); // a zero and blank lines at the end are no data
    EXPECT_EQ(in.run.mesh.XVER(1, 1, 1), 2.0f);
    EXPECT_EQ(in.run.mesh.XVER(3, 3, 2), -1.0f);
    const f32 wanted[4] = {1.5f, 2.0f, -0.5f, 45.0f};
    for (int c = 1; c <= 4; ++c)
        EXPECT_EQ(in.run.bodies.XBODY(c, 1), wanted[c - 1]);
    EXPECT_EQ(in.run.opt.RULEN, 0.5f);
    EXPECT_EQ(in.run.opt.GRAV, 9.80665f);
    EXPECT_EQ(in.run.waterline.NWL, 0); // the body lies 1 below the surface
}

// A vertex may lie 1e-6 above the free surface; the body's own height counts.
TEST(SingleBodyFile, height_of_the_free_surface) {
    for (const auto &[z, good] : {std::pair{"9e-7", true}, {"2e-6", false}, {"-0.5", true}}) {
        InputFiles files = good_files();
        files["box.gdf"] = with_line(GOOD_GDF, 5, std::string(" 4 2 ") + z + "  4 0 0");
        EXPECT_EQ(InputRun(files).status, good ? Status::ok : Status::failed) << z;
        files["box.pot"] = with_line(GOOD_POT, 5, " 50. 0 0 1 0");
        EXPECT_EQ(InputRun(files).status, Status::failed) << z;
    }
    const SoundRun second(good_bodies({{"b.gdf", with_line(GOOD_GDF, 5, " 4 2 0.5  4 0 0.5")},
                                       {"box.gdf", with_line(GOOD_GLOBAL, 9, " 0 -10 -1 0")}}));
}

const char *const DIPOLES = " 0 0 0 0\n 3 0.5 0.25 0.1\n";

TEST(Dipoles, need_a_second_count) {
    struct Row {
        const char *count;
        const char *records;
        bool idipol;
        bool warned;
    };
    const Row rows[] = {{" 2 1", DIPOLES, true, false},
                        {"2 1", "", false, false}, // an item in column 1 does not count
                        {" 2 0", "", false, false},
                        {" 2 1 0", "", false, false},
                        {" 2 5", DIPOLES, false, true}};
    for (const Row &row : rows) {
        const SoundRun in(good_files({{"box.gdf", with_line(GOOD_GDF, 4, row.count) + row.records}}));
        EXPECT_EQ(in.run.dipoles.IDIPOL, row.idipol) << row.count;
        EXPECT_EQ(in.run.dipoles.IDIP.empty(), !row.idipol) << row.count;
        EXPECT_EQ(in.folder.list_has("NDIPB=5"), row.warned);
    }
}

TEST(Dipoles, images_of_dipole_panels_are_dipole_panels) {
    const SoundRun in(good_files({{"box.gdf", with_line(with_line(GOOD_GDF, 4, " 2 1"), 3, " 1 1") + DIPOLES},
                                  {"box.pot", with_line(GOOD_POT, 5, " 50. 3 4 0 0")}}));
    ASSERT_EQ(in.run.dipoles.IDIP.dim(1), 8);
    for (int p = 1; p <= 8; ++p) {
        const bool dipole = p % 2 == 0;
        EXPECT_EQ(in.run.dipoles.IDIP(p), dipole ? 3 : 0);
        EXPECT_EQ(in.run.dipoles.DPORA(p), dipole ? 0.5f : 0.0f);
        EXPECT_EQ(in.run.dipoles.DPORB(p), dipole ? 0.25f : 0.0f);
        EXPECT_EQ(in.run.dipoles.DTHK(p), dipole ? 0.1f : 0.0f);
    }
}

TEST(Dipoles, of_the_second_body_stand_at_its_panels) {
    const SoundRun in(good_bodies(
        {{"b.gdf", with_line(GOOD_GDF, 4, " 2 1") + DIPOLES}, {"a.gdf", with_line(GOOD_GDF, 3, " 1 0")}}));
    ASSERT_EQ(in.run.mesh.NEQN, 6); // body 1 is mirrored
    const int wanted[6] = {0, 0, 0, 0, 0, 3};
    for (int p = 1; p <= 6; ++p)
        EXPECT_EQ(in.run.dipoles.IDIP(p), wanted[p - 1]);
    EXPECT_TRUE(in.run.dipoles.IDIPOL);
    EXPECT_EQ(in.run.bodies.NDIPB(1), 0);
    EXPECT_EQ(in.run.bodies.NDIPB(2), 1);
}

TEST(SeveralBodies, are_read_one_behind_the_other) {
    const SoundRun in(
        good_bodies({{"b.gdf", with_line(GOOD_GDF, 2, " 4. 9.85")}, {"config.vrd", "NEWMDS(2) = 1\n"}}));
    const Bodies &b = in.run.bodies;
    EXPECT_EQ(b.NBODY, 2);
    EXPECT_EQ(in.run.mesh.NEQN, 4);
    EXPECT_EQ(b.NMODES, 13);
    const int MODE[13] = {1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_TRUE(std::equal(MODE, MODE + 13, b.MODE.data()));
    EXPECT_EQ(b.XBODY(2, 1), 5.0f);
    EXPECT_EQ(b.XBODY(2, 2), -5.0f);
    EXPECT_EQ(b.ULEN(2), 4.0f);
    EXPECT_EQ(in.run.opt.GRAV, 9.8f);
    // The second body is scaled with the length of the first.
    for (int v = 1; v <= 4; ++v)
        for (int c = 1; c <= 3; ++c)
            for (int p = 1; p <= 2; ++p)
                EXPECT_EQ(in.run.mesh.XVER(v, c, p), in.run.mesh.XVER(v, c, p + 2));
    EXPECT_EQ(in.run.waterline.NWL, 2);
    EXPECT_EQ(in.run.waterline.IWLP(2), 1); // counted within the body
    EXPECT_EQ(in.run.files.FILNAM(5), "a.gdf");
    EXPECT_EQ(in.run.files.HEADER(4), "Side and bottom");
}

TEST(SeveralBodies, waterline_counts_over_the_mesh_for_a_given_lid) {
    const SoundRun in(good_bodies({{"config.vrd", "IRR=4\n"}, {"box.pot", with_line(GOOD_POT, 4, "")}}));
    EXPECT_EQ(in.run.waterline.IWLP(1), 1);
    EXPECT_EQ(in.run.waterline.IWLP(2), 3);
}

TEST(CommonSymmetry, is_kept_where_all_bodies_have_it) {
    // clang-format off
    const struct {
        const char *label, *symmetry1, *symmetry2, *place1, *place2;
        int panels, ISX, ISY;
    } rows[] = {
        {"x_kept", " 1 0", " 1 0", " 0 9 0 0", " 0 -9 0 0", 4, 1, 0},
        {"x_off", " 1 0", " 1 0", " 0 9 0 0", " 1 -9 0 0", 8, 0, 0},
        {"y_kept", " 0 1", " 0 1", " 9 0 0 0", " -9 0 0 0", 4, 0, 1},
        {"y_off", " 0 1", " 0 1", " 9 0 0 0", " -9 1 0 0", 8, 0, 0},
        {"xy_kept", " 1 1", " 1 1", " 0 0 0 0", " 0 0 0 0", 4, 1, 1},
        {"xy_off", " 1 1", " 1 1", " 0 9 0 0", " 0 -9 0 0", 16, 0, 0},
        {"turned", " 1 0", " 1 0", " 0 9 0 0", " 0 -9 0 5", 8, 0, 0},
        {"different", " 1 0", " 0 1", " 0 0 0 0", " 0 0 0 0", 8, 0, 0},
        {"one_without", " 1 1", " 0 0", " 0 0 0 0", " 0 0 0 0", 10, 0, 0},
        {"none", " 0 0", " 0 0", " 0 9 0 0", " 0 -9 0 0", 4, 0, 0},
    };
    // clang-format on
    for (const auto &row : rows) {
        SCOPED_TRACE(row.label);
        std::string global = with_line(with_line(GOOD_GLOBAL, 5, row.place1), 9, row.place2);
        global = with_line(with_line(global, 11, " 0 1 0 0 0 0\n 3 0.2"), 7, " 1 0 0 0 0 0\n 0 0.1");
        const SoundRun in(good_bodies({{"a.gdf", with_line(GOOD_GDF, 3, row.symmetry1)},
                                       {"b.gdf", with_line(GOOD_GDF, 3, row.symmetry2)},
                                       {"box.gdf", global},
                                       {"config.vrd", "IFSLID=1\n"}}));
        EXPECT_EQ(in.run.mesh.NEQN, row.panels);
        EXPECT_EQ(in.run.opt.ISX, row.ISX);
        EXPECT_EQ(in.run.opt.ISY, row.ISY);
        const Bodies &b = in.run.bodies;
        EXPECT_EQ(b.IPANB0(1), 1);
        EXPECT_EQ(b.IPANB1(1), b.NEQNB(1));
        EXPECT_EQ(b.IPANB0(2), b.NEQNB(1) + 1);
        EXPECT_EQ(b.IPANB1(2), row.panels);
        EXPECT_EQ(in.run.opt.IBDT3, 1);
        EXPECT_EQ(b.FSDMP(2), 0.2f);
        EXPECT_EQ(in.run.waterline.NWL, row.panels / 2);
    }
}

// Body 1 has an extra mode, the seventh.
TEST(MergedProblems, follow_the_bodies) {
    // clang-format off
    const struct {
        const char *problem1, *problem2;
        int IRAD, IDIFF, MODE[13];
    } rows[] = {
        {" 0 0", " 0 0", 0, 0, {1, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0}},
        {" 1 1", " 1 1", 1, 1, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
        {" 1 0", " 1 -1", 1, 1, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
        {" 1 1", " 0 1", 0, 1, {1, 1, 1, 1, 1, 1, 1, 0, 1, 0, 0, 0, 0}},
        {" 1 -1", " -1 -1", 0, -1, {1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0}},
        {" -1 1", " -1 1", -1, 1, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
        {" -1 0", " -1 1", -1, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {" -1 1", " 0 -1", 0, 0, {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0}},
    };
    // clang-format on
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.problem1) + row.problem2);
        const RunFolder folder;
        RunState run;
        const std::string global = with_line(with_line(GOOD_GLOBAL, 6, row.problem1), 10, row.problem2);
        ASSERT_EQ(read_geometry(good_bodies({{"box.gdf", global}, {"config.vrd", "NEWMDS(1) = 1\n"}}), run),
                  Status::ok)
            << folder.list_text();
        EXPECT_EQ(run.opt.IRAD, row.IRAD);
        EXPECT_EQ(run.opt.IDIFF, row.IDIFF);
        EXPECT_TRUE(std::equal(row.MODE, row.MODE + 13, run.bodies.MODE.data()));
    }
}

// With IRR=2 the bottom panel of a body gets its projection before the body is mirrored; the side is a thin
// plate here.
TEST(ProjectedPanels, are_made_before_the_images) {
    struct Row {
        const char *symmetry, *place;
        int panels;
        std::vector<int> projected;
    };
    const Row rows[] = {{" 0 0", " 0 0 -1 0", 3, {3}},
                        {" 1 1", " 0 0 0 0", 3, {3}},
                        {" 1 0", " 3 0 0 0", 6, {3, 6}},
                        {" 1 1", " 3 4 0 20", 12, {3, 6, 9, 12}}};
    for (const Row &row : rows) {
        InputFiles files = good_files();
        files["box.gdf"] =
            with_line(with_line(GOOD_GDF, 3, row.symmetry), 4, " 2 1") + " 1 0 0 0\n 0 0 0 0\n";
        files["box.pot"] = with_line(with_line(GOOD_POT, 4, " 2"), 5, std::string(" 50. ") + row.place);
        const SoundRun in(files);
        ASSERT_EQ(in.run.mesh.NEQN, row.panels) << row.place;
        ASSERT_EQ(in.run.mesh.projected.dim(1), row.panels);
        for (int p = 1; p <= row.panels; ++p) {
            const bool is = std::find(row.projected.begin(), row.projected.end(), p) != row.projected.end();
            EXPECT_EQ(in.run.mesh.projected(p), is ? 1 : 0) << p;
            EXPECT_EQ(in.run.dipoles.IDIP(p), p % 3 == 1 ? 1 : 0) << p;
            if (is) {
                EXPECT_LT(normal(in.run.mesh, p)[2], 0);
                EXPECT_NEAR(centre(in.run.mesh, p)[2] + in.run.bodies.XBODY(3, 1), 0, 1e-7);
            }
        }
    }
}

TEST(ProjectedPanels, of_several_bodies_follow_each_other) {
    InputFiles files = good_bodies();
    files["box.pot"] = with_line(GOOD_POT, 4, " 2");
    for (const char *symmetry : {" 0 0", " 1 0"}) {
        files["a.gdf"] = files["b.gdf"] = with_line(GOOD_GDF, 3, symmetry);
        files["box.gdf"] = with_line(GOOD_GLOBAL, 9, " 9 -10 -1 0");
        const SoundRun in(files);
        const int each = std::string(symmetry) == " 1 0" ? 6 : 3;
        ASSERT_EQ(in.run.mesh.NEQN, 2 * each);
        for (int p = 1; p <= 2 * each; ++p) {
            EXPECT_EQ(in.run.mesh.projected(p), p % 3 == 0 ? 1 : 0) << p;
            if (p % 3 == 0) {
                EXPECT_EQ(in.run.mesh.XVER(1, 3, p), p > each ? 0.5f : 0.0f) << p;
            }
        }
        EXPECT_EQ(in.run.waterline.NWL, each / 3) << "body 2 lies below the surface";
    }
}

} // namespace
