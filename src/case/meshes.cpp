#include "case/meshes.hpp"

#include "case/decks.hpp"
#include "case/programs.hpp"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string plain(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

// A name that the file gives, seen from where the program runs.
std::string from_here(const RunCase &run, const std::string &name) {
    return (fs::path(run.folder) / name).string();
}
// The run's folder seen from that of the case file, where programs work.
std::string folder_there(const RunCase &run) {
    return fs::path(run.run_folder()).filename().string();
}
bool is_geometry_file(const RunBody &body) {
    std::string extension = fs::path(body.mesh).extension().string();
    for (char &c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == ".gdf";
}

std::vector<std::string> maker_command(const RunCase &run, const RunBody &body, const std::string &out) {
    std::vector<std::string> words = {"vorda-mesh"};
    if (!body.maker.empty()) {
        words.push_back(body.maker);
        words.insert(words.end(), body.sizes.begin(), body.sizes.end());
    } else {
        words.insert(words.end(), {"import", body.mesh});
        const std::pair<const char *, double> options[] = {{"--scale", body.scale == 1 ? 0 : body.scale},
                                                           {"--draught", body.draught},
                                                           {"--size", body.size}};
        for (const auto &[option, value] : options)
            if (value > 0)
                words.insert(words.end(), {option, plain(value)});
        if (body.recombine)
            words.push_back("--recombine");
    }
    if (body.part != "auto")
        words.insert(words.end(), {"--part", body.part});
    words.insert(words.end(), {"--gravity", plain(run.gravity), "-o", out});
    return words;
}

// What a maker or import reads: the mesh, or the files among the sizes.
std::string hashes(const RunCase &run, const RunBody &body) {
    std::string lines;
    if (!body.mesh.empty())
        return hash_line(from_here(run, body.mesh));
    std::error_code fault;
    for (const std::string &word : body.sizes)
        if (word[0] != '-' && fs::is_regular_file(from_here(run, word), fault))
            lines += hash_line(from_here(run, word));
    return lines;
}

// The file with its symmetry indices as the wall has them; otherwise as it is.
bool copy_with_indices(const RunCase &run, const std::string &from, const std::string &to,
                       const Outline &outline, const RunBody &body, std::string &error) {
    int index[2] = {outline.index[0], outline.index[1]};
    if (body.wall > 0) {
        const std::size_t axis = static_cast<std::size_t>(body.wall - 1);
        const bool beside = body.place[axis] != 0;
        const std::string plane = body.wall == 1 ? "x = 0" : "y = 0";
        if (beside == (index[axis] == 1)) {
            error = run.at(body.line, beside ? "a body beside the wall " + plane +
                                                   " needs all its panels: set part to full"
                                             : "a body in the wall " + plane +
                                                   " is half a body: set part so that it is halved there, "
                                                   "or place it beside the wall");
            return false;
        }
        index[axis] = -1;
    }
    std::istringstream in(text_of(from));
    std::string line, text, rest;
    int numbers = 0;
    if (!std::getline(in, line))
        line.clear();
    text = line + "\n" + plain(outline.ULEN) + " " + plain(outline.GRAV) + "\n" + std::to_string(index[0]) +
           " " + std::to_string(index[1]) + "\n";
    // Behind the two pairs of numbers, each of which may run over lines.
    for (; numbers < 4 && std::getline(in, line);) {
        for (char &c : line)
            c = c == ',' ? ' ' : c;
        std::istringstream words(line);
        const int end = numbers < 2 ? 2 : 4;
        for (std::string word; numbers < end && words >> word;)
            ++numbers;
    }
    while (std::getline(in, line))
        rest += line + "\n";
    return write_text(to, text + rest, error);
}

bool make_mesh(const RunCase &run, std::size_t b, std::string &error) {
    const RunBody &body = run.bodies[b];
    const std::string name = mesh_name(b), to = run.run_folder() + "/" + name;
    Outline outline;
    if (body.maker.empty() && !fs::exists(from_here(run, body.mesh))) {
        error = run.at(body.mesh_line, "there is no mesh " + from_here(run, body.mesh) +
                                           "; names count from the folder of the case file");
        return false;
    }
    if (body.maker.empty() && is_geometry_file(body)) {
        if (body.part != "auto" || body.scale != 1 || body.draught > 0 || body.size > 0 || body.recombine)
            error = "part, scale, draught, size and recombine are for imports: change a geometry file by "
                    "vorda-mesh "
                    "transform";
        else if (!read_outline(from_here(run, body.mesh), body, outline, error))
            error += "; vorda-mesh check tells more";
        else if (outline.ULEN != 1)
            error = body.mesh + " has lengths in units of " + plain(outline.ULEN) +
                    ": a case needs a unit of 1 in the second line of the file";
        else if (std::fabs(outline.GRAV - run.gravity) > 1e-3 * run.gravity)
            error = body.mesh + " has a gravity of " + plain(outline.GRAV) + ", the case one of " +
                    plain(run.gravity) + ": set gravity to the same in both";
        if (!error.empty()) {
            error = run.at(body.mesh_line, error);
            return false;
        }
        return copy_with_indices(run, from_here(run, body.mesh), to, outline, body, error);
    }
    Ended ended;
    const Start start{maker_command(run, body, folder_there(run) + "/" + name), run.folder, false};
    std::error_code ignored;
    fs::remove(to, ignored);
    if (!run_program(start, {}, ended, error))
        return false;
    if (!fs::exists(to)) {
        error = run.at(body.mesh_line, typed(start.words) + " makes no mesh:\n" + ended.text);
        return false;
    }
    return write_text(run.run_folder() + "/meshes/body" + std::to_string(b + 1) + ".txt", ended.text,
                      error) &&
           (body.wall == 0 ||
            (read_outline(to, body, outline, error) && copy_with_indices(run, to, to, outline, body, error)));
}

} // namespace

bool make_meshes(const RunCase &run, MadeFrom &made, std::vector<Outline> &outlines, std::string &error) {
    std::error_code fault;
    fs::create_directories(run.run_folder() + "/meshes", fault);
    if (fault) {
        error = run.run_folder() + " cannot be made: " + fault.message();
        return false;
    }
    outlines.resize(run.bodies.size());
    for (std::size_t b = 0; b < run.bodies.size(); ++b) {
        const RunBody &body = run.bodies[b];
        const std::string name = mesh_name(b);
        const std::size_t axis = body.wall > 0 ? static_cast<std::size_t>(body.wall - 1) : 0;
        const std::string wall =
            std::to_string(body.wall) + (body.wall > 0 && body.place[axis] != 0 ? " beside" : "");
        const std::string lines =
            typed(maker_command(run, body, name)) + "\nwall " + wall + "\n" + hashes(run, body);
        if (!made.holds(name, lines)) {
            std::printf("mesh       %s: %s\n", name.c_str(), body.called(b).c_str());
            std::fflush(stdout);
            if (!made.forget(name, error) || !make_mesh(run, b, error) || !made.set(name, lines, error))
                return false;
        }
        if (!read_outline(run.run_folder() + "/" + name, body, outlines[b], error)) {
            error = run.at(body.mesh_line, error);
            return false;
        }
    }
    return true;
}

bool judge_meshes(const RunCase &run, double shortest_wave, std::string &report, std::string &faults,
                  std::string &error) {
    Ended ended;
    std::vector<std::string> words = {"vorda-mesh", "check", geometry_name(run), "--wave-length",
                                      plain(shortest_wave)};
    if (run.depth > 0)
        words.insert(words.end(), {"--depth", plain(run.depth)});
    if (!run_program({words, run.run_folder(), false}, {}, ended, error))
        return false;
    if (ended.code != 0 && ended.code != 2) {
        error = "the meshes cannot be read: " + ended.text;
        return false;
    }
    report = ended.text;
    std::istringstream in(report);
    for (std::string line; std::getline(in, line);)
        if (line.rfind("WARNING:", 0) == 0)
            faults += line.substr(9) + "\n";
    if (ended.code == 2 && faults.empty())
        faults = report;
    return true;
}
