#include "freesurface/generated_file.hpp"

#include "base/platform.hpp"

#include "base/text.hpp"
#include "state/messages.hpp"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

// The dimensional value that is read as x: the least of those near to it, so that a vertex in the free
// surface is not read as one above it.
f32 dimensional(f32 x, f32 ULEN, f32 RULEN) {
    constexpr f32 infinity = std::numeric_limits<f32>::infinity();
    f32 least = x * ULEN;
    f32 value = least;
    for (int k = 0; k < 3; ++k)
        least = std::nextafter(least, -infinity);
    for (int k = 0; k < 7; ++k) {
        if (least * RULEN == x)
            return least;
        least = std::nextafter(least, infinity);
    }
    return value;
}

bool write_panels(const RunState &run, int first, int n, std::FILE *file) {
    const auto XVER = run.mesh.XVER.view();
    const f32 ULEN = run.bodies.ULEN(1);
    bool good = true;
    for (int p = first; good && p < first + n; ++p) {
        for (int v = 1; v <= 4; ++v) {
            f32 x[3];
            for (int c = 1; c <= 3; ++c)
                x[c - 1] = dimensional(XVER(v, c, p), ULEN, run.opt.RULEN);
            good = std::fprintf(file, " %.9g %.9g %.9g\n", static_cast<double>(x[0]),
                                static_cast<double>(x[1]), static_cast<double>(x[2])) > 0;
        }
    }
    return good;
}

bool write_all(const RunState &run, int body, int first, std::FILE *file) {
    const std::string &source = run.files.FILNAM(run.bodies.NBODY == 0 ? 1 : body + 4);
    const int n = run.bodies.NEQNB(body);
    const bool dipoles = run.dipoles.IDIPOL && run.bodies.NDIPB(body) == 1;
    bool good =
        std::fprintf(file, " Free surface discretizaton; GDF=%s\n %.9g %.9g\n %d %d\n %d%s\n",
                     text_at_least(20, source).c_str(), static_cast<double>(run.bodies.ULEN(body)),
                     static_cast<double>(run.opt.GRAV), run.opt.ISX, run.opt.ISY, n, dipoles ? " 1" : "") > 0;
    good = good && write_panels(run, first, n, file);
    for (int p = first; good && dipoles && p < first + n; ++p)
        good =
            std::fprintf(file, " %d %.9g %.9g %.9g\n", run.dipoles.IDIP(p),
                         static_cast<double>(run.dipoles.DPORA(p)), static_cast<double>(run.dipoles.DPORB(p)),
                         static_cast<double>(run.dipoles.DTHK(p))) > 0;
    return good;
}

} // namespace

Status write_generated_geometry(const RunState &run, int body, int first, const std::string &name) {
    for (int i = 1; i <= static_cast<int>(run.files.FILNAM.entry.size()); ++i) {
        // Entry 4 is the name of this file itself.
        if (i != 4 && same_file(run.files.FILNAM(i), name))
            return MSGOUT_with("The generated geometry file would replace another file, body N=", body,
                               name + ": give that file another extension");
    }
    // Written under another name first: whoever finds the file finds all of it.
    const std::string part = name + ".part";
    const auto fault = [&] {
        const std::string why = std::strerror(errno);
        std::remove(part.c_str());
        return MSGOUT_with("Error writing generated geometry file of body N=", body, name + ": " + why);
    };
    std::FILE *const file = std::fopen(part.c_str(), "w");
    if (file == nullptr)
        return fault();
    const bool written = write_all(run, body, first, file);
    if (std::fclose(file) != 0 || !written)
        return fault();
    return std::rename(part.c_str(), name.c_str()) == 0 ? Status::ok : fault();
}
