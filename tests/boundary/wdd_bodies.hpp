// Runs of one body described by all its panels, a half or a quarter of them, with free-surface panels, for
// the sums of second-order runs. The panels of the quarter come first in all descriptions.
#pragma once

#include "assembly/thread_state.hpp"
#include "hull_meshes.hpp"
#include "run/symmetry.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace wdd {

// The images 1..4 of the quarter that a mesh with these symmetries holds.
inline std::vector<int> images_in_mesh(int ISX, int ISY) {
    std::vector<int> images;
    for (int g = 1; g <= 4; ++g)
        if ((ISX == 0 || SGX[g] > 0) && (ISY == 0 || SGY[g] > 0))
            images.push_back(g);
    return images;
}

inline hulls::Quads part_of(const hulls::Quads &quarter, int ISX, int ISY) {
    const hulls::Quads all = hulls::mirrored(quarter);
    hulls::Quads part;
    for (const int g : images_in_mesh(ISX, ISY)) {
        const auto first = all.begin() + (g - 1) * static_cast<std::ptrdiff_t>(quarter.size());
        part.insert(part.end(), first, first + static_cast<std::ptrdiff_t>(quarter.size()));
    }
    return part;
}

// Classes to which the slow motions move a function, modes of the steady flows by class.
inline void set_maps(Symmetry &sym, int v) {
    constexpr int MAPS[4][3][4] = {{{1}, {1}, {1}},
                                   {{1, 2}, {2, 1}, {2, 1}},
                                   {{2, 1}, {1, 2}, {2, 1}},
                                   {{2, 1, 4, 3}, {4, 3, 2, 1}, {3, 4, 1, 2}}};
    constexpr int COUNT[4][4] = {{3}, {1, 2}, {1, 2}, {0, 1, 1, 1}};
    constexpr int MODES[4][3] = {{1, 2, 6}, {1, 2, 6}, {2, 1, 6}, {1, 6, 2}};
    ASSERT_TRUE(sym.WMODM.alloc(6, 4) && sym.WMODP.alloc(6));
    sym.WMODP(1) = 1;
    sym.WMODP(2) = 2;
    sym.WMODP(6) = 3;
    int next = 0;
    for (int c = 1; c <= sym.NSYMR; ++c) {
        sym.WCLS1[c] = MAPS[v][0][c - 1];
        sym.WCLS2[c] = MAPS[v][1][c - 1];
        sym.WCLS3[c] = MAPS[v][2][c - 1];
        sym.WMODC[c] = COUNT[v][c - 1];
        for (int k = 1; k <= sym.WMODC[c]; ++k)
            sym.WMODM(k, c) = MODES[v][next++];
    }
}

inline void make(RunState &run, const hulls::Quads &body, const hulls::Quads &surface, int ISX, int ISY) {
    RunState flat;
    hulls::set_body(part_of(surface, ISX, ISY), flat);
    hulls::set_body(part_of(body, ISX, ISY), run);
    run.opt.ISX = ISX;
    run.opt.ISY = ISY;
    run.opt.IQUAD = 1;
    ASSERT_EQ(PREGEO(flat.opt, flat.files, flat.dipoles, flat.bodies, flat.mesh), Status::ok);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    run.surface = {flat.mesh.NEQN,
                   std::move(flat.mesh.XIV),
                   std::move(flat.mesh.ETV),
                   std::move(flat.mesh.XCT),
                   std::move(flat.mesh.TRM),
                   std::move(flat.mesh.PMOM),
                   std::move(flat.mesh.SIDE),
                   std::move(flat.mesh.XGP),
                   std::move(flat.mesh.GJAC),
                   std::move(flat.mesh.PSIZ)};
    ASSERT_EQ(SYMSET(6, ISX, ISY, run.bodies.MODE, 1, run.sym), Status::ok);
    set_maps(run.sym, ISY + 2 * ISX);
    const int N = run.mesh.NEQN, NFSP = run.surface.NFSP;
    SteadyFlow &flow = run.flow;
    ASSERT_TRUE(flow.STB1.alloc(N, 3) && flow.STB2.alloc(N, 3) && flow.STB3.alloc(N, 3, 3) &&
                flow.STF1.alloc(NFSP, 2) && flow.STF2.alloc(NFSP, 2, 3) && flow.STF3.alloc(NFSP, 3));
}

} // namespace wdd
