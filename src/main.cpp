#include "base/address_space.hpp"
#include "run/driver.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sched.h>
#include <unistd.h>

namespace {

// The threads that OpenMP and BLAS will start: the cores of the process, or fewer by the environment.
int threads_to_come(char **environment) {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    const int all = sched_getaffinity(0, sizeof cores, &cores) == 0 ? CPU_COUNT(&cores) : 1;
    for (char **entry = environment; entry != nullptr && *entry != nullptr; ++entry) {
        if (std::strncmp(*entry, "OMP_NUM_THREADS=", 16) != 0)
            continue;
        const int wanted = std::atoi(*entry + 16);
        return wanted > 0 && wanted < all ? wanted : all;
    }
    return all;
}

// Runs before the libraries start themselves, of which one would wait for ever.
void check_address_space(int, char **, char **environment) {
    const std::int64_t limit = address_space_limit();
    if (limit < 0 || limit >= address_space_needed(threads_to_come(environment)))
        return;
    constexpr char text[] =
        "vorda: RAM too small: the address space is limited (ulimit -v), see docs/input.md\n";
    if (write(STDERR_FILENO, text, sizeof text - 1) < 0)
        _exit(0);
    _exit(0);
}
[[gnu::section(".preinit_array"), gnu::used]] void (*const before_libraries)(int, char **,
                                                                             char **) = check_address_space;

// Help and version touch nothing; other arguments count for nothing, since the files tell all.
bool told(const char *argument) {
    if (std::strcmp(argument, "--version") == 0)
        std::puts("vorda " VORDA_VERSION);
    else if (std::strcmp(argument, "--help") == 0 || std::strcmp(argument, "-h") == 0)
        std::puts("Finds the velocity potentials of ships and offshore structures in waves.\n"
                  "Usage: vorda\n\n"
                  "It works in the current folder: reads fnames.vrd, or asks, for the names of the\n"
                  "geometry and the control file and config.vrd for its settings, and leaves NAME.p2f\n"
                  "and the report vorda.lis. OMP_NUM_THREADS limits the threads. The exit code is\n"
                  "always 0: the report, and for a failed run standard error, tell how it ended.\n\n"
                  "  -h,--help    prints this text\n"
                  "  --version    prints the version");
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc == 2 && told(argv[1]))
        return 0;
    run_solver();
}
