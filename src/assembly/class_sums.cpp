#include "assembly/class_sums.hpp"

#include "assembly/dipole_row.hpp"
#include "assembly/row_kernels.hpp"
#include "geometry/lid.hpp"
#include "rankine/rankin.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

// The images of a coefficient with the signs of the class; image position m starts at m n.
Images images_of(const Symmetry &sym, const RowPart &part, int s, const int *axis_sign = nullptr) {
    Images images{sym.NSYMG, part.n, {}};
    for (int m = 0; m < sym.NSYMG; ++m) {
        const int g = sym.ISYMG[m + 1];
        images.sign[m] = static_cast<f32>(SGN[sym.ICLS[s]][g] * (axis_sign == nullptr ? 1 : axis_sign[g]));
    }
    return images;
}

// With one image the sum is the coefficient as it stands.
void sums_of_images(int n, const Images &images, const Split &coefficient, Split &sum) {
    if (images.count == 1)
        sum = coefficient;
    else
        sum_images(n, images, coefficient, sum);
}

// The lines of a tile from the first panel of a part on.
struct PartLines {
    const TileRow &tile_row;
    const RowPart &part;
    Split row(int s, int plane = PLANE_D) const { return behind(tile_row.row(s, plane), part.from); }
    Split column(int s, int plane = PLANE_D) const { return behind(tile_row.column(s, plane), part.from); }
};

// Normal velocity and velocity: the images' velocities with the reflection of each image and the parity of
// the class. Of a pair in the free surface the dipole coefficient has the mark of the source panel, the
// normal velocity that of the field panel.
void velocity_sums(const AssemblyFrame &f, const PartLines &at, int s, const WaveRow &row, ClassWork &w) {
    const int n = at.part.n, columns = at.part.columns();
    const int *const axis_sign[3] = {SGX, SGY, nullptr};
    const Images all = images_of(f.run.sym, at.part, s);
    sums_of_images(n, all, row.DPR, w.DROW);
    sums_of_images(columns, all, row.DPC, w.DCOL);
    const Split EROW = at.row(s, PLANE_E);
    const Split ECOL = at.column(s, PLANE_E);
    if (!row.ordinary) {
        add_surface_pairs(n, row.EFR.data(), row.EFC.data(), w.DROW, EROW);
        add_surface_pairs(columns, row.EFR.data(), row.EFC.data(), w.DCOL, ECOL);
    }
    for (int c = 0; c < 3; ++c) {
        const Images images = images_of(f.run.sym, at.part, s, axis_sign[c]);
        sums_of_images(n, images, row.VPR[c], w.VROW[c]);
        sums_of_images(columns, images, row.VPC[c], w.VCOL[c]);
        add_signed(n, f.panels.N(at.part.I, c + 1), w.VROW[c], EROW);
        add_weighted(columns, &f.panels.N(at.part.from + 1, c + 1), w.VCOL[c], ECOL);
        add_signed(n, 1, w.VROW[c], at.row(s, PLANE_V + c));
        add_signed(columns, 1, w.VCOL[c], at.column(s, PLANE_V + c));
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
void lid_rules(const AssemblyFrame &f, const PartLines &at, int s, const ClassWork &w) {
    const int I = at.part.I;
    const auto factor = [&](int P) { return lid_factor(f.panels.DAMP(P), f.wave.NUL); };
    const bool own = f.panels.LID(I) == 1;
    for (int j = 0; j < at.part.n; ++j) {
        const int J = at.part.from + j + 1;
        if (f.panels.LID(J) == 1)
            make_lid_coefficient(w.SROW, at.row(s), j, factor(J));
        if (own && J < I)
            make_lid_coefficient(w.SCOL, at.column(s), j, factor(I));
        if (own && J == I)
            at.row(s).re[j] += PI4;
    }
}

// A porous plate at infinite frequency, where its resistance is none: the jump vanishes, and its row of the
// equations says that. The right-hand sides are 0 there.
void open_plates(const AssemblyFrame &f, const PartLines &at, int s) {
    const int I = at.part.I;
    const auto clear_element = [](const Split &line, int j) { line.re[j] = line.im[j] = 0; };
    const bool own = is_porous(f.run.dipoles, I);
    for (int plane = 0; plane < std::min(at.tile_row.tile.planes, 2); ++plane) {
        const Split row = at.row(s, plane), column = at.column(s, plane);
        for (int j = 0; j < at.part.n; ++j) {
            const int J = at.part.from + j + 1;
            if (own)
                clear_element(row, j);
            if (J < I && is_porous(f.run.dipoles, J))
                clear_element(column, j);
            if (own && J == I)
                row.re[j] = PI4;
        }
    }
}

} // namespace

bool ClassWork::alloc(int NEQN, bool velocities) {
    if (!values.alloc(std::min(NEQN, PART), velocities ? 20 : 8))
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

void free_surface_pairs(const AssemblyFrame &f, const TileRow &tile_row, const RowPart &part,
                        const std::uint16_t *code, WaveRow &row) {
    const int I = part.I, n = part.n;
    const PartLines at{tile_row, part};
    f32 *EB = row.EB.data(), *EFR = row.EFR.data(), *EFC = row.EFC.data();
    if (!has_mark(n, CODE_SURFACE, code)) {
        if (!row.ordinary)
            row.set_ordinary();
        return;
    }
    row.ordinary = false;
    // At the limit frequencies the free-surface condition has no wave part.
    const bool wave = f.wave.IPLIM == 0;
    const f32 mark = f.panels.IFSP(I);
    const f32 *marks = &f.panels.IFSP(part.from + 1);
    for (int j = 0; j < n; ++j) {
        const bool surface = code[j] >= CODE_SURFACE;
        EB[j] = surface ? 0.0f : 1.0f;
        EFR[j] = surface && wave ? marks[j] : 0.0f;
        EFC[j] = surface && wave ? mark : 0.0f;
    }
    const int planes = std::min(tile_row.tile.planes, 2); // dipole influence and normal velocity
    for (int j = 0; j < n; ++j) {
        if (EB[j] != 0)
            continue;
        for (int s = 1; s <= f.run.sym.NSYMR; ++s) {
            for (int plane = 0; plane < planes; ++plane) {
                f32 &coefficient = at.row(s, plane).re[j];
                coefficient *= -f.wave.NUL;
                if (part.from + j + 1 == I)
                    coefficient -= PI4 * f.panels.DIAG(I);
                else
                    at.column(s, plane).re[j] *= -f.wave.NUL;
            }
        }
    }
}

void class_sums(const AssemblyFrame &f, const TileRow &tile_row, const RowPart &part, int s,
                const WaveRow &row, ClassWork &w, BlockSums &sums) {
    const int I = part.I, n = part.n, columns = part.columns();
    const PartLines at{tile_row, part};
    const Images images = images_of(f.run.sym, part, s);
    add_images(n, images, row.DPR, at.row(s));
    add_images(columns, images, row.DPC, at.column(s));
    sums_of_images(n, images, row.SPR, w.SROW);
    sums_of_images(columns, images, row.SPC, w.SCOL);
    if (columns < n && is_dipole(f.run.dipoles, I)) { // the diagonal is in this part
        const c32 term = porosity_term(f.run.dipoles, f.wave, I);
        tile_row.row(s).re[I - 1] += term.real();
        tile_row.row(s).im[I - 1] += term.imag();
    }
    if (tile_row.tile.planes > 1)
        velocity_sums(f, at, s, row, w);
    // The Rankine share of the radiation right-hand sides comes ready-made; diffraction needs the whole
    // source row.
    if (f.weights.radiation)
        add_radiation(f.run, f.weights, {part, s, w.SROW, w.SCOL}, sums);
    if (tile_row.tile.keep_source) {
        const f32 *source_row = tile_row.tile.source_row(tile_row.a, s) + part.from;
        const f32 *source_column = tile_row.tile.source_column(tile_row.a, s) + part.from;
        for (int j = 0; j < n; ++j)
            w.SROW.re[j] += source_row[j];
        for (int j = 0; j < columns; ++j)
            w.SCOL.re[j] += source_column[j];
    }
    if (f.run.opt.IBDT3 == 1)
        lid_rules(f, at, s, w);
    if (f.run.dipoles.IDIPOL && f.wave.IPLIM == 2)
        open_plates(f, at, s);
    if (f.weights.diffraction)
        add_diffraction(f.run, f.weights, {part, s, w.SROW, w.SCOL}, sums);
}
