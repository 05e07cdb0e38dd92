#include "case/made_from.hpp"

#include "exchange/part_file.hpp"
#include "exchange/provenance.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string size_and_time(const std::string &name) {
    std::error_code fault;
    const fs::file_status status = fs::status(name, fault);
    if (fault || !fs::exists(status))
        return "missing";
    if (fs::is_directory(status))
        return "a folder";
    return std::to_string(fs::file_size(name, fault)) + " bytes " +
           std::to_string(fs::last_write_time(name, fault).time_since_epoch().count());
}

constexpr const char *RECORD = "made_from.txt";

} // namespace

std::string hash_line(const std::string &name) {
    const std::string hash = sha256_of(name);
    return name + " " + (hash.empty() ? size_and_time(name) : hash) + "\n";
}

std::string text_of(const std::string &name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

bool write_text(const std::string &name, const std::string &text, std::string &error) {
    if (!text.empty() && text_of(name) == text)
        return true;
    return write_whole(name, text, error);
}

MadeFrom::MadeFrom(const std::string &folder) : folder_(folder) {
    std::istringstream in(text_of(folder_ + "/" + RECORD));
    std::string thing;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line[0] == '\t')
            lines_[thing] += line.substr(1) + "\n";
        else
            thing = line;
    }
}

std::string MadeFrom::stamp(const std::string &thing) const {
    return "made: " + size_and_time(folder_ + "/" + thing) + "\n";
}

bool MadeFrom::holds(const std::string &thing, const std::string &lines) const {
    std::error_code fault;
    const auto found = lines_.find(thing);
    return found != lines_.end() && fs::exists(folder_ + "/" + thing, fault) &&
           found->second == lines + stamp(thing);
}

bool MadeFrom::set(const std::string &thing, const std::string &lines, std::string &error) {
    lines_[thing] = lines + stamp(thing);
    return save(error);
}

bool MadeFrom::forget(const std::string &thing, std::string &error) {
    return lines_.erase(thing) == 0 || save(error);
}

std::string MadeFrom::note(const std::string &name) const {
    const auto found = lines_.find(name);
    return found == lines_.end() ? "" : found->second;
}

bool MadeFrom::set_note(const std::string &name, const std::string &text, std::string &error) {
    lines_[name] = text;
    return save(error);
}

bool MadeFrom::save(std::string &error) const {
    std::string text;
    for (const auto &[thing, lines] : lines_) {
        text += thing + "\n";
        std::istringstream in(lines);
        for (std::string line; std::getline(in, line);)
            text += "\t" + line + "\n";
    }
    return write_text(folder_ + "/" + RECORD, text, error);
}
