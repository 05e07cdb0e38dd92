// The geometry file of a body, and the global geometry file that names those of several bodies.
#pragma once

#include "base/text.hpp"
#include "input/typed.hpp"
#include "state/state.hpp"

#include <string>

// Reads FILNAM(1): the panels of one body, or, when its first number is not above 0, the index of NBODY
// bodies and their files. Fills XVER (divided by ULEN(1)), NEQN, the body arrays, the symmetry indices, the
// waterline lists, dipole records and XBODY. NBODY stays 0 in the single-body form. Panels that the
// solution cannot get by symmetry are mirrored.
[[nodiscard]] Status GDFRD(TypedInput &typed, RunState &run);

// What may be meant by numbers behind the panels.
constexpr const char *EXTRA_HINT =
    "; more panels than NEQN says, or dipole records without NDIPB = 1 behind NEQN";

// Pieces of both forms. A body number 0 stands for the single-body form; its messages name no body.

// Title, length scale, gravity and symmetry indices of a geometry file.
struct GdfHead {
    std::string title;
    f32 ULEN = 0;
    f32 GRAV = 0;
    int ISX = 0;
    int ISY = 0;
};
// The message with " for body N=" and the body behind it, if there is one, and what the reader found.
Status gdf_fault(const char *text, int body, const std::string &detail = {});
[[nodiscard]] Status read_gdf_title(const std::string &path, int body, FreeReader &in, GdfHead &head);
[[nodiscard]] Status read_gdf_symmetry(FreeReader &in, int body, GdfHead &head);
// The number of panels and the dipole marker of body `slot`, which is 1 in the single-body form.
[[nodiscard]] Status read_gdf_counts(FreeReader &in, int body, int slot, Bodies &bodies);
// XBODY of body `slot` from what was typed.
void place_body(int slot, const TypedInput &typed, f32 RULEN, Array<f32, 2> &XBODY);
// Where n panels go: from panel `first` on, times RULEN; no vertex may lie above z = `surface` [length].
struct PanelPlace {
    int first, n;
    f32 surface, RULEN;
};
[[nodiscard]] Status read_gdf_panels(FreeReader &in, const PanelPlace &place, Array<f32, 3> &XVER);
// With IRR=2 adds the interior free-surface panels of body `slot`, whose panels start at `first`, by
// projection; NEQNB(slot) counts them. Nothing otherwise.
[[nodiscard]] Status project_body(int slot, int first, RunState &run);
// Marks in mesh.projected which panels of a body are projections: the last of each block of `block` panels
// from the `hull`-th on. Images of a block follow it in its order.
[[nodiscard]] Status mark_projected(int slot, int first, int hull, int block, RunState &run);
// Mirrors the panels of body `slot`, which start at `first`, and their dipole records;
// NEQNB(slot) counts them.
[[nodiscard]] Status mirror_body(int slot, int first, RunState &run);
// Appends the waterline panels of body `slot` to the lists and counts them in NWLB(slot) and NWL.
[[nodiscard]] Status find_waterline(int body, int slot, int first, RunState &run);
// The several-body form, from NBODY on.
[[nodiscard]] Status read_bodies(FreeReader &in, TypedInput &typed, RunState &run);
