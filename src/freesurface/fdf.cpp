#include "freesurface/fdf.hpp"

#include "base/text.hpp"
#include "freesurface/fdfgen.hpp"
#include "geometry/panel.hpp"
#include "state/messages.hpp"

#include <utility>

namespace {

bool allocate_panels(int n, Mesh &mesh) {
    return mesh.XIV.alloc(4, n) && mesh.ETV.alloc(4, n) && mesh.XCT.alloc(3, n) && mesh.TRM.alloc(3, 3, n) &&
           mesh.PMOM.alloc(13, n) && mesh.SIDE.alloc(4, n) && mesh.XGP.alloc(4, 3, n) &&
           mesh.GJAC.alloc(4, n) && mesh.PSIZ.alloc(2, n);
}

Status read_panels(const Options &opt, int n, FreeReader &in, Mesh &mesh) {
    Array<f32, 2> vertex;
    if (!vertex.alloc(4, 3) || !allocate_panels(n, mesh))
        return MSGOUT("Insufficient memory to allocate arrays in RDFDF");
    for (int i = 1; i <= n; ++i) {
        if (!in.read_array(vertex.data(), 8))
            return MSGOUT_with("Unable to read free-surface panel I=", i, in.fault());
        for (int k = 1; k <= 4; ++k) {
            vertex(k, 1) *= opt.RULEN;
            vertex(k, 2) *= opt.RULEN;
        }
        Panel panel;
        if (failed(PANGEO(vertex, opt.IDIAG, i, panel)))
            return Status::failed;
        put_panel(panel, i, mesh);
    }
    return Status::ok;
}

} // namespace

Status RDFDF(const RunState &run, SurfaceMesh &surface) {
    FreeReader in;
    if (!in.open(run.files.FILNAM(5)))
        return MSGOUT_with("Unable to open FDF file", 0, in.fault());
    std::string title;
    f32 radius = 0;
    int NPF = 0, NTCL = 0, NAL = 0;
    if (!in.line(title, 72))
        return MSGOUT_with("Unable to read header of FDF", 0, in.fault());
    if (!in.read(radius))
        return MSGOUT_with("Unable to read partition radius", 0, in.fault());
    if (!in.read(NPF, NTCL) || NPF < 0)
        return MSGOUT_with("Unable to read NPF and NTCL ", 0, NPF < 0 ? "NPF is negative" : in.fault());
    if (!in.read(NAL))
        return MSGOUT_with("Error in reading the parmameter NAL,DELR,NCIRE,NGSP", 0, in.fault());
    Mesh mesh;
    if (failed(read_panels(run.opt, NPF, in, mesh)))
        return Status::failed;
    int more = 0;
    if (!in.read(more) && !in.ended())
        return MSGOUT_with("Extra data at the end of f-s data file", 0, in.fault());
    surface.NFSP = NPF;
    surface.XIVF = std::move(mesh.XIV);
    surface.ETVF = std::move(mesh.ETV);
    surface.XCTF = std::move(mesh.XCT);
    surface.TRMF = std::move(mesh.TRM);
    surface.PMOMF = std::move(mesh.PMOM);
    surface.SIDEF = std::move(mesh.SIDE);
    surface.XGPF = std::move(mesh.XGP);
    surface.GJACF = std::move(mesh.GJAC);
    surface.PSIZF = std::move(mesh.PSIZ);
    return Status::ok;
}

Status FDFSTG(const RunState &run, SurfaceMesh &surface) {
    for (int c = 1; c <= 4; ++c) {
        if (run.bodies.XBODY(c, 1) != 0.0f)
            return MSGOUT("XBODY must be 0.0 when IWADD=1");
    }
    FreeReader in;
    if (!in.open(run.files.FILNAM(5))) {
        message("Creates the free surface data file FDF");
        if (failed(FDFGEN(run)))
            return Status::failed;
    }
    return RDFDF(run, surface);
}
