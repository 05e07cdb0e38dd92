// A case with what it gives a hand-over file: scales, bodies and masses.
#pragma once

#include "post/case_file.hpp"

struct LoadedCase {
    CaseFile file;
    Scales scales;
    std::vector<BodyHydrostatics> bodies;
    std::vector<BodyMass> masses;
    bool given = false; // there is a case file
};
// Reads the case file `name`, if it is not empty; density 0: that of the case file, or sea water. False, with
// the reason in `error`: as read_case, dimensional_scales and form_hydrostatics.
[[nodiscard]] bool load_case(const std::string &name, double density, const P2fFile &p2f, LoadedCase &loaded,
                             std::string &error);

// What is to be said of results without a case file.
extern const char *const NO_CASE_NOTE;
