#include "modes/mode_file.hpp"

#include "modes/mode_types.hpp"

const std::vector<CaseKey> &mode_keys() {
    using K = CaseKey::Kind;
    static const std::string types = mode_type_names();
    static const std::vector<CaseKey> KEYS = [] {
        std::vector<CaseKey> keys = {
            {"", "title", K::word, "", "the name of this file", "second title line of the MOD file"},
            {"", "unit_length", K::positive, "m", "1", "`ULEN` of the geometry file"},
            {"", "gravity", K::positive, "m/s^2", "9.80665", "acceleration of gravity, for weights"},
            {"", "place", K::three, "m", "0, 0, 0", "origin of the body in global axes, as in `XBODY`"},
            {"", "heading", K::number, "deg", "0", "angle of its x axis, as in `XBODY`"},
            {"", "number", K::count, "", "1", "number of the body in the run, for `--case`"},
            {"mode", "type", K::choice, "", "must be given", "kind of the mode, see below", types.c_str()},
            {"mode", "number", K::count, "", "1",
             "of a beam: which of its modes, from the lowest; of points: which displacement of a line"},
            {"mode", "direction", K::choice, "", "`\"vertical\"`",
             "of a beam: bending upwards, bending to y, or torsion about x", "vertical, horizontal, torsion"},
            {"mode", "from", K::number, "m", "must be given for a beam",
             "its aft end; a cantilever is held there"},
            {"mode", "to", K::number, "m", "must be given for a beam", "its fore end, where the mode is 1"},
            {"mode", "y", K::number, "m", "0", "place of the beam's axis across"},
            {"mode", "z", K::number, "m", "0", "height of the beam's axis, from the origin of the body"},
            {"mode", "dx", K::terms, "m/m^k", "0", "of a polynomial: displacement along x"},
            {"mode", "dy", K::terms, "m/m^k", "0", "displacement along y"},
            {"mode", "dz", K::terms, "m/m^k", "0", "displacement along z"},
            {"mode", "at", K::three, "m", "must be given for a hinge", "a place on the axis of the hinge"},
            {"mode", "axis", K::choice, "", "`\"y\"`", "what it turns about", "x, y, z"},
            {"mode", "fore", K::number, "rad", "1",
             "turn of what lies before the hinge, x above that of `at`"},
            {"mode", "aft", K::number, "rad", "0", "turn of what lies behind it"},
            {"mode", "spring", K::not_negative, "N m/rad", "0",
             "moment of the hinge per turn of one part against the other"},
            {"mode", "file", K::word, "", "must be given for points",
             "CSV file: x, y, z, and three displacements for each mode a line"},
            {"mode", "method", K::choice, "", "`\"least-squares\"`",
             "how displacements are taken between points: linear fit by moving least squares, or the mean "
             "by the inverse square of the distance",
             "least-squares, inverse-distance"},
            {"mode", "neighbours", K::count, "", "12", "nearest points that count at a place, 4 at least"},
            {"mode", "like", K::choice, "", "found from the shape", "rigid mode that it has the symmetry of",
             "surge, sway, heave, roll, pitch, yaw"},
            {"mode", "mass", K::not_negative, "kg", "from `[[part]]`",
             "generalised mass; the mode then shares no mass with others"},
            {"mode", "stiffness", K::not_negative, "N/m", "from `[[beam]]` and `spring`",
             "generalised stiffness, likewise"},
        };
        for (const CaseKey &key : case_keys())
            if (std::string("part") == key.table && std::string("body") != key.key)
                keys.push_back(key);
        const std::vector<CaseKey> beam = {
            {"beam", "from", K::number, "m", "must be given", "where a stretch of the beam begins along x"},
            {"beam", "to", K::number, "m", "must be given", "where it ends"},
            {"beam", "ei_vertical", K::not_negative, "N m^2", "0", "bending stiffness, upwards"},
            {"beam", "ei_horizontal", K::not_negative, "N m^2", "0", "bending stiffness, to y"},
            {"beam", "gj", K::not_negative, "N m^2", "0", "torsional stiffness"},
        };
        keys.insert(keys.end(), beam.begin(), beam.end());
        return keys;
    }();
    return KEYS;
}
