// vorda-run in a temporary folder.
#pragma once

#include "temporary_folder.hpp"

#include <cstdio>
#include <sys/wait.h>

struct Answer {
    int code = 0;
    std::string text; // standard output and standard error
};
// A command line in the folder, with the programs of the build.
inline Answer command(const TemporaryFolder &folder, const std::string &line) {
    Answer answer;
    const std::string whole =
        "cd '" + folder.path().string() + "' && PATH='" VORDA_BINARY_DIR "':$PATH && (" + line + ") 2>&1";
    std::FILE *out = popen(whole.c_str(), "r");
    char buffer[4096];
    for (std::size_t n = 0; out != nullptr && (n = std::fread(buffer, 1, sizeof buffer, out)) > 0;)
        answer.text.append(buffer, n);
    const int status = out != nullptr ? pclose(out) : -1;
    answer.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return answer;
}
