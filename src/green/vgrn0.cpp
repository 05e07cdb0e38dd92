#include "green/vgrn0.hpp"

#include "green/limit_kernels.hpp"

namespace {

f32 scale_of(f32 H) {
    return H > 0 ? 1 / H : 1.0f;
}

enum Method { IMAGES, MODES, PAIR, METHODS };

void set_lane(const GreenPoints &p, int i, f32 H, f32 scale, GreenBlock &block, int lane) {
    block.X[lane] = p.R[i] * scale;
    block.Y[lane] = (p.Z[i] + p.ZETA[i]) * scale;
    block.D[lane] = (p.Z[i] - p.ZETA[i]) * scale;
    block.ZB[lane] = (H - p.Z[i]) * scale;
    block.ZETAB[lane] = (H - p.ZETA[i]) * scale;
    block.ISNG[lane] = p.ISNG[i];
    block.IBOT[lane] = p.IBOT[i];
}

void evaluate(int method, Limit limit, GreenOrder order, GreenBlock &block) {
    if (method == IMAGES)
        limit_images(limit, order, block);
    else if (method == MODES)
        limit_modes(limit, order, block);
    else
        limit_pair(limit, order, block);
}

void scatter(const GreenBlock &block, const int *list, int count, f32 scale, GreenOrder order,
             const GreenArrays &result) {
    constexpr GreenValue VALUES[GREEN_VALUES] = {G_, G_R, G_Z, G_ZETA, G_RZ, G_ZZ, G_ZZETA, G_RZETA};
    for (int j = 0; j < (order == GreenOrder::first ? 4 : GREEN_VALUES); ++j) {
        const f32 factor = scale * (j == 0 ? 1.0f : j < 4 ? scale : scale * scale);
        f32 *re = result.re[VALUES[j]], *im = result.im[VALUES[j]];
        for (int k = 0; k < count; ++k) {
            re[list[k]] = block.re[VALUES[j]][k] * factor;
            im[list[k]] = 0;
        }
    }
}

} // namespace

void limit_points(const GreenPoints &points, f32 H, int IPLIM, GreenOrder order, const GreenArrays &result) {
    constexpr int CHUNK = 256;
    const Limit limit = IPLIM == 1 ? Limit::zero : Limit::infinite;
    const f32 scale = scale_of(H);
    GreenBlock block;
    for (int begin = 0; begin < points.n; begin += CHUNK) {
        const int end = points.n - begin < CHUNK ? points.n : begin + CHUNK;
        int list[METHODS][CHUNK], count[METHODS] = {};
        for (int i = begin; i < end; ++i) {
            const int method = !(H > 0) ? PAIR : points.R[i] * scale > 1 ? MODES : IMAGES;
            list[method][count[method]++] = i;
        }
        for (int method = 0; method < METHODS; ++method) {
            for (int first = 0; first < count[method]; first += GREEN_LANES) {
                const int *at = list[method] + first, rest = count[method] - first,
                          n = rest < GREEN_LANES ? rest : GREEN_LANES;
                for (int k = 0; k < GREEN_LANES; ++k)
                    set_lane(points, at[k < n ? k : n - 1], H, scale, block, k);
                evaluate(method, limit, order, block);
                scatter(block, at, n, scale, order, result);
            }
        }
    }
}

void VGRN0(f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM, f32 (&record)[16]) {
    GreenArrays result;
    for (int j = 0; j < GREEN_VALUES; ++j) {
        result.re[j] = record + 2 * j;
        result.im[j] = record + 2 * j + 1;
    }
    limit_points({1, &R, &Z, &ZETA, &ISNG, &IBOT}, H, IPLIM, GreenOrder::second, result);
}

LimitValues VGRN0G(f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM) {
    f32 record[16];
    VGRN0(R, Z, ZETA, H, ISNG, IBOT, IPLIM, record);
    return {record[2 * G_], record[2 * G_R], record[2 * G_Z], record[2 * G_ZETA]};
}
