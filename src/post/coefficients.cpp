#include "post/coefficients.hpp"

#include <algorithm>
#include <cmath>

namespace {

// Class of a mode, 0 for a mode that was not solved.
int class_of(const P2fFile &p2f, int mode) {
    for (int s = 1; s <= p2f.NSYMR; ++s) {
        for (int k = 1; k <= p2f.NMCLS[s]; ++k) {
            if (p2f.MODCLS(k, s) == mode)
                return s;
        }
    }
    return 0;
}

// Symmetric bodies have images that count; a wall has none.
int body_images(const P2fFile &p2f) {
    return (p2f.ISX == 1 ? 2 : 1) * (p2f.ISY == 1 ? 2 : 1);
}

c64 pressure_integral(const P2fFile &p2f, int mode, const c32 *potential) {
    constexpr int HELD = 3; // a plate that is no part of the moving body
    c64 sum = 0;
    for (int ip = 1; ip <= p2f.NEQN; ++ip)
        if (p2f.IDIP.empty() || p2f.IDIP(ip) != HELD)
            sum += static_cast<double>(p2f.PMOM(1, ip)) * p2f.VEL(mode, ip) * c64(potential[ip - 1]);
    return sum * static_cast<double>(body_images(p2f));
}

} // namespace

bool form_coefficients(const P2fFile &p2f, Coefficients &coefficients) {
    const int modes = p2f.NMODES;
    if (!coefficients.A.alloc(modes, modes, p2f.NPER) || !coefficients.B.alloc(modes, modes, p2f.NPER) ||
        !coefficients.X.alloc(modes, p2f.NBETA, p2f.NPER))
        return false;
    for (int t = 1; t <= p2f.NPER; ++t) {
        for (int i = 1; i <= modes; ++i) {
            const int s = class_of(p2f, i);
            if (s == 0)
                continue;
            for (int j = 1; p2f.IRAD >= 0 && j <= modes; ++j) {
                if (class_of(p2f, j) != s)
                    continue;
                const c64 value = pressure_integral(p2f, i, &p2f.PHIR(1, p2f.MODPOS(j), t));
                coefficients.A(i, j, t) = static_cast<f32>(value.real());
                coefficients.B(i, j, t) = static_cast<f32>(0 - value.imag()); // 0, not -0, without waves
            }
            for (int b = 1; p2f.IDIFF >= 0 && b <= p2f.NBETA; ++b)
                coefficients.X(i, b, t) = c32(pressure_integral(p2f, i, &p2f.PHID(1, b, s, t)));
        }
    }
    return true;
}
