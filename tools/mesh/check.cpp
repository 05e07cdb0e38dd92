#include "check.hpp"

#include "geometry/dipoles.hpp"
#include "input/gdf.hpp"
#include "input/names.hpp"
#include "mesh/report.hpp"
#include "state/messages.hpp"

#include <cmath>
#include <cstdio>

namespace {

// Where a body of a global file stands, and whether it is a lid.
struct Placement {
    f32 XBODY[4] = {};
    bool lid = false;
};

struct BodyFile {
    GdfHead head;
    int n = 0;
    Array<f32, 3> XVER; // in units of length
    Dipoles dipoles;
    bool has_dipoles = false;
};

// Reads the rest of a body's file behind its title line. Failed: the message is kept by the list of messages.
Status read_rest(FreeReader &in, const Placement &place, BodyFile &file) {
    Bodies counts;
    if (failed(read_gdf_symmetry(in, 0, file.head)) || !counts.NEQNB.alloc(1) || !counts.NDIPB.alloc(1) ||
        failed(read_gdf_counts(in, 0, 1, counts)))
        return Status::failed;
    file.n = counts.NEQNB(1);
    if (!file.XVER.alloc(4, 3, file.n))
        return gdf_fault("RAM is not sufficient to read .gdf inputs", 0);
    if (failed(read_gdf_panels(in, {1, file.n, -place.XBODY[2], 1.0f}, file.XVER)))
        return Status::failed;
    file.has_dipoles = counts.NDIPB(1) == 1;
    return counts.NDIPB(1) == 0 ? Status::ok : read_dipoles(in, 1, file.n, file.dipoles);
}

BodyMesh mesh_of(const CheckRequest &request, const Placement &place, const BodyFile &file) {
    const double L = static_cast<double>(file.head.ULEN),
                 heading = static_cast<double>(place.XBODY[3] * DEGREE);
    const double s = std::sin(heading), c = std::cos(heading);
    const bool moved = place.XBODY[0] != 0 || place.XBODY[1] != 0 || place.XBODY[3] != 0;
    BodyMesh mesh;
    const int index[2] = {file.head.ISX, file.head.ISY};
    for (std::size_t axis = 0; axis < 2; ++axis) {
        // A half that is moved is mirrored about its own plane: its sides end there all the same.
        mesh.symmetric[axis] = index[axis] == 1 && !moved;
        mesh.wall[axis] = index[axis] != 0 && !mesh.symmetric[axis];
    }
    mesh.depth = request.depth / L;
    mesh.tank = request.tank;
    for (int i = 1; i <= file.n; ++i) {
        BodyPanel panel;
        for (int v = 1; v <= 4; ++v) {
            const double x = static_cast<double>(file.XVER(v, 1, i)) / L,
                         y = static_cast<double>(file.XVER(v, 2, i)) / L,
                         z = static_cast<double>(file.XVER(v, 3, i) + place.XBODY[2]) / L;
            const bool own = moved && (index[0] != 0 || index[1] != 0); // judged about its own planes
            panel.at[static_cast<std::size_t>(v) - 1] =
                own ? BodyPoint{x, y, z}
                    : BodyPoint{c * x - s * y + static_cast<double>(place.XBODY[0]) / L,
                                s * x + c * y + static_cast<double>(place.XBODY[1]) / L, z};
        }
        const PanelShape shape = shape_of(panel);
        const bool inside = !request.tank && std::fabs(shape.centre[2]) < 1e-4 && shape.normal[2] < -0.9999;
        panel.kind = file.has_dipoles && file.dipoles.IDIP(i) != 0 ? PanelKind::plate
                     : place.lid                                   ? PanelKind::lid
                     : inside                                      ? PanelKind::interior
                                                                   : PanelKind::hull;
        mesh.panels.push_back(panel);
    }
    return mesh;
}

// Prints the report of one body; true when something is wrong.
bool print_body(const CheckRequest &request, const std::string &name, const Placement &place,
                const BodyFile &file) {
    const double L = static_cast<double>(file.head.ULEN);
    const BodyMesh mesh = mesh_of(request, place, file);
    const MeshMeasures measures = measure(mesh);
    for (const std::string &line : mesh_report(name, measures, mesh, L))
        std::puts(line.c_str());
    bool wrong = false;
    const std::vector<MeshFinding> findings =
        check_mesh(mesh, {request.wave_length / L, measures.interior > 0});
    for (const MeshFinding &finding : findings) {
        std::printf("%s %s\n", finding.wrong ? "WARNING:" : "note:", told(finding).c_str());
        wrong = wrong || finding.wrong;
    }
    if (findings.empty())
        std::puts("nothing found");
    return wrong;
}

int unreadable() {
    std::fprintf(stderr, "vorda-mesh: %s\n", first_fault().c_str());
    return 1;
}

} // namespace

int check_gdf(const CheckRequest &request) {
    FreeReader in;
    BodyFile file;
    if (failed(read_gdf_title(request.file, 0, in, file.head)))
        return unreadable();
    if (file.head.ULEN > 0)
        return failed(read_rest(in, {}, file))               ? unreadable()
               : print_body(request, request.file, {}, file) ? 2
                                                             : 0;
    int NBODY = 0;
    if (!in.read(NBODY) || NBODY < 1) {
        (void)MSGOUT_with("Error reading global GDF file:  parameter NBODY ", 0, in.fault());
        return unreadable();
    }
    bool wrong = false;
    for (int b = 1; b <= NBODY; ++b) {
        std::string name;
        Placement place;
        int problems[2], modes[6], type = 0;
        f32 damping = 0;
        bool good = in.line(name, std::string::npos);
        FNNORM(name);
        good = good && in.read_array(place.XBODY, 4) && in.read_array(problems, 2) &&
               in.read_array(modes, 6) && (!request.lids || in.read(type, damping));
        if (!good) {
            (void)MSGOUT_with("Error reading XBODY coordinates in global GDF file for body N=", b,
                              in.fault());
            return unreadable();
        }
        place.lid = type == 3;
        FreeReader body;
        BodyFile of_body;
        if (failed(read_gdf_title(name, b, body, of_body.head)) || failed(read_rest(body, place, of_body)))
            return unreadable();
        wrong = print_body(request, name, place, of_body) || wrong;
    }
    return wrong ? 2 : 0;
}
