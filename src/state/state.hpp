// The run state: every parameter and array that crosses a folder, grouped by the stage that fills it. The
// driver owns one RunState; after the input stage it is read-only, but for WVNH, of which each period writes
// its element. Lengths are non-dimensional, divided by ULEN(1), unless told otherwise. Arrays have their
// first index fastest.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"

#include <array>
#include <string>
#include <vector>

constexpr f32 EPSIT = 1.0e-6f;       // tolerance of the first solve of a period
constexpr int MAXIT = 36;            // iteration limit of the solvers
constexpr f32 RKNEAR = 100.0f;       // pairs nearer than sqrt(RKNEAR region2) get Rankine integrals
constexpr f32 FORMAT_VERSION = 5.5f; // first record of the hand-over file
constexpr int NKEY = 18;             // entries of KFLAG
constexpr f32 DEGREE = 0.017453292f; // pi / 180
constexpr f32 PI2 = 6.2831855f;      // 2 pi
constexpr f32 PI4 = 12.566371f;      // 4 pi

// Switches and scalars of the input.
struct Options {
    std::array<bool, NKEY + 1> KFLAG{}; // KFLAG(k) true: keyword k was not in the configuration file (from 1)
    int MAXSCR = 2;                     // largest matrix order that may be held in memory; at least 2
    int ISOLVE = 0;  // equation solver: 0 iterative, 1 direct, above 1 block-iterative with that many blocks
    int ISOLVN = 0;  // 1: ISOLVE was given as -1
    int ISOR = 0;    // 1: sources and fluid velocities are computed
    int IRR = 0;     // irregular-frequency treatment: 0 none, 1 to 4
    int IRRX = 0;    // reference panel of a fully filled tank; 0: no such tank
    int IQUAD = 0;   // 1: the wave term is integrated with four Gauss points, not one point
    int ILOG = 0;    // 1: the logarithmic part of the wave term is integrated with the Rankine part
    int IDIAG = 0;   // 0: the size scale of a panel is its area; 1: its squared diagonal
    int ISCATT = 0;  // 1: the diffraction problem is solved for the scattered potential
    int IPERIO = 1;  // meaning of PER as read: 1 period [s], 2 frequency [rad/s], 3, 4 wave number
    int I2ND = 0;    // second-order flag, needs ISOR=1
    int IWADD = 0;   // 1: run for wave drift damping
    int IFSLID = 0;  // not 0: the global GDF holds BDTYP, FSDMP of each body
    int IUSESCR = 0; // 1: influence matrices go to scratch files whatever the memory
    int NTRD = 0;    // upper limit of the thread count; 0 none
    int CHECKP = 0;  // 1: finished periods are kept in a checkpoint until the result is complete
    int IRAD = 0;    // radiation: -1 none, 0 the modes of MODE, 1 all modes
    int IDIFF = 0;   // diffraction: -1 none, 0 only the classes of the wanted modes, 1 all
    int ISX = 0; // symmetry about x = 0: 0 none, 1 symmetric, -1 wall (-2 on input: wall, mirror the panels)
    int ISY = 0; // the same about y = 0
    int IMDRUN = 0; // extra modes: -1 first pass, 0 none, 1 MOD files present
    int NBLKSZ = 0; // block size of the block-iterative solver
    int NBLKLS = 0; // size of its last block
    int IBDT3 = 0;  // 1: some BDTYP is 3, a lid body
    int NCORE = 0;  // order of the matrix AMAT of one thread
    f32 HBOT = 0;   // water depth; negative for infinite depth
    f32 GRAV = 0;   // gravity, dimensional
    f32 RULEN = 0;  // 1 / ULEN(1)
};

// The source influence itself is kept: for the scattered potential, and for lids, whose
// coefficients it makes.
inline bool keeps_source(const Options &opt) {
    return opt.ISCATT == 1 || opt.IBDT3 == 1;
}

// Names and titles of the input files, numbered from 1.
struct NameTable {
    std::vector<std::string> entry;
    std::string &operator()(int i) { return entry.at(static_cast<std::size_t>(i) - 1); }
    const std::string &operator()(int i) const { return entry.at(static_cast<std::size_t>(i) - 1); }
    void resize(int n) { entry.resize(static_cast<std::size_t>(n)); }
};
struct Files {
    std::string config = "config.vrd";
    std::string names = "fnames.vrd";
    std::string list = "vorda.lis";
    std::string checkpoint; // beside the P2F file, CHECKP=1; else empty
    NameTable HEADER; // titles: 1 GDF or global GDF, 2 POT, N+2 GDF of body N, 5 FDF in the single-body form
    NameTable FILNAM; // 1 GDF or global GDF, 2 POT, 3 P2F, 4 generated geometry, 5 FDF; N+4 GDF of body N
};
// Extensions by number: GDF, POT, P2F, PRE, MOD, IDF.
constexpr std::array<const char *, 6> EXTS = {".gdf", ".pot", ".p2f", ".pre", ".mod", ".idf"};

struct Bodies {
    int NBODY = 0;        // number of bodies; 0 from the reader in the single-body form, then 1
    int NMODES = 0;       // modes of all bodies: 6 + NEWMDS(b) each
    Array<f32, 1> ULEN;   // length scale of each body, dimensional (NBODY)
    Array<f32, 2> XBODY;  // origin x, y, z and heading [degrees] (4,NBODY)
    Array<int, 1> NEQNB;  // panels of each body (NBODY)
    Array<int, 1> NWLB;   // waterline panels of each body (NBODY)
    Array<int, 1> NDIPB;  // dipole marker of each body (NBODY)
    Array<int, 1> NEWMDS; // extra modes of each body, negative in a first pass (NBODY)
    Array<int, 1> NPANS;  // panels without interior free-surface panels (NBODY)
    Array<int, 1> BDTYP;  // body type, 3: lid; only with IFSLID (NBODY)
    Array<f32, 1> FSDMP;  // damping of a lid body; only with IFSLID (NBODY)
    Array<int, 1> IPANB0; // first and last panel of each body; only with IFSLID (NBODY)
    Array<int, 1> IPANB1;
    Array<int, 1> MODE; // mode switches 0, 1; after the body pre-pass the rigid-mode number or 0 (NMODES)
    Array<f32, 2> VOL;  // volume from the x, y and z integrals (3,NBODY)
    Array<f32, 2> XCB;  // centre of buoyancy, body axes (3,NBODY)
    Array<f32, 2> CHYD; // hydrostatic matrix per density and gravity (NMODES,NMODES)
};

// Panels of all bodies. NEQN counts them.
struct Mesh {
    int NEQN = 0;
    Array<f32, 3> XVER; // vertices, body axes (4,3,capacity >= NEQN)
    Array<f32, 2> XCT;  // centroid, global axes (3,NEQN)
    Array<f32, 3> TRM;  // local frame: row r is axis r, row 3 the normal into the body (3,3,NEQN)
    Array<f32, 2> XIV;  // vertices in the panel plane about the centroid (4,NEQN)
    Array<f32, 2> ETV;
    Array<f32, 2> PMOM; // area and scaled area moments (13,NEQN)
    Array<f32, 2> SIDE; // side lengths, exactly 0 for a collapsed side (4,NEQN)
    Array<f32, 3> XGP;  // Gauss points, global axes (4,3,NEQN)
    Array<f32, 2> GJAC; // Gauss weights, their sum is the area (4,NEQN)
    Array<f32, 2> PSIZ; // size scales of the panel integrals (2,NEQN)
    Array<f32, 2> VEL;  // normal velocity of each mode (NMODES,NEQN)
    Array<f32, 3> RXNG; // r x N at the Gauss points, body axes (4,3,NEQN)
    Array<int, 1> IFSP; // 0 ordinary, 1 interior free-surface panel, -1 in z = 0 with normal up (NEQN)
    // 1: made from a hull panel by projection on the free surface (NEQN). With IFSP=-1 such a panel is
    // the image of an overhang that takes away part of the panels of IFSP=1; without it IFSP=-1 is hull
    // of no draught.
    Array<int, 1> projected;
};

// Panels with a side in the free surface. Panel numbers count within the body, but for IRR=4 over the mesh.
struct Waterline {
    int NWL = 0;
    Array<int, 1> IWLP; // panel (NWL)
    Array<int, 1> IWLE; // first vertex of its wet side (NWL)
};

// Interior panels behind each waterline panel: a count and that many panel numbers, one strip
// after the other.
struct Strips {
    Array<int, 1> IRRP; // (at least NEQN)
    Array<int, 1> head; // waterline panel of each strip, counted over the mesh (NWL)
};

// Dipole panels; the arrays exist only when IDIPOL.
struct Dipoles {
    bool IDIPOL = false;
    Array<int, 1> IDIP;  // 0 ordinary, else dipole panel; 3: its own VEL is left out (NEQN)
    Array<f32, 1> DPORA; // resistance coefficients (NEQN)
    Array<f32, 1> DPORB;
    Array<f32, 1> DTHK; // thickness (NEQN)
    Array<f32, 1> DEPS; // step of the finite differences (NEQN)
};

inline bool is_dipole(const Dipoles &dipoles, int panel) {
    return dipoles.IDIPOL && dipoles.IDIP(panel) != 0;
}
// A dipole panel that lets fluid through.
inline bool is_porous(const Dipoles &dipoles, int panel) {
    return is_dipole(dipoles, panel) && (dipoles.DPORA(panel) != 0 || dipoles.DPORB(panel) != 0);
}

struct Symmetry {
    int NSYMG = 0;        // number of images
    int ISYMG[9] = {};    // 1..4: image numbers; 5..8: parity type of each class of the table row
    int NCLS = 0;         // classes of the table row
    int NSYMR = 0;        // active classes
    int ICLS[5] = {};     // parity type of each active class, from 1
    int NMCLS[5] = {};    // active modes of each active class, from 1
    int NSYMD = 0;        // active modes of all classes: radiation solution columns
    int NDCLS = 0;        // parts of the incident wave that go into one class
    int IDCLS[5] = {};    // those of active class s at (s-1) NDCLS + 1 .. s NDCLS, from 1
    Array<int, 1> MODLST; // active modes, class after class (NMODES)
    Array<int, 2> MODCLS; // k-th active mode of active class s (NMODES,4)
    Array<int, 1> MODPOS; // solution column of a mode, 0 for a mode that is off (NMODES)

    // IWADD=1: class to which a function of each class moves with the slow surge, sway and yaw, from 1, and
    // the active modes by the class to which they move.
    int WCLS1[5] = {}, WCLS2[5] = {}, WCLS3[5] = {};
    int NMCLS1[5] = {}, NMCLS2[5] = {}, NMCLS3[5] = {};
    Array<int, 2> MODCLS1, MODCLS2, MODCLS3; // (NMODES,4)
    // Modes of the steady flows (surge, sway, yaw) by class: counts, from 1, modes, and columns 1 to 3
    // of a mode.
    int WMODC[5] = {};
    Array<int, 2> WMODM; // (NMODES,4)
    Array<int, 1> WMODP; // (NMODES)
};

// The limit frequency that a deep-water wave number WVN0 stands for: 0 none, 1 zero frequency, 2 infinite
// frequency. Waves longer than 2 pi 1e6 lengths count as infinite frequency.
inline int limit_of(f32 W) {
    constexpr f32 LIMIT = 1.0e-6f;
    return W > LIMIT ? 0 : W < -LIMIT ? 1 : 2;
}

struct Periods {
    int NPER = 0;
    int NBETA = 0;
    int NBETAM = 1;       // max(NBETA,1)
    Array<f32, 1> PER;    // period [s]; 0 infinite, negative zero frequency (NPER)
    Array<f32, 1> WVN0;   // deep-water wave number, or PER itself at a limit frequency (NPER)
    Array<f32, 1> WVNH;   // wave number at the depth of the run (NPER)
    Array<f32, 1> BETA;   // wave headings [degrees] (NBETA)
    Array<f32, 1> SINBET; // sine and cosine of BETA (NBETA)
    Array<f32, 1> COSBET;
};

// Pairs in front of those of panel I when the pairs J <= I of all panels stand one after the other.
constexpr std::int64_t pair_place(std::int64_t I) {
    return I * (I - 1) / 2;
}

constexpr int NEAR_ROWS = 16;              // of a piece of a Rankine column
constexpr int NEAR_GROUP = 16 * NEAR_ROWS; // rows of a word of near_rows

// The shared store of the Rankine influence, filled once per run; planes 0..ILOG. First index field panel.
// The arrays lie in one block, so that the processes of a computer can share it.
struct RankineStore {
    View<f32, 4> RKDM; // dipole influence (NEQN,NEQN,NSYMR,0:ILOG)
    // Pair codes of 13 bits, that of J <= I at pair_place(I) + J (NEQN (NEQN+1)/2).
    View<std::uint16_t, 1> ICODM;
    View<f32, 3> RHSRAN; // Rankine share of the radiation right-hand sides (NEQN,NSYMD,0:ILOG)
    View<f32, 4> RKSM;   // source influence, ISCATT=1 (NEQN,NEQN,NSYMR,0:ILOG)
    View<f32, 4> RKNM;   // normal derivative of the source influence, ISOR=1 (NEQN,NEQN,NSYMR,0:ILOG)
    // Its gradient, ISOR=1: axis and class share the third index, 3 (s-1) + axis (NEQN,NEQN,3*NSYMR,0:ILOG).
    View<f32, 4> RKVM;
    // Most pairs are far from each other, and their Rankine influence is 0 here. Bit k of near_rows(J,g)
    // tells that column J holds something in rows NEAR_ROWS (16 (g-1) + k) + 1 to .. + NEAR_ROWS.
    View<std::uint16_t, 2> near_rows;
    Array<std::byte, 1> block; // what the arrays lie in; empty when it belongs to somebody else
};

// Panels on the free surface around the body, IWADD=1. NFSP counts them, 1 in other runs, which
// have no arrays.
struct SurfaceMesh {
    int NFSP = 1;
    Array<f32, 2> XIVF;  // as XIV of the body panels (4,NFSP)
    Array<f32, 2> ETVF;  // as ETV (4,NFSP)
    Array<f32, 2> XCTF;  // as XCT (3,NFSP)
    Array<f32, 3> TRMF;  // as TRM (3,3,NFSP)
    Array<f32, 2> PMOMF; // as PMOM (13,NFSP)
    Array<f32, 2> SIDEF; // as SIDE (4,NFSP)
    Array<f32, 3> XGPF;  // as XGP (4,3,NFSP)
    Array<f32, 2> GJACF; // as GJAC (4,NFSP)
    Array<f32, 2> PSIZF; // as PSIZ (2,NFSP)
};

// The flows of slow steady surge, sway and yaw (d = 1, 2, 3) past the body under a rigid lid,
// IWADD=1; unit velocities.
struct SteadyFlow {
    Array<f32, 2> STB1; // potential at waterline panels, by their place in IWLP, with the stream; d = 1, 2;
                        // else 0 (NEQN,3)
    Array<f32, 2> STB2; // source strength (NEQN,3)
    Array<f32, 3> STB3; // velocity on the body relative to it (NEQN,3,3): panel, axis, d
    Array<f32, 2> STF1; // potential on the free surface, with the stream; d = 1, 2 (NFSP,2)
    Array<f32, 3> STF2; // its horizontal gradient without the stream (NFSP,2,3)
    Array<f32, 2> STF3; // its second vertical derivative (NFSP,3)
};

struct Memory {
    std::int64_t AVAILM = 0; // physical memory available [bytes]
    bool INCORE = false;     // the influence matrices are held in memory
    int NTMAX = 0;           // thread limit of the memory plan
};

struct RunState {
    Options opt;
    Files files;
    Bodies bodies;
    Mesh mesh;
    Waterline waterline;
    Strips strips;
    Dipoles dipoles;
    Symmetry sym;
    Periods periods;
    Memory memory;
    RankineStore store;
    SurfaceMesh surface;
    SteadyFlow flow;
    std::vector<std::string> HDRSCR; // text echo of the run, lines as in the list file; goes to the P2F file
};
