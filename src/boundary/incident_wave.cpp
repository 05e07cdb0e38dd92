#include "boundary/incident_wave.hpp"

#include "boundary/incident_derivatives.hpp"

#include <algorithm>
#include <cmath>

void PLNWAV(f32 HBOT, f32 K, f32 sin_beta, f32 cos_beta, const f32 (&point)[3], bool gradient,
            WaveComponents &wave) {
    const f32 kx = K * cos_beta;
    const f32 ky = K * sin_beta;
    const f32 sin_a = std::sin(kx * point[0]), cos_a = std::cos(kx * point[0]);
    const f32 sin_b = std::sin(ky * point[1]), cos_b = std::cos(ky * point[1]);
    const DepthFactors depth = DEPFAC(point[2], HBOT, K);
    const f32 F = depth.C;
    const f32 dF = K * depth.S;
    const c32 i(0, 1);
    // Horizontal factors with F left out, then their x and y derivatives.
    const c32 h[5] = {0, cos_a * cos_b, -i * (sin_a * cos_b), -sin_a * sin_b, -i * (cos_a * sin_b)};
    for (int j = 1; j <= 4; ++j)
        wave.C[j] = F * h[j];
    if (!gradient)
        return;
    const c32 hx[5] = {0, -sin_a * cos_b, -i * (cos_a * cos_b), -cos_a * sin_b, i * (sin_a * sin_b)};
    const c32 hy[5] = {0, -cos_a * sin_b, i * (sin_a * sin_b), -sin_a * cos_b, -i * (cos_a * cos_b)};
    for (int j = 1; j <= 4; ++j) {
        wave.DC[j][1] = F * kx * hx[j];
        wave.DC[j][2] = F * ky * hy[j];
        wave.DC[j][3] = dF * h[j];
    }
}

void PLNWFS(f32 HBOT, f32 K, f32 sin_beta, f32 cos_beta, const f32 (&point)[3], c32 (&P)[5], c32 (&PB)[5]) {
    WaveComponents wave;
    PLNWAV(HBOT, K, sin_beta, cos_beta, point, false, wave);
    std::copy_n(wave.C + 1, 4, P + 1);
    // The heading turns a component into its neighbours of other parity in x (by u) and in y (by v).
    const c32 u(0, K * point[0] * sin_beta), v(0, K * point[1] * cos_beta);
    PB[1] = u * P[2] - v * P[4];
    PB[2] = u * P[1] - v * P[3];
    PB[3] = u * P[4] - v * P[2];
    PB[4] = u * P[3] - v * P[1];
}

void INCWAV(const RunState &run, f32 K, ThreadState &thread) {
    const Options &opt = run.opt;
    const Symmetry &sym = run.sym;
    const Mesh &mesh = run.mesh;
    thread.PHID.fill(0);
    thread.PHI0.fill(0);
    thread.SRCD.fill(0);
    if (K <= 1.0e-6f)
        return;
    const bool dipoles = run.dipoles.IDIPOL;
    // The right-hand side of a dipole panel is a normal velocity in any run.
    const bool gradient = std::max(opt.ISOR, opt.ISCATT) == 1 || dipoles;
    // To be added to the scattered wave, and for the source equations of interior panels and lids.
    const bool keep_incident = opt.ISCATT == 1 || (opt.ISOR == 1 && (opt.IRR != 0 || opt.IBDT3 == 1));
    for (int ip = 1; ip <= mesh.NEQN; ++ip) {
        const f32 point[3] = {mesh.XCT(1, ip), mesh.XCT(2, ip), mesh.XCT(3, ip)};
        const bool dipole = is_dipole(run.dipoles, ip);
        // The images of overhangs are to cancel interior panels: they have the same share in the scattering
        // sum, none.
        const bool interior = mesh.IFSP(ip) == 1 || (mesh.IFSP(ip) == -1 && mesh.projected(ip) != 0);
        const bool no_source = opt.ISCATT == 1 && opt.IRR >= 1 && interior;
        for (int b = 1; b <= run.periods.NBETA; ++b) {
            WaveComponents wave;
            PLNWAV(opt.HBOT, K, run.periods.SINBET(b), run.periods.COSBET(b), point, gradient, wave);
            for (int s = 1; s <= sym.NSYMR; ++s) {
                c32 phi = 0;
                c32 dn = 0;
                for (int d = 1; d <= sym.NDCLS; ++d) {
                    const int part = sym.IDCLS[(s - 1) * sym.NDCLS + d];
                    phi += wave.C[part];
                    for (int c = 1; gradient && c <= 3; ++c)
                        dn += mesh.TRM(3, c, ip) * wave.DC[part][c];
                }
                if (opt.ISCATT == 0)
                    thread.PHID(ip, b, s) = PI4 * (dipole ? dn : phi);
                if (keep_incident && !dipole)
                    thread.PHI0(ip, b, s) = phi;
                if (gradient && !no_source)
                    thread.SRCD(ip, b, s) = -dn;
            }
        }
    }
}

void ADDINC(ThreadState &thread) {
    c32 *total = thread.PHID.data();
    const c32 *incident = thread.PHI0.data();
    for (std::int64_t i = 0; i < thread.PHID.size(); ++i)
        total[i] += incident[i];
}
