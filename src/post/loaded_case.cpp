#include "post/loaded_case.hpp"

bool load_case(const std::string &name, double density, const P2fFile &p2f, LoadedCase &loaded,
               std::string &error) {
    loaded.file = plain_case(p2f);
    loaded.given = !name.empty();
    if (loaded.given && !read_case(name, p2f, loaded.file, error))
        return false;
    if (!dimensional_scales(p2f, density > 0 ? density : loaded.file.density, loaded.scales, error) ||
        !form_hydrostatics(p2f, loaded.bodies, error))
        return false;
    for (std::size_t b = 0; b < loaded.bodies.size(); ++b)
        loaded.masses.push_back(mass_of(loaded.file.bodies[b], loaded.bodies[b], loaded.scales.density));
    return true;
}

const char *const NO_CASE_NOTE =
    "No case file: each body has the mass of the water it displaces, its centre in the "
    "free surface, estimated radii of gyration.";
