#include "case/programs.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int PAUSE = 250; // [ms] between two looks

// What the child does between fork and the new program: only calls that are allowed there.
[[noreturn]] void become(const char *program, char *const *words, const char *folder, int out,
                         bool terminal) {
    const int nothing = open("/dev/null", O_RDONLY);
    if (nothing >= 0)
        dup2(nothing, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    if (!terminal)
        dup2(out, STDERR_FILENO);
    if (chdir(folder) == 0)
        execv(program, words);
    _exit(127);
}

} // namespace

std::string program_beside(const std::string &name) {
    std::error_code fault;
    const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", fault);
    if (!fault)
        return (own.parent_path() / name).string();
    // Without /proc, as in some containers: where a shell would find it.
    const char *path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');)
        if (std::string there = folder + "/" + name; access(there.c_str(), X_OK) == 0)
            return there;
    return name;
}

bool on_terminal() {
    return isatty(STDERR_FILENO) == 1;
}

std::string typed(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        const bool plain = !word.empty() && word.find_first_of(" \t'\"\\$*?&|<>();") == std::string::npos;
        text += (text.empty() ? "" : " ") + (plain ? word : "'" + word + "'");
    }
    return text;
}

bool run_program(const Start &start, const std::function<void()> &watch, Ended &ended, std::string &error) {
    ended = {};
    const std::string program = program_beside(start.words[0]);
    if (access(program.c_str(), X_OK) != 0) {
        error = program + " is missing: it belongs beside vorda-run";
        return false;
    }
    std::vector<char *> words;
    for (const std::string &word : start.words)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        error = program + " cannot be started: " + std::strerror(errno);
        return false;
    }
    const pid_t child = fork();
    if (child == 0)
        become(program.c_str(), words.data(), start.folder.c_str(), ends[1], start.on_terminal);
    const int why = errno;
    close(ends[1]);
    if (child < 0) {
        close(ends[0]);
        error = program + " cannot be started: " + std::strerror(why);
        return false;
    }
    pollfd ready = {ends[0], POLLIN, 0};
    for (bool open = true; open;) {
        const int got = poll(&ready, 1, PAUSE);
        char buffer[4096];
        if (got > 0) {
            const ssize_t n = read(ends[0], buffer, sizeof buffer);
            open = n > 0 || (n < 0 && errno == EINTR);
            if (n > 0)
                ended.text.append(buffer, static_cast<std::size_t>(n));
        } else if (got < 0 && errno != EINTR) {
            open = false;
        }
        if (watch)
            watch();
    }
    close(ends[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    ended.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + (WIFSIGNALED(status) ? WTERMSIG(status) : 0);
    return true;
}
