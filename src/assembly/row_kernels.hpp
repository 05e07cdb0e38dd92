// Inner loops of a row of the wave assembly. All arrays are contiguous, n long; complex values are split into
// real and imaginary arrays.
#pragma once

#include "base/split.hpp"

#include <cstdint>

// Geometry of one point against many: horizontal distances times NU and the unit vectors of both directions.
// The point is the fixed one (x, y), imaged with signs sx, sy; the many are (px, py).
struct PairDirections {
    f32 *RR; // NU times the horizontal distance
    f32 *CR; // from the imaged fixed point to the many; 0 within 1e-6
    f32 *SR;
    f32 *CC; // from the imaged many to the fixed point
    f32 *SC;
};
struct FixedPoint {
    f32 x;
    f32 y;
    f32 sx;
    f32 sy;
    f32 NU;
};
void pair_directions(int n, const FixedPoint &point, const f32 *px, const f32 *py, const PairDirections &out);

// The low two bits of the group `shift` of the pair code are ISNG, the third is IBOT.
void decode_pairs(int n, int shift, const std::uint16_t *code, int *ISNG, int *IBOT);
// True when a pair code has the bit `mark`.
bool has_mark(int n, int mark, const std::uint16_t *code);

// value[i] = factor source[i].
void scale_to(int n, f32 factor, const f32 *source, f32 *value);

// Green function values of a row of points and what turns them into influence coefficients.
struct GreenRow {
    ConstSplit G;
    ConstSplit GR;
    ConstSplit GV;   // derivative with the depth of the source point
    const int *ISNG; // 3: the constant LOGT goes to the real part of G
    f32 LOGT;
};
struct SourceArea {
    const f32 *n1; // normals and areas of the source panels, or of the one source panel (stride 0)
    const f32 *n2;
    const f32 *n3;
    const f32 *area;
    const f32 *cosine; // unit horizontal vector from field to source
    const f32 *sine;
    const f32 *EB;  // 1 for an ordinary pair, 0 in the free surface
    const f32 *EFS; // 0 for an ordinary pair, IFSP of the source in the free surface
};
struct OneSource {
    f32 n1;
    f32 n2;
    f32 n3;
    f32 area;
};
// One direction of the pairs: what turns the values of the Green function into coefficients, and these.
struct Direction {
    GreenRow green;
    SourceArea source;
    Split S, D;
};
// One point per panel: S = NU A T, D = NU^2 A (EB (GR h - GV n3) - EFS T), with T = G + LOGT where ISNG is 3
// and h the normal along the horizontal vector. In the row all panels are sources; in the column, of the same
// G, GR and EB, the one panel.
void centroid_coefficients(int n, f32 NU, const Direction &row, const Direction &column,
                           const OneSource &one);
// One Gauss point per panel: S += w G, D += w (GR h - GV n3), w the area entry.
void gauss_accumulate(int n, const GreenRow &green, const SourceArea &source, Split S, Split D);
void gauss_accumulate(int n, const GreenRow &green, const SourceArea &source, const OneSource &one, Split S,
                      Split D);
// After the four Gauss points: S becomes NU (S + A LOGT), D becomes NU^2 (EB D - EFS (S + A LOGT)).
void gauss_finish(int n, const GreenRow &green, const SourceArea &source, f32 NU, Split S, Split D);
void gauss_finish(int n, const GreenRow &green, const SourceArea &source, const OneSource &one, f32 NU,
                  Split S, Split D);

// Velocity at the field point of the same points. Each point adds w (GR cosine, GR sine, GV) with w the area
// entry and GV the derivative with the depth of the field point; at the end all is times -NU^2 EB.
struct VelocityRow {
    ConstSplit GR;
    ConstSplit GV;
    const f32 *cosine;
    const f32 *sine;
};
void velocity_accumulate(int n, const VelocityRow &at, const f32 *area, const Split *V);
void velocity_accumulate(int n, const VelocityRow &at, f32 area, const Split *V);
void velocity_finish(int n, f32 NU, const f32 *EB, const Split *V);
// The same for one point per panel, in one pass.
void centroid_velocity(int n, const VelocityRow &at, const f32 *area, f32 NU, const f32 *EB, const Split *V);
void centroid_velocity(int n, const VelocityRow &at, f32 area, f32 NU, const f32 *EB, const Split *V);
// Images of a coefficient, 1, 2 or 4 of them: image m from 0 starts m `stride` behind the first and counts
// with its sign.
struct Images {
    int count;
    std::int64_t stride;
    f32 sign[4];
};
// sum = the images; sum += the images.
void sum_images(int n, const Images &images, ConstSplit coefficient, Split sum);
void add_images(int n, const Images &images, ConstSplit coefficient, Split sum);
// sum += EFR EFC value, the marks of both panels: what pairs in the free surface take.
void add_surface_pairs(int n, const f32 *EFR, const f32 *EFC, ConstSplit value, Split sum);
