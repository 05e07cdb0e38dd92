#include "check.hpp"

#include "mesh/report.hpp"
#include "state/messages.hpp"

#include <cmath>
#include <cstdio>

namespace {

BodyMesh mesh_to_check(const CheckRequest &request, const GdfBody &body) {
    const bool moved = body.place[0] != 0 || body.place[1] != 0 || body.heading != 0;
    BodyMesh mesh;
    for (std::size_t axis = 0; axis < 2; ++axis) {
        // A half that is moved is mirrored about its own plane: its sides end there all the same.
        mesh.symmetric[axis] = body.index[axis] == 1 && !moved;
        mesh.wall[axis] = body.index[axis] != 0 && !mesh.symmetric[axis];
    }
    mesh.depth = request.depth / body.ULEN;
    mesh.tank = request.tank;
    GdfBody placed = body;
    const bool own = moved && (body.index[0] != 0 || body.index[1] != 0); // judged about its own planes
    if (own)
        move_body(placed, 0, {0, 0, body.place[2]});
    else
        put_in_place(placed);
    for (const GdfPanel &from : placed.panels) {
        BodyPanel panel;
        for (std::size_t v = 0; v < 4; ++v)
            for (std::size_t c = 0; c < 3; ++c)
                panel.at[v][c] = from.at[v][c] / body.ULEN;
        const PanelShape shape = shape_of(panel);
        const bool inside = !request.tank && std::fabs(shape.centre[2]) < 1e-4 && shape.normal[2] < -0.9999;
        panel.kind = from.IDIP != 0 ? PanelKind::plate
                     : body.lid     ? PanelKind::lid
                     : inside       ? PanelKind::interior
                                    : PanelKind::hull;
        mesh.panels.push_back(panel);
    }
    return mesh;
}

// Prints the report of one body; true when something is wrong.
bool print_body(const CheckRequest &request, const GdfBody &body) {
    const BodyMesh mesh = mesh_to_check(request, body);
    const MeshMeasures measures = measure(mesh);
    for (const std::string &line : mesh_report(body.name, measures, mesh, body.ULEN))
        std::puts(line.c_str());
    bool wrong = false;
    const std::vector<MeshFinding> findings =
        check_mesh(mesh, {request.wave_length / body.ULEN, request.treated || measures.interior > 0});
    for (const MeshFinding &finding : findings) {
        std::printf("%s %s\n", finding.wrong ? "WARNING:" : "note:", told(finding).c_str());
        wrong = wrong || finding.wrong;
    }
    if (findings.empty())
        std::puts("nothing found");
    return wrong;
}

} // namespace

int check_bodies(const CheckRequest &request, const std::vector<GdfBody> &bodies) {
    bool wrong = false;
    for (const GdfBody &body : bodies)
        wrong = print_body(request, body) || wrong;
    return wrong ? 2 : 0;
}

int check_gdf(const CheckRequest &request) {
    std::vector<GdfBody> bodies;
    if (failed(read_gdf(request.file, request.lids, bodies))) {
        std::fprintf(stderr, "vorda-mesh: %s\n", first_fault().c_str());
        return 1;
    }
    return check_bodies(request, bodies);
}
