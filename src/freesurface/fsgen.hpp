// Interior free-surface panels generated from the waterline.
#pragma once

#include "freesurface/surface_panels.hpp"
#include "state/state.hpp"

#include <string>
#include <vector>

// Covers the area inside the waterline of each body with new panels, behind the panels of the body, and
// writes all panels of the body to the geometry file idf_names[b - 1]. With ISOR=0 the panels are those of an
// advancing front, else rings, where these cover the inside once. NEQN, NEQNB, IPANB0 and IPANB1 follow, and
// the dipole arrays move with their panels. Bodies without a waterline, and with IFSLID those of BDTYP other
// than 0, are left as they are. The surface of a moonpool stays free. PSCALE is the wanted edge of a panel in
// mean sides of the waterline. Failed: the waterline is open, the front makes more than 2 NEQNB panels, no
// memory, or the file cannot be written.
[[nodiscard]] Status FSGEN(double PSCALE, const std::vector<std::string> &idf_names, RunState &run);

// Fills the area inside a waterline by the front: `sides` are those of all waterline panels of a body, in the
// order of their vertices, PSCALE as above, `limit` the most panels. Failed: the waterline is open, too many
// panels, or less than 95 per cent is covered.
[[nodiscard]] Status fill_waterline(const std::vector<WaterSide> &sides, SurfacePlanes planes, double PSCALE,
                                    std::int64_t limit, SurfacePanels &panels);
