#include "assembly/class_sums.hpp"

#include "assembly/dipole_row.hpp"
#include "assembly/row_kernels.hpp"
#include "geometry/lid.hpp"
#include "rankine/rankin.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

// The images of a coefficient with the signs of the class; image position m starts at m I.
Images images_of(const Symmetry &sym, int I, int s, const int *axis_sign = nullptr) {
    Images images{sym.NSYMG, I, {}};
    for (int m = 0; m < sym.NSYMG; ++m) {
        const int g = sym.ISYMG[m + 1];
        images.sign[m] = static_cast<f32>(SGN[sym.ICLS[s]][g] * (axis_sign == nullptr ? 1 : axis_sign[g]));
    }
    return images;
}

// Normal velocity and velocity: the images' velocities with the reflection of each image and the parity of
// the class. Of a pair in the free surface the dipole coefficient has the mark of the source panel, the
// normal velocity that of the field panel.
void velocity_sums(const AssemblyFrame &f, const TileRow &at, int s, const WaveRow &row, ClassWork &w) {
    const int I = at.I;
    const int *const axis_sign[3] = {SGX, SGY, nullptr};
    const Images all = images_of(f.run.sym, I, s);
    sum_images(I, all, row.DPR, w.DROW);
    sum_images(I - 1, all, row.DPC, w.DCOL);
    const Split EROW = at.row(s, PLANE_E);
    const Split ECOL = at.column(s, PLANE_E);
    add_surface_pairs(I, row.EFR.data(), row.EFC.data(), w.DROW, EROW);
    add_surface_pairs(I - 1, row.EFR.data(), row.EFC.data(), w.DCOL, ECOL);
    for (int c = 0; c < 3; ++c) {
        const Images images = images_of(f.run.sym, I, s, axis_sign[c]);
        sum_images(I, images, row.VPR[c], w.VROW[c]);
        sum_images(I - 1, images, row.VPC[c], w.VCOL[c]);
        add_signed(I, f.panels.N(I, c + 1), w.VROW[c], EROW);
        add_weighted(I - 1, &f.panels.N(1, c + 1), w.VCOL[c], ECOL);
        add_signed(I, 1, w.VROW[c], at.row(s, PLANE_V + c));
        add_signed(I - 1, 1, w.VCOL[c], at.column(s, PLANE_V + c));
    }
}

// Element j of a matrix row or column becomes the source influence times the lid factor z.
void make_lid_coefficient(const Split &source, const Split &coefficient, int j, c32 z) {
    const c32 value = c32(source.re[j], source.im[j]) * z;
    coefficient.re[j] = value.real();
    coefficient.im[j] = value.imag();
}

// Every coefficient whose source panel belongs to a lid becomes the source influence times the lid factor,
// with 4 pi on the diagonal.
void lid_rules(const AssemblyFrame &f, const TileRow &at, int s, const ClassWork &w) {
    const int I = at.I;
    const auto factor = [&](int P) { return lid_factor(f.panels.DAMP(P), f.wave.NUL); };
    const bool own = f.panels.LID(I) == 1;
    for (int J = 1; J <= I; ++J) {
        if (f.panels.LID(J) == 1)
            make_lid_coefficient(w.SROW, at.row(s), J - 1, factor(J));
        if (own && J < I)
            make_lid_coefficient(w.SCOL, at.column(s), J - 1, factor(I));
    }
    if (own)
        at.row(s).re[I - 1] += PI4;
}

// A porous plate at infinite frequency, where its resistance is none: the jump vanishes, and its row of the
// equations says that. The right-hand sides are 0 there.
void open_plates(const AssemblyFrame &f, const TileRow &at, int s) {
    const int I = at.I;
    const auto clear_element = [](const Split &line, int j) { line.re[j] = line.im[j] = 0; };
    const bool own = is_porous(f.run.dipoles, I);
    for (int plane = 0; plane < std::min(at.tile.planes, 2); ++plane) {
        const Split row = at.row(s, plane), column = at.column(s, plane);
        for (int J = 1; J <= I; ++J) {
            if (own)
                clear_element(row, J - 1);
            if (J < I && is_porous(f.run.dipoles, J))
                clear_element(column, J - 1);
        }
        if (own)
            row.re[I - 1] = PI4;
    }
}

} // namespace

bool ClassWork::alloc(int NEQN, bool velocities) {
    if (!values.alloc(NEQN, velocities ? 20 : 8))
        return false;
    int next = 1;
    const auto take = [&](Split &s) {
        s = {&values(1, next), &values(1, next + 1)};
        next += 2;
    };
    for (Split *s : {&SROW, &SCOL, &DROW, &DCOL})
        take(*s);
    for (int c = 0; velocities && c < 3; ++c) {
        take(VROW[c]);
        take(VCOL[c]);
    }
    return true;
}

void free_surface_pairs(const AssemblyFrame &f, const TileRow &at, const std::uint16_t *code, WaveRow &row) {
    const int I = at.I;
    f32 *EB = row.EB.data(), *EFR = row.EFR.data(), *EFC = row.EFC.data();
    if (!has_mark(I, CODE_SURFACE, code)) {
        if (!row.ordinary)
            row.set_ordinary();
        return;
    }
    row.ordinary = false;
    // At the limit frequencies the free-surface condition has no wave part.
    const bool wave = f.wave.IPLIM == 0;
    const f32 mark = f.panels.IFSP(I);
    const f32 *marks = f.panels.IFSP.data();
    for (int j = 0; j < I; ++j) {
        const bool surface = code[j] >= CODE_SURFACE;
        EB[j] = surface ? 0.0f : 1.0f;
        EFR[j] = surface && wave ? marks[j] : 0.0f;
        EFC[j] = surface && wave ? mark : 0.0f;
    }
    const int planes = std::min(at.tile.planes, 2); // dipole influence and normal velocity
    for (int j = 0; j < I; ++j) {
        if (EB[j] != 0)
            continue;
        for (int s = 1; s <= f.run.sym.NSYMR; ++s) {
            for (int plane = 0; plane < planes; ++plane) {
                f32 &coefficient = at.row(s, plane).re[j];
                coefficient *= -f.wave.NUL;
                if (j + 1 == I)
                    coefficient -= PI4 * f.panels.DIAG(I);
                else
                    at.column(s, plane).re[j] *= -f.wave.NUL;
            }
        }
    }
}

void class_sums(const AssemblyFrame &f, const TileRow &at, int s, const WaveRow &row, ClassWork &w,
                BlockSums &sums) {
    const int I = at.I;
    const Images images = images_of(f.run.sym, I, s);
    add_images(I, images, row.DPR, at.row(s));
    add_images(I - 1, images, row.DPC, at.column(s));
    sum_images(I, images, row.SPR, w.SROW);
    sum_images(I - 1, images, row.SPC, w.SCOL);
    if (is_dipole(f.run.dipoles, I)) {
        const c32 term = porosity_term(f.run.dipoles, f.wave, I);
        at.row(s).re[I - 1] += term.real();
        at.row(s).im[I - 1] += term.imag();
    }
    if (at.tile.planes > 1)
        velocity_sums(f, at, s, row, w);
    // The Rankine share of the radiation right-hand sides comes ready-made; diffraction needs the whole
    // source row.
    if (f.weights.radiation)
        add_radiation(f.run, f.weights, {I, s, w.SROW, w.SCOL}, sums);
    if (at.tile.keep_source) {
        const f32 *source_row = at.tile.source_row(at.a, s), *source_column = at.tile.source_column(at.a, s);
        for (int j = 0; j < I; ++j)
            w.SROW.re[j] += source_row[j];
        for (int j = 0; j < I - 1; ++j)
            w.SCOL.re[j] += source_column[j];
    }
    if (f.run.opt.IBDT3 == 1)
        lid_rules(f, at, s, w);
    if (f.run.dipoles.IDIPOL && f.wave.IPLIM == 2)
        open_plates(f, at, s);
    if (f.weights.diffraction)
        add_diffraction(f.run, f.weights, {I, s, w.SROW, w.SCOL}, sums);
}
