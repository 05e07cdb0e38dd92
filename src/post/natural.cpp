#include "post/natural.hpp"

#include "base/lapack.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double NO_STIFFNESS = 1e-10; // of the largest eigenvalue: what rounding leaves of 0

// omega^2 and shapes (of the free modes, rotations times length) at one added mass, by rising omega^2.
struct Eigen {
    double square;
    std::vector<double> shape;
};

class Problem {
  public:
    Problem(const P2fFile &p2f, const MotionSystem &system, const RadiationForces &R)
        : p_(p2f), s_(system), R_(R), L_(static_cast<double>(p2f.ULEN(1))) {}

    double lever(int mode) const { return is_rotation(p_, mode) ? L_ : 1; }

    // False when the eigenvalues do not come out.
    bool at(double omega, std::vector<Eigen> &found) const {
        const Bracket here = bracket_of(p_, omega);
        const int n = static_cast<int>(s_.free.size());
        const std::size_t N = static_cast<std::size_t>(n);
        std::vector<double> C(N * N), M(N * N), re(N), im(N), beta(N), v(N * N);
        for (std::size_t j = 0; j < N; ++j)
            for (std::size_t i = 0; i < N; ++i) {
                const int p = s_.free[i], q = s_.free[j];
                const double scale = 1 / (lever(p) * lever(q));
                C[i + N * j] = scale * s_.C(p, q);
                M[i + N * j] = scale * (s_.M(p, q) + here.of(R_.A, p, q));
            }
        int info = 0, size = 64 * n;
        const int one = 1;
        std::vector<double> work(static_cast<std::size_t>(size));
        double none = 0;
        dggev_("N", "V", &n, C.data(), &n, M.data(), &n, re.data(), im.data(), beta.data(), &none, &one,
               v.data(), &n, work.data(), &size, &info, 1, 1);
        if (info != 0)
            return false;
        found.clear();
        for (std::size_t k = 0; k < N; ++k) {
            if (beta[k] == 0)
                return false;
            found.push_back(
                {re[k] / beta[k], std::vector<double>(v.begin() + static_cast<std::ptrdiff_t>(N * k),
                                                      v.begin() + static_cast<std::ptrdiff_t>(N * (k + 1)))});
        }
        std::sort(found.begin(), found.end(),
                  [](const Eigen &a, const Eigen &b) { return a.square < b.square; });
        return true;
    }

    NaturalMode mode(double omega, const Eigen &eigen, bool outside) const {
        NaturalMode mode{omega, 0, std::vector<double>(static_cast<std::size_t>(p_.NMODES)), outside};
        const Bracket here = bracket_of(p_, omega);
        double mass = 0, damping = 0, most = 0;
        const std::size_t N = s_.free.size();
        for (std::size_t i = 0; i < N; ++i) {
            if (std::abs(eigen.shape[i]) > std::abs(most))
                most = eigen.shape[i];
            for (std::size_t j = 0; j < N; ++j) {
                const int p = s_.free[i], q = s_.free[j];
                const double v = eigen.shape[i] * eigen.shape[j] / (lever(p) * lever(q));
                mass += v * (s_.M(p, q) + here.of(R_.A, p, q));
                damping += v * (s_.B(p, q) + here.of(R_.B, p, q));
            }
        }
        for (std::size_t i = 0; i < N; ++i)
            mode.shape[static_cast<std::size_t>(s_.free[i] - 1)] = eigen.shape[i] / most;
        mode.damping = damping / (2 * omega * mass);
        return mode;
    }

  private:
    const P2fFile &p_;
    const MotionSystem &s_;
    const RadiationForces &R_;
    double L_;
};

double root(const Eigen &eigen) {
    return std::sqrt(std::max(eigen.square, 0.0));
}

} // namespace

bool form_natural(const P2fFile &p2f, const MotionSystem &system, const RadiationForces &R,
                  std::vector<NaturalMode> &modes, std::vector<std::string> &notes, std::string &error) {
    modes.clear();
    const Problem problem(p2f, system, R);
    std::vector<double> omega;
    for (const int t : by_frequency(p2f))
        if (frequency_kind(p2f, t) == Frequency::wave)
            omega.push_back(omega_of(p2f, t));
    std::vector<std::vector<Eigen>> at(omega.size());
    for (std::size_t k = 0; k < omega.size(); ++k)
        if (!problem.at(omega[k], at[k])) {
            error = "mass and added mass do not determine the natural modes: a mode has none, or a mass is "
                    "negative";
            return false;
        }
    if (omega.empty()) {
        error = "the run has no period with waves";
        return false;
    }
    const std::size_t n = at[0].size();
    for (std::size_t m = 0; m < n; ++m) {
        const double least = NO_STIFFNESS * std::abs(at[0].back().square);
        if (m == 0 && at[0][m].square < -least)
            notes.push_back("A shape has negative stiffness: the bodies are not stable as they float.");
        if (at[0][m].square <= least)
            continue;
        const auto over = [&](std::size_t k) { return root(at[k][m]) - omega[k]; };
        if (over(0) <= 0)
            modes.push_back(problem.mode(root(at[0][m]), at[0][m], true));
        for (std::size_t k = 0; k + 1 < omega.size(); ++k) {
            if ((over(k) > 0) == (over(k + 1) > 0))
                continue;
            double low = omega[k], high = omega[k + 1];
            const bool falling = over(k) > 0;
            std::vector<Eigen> middle = at[k];
            for (int step = 0; step < 40; ++step) {
                const double w = (low + high) / 2;
                if (!problem.at(w, middle)) {
                    error = "the natural modes do not come out";
                    return false;
                }
                ((root(middle[m]) > w) == falling ? low : high) = w;
            }
            modes.push_back(problem.mode((low + high) / 2, middle[m], false));
        }
        if (over(omega.size() - 1) > 0)
            modes.push_back(problem.mode(root(at.back()[m]), at.back()[m], true));
    }
    std::sort(modes.begin(), modes.end(),
              [](const NaturalMode &a, const NaturalMode &b) { return a.omega < b.omega; });
    return true;
}
