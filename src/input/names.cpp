#include "input/names.hpp"

#include "base/platform.hpp"
#include "base/text.hpp"
#include "state/messages.hpp"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char *BLANKS = " \t\r";
constexpr std::size_t WHOLE_LINE = std::string::npos;

// Writes the prompt and reads the answer from the console.
Status ask(const std::string &list_name, const std::string &prompt, const char *what, std::string &name) {
    list_line(prompt);
    if (isatty(STDIN_FILENO) != 0)
        ALERT(prompt);
    const bool answered = static_cast<bool>(std::getline(std::cin, name));
    FNNORM(name);
    if (!answered || name.empty())
        return MSGOUT_with(std::string("Error reading the name of the ") + what + " from the console", 0,
                           "give it in " + list_name + " or on standard input");
    return Status::ok;
}

// True when the next line holds a name.
bool name_line(FreeReader &in, std::string &name) {
    if (!in.line(name, WHOLE_LINE))
        return false;
    FNNORM(name);
    return !name.empty();
}

Status remove_old_result(const std::string &name) {
    struct stat found;
    if (lstat(name.c_str(), &found) != 0)
        return Status::ok;
    list_line(" ");
    list_line("     WARNING!");
    list_line(" ");
    list_line("     An old P2F file exists with the specified filename " + text_at_least(20, name));
    list_line("     Old file is overwritten");
    // A result that stays behind would be taken for the one of this run if the run fails.
    if (unlink(name.c_str()) != 0)
        return MSGOUT_with("Error removing old P2F file ", 0, name + ": " + std::strerror(errno));
    return Status::ok;
}

// The files that the geometry file names, as far as it can be read; it is judged later.
std::vector<std::string> files_of(const std::string &gdf, const Options &opt) {
    std::vector<std::string> files{gdf};
    FreeReader in;
    std::string line;
    f32 values[2], XBODY[4];
    int NBODY = 0, numbers[6];
    if (!in.open(gdf) || !in.line(line, WHOLE_LINE) || !in.read_array(values, 2) || values[0] > 0 ||
        !in.read(NBODY))
        return files;
    for (int b = 1; b <= NBODY && name_line(in, line); ++b) {
        files.push_back(line);
        if (!in.read_array(XBODY, 4) || !in.read_array(numbers, 2) || !in.read_array(numbers, 6) ||
            (opt.IFSLID != 0 && !in.read_array(values, 2)))
            break;
    }
    return files;
}

} // namespace

void FNNORM(std::string &name) {
    const std::size_t first = name.find_first_not_of(BLANKS);
    name = first == std::string::npos ? std::string() : name.substr(first);
    name = name.substr(0, name.find_first_of(BLANKS));
}

void SETEXT(NameTable &FILNAM, int a, int b, int c) {
    std::string name = FILNAM(a);
    FNNORM(name);
    const std::size_t slash = name.rfind('/');
    const std::size_t own = slash == std::string::npos ? 0 : slash + 1; // where the file's own name starts
    const std::size_t dot = name.find('.', own + 1);
    FILNAM(b) = name.substr(0, dot) + EXTS.at(static_cast<std::size_t>(c) - 1);
}

Status RDNAMS(Files &files, const Options &opt) {
    FreeReader in;
    std::string gdf;
    std::string pot;
    const bool have_gdf = in.open(files.names) && name_line(in, gdf);
    const bool have_pot = have_gdf && name_line(in, pot);
    if (!have_gdf) {
        list_line(" ");
        std::string missing(1, ' ');
        missing += text_at_least(20, files.names);
        list_line(missing + "file cannot be opened or is incomplete; ");
        list_line(" ");
        if (failed(ask(files.names, " Enter full name of geometric data file (GDF):          ", "GDF file",
                       gdf)))
            return Status::failed;
    }
    if (!have_pot) {
        list_line(" ");
        if (failed(ask(files.names, " Enter full name of potential control file (POT):       ", "POT file",
                       pot)))
            return Status::failed;
        list_line(" ");
        list_line(" ");
    }
    files.FILNAM(1) = gdf;
    files.FILNAM(2) = pot;
    SETEXT(files.FILNAM, 2, 3, 3);
    const std::string &p2f = files.FILNAM(3);
    if (opt.CHECKP == 1)
        files.checkpoint = p2f.substr(0, p2f.rfind('.')) + ".vck";
    std::vector<std::string> inputs = files_of(gdf, opt);
    inputs.insert(inputs.end(), {pot, files.config, files.names});
    for (const std::string &input : inputs) {
        if (same_file(p2f, input))
            return MSGOUT_with("The P2F file would replace an input file", 0,
                               p2f + " and " + input + ": give the GDF and the POT file another extension");
        if (opt.CHECKP == 1 && same_file(files.checkpoint, input))
            return MSGOUT_with("The checkpoint would replace an input file", 0,
                               files.checkpoint + " and " + input +
                                   ": give the input file another extension");
        if (same_file(files.list, input))
            return MSGOUT_with("The list file would replace an input file", 0,
                               input + ": give it another name");
    }
    return remove_old_result(p2f);
}

Status RDFDFN(Files &files) {
    FreeReader in;
    std::string name;
    bool have = in.open(files.names);
    for (int line = 1; have && line <= 4; ++line)
        have = in.line(name, WHOLE_LINE);
    have = have && name_line(in, name);
    if (!have) {
        list_line(" ");
        if (failed(ask(files.names, " Enter full name of free-surface panel file (FDF):      ", "FDF file",
                       name)))
            return Status::failed;
    }
    files.FILNAM(5) = name;
    return Status::ok;
}
