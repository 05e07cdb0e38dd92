#include "geometry/pregeo.hpp"

#include "base/platform.hpp"
#include "base/text.hpp"
#include "geometry/rdmod.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

// The PRE file under its own name.
Status finish_pre(const Files &files, int body) {
    const std::string part = unfinished_pre(files, body), name = trimmed(files.FILNAM(body + 4));
    if (std::rename(part.c_str(), name.c_str()) != 0)
        return MSGOUT_with("Error writing PRE file of body N=", body, name);
    forget_at_end(part);
    return Status::ok;
}

} // namespace

std::string unfinished_pre(const Files &files, int body) {
    return trimmed(files.FILNAM(body + 4)) + ".part";
}

bool allocate_mesh(Bodies &bodies, Mesh &mesh) {
    const int N = mesh.NEQN;
    // The input stage may have marked panels already.
    const bool marked = mesh.projected.empty() ? mesh.projected.alloc(N) : mesh.projected.resize_last(N);
    return marked && mesh.XCT.alloc(3, N) && mesh.TRM.alloc(3, 3, N) && mesh.XIV.alloc(4, N) &&
           mesh.ETV.alloc(4, N) && mesh.PMOM.alloc(13, N) && mesh.SIDE.alloc(4, N) &&
           mesh.XGP.alloc(4, 3, N) && mesh.GJAC.alloc(4, N) && mesh.PSIZ.alloc(2, N) &&
           mesh.VEL.alloc(bodies.NMODES, N) && mesh.RXNG.alloc(4, 3, N) && mesh.IFSP.alloc(N) &&
           bodies.CHYD.alloc(bodies.NMODES, bodies.NMODES);
}

Status PREGEO(const Options &opt, const Files &files, const Dipoles &dipoles, Bodies &bodies, Mesh &mesh) {
    bodies.CHYD.fill(0);
    BodyRange range;
    for (range.body = 1; range.body <= bodies.NBODY; ++range.body) {
        const int b = range.body;
        range.ip2 = range.ip1 + bodies.NEQNB(b) - 1;
        for (int ip = range.ip1; ip <= range.ip2; ++ip)
            mesh.VEL.slice(ip).fill(0);
        if (failed(BODGEO(opt, dipoles, range, bodies, mesh)))
            return MSGOUT("Error computing geometric quantities for body N=", b);
        for (int m = 1; m <= 6; ++m) {
            int &mode = bodies.MODE(range.mode + m - 1);
            mode = mode != 0 ? m : 0;
        }
        if (bodies.NEWMDS(b) < 0) {
            if (failed(WRTPRE(files, dipoles, range, mesh)))
                return Status::failed;
            if (bodies.NBODY > 1)
                message(" PRE file completed for body NBDY=", b);
        } else if (bodies.NEWMDS(b) > 0 && failed(RDMOD(opt, files, range, bodies, mesh))) {
            return Status::failed;
        }
        range.mode += 6 + std::max(bodies.NEWMDS(b), 0);
        range.ip1 = range.ip2 + 1;
    }
    for (int b = 1; b <= bodies.NBODY; ++b)
        if (bodies.NEWMDS(b) < 0 && failed(finish_pre(files, b)))
            return Status::failed;
    if (opt.IMDRUN < 0)
        return MSGOUT(" VORDA run 1 completed -- now run SHAPEX");
    return Status::ok;
}

Status WRTPRE(const Files &files, const Dipoles &dipoles, const BodyRange &range, const Mesh &mesh) {
    const std::string name = unfinished_pre(files, range.body);
    std::string lines;
    {
        std::ifstream in(name);
        std::string line;
        for (int k = 0; k < 2 && std::getline(in, line); ++k)
            lines += line.substr(0, 72) + "\n";
    }
    for (int ip = range.ip1; ip <= range.ip2; ++ip) {
        for (int c = 1; c <= 3; ++c)
            lines += sci(13, 5, mesh.XCT(c, ip));
        lines += sci(13, 5, mesh.PMOM(1, ip));
        for (int m = 0; m < 6; ++m)
            lines += sci(13, 5, mesh.VEL(range.mode + m, ip));
        lines += int_in(4, dipoles.IDIPOL ? dipoles.IDIP(ip) : 0) + "\n";
    }
    std::ofstream out(name, std::ios::trunc | std::ios::binary);
    out << lines;
    out.close();
    if (!out)
        return MSGOUT_with("Error writing PRE file of body N=", range.body, name);
    return Status::ok;
}
