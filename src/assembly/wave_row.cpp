#include "assembly/wave_row.hpp"

#include "assembly/dipole_row.hpp"
#include "assembly/limit_row.hpp"
#include "assembly/row_kernels.hpp"
#include "green/vgrn0.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

// Values of a record by their columns in WaveRow::green: those an ordinary run reads first.
constexpr int VALUES[] = {G_, G_R, G_Z, G_ZETA, G_RZ, G_ZZ, G_ZZETA, G_RZETA};
constexpr int G = 1, GR = 3, GZ = 5, GF = 7;

Split column_pair(Array<f32, 2> &array, int first) {
    return {&array(1, first), &array(1, first + 1)};
}

GreenRow green_row(WaveRow &row, int depth_derivative, const int *ISNG, std::int64_t offset, f32 LOGT) {
    const auto from = [&](int column) {
        return ConstSplit(&row.green(1, column) + offset, &row.green(1, column + 1) + offset);
    };
    return {from(G), from(GR), from(depth_derivative), ISNG, LOGT};
}

// The three components of a velocity array from `offset` on.
struct Velocity {
    Split component[3];
    Velocity(const Split (&V)[3], std::int64_t offset)
        : component{behind(V[0], offset), behind(V[1], offset), behind(V[2], offset)} {}
    void clear(int n) const {
        for (const Split &s : component) {
            std::fill_n(s.re, n, 0.0f);
            std::fill_n(s.im, n, 0.0f);
        }
    }
};

VelocityRow velocity_row(WaveRow &row, int depth_derivative, std::int64_t offset, const Array<f32, 1> &cosine,
                         const Array<f32, 1> &sine) {
    const auto from = [&](int column) {
        return ConstSplit(&row.green(1, column) + offset, &row.green(1, column + 1) + offset);
    };
    return {from(GR), from(depth_derivative), cosine.data() + offset, sine.data() + offset};
}

// A closed tank has no wave term, whatever the depth.
void clear_points(int count, WaveRow &row) {
    for (int column = 1; column <= row.green.dim(2); ++column)
        std::fill_n(&row.green(1, column), count, 0.0f);
}

void evaluate(const AssemblyFrame &f, std::int64_t first, int count, const f32 *heights, WaveRow &row) {
    const GreenPoints points{count,
                             row.RR.data() + first,
                             row.ZS.data() + first,
                             row.ZF.data() + first,
                             row.ISNG.data() + first,
                             row.IBOT.data() + first,
                             heights,
                             f.heights.value.dim(1)};
    GreenArrays values{};
    for (int v = 0; v < (row.records ? 8 : 4); ++v) {
        values.re[VALUES[v]] = &row.green(1, 2 * v + 1) + first;
        values.im[VALUES[v]] = &row.green(1, 2 * v + 2) + first;
    }
    const GreenOrder order = row.records ? GreenOrder::second : GreenOrder::first;
    if (f.wave.IPLIM == 0)
        VGRN98(points, f.wave.HNU, f.gstate, order, row.work, values);
    else
        limit_points(points, f.wave.HNU, f.wave.IPLIM, order, values);
}

void evaluate(const AssemblyFrame &f, int count, WaveRow &row) {
    if (row.tank)
        return clear_points(count, row);
    evaluate(f, 0, count, nullptr, row);
}

// Image by image, as all images of a panel have its factors of the height.
void evaluate_images(const AssemblyFrame &f, const RowPart &part, WaveRow &row) {
    const int images = f.run.sym.NSYMG;
    if (f.heights.points == 0)
        return evaluate(f, images * part.n, row);
    for (int m = 0; m < images; ++m)
        evaluate(f, static_cast<std::int64_t>(m) * part.n, part.n, f.heights.value.data() + part.from, row);
}

// Normals and areas of the panels of the part as sources.
SourceArea part_sources(const PanelArrays &panels, const RowPart &part, const WaveRow &row) {
    const int J = part.from + 1;
    return {&panels.N(J, 1), &panels.N(J, 2), &panels.N(J, 3), &panels.A(J),
            nullptr,         nullptr,         row.EB.data(),   row.EFR.data()};
}

// The one source panel I.
SourceArea column_source(const WaveRow &row) {
    return {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, row.EB.data(), row.EFC.data()};
}

FixedPoint fixed_point(const PanelArrays &panels, int I, int image, f32 NU) {
    return {panels.X(I, 1), panels.X(I, 2), static_cast<f32>(SGX[image]), static_cast<f32>(SGY[image]), NU};
}

OneSource one_source(const PanelArrays &panels, int I, f32 area) {
    return {panels.N(I, 1), panels.N(I, 2), panels.N(I, 3), area};
}

void centroid_points(const AssemblyFrame &f, const RowPart &part, const std::uint16_t *code, WaveRow &row) {
    const Symmetry &sym = f.run.sym;
    const PanelArrays &panels = f.panels;
    const f32 NU = f.wave.NU;
    const int n = part.n, J = part.from + 1;
    for (int m = 0; m < sym.NSYMG; ++m) {
        const std::int64_t o = static_cast<std::int64_t>(m) * n;
        decode_pairs(n, 3 * m, code, row.ISNG.data() + o, row.IBOT.data() + o);
        pair_directions(
            n, fixed_point(panels, part.I, sym.ISYMG[m + 1], NU), &panels.X(J, 1), &panels.X(J, 2),
            {row.RR.data() + o, row.CR.data() + o, row.SR.data() + o, row.CC.data() + o, row.SC.data() + o});
        scale_to(n, -NU, &panels.X(J, 3), row.ZS.data() + o);
    }
    if (part.from == 0) // for all parts of the row; the first is the longest
        std::fill_n(row.ZF.data(), sym.NSYMG * n, -NU * panels.X(part.I, 3));
}

void centroid_velocities(const AssemblyFrame &f, const RowPart &part, std::int64_t o, WaveRow &row) {
    const Velocity at_row(row.VPR, o), at_column(row.VPC, o);
    centroid_velocity(part.n, velocity_row(row, GF, o, row.CR, row.SR), &f.panels.A(part.from + 1), f.wave.NU,
                      row.EB.data(), at_row.component);
    centroid_velocity(part.columns(), velocity_row(row, GZ, o, row.CC, row.SC), f.panels.A(part.I), f.wave.NU,
                      row.EB.data(), at_column.component);
}

void centroid_path(const AssemblyFrame &f, const RowPart &part, const std::uint16_t *code, WaveRow &row) {
    const Symmetry &sym = f.run.sym;
    const PanelArrays &panels = f.panels;
    const PeriodWave &wave = f.wave;
    centroid_points(f, part, code, row);
    evaluate_images(f, part, row);
    SourceArea sources = part_sources(panels, part, row), column = column_source(row);
    for (int m = 0; m < sym.NSYMG; ++m) {
        const std::int64_t o = static_cast<std::int64_t>(m) * part.n;
        const int *ISNG = row.ISNG.data() + o;
        sources.cosine = row.CR.data() + o;
        sources.sine = row.SR.data() + o;
        // The depth of I is the other argument of the same evaluation, hence the other derivative.
        column.cosine = row.CC.data() + o;
        column.sine = row.SC.data() + o;
        centroid_coefficients(
            part.n, wave.NU,
            {green_row(row, GZ, ISNG, o, wave.LOGT), sources, behind(row.SPR, o), behind(row.DPR, o)},
            {green_row(row, GF, ISNG, o, wave.LOGT), column, behind(row.SPC, o), behind(row.DPC, o)},
            one_source(panels, part.I, panels.A(part.I)));
        if (row.velocities)
            centroid_velocities(f, part, o, row);
        if (!row.records)
            continue;
        for (const bool at_row : {true, false}) {
            const DirectedPairs pairs{part, sym.ISYMG[m + 1], at_row, at_row ? 0 : 1, o};
            start_dipole_pairs(f.run.dipoles, pairs, row);
            add_dipole_points(f, pairs, o, at_row ? &panels.A(part.from + 1) : &panels.A(part.I), row);
        }
    }
}

// The pairs with dipole panels of one image, all four Gauss points. In both passes z is the depth
// of the source.
void gauss_dipoles(const AssemblyFrame &f, const DirectedPairs &pairs, WaveRow &row) {
    if (!row.records)
        return;
    const RowPart &part = pairs.part;
    start_dipole_pairs(f.run.dipoles, pairs, row);
    for (int q = 0; q < 4; ++q)
        add_dipole_points(f, pairs, static_cast<std::int64_t>(q) * part.n,
                          &f.panels.GW(pairs.row ? part.from + 1 : part.I, q + 1), row);
}

// Points of one image on the Gauss path stand in four blocks of length n, one for each Gauss point.
void gauss_row_pass(const AssemblyFrame &f, const DirectedPairs &pairs, WaveRow &row) {
    const PanelArrays &panels = f.panels;
    const PeriodWave &wave = f.wave;
    const RowPart &part = pairs.part;
    const int n = part.n, J = part.from + 1;
    for (int q = 0; q < 4; ++q) {
        const std::int64_t p = static_cast<std::int64_t>(q) * n;
        pair_directions(
            n, fixed_point(panels, part.I, pairs.image, wave.NU), &panels.XG(J, 1, q + 1),
            &panels.XG(J, 2, q + 1),
            {row.RR.data() + p, row.CR.data() + p, row.SR.data() + p, row.CC.data() + p, row.SC.data() + p});
        scale_to(n, -wave.NU, &panels.XG(J, 3, q + 1), row.ZS.data() + p);
        std::fill_n(row.ZF.data() + p, n, -wave.NU * panels.X(part.I, 3));
    }
    evaluate(f, 4 * n, row);
    const Split S = behind(row.SPR, pairs.entry);
    const Split D = behind(row.DPR, pairs.entry);
    SourceArea sources = part_sources(panels, part, row);
    for (int q = 0; q < 4; ++q) {
        const std::int64_t p = static_cast<std::int64_t>(q) * n;
        sources.area = &panels.GW(J, q + 1);
        sources.cosine = row.CR.data() + p;
        sources.sine = row.SR.data() + p;
        gauss_accumulate(n, green_row(row, GZ, row.ISNG.data(), p, wave.LOGT), sources, S, D);
    }
    if (row.velocities) {
        const Velocity V(row.VPR, pairs.entry);
        V.clear(n);
        for (int q = 0; q < 4; ++q)
            velocity_accumulate(n, velocity_row(row, GF, static_cast<std::int64_t>(q) * n, row.CR, row.SR),
                                &panels.GW(J, q + 1), V.component);
        velocity_finish(n, wave.NU, row.EB.data(), V.component);
    }
    sources.area = &panels.A(J);
    gauss_finish(n, green_row(row, GZ, row.ISNG.data(), 0, wave.LOGT), sources, wave.NU, S, D);
    gauss_dipoles(f, pairs, row);
}

void gauss_column_pass(const AssemblyFrame &f, const DirectedPairs &pairs, WaveRow &row) {
    const PanelArrays &panels = f.panels;
    const PeriodWave &wave = f.wave;
    const RowPart &part = pairs.part;
    const int I = part.I, n = part.n, J = part.from + 1;
    for (int q = 0; q < 4; ++q) {
        const std::int64_t p = static_cast<std::int64_t>(q) * n;
        // The source is a Gauss point of I, the field the imaged centroid of J: the vector to
        // the fixed point.
        const FixedPoint source{panels.XG(I, 1, q + 1), panels.XG(I, 2, q + 1),
                                static_cast<f32>(SGX[pairs.image]), static_cast<f32>(SGY[pairs.image]),
                                wave.NU};
        pair_directions(
            n, source, &panels.X(J, 1), &panels.X(J, 2),
            {row.RR.data() + p, row.CR.data() + p, row.SR.data() + p, row.CC.data() + p, row.SC.data() + p});
        std::fill_n(row.ZS.data() + p, n, -wave.NU * panels.XG(I, 3, q + 1));
        scale_to(n, -wave.NU, &panels.X(J, 3), row.ZF.data() + p);
    }
    evaluate(f, 4 * n, row);
    const Split S = behind(row.SPC, pairs.entry);
    const Split D = behind(row.DPC, pairs.entry);
    const int columns = part.columns();
    SourceArea column = column_source(row);
    for (int q = 0; q < 4; ++q) {
        const std::int64_t p = static_cast<std::int64_t>(q) * n;
        column.cosine = row.CC.data() + p;
        column.sine = row.SC.data() + p;
        gauss_accumulate(columns, green_row(row, GZ, row.ISNG.data(), p, wave.LOGT), column,
                         one_source(panels, I, panels.GW(I, q + 1)), S, D);
    }
    if (row.velocities) {
        const Velocity V(row.VPC, pairs.entry);
        V.clear(columns);
        for (int q = 0; q < 4; ++q)
            velocity_accumulate(columns,
                                velocity_row(row, GF, static_cast<std::int64_t>(q) * n, row.CC, row.SC),
                                panels.GW(I, q + 1), V.component);
        velocity_finish(columns, wave.NU, row.EB.data(), V.component);
    }
    gauss_finish(columns, green_row(row, GZ, row.ISNG.data(), 0, wave.LOGT), column,
                 one_source(panels, I, panels.A(I)), wave.NU, S, D);
    gauss_dipoles(f, pairs, row);
}

void gauss_path(const AssemblyFrame &f, const RowPart &part, const std::uint16_t *code, WaveRow &row) {
    const Symmetry &sym = f.run.sym;
    const int n = part.n;
    for (int m = 0; m < sym.NSYMG; ++m) {
        const std::int64_t o = static_cast<std::int64_t>(m) * n;
        for (const Split &s : {row.SPR, row.DPR, row.SPC, row.DPC}) {
            std::fill_n(s.re + o, n, 0.0f);
            std::fill_n(s.im + o, n, 0.0f);
        }
        for (int q = 0; q < 4; ++q)
            decode_pairs(n, 3 * m, code, row.ISNG.data() + q * n, row.IBOT.data() + q * n);
        const int image = sym.ISYMG[m + 1];
        gauss_row_pass(f, {part, image, true, 0, o}, row);
        if (part.columns() > 0)
            gauss_column_pass(f, {part, image, false, 0, o}, row);
    }
}

} // namespace

bool WaveRow::alloc(int NEQN, int NSYMG, const Options &opt, bool dipoles) {
    const int panels = std::min(NEQN, PART), entries = NSYMG * panels;
    const int points = opt.IQUAD == 1 ? 4 * panels : entries;
    velocities = opt.ISOR == 1;
    second = dipoles;
    tank = opt.IRRX != 0;
    if (!RR.alloc(points) || !ZS.alloc(points) || !ZF.alloc(points) || !CR.alloc(points) ||
        !SR.alloc(points) || !CC.alloc(points) || !SC.alloc(points) || !ISNG.alloc(points) ||
        !IBOT.alloc(points) || !green.alloc(points, second ? 16 : 8) || !EB.alloc(panels) ||
        !EFR.alloc(panels) || !EFC.alloc(panels) || !coefficient.alloc(entries, velocities ? 20 : 8) ||
        !work.alloc(points))
        return false;
    SPR = column_pair(coefficient, 1);
    DPR = column_pair(coefficient, 3);
    SPC = column_pair(coefficient, 5);
    DPC = column_pair(coefficient, 7);
    for (int c = 0; velocities && c < 3; ++c) {
        VPR[c] = column_pair(coefficient, 9 + 2 * c);
        VPC[c] = column_pair(coefficient, 15 + 2 * c);
    }
    return true;
}

void WaveRow::set_ordinary() {
    EB.fill(1);
    EFR.fill(0);
    EFC.fill(0);
    ordinary = true;
}

void WaveRow::record(std::int64_t p, f32 (&values)[16]) const {
    for (int v = 0; v < GREEN_VALUES; ++v) {
        values[2 * VALUES[v]] = (&green(1, 2 * v + 1))[p];
        values[2 * VALUES[v] + 1] = (&green(1, 2 * v + 2))[p];
    }
}

Status wave_coefficients(const AssemblyFrame &f, const RowPart &part, const std::uint16_t *code,
                         WaveRow &row) {
    row.records = row.second && has_dipole_pair(f.run.dipoles, part);
    (f.run.opt.IQUAD == 1 ? gauss_path : centroid_path)(f, part, code, row);
    return f.wave.IPLIM == 2 ? infinite_frequency_images(f.run, part, code, row) : Status::ok;
}
