// Truth: coefficients of the same hulls from panels made natively, and volumes; faults planted in files.
#include "case_folder.hpp"
#include "gmsh_models.hpp"
#include "hull_files.hpp"
#include "planted_faults.hpp"

#include <random>

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
    return faces_of_cells({line(0.8, 2), line(0.4, 1), steps({{-DRAUGHT, 0}, {0, 2 * n}, {DRAUGHT, 1}})}, in_barge);
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
constexpr const char *NATIVE_SHIP = "wigley --length 4 --beam 1 --draft 0.5 --part half-y";
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
    const auto patch = [&](int nu, int nv, const BodyPoint &p, const BodyPoint &q, const BodyPoint &r, const BodyPoint &s) {
        const auto at = [&](double u, double v) {
            BodyPoint x;
            for (std::size_t k = 0; k < 3; ++k)
                x[k] = (1 - v) * ((1 - u) * p[k] + u * q[k]) + v * ((1 - u) * s[k] + u * r[k]);
            return x;
        };
        for (int i = 0; i < nu; ++i)
            for (int j = 0; j < nv; ++j)
                quads.push_back({at(double(i) / nu, double(j) / nv), at(double(i + 1) / nu, double(j) / nv),
                                 at(double(i + 1) / nu, double(j + 1) / nv), at(double(i) / nu, double(j + 1) / nv)});
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
// Differences of added mass, damping and exciting forces of surge to yaw, each over the largest value of its mode.
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
    Maker fine, coarse; // native panels, and those of about twice the size: their difference is the error of the mesh
    double share;       // of that error, allowed
};
const Import IMPORTS[] = {
    {"ship", "ship.stl", "--draught 0.5 --recombine", "ISX, ISY = 0, 1",
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
    const Import &import = GetParam();
    const SolvedRun fine = solve_gdf(import.fine), coarse = solve_gdf(import.coarse);
    bool made = true;
    const SolvedRun run = solve_gdf([&](const CaseFolder &folder) {
        made = import.make(folder, import.file);
        if (made) {
            EXPECT_EQ(folder.shell(std::string("vorda-mesh import ") + import.file + " -o run.gdf " + import.arguments), 0)
                << folder.read("stderr.txt") << folder.read("stdout.txt");
            EXPECT_NE(folder.read("stdout.txt").find(import.written), std::string::npos) << folder.read("stdout.txt");
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

} // namespace
