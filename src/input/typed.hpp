// What the input files hold in units of their own, as typed. GETIP1 turns it into the run state, once.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"

#include <map>

struct TypedInput {
    f32 HBOT = 0;              // depth, 0 or less: infinite [length]
    Array<f32, 2> XBODY;       // origin of each body [length] and heading [degrees] (4,NBODY)
    std::map<int, int> NEWMDS; // extra modes of the bodies that the configuration file names
    Array<f32, 1> PER;         // periods, frequencies or wave numbers, by IPERIO (NPER)
};
