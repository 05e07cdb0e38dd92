#include "assembly/dipole_row.hpp"

#include "green/ghess.hpp"
#include "green/gradsg.hpp"
#include "state/symmetry.hpp"

namespace {

constexpr f32 VERTICAL = 1.0e-6f; // horizontal distance within which a pair counts as on one vertical

void set(const Split &s, std::int64_t e, c32 value) {
    s.re[e] = value.real();
    s.im[e] = value.imag();
}

void add(const Split &s, std::int64_t e, c32 value) {
    s.re[e] += value.real();
    s.im[e] += value.imag();
}

template <class V> c32 along(const f32 (&M)[3], const V &vector) {
    return M[0] * vector[0] + M[1] * vector[1] + M[2] * vector[2];
}

// Calls action(j, e, field is a dipole panel, source is one) for the pairs with a dipole panel, j the place
// of J in the part, from 0, e their entry.
template <class Action>
void each_dipole_pair(const Dipoles &dipoles, const DirectedPairs &pairs, Action action) {
    const RowPart &part = pairs.part;
    const bool own = is_dipole(dipoles, part.I);
    const int partners = pairs.row ? part.n : part.columns();
    for (int j = 0; j < partners; ++j) {
        const bool partner = is_dipole(dipoles, part.from + j + 1);
        if (own || partner)
            action(j, pairs.entry + j, pairs.row ? own : partner, pairs.row ? partner : own);
    }
}

} // namespace

bool has_dipole_pair(const Dipoles &dipoles, const RowPart &part) {
    for (int J = part.from + 1; J <= part.last(); ++J) {
        if (is_dipole(dipoles, J))
            return true;
    }
    return is_dipole(dipoles, part.I);
}

void start_dipole_pairs(const Dipoles &dipoles, const DirectedPairs &pairs, WaveRow &row) {
    each_dipole_pair(dipoles, pairs, [&](int, std::int64_t e, bool field, bool source) {
        if (field) {
            set(pairs.row ? row.SPR : row.SPC, e, 0);
            set(pairs.row ? row.DPR : row.DPC, e, 0);
        }
        for (int c = 0; source && row.velocities && c < 3; ++c)
            set(pairs.row ? row.VPR[c] : row.VPC[c], e, 0);
    });
}

void add_dipole_points(const AssemblyFrame &f, const DirectedPairs &pairs, std::int64_t point,
                       const f32 *weight, WaveRow &row) {
    const PanelArrays &panels = f.panels;
    const f32 NU = f.wave.NU;
    const f32 sx = static_cast<f32>(SGX[pairs.image]), sy = static_cast<f32>(SGY[pairs.image]);
    // Unit vectors from field to source.
    const f32 *cosine = (pairs.row ? row.CR : row.CC).data(), *sine = (pairs.row ? row.SR : row.SC).data();
    each_dipole_pair(f.run.dipoles, pairs, [&](int j, std::int64_t e, bool field, bool source) {
        if (!field && !(source && row.velocities))
            return;
        const std::int64_t p = point + j;
        const int I = pairs.part.I, J = pairs.part.from + j + 1;
        const int field_panel = pairs.row ? I : J, source_panel = pairs.row ? J : I;
        f32 record[16];
        row.record(p, record);
        HessianPair pair;
        pair.R = row.RR.data()[p];
        pair.EPSR = NU * VERTICAL;
        for (int c = 1; c <= 3; ++c)
            pair.N1[c - 1] = pair.N2[c - 1] = panels.N(source_panel, c);
        pair.C1 = pair.C2 = cosine[p];
        pair.S1 = pair.S2 = sine[p];
        c32 W[3];
        GHESS(pair, record, pairs.MODE, W);
        const f32 first = NU * NU * weight[pairs.row ? j : 0], second = NU * first;
        if (field) {
            const f32 M[3] = {sx * panels.N(field_panel, 1), sy * panels.N(field_panel, 2),
                              panels.N(field_panel, 3)};
            c32 V[3];
            GRADSG(record, pairs.MODE, pair.C1, pair.S1, pair.C2, pair.S2, V);
            add(pairs.row ? row.SPR : row.SPC, e, first * along(M, V));
            add(pairs.row ? row.DPR : row.DPC, e, second * along(M, W));
        }
        for (int c = 0; source && row.velocities && c < 3; ++c)
            add(pairs.row ? row.VPR[c] : row.VPC[c], e, second * W[c]);
    });
}

c32 porosity_term(const Dipoles &dipoles, const PeriodWave &wave, int I) {
    return PI4 * wave.NUL * wave.F * c32(dipoles.DPORA(I), -dipoles.DPORB(I));
}
