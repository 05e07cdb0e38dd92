// Motions of a freely floating body of a hand-over file.
#pragma once

#include "../cases/case_folder.hpp"
#include "post/hull_state.hpp"

#include <array>

inline constexpr double GYRATION = 0.5; // radius about all axes

using Mass = std::array<std::array<double, 6>, 6>; // over the density
// The displacement, its centre at the origin.
inline Mass plain_mass(const P2fFile &p) {
    const double V = static_cast<double>(p.VOL(3, 1));
    Mass M{};
    for (std::size_t i = 0; i < 6; ++i)
        M[i][i] = i < 3 ? V : V * GYRATION * GYRATION;
    return M;
}

// Solves (C - nu (M + A) + i nu B) xi = X by Gauss with pivots; lengths in units of ULEN, which is 1. The
// centre of the mass is at the height of the origin.
inline void free_motions(const SolvedRun &run, int t, Array<c64, 2> &xi, const Mass &M) {
    const P2fFile &p = run.p2f;
    ASSERT_TRUE(xi.alloc(p.NMODES, p.NBETA));
    const double nu = deep_wave_number(p, t);
    for (int b = 1; b <= p.NBETA; ++b) {
        std::array<std::array<c64, 7>, 6> m;
        for (int i = 1; i <= 6; ++i) {
            for (int j = 1; j <= 6; ++j) {
                const double mass = M[static_cast<std::size_t>(i) - 1][static_cast<std::size_t>(j) - 1];
                m[i - 1][j - 1] = c64(static_cast<double>(p.CHYD(i, j)) -
                                          nu * (mass + static_cast<double>(run.c.A(i, j, t))),
                                      nu * static_cast<double>(run.c.B(i, j, t)));
            }
            m[i - 1][6] = c64(run.c.X(i, b, t));
        }
        for (std::size_t k = 0; k < 6; ++k) {
            std::size_t pivot = k;
            for (std::size_t i = k + 1; i < 6; ++i)
                pivot = std::abs(m[i][k]) > std::abs(m[pivot][k]) ? i : pivot;
            std::swap(m[k], m[pivot]);
            for (std::size_t i = 0; i < 6; ++i)
                for (std::size_t j = 7; i != k && j-- > k;)
                    m[i][j] -= m[i][k] / m[k][k] * m[k][j];
        }
        for (int i = 1; i <= 6; ++i)
            xi(i, b) = m[i - 1][6] / m[i - 1][i - 1];
    }
}
inline void free_motions(const SolvedRun &run, int t, Array<c64, 2> &xi) {
    free_motions(run, t, xi, plain_mass(run.p2f));
}
