#include "body_files.hpp"

#include "input/names.hpp"
#include "state/messages.hpp"

#include <cmath>
#include <cstdio>

namespace {

bool unreadable() {
    std::fprintf(stderr, "vorda-mesh: %s\n", first_fault().c_str());
    return false;
}

// Reads the rest of a body's file behind its title line. Failed: the message is kept by the list of messages.
Status read_rest(FreeReader &in, BodyFile &file) {
    Bodies counts;
    if (failed(read_gdf_symmetry(in, 0, file.head)) || !counts.NEQNB.alloc(1) || !counts.NDIPB.alloc(1) ||
        failed(read_gdf_counts(in, 0, 1, counts)))
        return Status::failed;
    file.n = counts.NEQNB(1);
    if (!file.XVER.alloc(4, 3, file.n))
        return gdf_fault("RAM is not sufficient to read .gdf inputs", 0);
    if (failed(read_gdf_panels(in, {1, file.n, -file.place.XBODY[2], 1.0f}, file.XVER)))
        return Status::failed;
    file.has_dipoles = counts.NDIPB(1) == 1;
    return counts.NDIPB(1) == 0 ? Status::ok : read_dipoles(in, 1, file.n, file.dipoles);
}

} // namespace

bool read_body_files(const std::string &file, bool lids, std::vector<BodyFile> &bodies) {
    FreeReader in;
    bodies.clear();
    bodies.emplace_back();
    bodies[0].name = file;
    if (failed(read_gdf_title(file, 0, in, bodies[0].head)))
        return unreadable();
    if (bodies[0].head.ULEN > 0)
        return failed(read_rest(in, bodies[0])) ? unreadable() : true;
    bodies.clear();
    int NBODY = 0;
    if (!in.read(NBODY) || NBODY < 1) {
        (void)MSGOUT_with("Error reading global GDF file:  parameter NBODY ", 0, in.fault());
        return unreadable();
    }
    for (int b = 1; b <= NBODY; ++b) {
        BodyFile body;
        int problems[2], modes[6], type = 0;
        f32 damping = 0;
        bool good = in.line(body.name, std::string::npos);
        FNNORM(body.name);
        good = good && in.read_array(body.place.XBODY, 4) && in.read_array(problems, 2) &&
               in.read_array(modes, 6) && (!lids || in.read(type, damping));
        if (!good) {
            (void)MSGOUT_with("Error reading XBODY coordinates in global GDF file for body N=", b,
                              in.fault());
            return unreadable();
        }
        body.place.lid = type == 3;
        FreeReader panels;
        if (failed(read_gdf_title(body.name, b, panels, body.head)) || failed(read_rest(panels, body)))
            return unreadable();
        bodies.push_back(std::move(body));
    }
    return true;
}

bool in_own_axes(const BodyFile &file) {
    const f32 *XBODY = file.place.XBODY;
    return (XBODY[0] != 0 || XBODY[1] != 0 || XBODY[3] != 0) && (file.head.ISX != 0 || file.head.ISY != 0);
}

BodyPoint placed(const BodyPoint &p, const Placement &place) {
    const double heading = static_cast<double>(place.XBODY[3] * DEGREE);
    const double s = std::sin(heading), c = std::cos(heading);
    return {c * p[0] - s * p[1] + static_cast<double>(place.XBODY[0]),
            s * p[0] + c * p[1] + static_cast<double>(place.XBODY[1]),
            p[2] + static_cast<double>(place.XBODY[2])};
}

BodyMesh mesh_of(const BodyFile &file, const Surroundings &around) {
    const double L = static_cast<double>(file.head.ULEN);
    Placement place = file.place;
    const bool moved = place.XBODY[0] != 0 || place.XBODY[1] != 0 || place.XBODY[3] != 0;
    if (in_own_axes(file))
        place.XBODY[0] = place.XBODY[1] = place.XBODY[3] = 0;
    BodyMesh mesh;
    const int index[2] = {file.head.ISX, file.head.ISY};
    for (std::size_t axis = 0; axis < 2; ++axis) {
        // A half that is moved is mirrored about its own plane: its sides end there all the same.
        mesh.symmetric[axis] = index[axis] == 1 && !moved;
        mesh.wall[axis] = index[axis] != 0 && !mesh.symmetric[axis];
    }
    mesh.depth = around.depth / L;
    mesh.tank = around.tank;
    for (int i = 1; i <= file.n; ++i) {
        BodyPanel panel;
        for (int v = 1; v <= 4; ++v) {
            BodyPoint p{static_cast<double>(file.XVER(v, 1, i)), static_cast<double>(file.XVER(v, 2, i)),
                        static_cast<double>(file.XVER(v, 3, i))};
            p = placed(p, place);
            panel.at[static_cast<std::size_t>(v) - 1] = {p[0] / L, p[1] / L, p[2] / L};
        }
        const PanelShape shape = shape_of(panel);
        const bool inside = !around.tank && std::fabs(shape.centre[2]) < 1e-4 && shape.normal[2] < -0.9999;
        panel.kind = file.has_dipoles && file.dipoles.IDIP(i) != 0 ? PanelKind::plate
                     : place.lid                                   ? PanelKind::lid
                     : inside                                      ? PanelKind::interior
                                                                   : PanelKind::hull;
        mesh.panels.push_back(panel);
    }
    return mesh;
}
