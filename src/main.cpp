#include "base/address_space.hpp"
#include "run/driver.hpp"

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

} // namespace

int main() {
    run_solver();
}
