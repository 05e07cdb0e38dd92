// Reader of the hand-over file.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"

#include <string>
#include <vector>

// What a hand-over file holds, as far as its users need it; names, shapes and units as in the run state.
struct P2fFile {
    f32 version = 0;
    int NEQN = 0, NBODY = 0, NSYMD = 0, NMODES = 0;
    int IWADD = 0, NFSP = 0;
    int ISX = 0, ISY = 0, IRAD = 0, IDIFF = 0, NPER = 0, NBETA = 0, NBETAM = 1;
    int NSYMG = 0, NCLS = 0, NSYMR = 0, ICLS[5] = {};
    int NDCLS = 0, IDCLS[5] = {}, NMCLS[5] = {};
    int ISOR = 0, IQUAD = 0, ILOG = 0, IDIAG = 0, IDIPOL = 0;
    int ISOLVE = 0, ISCATT = 0, IRR = 0, I2ND = 0;
    f32 GRAV = 0, HBOT = 0;
    Array<f32, 1> ULEN;
    Array<int, 1> NEQNB, NPANS, NEWMDS;
    Array<f32, 2> XBODY;
    Array<f32, 1> PER, WVNH, BETA, SINBET, COSBET;
    Array<int, 1> MODLST, MODPOS;
    Array<int, 2> MODCLS;
    Array<f32, 2> XCT, PMOM, VEL;
    Array<f32, 3> XVER; // (4,3,NEQN)
    Array<f32, 2> XIV, ETV, SIDE, GJAC, PSIZ;
    Array<f32, 3> TRM, XGP;     // (3,3,NEQN), (4,3,NEQN)
    Array<int, 1> IDIP;         // (NEQN), empty without dipole panels
    Array<f32, 1> DPORA, DPORB; // likewise
    Array<f32, 2> VOL, XCB, CHYD;
    std::vector<std::string> text; // the text block without its end mark
    Array<int, 1> IFSP, IRRP;      // (NEQN), empty when the file has none
    Array<int, 1> NWLB;            // (NBODY)
    Array<int, 1> IWLP, IWLE;      // (NWL), panels counted within the body; empty unless ISOR=1
    Array<c32, 3> PHIR;            // (NEQN,NSYMD,NPER), empty for IRAD=-1
    Array<c32, 4> PHID;            // (NEQN,NBETAM,NSYMR,NPER), empty for IDIFF=-1
    // Sources and their velocities, empty as above and unless ISOR=1. In VELR and VELD axis and column share
    // the second index, 3 (column-1) + axis.
    Array<c32, 3> SRCR; // (NEQN,NSYMD,NPER), with IWADD=1 (NEQN,max(NSYMD,3),NPER)
    Array<c32, 3> VELR; // (NEQN,3*NSYMD,NPER)
    Array<c32, 4> SRCD; // (NEQN,NBETAM,NSYMR,NPER)
    Array<c32, 4> VELD; // (NEQN,3*NBETAM,NSYMR,NPER)

    // IWADD=1: class maps, from 1, modes of the steady flows, free-surface panels and the flows.
    int WCLS1[5] = {}, WCLS2[5] = {}, WCLS3[5] = {}, WMODC[5] = {};
    Array<int, 2> WMODM;
    Array<int, 1> WMODP;
    Array<f32, 2> XIVF, ETVF, XCTF, PMOMF;
    Array<f32, 3> TRMF;
    Array<f32, 2> STB1, STB2, STF1, STF3;
    Array<f32, 3> STB3, STF2;
    // The second-order arrays, empty as above: IRAD=-1 without those of (..,NSYMD,NPER), IDIFF=-1
    // without the others.
    Array<c32, 3> W2R0, W2R1, W2R2, W2R3;        // (NEQN,NSYMD,NPER)
    Array<c32, 3> FSR1, FSR2, FSR3;              // (NFSP,NSYMD,NPER)
    Array<c32, 4> PHID2, SRCD2;                  // (NEQN,NBETAM,NSYMR,NPER)
    Array<c32, 4> VELD2;                         // (NEQN,3*NBETAM,NSYMR,NPER)
    Array<c32, 4> W2D0, W2D0B, W2D1, W2D2, W2D3; // (NEQN,NBETAM,NSYMR,NPER)
    Array<c32, 4> FSD1, FSD2, FSD3, FSD4, FSD5;  // (NFSP,NBETAM,NSYMR,NPER)
};

// Reads the file. False, with the reason in `error`, when it cannot be opened, is no hand-over file of this
// format, or is cut short.
[[nodiscard]] bool read_p2f(const std::string &name, P2fFile &p2f, std::string &error);
