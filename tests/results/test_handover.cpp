// The hand-over file of runs with sources and velocities, written and read back. Truth: what was put into the
// state.
#include "hull_meshes.hpp"
#include "post/p2f_reader.hpp"
#include "results/p2f_writer.hpp"
#include "run_folder.hpp"

#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int PERIODS = 2, COLUMNS = 3, HEADINGS = 2, CLASSES = 2;
enum Kind {
    RADIATION,
    DIFFRACTION,
    RADIATION_SOURCES,
    RADIATION_VELOCITY,
    DIFFRACTION_SOURCES,
    DIFFRACTION_VELOCITY
};

// Element i (from 0) of an array of a period: no two are equal.
c32 value(Kind kind, int period, std::int64_t i) {
    return {static_cast<f32>(i), static_cast<f32>(10 * kind + period)};
}
template <class Data> void fill(Data &array, Kind kind, int period) {
    for (std::int64_t i = 0; i < array.size(); ++i)
        array.data()[i] = value(kind, period, i);
}

struct Problem {
    const char *label;
    int ISOR, IRAD, IDIFF, IRR, IFSLID;
};
void PrintTo(const Problem &row, std::ostream *out) {
    *out << row.label;
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
    sym.NSYMD = COLUMNS;
    run.waterline.NWL = 3;
    ASSERT_TRUE(bodies.XBODY.alloc(4, 2) && bodies.NEQNB.alloc(2) && bodies.NEWMDS.alloc(2) &&
                bodies.NPANS.alloc(2) && bodies.MODE.alloc(12) && bodies.VOL.alloc(3, 2) &&
                bodies.XCB.alloc(3, 2) && bodies.ULEN.alloc(2) && bodies.NWLB.alloc(2) &&
                allocate_mesh(bodies, run.mesh) && periods.PER.alloc(PERIODS) &&
                periods.WVNH.alloc(PERIODS) && periods.BETA.alloc(HEADINGS) &&
                periods.SINBET.alloc(HEADINGS) && periods.COSBET.alloc(HEADINGS) && sym.MODLST.alloc(12) &&
                sym.MODCLS.alloc(12, 4) && sym.MODPOS.alloc(12) && run.waterline.IWLP.alloc(3) &&
                run.waterline.IWLE.alloc(3) && run.strips.IRRP.alloc(5));
    bodies.NEQNB.fill(2);
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

// Solves nothing, but writes all periods as the period loop does, and the file.
void write(RunState &run) {
    RecordFile scratch(8);
    ASSERT_TRUE(scratch.open_scratch());
    const int n = run.mesh.NEQN;
    for (int period = 1; period <= PERIODS; ++period) {
        ThreadState thread;
        ASSERT_EQ(allocate_solution(run, thread), Status::ok);
        ASSERT_EQ(ALLOCATE_WA(run, thread), Status::ok);
        fill(thread.PHIR, RADIATION, period);
        fill(thread.PHID, DIFFRACTION, period);
        ASSERT_EQ(PERWRT(run.opt, thread, scratch), Status::ok);
        if (run.opt.ISOR == 1) {
            fill(thread.SRCR, RADIATION_SOURCES, period);
            fill(thread.VELR, RADIATION_VELOCITY, period);
            fill(thread.SRCD, DIFFRACTION_SOURCES, period);
            fill(thread.VELD, DIFFRACTION_VELOCITY, period);
            ASSERT_EQ(PERWRT(run.opt, thread, scratch, PeriodPart::sources), Status::ok);
        }
        EXPECT_EQ(thread.VELR.size(), run.opt.ISOR == 1 && run.opt.IRAD >= 0 ? n * 3 * COLUMNS : 0);
    }
    ASSERT_EQ(RESWRT(run, scratch), Status::ok);
}

// The array holds what was written of this kind, or nothing.
template <class Data> void expect(const Data &array, Kind kind, bool there, std::int64_t per_period) {
    ASSERT_EQ(array.empty(), !there) << kind;
    if (!there)
        return;
    ASSERT_EQ(array.size(), PERIODS * per_period) << kind;
    for (int period = 1; period <= PERIODS; ++period)
        for (std::int64_t i = 0; i < per_period; ++i)
            ASSERT_EQ(array.data()[(period - 1) * per_period + i], value(kind, period, i))
                << kind << " " << i;
}

class Handover : public testing::TestWithParam<Problem> {};
TEST_P(Handover, HoldsWhatWasWritten) {
    const Problem &row = GetParam();
    const RunFolder folder;
    RunState run;
    make(row, run);
    write(run);
    P2fFile p2f;
    std::string error;
    ASSERT_TRUE(read_p2f("box.p2f", p2f, error)) << error;
    const int n = run.mesh.NEQN;
    const bool radiation = row.IRAD >= 0, diffraction = row.IDIFF >= 0, sources = row.ISOR == 1;
    const int r = n * COLUMNS, d = n * HEADINGS * CLASSES;
    expect(p2f.PHIR, RADIATION, radiation, r);
    expect(p2f.SRCR, RADIATION_SOURCES, radiation && sources, r);
    expect(p2f.VELR, RADIATION_VELOCITY, radiation && sources, 3 * r);
    expect(p2f.PHID, DIFFRACTION, diffraction, d);
    expect(p2f.SRCD, DIFFRACTION_SOURCES, diffraction && sources, d);
    expect(p2f.VELD, DIFFRACTION_VELOCITY, diffraction && sources, 3 * d);
    EXPECT_EQ(p2f.IRR, row.IRR);
    EXPECT_EQ(p2f.IFSP.size(), row.IRR > 0 || row.IFSLID == 1 ? n : 0);
    EXPECT_EQ(p2f.IRRP.size(), row.IRR > 0 ? n : 0);
    for (int i = 1; i <= p2f.IFSP.size(); ++i)
        EXPECT_EQ(p2f.IFSP(i), i - 3);
    for (int i = 1; i <= p2f.IRRP.size(); ++i)
        EXPECT_EQ(p2f.IRRP(i), 20 + i);
    ASSERT_EQ(p2f.IWLP.size(), sources ? 3 : 0);
    const int within[3] = {2, 1, 2};
    for (int w = 1; w <= p2f.IWLP.size(); ++w) {
        EXPECT_EQ(p2f.IWLP(w), within[w - 1]) << "counted within the body";
        EXPECT_EQ(p2f.IWLE(w), w + 1);
    }
    EXPECT_EQ(p2f.NWLB(2), 2);
    ASSERT_EQ(p2f.text.size(), 1u);
    EXPECT_EQ(p2f.text[0], " a line of the report");
}
INSTANTIATE_TEST_SUITE_P(rows, Handover,
                         testing::Values(Problem{"all", 1, 1, 1, 0, 0}, Problem{"potentials", 0, 1, 1, 0, 0},
                                         Problem{"radiation", 1, 0, -1, 1, 0},
                                         Problem{"diffraction", 1, -1, 0, 2, 0},
                                         Problem{"lid_over_the_mesh", 1, 1, 1, 4, 0},
                                         Problem{"potentials_with_lid", 0, 1, -1, 3, 0},
                                         Problem{"lid_body", 1, 1, 1, 0, 1}),
                         [](const auto &row) { return std::string(row.param.label); });

// A run for wave drift damping: every array of a period by name, in the state and in the file.
struct Part {
    const void *data;
    std::int64_t size;
};
std::vector<Part> radiation_parts(auto &t, auto &w) {
    std::vector<Part> parts;
    const auto add = [&](auto &...array) { (parts.push_back({array.data(), array.size()}), ...); };
    add(t.PHIR, t.SRCR, t.VELR, w.W2R0, w.W2R1, w.W2R2, w.W2R3, w.FSR1, w.FSR2, w.FSR3);
    return parts;
}
std::vector<Part> diffraction_parts(auto &t, auto &w) {
    std::vector<Part> parts;
    const auto add = [&](auto &...array) { (parts.push_back({array.data(), array.size()}), ...); };
    add(t.PHID, t.SRCD, t.VELD, w.PHID2, w.SRCD2, w.VELD2, w.W2D0, w.W2D0B, w.W2D1, w.W2D2, w.W2D3, w.FSD1,
        w.FSD2, w.FSD3, w.FSD4, w.FSD5);
    return parts;
}
// Real arrays of the head.
std::vector<Part> head_parts(auto &mesh, auto &flow) {
    std::vector<Part> parts;
    const auto add = [&](auto &...array) { (parts.push_back({array.data(), array.size()}), ...); };
    add(mesh.XIVF, mesh.ETVF, mesh.XCTF, mesh.TRMF, mesh.PMOMF, flow.STB1, flow.STB2, flow.STB3, flow.STF1,
        flow.STF2, flow.STF3);
    return parts;
}

class DriftHandover : public testing::TestWithParam<Problem> {};
TEST_P(DriftHandover, HoldsWhatWasWritten) {
    constexpr int PANELS = 3;
    const Problem &row = GetParam();
    const RunFolder folder;
    RunState run;
    make(row, run);
    run.opt.IWADD = 1;
    run.sym.NSYMD = row.IRAD >= 0 ? 2 : 0; // fewer than the columns of SRCR
    SurfaceMesh &m = run.surface;
    SteadyFlow &flow = run.flow;
    m.NFSP = PANELS;
    const int n = run.mesh.NEQN;
    ASSERT_TRUE(m.XIVF.alloc(4, PANELS) && m.ETVF.alloc(4, PANELS) && m.XCTF.alloc(3, PANELS) &&
                m.TRMF.alloc(3, 3, PANELS) && m.PMOMF.alloc(13, PANELS) && m.SIDEF.alloc(4, PANELS) &&
                m.XGPF.alloc(4, 3, PANELS) && m.GJACF.alloc(4, PANELS) && m.PSIZF.alloc(2, PANELS) &&
                flow.STB1.alloc(n, 3) && flow.STB2.alloc(n, 3) && flow.STB3.alloc(n, 3, 3) &&
                flow.STF1.alloc(PANELS, 2) && flow.STF2.alloc(PANELS, 2, 3) && flow.STF3.alloc(PANELS, 3) &&
                run.sym.WMODM.alloc(12, 4) && run.sym.WMODP.alloc(12));
    run.sym.WCLS1[2] = 2;
    run.sym.WCLS3[1] = 3;
    run.sym.WMODC[4] = 4;
    run.sym.WMODM(2, 3) = 6;
    run.sym.WMODP(6) = 3;
    const auto real = [](std::size_t array, std::int64_t i) {
        return static_cast<f32>(1000 * array) + static_cast<f32>(i);
    };
    const auto head = head_parts(m, flow);
    for (std::size_t a = 0; a < head.size(); ++a)
        for (std::int64_t i = 0; i < head[a].size; ++i)
            static_cast<f32 *>(const_cast<void *>(head[a].data))[i] = real(a, i);
    RecordFile scratch(8);
    ASSERT_TRUE(scratch.open_scratch());
    const auto each_part = [&](auto &state, auto &second) {
        auto parts = radiation_parts(state, second);
        for (const Part &part : diffraction_parts(state, second))
            parts.push_back(part);
        return parts;
    };
    for (int period = 1; period <= PERIODS; ++period) {
        ThreadState thread;
        ASSERT_EQ(allocate_solution(run, thread), Status::ok);
        ASSERT_EQ(ALLOCATE_WA(run, thread), Status::ok);
        const auto parts = each_part(thread, thread.second);
        for (std::size_t a = 0; a < parts.size(); ++a)
            for (std::int64_t i = 0; i < parts[a].size; ++i)
                static_cast<c32 *>(const_cast<void *>(parts[a].data))[i] = {real(a, i),
                                                                            static_cast<f32>(period)};
        ASSERT_EQ(WDDWRT(run.opt, thread, scratch), Status::ok);
    }
    ASSERT_EQ(RESWRT(run, scratch), Status::ok);
    P2fFile p2f;
    std::string error;
    ASSERT_TRUE(read_p2f("box.p2f", p2f, error)) << error;
    EXPECT_EQ(p2f.NFSP, PANELS);
    EXPECT_EQ(p2f.WCLS1[2], 2);
    EXPECT_EQ(p2f.WCLS3[1], 3);
    EXPECT_EQ(p2f.WMODC[4], 4);
    EXPECT_EQ(p2f.WMODM(2, 3), 6);
    EXPECT_EQ(p2f.WMODP(6), 3);
    const auto head_read = head_parts(p2f, p2f);
    for (std::size_t a = 0; a < head.size(); ++a) {
        ASSERT_EQ(head_read[a].size, head[a].size) << a;
        EXPECT_EQ(std::memcmp(head_read[a].data, head[a].data,
                              static_cast<std::size_t>(head[a].size) * sizeof(f32)),
                  0)
            << a;
    }
    const auto parts = each_part(p2f, p2f);
    const std::size_t radiation = radiation_parts(p2f, p2f).size();
    for (std::size_t a = 0; a < parts.size(); ++a) {
        const bool there = a < radiation ? row.IRAD >= 0 : row.IDIFF >= 0;
        ASSERT_EQ(parts[a].size > 0, there) << a;
        const std::int64_t per_period = parts[a].size / PERIODS;
        for (std::int64_t i = 0; i < parts[a].size; ++i)
            ASSERT_EQ(static_cast<const c32 *>(parts[a].data)[i],
                      c32(real(a, i % per_period), static_cast<f32>(1 + i / per_period)))
                << a << " " << i;
    }
    if (row.IRAD >= 0) {
        EXPECT_EQ(p2f.SRCR.dim(2), 3);
    }
}
INSTANTIATE_TEST_SUITE_P(rows, DriftHandover,
                         testing::Values(Problem{"both", 1, 1, 1, 0, 0}, Problem{"radiation", 1, 1, -1, 0, 0},
                                         Problem{"diffraction", 1, -1, 1, 0, 0}),
                         [](const auto &row) { return std::string(row.param.label); });

} // namespace
