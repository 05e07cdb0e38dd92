// What the run asks of the system it runs on.
#pragma once

#include <cstdint>
#include <string>

// Sizes in bytes: physical memory in all, what is available of it, and the space to page to.
struct MemorySizes {
    std::int64_t total = 0;
    std::int64_t available = 0;
    std::int64_t pagefile = 0;
};
// False when the system does not tell.
[[nodiscard]] bool query_memory(MemorySizes &sizes);

// The local date as dd-Mon-yyyy (11 characters) and the time as hh:mm:ss (8 characters).
struct DateTime {
    std::string date;
    std::string time;
};
DateTime DATTIM();

std::string user_name();
std::string computer_name();
std::string system_name();
std::string processor_name();
