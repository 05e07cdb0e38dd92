// The motions of the bodies, for the commands that need the whole wave.
#pragma once

#include "command.hpp"

#include "post/hull_state.hpp"

// Adds --fixed, --case, --density and the choice of periods and headings.
struct MovingRequest {
    std::shared_ptr<CaseRequest> of_case;
    bool fixed = false;
    std::vector<int> periods, headings; // from 1; empty: all
};
std::shared_ptr<MovingRequest> add_moving(CLI::App &app);

// Case, scales, motions and what is wanted of the run.
struct MovingBodies {
    LoadedCase of_case;
    Array<c64, 3> xi; // (NMODES,NBETA,NPER); empty when all bodies are held fixed
    std::vector<int> periods, headings;
    std::vector<std::string> notes;
    // Of one period; empty likewise.
    Motions motions(int t) const { return xi.empty() ? Motions() : Motions(xi.slice(t)); }
};
// Limit frequencies, which have no waves, are left out with a note. False with the reason in `error`: a
// period or heading that the run does not have; no period with waves; as form_motions.
[[nodiscard]] bool move_bodies(const MovingRequest &request, const P2fFile &p2f, MovingBodies &bodies,
                               std::string &error);
