#include "post/case_file.hpp"

const std::vector<CaseKey> &case_keys() {
    using K = CaseKey::Kind;
    static const std::vector<CaseKey> KEYS = {
        {"", "density", K::positive, "kg/m^3", "1025", "density of the water; `--density` goes before it"},
        {"body", "number", K::count, "", "the place in the file", "which body of the run"},
        {"body", "mass", K::positive, "kg", "that of the displaced water", "mass"},
        {"body", "centre", K::three, "m", "over the centre of buoyancy, in the free surface",
         "centre of gravity, body axes"},
        {"body", "radii", K::three, "m", "0.4 beam, 0.25 length, 0.25 length",
         "radii of gyration about axes through the centre of gravity"},
        {"body", "inertia", K::square, "kg m^2", "from `radii`",
         "3 x 3 inertia about the centre of gravity, in the place of `radii`"},
        {"body", "mass_matrix", K::square, "kg m^k", "from the above",
         "matrix of all modes of the body about its origin, in the place of `radii` and `inertia`"},
        {"body", "stiffness", K::square, "N/m m^k", "0", "external stiffness of all modes of the body"},
        {"body", "damping", K::square, "N s/m m^k", "0", "external damping, likewise"},
        {"body", "critical", K::fractions, "", "0",
         "damping as a fraction of the critical damping of a mode: `{roll = 0.05}`"},
        {"body", "fixed", K::modes, "", "none", "modes that are held: `[\"surge\", \"yaw\"]`"},
        {"spring", "body", K::count, "", "1", "body that it holds"},
        {"spring", "to", K::count, "", "0, the ground", "what it is fastened to: another body or the ground"},
        {"spring", "at", K::three, "m", "0, 0, 0", "place, global axes"},
        {"spring", "stiffness", K::six, "N/m, N m/rad", "0",
         "forces along and moments about global x, y, z by the relative motion there"},
        {"spring", "damping", K::six, "N s/m, N m s/rad", "0", "likewise by the relative velocity"},
        {"coupling", "modes", K::modes, "", "must be given",
         "two modes: `[\"1.heave\", \"2.heave\"]`; the body may be left out when there is one"},
        {"coupling", "stiffness", K::number, "N/m m^k", "0",
         "term of the stiffness matrix and its transpose"},
        {"coupling", "damping", K::number, "N s/m m^k", "0", "term of the damping matrix, likewise"},
        {"part", "body", K::count, "", "1",
         "body whose mass it is a part of, in the place of `mass`, `centre` and `radii`"},
        {"part", "mass", K::positive, "kg", "must be given", "mass, spread evenly along x"},
        {"part", "from", K::number, "m", "must be given", "where it begins along x, body axes"},
        {"part", "to", K::number, "m", "as `from`", "where it ends; a point mass when that is one place"},
        {"part", "y", K::number, "m", "0", "place of its centre across"},
        {"part", "z", K::number, "m", "0", "height of its centre"},
        {"part", "radius_y", K::not_negative, "m", "0", "radius of the mass about its centre along y"},
        {"part", "radius_z", K::not_negative, "m", "0", "likewise along z"},
        {"section", "body", K::count, "", "1", "body that is cut, of parts"},
        {"section", "from", K::number, "m", "must be given", "first section along x, body axes"},
        {"section", "to", K::number, "m", "as `from`", "last section"},
        {"section", "count", K::count, "", "1", "number of sections"},
        {"section", "y", K::number, "m", "0", "place across that moments are taken about"},
        {"section", "z", K::number, "m", "0", "height that moments are taken about"},
        {"point", "name", K::word, "", "its number", "what the tables call it"},
        {"point", "body", K::count, "", "1", "body that it moves with"},
        {"point", "at", K::three, "m", "must be given", "place, body axes"},
        {"spectrum", "type", K::word, "", "`\"jonswap\"`",
         "`\"jonswap\"`, `\"pierson-moskowitz\"` or `\"table\"`"},
        {"spectrum", "height", K::positive, "m", "must be given, not for a table", "significant wave height"},
        {"spectrum", "period", K::positive, "s", "must be given, not for a table", "peak period"},
        {"spectrum", "gamma", K::positive, "", "3.3", "peakedness of a JONSWAP spectrum"},
        {"spectrum", "values", K::pairs, "rad/s, m^2 s", "must be given for a table",
         "frequencies, rising, and spectral densities"},
        {"spectrum", "heading", K::number, "deg", "0", "mean direction that the waves travel to"},
        {"spectrum", "spreading", K::not_negative, "", "0, long-crested",
         "s of the spreading cos^2s of half the angle from the mean direction"},
        {"spectrum", "hours", K::positive, "h", "3", "length of the sea state"},
    };
    return KEYS;
}

std::string case_key_rows() {
    std::string rows;
    for (const CaseKey &key : case_keys()) {
        const std::string table = *key.table == '\0' ? "" : "`[[" + std::string(key.table) + "]]` ";
        rows += "| " + table + "`" + key.key + "` | " + key.unit + " | " + key.standard + " | " +
                key.meaning + " |\n";
    }
    return rows;
}
