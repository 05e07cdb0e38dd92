// The hand-over file of runs with sources and velocities, written and read back. Truth: what was put
// into the state.
#include "hull_meshes.hpp"
#include "post/p2f_reader.hpp"
#include "results/p2f_writer.hpp"
#include "run_folder.hpp"

#include <vector>

namespace {

constexpr int PERIODS = 2, HEADINGS = 2, CLASSES = 2, MODES = 3;

struct Problem {
    const char *label;
    int ISOR, IRAD, IDIFF, IRR, IFSLID;
};
// Arrays in the state and in the file, which have them by the same names.
struct Part {
    bool there;
    c32 *data;
    std::int64_t size;
};
std::vector<Part> parts_of_period(const Problem &row, auto &t) {
    const bool r = row.IRAD >= 0, d = row.IDIFF >= 0, sources = row.ISOR == 1;
    std::vector<Part> parts;
    const auto add = [&](bool there, auto &...array) {
        (parts.push_back({there, array.data(), array.size()}), ...);
    };
    add(r, t.PHIR);
    add(r && sources, t.SRCR, t.VELR);
    add(d, t.PHID);
    add(d && sources, t.SRCD, t.VELD);
    return parts;
}
// Element i (from 0) of an array: no two are equal.
f32 value(std::size_t array, std::int64_t i) {
    return static_cast<f32>(1000 * array) + static_cast<f32>(i);
}

// Two bodies of two panels each, with waterline lists and strips. The strip list is longer than NEQN.
void make(const Problem &row, RunState &run) {
    hulls::Quads mesh;
    hulls::add_patch(mesh, {0, 0, -1}, {2, 0, 0}, {0, 1, 0}, 4, 1);
    hulls::set_body(mesh, run);
    run.opt.ISOR = row.ISOR;
    run.opt.IRAD = row.IRAD;
    run.opt.IDIFF = row.IDIFF;
    run.opt.IRR = row.IRR;
    run.opt.IFSLID = row.IFSLID;
    Bodies &bodies = run.bodies;
    Periods &periods = run.periods;
    Symmetry &sym = run.sym;
    bodies.NBODY = 2;
    bodies.NMODES = 12;
    periods.NPER = PERIODS;
    periods.NBETA = periods.NBETAM = HEADINGS;
    sym.NSYMR = CLASSES;
    sym.NSYMD = MODES;
    run.waterline.NWL = 3;
    ASSERT_TRUE(bodies.XBODY.alloc(4, 2) && bodies.NEQNB.alloc(2) && bodies.NEWMDS.alloc(2) &&
                bodies.NPANS.alloc(2) && bodies.MODE.alloc(12) && bodies.VOL.alloc(3, 2) &&
                bodies.XCB.alloc(3, 2) && bodies.ULEN.alloc(2) && bodies.NWLB.alloc(2) &&
                allocate_mesh(bodies, run.mesh) && periods.PER.alloc(PERIODS) &&
                periods.WVNH.alloc(PERIODS) && periods.BETA.alloc(HEADINGS) &&
                periods.SINBET.alloc(HEADINGS) && periods.COSBET.alloc(HEADINGS) && sym.MODLST.alloc(12) &&
                sym.MODCLS.alloc(12, 4) && sym.MODPOS.alloc(12) && run.waterline.IWLP.alloc(3) &&
                run.waterline.IWLE.alloc(3) && run.strips.IRRP.alloc(5));
    // What the reader holds to its range: two classes of two modes and one.
    run.opt.GRAV = 9.80665f;
    bodies.ULEN.fill(1);
    sym.NSYMG = 1;
    sym.NCLS = CLASSES;
    const int mode[MODES] = {1, 3, 2}, of_class[MODES] = {1, 1, 2};
    for (int k = 0; k < MODES; ++k) {
        sym.ICLS[of_class[k]] = of_class[k];
        sym.MODCLS(++sym.NMCLS[of_class[k]], of_class[k]) = sym.MODLST(k + 1) = mode[k];
        sym.MODPOS(mode[k]) = k + 1;
    }
    bodies.NEQNB.fill(2);
    bodies.ULEN.fill(1);
    run.opt.GRAV = 9.81f;
    sym.NSYMG = sym.NCLS = CLASSES;
    sym.NDCLS = 1;
    for (int m = 1; m <= MODES; ++m)
        sym.MODLST(m) = m;
    for (int s = 1; s <= CLASSES; ++s) {
        sym.ICLS[s] = sym.IDCLS[s] = s;
        sym.NMCLS[s] = s == 1 ? MODES - 1 : 1;
        for (int k = 1; k <= sym.NMCLS[s]; ++k)
            sym.MODCLS(k, s) = s == 1 ? k : MODES;
    }
    bodies.NWLB(1) = 1;
    bodies.NWLB(2) = 2;
    const int within[3] = {2, 1, 2}, over[3] = {2, 3, 4};
    for (int w = 1; w <= 3; ++w) {
        run.waterline.IWLP(w) = row.IRR == 4 ? over[w - 1] : within[w - 1];
        run.waterline.IWLE(w) = w + 1;
    }
    for (int i = 1; i <= 4; ++i)
        run.mesh.IFSP(i) = i - 3;
    for (int i = 1; i <= 5; ++i)
        run.strips.IRRP(i) = 20 + i;
    run.files.FILNAM.resize(4);
    run.files.FILNAM(3) = "box.p2f";
    run.HDRSCR = {" a line of the report"};
}

// Solves nothing, but writes all periods as the period loop does, and the file. Sizes of the arrays.
std::vector<std::int64_t> write(const Problem &row, RunState &run) {
    RecordFile scratch(8);
    EXPECT_TRUE(scratch.open_scratch());
    std::vector<std::int64_t> sizes, places(PERIODS);
    for (int period = PERIODS; period >= 1; --period) { // in any order
        places[static_cast<std::size_t>(period) - 1] = scratch.place();
        ThreadState thread;
        EXPECT_EQ(allocate_solution(run, thread), Status::ok);
        EXPECT_EQ(ALLOCATE_WA(run, thread), Status::ok);
        const auto parts = parts_of_period(row, thread);
        sizes.clear();
        for (std::size_t a = 0; a < parts.size(); ++a) {
            sizes.push_back(parts[a].size);
            for (std::int64_t i = 0; i < parts[a].size; ++i)
                parts[a].data[i] = {value(a, i), static_cast<f32>(period)};
        }
        EXPECT_EQ(PERWRT(period_records(run.opt, thread), scratch), Status::ok);
    }
    EXPECT_EQ(RESWRT(run, scratch, places), Status::ok);
    return sizes;
}

void expect_what_was_written(const Problem &row) {
    SCOPED_TRACE(row.label);
    const RunFolder folder;
    RunState run;
    make(row, run);
    const std::vector<std::int64_t> sizes = write(row, run);
    P2fFile p2f;
    std::string error;
    ASSERT_TRUE(read_p2f("box.p2f", p2f, error)) << error;
    const auto parts = parts_of_period(row, p2f);
    for (std::size_t a = 0; a < parts.size(); ++a) {
        ASSERT_EQ(parts[a].size, parts[a].there ? PERIODS * sizes[a] : 0) << a;
        ASSERT_EQ(parts[a].size > 0, parts[a].there) << a;
        for (std::int64_t i = 0; i < parts[a].size; ++i)
            ASSERT_EQ(parts[a].data[i], c32(value(a, i % sizes[a]), static_cast<f32>(1 + i / sizes[a])))
                << a << " " << i;
    }
    const int n = run.mesh.NEQN;
    EXPECT_EQ(p2f.IRR, row.IRR);
    EXPECT_EQ(p2f.IFSP.size(), row.IRR > 0 || row.IFSLID == 1 ? n : 0);
    EXPECT_EQ(p2f.IRRP.size(), row.IRR > 0 ? n : 0);
    for (int i = 1; i <= p2f.IFSP.size(); ++i)
        EXPECT_EQ(p2f.IFSP(i), i - 3);
    for (int i = 1; i <= p2f.IRRP.size(); ++i)
        EXPECT_EQ(p2f.IRRP(i), 20 + i);
    ASSERT_EQ(p2f.IWLP.size(), row.ISOR == 1 ? 3 : 0);
    const int within[3] = {2, 1, 2};
    for (int w = 1; w <= p2f.IWLP.size(); ++w) {
        EXPECT_EQ(p2f.IWLP(w), within[w - 1]) << "counted within the body";
        EXPECT_EQ(p2f.IWLE(w), w + 1);
    }
    EXPECT_EQ(p2f.NWLB(2), 2);
    ASSERT_EQ(p2f.text.size(), 1u);
    EXPECT_EQ(p2f.text[0], " a line of the report");
}
constexpr Problem ROWS[] = {
    {"all", 1, 1, 1, 0, 0},
    {"potentials", 0, 1, 1, 0, 0},
    {"radiation", 1, 0, -1, 1, 0},
    {"diffraction", 1, -1, 0, 2, 0},
    {"lid_over_the_mesh", 1, 1, 1, 4, 0},
    {"potentials_with_lid", 0, 1, -1, 3, 0},
    {"lid_body", 1, 1, 1, 0, 1},
};
TEST(Handover, HoldsWhatWasWritten) {
    for (const Problem &row : ROWS)
        expect_what_was_written(row);
}

} // namespace
