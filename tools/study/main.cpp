// vorda-study: many independent runs over the processes of an MPI job.
#include "../mpi/cores.hpp"
#include "../mpi/transfer.hpp"
#include "../support/arguments.hpp"
#include "cases.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace {

constexpr int RESULT = 1, NEXT = 2; // tags

// What a process sends to process 0: the outcome of a case, or with index -1 its first question.
struct Outcome {
    int index = -1;
    int rank = 0;
    CaseState state = CaseState::failed;
    double seconds = 0;
    char message[400] = {};
};

// The cases in the order of the study, and their outcomes.
class Study {
  public:
    explicit Study(std::size_t cases) : outcomes_(cases) {}
    // Notes an outcome and returns the next case, -1: no more.
    int next(const Outcome &outcome) {
        const std::lock_guard hold(lock_);
        if (outcome.index >= 0)
            outcomes_[static_cast<std::size_t>(outcome.index)] = outcome;
        return given_ < static_cast<int>(outcomes_.size()) ? given_++ : -1;
    }
    // Answers all other processes until none has a case any more.
    void serve(int others) {
        while (others > 0) {
            Outcome outcome;
            MPI_Request request = MPI_REQUEST_NULL;
            MPI_Irecv(&outcome, sizeof outcome, MPI_BYTE, MPI_ANY_SOURCE, RESULT, MPI_COMM_WORLD, &request);
            wait_for(request);
            const int index = next(outcome);
            send_bytes(&index, sizeof index, outcome.rank, NEXT, MPI_COMM_WORLD);
            others -= index < 0 ? 1 : 0;
        }
    }
    // Prints the table. Returns the number of cases that failed.
    int report(const std::vector<std::string> &folders) const;

  private:
    std::mutex lock_;
    std::vector<Outcome> outcomes_;
    int given_ = 0;
};

int Study::report(const std::vector<std::string> &folders) const {
    std::size_t width = 4;
    for (const std::string &folder : folders)
        width = std::max(width, folder.size());
    std::printf("%-*s  %-11s %9s %7s  %s\n", static_cast<int>(width), "case", "state", "time [s]", "process",
                "message");
    int count[3] = {};
    for (std::size_t k = 0; k < folders.size(); ++k) {
        static constexpr const char *NAMES[] = {"solved", "done before", "failed"};
        const Outcome &o = outcomes_[k];
        const int state = static_cast<int>(o.state);
        ++count[state];
        std::printf("%-*s  %-11s %9.2f %7d  %s\n", static_cast<int>(width), folders[k].c_str(), NAMES[state],
                    o.seconds, o.rank, o.message);
    }
    std::printf("%d solved, %d done before, %d failed\n", count[0], count[1], count[2]);
    return count[2];
}

// The threads of a solver: processes that may use the same cores share them.
void divide_cores() {
    if (std::getenv("OMP_NUM_THREADS") != nullptr)
        return;
    MPI_Comm computer = MPI_COMM_NULL;
    MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &computer);
    setenv("OMP_NUM_THREADS", std::to_string(threads_of_process(computer)).c_str(), 1);
}

Outcome solve(const std::string &folder, int index, int rank) {
    Outcome outcome;
    outcome.index = index;
    outcome.rank = rank;
    const CaseResult result = solve_case(folder, "VORDA " VORDA_VERSION);
    outcome.state = result.state;
    outcome.seconds = result.seconds;
    result.message.copy(outcome.message, sizeof outcome.message - 1);
    return outcome;
}

// The cases of the study as process 0 lists them, one a line, at all processes.
bool share_cases(const std::string &study, int rank, std::vector<std::string> &folders) {
    Image text;
    if (rank == 0) {
        std::string error;
        if (!list_cases(study, folders, error))
            std::fprintf(stderr, "vorda-study: %s\n", error.c_str());
        for (const std::string &folder : folders)
            text.insert(text.end(), folder.c_str(), folder.c_str() + folder.size() + 1);
    }
    broadcast(text, MPI_COMM_WORLD);
    folders.clear();
    for (auto at = text.begin(); at != text.end();) {
        const auto end = std::find(at, text.end(), '\0');
        folders.emplace_back(at, end);
        at = end + 1;
    }
    return !folders.empty();
}

int work(const std::string &path) {
    int rank = 0, size = 1;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &size);
    std::vector<std::string> folders;
    if (!share_cases(path, rank, folders))
        return 1;
    divide_cores();
    Study study(rank == 0 ? folders.size() : 0);
    std::thread service;
    if (rank == 0)
        service = std::thread([&] { study.serve(size - 1); });
    const auto next = [&](const Outcome &outcome) {
        if (rank == 0)
            return study.next(outcome);
        int index = -1;
        send_bytes(&outcome, sizeof outcome, 0, RESULT, MPI_COMM_WORLD);
        receive_bytes(&index, sizeof index, 0, NEXT, MPI_COMM_WORLD);
        return index;
    };
    Outcome outcome;
    outcome.rank = rank;
    for (int index; (index = next(outcome)) >= 0;)
        outcome = solve(folders[static_cast<std::size_t>(index)], index, rank);
    if (rank != 0)
        return 0;
    service.join();
    return study.report(folders) == 0 ? 0 : 1;
}

int follow(int argc, char **argv) {
    CLI::App app("Solves the cases of a design study over the processes of an MPI job: mpirun -n N "
                 "vorda-study STUDY.\n"
                 "A case that is done and whose input has not changed is left alone.",
                 "vorda-study");
    set_up_program(app);
    std::string study;
    app.add_option("STUDY", study, "folder of case folders, or a table (.csv) with one in the first column")
        ->required();
    CLI11_PARSE(app, argc, argv);
    int provided = MPI_THREAD_SINGLE;
    MPI_Init_thread(&argc, &argv, MPI_THREAD_MULTIPLE, &provided);
    if (provided < MPI_THREAD_MULTIPLE) {
        std::fprintf(stderr, "vorda-study: this MPI library does not serve several threads at a time\n");
        MPI_Abort(MPI_COMM_WORLD, 1);
    }
    const int code = work(study);
    std::fflush(nullptr);
    MPI_Finalize();
    return code;
}

} // namespace

int main(int argc, char **argv) {
    return guarded(argc, argv, "vorda-study", follow);
}
