#include "run/phase_times.hpp"

#include <cstdio>
#include <unistd.h>

void show_times(const PhaseTimes &t) {
    if (isatty(STDERR_FILENO) != 1)
        return;
    std::fprintf(
        stderr,
        "\r\033[Kvorda: times [s]: input %.3f, Rankine %.3f, assembly %.3f, solve %.3f, waiting %.3f, "
        "output %.3f\n",
        t.input, t.rankine, t.assembly, t.solve, t.waiting, t.output);
}
