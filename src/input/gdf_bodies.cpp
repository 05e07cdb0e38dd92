// The global geometry file: several bodies.
#include "freesurface/mirror.hpp"
#include "geometry/dipoles.hpp"
#include "input/gdf.hpp"
#include "input/names.hpp"
#include "input/pot.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace {

constexpr f32 PLACE_TOLERANCE = 1.0e-6f; // a body this near to a plane, or turned this little, is in place
constexpr f32 GRAVITY_TOLERANCE = 0.1f;  // gravity of a body's file against that of the global file
constexpr f32 SHORTEST_LENGTH = 1.0e-5f; // ULEN(1) below it is no length

// Arrays for NBODY bodies. The name tables grow while the bodies are read, since NBODY may be nonsense.
bool make_body_arrays(const Options &opt, Bodies &bodies, TypedInput &typed) {
    const int N = bodies.NBODY;
    std::int64_t modes = 6 * static_cast<std::int64_t>(N);
    for (const auto &[n, count] : typed.NEWMDS)
        modes += n <= N ? count : 0;
    if (!modes_fit(modes) || !bodies.NEWMDS.resize_last(N))
        return false;
    for (const auto &[n, count] : typed.NEWMDS)
        if (n <= N)
            bodies.NEWMDS(n) = count;
    bodies.NMODES = static_cast<int>(modes);
    if (opt.IFSLID != 0 && (!bodies.BDTYP.alloc(N) || !bodies.FSDMP.alloc(N) || !bodies.IPANB0.alloc(N) ||
                            !bodies.IPANB1.alloc(N)))
        return false;
    return bodies.NDIPB.alloc(N) && bodies.NEQNB.alloc(N) && bodies.NWLB.alloc(N) && bodies.ULEN.alloc(N) &&
           typed.XBODY.alloc(4, N) && bodies.XBODY.alloc(4, N) && bodies.MODE.alloc(modes);
}

// Room for the names and titles of bodies 1 to n.
bool make_names(Files &files, int n) {
    try {
        files.HEADER.resize(n + 4);
        files.FILNAM.resize(n + 4);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

// The problem index of the run after body N with its index: -1 and 1 only when all bodies have it.
void merge_problem(int N, int index, int &of_run) {
    if (N == 1)
        of_run = index;
    else if (of_run != index)
        of_run = 0;
}

// Name, place, problems and modes of body N; `modes` is the number of modes before it.
Status read_body_entry(FreeReader &in, int N, int modes, TypedInput &typed, RunState &run) {
    Bodies &bodies = run.bodies;
    const auto fault = [&](const char *what) {
        return MSGOUT_with(std::string("Error reading ") + what + " in global GDF file for body N=", N,
                           in.fault());
    };
    if (!make_names(run.files, N))
        return MSGOUT("Insufficient memory to allocate NBODY arrays");
    std::string &name = run.files.FILNAM(N + 4);
    if (!in.line(name, std::string::npos))
        return fault("GDF filename");
    FNNORM(name);
    if (name.empty())
        return MSGOUT_with("Error reading GDF filename in global GDF file for body N=", N,
                           run.files.FILNAM(1) + ", line " + std::to_string(in.line_number() - 1) +
                               ": the line is empty");
    if (!in.read_array(&typed.XBODY(1, N), 4))
        return fault("XBODY coordinates");
    int IRAD = 0;
    int IDIFF = 0;
    if (!in.read(IRAD, IDIFF))
        return fault("IRAD,IDIFF");
    if (IRAD < -1 || IRAD > 1)
        return MSGOUT_with("Value of IRAD index is illegal for body N=", N,
                           in.place() + ": found " + std::to_string(IRAD));
    if (IDIFF < -1 || IDIFF > 1)
        return MSGOUT_with("Value of IDIFF index is illegal for body N=", N,
                           in.place() + ": found " + std::to_string(IDIFF));
    int *MODE = bodies.MODE.data() + modes;
    const int count = 6 + bodies.NEWMDS(N);
    if (!in.read_array(MODE, 6))
        return fault("array MODE");
    std::fill(MODE + 6, MODE + count, 1);
    if (IRAD != 0)
        std::fill(MODE, MODE + count, std::max(IRAD, 0));
    merge_problem(N, IRAD, run.opt.IRAD);
    merge_problem(N, IDIFF, run.opt.IDIFF);
    if (run.opt.IFSLID != 0) {
        if (!in.read(bodies.BDTYP(N), bodies.FSDMP(N)))
            return MSGOUT_with("Error reading array BDTYP/FSDMP in global GDF file ", 0, in.fault());
        if (bodies.BDTYP(N) == 3)
            run.opt.IBDT3 = 1;
    }
    return Status::ok;
}

Status read_index(FreeReader &in, TypedInput &typed, RunState &run) {
    Bodies &bodies = run.bodies;
    if (!in.read(bodies.NBODY))
        return MSGOUT_with("Error reading global GDF file:  parameter NBODY ", 0, in.fault());
    if (bodies.NBODY < 1)
        return MSGOUT_with(" Value of NBODY in global GDF is illegal:  NBODY=", bodies.NBODY, in.place());
    // The name of the free-surface file and that of the first body share a place of FILNAM.
    if (bodies.NBODY == 1 && run.opt.IWADD == 1)
        return MSGOUT("A global GDF file is not possible when IWADD=1");
    if (!make_body_arrays(run.opt, bodies, typed))
        return MSGOUT("Insufficient memory to allocate NBODY arrays");
    run.opt.IBDT3 = 0;
    int modes = 0;
    for (int N = 1; N <= bodies.NBODY; ++N) {
        if (failed(read_body_entry(in, N, modes, typed, run)))
            return Status::failed;
        modes += 6 + bodies.NEWMDS(N);
    }
    if (run.opt.IDIFF == 1 && run.opt.IRAD == -1)
        bodies.MODE.fill(1);
    settle_problems(bodies.MODE, run.opt);
    return Status::ok;
}

// Opens the file of body N and reads its first records.
Status read_body_head(const Files &files, int N, FreeReader &in, GdfHead &head) {
    const Status status = read_gdf_title(files.FILNAM(N + 4), N, in, head);
    return failed(status) ? status : read_gdf_symmetry(in, N, head);
}

// Tells whether the bodies as a whole are symmetric about the planes that their files name, so that no panel
// has to be mirrored. False as well for bodies without symmetry, where nothing is to be mirrored.
Status keeps_symmetry(const Files &files, const Array<f32, 2> &XBODY, bool &keep) {
    const int NBODY = static_cast<int>(XBODY.dim(2));
    keep = true;
    GdfHead first;
    for (int N = 1; keep && N <= NBODY; ++N) {
        FreeReader in;
        GdfHead head;
        if (failed(read_body_head(files, N, in, head)))
            return Status::failed;
        if (N == 1)
            first = head;
        keep = std::fabs(XBODY(4, N)) <= PLACE_TOLERANCE && head.ISX == first.ISX && head.ISY == first.ISY;
    }
    if (first.ISX == 0 && first.ISY == 0)
        keep = false;
    const bool plane_x = first.ISX == 1 && (first.ISY == 0 || first.ISY == 1);
    const bool plane_y = first.ISY == 1 && (first.ISX == 0 || first.ISX == 1);
    for (int N = 1; keep && N <= NBODY; ++N) {
        if ((plane_x && std::fabs(XBODY(1, N)) > PLACE_TOLERANCE) ||
            (plane_y && std::fabs(XBODY(2, N)) > PLACE_TOLERANCE))
            keep = false;
    }
    return Status::ok;
}

// Mirrors body N. What is left of its indices must suit all bodies: the run has one pair.
Status mirror_one_of_many(int N, int first, RunState &run) {
    if (failed(mirror_body(N, first, run)))
        return gdf_fault("Error reading GDF file", N);
    for (const int index : {run.opt.ISX, run.opt.ISY}) {
        if (index == -1 && run.bodies.NBODY > 1)
            return gdf_fault("ISX=-1 or ISY=-1", N, "-2 stands for a wall as well");
        if (index != 0 && index != -1)
            return MSGOUT_with("Value of a symmetry index is illegal", 0, "body " + std::to_string(N));
    }
    return Status::ok;
}

// Length scale, gravity, symmetry and counts of body N.
Status take_head(FreeReader &in, int N, const GdfHead &head, RunState &run) {
    run.files.HEADER(N + 2) = head.title;
    run.bodies.ULEN(N) = head.ULEN;
    if (N == 1) {
        if (head.ULEN < SHORTEST_LENGTH)
            return MSGOUT(" Body length ULEN less than 1.E-05 for body N=", N);
        run.opt.RULEN = 1.0f / head.ULEN;
    }
    if (!(std::fabs(head.GRAV - run.opt.GRAV) <= GRAVITY_TOLERANCE))
        return MSGOUT_with("Error in value of GRAV in GDF file for body N=", N,
                           in.place() + ": found" + sci(12, 4, head.GRAV) + ", the global file has" +
                               sci(12, 4, run.opt.GRAV));
    run.opt.ISX = head.ISX;
    run.opt.ISY = head.ISY;
    if (head.ISX == -1 || head.ISY == -1)
        return MSGOUT("ISX=-1 or ISY=-1 for body N=", N);
    return read_gdf_counts(in, N, N, run.bodies);
}

// Panels and dipole records of body N, of which the first panel is `first`.
Status read_body_panels(FreeReader &in, int N, int first, f32 ZB, RunState &run) {
    const std::int64_t last = static_cast<std::int64_t>(first) + run.bodies.NEQNB(N) - 1;
    const bool made = last <= std::numeric_limits<int>::max() &&
                      (N == 1 ? run.mesh.XVER.alloc(4, 3, last) : !failed(XVGROW(last, run.mesh.XVER)));
    if (!made)
        return gdf_fault("RAM is not sufficient to read .gdf inputs", N);
    if (failed(read_gdf_panels(in, {first, run.bodies.NEQNB(N), -ZB, run.opt.RULEN}, run.mesh.XVER)))
        return gdf_fault("Error reading GDF file", N);
    if (run.bodies.NDIPB(N) != 0 && failed(read_dipoles(in, first, run.bodies.NEQNB(N), run.dipoles)))
        return gdf_fault("Error reading GDF file", N);
    f32 extra = 0;
    if (in.read(extra) || !in.ended())
        return MSGOUT_with("Error in GDF file: extra data at end of file for body N=", N,
                           (in.fault().empty() ? in.place() : in.fault()) + EXTRA_HINT);
    return Status::ok;
}

Status read_body(int N, int first, bool keep, const TypedInput &typed, RunState &run) {
    Bodies &bodies = run.bodies;
    FreeReader in;
    GdfHead head;
    if (failed(read_gdf_title(run.files.FILNAM(N + 4), N, in, head)))
        return Status::failed;
    if (failed(read_gdf_symmetry(in, N, head)) || failed(take_head(in, N, head, run)) ||
        failed(read_body_panels(in, N, first, typed.XBODY(3, N), run)))
        return Status::failed;
    place_body(N, typed, run.opt.RULEN, bodies.XBODY);
    const int hull = bodies.NEQNB(N);
    if (failed(project_body(N, first, run)))
        return gdf_fault("Error reading GDF file", N);
    const int block = bodies.NEQNB(N);
    if (!keep && failed(mirror_one_of_many(N, first, run)))
        return Status::failed;
    if (failed(mark_projected(N, first, hull, block, run)))
        return gdf_fault("Error reading GDF file", N);
    if (failed(find_waterline(N, N, first, run)))
        return gdf_fault("Error reading GDF file", N);
    if (run.opt.IFSLID != 0) {
        bodies.IPANB0(N) = first;
        bodies.IPANB1(N) = first + bodies.NEQNB(N) - 1;
    }
    return Status::ok;
}

} // namespace

Status read_bodies(FreeReader &in, TypedInput &typed, RunState &run) {
    Bodies &bodies = run.bodies;
    bool keep = true;
    if (failed(read_index(in, typed, run)) || failed(keeps_symmetry(run.files, typed.XBODY, keep)))
        return Status::failed;
    int first = 1;
    int listed = 0;
    for (int N = 1; N <= bodies.NBODY; ++N) {
        if (failed(read_body(N, first, keep, typed, run)))
            return Status::failed;
        // A lid that the files give is joined to the waterline of all bodies: its panel numbers count over
        // the mesh.
        for (const int end = listed + bodies.NWLB(N); listed < end; ++listed) {
            if (run.opt.IRR == 4)
                run.waterline.IWLP(listed + 1) += first - 1;
        }
        first += bodies.NEQNB(N);
    }
    run.mesh.NEQN = first - 1;
    return Status::ok;
}
