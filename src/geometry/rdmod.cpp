#include "geometry/rdmod.hpp"

#include "base/text.hpp"
#include "state/messages.hpp"

namespace {

constexpr int RIGID = 6; // rigid modes of a body

// Symmetry and panel count of the file against those of the run.
Status check_integers(const Options &opt, const int (&found)[3], int NEQNB) {
    const int wanted[3] = {opt.ISX, opt.ISY, NEQNB};
    std::string detail;
    for (int k = 0; k < 3; ++k) {
        if (found[k] != wanted[k])
            detail += std::string(detail.empty() ? "" : ", ") +
                      (k == 0   ? "ISX="
                       : k == 1 ? "ISY="
                                : "NEQN=") +
                      std::to_string(found[k]) + ", the run has " + std::to_string(wanted[k]);
    }
    return detail.empty() ? Status::ok
                          : MSGOUT_with("Inconsistent integers in MOD and GDF files ", 0, detail);
}

Status read_symmetries(FreeReader &in, int *MODE, int count) {
    const char *text = "Error reading MOD file, ISYM line ";
    if (!in.read_array(MODE, count))
        return MSGOUT_with(text, 0, in.fault());
    for (int k = 0; k < count; ++k) {
        if (MODE[k] < 0 || MODE[k] > RIGID)
            return MSGOUT_with(text, 0,
                               "ISYM=" + std::to_string(MODE[k]) + ", it is the number of a rigid mode or 0");
    }
    return Status::ok;
}

// Row i of the matrix: the rigid columns of a rigid row are not taken.
Status read_matrix(FreeReader &in, int first_mode, int order, Array<f32, 2> &CHYD) {
    Array<f32, 1> row;
    if (!row.alloc(order))
        return MSGOUT(" RAM too small ");
    for (int i = 1; i <= order; ++i) {
        if (!in.read_array(row.data(), order))
            return MSGOUT_with("Error reading MOD file, matrix C, line =", i, in.fault());
        for (int j = i <= RIGID ? RIGID + 1 : 1; j <= order; ++j)
            CHYD(first_mode + i - 1, first_mode + j - 1) = row(j);
    }
    return Status::ok;
}

} // namespace

Status RDMOD(const Options &opt, const Files &files, const BodyRange &range, Bodies &bodies, Mesh &mesh) {
    const int b = range.body;
    const int extra = bodies.NEWMDS(b);
    const int first_extra = range.mode + RIGID;
    FreeReader in;
    std::string title;
    if (!in.open(files.FILNAM(b + 4)) || !in.line(title, 72) || !in.line(title, 72))
        return MSGOUT_with("Error reading MOD file, header lines of body N=", b, in.fault());
    int integers[3] = {};
    if (!in.read_array(integers, 3))
        return MSGOUT_with("Error reading MOD file, ISX,ISY,NEQN line", 0, in.fault());
    int count = 0;
    if (!in.read(count))
        return MSGOUT_with("Error reading MOD file, NEWMDS line ", 0, in.fault());
    if (count != extra)
        return MSGOUT_with("Error reading MOD file, NEWMDS line ", 0,
                           "NEWMDS=" + std::to_string(count) + ", the run has " + std::to_string(extra));
    if (failed(read_symmetries(in, &bodies.MODE(first_extra), extra)))
        return Status::failed;
    for (int ip = range.ip1; ip <= range.ip2; ++ip) {
        if (!in.read_array(&mesh.VEL(first_extra, ip), extra))
            return MSGOUT_with("Error reading MOD file, modes VEL of panel N=", ip, in.fault());
    }
    if (failed(check_integers(opt, integers, bodies.NEQNB(b))))
        return Status::failed;
    return read_matrix(in, range.mode, RIGID + extra, bodies.CHYD);
}
