// The method of solution, in one place: what assembly, memory plan and solution switch on.
#pragma once

#include "state/state.hpp"

enum class Method {
    direct,           // ISOLVE=1
    iterative_full,   // ISOLVE=0, the whole matrix in one place
    iterative_packed, // ISOLVE=0, packed rows with the diagonal in reciprocal form, those behind
                      // NCORE on file
    blocks            // ISOLVE above 1, that many blocks
};

inline Method method_of(const Options &opt, int NEQN) {
    if (opt.ISOLVE > 0)
        return opt.ISOLVE == 1 ? Method::direct : Method::blocks;
    return opt.NCORE < NEQN || opt.ISOLVN == 1 ? Method::iterative_packed : Method::iterative_full;
}
inline Method method_of(const RunState &run) {
    return method_of(run.opt, run.mesh.NEQN);
}
