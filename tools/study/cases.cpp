#include "cases.hpp"

#include "base/text.hpp"
#include "case/made_from.hpp"
#include "case/programs.hpp"
#include "input/names.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr const char *NAMES = "fnames.vrd", *CONFIGURATION = "config.vrd";

// The first word of each line of a file.
std::vector<std::string> names_in(const fs::path &file) {
    std::istringstream in(text_of(file.string()));
    std::vector<std::string> names;
    for (std::string line; std::getline(in, line);) {
        FNNORM(line);
        names.push_back(line);
    }
    return names;
}

// The files that a run in the folder reads, as far as they are there: the two that have fixed names, what the
// names file and a geometry file of several bodies name, and the extra modes beside a geometry file.
std::set<std::string> input_files(const fs::path &folder) {
    std::set<std::string> files;
    const auto add = [&](const std::string &name) {
        std::error_code ignored;
        if (!name.empty() && fs::is_regular_file(folder / name, ignored))
            files.insert((folder / name).string());
    };
    add(NAMES);
    add(CONFIGURATION);
    const std::vector<std::string> named = names_in(folder / NAMES);
    for (const std::string &name : named) {
        add(name);
        add(fs::path(name).replace_extension(".mod").string());
    }
    if (named.empty() || !fs::is_regular_file(folder / named[0]))
        return files;
    for (const std::string &name : names_in(folder / named[0])) {
        add(name);
        add(fs::path(name).replace_extension(".mod").string());
    }
    return files;
}

std::string input_lines(const fs::path &folder, const std::string &version) {
    std::string lines = version + "\n";
    for (const std::string &file : input_files(folder))
        lines += hash_line(file);
    return lines;
}

// Name of the result, "" without a control file.
std::string result_of(const fs::path &folder) {
    const std::vector<std::string> named = names_in(folder / NAMES);
    if (named.size() < 2 || named[1].empty())
        return {};
    NameTable names;
    names.resize(3);
    names(2) = named[1];
    SETEXT(names, 2, 3, 3);
    return names(3);
}

} // namespace

bool list_cases(const std::string &study, std::vector<std::string> &folders, std::string &error) {
    std::error_code fault;
    if (fs::is_directory(study, fault)) {
        for (const auto &entry : fs::directory_iterator(study, fault))
            if (fs::exists(entry.path() / NAMES))
                folders.push_back(entry.path().string());
        std::sort(folders.begin(), folders.end());
    } else {
        std::istringstream in(text_of(study));
        bool first = true;
        for (std::string line; std::getline(in, line); first = false) {
            const std::string name = trimmed(line.substr(0, line.find_first_of(",;\r")));
            if (name.empty() || name[0] == '#')
                continue;
            const fs::path folder = fs::path(study).parent_path() / name;
            if (fs::is_directory(folder, fault))
                folders.push_back(folder.string());
            else if (!first) {
                error = study + ": no folder " + folder.string();
                return false;
            }
        }
    }
    if (folders.empty())
        error = study + ": no case folders there";
    return !folders.empty();
}

CaseResult solve_case(const std::string &folder, const std::string &version) {
    CaseResult result;
    const std::string p2f = result_of(folder);
    MadeFrom record(folder);
    if (!p2f.empty() && record.holds(p2f, input_lines(folder, version))) {
        result.state = CaseState::done_before;
        return result;
    }
    const auto start = std::chrono::steady_clock::now();
    Ended ended;
    if (!run_program({{"vorda"}, folder}, {}, ended, result.message))
        return result;
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!p2f.empty() && fs::exists(fs::path(folder) / p2f)) {
        // A file of the free surface may have been made: the input is what is there now.
        if (record.set(p2f, input_lines(folder, version), result.message))
            result.state = CaseState::solved;
        return result;
    }
    result.message = ended.code >= 128 ? "ended by signal " + std::to_string(ended.code - 128)
                                       : trimmed(ended.text.substr(0, ended.text.find('\n')));
    return result;
}
