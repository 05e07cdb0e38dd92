#include "case/solution.hpp"

#include "case/programs.hpp"
#include "case/trial.hpp"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Lines of the list of periods in the solver's report.
int periods_done(const std::string &list) {
    std::istringstream in(list);
    int done = 0;
    bool behind_head = false;
    for (std::string line; std::getline(in, line);) {
        int index = 0, thread = 0;
        behind_head = behind_head || line.find("Index Thread") != std::string::npos;
        if (behind_head && std::sscanf(line.c_str(), "%d %d", &index, &thread) == 2)
            ++done;
    }
    return done;
}

// Plain lines on standard output, a tenth of the periods each; the solver itself tells a terminal.
class Watch {
  public:
    Watch(std::string list, int count) : list_(std::move(list)), count_(count) {}
    void operator()() {
        const int done = periods_done(text_of(list_));
        if (10 * done / count_ <= told_)
            return;
        told_ = 10 * done / count_;
        std::printf("solve      %d of %d periods, %.0f s left\n", done, count_,
                    since(start_) / done * (count_ - done));
        std::fflush(stdout);
    }

  private:
    std::string list_;
    int count_, told_ = 0;
    Clock::time_point start_ = Clock::now();
};

// The end of the report, where the fault stands.
std::string end_of(const std::string &list) {
    std::istringstream in(list);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        if (line.find_first_not_of(' ') != std::string::npos)
            lines.push_back(line);
    std::string text;
    for (std::size_t k = lines.size() > 6 ? lines.size() - 6 : 0; k < lines.size(); ++k)
        text += "\n " + lines[k];
    return text;
}

// What a solution is made from: decks and meshes.
std::string lines_of(const RunCase &run, const Solution &solution) {
    const std::string there = run.run_folder() + "/" + solution.folder;
    // Another build of the solver solves again, the same one in another place does not.
    const std::string solver = program_beside("vorda");
    std::string lines = solution.version + "\nsolver" + hash_line(solver).substr(solver.size());
    for (const DeckFile &deck : decks_of(run, *solution.plan))
        lines += hash_line(there + deck.name);
    for (std::size_t b = 0; b < run.bodies.size(); ++b)
        lines += hash_line(there + mesh_name(b));
    return lines;
}

} // namespace

bool write_decks(const RunCase &run, const Solution &solution, std::string &error) {
    for (const DeckFile &deck : decks_of(run, *solution.plan))
        if (!write_text(run.run_folder() + "/" + solution.folder + deck.name, deck.text, error))
            return false;
    return true;
}

bool solve(const RunCase &run, const Solution &solution, MadeFrom &made, std::string &error) {
    const std::string folder = run.run_folder() + (solution.folder.empty() ? "" : "/" + solution.folder);
    const std::string thing = solution.p2f(), list = run.run_folder() + "/" + solution.folder + "vorda.lis",
                      p2f = run.run_folder() + "/" + thing, lines = lines_of(run, solution);
    if (made.holds(thing, lines)) {
        std::printf("solve      unchanged, %s stays\n", thing.c_str());
        return true;
    }
    std::error_code ignored;
    fs::remove(p2f, ignored);
    fs::remove(list, ignored);
    if (!made.forget(thing, error))
        return false;
    std::printf("solve      vorda in %s\n", folder.c_str());
    std::fflush(stdout);
    const Clock::time_point start = Clock::now();
    Watch watch(list, solution.plan->periods);
    Ended ended;
    const bool terminal = on_terminal();
    if (!run_program({{"vorda"}, folder, terminal}, terminal ? std::function<void()>() : std::ref(watch),
                     ended, error))
        return false;
    if (ended.code != 0 || !fs::exists(p2f)) {
        error = "the solver ended without results (code " + std::to_string(ended.code) + "); " + list +
                " tells:" + end_of(text_of(list));
        return false;
    }
    char note[64];
    std::snprintf(note, sizeof note, "%.3f %.6g\n", since(start), work_of(*solution.plan));
    std::printf("solve      done in %.1f s\n", since(start));
    std::fflush(stdout);
    return made.set_note("last solution", note, error) && made.set(thing, lines, error);
}
