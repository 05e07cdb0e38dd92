#include "assembly/assembly_frame.hpp"

#include "assembly/row_kernels.hpp"
#include "geometry/lid.hpp"

bool PanelArrays::make(const RunState &run) {
    const Mesh &mesh = run.mesh;
    const int n = mesh.NEQN;
    const bool gauss = run.opt.IQUAD == 1;
    const bool lids = run.opt.IBDT3 == 1;
    if (lids && (!LID.alloc(n) || !DAMP.alloc(n)))
        return false;
    for (int i = 1; lids && i <= n; ++i)
        LID(i) = LIDDMP(run.bodies, i, DAMP(i)) ? 1 : 0;
    if (!X.alloc(n, 3) || !N.alloc(n, 3) || !A.alloc(n) || !IFSP.alloc(n) || !DIAG.alloc(n))
        return false;
    if (gauss && (!XG.alloc(n, 3, 4) || !GW.alloc(n, 4)))
        return false;
    for (int i = 1; i <= n; ++i) {
        for (int c = 1; c <= 3; ++c) {
            X(i, c) = mesh.XCT(c, i);
            N(i, c) = mesh.TRM(3, c, i);
            for (int q = 1; gauss && q <= 4; ++q)
                XG(i, c, q) = mesh.XGP(q, c, i);
        }
        for (int q = 1; gauss && q <= 4; ++q)
            GW(i, q) = mesh.GJAC(q, i);
        A(i) = mesh.PMOM(1, i);
        IFSP(i) = static_cast<f32>(mesh.IFSP(i));
        const bool overhang = mesh.IFSP(i) == -1 && mesh.projected(i) != 0;
        DIAG(i) = overhang ? 1 : IFSP(i);
    }
    return true;
}

bool make_heights(const RunState &run, const PeriodWave &wave, const PanelArrays &panels,
                  const GSTATE &gstate, HeightFactors &heights) {
    if (wave.IPLIM != 0 || !(wave.HNU > 0) || run.opt.IQUAD == 1 || run.opt.IRRX != 0)
        return true;
    const int n = run.mesh.NEQN;
    Array<f32, 1> Z;
    if (!Z.alloc(n))
        return false;
    scale_to(n, -wave.NU, &panels.X(1, 3), Z.data());
    return heights.make(n, Z.data(), wave.HNU, gstate);
}
