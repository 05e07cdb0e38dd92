#include "freesurface/fsmark.hpp"

#include "state/messages.hpp"

namespace {

constexpr f32 VERTICAL = 0.9999f; // a normal with a larger vertical component is vertical
constexpr f32 SURFACE = -0.0001f; // a centroid above it lies in the free surface
constexpr f32 ABOVE = 1.0e-6f;    // and above this one out of the water

} // namespace

Status FSMARK(const Options &opt, Bodies &bodies, Mesh &mesh) {
    mesh.IFSP.fill(0);
    int i = 0;
    bool some_interior = false;
    for (int b = 1; b <= bodies.NBODY; ++b) {
        int interior = 0;
        for (int k = 1; k <= bodies.NEQNB(b); ++k) {
            ++i;
            const f32 n3 = mesh.TRM(3, 3, i);
            const f32 z = mesh.XCT(3, i);
            if (z <= SURFACE || opt.IRRX != 0)
                continue;
            if (n3 < -VERTICAL) {
                if (z > ABOVE)
                    return MSGOUT(" Interior free surface panel is above free surface: Index =", i);
                mesh.IFSP(i) = 1;
                ++interior;
            } else if (n3 > VERTICAL) {
                mesh.IFSP(i) = -1;
            }
        }
        bodies.NPANS(b) = bodies.NEQNB(b) - interior;
        some_interior = some_interior || interior > 0;
    }
    if (opt.IRR == 0 && some_interior)
        return MSGOUT("Interior free-surface panels are specified with IRR=0");
    return Status::ok;
}
