// The case file: what a hand-over file does not tell of its bodies and seas. Masses, moorings, points,
// spectra; in TOML, every key in docs/case.md.
#pragma once

#include "post/hydrostatics.hpp"
#include "post/mass_parts.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

// One row of the table of keys, from which the reader takes what it accepts; docs/case.md shows it.
struct CaseKey {
    // What a value has to be. modes: words that name modes; fractions: a table of mode = number; pairs: an
    // array of arrays of two numbers; triples: likewise of three; terms: likewise of a factor and three
    // powers; flag: true or false; choice: one of `choices`; series: an array of numbers or {from, to,
    // count}; sizes: a table of names with numbers, words or true.
    enum class Kind {
        number,
        positive,
        not_negative,
        count,
        three,
        six,
        square,
        word,
        modes,
        fractions,
        pairs,
        triples,
        terms,
        flag,
        choice,
        series,
        sizes
    };
    const char *table; // "" for the top, else the array of tables it stands in
    const char *key;
    Kind kind;
    const char *unit;
    const char *standard; // what holds when it is not given
    const char *meaning;
    const char *choices = ""; // "auto, on, off"
};
// What the bodies are and what moves them; and what vorda-run makes a run of. A case file may hold both: each
// program takes its own and holds all to these tables.
const std::vector<CaseKey> &case_keys();
const std::vector<CaseKey> &run_keys();
// Whether a table stands once, [waves], or as often as there are things of it, [[body]].
bool stands_once(const std::string &table);
// What a value has to be, in words.
std::string wanted(const CaseKey &key);
// The first as rows of a Markdown table, a line each; and both, with what values have to be.
std::string case_key_rows();
std::string run_key_rows();
// The rows of any keys, with what values have to be.
std::string key_rows(const std::vector<CaseKey> &keys);
// The line over them.
extern const char *const KEY_HEAD;

// Stiffness and damping between two bodies, or a body and the ground, at a place in global axes: forces along
// x, y, z and moments about them per relative motion there.
struct CaseSpring {
    int body = 1, to = 0; // 0: the ground
    Vec3 at{};
    std::array<double, 6> stiffness{}, damping{};
};
// A term of the stiffness and damping matrices, and its mirror image.
struct CaseCoupling {
    int i = 0, j = 0; // modes, from 1
    double stiffness = 0, damping = 0;
};
// Sections of a body, evenly along x.
struct CaseSections {
    int body = 1;
    std::vector<double> stations;
    double y = 0, z = 0;
};
struct CasePoint {
    std::string name;
    int body = 1;
    Vec3 at{}; // in the axes of the body
};
struct CaseSpectrum {
    std::string type; // jonswap, pierson-moskowitz, table
    double height = 0, period = 0, gamma = 1;
    double heading = 0;                            // [deg]
    double spreading = 0;                          // s of cos^2s; 0: long-crested
    double hours = 3;                              // of the sea state
    std::vector<std::pair<double, double>> values; // omega [rad/s], density [m^2 s]
};
using CaseMatrix = std::vector<std::vector<double>>;

struct CaseBody {
    std::optional<double> mass;
    std::optional<Vec3> centre, radii;
    std::optional<CaseMatrix> inertia; // 3 x 3, about the centre of gravity
    std::vector<MassPart> parts;       // in the place of the others; or empty
    CaseMatrix mass_matrix;        // of all its modes about its origin, in the place of the others; or empty
    CaseMatrix stiffness, damping; // external, of all its modes; or empty
    std::vector<std::pair<int, double>> critical; // modes, from 1 in the whole run, and fractions
};
struct CaseFile {
    double density = 0;           // 0: not given
    std::vector<CaseBody> bodies; // as many as the run has
    std::vector<int> fixed;       // modes, from 1
    std::vector<CaseSpring> springs;
    std::vector<CaseCoupling> couplings;
    std::vector<CaseSections> sections;
    std::vector<CasePoint> points;
    std::vector<CaseSpectrum> spectra;
};

// The case of a run without a case file.
CaseFile plain_case(const P2fFile &p2f);
// Reads a case file for the bodies and modes of p2f. False, with file, line and what is wrong there in
// `error`.
[[nodiscard]] bool read_case(const std::string &name, const P2fFile &p2f, CaseFile &file, std::string &error);

// Mass of a body by the case, what it leaves open as assumed_mass has it.
BodyMass mass_of(const CaseBody &body, const BodyHydrostatics &geometry, double density);
