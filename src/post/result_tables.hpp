// The results of vorda-p2f's commands as tables, dimensional.
#pragma once

#include "post/impulse.hpp"
#include "post/natural.hpp"
#include "post/point_waves.hpp"
#include "post/spectra.hpp"
#include "post/table_cells.hpp"

// "particulars": a row for each number of a body, with its unit. "stiffness": the matrix of each body by its
// parts, in the axes of the body or parallel to the global ones.
Table particulars_table(const std::vector<BodyHydrostatics> &bodies, const std::vector<BodyMass> &masses,
                        const Scales &scales);
Table stiffness_table(const P2fFile &p2f, const std::vector<BodyHydrostatics> &bodies,
                      const std::vector<BodyMass> &masses, const Scales &scales, bool global);

// "exciting": the force by both ways and its parts. "radiation": added mass and damping with their asymmetry
// and, where `far_field` (NMODES,NMODES,NPER) is not empty, the damping of the waves far away.
Table force_table(const P2fFile &p2f, const Scales &scales, const ExcitingForces &X,
                  const Convention &convention);
Table added_mass_table(const P2fFile &p2f, const Scales &scales, const RadiationForces &R,
                       const Array<double, 3> &far_field);

// The motions (NMODES,NBETA,NPER) of a case and the waves at its points.
struct MovingPoints {
    const Array<c64, 3> &xi;
    const PointWaves &waves;
};

// "raos", "points", "natural", "seas".
Table rao_table(const P2fFile &p2f, const Scales &scales, const Array<c64, 3> &xi,
                const Convention &convention);
Table point_table(const P2fFile &p2f, const Scales &scales, const CaseFile &file, const MovingPoints &moving,
                  const Convention &convention);
Table natural_table(const P2fFile &p2f, const std::vector<NaturalMode> &modes);
Table sea_table(const P2fFile &p2f, const Scales &scales, const CaseFile &file, const MovingPoints &moving);

// "check": added mass at infinite frequency both ways and what comes back. "radiation": K(t). "exciting":
// f(t).
Table impulse_check_table(const P2fFile &p2f, const Scales &scales, const ImpulseResponses &r);
Table radiation_response_table(const P2fFile &p2f, const Scales &scales, const ImpulseResponses &r);
Table exciting_response_table(const P2fFile &p2f, const Scales &scales, const ImpulseResponses &r);
