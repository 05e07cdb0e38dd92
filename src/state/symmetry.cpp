#include "state/symmetry.hpp"

#include "state/messages.hpp"

#include <algorithm>

namespace {

// One row for each pair ISX, ISY, at 3 ISX + ISY + 4.
struct SymmetryRow {
    int images;
    int image[4];
    int classes;
    int parity[4];
    int modes_of_class[4];
    int modes[6]; // rigid modes, class after class
    int parts;    // parts of the incident wave of one class
    int part[4];  // those of the first class, then the second, ...
};
constexpr SymmetryRow SYMTAB[9] = {
    {4, {1, 2, 3, 4}, 1, {1, 0, 0, 0}, {6, 0, 0, 0}, {1, 2, 3, 4, 5, 6}, 1, {1, 0, 0, 0}}, // -1 -1
    {2, {1, 2, 0, 0}, 1, {1, 0, 0, 0}, {6, 0, 0, 0}, {1, 2, 3, 4, 5, 6}, 2, {1, 4, 0, 0}}, // -1  0
    {4, {1, 2, 3, 4}, 2, {1, 4, 0, 0}, {3, 3, 0, 0}, {1, 3, 5, 2, 4, 6}, 1, {1, 4, 0, 0}}, // -1  1
    {2, {1, 4, 0, 0}, 1, {1, 0, 0, 0}, {6, 0, 0, 0}, {1, 2, 3, 4, 5, 6}, 2, {1, 2, 0, 0}}, //  0 -1
    {1, {1, 0, 0, 0}, 1, {1, 0, 0, 0}, {6, 0, 0, 0}, {1, 2, 3, 4, 5, 6}, 4, {1, 2, 3, 4}}, //  0  0
    {2, {1, 4, 0, 0}, 2, {1, 4, 0, 0}, {3, 3, 0, 0}, {1, 3, 5, 2, 4, 6}, 2, {1, 2, 3, 4}}, //  0  1
    {4, {1, 2, 3, 4}, 2, {1, 2, 0, 0}, {3, 3, 0, 0}, {2, 3, 4, 1, 5, 6}, 1, {1, 2, 0, 0}}, //  1 -1
    {2, {1, 2, 0, 0}, 2, {1, 2, 0, 0}, {3, 3, 0, 0}, {2, 3, 4, 1, 5, 6}, 2, {1, 4, 2, 3}}, //  1  0
    {4, {1, 2, 3, 4}, 4, {1, 2, 3, 4}, {1, 2, 1, 2}, {3, 1, 5, 6, 2, 4}, 1, {1, 2, 3, 4}}, //  1  1
};

// Class maps by ISY + 2 ISX, for surge, sway and yaw.
constexpr int CLASS_MAPS[4][3][4] = {{{1, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}},
                                     {{1, 2, 0, 0}, {2, 1, 0, 0}, {2, 1, 0, 0}},
                                     {{2, 1, 0, 0}, {1, 2, 0, 0}, {2, 1, 0, 0}},
                                     {{2, 1, 4, 3}, {4, 3, 2, 1}, {3, 4, 1, 2}}};

// Modes of the steady flows by ISY + 2 ISX: how many each class has, and which, class after class.
struct FlowRow {
    int count[4];
    int modes[3];
};
constexpr FlowRow FLOW_MODES[4] = {{{3, 0, 0, 0}, {1, 2, 6}},
                                   {{1, 2, 0, 0}, {1, 2, 6}},
                                   {{1, 2, 0, 0}, {2, 1, 6}},
                                   {{0, 1, 1, 1}, {1, 6, 2}}};

// One class map W with the modes by the class to which they move.
Status move_classes(const Symmetry &sym, int NMODES, const int (&map)[4], int (&W)[5], int (&N)[5],
                    Array<int, 2> &M) {
    if (!M.alloc(NMODES, 4))
        return MSGOUT(" RAM too small ");
    for (int k = 1; k <= sym.NSYMR; ++k) {
        W[k] = map[k - 1];
        N[W[k]] = sym.NMCLS[k];
        for (int i = 1; i <= sym.NMCLS[k]; ++i)
            M(i, W[k]) = sym.MODCLS(i, k);
    }
    return Status::ok;
}

} // namespace

Status SYMSET(int NMODES, int ISX, int ISY, View<const int, 1> MODE, int diffraction, Symmetry &sym) {
    const SymmetryRow &row = SYMTAB[3 * ISX + ISY + 4];
    if (!sym.MODLST.alloc(NMODES) || !sym.MODCLS.alloc(NMODES, 4) || !sym.MODPOS.alloc(NMODES))
        return MSGOUT(" RAM too small ");
    sym.NSYMG = row.images;
    for (int g = 1; g <= 4; ++g)
        sym.ISYMG[g] = row.image[g - 1];
    sym.NCLS = row.classes;
    sym.NDCLS = row.parts;
    int column = 0;
    int active = 0;
    const int *modes = row.modes;
    for (int k = 1; k <= row.classes; ++k) {
        sym.ISYMG[4 + k] = row.parity[k - 1];
        const int *modes_end = modes + row.modes_of_class[k - 1];
        int listed = 0;
        for (int m = 1; m <= NMODES; ++m) {
            if (MODE(m) > 0 && std::find(modes, modes_end, MODE(m)) != modes_end) {
                sym.MODPOS(m) = ++column;
                sym.MODLST(column) = m;
                sym.MODCLS(++listed, active + 1) = m;
            }
        }
        modes = modes_end;
        if (listed > 0 || diffraction == 1) {
            ++active;
            sym.ICLS[active] = row.parity[k - 1];
            sym.NMCLS[active] = listed;
            for (int d = 1; d <= row.parts; ++d)
                sym.IDCLS[(active - 1) * row.parts + d] = row.part[(k - 1) * row.parts + d - 1];
        }
    }
    sym.NSYMR = active;
    sym.NSYMD = column;
    return Status::ok;
}

Status WDDCLS(int NMODES, int ISX, int ISY, Symmetry &sym) {
    const auto &maps = CLASS_MAPS[ISY + 2 * ISX];
    if (failed(move_classes(sym, NMODES, maps[0], sym.WCLS1, sym.NMCLS1, sym.MODCLS1)) ||
        failed(move_classes(sym, NMODES, maps[1], sym.WCLS2, sym.NMCLS2, sym.MODCLS2)))
        return Status::failed;
    return move_classes(sym, NMODES, maps[2], sym.WCLS3, sym.NMCLS3, sym.MODCLS3);
}

Status WDDLFM(int NMODES, int ISX, int ISY, Symmetry &sym) {
    if (!sym.WMODM.alloc(NMODES, 4) || !sym.WMODP.alloc(NMODES))
        return MSGOUT(" RAM too small ");
    const FlowRow &row = FLOW_MODES[ISY + 2 * ISX];
    const int *mode = row.modes;
    for (int k = 1; k <= sym.NSYMR; ++k) {
        sym.WMODC[k] = row.count[k - 1];
        for (int i = 1; i <= sym.WMODC[k]; ++i)
            sym.WMODM(i, k) = *mode++;
    }
    sym.WMODP(1) = 1;
    sym.WMODP(2) = 2;
    sym.WMODP(6) = 3;
    return Status::ok;
}
