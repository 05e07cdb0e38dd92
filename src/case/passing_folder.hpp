// A folder for what programs hand on while a case is prepared.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

// Made among the temporary files, gone with all it holds when it is left; `there` is false, with the pattern
// of its name, when it could not be made.
struct PassingFolder {
    std::string name = (std::filesystem::temp_directory_path() / "vorda-run-XXXXXX").string();
    bool there = mkdtemp(name.data()) != nullptr;
    PassingFolder() = default;
    PassingFolder(const PassingFolder &) = delete;
    PassingFolder &operator=(const PassingFolder &) = delete;
    ~PassingFolder() {
        std::error_code ignored;
        if (there)
            std::filesystem::remove_all(name, ignored);
    }
};
