#include "geometry/panel.hpp"

#include "state/messages.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr f32 GAUSS = 0.5773503f; // 1/sqrt(3)
constexpr f32 GAUSS_S[5] = {0, GAUSS, GAUSS, -GAUSS, -GAUSS};
constexpr f32 GAUSS_T[5] = {0, GAUSS, -GAUSS, -GAUSS, GAUSS};
constexpr f32 MIN_AREA = 1.0e-10f;
constexpr f32 MIN_SIDE2 = 1.0e-12f;       // squared length below which a side is collapsed
constexpr f32 UNDERFLOW_POWER = 1.0e-15f; // powers of what is not above it are 0

struct Vector {
    f32 x, y, z;
};
Vector operator+(Vector a, Vector b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vector operator-(Vector a, Vector b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vector operator*(f32 f, Vector a) {
    return {f * a.x, f * a.y, f * a.z};
}
f32 dot(Vector a, Vector b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vector cross(Vector a, Vector b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
// The unit vector along a; false when a has no length.
bool normalise(Vector a, Vector &unit) {
    const f32 length = std::sqrt(dot(a, a));
    if (!(length > 0))
        return false;
    unit = (1 / length) * a;
    return true;
}

// The bilinear map xi = A1 s + A2 t + A3 s t, eta alike with B, of the square |s|, |t| <= 1 onto the panel.
struct BilinearMap {
    f32 A1, A2, A3, B1, B2, B3;
    f32 D, C1, C2; // its Jacobian is D + s C2 + t C1
};

BilinearMap bilinear_map(const f32 *xi, const f32 *eta) {
    BilinearMap m{};
    m.A1 = (xi[1] + xi[2]) / 2;
    m.A2 = (xi[1] + xi[4]) / 2;
    m.A3 = (xi[1] + xi[3]) / 2;
    m.B1 = (eta[1] + eta[2]) / 2;
    m.B2 = (eta[1] + eta[4]) / 2;
    m.B3 = (eta[1] + eta[3]) / 2;
    m.D = m.A1 * m.B2 - m.A2 * m.B1;
    m.C1 = m.A3 * m.B2 - m.A2 * m.B3;
    m.C2 = m.A1 * m.B3 - m.A3 * m.B1;
    return m;
}

// Powers 0 to 6 of the vertex coordinates.
void fill_powers(const f32 *at, f32 (*power)[7]) {
    for (int v = 1; v <= 4; ++v) {
        power[v][0] = 1;
        power[v][1] = at[v];
        for (int n = 2; n <= 6; ++n) {
            const f32 before = power[v][n - 1];
            power[v][n] = std::abs(before) <= UNDERFLOW_POWER ? 0 : before * at[v];
        }
    }
}

// Adds the share of side i-j to the moments of order n = a + b. By Green's theorem the moment x^a y^b is the
// contour integral of x^a y^(b+1)/(b+1) dx; integration by parts leads from one to the next. moment[b] is
// that of x^(n-b) y^b.
void add_side(const f32 (*x)[7], const f32 (*y)[7], int i, int j, int n, f32 *moment) {
    const f32 dx = x[j][1] - x[i][1];
    const f32 dy = y[j][1] - y[i][1];
    if (dx * dx >= dy * dy) {
        const f32 slope = dy / dx;
        f32 side = (x[j][n + 2] - x[i][n + 2]) / static_cast<f32>(n + 2); // of x^(n+1)
        for (int b = 1; b <= n + 1; ++b) {                                // of x^a y^b, a = n + 1 - b
            const int a1 = n + 2 - b;
            side = (x[j][a1] * y[j][b] - x[i][a1] * y[i][b] - slope * static_cast<f32>(b) * side) /
                   static_cast<f32>(a1);
            moment[b - 1] += side / static_cast<f32>(b);
        }
    } else {
        const f32 slope = dx / dy;
        f32 side = (y[j][n + 2] - y[i][n + 2]) / static_cast<f32>(n + 2); // of y^(n+1), over y
        moment[n] += slope * side / static_cast<f32>(n + 1);
        for (int a = 1; a <= n; ++a) { // of x^a y^b, b = n + 1 - a
            const int b1 = n + 2 - a;
            side = (x[j][a] * y[j][b1] - x[i][a] * y[i][b1] - slope * static_cast<f32>(a) * side) /
                   static_cast<f32>(b1);
            moment[n - a] += slope * side / static_cast<f32>(n + 1 - a);
        }
    }
}

void fill_moments(Panel &p) {
    f32 x[5][7], y[5][7];
    fill_powers(p.XIV, x);
    fill_powers(p.ETV, y);
    std::fill(p.PMOM, p.PMOM + 14, 0.0f);
    for (int k = 1; k <= 4; ++k) {
        const int j = JP[k];
        const f32 dx = p.XIV[j] - p.XIV[k];
        const f32 dy = p.ETV[j] - p.ETV[k];
        p.PMOM[1] += 0.5f * dx * (p.ETV[k] + p.ETV[j]);
        const f32 length2 = dx * dx + dy * dy;
        p.SIDE[k] = 0;
        if (length2 >= MIN_SIDE2) {
            p.SIDE[k] = std::sqrt(length2);
            add_side(x, y, k, j, 2, p.PMOM + 2);
            add_side(x, y, k, j, 3, p.PMOM + 5);
            add_side(x, y, k, j, 4, p.PMOM + 9);
        }
    }
    for (int n = 2; n <= 13; ++n)
        p.PMOM[n] *= MOMENT_FACTOR[n];
}

// Corners that turn the wrong way.
int reflex_corners(const Panel &p) {
    int count = 0;
    for (int k = 1; k <= 4; ++k) {
        const int j = JP[k];
        const int n = JP[j];
        const f32 turn =
            (p.XIV[j] - p.XIV[k]) * (p.ETV[n] - p.ETV[j]) - (p.ETV[j] - p.ETV[k]) * (p.XIV[n] - p.XIV[j]);
        count += turn > 0 ? 1 : 0;
    }
    return count;
}

// Largest squared distance of two vertices.
f32 squared_diameter(const Panel &p) {
    f32 largest = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = i + 1; j <= 4; ++j) {
            const f32 dx = p.XIV[j] - p.XIV[i];
            const f32 dy = p.ETV[j] - p.ETV[i];
            largest = std::max(largest, dx * dx + dy * dy);
        }
    return largest;
}

void fill_scales(int IDIAG, Panel &p) {
    const f32 d2 = squared_diameter(p);
    p.PSIZ[1] = IDIAG < 1 ? 1 : p.PMOM[1] / std::sqrt(d2);
    p.PSIZ[2] = IDIAG < 1 ? p.PMOM[1] : d2;
    measure_regions(p);
}

void put(Vector v, f32 *three) {
    three[1] = v.x;
    three[2] = v.y;
    three[3] = v.z;
}

} // namespace

Status PANGEO(View<const f32, 2> vertex, int IDIAG, int ordinal, Panel &panel) {
    Vector P[5];
    for (int i = 1; i <= 4; ++i)
        P[i] = {vertex(i, 1), vertex(i, 2), vertex(i, 3)};
    // A crossed panel can have opposite mid-sides that coincide; its sides then give the frame.
    const Vector D2 = P[1] + P[4] - P[2] - P[3];
    Vector E1, N;
    if (!normalise(P[1] + P[2] - P[3] - P[4], E1) && !normalise(P[1] - P[2], E1))
        return MSGOUT(" Error: panel area is less than 1.E-10 for panel I=", ordinal);
    if (!normalise(cross(E1, D2), N) && !normalise(cross(E1, P[1] - P[3]), N) &&
        !normalise(cross(E1, P[2] - P[3]), N))
        return MSGOUT(" Error: panel area is less than 1.E-10 for panel I=", ordinal);
    const Vector E2 = cross(N, E1);
    put(E1, panel.TRM[1]);
    put(E2, panel.TRM[2]);
    put(N, panel.TRM[3]);

    const Vector Pm = 0.25f * (P[1] + P[2] + P[3] + P[4]);
    for (int i = 1; i <= 4; ++i) {
        panel.XIV[i] = dot(E1, P[i] - Pm);
        panel.ETV[i] = dot(E2, P[i] - Pm);
    }
    const BilinearMap m = bilinear_map(panel.XIV, panel.ETV);
    const f32 dxi = m.D == 0 ? 0 : (m.C1 * m.A2 + m.C2 * m.A1) / (3 * m.D);
    const f32 deta = m.D == 0 ? 0 : (m.C1 * m.B2 + m.C2 * m.B1) / (3 * m.D);
    const Vector centroid = Pm + dxi * E1 + deta * E2;
    put(centroid, panel.XCT);
    for (int i = 1; i <= 4; ++i) {
        panel.XIV[i] -= dxi;
        panel.ETV[i] -= deta;
    }
    for (int k = 1; k <= 4; ++k) {
        const f32 s = GAUSS_S[k];
        const f32 t = GAUSS_T[k];
        panel.GJAC[k] = m.D + s * m.C2 + t * m.C1;
        const f32 xg = s * (m.A1 + t * m.A3) + t * m.A2 - dxi;
        const f32 yg = s * (m.B1 + t * m.B3) + t * m.B2 - deta;
        put(centroid + xg * E1 + yg * E2, panel.XGP[k]);
    }
    fill_moments(panel);

    Status status = Status::ok;
    if (!(panel.PMOM[1] >= MIN_AREA))
        status = MSGOUT(" Error: panel area is less than 1.E-10 for panel I=", ordinal);
    const int reflex = reflex_corners(panel);
    if (reflex == 1)
        message(" Warning: panel side is convex, panel I=", ordinal);
    else if (reflex == 2)
        status = MSGOUT(" Error: two sides intersect on panel I=", ordinal);
    fill_scales(IDIAG, panel);
    return status;
}

void measure_regions(Panel &p) {
    const f32 d2 = squared_diameter(p);
    p.region2 = std::max(p.PSIZ[2], d2 / 8);
    p.width = p.PMOM[1] / std::sqrt(d2);
}

void put_panel(const Panel &panel, int NP, Mesh &mesh) {
    for (int c = 1; c <= 3; ++c) {
        mesh.XCT(c, NP) = panel.XCT[c];
        for (int r = 1; r <= 3; ++r)
            mesh.TRM(r, c, NP) = panel.TRM[r][c];
        for (int k = 1; k <= 4; ++k)
            mesh.XGP(k, c, NP) = panel.XGP[k][c];
    }
    for (int k = 1; k <= 4; ++k) {
        mesh.XIV(k, NP) = panel.XIV[k];
        mesh.ETV(k, NP) = panel.ETV[k];
        mesh.SIDE(k, NP) = panel.SIDE[k];
        mesh.GJAC(k, NP) = panel.GJAC[k];
    }
    for (int n = 1; n <= 13; ++n)
        mesh.PMOM(n, NP) = panel.PMOM[n];
    mesh.PSIZ(1, NP) = panel.PSIZ[1];
    mesh.PSIZ(2, NP) = panel.PSIZ[2];
}

Panel panel_of(const Mesh &mesh, int NP) {
    Panel panel{};
    for (int c = 1; c <= 3; ++c) {
        panel.XCT[c] = mesh.XCT(c, NP);
        for (int r = 1; r <= 3; ++r)
            panel.TRM[r][c] = mesh.TRM(r, c, NP);
        for (int k = 1; k <= 4; ++k)
            panel.XGP[k][c] = mesh.XGP(k, c, NP);
    }
    for (int k = 1; k <= 4; ++k) {
        panel.XIV[k] = mesh.XIV(k, NP);
        panel.ETV[k] = mesh.ETV(k, NP);
        panel.SIDE[k] = mesh.SIDE(k, NP);
        panel.GJAC[k] = mesh.GJAC(k, NP);
    }
    for (int n = 1; n <= 13; ++n)
        panel.PMOM[n] = mesh.PMOM(n, NP);
    panel.PSIZ[1] = mesh.PSIZ(1, NP);
    panel.PSIZ[2] = mesh.PSIZ(2, NP);
    measure_regions(panel);
    return panel;
}
