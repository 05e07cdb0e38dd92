// Memory of large arrays, straight from the system.
#pragma once

#include <cstddef>

// Arrays from this size on [bytes] have pages of their own.
constexpr std::size_t LARGE_BLOCK = std::size_t{4} << 20;

// A block of `bytes` that reads as zeros, aligned to 2 MiB; null when memory is refused. The system is asked
// to back it with pages of 2 MiB where it can: a fault, and the clearing that goes with it, for each 4 KiB
// costs more than the work on most matrices. A page is taken when it is first written to, by the core that
// does so; nothing is cleared here, for what the system hands out is.
void *map_pages(std::size_t bytes) noexcept;
// The pages of the block become small ones again, before it is used: where most of it stays 0, that takes no
// memory then.
void use_small_pages(void *block, std::size_t bytes) noexcept;
// Tells the C library to keep what is freed of smaller blocks for the next ones, where it is asked for the
// same again in every period, and to take none of its own pages for blocks below LARGE_BLOCK.
void keep_freed_memory() noexcept;
// Gives the block back; `bytes` as it was asked for.
void unmap_pages(void *block, std::size_t bytes) noexcept;
