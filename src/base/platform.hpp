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
// False when the system does not tell. A memory limit of the control group that the process belongs to lowers
// what is available.
[[nodiscard]] bool query_memory(MemorySizes &sizes);
// Lowers sizes.available to what the control groups leave: `groups` is the text of /proc/self/cgroup, `root`
// the folder where version 2 is mounted and, in its subfolder "memory", version 1. A group and all above it
// count; the page cache that the kernel would give back first is not held against the group.
void apply_control_groups(const std::string &groups, const std::string &root, MemorySizes &sizes);

// Files that must not outlive the process, by name in the folder of the run, and empty folders by their whole
// name, each before the files in it: the table has 32 entries of up to 511 characters. A signal that ends the
// process removes them; the stop routine does so itself.
[[nodiscard]] bool remove_at_end(const std::string &name);
void forget_at_end(const std::string &name);
void remove_registered_files() noexcept; // may be called from a signal handler

// A text of up to 255 characters that such a signal leaves in a file that is open under this descriptor; -1:
// none any more.
void last_words(int descriptor, const std::string &text);

// True when both names lead to one file on the disk, or are the same.
bool same_file(const std::string &a, const std::string &b);

// The local date as dd-Mon-yyyy (11 characters) and the time as hh:mm:ss (8 characters).
struct DateTime {
    std::string date;
    std::string time;
};
DateTime DATTIM();

// A process of this computer has ended; its parent may not know yet.
bool process_has_ended(int pid);

std::string user_name();
std::string computer_name();
std::string system_name();
std::string processor_name();
