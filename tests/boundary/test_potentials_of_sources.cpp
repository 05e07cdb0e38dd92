// Truth: the potential of the sources is the potential that they were made from, phi = sum of S(i,j)
// sigma(j), plus the incident wave. S comes from the right-hand sides of a radiation problem with the sources
// for normal velocities.
#include "assembly/wavegr.hpp"
#include "boundary/incident_wave.hpp"
#include "boundary/source_rhs.hpp"
#include "freesurface/fsmark.hpp"
#include "freesurface/fsstrip.hpp"
#include "freesurface/waterline.hpp"
#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "run/memory_plan.hpp"
#include "run/symmetry.hpp"
#include "solve/solve.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Quarter of a cylinder of radius 1 and draft 0.5, 2 n around; the free surface inside with its normal down
// on request.
hulls::Quads cylinder(int n, bool lid) {
    hulls::Quads mesh;
    const auto add = [&](double r0, double z0, double r1, double z1, bool down) {
        const auto at = [&](int i, int j) -> hulls::Point {
            const double angle = std::acos(0.0) * i / (2 * n), part = static_cast<double>(j) / n;
            const double r = r0 + (r1 - r0) * part;
            return {r * std::cos(angle), r * std::sin(angle), z0 + (z1 - z0) * part};
        };
        for (int i = 0; i < 2 * n; ++i) {
            for (int j = 0; j < n; ++j) {
                hulls::Quad q{at(i, j + 1), at(i + 1, j + 1), at(i + 1, j), at(i, j)};
                if (down)
                    std::reverse(q.begin(), q.end());
                mesh.push_back(q);
            }
        }
    };
    add(1, 0, 1, -0.5, false);
    add(1, -0.5, 0, -0.5, false);
    if (lid)
        add(1, 0, 0, 0, true);
    return mesh;
}

struct System {
    RunState run;
    ThreadState thread;
    PeriodWave wave;
};

void prepare(System &c, int n, bool lid, f32 K) {
    RunState &run = c.run;
    run.opt.IRAD = run.opt.IDIFF = run.opt.ISOR = run.opt.ILOG = run.opt.ISOLVE = 1;
    run.opt.IRR = lid ? 1 : 0;
    run.opt.HBOT = -1;
    run.opt.ISX = run.opt.ISY = 1;
    run.memory.INCORE = true;
    hulls::set_body(cylinder(n, lid), run);
    run.periods.NPER = run.periods.NBETA = run.periods.NBETAM = 1;
    ASSERT_TRUE(run.periods.SINBET.alloc(1) && run.periods.COSBET.alloc(1));
    run.periods.SINBET(1) = 0.6f;
    run.periods.COSBET(1) = 0.8f;
    ASSERT_TRUE(run.bodies.NWLB.alloc(1) && run.waterline.IWLP.alloc(run.mesh.NEQN) &&
                run.waterline.IWLE.alloc(run.mesh.NEQN));
    ASSERT_FALSE(failed(WLFIND(run.mesh.XVER, 0, run.waterline.IWLP, run.waterline.IWLE, run.waterline.NWL)));
    run.bodies.NWLB(1) = run.waterline.NWL;
    ASSERT_FALSE(failed(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh)));
    ASSERT_FALSE(failed(FSMARK(run.opt, run.bodies, run.mesh)));
    if (lid) {
        ASSERT_FALSE(failed(fill_strips(run, run.strips)));
    }
    ASSERT_FALSE(failed(SYMSET(6, 1, 1, run.bodies.MODE, 1, run.sym)));
    ASSERT_FALSE(failed(allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store)));
    ASSERT_FALSE(failed(allocate_solution(run, c.thread)));
    ASSERT_FALSE(failed(ALLOCATE_WA(run, c.thread)));
    c.wave = frequency_variables(K, -1, 1);
}

// Right-hand sides, thread.PHIR, of the normal velocities VEL as they stand.
void assemble(System &c) {
    ASSERT_FALSE(failed(RANKIN(c.run.opt, c.run.bodies, c.run.mesh, c.run.dipoles, c.run.sym, c.run.store)));
    ASSERT_FALSE(failed(WAVEGR(c.run, c.wave, c.thread)));
}

// Error of the potentials on the hull, root of the sum of squares over all radiation columns and the classes
// of the diffracted wave, relative to the potentials.
double potential_error(int n, bool lid, f32 K) {
    System c;
    prepare(c, n, lid, K);
    c.run.opt.IRR = 1; // keeps the incident wave in PHI0
    INCWAV(c.run, K, c.thread);
    c.run.opt.IRR = lid ? 1 : 0;
    assemble(c);
    int ITER[2];
    const Symmetry &sym = c.run.sym;
    const int N = c.run.mesh.NEQN;
    EXPECT_FALSE(failed(SOLVE(c.run, {1, 1}, c.thread.PHIR, c.thread.PHID, c.thread, ITER)));
    if (lid)
        ZEROFS(c.run, c.thread);
    std::copy_n(c.thread.PHIR.data(), c.thread.PHIR.size(), c.thread.SRCR.data());
    SRCRHS(c.run, K, 1, c.thread.SRCR, c.thread);
    EXPECT_FALSE(failed(SOLVE(c.run, {1, 1, 1, 0, 1}, c.thread.SRCR, c.thread.SRCD, c.thread, ITER)));
    Array<c32, 2> direct, rebuilt[2];
    EXPECT_TRUE(direct.alloc(N, sym.NSYMD) && rebuilt[0].alloc(N, sym.NSYMD) &&
                rebuilt[1].alloc(N, sym.NSYMD));
    double errors = 0, sizes = 0;
    for (const bool radiation : {true, false}) {
        // The first mode of a class carries its diffraction sources.
        for (int s = 1; s <= sym.NSYMR; ++s) {
            for (int k = 1; k <= sym.NMCLS[s]; ++k) {
                const int column = sym.MODPOS(sym.MODCLS(k, s));
                for (int ip = 1; ip <= N; ++ip) {
                    direct(ip, column) = radiation ? c.thread.PHIR(ip, column)
                                         : k == 1  ? c.thread.PHID(ip, 1, s) - c.thread.PHI0(ip, 1, s)
                                                   : c32(0);
                }
            }
        }
        std::vector<c32> sources(static_cast<std::size_t>(N * sym.NSYMD));
        for (int s = 1; s <= sym.NSYMR; ++s) {
            for (int k = 1; k <= sym.NMCLS[s]; ++k) {
                const int column = sym.MODPOS(sym.MODCLS(k, s));
                for (int ip = 1; ip <= N; ++ip) {
                    sources[static_cast<std::size_t>((column - 1) * N + ip - 1)] =
                        radiation ? c.thread.SRCR(ip, column)
                        : k == 1  ? c.thread.SRCD(ip, 1, s)
                                  : c32(0);
                }
            }
        }
        System of_sources;
        prepare(of_sources, n, lid, K);
        for (const int part : {0, 1}) {
            for (int m = 1; m <= 6; ++m) {
                for (int ip = 1; ip <= N; ++ip) {
                    const c32 value = sources[static_cast<std::size_t>((sym.MODPOS(m) - 1) * N + ip - 1)];
                    of_sources.run.mesh.VEL(m, ip) = part == 0 ? value.real() : value.imag();
                }
            }
            assemble(of_sources);
            std::copy_n(of_sources.thread.PHIR.data(), rebuilt[part].size(), rebuilt[part].data());
        }
        for (int column = 1; column <= sym.NSYMD; ++column) {
            for (int ip = 1; ip <= N; ++ip) {
                if (c.run.mesh.IFSP(ip) == 1)
                    continue;
                const c32 phi = rebuilt[0](ip, column) + c32(0, 1) * rebuilt[1](ip, column);
                const double area = static_cast<double>(c.run.mesh.PMOM(1, ip));
                errors += area * static_cast<double>(std::norm(phi - direct(ip, column)));
                sizes += area * static_cast<double>(std::norm(direct(ip, column)));
            }
        }
    }
    return std::sqrt(errors / sizes);
}

TEST(PotentialsOfSources, AreThePotentials) {
    for (const bool lid : {false, true}) {
        // Without a lid both equations fail at the eigenvalue of the water inside, 2.884.
        for (const f32 K : {lid ? 2.884f : 1.8f, 2.6f, 3.3f}) {
            SCOPED_TRACE(K);
            const double error = potential_error(5, lid, K), finer = potential_error(10, lid, K);
            EXPECT_LT(error, 0.1);
            EXPECT_GT(error / finer, 1.6);
            EXPECT_LT(error / finer, 3);
        }
    }
}

} // namespace
