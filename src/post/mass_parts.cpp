#include "post/mass_parts.hpp"

RigidMatrix mass_matrix(const std::vector<MassPart> &parts) {
    RigidMatrix M{};
    for (const MassPart &part : parts) {
        const double m = part.mass, x = (part.from + part.to) / 2, y = part.y, z = part.z;
        const double along = (part.to - part.from) * (part.to - part.from) / 12,
                     y2 = part.radius_y * part.radius_y, z2 = part.radius_z * part.radius_z;
        for (std::size_t c = 0; c < 3; ++c)
            M[c][c] += m;
        const double arms[3][3] = {{0, z, -y}, {-z, 0, x}, {y, -x, 0}};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) {
                M[i][j + 3] += m * arms[i][j];
                M[j + 3][i] += m * arms[i][j];
            }
        const double inertia[3][3] = {{y * y + z * z + y2 + z2, -x * y, -x * z},
                                      {-x * y, x * x + z * z + along + z2, -y * z},
                                      {-x * z, -y * z, x * x + y * y + along + y2}};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                M[i + 3][j + 3] += m * inertia[i][j];
    }
    return M;
}

PartsTogether together(const std::vector<MassPart> &parts) {
    PartsTogether whole;
    for (const MassPart &part : parts) {
        const double at[3] = {(part.from + part.to) / 2, part.y, part.z};
        whole.mass += part.mass;
        for (std::size_t c = 0; c < 3; ++c)
            whole.centre[c] += part.mass * at[c];
    }
    for (double &c : whole.centre)
        c /= whole.mass > 0 ? whole.mass : 1;
    std::vector<MassPart> moved = parts;
    for (MassPart &part : moved) {
        part.from -= whole.centre[0];
        part.to -= whole.centre[0];
        part.y -= whole.centre[1];
        part.z -= whole.centre[2];
    }
    const RigidMatrix M = mass_matrix(moved);
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            whole.inertia[i][j] = M[i + 3][j + 3];
    return whole;
}
