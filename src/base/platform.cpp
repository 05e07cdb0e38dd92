#include "base/platform.hpp"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <pwd.h>
#include <sstream>
#include <sys/utsname.h>
#include <unistd.h>

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
    return has_total && has_available;
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
