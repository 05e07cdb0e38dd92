#include "freesurface/fsgen.hpp"
#include "geometry/dipoles.hpp"
#include "input/input.hpp"
#include "input/names.hpp"
#include "state/messages.hpp"

#include <algorithm>

Status generate_free_surface(RunState &run) {
    constexpr double PSCALE = 1.4;
    constexpr int IDF = 6; // place in EXTS
    NameTable &FILNAM = run.files.FILNAM;
    std::vector<std::string> names;
    for (int b = 1; b <= std::max(run.bodies.NBODY, 1); ++b) {
        SETEXT(FILNAM, run.bodies.NBODY == 0 ? 1 : b + 4, 4, IDF);
        names.push_back(FILNAM(4));
    }
    if (failed(FSGEN(PSCALE, names, run)))
        return Status::failed;
    return run.dipoles.IDIPOL ? DIPGRW(run.mesh.NEQN, run.dipoles) : Status::ok;
}

void choose_solver(Options &opt, int NEQN) {
    if (NEQN > opt.MAXSCR && opt.ISOLVE == 1 && opt.IWADD == 0) {
        opt.ISOLVE = NEQN / opt.MAXSCR + 1;
        message("Switched from direct solver to block-iterative solver");
        message("Because matrix is too large");
    }
    if (opt.ISOLVE > 1)
        BLKSIZ(NEQN, opt.NBLKSZ, opt.NBLKLS, opt.ISOLVE);
}

void BLKSIZ(int NEQN, int &NBLKSZ, int &NBLKLS, int &ISOLVE) {
    NBLKSZ = static_cast<int>((static_cast<std::int64_t>(NEQN) + ISOLVE - 1) / ISOLVE);
    if (NBLKSZ == 1) {
        ISOLVE = 0;
        message("WARNING: Block size = 1 ; ISOLVE is reset to =", ISOLVE);
    } else if (NBLKSZ == NEQN) {
        ISOLVE = 1;
        message("WARNING: Block size = NEQN ; ISOLVE is reset to =", ISOLVE);
    } else {
        const int rest = NEQN % NBLKSZ;
        const int blocks = NEQN / NBLKSZ + (rest != 0 ? 1 : 0);
        NBLKLS = rest != 0 ? rest : NBLKSZ;
        if (blocks != ISOLVE)
            message("WARNING: Number of blocks is reset to ", blocks);
        ISOLVE = blocks;
    }
}
