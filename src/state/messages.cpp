#include "state/messages.hpp"

#include "base/platform.hpp"
#include "base/text.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char *VERSION = "1.0.0     ";
constexpr const char *RELEASE_DATE = "24-Nov-2026";

struct ListFile {
    std::FILE *file = nullptr;
    std::string name;
    std::string first_fault, first_detail;
    bool first_is_last = false; // nothing was told since the first fault: a detail belongs to it
    std::vector<std::string> end_warnings;
    std::string results;
    bool write_failed = false;
    bool keeps = false; // lines go to the list file of another process
    std::vector<std::string> kept;
    std::function<void(const ListReport &)> end;
    std::mutex lock;
};
ListFile list;

void write_locked(std::string_view line) {
    if (list.file == nullptr)
        return;
    // Written through line by line, so that nothing is lost whatever ends the process.
    const bool good = std::fwrite(line.data(), 1, line.size(), list.file) == line.size() &&
                      std::fputc('\n', list.file) != EOF && std::fflush(list.file) == 0;
    if (!good && !list.write_failed) {
        list.write_failed = true;
        std::fprintf(stderr, "vorda: the list file cannot be written: %s\n", std::strerror(errno));
    }
}

int value_width(int v) {
    if (v < 0)
        return 6;
    return v < 10 ? 1 : v < 100 ? 2 : v < 1000 ? 3 : v < 10000 ? 4 : 5;
}

std::string with_value(std::string_view text, int value) {
    return value == 0 ? std::string(text) : std::string(text) + int_in(value_width(value), value);
}

// What another process may have to write.
void tell_locked(const std::string &line) {
    if (list.keeps)
        list.kept.push_back(line);
    write_locked(line);
}

void write_message(const std::string &text) {
    tell_locked(" ");
    tell_locked(" " + text);
    tell_locked(" ");
}

std::string trimmed_front(const std::string &text) {
    const std::size_t first = text.find_first_not_of(' ');
    return trimmed(first == std::string::npos ? "" : text.substr(first));
}

void write_head_block() {
    static const char *const banner[] = {
        "   V     V   OOO   RRRR   DDDD     A   ", "   V     V  O   O  R   R  D   D   A A  ",
        "    V   V   O   O  RRRR   D   D  A   A ", "     V V    O   O  R  R   D   D  AAAAA ",
        "      V      OOO   R   R  DDDD   A   A ",
    };
    const DateTime now = DATTIM();
    list_line(" ");
    for (const char *line : banner)
        list_line(std::string(" ") + line);
    list_line(" ");
    list_line(std::string(" Program id   : VORDA ") + VERSION);
    list_line(" Velocity potentials of ships and offshore structures in waves, by a panel method");
    list_line(std::string(" Release date : ") + RELEASE_DATE);
    list_line(" Access time  : " + now.date + " " + now.time);
    list_line(" User id      : " + user_name());
    list_line(" Computer         : " + computer_name());
    list_line(" Operating system : " + system_name());
    list_line(" CPU id           : " + processor_name());
    list_line(" ");
}

} // namespace

std::string program_version() {
    return trimmed(VERSION) + " " + RELEASE_DATE;
}

Status LISOPN(const std::string &name) {
    if (access(name.c_str(), F_OK) == 0 && std::rename(name.c_str(), (name + ".bak").c_str()) != 0) {
        ALERT("RENAME FILE as .BAK FAILED: " + name);
        return Status::failed;
    }
    list.file = std::fopen(name.c_str(), "wx");
    if (list.file == nullptr) {
        ALERT("Error opening " + name + ": " + std::strerror(errno));
        return Status::failed;
    }
    list.name = name;
    write_head_block();
    return Status::ok;
}

void close_list() {
    const std::lock_guard hold(list.lock);
    if (list.file != nullptr)
        std::fclose(list.file);
    list.file = nullptr;
    list.first_fault.clear();
    list.first_detail.clear();
    list.end_warnings.clear();
    list.write_failed = false;
}

void list_line(std::string_view line) {
    const std::lock_guard hold(list.lock);
    write_locked(line);
}

Status MSGOUT(std::string_view text, int value) {
    const std::lock_guard hold(list.lock);
    const std::string full = with_value(text, value);
    list.first_is_last = list.first_fault.empty();
    if (list.first_is_last)
        list.first_fault = full;
    write_message(full);
    return Status::failed;
}

void message(std::string_view text, int value) {
    const std::lock_guard hold(list.lock);
    list.first_is_last = false;
    write_message(with_value(text, value));
}

void message_detail(std::string_view text) {
    if (text.empty())
        return;
    const std::lock_guard hold(list.lock);
    tell_locked(" (" + std::string(text) + ")");
    if (list.first_is_last)
        list.first_detail = text;
    list.first_is_last = false;
}

Status MSGOUT_with(std::string_view text, int value, std::string_view detail) {
    const Status status = MSGOUT(text, value);
    message_detail(detail);
    return status;
}

void warn_at_end(std::string_view text) {
    const std::lock_guard hold(list.lock);
    if (std::find(list.end_warnings.begin(), list.end_warnings.end(), text) == list.end_warnings.end())
        list.end_warnings.emplace_back(text);
}

void ALERT(std::string_view text) {
    std::fprintf(stderr, "%s\n", trimmed(text).c_str());
}

std::string first_fault() {
    const std::lock_guard hold(list.lock);
    return list.first_fault;
}

void results_complete(const std::string &name) {
    const std::lock_guard hold(list.lock);
    list.results = name;
}

void keep_lines() {
    const std::lock_guard hold(list.lock);
    list.keeps = true;
}

ListReport take_report() {
    const std::lock_guard hold(list.lock);
    ListReport report;
    report.lines.swap(list.kept);
    report.end_warnings.swap(list.end_warnings);
    return report;
}

void add_report(const ListReport &report) {
    for (const std::string &warning : report.end_warnings)
        warn_at_end(warning);
    const std::lock_guard hold(list.lock);
    for (const std::string &line : report.lines)
        write_locked(line);
    if (!list.first_fault.empty())
        return;
    list.first_fault = report.first_fault;
    list.first_detail = report.first_detail;
}

void end_by(std::function<void(const ListReport &)> end) {
    const std::lock_guard hold(list.lock);
    list.end = std::move(end);
}

void line_at_signal(std::string_view line) {
    const std::lock_guard hold(list.lock);
    if (list.file != nullptr)
        last_words(fileno(list.file), std::string(line) + "\n");
}

void STOPRN(int code) {
    // Held to the end: no other thread writes any more.
    list.lock.lock();
    last_words(-1, {});
    if (list.keeps) {
        remove_registered_files();
        list.end({list.kept, list.end_warnings, list.first_fault, list.first_detail, false});
        std::_Exit(code);
    }
    const bool terminal = isatty(STDERR_FILENO) == 1;
    const char *const clear = terminal ? "\r\033[K" : "";
    for (const std::string &warning : list.end_warnings) {
        write_message("WARNING: " + warning);
        std::fprintf(stderr, "%svorda: warning: %s\n", clear, warning.c_str());
    }
    if (!list.first_fault.empty()) {
        const std::string detail = list.first_detail.empty() ? "" : " (" + list.first_detail + ")";
        const std::string where = list.file == nullptr ? "" : ", see " + list.name;
        std::fprintf(stderr, "%svorda: %s%s%s\n", clear, trimmed_front(list.first_fault).c_str(),
                     detail.c_str(), where.c_str());
    } else if (list.file != nullptr && terminal && !list.results.empty()) {
        std::fprintf(stderr, "%svorda: results in %s, report in %s\n", clear, list.results.c_str(),
                     list.name.c_str());
    }
    if (list.file != nullptr)
        std::fclose(list.file);
    list.file = nullptr;
    remove_registered_files();
    std::fflush(nullptr);
    if (list.end)
        list.end({{}, {}, list.first_fault, list.first_detail, !list.results.empty()});
    // No destructors: other threads may still be working on what they would destroy.
    std::_Exit(code);
}
