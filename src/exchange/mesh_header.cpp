// The counts at the head of a file against its length.
#include "exchange/mesh_read.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {

constexpr std::size_t STL_HEAD = 84, STL_TRIANGLE = 50; // bytes of a binary STL file
constexpr std::size_t ASCII_SIGN = 2048; // within so many bytes the first facet of an STL text begins

std::string too_many(double promised, std::size_t bytes) {
    char text[160];
    std::snprintf(
        text, sizeof text,
        "the head promises %.0f items, more than a file of %zu bytes can hold: it is broken or truncated",
        promised, bytes);
    return text;
}

std::string stl_fault(const std::string &text) {
    const bool solid = text.rfind("solid", 0) == 0;
    if (text.size() >= STL_HEAD) {
        std::uint32_t n = 0;
        std::memcpy(&n, text.data() + STL_HEAD - sizeof n, sizeof n);
        const std::uint64_t wanted = STL_HEAD + static_cast<std::uint64_t>(STL_TRIANGLE) * n;
        if (wanted <= text.size() && (n > 0 || !solid))
            return "";
        if (!solid || text.substr(0, ASCII_SIGN).find("facet") == std::string::npos)
            return too_many(n, text.size());
    }
    if (!solid)
        return "it is no STL file";
    return text.find("endsolid") == std::string::npos ? "its end is missing: it is truncated" : "";
}

// The numbers behind a word, on its line or the next one; binary ones are left to the library.
std::string promise_fault(const std::string &text, const MeshPromise &promise) {
    const std::size_t length = std::strlen(promise.word);
    for (std::size_t at = text.find(promise.word); at != std::string::npos;
         at = text.find(promise.word, at + length)) {
        if (at > 0 && text[at - 1] != '\n')
            continue;
        const char *p = text.data() + at + length, *const end = text.data() + text.size();
        const bool next_line = p < end && (*p == '\n' || *p == '\r');
        while (next_line && p < end && (*p == '\n' || *p == '\r'))
            ++p;
        for (int number = 1; number <= promise.last; ++number) {
            while (p < end && (*p == ' ' || *p == '\t'))
                ++p;
            double value = 0;
            const auto [rest, fault] = std::from_chars(p, end, value);
            if (fault != std::errc())
                break;
            if (number >= promise.first && !(value >= 0 && value <= static_cast<double>(text.size())))
                return too_many(value, text.size());
            p = rest;
        }
    }
    return "";
}

// A text in which each vertex and each face has its line: fewer lines than the head promises behind its own.
std::string line_fault(const std::string &text, const std::string &last_of_head, double promised) {
    std::istringstream in(text.substr(text.find(last_of_head)));
    std::string line;
    double lines = -1; // the head's own
    while (std::getline(in, line))
        lines += line.find_first_not_of(" \t\r") == std::string::npos || line[0] == '#' ? 0 : 1;
    return lines < promised ? "lines of it are missing: it is truncated" : "";
}
double number_behind(const std::string &text, const char *word) {
    const std::size_t at = text.find(word);
    return at == std::string::npos ? 0 : std::strtod(text.c_str() + at + std::strlen(word), nullptr);
}
std::string ply_fault(const std::string &text) {
    if (text.find("format ascii") == std::string::npos)
        return "";
    return line_fault(text, "end_header",
                      number_behind(text, "element vertex") + number_behind(text, "element face"));
}
std::string off_fault(const std::string &text) {
    const std::size_t at = text.find("OFF");
    std::istringstream in(at == std::string::npos ? "" : text.substr(at + 3));
    double vertices = 0, faces = 0, edges = 0;
    if (!(in >> vertices >> faces >> edges))
        return "its head cannot be read";
    std::string rest;
    (void)std::getline(in, rest);
    rest = "\n" + std::string(std::istreambuf_iterator<char>(in), {});
    return line_fault("head" + rest, "head", vertices + faces);
}
// Each part of a UNV file stands between two lines of -1.
std::string unv_fault(const std::string &text) {
    std::istringstream in(text);
    std::string line, word, more;
    int marks = 0;
    while (std::getline(in, line)) {
        std::istringstream items(line);
        marks += (items >> word) && word == "-1" && !(items >> more) ? 1 : 0;
    }
    return marks < 2 || marks % 2 != 0 ? "its end is missing: it is truncated" : "";
}

// A number of lines that a file tells, whatever stands there.
std::int64_t lines_told(double n) {
    constexpr double MOST = 1e15; // more than any file has
    return n > 0 ? static_cast<std::int64_t>(std::ceil(std::min(n, MOST))) : 0;
}

// The blocks of a Gmsh text of version 4: behind the counts of a section each has a line of four numbers, the
// last of which says how many lines follow, for nodes twice that: their tags, then their places.
std::string block_fault(const std::string &text, const char *section, int lines_each) {
    const std::size_t at = text.find(section);
    if (at == std::string::npos)
        return "";
    std::istringstream in(text.substr(at));
    std::string line;
    double blocks = 0, n = 0;
    (void)std::getline(in, line);
    (void)std::getline(in, line);
    std::istringstream(line) >> blocks;
    for (std::int64_t left = lines_told(blocks); left > 0; --left) {
        double skipped;
        if (!std::getline(in, line) || !(std::istringstream(line) >> skipped >> skipped >> skipped >> n))
            return "the head of a block behind " + std::string(section) +
                   " is missing: it is broken or truncated";
        for (std::int64_t lines = lines_told(lines_each * n); lines > 0; --lines)
            if (!std::getline(in, line) || line[0] == '$')
                return too_many(n, text.size());
    }
    return "";
}

// Of a Gmsh text; binary files are left to the library.
std::string gmsh_fault(const std::string &text) {
    const std::size_t at = text.find("$MeshFormat");
    double version = 0;
    int binary = 1;
    if (at == std::string::npos)
        return "it is no Gmsh file";
    std::istringstream(text.substr(at + std::strlen("$MeshFormat"), 80)) >> version >> binary;
    if (version < 4.05 || binary != 0)
        return "";
    const std::string fault = block_fault(text, "$Nodes", 2);
    return fault.empty() ? block_fault(text, "$Elements", 1) : fault;
}

// What is particular to a format.
std::string fault_by_extension(const char *extension, const std::string &text) {
    constexpr struct {
        const char *extension;
        std::string (*fault)(const std::string &);
    } CHECKS[] = {{".stl", stl_fault},
                  {".ply", ply_fault},
                  {".off", off_fault},
                  {".unv", unv_fault},
                  {".msh", gmsh_fault}};
    for (const auto &check : CHECKS)
        if (std::strcmp(check.extension, extension) == 0)
            return check.fault(text);
    return "";
}

} // namespace

std::string header_fault(const MeshFormat &format, const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    const std::string text = std::move(all).str();
    if (text.empty())
        return "it is empty, or cannot be read";
    for (const MeshPromise &promise : format.promises)
        if (std::string fault = promise_fault(text, promise); !fault.empty())
            return fault;
    if (text.find(format.end) == std::string::npos)
        return "its end is missing: it is truncated";
    return fault_by_extension(format.extension, text);
}
