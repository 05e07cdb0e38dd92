#include "run/memory_report.hpp"

#include "assembly/period_rows.hpp"
#include "solve/solve.hpp"
#include "state/messages.hpp"
#include "state/method.hpp"

#include <algorithm>
#include <omp.h>
#include <string>

namespace {

// Bytes of the solution arrays.
std::int64_t solution_memory(const RunState &run) {
    const std::int64_t radiation = std::max(run.sym.NSYMD, 3);
    const std::int64_t diffraction = std::int64_t{run.periods.NBETAM} * run.sym.NSYMR;
    const std::int64_t ordinary = radiation + 3 * diffraction;
    const std::int64_t sources = run.opt.ISOR == 1 ? 4 * radiation + 3 * diffraction : 0;
    const std::int64_t second = run.opt.IWADD == 1 ? 4 * radiation + 10 * diffraction : 0;
    const std::int64_t surface = run.opt.IWADD == 1 ? 3 * radiation + 5 * diffraction : 0;
    return 8 * (run.mesh.NEQN * (ordinary + sources + second) + run.surface.NFSP * surface);
}

} // namespace

RunMemory memory_of(const RunState &run, int cores) {
    const std::int64_t n = run.mesh.NEQN, square = n * n, classes = run.sym.NSYMR;
    const Options &opt = run.opt;
    const std::int64_t matrices = 1 + (keeps_source(opt) ? 1 : 0) + 4 * opt.ISOR;
    RunMemory memory;
    memory.shared =
        (opt.ILOG + 1) * (4 * classes * matrices * square + 4 * n * run.sym.NSYMD) + 2 * pair_place(n + 1);
    const std::int64_t factors = method_of(run) == Method::blocks ? 8 * n * opt.NBLKSZ : 0;
    memory.per_period = 8 * classes * (1 + 4 * opt.ISOR) * square + factors + solution_memory(run) +
                        rows_memory(run, cores) + solve_memory(run);
    return memory;
}

void report_memory(const RunState &run, int threads) {
    if (run.periods.NPER < 1)
        return;
    if (!run.memory.INCORE) {
        // The plan tells when memory is short; what the settings ask for it passes over.
        const std::string by_settings = run.opt.IUSESCR == 1             ? "IUSESCR=1"
                                        : run.mesh.NEQN > run.opt.MAXSCR ? "NEQN is above MAXSCR"
                                        : run.opt.ISOLVN == 1            ? "ISOLVE=-1"
                                                                         : "";
        if (!by_settings.empty())
            list_line("  Influence coefficient matrices go to scratch files, one period at a time: " +
                      by_settings);
        return;
    }
    const int periods = std::min(threads, run.periods.NPER);
    const RunMemory memory = memory_of(run, std::max(1, omp_get_max_threads() / periods));
    const auto megabytes = [](std::int64_t bytes) { return std::to_string((bytes >> 20) + 1) + " MB"; };
    list_line("  With pair codes, solutions and work arrays the run takes " +
              megabytes(memory.shared + periods * memory.per_period) + ": " + megabytes(memory.shared) +
              " shared and " + megabytes(memory.per_period) + " for each of " + std::to_string(periods) +
              " periods at a time");
}
