#include "green/ghess.hpp"

#include "green/vgrn98.hpp"

void GHESS(const HessianPair &pair, const f32 (&record)[16], int MODE, c32 (&W)[3]) {
    const auto value = [&](GreenValue j) { return c32(record[2 * j], record[2 * j + 1]); };
    const bool column = MODE == 1 || MODE == 3, vertical = pair.R < pair.EPSR;
    const f32(&n)[3] = column ? pair.N2 : pair.N1;
    const f32 c = vertical ? 0 : column ? pair.C2 : pair.C1, s = vertical ? 0 : column ? pair.S2 : pair.S1;
    const f32 nh = n[0] * c + n[1] * s;

    // G_RR and G_R / R.
    const c32 by_zz = value(G_ZZ), Q = vertical ? -0.5f * by_zz : value(G_R) / pair.R, P = -by_zz - Q;
    // By R and the depth of the source, by R and that of the field point.
    const c32 source = value(column ? G_RZETA : G_RZ), field = value(column ? G_RZ : G_RZETA);
    const c32 along = P * nh - source * n[2];
    W[0] = -c * along + (c * nh - n[0]) * Q;
    W[1] = -s * along + (s * nh - n[1]) * Q;
    W[2] = -(field * nh - value(G_ZZETA) * n[2]);
}
