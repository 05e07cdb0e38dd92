#include "results/p2f_writer.hpp"

#include "base/platform.hpp"
#include "base/text.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t TEXT_RECORD = 72; // characters of a record of the text block

template <class T, int R> Bytes first_elements(const Array<T, R> &array, std::int64_t n) {
    return bytes_of(array.data(), n);
}
template <class T, int R> Bytes whole(const Array<T, R> &array) {
    return bytes_of(array.data(), array.size());
}
template <std::size_t n> Bytes from_one(const int (&list)[n]) {
    return bytes_of(list + 1, static_cast<std::int64_t>(n) - 1);
}

bool write_sizes(const RunState &run, RecordFile &file) {
    const Options &opt = run.opt;
    const Bodies &bodies = run.bodies;
    const Symmetry &sym = run.sym;
    const Periods &periods = run.periods;
    const int dipoles = run.dipoles.IDIPOL ? 1 : 0;
    return file.write({bytes_of(FORMAT_VERSION)}) &&
           file.write({bytes_of(run.mesh.NEQN), bytes_of(bodies.NBODY), bytes_of(sym.NSYMD),
                       bytes_of(bodies.NMODES)}) &&
           file.write({bytes_of(opt.IWADD), bytes_of(run.surface.NFSP)}) &&
           file.write({bytes_of(opt.ISX), bytes_of(opt.ISY), bytes_of(opt.IRAD), bytes_of(opt.IDIFF),
                       bytes_of(periods.NPER), bytes_of(periods.NBETA)}) &&
           file.write({bytes_of(sym.NSYMG), from_one(sym.ISYMG), bytes_of(sym.NCLS), bytes_of(sym.NSYMR),
                       from_one(sym.ICLS)}) &&
           file.write({bytes_of(sym.NDCLS), from_one(sym.IDCLS), from_one(sym.NMCLS)}) &&
           file.write({bytes_of(opt.ISOR), bytes_of(opt.IQUAD), bytes_of(opt.ILOG), bytes_of(opt.IDIAG),
                       bytes_of(dipoles)}) &&
           file.write({bytes_of(opt.GRAV), bytes_of(opt.HBOT)}) && file.write({whole(bodies.ULEN)}) &&
           file.write({whole(bodies.NEQNB), first_elements(bodies.NPANS, bodies.NBODY)}) &&
           file.write({first_elements(bodies.NEWMDS, bodies.NBODY)}) && file.write({whole(bodies.XBODY)}) &&
           file.write({whole(periods.PER), whole(periods.WVNH)}) &&
           file.write({whole(periods.BETA), whole(periods.SINBET), whole(periods.COSBET)}) &&
           file.write({whole(sym.MODLST)}) && file.write({whole(sym.MODCLS)}) &&
           file.write({whole(sym.MODPOS)});
}

bool write_geometry(const RunState &run, RecordFile &file) {
    const Mesh &mesh = run.mesh;
    const Bodies &bodies = run.bodies;
    Array<f32, 2> buoyancy; // per body the three volumes, then the centre
    if (!buoyancy.alloc(6, bodies.NBODY))
        return false;
    for (int b = 1; b <= bodies.NBODY; ++b) {
        for (int c = 1; c <= 3; ++c) {
            buoyancy(c, b) = bodies.VOL(c, b);
            buoyancy(c + 3, b) = bodies.XCB(c, b);
        }
    }
    return file.write({whole(mesh.XIV)}) && file.write({whole(mesh.ETV)}) && file.write({whole(mesh.XCT)}) &&
           file.write({first_elements(mesh.XVER, 12LL * mesh.NEQN)}) && file.write({whole(mesh.TRM)}) &&
           file.write({whole(mesh.PMOM)}) && file.write({whole(mesh.SIDE)}) &&
           file.write({whole(mesh.XGP)}) && file.write({whole(mesh.GJAC)}) &&
           file.write({whole(mesh.RXNG)}) && file.write({whole(mesh.VEL)}) &&
           file.write({whole(buoyancy), whole(bodies.CHYD)}) && file.write({whole(mesh.PSIZ)}) &&
           file.write({first_elements(bodies.NWLB, bodies.NBODY)});
}

// The waterline lists. With IRR=4 the panels count over the mesh in the run, in the file within the
// body as ever.
bool write_waterline(const RunState &run, RecordFile &file) {
    const Waterline &line = run.waterline;
    Array<int, 1> panel;
    if (!panel.alloc(line.NWL))
        return false;
    int w = 0;
    int before = 0; // panels of earlier bodies
    for (int b = 1; b <= run.bodies.NBODY; ++b) {
        for (const int end = w + run.bodies.NWLB(b); w < end;) {
            ++w;
            panel(w) = line.IWLP(w) - (run.opt.IRR == 4 ? before : 0);
        }
        before += run.bodies.NEQNB(b);
    }
    return file.write({bytes_of(line.NWL)}) && file.write({whole(panel)}) &&
           file.write({first_elements(line.IWLE, line.NWL)});
}

// Class maps, free-surface panels and steady flows of a run with IWADD=1.
bool write_drift(const RunState &run, RecordFile &file) {
    const Symmetry &sym = run.sym;
    const SurfaceMesh &surface = run.surface;
    const SteadyFlow &flow = run.flow;
    return file.write({bytes_of(sym.WCLS1 + 1, sym.NSYMR)}) &&
           file.write({bytes_of(sym.WCLS2 + 1, sym.NSYMR)}) &&
           file.write({bytes_of(sym.WCLS3 + 1, sym.NSYMR)}) && file.write({from_one(sym.WMODC)}) &&
           file.write({whole(sym.WMODM)}) && file.write({whole(sym.WMODP)}) &&
           file.write({whole(surface.XIVF)}) && file.write({whole(surface.ETVF)}) &&
           file.write({whole(surface.XCTF)}) && file.write({whole(surface.TRMF)}) &&
           file.write({whole(surface.PMOMF)}) && file.write({whole(surface.SIDEF)}) &&
           file.write({whole(surface.XGPF)}) && file.write({whole(surface.GJACF)}) &&
           file.write({whole(surface.PSIZF)}) && file.write({whole(flow.STB1)}) &&
           file.write({whole(flow.STB2)}) && file.write({whole(flow.STB3)}) &&
           file.write({whole(flow.STF1)}) && file.write({whole(flow.STF2)}) && file.write({whole(flow.STF3)});
}

bool write_options(const RunState &run, RecordFile &file) {
    const Options &opt = run.opt;
    const bool treated = opt.IRR >= 1 && opt.IRR <= 4;
    bool good = opt.ISOR != 1 || write_waterline(run, file);
    good = good && file.write({bytes_of(opt.ISOLVE), bytes_of(opt.ISOLVN), bytes_of(opt.IUSESCR),
                               bytes_of(opt.NTRD), bytes_of(opt.ISCATT), bytes_of(opt.IRR)});
    if (treated || opt.IFSLID == 1)
        good = good && file.write({whole(run.mesh.IFSP)});
    if (treated)
        good = good && file.write({first_elements(run.strips.IRRP, run.mesh.NEQN)});
    good = good && file.write({bytes_of(opt.I2ND), bytes_of(opt.NBLKSZ), bytes_of(opt.NBLKLS)});
    if (opt.IWADD == 1)
        good = good && write_drift(run, file);
    if (run.dipoles.IDIPOL) {
        const Dipoles &dipoles = run.dipoles;
        good = good && file.write({whole(dipoles.IDIP)}) && file.write({whole(dipoles.DPORA)}) &&
               file.write({whole(dipoles.DPORB)});
    }
    return good;
}

bool write_text(const RunState &run, RecordFile &file) {
    bool good = true;
    for (const std::string &line : run.HDRSCR) {
        const std::string record = text_in(TEXT_RECORD, line);
        good = good && file.write({{record.data(), record.size()}});
    }
    const std::string end = text_in(TEXT_RECORD, "*");
    return good && file.write({{end.data(), end.size()}});
}

// What stands together in the scratch file: potentials, then sources and velocities.
enum class PeriodPart { potentials, sources };
// A record of an ordinary period: problem and part that it belongs to, and its array.
struct PeriodRecord {
    bool radiation;
    PeriodPart part;
    Bytes (*bytes)(const ThreadState &);
    std::int64_t per_column; // values of one panel and column
};
// In the order of the hand-over file. In the scratch file the potentials of both problems come
// before all sources.
const PeriodRecord PERIOD_RECORDS[] = {
    {true, PeriodPart::potentials, [](const ThreadState &t) { return whole(t.PHIR); }, 1},
    {true, PeriodPart::sources, [](const ThreadState &t) { return whole(t.SRCR); }, 1},
    {true, PeriodPart::sources, [](const ThreadState &t) { return whole(t.VELR); }, 3},
    {false, PeriodPart::potentials, [](const ThreadState &t) { return whole(t.PHID); }, 1},
    {false, PeriodPart::sources, [](const ThreadState &t) { return whole(t.SRCD); }, 1},
    {false, PeriodPart::sources, [](const ThreadState &t) { return whole(t.VELD); }, 3},
};
constexpr std::size_t PERIOD_RECORD_COUNT = std::size(PERIOD_RECORDS);

bool is_written(const Options &opt, const PeriodRecord &record) {
    return (record.radiation ? opt.IRAD : opt.IDIFF) >= 0 &&
           (record.part == PeriodPart::potentials || opt.ISOR == 1);
}

// From the order of the scratch file to that of the hand-over file.
bool copy_periods(const RunState &run, RecordFile &RESSCR, const std::vector<std::int64_t> &places,
                  RecordFile &file) {
    Array<c32, 1> values[PERIOD_RECORD_COUNT];
    for (std::size_t r = 0; r < PERIOD_RECORD_COUNT; ++r) {
        const PeriodRecord &record = PERIOD_RECORDS[r];
        const std::int64_t columns =
            record.radiation ? run.sym.NSYMD : std::int64_t{run.periods.NBETAM} * run.sym.NSYMR;
        if (is_written(run.opt, record) && !values[r].alloc(record.per_column * run.mesh.NEQN * columns))
            return false;
    }
    bool good = true;
    for (const std::int64_t place : places) {
        good = good && RESSCR.go_to(place);
        for (const PeriodPart part : {PeriodPart::potentials, PeriodPart::sources})
            for (std::size_t r = 0; r < PERIOD_RECORD_COUNT; ++r)
                if (PERIOD_RECORDS[r].part == part && is_written(run.opt, PERIOD_RECORDS[r]))
                    good = good && RESSCR.read({{values[r].data(), whole(values[r]).size}});
        for (std::size_t r = 0; r < PERIOD_RECORD_COUNT; ++r)
            if (is_written(run.opt, PERIOD_RECORDS[r]))
                good = good && file.write({whole(values[r])});
    }
    return good;
}

// Calls action(array) for each array of the block of a period with IWADD=1, in order, until
// one returns false.
template <class Thread, class Action> bool each_of_block(const Options &opt, Thread &thread, Action action) {
    auto &w = thread.second;
    const auto all = [&](auto &...array) { return (action(array) && ...); };
    const bool good = opt.IRAD < 0 || all(thread.PHIR, thread.SRCR, thread.VELR, w.W2R0, w.W2R1, w.W2R2,
                                          w.W2R3, w.FSR1, w.FSR2, w.FSR3);
    return good &&
           (opt.IDIFF != 1 || all(thread.PHID, thread.SRCD, thread.VELD, w.W2D0, w.PHID2, w.W2D0B, w.SRCD2,
                                  w.VELD2, w.W2D1, w.W2D2, w.W2D3, w.FSD1, w.FSD2, w.FSD3, w.FSD4, w.FSD5));
}

Status period_not_written(const RecordFile &file) {
    return MSGOUT_with("Error writing the solution of a period, UNIT=", file.unit(), file.error());
}

// The blocks of a run with IWADD=1.
bool copy_blocks(const RunState &run, RecordFile &RESSCR, const std::vector<std::int64_t> &places,
                 RecordFile &file) {
    ThreadState thread;
    bool good = !failed(allocate_solution(run, thread)) && allocate_velocities(run, thread);
    for (const std::int64_t place : places)
        good = good && RESSCR.go_to(place) && !failed(RWDPOT(run.opt, RESSCR, thread)) &&
               !failed(WDDWRT(run.opt, thread, file));
    return good;
}

} // namespace

Status WDDWRT(const Options &opt, ThreadState &thread, RecordFile &file) {
    const bool good =
        each_of_block(opt, thread, [&](const auto &array) { return file.write({whole(array)}); });
    return good ? Status::ok : period_not_written(file);
}

Status RWDPOT(const Options &opt, RecordFile &file, ThreadState &thread) {
    const bool good = each_of_block(opt, thread, [&](auto &array) {
        return file.read({{array.data(), static_cast<std::size_t>(array.size()) * sizeof(c32)}});
    });
    return good ? Status::ok : MSGOUT_with("Unable to read potentials in RWDPOT", 0, file.error());
}

PeriodRecords period_records(const Options &opt, const ThreadState &thread) {
    PeriodRecords records;
    if (opt.IWADD == 1) {
        (void)each_of_block(opt, thread, [&](const auto &array) {
            records.push_back(whole(array));
            return true;
        });
        return records;
    }
    for (const PeriodPart part : {PeriodPart::potentials, PeriodPart::sources})
        for (const PeriodRecord &record : PERIOD_RECORDS)
            if (record.part == part && is_written(opt, record))
                records.push_back(record.bytes(thread));
    return records;
}

Status PERWRT(const PeriodRecords &records, RecordFile &RESSCR) {
    bool good = true;
    for (const Bytes &record : records)
        good = good && RESSCR.write({record});
    return good ? Status::ok : period_not_written(RESSCR);
}

Status RESWRT(RunState &run, RecordFile &RESSCR, const std::vector<std::int64_t> &places) {
    const std::string &name = run.files.FILNAM(3);
    const std::string unfinished = name + ".part";
    RecordFile file(3);
    (void)remove_at_end(unfinished); // a longer name is at the mercy of signals
    bool good = file.create(unfinished) && write_sizes(run, file) && write_geometry(run, file) &&
                write_options(run, file) && write_text(run, file) &&
                (run.opt.IWADD == 1 ? copy_blocks(run, RESSCR, places, file)
                                    : copy_periods(run, RESSCR, places, file));
    good = file.close() && good;
    good = good && std::rename(unfinished.c_str(), name.c_str()) == 0;
    if (!good)
        std::remove(unfinished.c_str());
    forget_at_end(unfinished);
    if (good)
        return Status::ok;
    return MSGOUT_with("Error writing P2F file " + name, 0,
                       file.error().empty() ? RESSCR.error() : file.error());
}
