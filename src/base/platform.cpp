#include "base/platform.hpp"

#include "base/address_space.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <mutex>
#include <omp.h>
#include <pwd.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace {

// The number behind `key` in a file of lines "key number", or the first number when the key is empty; -1:
// none, which is also what the word "max" stands for.
std::int64_t number_in(const std::string &file, const std::string &key = {}) {
    std::ifstream in(file);
    std::string word;
    std::int64_t value = -1;
    while (!key.empty() && in >> word && word != key)
        in.ignore(1000, '\n');
    return in >> value ? value : -1;
}

struct GroupFiles {
    const char *limit;
    const char *usage;
    const char *cache; // key in memory.stat
};

// Goes from the group's folder up to the root of the hierarchy: each may have a limit.
void apply_hierarchy(const std::string &root, std::string path, const GroupFiles &files, MemorySizes &sizes) {
    for (;;) {
        const std::string folder = root + path + "/";
        const std::int64_t limit = number_in(folder + files.limit);
        const std::int64_t usage = number_in(folder + files.usage);
        const std::int64_t cache = std::max<std::int64_t>(number_in(folder + "memory.stat", files.cache), 0);
        if (limit >= 0 && usage >= 0)
            sizes.available = std::clamp<std::int64_t>(limit - usage + cache, 0, sizes.available);
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos)
            return;
        path.erase(slash);
    }
}

} // namespace

void apply_control_groups(const std::string &groups, const std::string &root, MemorySizes &sizes) {
    std::istringstream lines(groups);
    std::string line;
    while (std::getline(lines, line)) {
        // hierarchy:controllers:path
        const std::size_t first = line.find(':');
        const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos)
            continue;
        const std::string controllers = "," + line.substr(first + 1, second - first - 1) + ",";
        std::string path = line.substr(second + 1);
        if (path == "/")
            path.clear();
        if (controllers == ",,")
            apply_hierarchy(root, path, {"memory.max", "memory.current", "inactive_file"}, sizes);
        else if (controllers.find(",memory,") != std::string::npos)
            apply_hierarchy(root + "/memory", path,
                            {"memory.limit_in_bytes", "memory.usage_in_bytes", "total_inactive_file"}, sizes);
    }
}

bool query_memory(MemorySizes &sizes) {
    std::ifstream in("/proc/meminfo");
    std::string line;
    bool has_total = false;
    bool has_available = false;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string key;
        std::int64_t kibibytes = 0;
        if (!(words >> key >> kibibytes))
            continue;
        if (key == "MemTotal:") {
            sizes.total = kibibytes * 1024;
            has_total = true;
        } else if (key == "MemAvailable:") {
            sizes.available = kibibytes * 1024;
            has_available = true;
        } else if (key == "SwapTotal:") {
            sizes.pagefile = kibibytes * 1024;
        }
    }
    if (!has_total || !has_available)
        return false;
    const std::int64_t limit = address_space_limit();
    if (limit >= 0) // what is mapped already counts, and buffers are still to come
        sizes.available = std::clamp<std::int64_t>(
            limit - address_space_used() -
                (address_space_needed(omp_get_max_threads()) - address_space_needed(0)),
            0, sizes.available);
    std::ifstream groups("/proc/self/cgroup");
    apply_control_groups(std::string(std::istreambuf_iterator<char>(groups), {}), "/sys/fs/cgroup", sizes);
    return true;
}

namespace {

// What a signal handler can work with: fixed storage, process-wide as signals are.
struct RegisteredFile {
    volatile std::sig_atomic_t used = 0;
    char name[512] = {};
};
RegisteredFile registered[32];
std::mutex registering;

struct LastWords {
    volatile std::sig_atomic_t descriptor = -1;
    char text[256] = {};
};
LastWords words;

void remove_and_die(int signal_number) {
    if (words.descriptor >= 0 && write(words.descriptor, words.text, std::strlen(words.text)) < 0)
        words.descriptor = -1; // nobody left to tell
    remove_registered_files();
    raise(signal_number); // now with its default action
}

void watch_signals() {
    for (const int signal_number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGABRT, SIGXCPU, SIGXFSZ}) {
        struct sigaction before {};
        // A signal that is ignored, or that someone else handles, stays so.
        if (sigaction(signal_number, nullptr, &before) != 0 || before.sa_handler != SIG_DFL)
            continue;
        struct sigaction action {};
        action.sa_handler = remove_and_die;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        sigemptyset(&action.sa_mask);
        (void)sigaction(signal_number, &action, nullptr);
    }
}

} // namespace

bool remove_at_end(const std::string &name) {
    const std::lock_guard hold(registering);
    if (name.size() >= sizeof registered[0].name)
        return false;
    watch_signals();
    RegisteredFile *place = nullptr;
    for (RegisteredFile &entry : registered) {
        if (entry.used != 0 && name == entry.name)
            return true;
        if (entry.used == 0 && place == nullptr)
            place = &entry;
    }
    if (place == nullptr)
        return false;
    std::memcpy(place->name, name.c_str(), name.size() + 1);
    place->used = 1; // last: the handler may come at any moment
    return true;
}

void last_words(int descriptor, const std::string &text) {
    const std::lock_guard hold(registering);
    words.descriptor = -1; // no text that is half another
    if (descriptor < 0)
        return;
    watch_signals();
    text.copy(words.text, sizeof words.text - 1);
    words.text[std::min(text.size(), sizeof words.text - 1)] = '\0';
    words.descriptor = descriptor;
}

void forget_at_end(const std::string &name) {
    const std::lock_guard hold(registering);
    for (RegisteredFile &entry : registered) {
        if (entry.used != 0 && name == entry.name)
            entry.used = 0;
    }
}

void remove_registered_files() noexcept {
    // From the last one on: a folder was registered before the files in it.
    for (std::size_t k = std::size(registered); k-- > 0;) {
        RegisteredFile &entry = registered[k];
        if (entry.used == 0)
            continue;
        entry.used = 0;
        if (unlink(entry.name) != 0 && (errno == EISDIR || errno == EPERM))
            rmdir(entry.name);
    }
}

bool same_file(const std::string &a, const std::string &b) {
    struct stat of_a, of_b;
    if (a == b)
        return true;
    return stat(a.c_str(), &of_a) == 0 && stat(b.c_str(), &of_b) == 0 && of_a.st_dev == of_b.st_dev &&
           of_a.st_ino == of_b.st_ino;
}

DateTime DATTIM() {
    static const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char date[40];
    char time[40];
    std::snprintf(date, sizeof date, "%02d-%s-%04d", local.tm_mday, months[local.tm_mon % 12],
                  local.tm_year + 1900);
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", local.tm_hour, local.tm_min, local.tm_sec);
    return {date, time};
}

bool process_has_ended(int pid) {
    // pid (name) state: the name may hold anything.
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    const std::string text(std::istreambuf_iterator<char>(in), {});
    const std::size_t name_end = text.rfind(") ");
    return name_end == std::string::npos ? kill(pid, 0) != 0 && errno == ESRCH : text[name_end + 2] == 'Z';
}

std::string user_name() {
    passwd entry{};
    passwd *found = nullptr;
    char buffer[4096];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr)
        return found->pw_name;
    return "unknown";
}

std::string computer_name() {
    utsname names{};
    return uname(&names) == 0 ? names.nodename : "unknown";
}

std::string system_name() {
    utsname names{};
    return uname(&names) == 0 ? std::string(names.sysname) + " " + names.release : "unknown";
}

std::string processor_name() {
    std::ifstream in("/proc/cpuinfo");
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("model name", 0) == 0) {
            const std::size_t colon = line.find(':');
            if (colon != std::string::npos && colon + 2 <= line.size())
                return line.substr(colon + 2);
        }
    }
    return "unknown";
}
