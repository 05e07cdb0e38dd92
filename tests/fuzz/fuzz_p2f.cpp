// Hand-over files out of order: the reader refuses them or reads them; what it reads can be worked on.
#include "post/coefficients.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const int file = memfd_create("p2f", 0);
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();
    P2fFile p2f;
    std::string error;
    if (!read_p2f("/proc/self/fd/" + std::to_string(file), p2f, error)) {
        if (error.empty())
            std::abort();
        return 0;
    }
    Coefficients coefficients;
    if (!form_coefficients(p2f, coefficients))
        return 0;
    const Scales scales = scales_of(p2f, 1025);
    (void)radiation_table(p2f, scales, coefficients);
    (void)exciting_table(p2f, scales, coefficients);
    return 0;
}
