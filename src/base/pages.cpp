#include "base/pages.hpp"

#include <cstdint>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t HUGE_PAGE = std::size_t{2} << 20;

std::size_t whole_pages(std::size_t bytes) {
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return (bytes + page - 1) / page * page;
}

} // namespace

void *map_pages(std::size_t bytes) noexcept {
    const std::size_t length = whole_pages(bytes);
    void *const mapped =
        mmap(nullptr, length + HUGE_PAGE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return nullptr;
    // What stands in front of the aligned block and behind it goes back at once.
    char *const start = static_cast<char *>(mapped);
    const std::size_t front = (HUGE_PAGE - reinterpret_cast<std::uintptr_t>(start) % HUGE_PAGE) % HUGE_PAGE;
    if (front > 0)
        munmap(start, front);
    if (front < HUGE_PAGE)
        munmap(start + front + length, HUGE_PAGE - front);
#ifdef MADV_HUGEPAGE
    (void)madvise(start + front, length, MADV_HUGEPAGE); // a wish: without it all goes on in small pages
#endif
    return start + front;
}

void use_small_pages(void *block, std::size_t bytes) noexcept {
#ifdef MADV_NOHUGEPAGE
    if (bytes >= LARGE_BLOCK)
        (void)madvise(block, whole_pages(bytes), MADV_NOHUGEPAGE);
#endif
}

void keep_freed_memory() noexcept {
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, static_cast<int>(LARGE_BLOCK));
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_TOP_PAD, 1 << 20); // grow in steps that are worth a call
#endif
}

void unmap_pages(void *block, std::size_t bytes) noexcept {
    munmap(block, whole_pages(bytes));
}
