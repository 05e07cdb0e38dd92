#include "geometry/dipoles.hpp"

#include "state/messages.hpp"

#include <cmath>

namespace {

constexpr f32 STEP_FACTOR = 0.125f; // step of the finite differences, in roots of the panel's area

template <class T> bool grow(std::int64_t size, Array<T, 1> &array) {
    return array.empty() ? array.alloc(size) : array.resize_last(size);
}

} // namespace

Status DIPGRW(std::int64_t size, Dipoles &dipoles) {
    if (!dipoles.IDIP.empty() && dipoles.IDIP.dim(1) >= size)
        return Status::ok;
    if (!grow(size, dipoles.IDIP) || !grow(size, dipoles.DPORA) || !grow(size, dipoles.DPORB) ||
        !grow(size, dipoles.DTHK))
        return MSGOUT("Insufficient memory to allocate arraies for dipole difination");
    return Status::ok;
}

Status read_dipoles(FreeReader &in, int first, int n, Dipoles &dipoles) {
    if (failed(DIPGRW(static_cast<std::int64_t>(first) + n - 1, dipoles)))
        return Status::failed;
    for (int i = first; i < first + n; ++i) {
        if (!in.read(dipoles.IDIP(i), dipoles.DPORA(i), dipoles.DPORB(i), dipoles.DTHK(i)))
            return MSGOUT_with("Error reading GDF file, incorrect dipole input", 0, in.fault());
    }
    return Status::ok;
}

Status mirror_dipoles(int first, int n, int total, Dipoles &dipoles) {
    if (failed(DIPGRW(static_cast<std::int64_t>(first) + total - 1, dipoles)))
        return Status::failed;
    for (int i = first + n; i < first + total; ++i) {
        dipoles.IDIP(i) = dipoles.IDIP(i - n);
        dipoles.DPORA(i) = dipoles.DPORA(i - n);
        dipoles.DPORB(i) = dipoles.DPORB(i - n);
        dipoles.DTHK(i) = dipoles.DTHK(i - n);
    }
    return Status::ok;
}

Status INIT_DIPOLE(const Mesh &mesh, Dipoles &dipoles) {
    if (!dipoles.DEPS.alloc(mesh.NEQN))
        return MSGOUT("RAM insufficient to allocate arrays in INIT_DIPOLE ");
    for (int i = 1; i <= mesh.NEQN; ++i) {
        if (dipoles.IDIP(i) == 0)
            continue;
        dipoles.DEPS(i) = STEP_FACTOR * std::sqrt(mesh.PMOM(1, i));
        if (mesh.IFSP(i) != 0)
            return MSGOUT("Dipole not allowed on the free surface!");
    }
    return Status::ok;
}
