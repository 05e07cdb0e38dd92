// Truth: coefficients of the same hulls from panels made natively, and volumes; faults planted in files.
#include "case_folder.hpp"
#include "gmsh_models.hpp"
#include "hull_files.hpp"
#include "optional.hpp"
#include "planted_faults.hpp"

#include <cstring>
#include <random>
#include <sys/resource.h>

namespace {

using Maker = std::function<void(const CaseFolder &)>;

constexpr double DRAUGHT = 0.5;
// Where two native meshes happen to agree better than that, their difference is not their error.
constexpr double NO_SIGN = 0.03;

bool in_barge(const BodyPoint &p) { // 4 x 2, with a moonpool of 1.6 x 0.8
    return std::fabs(p[0]) < 2 && std::fabs(p[1]) < 1 && !(std::fabs(p[0]) < 0.8 && std::fabs(p[1]) < 0.4);
}
// Native panels of it, n along half the moonpool's width.
Quads barge(int n) {
    const auto line = [&](double pool, double edge) {
        return steps({{-edge, 0}, {-pool, 2 * n}, {0, n}, {pool, n}, {edge, 2 * n}});
    };
    return faces_of_cells({line(0.8, 2), line(0.4, 1), steps({{-DRAUGHT, 0}, {0, 2 * n}, {DRAUGHT, 1}})},
                          in_barge);
}
// Two pontoons, four columns on them that pierce the surface, tied by nothing.
Quads semi_submersible(int n) {
    const auto full = [](const BodyPoint &p) {
        const double x = std::fabs(p[0]), y = std::fabs(p[1]);
        return y > 1 && y < 2 && (p[2] < -1 ? x < 3 : x > 1 && x < 2);
    };
    const std::vector<double> x = steps({{-3, 0}, {-2, n}, {-1, n}, {1, 2 * n}, {2, n}, {3, n}});
    const std::vector<double> y = steps({{-2, 0}, {-1, n}, {1, 1}, {2, n}});
    return faces_of_cells({x, y, steps({{-1.6, 0}, {-1, n}, {0, n}, {0.5, 1}})}, full);
}
// A Wigley hull of 4 x 1 x 0.5 with wall sides above the water and a deck, its keel in z = 0.
constexpr const char *NATIVE_SHIP = "wigley --length 4 --beam 1 --draft 0.5";
Quads ship(int n) {
    const auto side = [&](double u, double z) {
        const double x = 2 - 4 * u, below = std::min(0.0, z - DRAUGHT) / DRAUGHT;
        return BodyPoint{x, 0.5 * (1 - x * x / 4) * (1 - below * below), z};
    };
    Quads quads;
    const auto add = [&](const BodyPoint &a, const BodyPoint &b, const BodyPoint &c, const BodyPoint &d) {
        quads.push_back({a, b, c, d});
        std::array<BodyPoint, 4> image{d, c, b, a};
        for (BodyPoint &p : image)
            p[1] = -p[1];
        quads.push_back(image);
    };
    const double du = 0.25 / n;
    for (int i = 0; i < 4 * n; ++i) {
        const double u = i * du;
        for (int k = 0; k < n + 2; ++k) {
            const double low = DRAUGHT * k / n, high = DRAUGHT * (k + 1) / n;
            add(side(u, low), side(u + du, low), side(u + du, high), side(u, high));
        }
        const double top = DRAUGHT * (n + 2) / n;
        BodyPoint a = side(u, top), b = side(u + du, top), c = b, d = a;
        c[1] = d[1] = 0;
        add(a, b, c, d);
    }
    return quads;
}
// A quarter of a box of 4 x 2 with its upright edges taken off by a quarter.
std::string native_chamfered(int n) {
    const double c = 0.25;
    Quads quads;
    const auto patch = [&](int nu, int nv, const BodyPoint &p, const BodyPoint &q, const BodyPoint &r,
                           const BodyPoint &s) {
        const auto at = [&](double u, double v) {
            BodyPoint x;
            for (std::size_t k = 0; k < 3; ++k)
                x[k] = (1 - v) * ((1 - u) * p[k] + u * q[k]) + v * ((1 - u) * s[k] + u * r[k]);
            return x;
        };
        for (int i = 0; i < nu; ++i)
            for (int j = 0; j < nv; ++j)
                quads.push_back({at(double(i) / nu, double(j) / nv), at(double(i + 1) / nu, double(j) / nv),
                                 at(double(i + 1) / nu, double(j + 1) / nv),
                                 at(double(i) / nu, double(j + 1) / nv)});
    };
    const auto wall = [&](int nu, double x1, double y1, double x2, double y2) {
        patch(nu, 2 * n, {x1, y1, -DRAUGHT}, {x2, y2, -DRAUGHT}, {x2, y2, 0}, {x1, y1, 0});
    };
    wall(3 * n, 2, 0, 2, 1 - c);
    wall(n, 2, 1 - c, 2 - c, 1);
    wall(7 * n, 2 - c, 1, 0, 1);
    const double z = -DRAUGHT;
    patch(3 * n, 7 * n, {0, 0, z}, {0, 1 - c, z}, {2 - c, 1 - c, z}, {2 - c, 0, z});
    patch(n, 7 * n, {0, 1 - c, z}, {0, 1, z}, {2 - c, 1, z}, {2 - c, 1 - c, z});
    patch(3 * n, n, {2 - c, 0, z}, {2 - c, 1 - c, z}, {2, 1 - c, z}, {2, 0, z});
    quads.push_back({{{2 - c, 1 - c, z}, {2 - c, 1, z}, {2, 1 - c, z}, {2, 1 - c, z}}});
    return quarter_gdf(quads);
}

SolvedRun solve_gdf(const Maker &make) {
    const CaseFolder folder;
    Pot pot;
    pot.PER = "0.5 1.5";
    pot.NPER = 2;
    pot.BETA = "30.0";
    prepare(folder, pot);
    make(folder);
    return solved(folder);
}
// Differences of added mass, damping and exciting forces of surge to yaw, each over the largest value of its
// mode.
using Differences = std::array<double, 18>;
Differences difference(const SolvedRun &a, const SolvedRun &b) {
    Differences all{};
    for (int mode = 1; mode <= 6; ++mode) {
        double scale[3] = {}, off[3] = {};
        for (int t = 1; t <= 2; ++t) {
            const std::complex<double> va[3] = {double(a.c.A(mode, mode, t)), double(a.c.B(mode, mode, t)),
                                                std::complex<double>(a.c.X(mode, 1, t))},
                                       vb[3] = {double(b.c.A(mode, mode, t)), double(b.c.B(mode, mode, t)),
                                                std::complex<double>(b.c.X(mode, 1, t))};
            for (std::size_t k = 0; k < 3; ++k) {
                scale[k] = std::max(scale[k], std::abs(vb[k]));
                off[k] = std::max(off[k], std::abs(va[k] - vb[k]));
            }
        }
        for (std::size_t k = 0; k < 3; ++k)
            all[3 * static_cast<std::size_t>(mode - 1) + k] = off[k] / scale[k];
    }
    return all;
}
Maker of_quads(const Quads &quads) {
    return [=](const CaseFolder &folder) { folder.write("run.gdf", quarter_gdf(quads)); };
}
Maker of_text(const std::string &text) {
    return [=](const CaseFolder &folder) { folder.write("run.gdf", text); };
}

bool by_gmsh(const CaseFolder &folder, const char *file, bool chamfered) {
    GmshModels gmsh;
    if (!gmsh.there)
        return false;
    if (chamfered) { // such a file is in millimetres
        const int box = gmsh.box(-2000, -1000, 0, 4000, 2000, 2000 * DRAUGHT);
        gmsh.finish(0, false);
        gmsh.chamfer(box, {1, 3, 5, 7}, {1, 1, 2, 2}, 250);
        gmsh.finish(0, false);
    } else {
        const int hull = gmsh.box(-2, -1, -DRAUGHT, 4, 2, 2 * DRAUGHT);
        gmsh.cut(hull, gmsh.box(-0.8, -0.4, -1, 1.6, 0.8, 2));
        gmsh.finish(0.16, true);
    }
    gmsh.write((folder.path() / file).string());
    return gmsh.fault == 0;
}

struct Import {
    const char *name, *file, *arguments, *written; // the last: words of the last step
    bool (*make)(const CaseFolder &, const char *file);
    Maker fine,
        coarse; // native panels, and those of about twice the size: their difference is the error of the mesh
    double share; // of that error, allowed
};
const Import IMPORTS[] = {
    {"ship", "ship.stl", "--draught 0.5 --recombine", "ISX, ISY = 1, 1",
     [](const CaseFolder &folder, const char *file) {
         std::mt19937 random(1);
         folder.write(file, stl_text(ship(6), [&](std::size_t) { return random() % 3 == 0; }));
         return true;
     },
     [](const CaseFolder &f) { make_mesh(f, std::string(NATIVE_SHIP) + " --nu 12 --nv 6"); },
     [](const CaseFolder &f) { make_mesh(f, std::string(NATIVE_SHIP) + " --nu 6 --nv 3"); }, 1},
    {"semi-submersible", "semi.obj", "", "ISX, ISY = 1, 1",
     [](const CaseFolder &folder, const char *file) {
         Quads quads = semi_submersible(4);
         std::shuffle(quads.begin(), quads.end(), std::mt19937(5));
         for (std::size_t i = 0; i < quads.size(); i += 4)
             std::reverse(quads[i].begin(), quads[i].end());
         folder.write(file, obj_text(quads));
         return true;
     },
     of_quads(semi_submersible(4)), of_quads(semi_submersible(2)), 1e-3}, // the same panels, in another order
    {"moonpool barge", "barge.msh", "--recombine", "ISX, ISY = 1, 1",
     [](const CaseFolder &folder, const char *file) { return by_gmsh(folder, file, false); },
     of_quads(barge(4)), of_quads(barge(2)), 1},
    {"moonpool barge of VTK", "barge.vtk", "--recombine", "ISX, ISY = 1, 1",
     [](const CaseFolder &folder, const char *file) { return by_gmsh(folder, file, false); },
     of_quads(barge(4)), of_quads(barge(2)), 1},
    {"chamfered box", "box.step", "--waterline 0.5 --size 0.12", "ISX, ISY = 1, 1",
     [](const CaseFolder &folder, const char *file) { return by_gmsh(folder, file, true); },
     of_text(native_chamfered(2)), of_text(native_chamfered(1)), 1},
};

class ImportedHulls : public testing::TestWithParam<Import> {};

TEST_P(ImportedHulls, HaveTheCoefficientsOfNativePanels) {
    const std::string kind = std::filesystem::path(GetParam().file).extension();
    VORDA_NEEDS(kind == ".stl" || kind == ".obj" ? WITH_ASSIMP : WITH_GMSH);
    const Import &import = GetParam();
    const SolvedRun fine = solve_gdf(import.fine), coarse = solve_gdf(import.coarse);
    bool made = true;
    const SolvedRun run = solve_gdf([&](const CaseFolder &folder) {
        made = import.make(folder, import.file);
        if (made) {
            EXPECT_EQ(folder.shell(std::string("vorda-mesh import ") + import.file + " -o run.gdf " +
                                   import.arguments),
                      0)
                << folder.read("stderr.txt") << folder.read("stdout.txt");
            EXPECT_NE(folder.read("stdout.txt").find(import.written), std::string::npos)
                << folder.read("stdout.txt");
        } else {
            import.fine(folder);
        }
    });
    if (!made)
        GTEST_SKIP() << "libgmsh-dev is not there";
    const Differences error = difference(coarse, fine), found = difference(run, fine);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::string what = std::string(1, "ABX"[i % 3]) + " of mode " + std::to_string(i / 3 + 1);
        RecordProperty(what, std::to_string(found[i]) + " of " + std::to_string(error[i]));
        EXPECT_LE(found[i], import.share * std::max(error[i], NO_SIGN)) << what << " " << error[i];
    }
}
INSTANTIATE_TEST_SUITE_P(Files, ImportedHulls, testing::ValuesIn(IMPORTS),
                         [](const auto &row) { return "number_" + std::to_string(row.index); });

// The front takes the better of two triangles; where they are equal the last bit of the coordinates decides,
// which are of single precision in a run: other diagonals here and there. Of what a lid changes near an
// irregular frequency that is a small part.
constexpr double OTHER_DIAGONALS = 0.1;

// The lid of an import serves a run as the one that the run makes itself of the same waterline (IRR=3, by a
// front).
TEST(ImportedLids, ServeRunsWithInteriorPanels) {
    VORDA_NEEDS(WITH_ASSIMP);
    std::vector<SolvedRun> runs;
    const Quads closed = faces_of_cells(
        {steps({{-2, 0}, {2, 16}}), steps({{-1, 0}, {1, 8}}), steps({{-0.5, 0}, {0, 3}, {0.5, 1}})},
        [](const BodyPoint &) { return true; });
    struct Case {
        const char *options;
        int IRR, ISOR;
    };
    for (const auto &[options, IRR, ISOR] :
         {Case{"", 3, 0}, Case{"", 0, 0}, Case{"--lid", 1, 0}, Case{"--lid", 1, 1}, Case{"--lid", 4, 1}}) {
        const CaseFolder folder;
        Pot pot;
        pot.PER = "0.5 2.5"; // the box has an irregular frequency at 2.49
        pot.NPER = 2;
        pot.BETA = "30.0";
        pot.ILOG = 1;
        pot.IRR = IRR;
        pot.ISOR = ISOR;
        prepare(folder, pot);
        folder.write("box.stl", stl_text(closed));
        ASSERT_EQ(folder.shell(std::string("vorda-mesh import box.stl -o run.gdf ") + options), 0)
            << folder.read("stderr.txt");
        runs.push_back(solved(folder));
    }
    const auto largest = [&](const SolvedRun &run) {
        const Differences all = difference(run, runs[0]);
        return *std::max_element(all.begin(), all.end());
    };
    for (const std::size_t lid : {2u, 3u, 4u})
        EXPECT_LT(largest(runs[lid]), OTHER_DIAGONALS * largest(runs[1]));
}

// What the import says of the box with a fault of the table in it. Where the code is 0, the fault is mended,
// a hint, or in the part that symmetry leaves out.
struct PlantedWords {
    const char *name, *words;
    int code;
};
const PlantedWords PLANTED[] = {
    {"one turned", "2 panels turned against the neighbours", 0},
    {"three turned", "6 panels turned against the neighbours", 0},
    {"all turned", "1 of 1 part turned as a whole", 0},
    {"missing", "a panel is missing", 2},
    {"doubled", "2 given twice", 0},
    {"shifted by a hundredth", "do not meet", 0},
    {"T-junction", "in the middle of a neighbour's side", 0},
    {"crack along a seam", "do not meet", 2},
    {"waterline gap", "", 0},
    {"doubled with another order", "more than two panels share a side", 1}, // cut along the other diagonal
    {"just below the surface", "no waterline", 2},
};

TEST(ImportedFaults, AreTold) {
    VORDA_NEEDS(WITH_ASSIMP);
    ASSERT_EQ(std::size(PLANTED), std::size(FAULTS));
    for (std::size_t i = 0; i < std::size(FAULTS); ++i) {
        const CaseFolder folder;
        BodyMesh mesh = box();
        FAULTS[i].plant(mesh);
        Quads quads;
        for (const BodyPanel &panel : mesh.panels)
            quads.push_back(panel.at);
        folder.write("box.stl", stl_text(quads));
        ASSERT_STREQ(FAULTS[i].name, PLANTED[i].name);
        EXPECT_EQ(folder.shell("vorda-mesh import box.stl -o box.gdf"), PLANTED[i].code) << PLANTED[i].name;
        const std::string all = folder.read("stdout.txt") + folder.read("stderr.txt");
        EXPECT_NE(all.find(PLANTED[i].words), std::string::npos) << PLANTED[i].name << "\n" << all;
        EXPECT_EQ(folder.exists("box.gdf"), PLANTED[i].code != 1) << PLANTED[i].name;
    }
}

std::string binary_stl(std::uint32_t promised, int written) {
    std::string text(80, ' ');
    text.append(reinterpret_cast<const char *>(&promised), sizeof promised);
    for (int i = 0; i < written; ++i) {
        const float t[12] = {0, 0, 1, 0, 0, float(-i), 1, 0, float(-i), 0, 1, float(-i)};
        text.append(reinterpret_cast<const char *>(t), sizeof t);
        text.append(2, '\0');
    }
    return text;
}
std::string first_half(const std::string &text) {
    return text.substr(0, text.size() / 2);
}
std::string with(std::string text, const std::string &old, const std::string &now) {
    return text.replace(text.find(old), old.size(), now);
}
constexpr const char *MSH =
    "$MeshFormat\n4.1 0 8\n$EndMeshFormat\n$Entities\n0 0 1 0\n1 0 0 -1 1 1 -1 0 0\n$EndEntities\n"
    "$Nodes\n1 4 1 4\n2 1 0 4\n1\n2\n3\n4\n0 0 -1\n1 0 -1\n1 1 -1\n0 1 -1\n$EndNodes\n"
    "$Elements\n1 1 1 1\n2 1 3 1\n1 1 2 3 4\n$EndElements\n";
constexpr const char *VTK =
    "# vtk DataFile Version 3.0\nx\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS 4 double\n0 0 -1\n1 0 -1\n"
    "1 1 -1\n0 1 -1\nCELLS 1 5\n4 0 1 2 3\nCELL_TYPES 1\n9\n";
constexpr const char *PLY =
    "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\nproperty float z\n"
    "element face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 -1\n1 0 -1\n1 1 -1\n0 1 -1\n"
    "4 0 1 2 3\n";
constexpr const char *OBJ = "v 0 0 -1\nv 1 0 -1\nv 1 1 -1\nf 1 2 3\n";

struct Hostile {
    const char *file, *words;
    std::string text;
};
// clang-format off
const Hostile HOSTILE[] = {
    {"empty.stl", "empty", ""},
    {"noise.stl", "no STL file", "\1\2\3"},
    {"huge.stl", "promises 1000000000", binary_stl(1000000000, 3)},
    {"cut.stl", "promises 40", first_half(binary_stl(40, 40))},
    {"none.stl", "", binary_stl(0, 0)},
    {"text.stl", "truncated", first_half(stl_text(ship(2)))},
    {"nan.stl", "finite", with(stl_text(ship(2)), "vertex 2 ", "vertex nan ")},
    {"far.stl", "1e9", with(stl_text(ship(2)), "vertex 2 ", "vertex 2e12 ")},
    {"nothing.stl", "", "solid x\nendsolid x\n"},
    {"branch.obj", "more than two panels share a side", std::string(OBJ) + "v 0 0 -2\nv 0 0 -3\nf 1 2 4\nf 1 2 5\n"},
    {"above.obj", "nothing lies below z = 0", "v 0 0 1\nv 1 0 1\nv 1 1 1\nf 1 2 3\n"},
    {"points.obj", "", "v 0 0 -1\nv 1 0 -1\n"},
    {"beyond.obj", "", "v 0 0 -1\nv 1 0 -1\nv 1 1 -1\nf 1 2 2000000000\n"},
    {"nan.obj", "", with(OBJ, "1 1 -1", "1 nan -1")},
    {"huge.ply", "promises 4000000000", with(PLY, "vertex 4", "vertex 4000000000")},
    {"negative.ply", "promises", with(PLY, "face 1", "face -1")},
    {"cut.ply", "truncated", first_half(PLY)},
    {"short.ply", "truncated", with(PLY, "face 1", "face 2")},
    {"short.off", "truncated", "OFF\n3 2 0\n0 0 -1\n1 0 -1\n1 1 -1\n3 0 1 2\n"},
    {"cut.unv", "truncated", "    -1\n  2411\n         1         1         1        11\n"},
    {"last.ply", "", std::string(PLY, std::strlen(PLY) - 10)},
    {"huge.off", "promises 1000000000", "OFF\n3 1000000000 0\n0 0 0\n"},
    {"huge.msh", "promises 1000000000", with(MSH, "1 4 1 4", "1 1000000000 1 1000000000")},
    {"block.msh", "", with(MSH, "2 1 0 4", "2 1 0 1000000000")},
    {"elements.msh", "", with(MSH, "2 1 3 1", "2 1 3 1000000000")},
    {"cut.msh", "truncated", first_half(MSH)},
    {"nan.msh", "", with(MSH, "\n1 1 -1", "\n1 nan -1")},
    {"stranger.msh", "", with(MSH, "1 1 2 3 4", "1 1 2 3 77")},
    {"huge.vtk", "promises 1000000000", with(VTK, "POINTS 4", "POINTS 1000000000")},
    {"cut.vtk", "", first_half(VTK)},
    {"beyond.vtk", "", with(VTK, "4 0 1 2 3", "4 0 1 2 77777")},
    {"noise.unv", "", "noise\n"},
    {"noise.med", "", "noise\n"},
    {"noise.step", "truncated", "ISO-10303-21;\nHEADER;\n"},
    {"nothing.step", "", "ISO-10303-21;\nHEADER;\nENDSEC;\nDATA;\nENDSEC;\nEND-ISO-10303-21;\n"},
    {"huge.brep", "promises 1000000000", "DBRep_DrawableShape\n\nCASCADE Topology V1, (c) Matra-Datavision\nLocations 1000000000\n"},
    {"noise.iges", "", "noise\n"},
    {"hull.doc", "extension is none of", "noise\n"},
};
// clang-format on

TEST(HostileFiles, GiveAMessageAndNoGeometryFile) {
    VORDA_NEEDS(WITH_ASSIMP && WITH_GMSH);
    for (const Hostile &hostile : HOSTILE) {
        SCOPED_TRACE(hostile.file);
        const CaseFolder folder;
        folder.write(hostile.file, hostile.text);
        EXPECT_EQ(folder.shell(std::string("timeout 60 vorda-mesh import ") + hostile.file + " -o hull.gdf"),
                  1)
            << folder.read("stdout.txt");
        const std::string error = folder.read("stderr.txt");
        EXPECT_EQ(error.rfind("vorda-mesh: " + std::string(hostile.file) + ": ", 0), 0u) << error;
        EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 1) << error;
        const bool missing = error.find("install it") != std::string::npos;
        EXPECT_TRUE(missing || error.find(hostile.words) != std::string::npos) << error;
        for (const std::string &file : folder.files())
            EXPECT_EQ(file.find("hull.gdf"), std::string::npos) << file;
    }
    const CaseFolder folder;
    EXPECT_EQ(folder.shell("mkdir a.stl && vorda-mesh import a.stl -o hull.gdf"), 1);
    EXPECT_EQ(folder.shell("vorda-mesh import b.stl -o hull.gdf"), 1);
    folder.write("ship.stl", stl_text(ship(2)));
    EXPECT_EQ(folder.shell("vorda-mesh import ship.stl --draught 0.5 -o nowhere/hull.gdf"), 1);
    EXPECT_EQ(folder.read("stderr.txt").rfind("vorda-mesh: nowhere/hull.gdf cannot be written", 0), 0u);
}

// Three numbers behind a word of the report.
std::array<double, 3> reported(const std::string &report, const std::string &word) {
    std::array<double, 3> values{};
    const std::size_t at = report.find(word);
    EXPECT_NE(at, std::string::npos) << word << "\n" << report;
    if (at != std::string::npos)
        std::sscanf(report.c_str() + at + word.size(), "%lf, %lf, %lf", &values[0], &values[1], &values[2]);
    return values;
}
constexpr double PRINTED = 1e-4; // the report has five digits

// 200 000 triangles of an ellipsoid; seconds of the processor, so that neighbours on the machine do not
// count.
TEST(Imports, OfTwoHundredThousandTrianglesTakeFiveSeconds) {
    VORDA_NEEDS(WITH_ASSIMP);
#ifdef VORDA_CHECK_INDEX
    GTEST_SKIP() << "times are promised of the release build";
#endif
    const CaseFolder folder;
    const int n = 320, m = 316;
    std::string text(80, ' ');
    const auto count = static_cast<std::uint32_t>(2 * n * m);
    text.append(reinterpret_cast<const char *>(&count), sizeof count);
    const auto at = [&](int i, int j) {
        const double a = 6.283185307179586 * (i % n) / n,
                     b = 3.141592653589793 * (static_cast<double>(j) / m - 0.5);
        return BodyPoint{3 * std::cos(a) * std::cos(b), std::sin(a) * std::cos(b), 0.5 * std::sin(b) + 0.013};
    };
    const auto add = [&](const BodyPoint &p) {
        for (const double v : p) {
            const float value = static_cast<float>(v);
            text.append(reinterpret_cast<const char *>(&value), sizeof value);
        }
    };
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < m; ++j)
            for (const Corners &t : {Corners{at(i, j), at(i + 1, j), at(i + 1, j + 1)},
                                     Corners{at(i, j), at(i + 1, j + 1), at(i, j + 1)}}) {
                add({0, 0, 0});
                for (const BodyPoint &p : t)
                    add(p);
                text.append(2, '\0');
            }
    folder.write("big.stl", text);
    const auto used = [] {
        rusage usage;
        getrusage(RUSAGE_CHILDREN, &usage);
        return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    };
    const double before = used();
    ASSERT_EQ(folder.shell("vorda-mesh import big.stl -o big.gdf"), 0)
        << folder.read("stdout.txt") << folder.read("stderr.txt");
    const double seconds = used() - before;
    RecordProperty("seconds", std::to_string(seconds));
    EXPECT_NE(folder.read("stdout.txt").find("ISX, ISY = 1, 1"), std::string::npos)
        << folder.read("stdout.txt");
    EXPECT_LT(seconds, 5);
}

TEST(Exports, ComeBackAsTheSameHull) {
    VORDA_NEEDS(WITH_ASSIMP && WITH_GMSH);
    const CaseFolder folder;
    make_mesh(folder, "hemisphere --nu 6 --nv 6 --offset 0 0 0", "a.gdf");
    make_mesh(folder, "box --length 4 --beam 2 --draft 1 --nu 4 --nv 2 --nw 2", "b.gdf");
    folder.write(
        "two.gdf",
        "two\n-1 9.80665\n2\na.gdf\n5 0 0 0\n1 1\n1 1 1 1 1 1\nb.gdf\n-3 0 0 90\n1 1\n1 1 1 1 1 1\n");
    ASSERT_EQ(folder.shell("vorda-mesh check a.gdf"), 0);
    const double volume = 8 + reported(folder.read("stdout.txt"), "volume by x, y, z")[0];
    for (const std::string extension : {"stl", "obj", "msh", "vtu"}) {
        SCOPED_TRACE(extension);
        ASSERT_EQ(folder.shell("vorda-mesh export two.gdf -o all." + extension), 0)
            << folder.read("stderr.txt");
        if (extension == "vtu") {
            // 36 and 20 panels, four times.
            EXPECT_NE(folder.read("all.vtu").find("NumberOfCells=\"224\""), std::string::npos);
            continue;
        }
        ASSERT_EQ(folder.shell("vorda-mesh import all." + extension + " -o back.gdf"), 0)
            << folder.read("stderr.txt");
        const std::string report = folder.read("stdout.txt");
        if (extension == "msh" && report.find("install it") != std::string::npos)
            continue;
        EXPECT_NE(report.find("ISX, ISY = 0, 1"), std::string::npos) << report;
        EXPECT_NE(report.find("2 connected surfaces"), std::string::npos) << report;
        EXPECT_NE(report.find("extent x, y, z                    -4 to 6, -2 to 2, -1 to 0"),
                  std::string::npos)
            << report;
        EXPECT_NEAR(reported(report, "volume by x, y, z")[1], volume, PRINTED * volume);
    }
    EXPECT_EQ(folder.shell("vorda-mesh export two.gdf -o all.doc"), 1);
    EXPECT_NE(folder.read("stderr.txt").find("the extension is none of stl, obj, vtu, msh"),
              std::string::npos);
}

TEST(Transforms, MoveAndKeepTheBody) {
    struct Case {
        const char *arguments, *words[2];
        double volume;
    };
    const Case CASES[] = {
        {"--scale 2", {"-4 to 4, -2 to 2, -2 to 0", "ISX, ISY = 1, 1"}, 64},
        {"--shift 0 3 0", {"-2 to 2, 2 to 4, -1 to 0", "ISX, ISY = 1, 0"}, 8},
        {"--turn 90", {"-1 to 1, -2 to 2, -1 to 0", "ISX, ISY = 0, 0"}, 8},
        {"--turn 90 --shift 5 0 0 --mirror x", {"-6 to -4, -2 to 2, -1 to 0", "ISX, ISY = 0, 0"}, 8},
        {"--divide", {"-2 to 2, -1 to 1, -1 to 0", "panels 80, ISX, ISY = 1, 1"}, 8},
        {"--full", {"-2 to 2, -1 to 1, -1 to 0", "panels 80, ISX, ISY = 0, 0"}, 8},
        {"--shift 0 3 0 --join c.gdf", {"-2 to 2, 2 to 9, -1 to 0", "ISX, ISY = 1, 0"}, 16},
    };
    for (const Case &c : CASES) {
        SCOPED_TRACE(c.arguments);
        const CaseFolder folder;
        make_mesh(folder, "box --length 4 --beam 2 --draft 1 --nu 4 --nv 2 --nw 2", "b.gdf");
        make_mesh(folder,
                  "box --length 4 --beam 2 --draft 1 --nu 4 --nv 2 --nw 2 --part half-x --offset 0 5 0",
                  "c.gdf");
        ASSERT_EQ(folder.shell(std::string("vorda-mesh transform b.gdf -o d.gdf ") + c.arguments +
                               " && vorda-mesh check d.gdf"),
                  0)
            << folder.read("stderr.txt") << folder.read("stdout.txt");
        const std::string report = folder.read("stdout.txt");
        for (const char *words : c.words)
            EXPECT_NE(report.find(words), std::string::npos) << words << "\n" << report;
        for (const double v : reported(report, "volume by x, y, z"))
            EXPECT_NEAR(v, c.volume, PRINTED * c.volume);
        if (std::string(c.arguments).find("--join") == std::string::npos)
            continue;
        ASSERT_EQ(folder.shell("vorda-mesh transform d.gdf -o e.gdf --split && vorda-mesh check e_2.gdf"), 0);
        EXPECT_NE(folder.read("stdout.txt").find("-2 to 2, 7 to 9, -1 to 0"), std::string::npos)
            << folder.read("stdout.txt");
        EXPECT_FALSE(folder.exists("e_3.gdf"));
    }
}

// The triangles at the bottom of a hemisphere become triangles: the body stays as it is, and sound.
TEST(Transforms, DivideTrianglesInFour) {
    const CaseFolder folder;
    make_mesh(folder, "hemisphere --nu 4 --nv 3", "d.gdf");
    ASSERT_EQ(folder.shell("vorda-mesh check d.gdf"), 0);
    const auto before = reported(folder.read("stdout.txt"), "volume by x, y, z");
    ASSERT_EQ(folder.shell("vorda-mesh transform d.gdf -o e.gdf --divide && vorda-mesh check e.gdf"), 0)
        << folder.read("stdout.txt");
    EXPECT_NE(folder.read("stdout.txt").find("panels 48, ISX"), std::string::npos)
        << folder.read("stdout.txt");
    const auto after = reported(folder.read("stdout.txt"), "volume by x, y, z");
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(after[k], before[k], PRINTED * before[k]);
}

// The head of the panels of plates keeps their records.
TEST(Transforms, KeepDipoleRecords) {
    const CaseFolder folder;
    make_mesh(folder, "disc --radius 1 --depth 1 --nu 4 --nw 2 --dpora 0.25 --dporb 0.5", "d.gdf");
    ASSERT_EQ(folder.shell("vorda-mesh transform d.gdf -o e.gdf --full --scale 3"), 0)
        << folder.read("stderr.txt");
    const std::string text = folder.read("e.gdf");
    std::size_t records = 0;
    for (std::size_t at = 0; (at = text.find(" 1 0.25 0.5 0\n", at)) != std::string::npos; ++at)
        ++records;
    EXPECT_EQ(records, 32u) << text.substr(0, 200);
}

} // namespace
