#include "exchange/apart.hpp"

#include "base/address_space.hpp"
#include "base/platform.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <new>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool write_all(int to, const void *data, std::size_t bytes) {
    const char *at = static_cast<const char *>(data);
    while (bytes > 0) {
        const ssize_t n = write(to, at, bytes);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        at += n;
        bytes -= static_cast<std::size_t>(n);
    }
    return true;
}
bool read_all(int from, void *data, std::size_t bytes) {
    char *at = static_cast<char *>(data);
    while (bytes > 0) {
        const ssize_t n = read(from, at, bytes);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        at += n;
        bytes -= static_cast<std::size_t>(n);
    }
    return true;
}

// A list or a text through the pipe: its length, then what it holds.
template <class List> bool put(int to, const List &list) {
    const std::uint64_t n = list.size();
    return write_all(to, &n, sizeof n) && write_all(to, list.data(), n * sizeof *list.data());
}
template <class List> bool take(int from, List &list) {
    std::uint64_t n = 0;
    if (!read_all(from, &n, sizeof n))
        return false;
    list.resize(n);
    return read_all(from, list.data(), n * sizeof *list.data());
}

// More memory than the machine has is refused at once, instead of being granted and taken back by force.
void limit_memory() {
#if !defined(__SANITIZE_ADDRESS__)
    MemorySizes sizes;
    if (!query_memory(sizes))
        return;
    rlimit limit;
    if (getrlimit(RLIMIT_AS, &limit) != 0)
        return;
    const rlim_t wanted = static_cast<rlim_t>(sizes.available + address_space_used());
    limit.rlim_cur = std::min(limit.rlim_max, wanted);
    (void)setrlimit(RLIMIT_AS, &limit);
#endif
}

[[noreturn]] void serve(const MeshReader &reader, unsigned seconds, int to) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGALRM, SIGSEGV, SIGABRT, SIGFPE})
        (void)std::signal(number, SIG_DFL);
    rlimit no_core{0, 0};
    (void)setrlimit(RLIMIT_CORE, &no_core);
    limit_memory();
    if (const int silent = open("/dev/null", O_RDWR); silent >= 0)
        for (const int stream : {0, 1, 2})
            (void)dup2(silent, stream);
    alarm(seconds);
    ReadMesh result;
    std::string error, notes;
    char good = 0;
    try {
        good = reader(result, error) ? 1 : 0;
    } catch (const std::bad_alloc &) {
        error = "RAM is not sufficient to read it";
    } catch (const std::exception &fault) {
        error = fault.what();
    }
    for (const std::string &note : result.notes)
        notes += note + "\n";
    const bool sent = write_all(to, &good, 1) && put(to, error) && put(to, notes) &&
                      put(to, result.mesh.points) && put(to, result.mesh.of_panel);
    _exit(sent ? 0 : 1);
}

} // namespace

bool read_apart(const MeshReader &reader, unsigned seconds, ReadMesh &result, std::string &error) {
    int ends[2];
    std::fflush(nullptr);
    if (pipe(ends) != 0) {
        error = std::strerror(errno);
        return false;
    }
    const pid_t child = fork();
    if (child < 0) {
        error = std::strerror(errno);
        close(ends[0]);
        close(ends[1]);
        return false;
    }
    if (child == 0) {
        close(ends[0]);
        serve(reader, seconds, ends[1]);
    }
    close(ends[1]);
    char good = 0;
    std::string notes;
    const bool whole = read_all(ends[0], &good, 1) && take(ends[0], error) && take(ends[0], notes) &&
                       take(ends[0], result.mesh.points) && take(ends[0], result.mesh.of_panel);
    close(ends[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        ;
    for (std::size_t from = 0, to; (to = notes.find('\n', from)) != std::string::npos; from = to + 1)
        result.notes.push_back(notes.substr(from, to - from));
    if (!whole) {
        const bool late = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
        error = late ? "reading it takes longer than " + std::to_string(seconds) + " s"
                     : "the library that reads it broke down: the file is broken or truncated";
        return false;
    }
    return good != 0;
}
