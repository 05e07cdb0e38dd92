// Loaded in front of the C library (LD_PRELOAD), refuses one allocation of a run: the one of number
// VORDA_REFUSE, from 1, among those of 4096 bytes and more. Their count so far stands in the file
// VORDA_COUNT, a text of ten columns: a run ends without its exit handlers. Of the blocks that the program,
// not a library, maps for itself, VORDA_REFUSE_MAPPED is refused, from 1.
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::size_t LARGE = 4096;
std::atomic<long> counted{0};
std::atomic<bool> started{false};

// The libraries of the run, which start before this one, may need what they ask for.
[[gnu::constructor]] void start() {
    started = true;
}

void write_count(long count) {
    static const int file = [] {
        const char *name = std::getenv("VORDA_COUNT");
        return name != nullptr ? open(name, O_WRONLY | O_CREAT | O_TRUNC, 0644) : -1;
    }();
    char text[16];
    std::snprintf(text, sizeof text, "%10ld", count);
    if (file >= 0 && pwrite(file, text, 10, 0) != 10)
        std::abort();
}

bool refused(std::size_t bytes) {
    if (bytes < LARGE || !started)
        return false;
    const char *number = std::getenv("VORDA_REFUSE");
    const long count = counted.fetch_add(1) + 1;
    write_count(count);
    const bool now = number != nullptr && std::atol(number) == count;
    if (now)
        errno = ENOMEM;
    return now;
}

// Whether this address is code of the program.
bool of_program(const void *address) {
    Dl_info info;
    return dladdr(address, &info) != 0 &&
           reinterpret_cast<std::uintptr_t>(info.dli_fbase) == (getauxval(AT_PHDR) & ~std::uintptr_t{4095});
}

bool refuse_mapped() {
    static std::atomic<long> mapped{0};
    const char *number = std::getenv("VORDA_REFUSE_MAPPED");
    return ++mapped == (number != nullptr ? std::atol(number) : 0);
}

} // namespace

extern "C" {

void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void *__libc_realloc(void *, std::size_t);
void *__libc_memalign(std::size_t, std::size_t);

void *malloc(std::size_t bytes) {
    return refused(bytes) ? nullptr : __libc_malloc(bytes);
}
void *calloc(std::size_t n, std::size_t bytes) {
    return refused(n * bytes) ? nullptr : __libc_calloc(n, bytes);
}
void *realloc(void *old, std::size_t bytes) {
    return refused(bytes) ? nullptr : __libc_realloc(old, bytes);
}
void *aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return refused(bytes) ? nullptr : __libc_memalign(alignment, bytes);
}
void *mmap(void *where, std::size_t bytes, int access, int flags, int file, off_t offset) {
    if (started && file == -1 && of_program(__builtin_return_address(0)) && refuse_mapped()) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return reinterpret_cast<void *>(syscall(SYS_mmap, where, bytes, access, flags, file, offset));
}
int posix_memalign(void **block, std::size_t alignment, std::size_t bytes) {
    *block = refused(bytes) ? nullptr : __libc_memalign(alignment, bytes);
    return *block == nullptr ? ENOMEM : 0;
}

} // extern "C"
