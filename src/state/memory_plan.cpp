#include "state/memory_plan.hpp"

#include "base/pages.hpp"
#include "base/platform.hpp"
#include "base/text.hpp"
#include "state/messages.hpp"
#include "state/method.hpp"

#include <algorithm>
#include <cmath>
#include <omp.h>

namespace {

constexpr f32 USABLE = 0.95f; // share of the available memory that the plan may use

std::string gigabytes(std::int64_t bytes) {
    return fixed(8, 2, (static_cast<f32>(bytes) + 1.0f) / 1073741824.0f);
}

} // namespace

void MEMRPT(Memory &memory) {
    MemorySizes sizes;
    memory.AVAILM = 0;
    if (!query_memory(sizes))
        return;
    memory.AVAILM = sizes.available;
    const std::string stars = "    " + std::string(60, '*');
    list_line(" ");
    list_line(stars);
    list_line("     Total physical memory     =" + int_in(14, sizes.total) + " Bytes" +
              gigabytes(sizes.total) + " GB");
    list_line("     Physical memory available =" + int_in(14, sizes.available) + "   \"  " +
              gigabytes(sizes.available) + " GB");
    list_line("     Pagefile size             =" + int_in(14, sizes.pagefile) + "   \"  " +
              gigabytes(sizes.pagefile) + " GB");
    list_line(stars);
    list_line(" ");
}

int core_order(const Options &opt, int NEQN) {
    return std::min(std::max(opt.MAXSCR, 2), method_of(opt, NEQN) == Method::blocks ? opt.NBLKSZ : NEQN);
}

void MEMPLN(const Options &opt, int NEQN, int NSYMR, Memory &memory) {
    memory.INCORE = false;
    memory.NTMAX = 0;
    if (opt.IUSESCR == 1 || NEQN > opt.MAXSCR || opt.ISOLVN == 1)
        return;
    const f32 n = static_cast<f32>(NEQN);
    // Bytes per matrix element: available, in the shared store, in the store of one thread.
    const f32 available = static_cast<f32>(memory.AVAILM) * USABLE / n / n;
    const f32 shared = static_cast<f32>(NSYMR * 4 * (opt.ISCATT + 1 + 4 * opt.ISOR) * (opt.ILOG + 1));
    const f32 per_thread = static_cast<f32>(NSYMR * 8 * (4 * opt.ISOR + 1) + 1);
    const f32 threads = std::floor((available - shared) / per_thread);
    memory.NTMAX = static_cast<int>(std::clamp(threads, -1.0f, 1.0e6f));
    list_line(" ");
    memory.INCORE = memory.NTMAX >= 1 && memory.AVAILM >= 2000000000;
    if (memory.INCORE) {
        list_line("  Influence coefficient matrices stored in physical memory");
    } else {
        list_line("  Physical memory is not big enough to keep influence coeff. matrices.");
        list_line("  Scratch files are used for data storage.");
    }
    list_line("  Matrices in    REAL: " + fixed(7, 2, 100.0f * shared / available) +
              "% of available memory (shared across all threads)");
    list_line("  Matrices in COMPLEX: " + fixed(7, 2, 100.0f * per_thread / available) +
              "% of available memory per thread (threadprivate)");
    list_line(" ");
}

std::int64_t lay_out_store(const Options &opt, const Symmetry &sym, int NEQN, std::byte *block,
                           RankineStore &store) {
    constexpr std::int64_t ALIGNMENT = 64; // of each array [bytes]
    std::int64_t used = 0;
    const auto place = [&]<class T, int R>(View<T, R> &array, const std::array<Range, R> &ranges) {
        array = View<T, R>(block == nullptr ? nullptr : reinterpret_cast<T *>(block + used), ranges);
        const std::int64_t bytes = array.size() * static_cast<std::int64_t>(sizeof(T));
        used += (bytes + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    };
    const Range n(NEQN), planes(0, opt.ILOG);
    place(store.RKDM, {n, n, sym.NSYMR, planes});
    place(store.ICODM, {pair_place(NEQN + 1)});
    place(store.RHSRAN, {n, sym.NSYMD, planes});
    if (keeps_source(opt))
        place(store.RKSM, {n, n, sym.NSYMR, planes});
    if (opt.ISOR == 1) {
        place(store.RKNM, {n, n, sym.NSYMR, planes});
        place(store.RKVM, {n, n, 3 * sym.NSYMR, planes});
    }
    place(store.near_rows, {n, (NEQN + NEAR_GROUP - 1) / NEAR_GROUP});
    return used;
}

Status allocate_store(const Options &opt, const Symmetry &sym, int NEQN, RankineStore &store) {
    const std::int64_t bytes = lay_out_store(opt, sym, NEQN, nullptr, store);
    if (!store.block.alloc(bytes))
        return MSGOUT(" RAM too small ");
    (void)lay_out_store(opt, sym, NEQN, store.block.data(), store);
    use_small_pages(store.block.data(),
                    static_cast<std::size_t>(bytes)); // most pairs are far from each other
    list_line("  Memory allocation is done for influence coeff. matrices");
    list_line(" ");
    return Status::ok;
}

int period_threads(const Memory &memory) {
    const int most = omp_get_max_threads();
    const int threads = memory.INCORE ? std::min(memory.NTMAX, most) : 1;
    list_line(" The threads no. which can be applied is" + int_in(3, threads) + " .");
    list_line("  (- depending on the memory size and environmental setting)");
    message("");
    return threads;
}
