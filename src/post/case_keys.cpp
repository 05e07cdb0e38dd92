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

// What vorda-run makes a run of.
const std::vector<CaseKey> &run_keys() {
    using K = CaseKey::Kind;
    static const std::vector<CaseKey> KEYS = {
        {"", "depth", K::not_negative, "m", "0, infinite", "depth of the water"},
        {"", "gravity", K::positive, "m/s^2", "9.80665", "acceleration of gravity"},
        {"waves", "periods", K::series, "s", "one of the three must be given", "wave periods"},
        {"waves", "frequencies", K::series, "rad/s", "", "circular frequencies instead"},
        {"waves", "wave_numbers", K::series, "rad/m", "", "wave numbers at the depth instead"},
        {"waves", "headings", K::series, "deg", "0", "directions that the waves travel to, from the x axis"},
        {"waves", "limits", K::flag, "", "false", "zero and infinite frequency as well"},
        {"body", "mesh", K::word, "", "this or `maker`",
         "geometry file (.gdf), or a file of another program that `vorda-mesh import` reads"},
        {"body", "maker", K::word, "", "this or `mesh`", "hull of `vorda-mesh`: box, cylinder, semisub ..."},
        {"body", "sizes", K::sizes, "m", "as `vorda-mesh MAKER --help` says",
         "sizes and counts of the maker"},
        {"body", "scale", K::positive, "", "1", "factor of the lengths of an imported file"},
        {"body", "draught", K::positive, "m", "as the file lies, z = 0 in the surface",
         "depth of the lowest point of an imported file"},
        {"body", "size", K::positive, "m", "a fortieth of its extent", "length of the panels of a CAD model"},
        {"body", "recombine", K::flag, "", "false",
         "joins triangles of an imported file to quadrilaterals: half as many panels"},
        {"body", "part", K::choice, "", "`\"auto\"`, as symmetry allows",
         "part of the body that is panelled, of an import or maker", "auto, full, half-x, half-y, quarter"},
        {"body", "place", K::three, "m", "0, 0, 0", "its origin in global axes, z = 0 in the free surface"},
        {"body", "heading", K::number, "deg", "0", "angle of its x axis from the global one"},
        {"body", "wall", K::choice, "", "none",
         "a wall in the plane x = 0 or y = 0; a body that stands in the wall is half a body", "x, y"},
        {"treatment", "irregular", K::choice, "", "`\"auto\"`",
         "irregular frequencies: auto makes panels inside each body that reaches the surface, given takes "
         "those "
         "of the mesh, off does nothing",
         "auto, given, off"},
        {"treatment", "sources", K::choice, "", "`\"auto\"`, when an output needs them",
         "source strengths and velocities, for drift by pressures", "auto, on, off"},
        {"treatment", "solver", K::choice, "", "`\"auto\"`, direct below 1500 unknowns",
         "how equations are solved", "auto, direct, iterative"},
        {"treatment", "memory", K::positive, "GB", "what there is", "memory for the matrix of one period"},
        {"treatment", "threads", K::count, "", "0, all", "threads at most"},
        {"outputs", "report", K::flag, "", "true", "`report.html`"},
        {"outputs", "netcdf", K::flag, "", "false", "`results.nc`"},
        {"outputs", "hdf5", K::flag, "", "false", "`results.h5`"},
        {"outputs", "vtu", K::flag, "", "false", "`hull.vtu`"},
        {"outputs", "csv", K::flag, "", "false", "folder `tables`"},
        {"outputs", "drift", K::flag, "", "true", "mean drift in the report, by pressures as well"},
        {"outputs", "impulse", K::flag, "", "false", "impulse responses, `impulse.csv`"},
        {"outputs", "points", K::triples, "m", "none",
         "points of the fluid for the waves there, `field.csv`"},
        {"outputs", "grid", K::six, "m, and counts", "none",
         "level grid instead: x from, to, number of points, y likewise"},
        {"outputs", "level", K::number, "m", "0, the surface", "z of the grid"},
    };
    return KEYS;
}

bool stands_once(const std::string &table) {
    return table == "waves" || table == "treatment" || table == "outputs";
}

namespace {

std::string row_of(const CaseKey &key, const std::string &value) {
    const std::string kind(key.table), open = stands_once(kind) ? "`[" : "`[[",
                                       close = stands_once(kind) ? "]` " : "]]` ";
    return "| " + (kind.empty() ? "" : open + kind + close) + "`" + key.key + "` | " + value + key.unit +
           " | " + key.standard + " | " + key.meaning + " |\n";
}

} // namespace

std::string case_key_rows() {
    std::string rows;
    for (const CaseKey &key : case_keys())
        rows += row_of(key, "");
    return rows;
}

const char *const KEY_HEAD = "| Key | Value | Unit | Default | Meaning |\n|---|---|---|---|---|\n";

std::string key_rows(const std::vector<CaseKey> &keys) {
    std::string rows;
    for (const CaseKey &key : keys)
        rows += row_of(key, wanted(key) + " | ");
    return rows;
}

std::string run_key_rows() {
    return key_rows(run_keys()) + key_rows(case_keys());
}
