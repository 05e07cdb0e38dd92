#include "input/gdf.hpp"

#include "freesurface/fsproj.hpp"
#include "freesurface/mirror.hpp"
#include "freesurface/waterline.hpp"
#include "geometry/dipoles.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr f32 SHORTEST_LENGTH = 1.0e-5f; // ULEN below it is no length
constexpr f32 LARGEST_LENGTH = 1.0e9f;   // in ULEN
constexpr f32 ABOVE_SURFACE = 1.0e-6f; // dimensional height from which on a vertex is above the free surface

// ISX or ISY as the choice of planes sees it: 1 for a plane that may have to be mirrored (1 and -2), else 0.
int mirror_index(int index) {
    return std::max(index, -1 - index);
}

// Mirrors the one body of a run in the planes that it does not lie symmetrically about: all when it is
// turned, else those that it is shifted out of.
Status mirror_single_body(RunState &run) {
    Options &opt = run.opt;
    const f32 *XBODY = run.bodies.XBODY.data();
    const int a = mirror_index(opt.ISX);
    const int b = mirror_index(opt.ISY);
    if (a == 0 && b == 0)
        return Status::ok;
    const bool turned = XBODY[3] != 0;
    if (!turned && (a > 1 || b > 1))
        return Status::ok; // no legal index: the cross-checks refuse it
    const bool in_x = a == 1 && (turned || XBODY[0] != 0);
    const bool in_y = b == 1 && (turned || XBODY[1] != 0);
    // An index that is set aside keeps its plane out of the mirroring.
    const int ISX = opt.ISX;
    const int ISY = opt.ISY;
    if (a == 1 && !in_x)
        opt.ISX = 0;
    if (b == 1 && !in_y)
        opt.ISY = 0;
    const Status status = in_x || in_y ? mirror_body(1, 1, run) : Status::ok;
    if (a == 1 && !in_x)
        opt.ISX = ISX;
    if (b == 1 && !in_y)
        opt.ISY = ISY;
    return status;
}

// Only the end of the file may follow, or a 0.
Status check_single_end(FreeReader &in) {
    int extra = 0;
    if (in.read(extra) ? extra == 0 : in.ended())
        return Status::ok;
    return MSGOUT_with("Error:  Extra data at end of geometric data file", 0,
                       (in.fault().empty() ? in.place() + ": found " + std::to_string(extra) : in.fault()) +
                           EXTRA_HINT);
}

Status read_single(FreeReader &in, GdfHead &head, const TypedInput &typed, RunState &run) {
    Bodies &bodies = run.bodies;
    Mesh &mesh = run.mesh;
    if (head.ULEN < SHORTEST_LENGTH)
        return MSGOUT("Error in GDF file: Body length ULEN less than 1.E-5");
    if (failed(read_gdf_symmetry(in, 0, head)))
        return Status::failed;
    run.opt.RULEN = 1.0f / head.ULEN;
    run.opt.ISX = head.ISX;
    run.opt.ISY = head.ISY;
    if (!bodies.NDIPB.alloc(1) || !bodies.XBODY.alloc(4, 1))
        return gdf_fault("RAM is not sufficient to read .gdf inputs", 0);
    if (failed(read_gdf_counts(in, 0, 1, bodies)))
        return Status::failed;
    const int n = bodies.NEQNB(1);
    if (!mesh.XVER.alloc(4, 3, n))
        return gdf_fault("RAM is not sufficient to read .gdf inputs", 0);
    if (failed(read_gdf_panels(in, {1, n, -typed.XBODY(3, 1), run.opt.RULEN}, mesh.XVER)))
        return Status::failed;
    if (bodies.NDIPB(1) != 0 && failed(read_dipoles(in, 1, n, run.dipoles)))
        return Status::failed;
    if (failed(check_single_end(in)))
        return Status::failed;
    place_body(1, typed, run.opt.RULEN, bodies.XBODY);
    if (failed(project_body(1, 1, run)))
        return Status::failed;
    const int block = bodies.NEQNB(1);
    if (failed(mirror_single_body(run)) || failed(mark_projected(1, 1, n, block, run)) ||
        failed(find_waterline(0, 1, 1, run)))
        return Status::failed;
    bodies.NBODY = 0;
    bodies.NMODES = bodies.NEWMDS(1) + 6;
    mesh.NEQN = bodies.NEQNB(1);
    return Status::ok;
}

// Settles IDIPOL. Records that no body's marker calls for are dropped.
Status settle_dipoles(RunState &run) {
    Dipoles &dipoles = run.dipoles;
    const Array<int, 1> &NDIPB = run.bodies.NDIPB;
    dipoles.IDIPOL = false;
    for (int n = 1; n <= NDIPB.dim(1); ++n) {
        dipoles.IDIPOL = dipoles.IDIPOL || NDIPB(n) == 1;
        if (NDIPB(n) != 0 && NDIPB(n) != 1)
            message("Warning: NDIPB is not 1, dipole records do not count in GDF file, NDIPB=", NDIPB(n));
    }
    if (!dipoles.IDIPOL) {
        dipoles = Dipoles();
        return Status::ok;
    }
    return DIPGRW(run.mesh.NEQN, dipoles);
}

} // namespace

Status gdf_fault(const char *text, int body, const std::string &detail) {
    return body == 0 ? MSGOUT_with(text, 0, detail)
                     : MSGOUT_with(std::string(text) + " for body N=", body, detail);
}

Status read_gdf_title(const std::string &path, int body, FreeReader &in, GdfHead &head) {
    if (!in.open(path))
        return gdf_fault(body == 0 ? "Error opening GDF file " : "Error opening GDF file", body, in.fault());
    if (!in.line(head.title, 72))
        return gdf_fault(body == 0 ? "Error reading GDF file, header line" : "Error reading GDF file header",
                         body, in.fault());
    if (!in.read(head.ULEN, head.GRAV))
        return gdf_fault("Error reading GDF file, ULEN,GRAV line", body, in.fault());
    return Status::ok;
}

Status read_gdf_symmetry(FreeReader &in, int body, GdfHead &head) {
    if (!in.read(head.ISX, head.ISY))
        return gdf_fault("Error reading GDF file, symmetry indices ISX,ISY", body, in.fault());
    return Status::ok;
}

Status read_gdf_counts(FreeReader &in, int body, int slot, Bodies &bodies) {
    bodies.NDIPB(slot) = 0;
    const bool good =
        in.NITEMS() == 2 ? in.read(bodies.NEQNB(slot), bodies.NDIPB(slot)) : in.read(bodies.NEQNB(slot));
    if (!good)
        return gdf_fault("Error reading GDF file, NEQN line", body, in.fault());
    if (bodies.NEQNB(slot) < 1)
        return gdf_fault("Error reading GDF file, NEQN line", body,
                         in.place() + ": the number of panels must be at least 1");
    if (in.number_follows() && in.rest()[0] != '0') {
        message("WARNING: a second number behind NEQN does not count as NDIPB");
        message_detail(in.place() + ": \"" + in.rest() + "\"; write two numbers, the first behind a blank");
    }
    return Status::ok;
}

void place_body(int slot, const TypedInput &typed, f32 RULEN, Array<f32, 2> &XBODY) {
    for (int c = 1; c <= 3; ++c)
        XBODY(c, slot) = typed.XBODY(c, slot) * RULEN;
    XBODY(4, slot) = typed.XBODY(4, slot);
}

Status read_gdf_panels(FreeReader &in, const PanelPlace &place, Array<f32, 3> &XVER) {
    const f32 limit = ABOVE_SURFACE + place.surface;
    for (int i = 1; i <= place.n; ++i) {
        f32 xyz[12];
        if (!in.read_array(xyz, 12))
            return MSGOUT_with("Error reading GDF file, vertices XVER of panel N=", i, in.fault());
        for (int v = 1; v <= 4; ++v) {
            const f32 *vertex = xyz + 3 * (v - 1);
            if (vertex[2] > limit)
                return MSGOUT_with("Error in GDF file: vertex above free surface for panel N=", i,
                                   in.place() + ": vertex " + std::to_string(v) +
                                       " at z =" + sci(12, 4, vertex[2] - place.surface));
            for (int c = 0; c < 3; ++c) {
                if (std::fabs(vertex[c] * place.RULEN) > LARGEST_LENGTH)
                    return MSGOUT_with("Error in GDF file: vertex out of proportion to ULEN for panel N=", i,
                                       in.place() + ": vertex " + std::to_string(v) + sci(12, 4, vertex[c]));
            }
            for (int c = 1; c <= 3; ++c)
                XVER(v, c, place.first + i - 1) = vertex[c - 1] * place.RULEN;
        }
    }
    return Status::ok;
}

Status project_body(int slot, int first, RunState &run) {
    if (run.opt.IRR != 2)
        return Status::ok;
    View<const int, 1> IDIP;
    if (run.bodies.NDIPB(slot) == 1)
        IDIP = run.dipoles.IDIP;
    return FSPROJ(first, run.bodies.NEQNB(slot), run.bodies.XBODY(3, slot), IDIP, run.mesh.XVER);
}

Status mark_projected(int slot, int first, int hull, int block, RunState &run) {
    if (run.opt.IRR != 2)
        return Status::ok;
    Array<int, 1> &projected = run.mesh.projected;
    const int n = run.bodies.NEQNB(slot);
    const std::int64_t end = static_cast<std::int64_t>(first) + n - 1;
    if (!(projected.empty() ? projected.alloc(end) : projected.resize_last(end)))
        return MSGOUT(" For IRR=2, RAM too small for free-surface panels");
    for (int i = 0; i < n; ++i)
        projected(first + i) = i % block >= hull ? 1 : 0;
    return Status::ok;
}

Status mirror_body(int slot, int first, RunState &run) {
    int &NEQNB = run.bodies.NEQNB(slot);
    const int n = NEQNB;
    if (failed(REFLEC(first, NEQNB, run.opt.ISX, run.opt.ISY, run.mesh.XVER)))
        return Status::failed;
    if (run.bodies.NDIPB(slot) == 0 || NEQNB == n)
        return Status::ok;
    return mirror_dipoles(first, n, NEQNB, run.dipoles);
}

Status find_waterline(int body, int slot, int first, RunState &run) {
    Waterline &line = run.waterline;
    const int n = run.bodies.NEQNB(slot);
    const std::int64_t room = static_cast<std::int64_t>(first) + n - 1;
    const bool made = line.IWLP.empty() ? line.IWLP.alloc(room) && line.IWLE.alloc(room)
                                        : line.IWLP.resize_last(room) && line.IWLE.resize_last(room);
    if (!made)
        return gdf_fault("RAM is not sufficient to read .gdf inputs", body);
    const View<const f32, 3> panels(run.mesh.XVER.slice(first).data(), {Range(4), Range(3), Range(n)});
    const View<int, 1> IWLP(line.IWLP.data() + line.NWL, {Range(n)});
    const View<int, 1> IWLE(line.IWLE.data() + line.NWL, {Range(n)});
    if (failed(WLFIND(panels, run.bodies.XBODY(3, slot), IWLP, IWLE, run.bodies.NWLB(slot))))
        return Status::failed;
    line.NWL += run.bodies.NWLB(slot);
    return Status::ok;
}

Status GDFRD(TypedInput &typed, RunState &run) {
    FreeReader in;
    GdfHead head;
    if (failed(read_gdf_title(run.files.FILNAM(1), 0, in, head)))
        return Status::failed;
    if (!(head.GRAV > 0))
        return gdf_fault("Error reading GDF file, ULEN,GRAV line", 0,
                         in.place() + ": gravity must be above 0, found" + sci(12, 4, head.GRAV));
    run.files.HEADER(1) = head.title;
    run.bodies.ULEN(1) = head.ULEN;
    run.opt.GRAV = head.GRAV;
    run.waterline = Waterline();
    const Status status = head.ULEN > 0 ? read_single(in, head, typed, run) : read_bodies(in, typed, run);
    return failed(status) ? status : settle_dipoles(run);
}
