// The first-order solutions on the free-surface panels.
#include "boundary/class_kernels.hpp"
#include "boundary/field_loop.hpp"
#include "boundary/incident_wave.hpp"
#include "boundary/wdd_sums.hpp"
#include "green/field_kernels.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

// What all field points read.
struct SurfaceFrame {
    const RunState &run;
    const FieldWave wave;
    f32 K;    // wave number at the depth
    f32 STEP; // of vertical differences
    const ThreadState &thread;
    FieldPanels panels;
    Array<c32, 2> VEL;
};

struct SurfaceWork {
    FieldWork field;
    KernelValues values;
    ClassKernels kernels;
    bool alloc(const SurfaceFrame &f) {
        const Symmetry &sym = f.run.sym;
        return field.alloc(f.panels) && values.alloc(f.panels, FS_C) &&
               kernels.alloc(f.panels.n, FS_C, std::max(sym.NSYMD, f.run.periods.NBETAM), sym.NSYMR);
    }
};

void set_incident_wave(const SurfaceFrame &f, int J, SecondOrder &out) {
    const Symmetry &sym = f.run.sym;
    const View<const f32, 2> X = f.run.surface.XCTF;
    const f32 point[3] = {X(1, J), X(2, J), X(3, J)};
    for (int b = 1; b <= f.run.periods.NBETA; ++b) {
        c32 P[5], PB[5];
        PLNWFS(f.run.opt.HBOT, f.K, f.run.periods.SINBET(b), f.run.periods.COSBET(b), point, P, PB);
        for (int c = 1; c <= sym.NSYMR; ++c) {
            c32 T = 0, TB = 0;
            for (int d = 1; d <= sym.NDCLS; ++d) {
                const int part = sym.IDCLS[(c - 1) * sym.NDCLS + d];
                T += P[part];
                TB += PB[part];
            }
            out.FSD1(J, b, c) = out.FSD2(J, b, c) = T;
            out.FSD3(J, b, c) = f.K * f.K * T;
            out.FSD4(J, b, c) = TB;
            out.FSD5(J, b, c) = f.K * f.K * TB;
        }
    }
}

Status form_kernels(const SurfaceFrame &f, FieldStrip strip, SurfaceWork &work) {
    const Symmetry &sym = f.run.sym;
    work.kernels.clear();
    for (int J = strip.first; J <= strip.last; ++J)
        for (int g = 1; g <= sym.NSYMG; ++g) {
            const int m = sym.ISYMG[g];
            const f32 Q[4] = {0, static_cast<f32>(SGX[m]) * f.run.surface.XCTF(1, J),
                              static_cast<f32>(SGY[m]) * f.run.surface.XCTF(2, J), 0};
            if (failed(FSFLD(Q, f.panels, f.wave, f.STEP, work.field, work.values)))
                return Status::failed;
            for (int v = FS_A; v <= FS_C; ++v)
                work.kernels.add_image(sym, m, J - strip.first + 1, work.values, v, v);
        }
    return Status::ok;
}

void add_radiation(const SurfaceFrame &f, FieldStrip strip, int c, ClassKernels &kernels, SecondOrder &out) {
    const Symmetry &sym = f.run.sym;
    const auto potential = radiation_columns<const c32>(sym, c, f.thread.PHIR);
    const auto sources = radiation_columns<const c32>(sym, c, f.thread.SRCR);
    const auto velocity = radiation_columns<const c32>(sym, c, f.VEL);
    const auto by_green = radiation_columns<c32>(sym, c, out.FSR1);
    kernels.multiply(FS_A, c, 1 / PI4, velocity, strip, by_green);
    kernels.multiply(FS_B, c, -1 / PI4, potential, strip, by_green);
    kernels.multiply(FS_A, c, 1, sources, strip, radiation_columns<c32>(sym, c, out.FSR2));
    kernels.multiply(FS_C, c, 1, sources, strip, radiation_columns<c32>(sym, c, out.FSR3));
}

void add_diffraction(const SurfaceFrame &f, FieldStrip strip, int c, ClassKernels &kernels,
                     SecondOrder &out) {
    const auto sources = heading_columns<const c32>(c, f.thread.SRCD);
    const auto turned = heading_columns<const c32>(c, f.thread.second.SRCD2);
    kernels.multiply(FS_B, c, -1 / PI4, heading_columns<const c32>(c, f.thread.PHID), strip,
                     heading_columns<c32>(c, out.FSD1));
    kernels.multiply(FS_A, c, 1, sources, strip, heading_columns<c32>(c, out.FSD2));
    kernels.multiply(FS_C, c, 1, sources, strip, heading_columns<c32>(c, out.FSD3));
    kernels.multiply(FS_A, c, 1, turned, strip, heading_columns<c32>(c, out.FSD4));
    kernels.multiply(FS_C, c, 1, turned, strip, heading_columns<c32>(c, out.FSD5));
}

Status strip_potentials(const SurfaceFrame &f, FieldStrip strip, SurfaceWork &work, SecondOrder &out) {
    const Options &opt = f.run.opt;
    for (int J = strip.first; J <= strip.last; ++J) {
        for (int col = 1; col <= f.run.sym.NSYMD; ++col)
            out.FSR1(J, col) = out.FSR2(J, col) = out.FSR3(J, col) = 0;
        set_incident_wave(f, J, out);
    }
    if (failed(form_kernels(f, strip, work)))
        return Status::failed;
    for (int c = 1; c <= f.run.sym.NSYMR; ++c) {
        if (opt.IRAD >= 0 && f.run.sym.NMCLS[c] > 0)
            add_radiation(f, strip, c, work.kernels, out);
        if (opt.IDIFF == 1 && f.run.periods.NBETA > 0)
            add_diffraction(f, strip, c, work.kernels, out);
    }
    return Status::ok;
}

} // namespace

Status WDDFS(const RunState &run, const PeriodWave &wave, ThreadState &thread) {
    const int NFSP = run.surface.NFSP;
    if (NFSP < 1)
        return Status::ok;
    SurfaceFrame frame{run,
                       {run.opt.HBOT, wave.W, &thread.gstate},
                       wave.W * wave.F,
                       DZSTEP(run.mesh.NEQN, run.mesh.PMOM),
                       thread,
                       {},
                       {}};
    if (!frame.panels.make(run.mesh, run.opt.IQUAD) || !velocity_columns(run.mesh, run.sym, frame.VEL))
        return MSGOUT(" RAM too small ");
    return for_field_points<SurfaceWork>(
        strips_of(NFSP), [&](SurfaceWork &work) { return work.alloc(frame); },
        [&](int k, SurfaceWork &work) {
            return strip_potentials(frame, strip_of(k, NFSP), work, thread.second);
        });
}
