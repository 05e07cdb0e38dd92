#include "mpi_crew.hpp"

#include "base/platform.hpp"
#include "cores.hpp"
#include "transfer.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <omp.h>
#include <unistd.h>

namespace {

// The number of an environment variable, or `otherwise`.
double number_of(const char *variable, double otherwise) {
    const char *const text = std::getenv(variable);
    const double value = text == nullptr ? 0 : std::atof(text);
    return value > 0 ? value : otherwise;
}

MPI_Comm processes_of_this_computer(int rank) {
    MPI_Comm node = MPI_COMM_NULL;
    MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, rank, MPI_INFO_NULL, &node);
    return node;
}

// Where each process runs, at process 0. The number of a computer is the rank of its first process.
std::vector<Place> places_of_all(int rank, int size, MPI_Comm computer) {
    Place own;
    ("process " + std::to_string(rank) + " of " + std::to_string(size) + ", on " + computer_name())
        .copy(own.text, sizeof own.text - 1);
    own.pid = getpid();
    own.computer = all_of(rank, MPI_MIN, computer);
    std::vector<Place> places(static_cast<std::size_t>(size));
    MPI_Gather(&own, sizeof own, MPI_BYTE, places.data(), sizeof own, MPI_BYTE, 0, MPI_COMM_WORLD);
    return places;
}

// MPI has met a fault: another process is gone, or the network.
void on_mpi_fault(MPI_Comm *, int *code, ...) {
    char text[MPI_MAX_ERROR_STRING] = {};
    int length = 0;
    MPI_Error_string(*code, text, &length);
    MSGOUT_with("Error in the exchange between the processes of the run", 0, text);
    STOPRN(0);
}

} // namespace

MpiCrew::MpiCrew() {
    constexpr double PATIENCE = 20; // [s]
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &size_);
    MPI_Comm computer = processes_of_this_computer(rank_);
    const int threads = threads_of_process(computer);
    if (std::getenv("OMP_NUM_THREADS") == nullptr)
        omp_set_num_threads(threads);
    MPI_Comm_rank(computer, &node_rank_);
    // A test takes parts of a computer for computers.
    const int part = node_rank_ / static_cast<int>(number_of("VORDA_MPI_NODE_SIZE", size_));
    MPI_Comm_split(computer, part, rank_, &node_);
    MPI_Comm_rank(node_, &node_rank_);
    MPI_Comm_size(node_, &node_size_);
    MPI_Comm signs = MPI_COMM_NULL;
    MPI_Comm_dup(MPI_COMM_WORLD, &signs);
    MPI_Comm_dup(MPI_COMM_WORLD, &periods_);
    MPI_Errhandler told = MPI_ERRHANDLER_NULL;
    MPI_Comm_create_errhandler(on_mpi_fault, &told);
    for (const MPI_Comm comm : {MPI_COMM_WORLD, node_, signs, periods_})
        MPI_Comm_set_errhandler(comm, told);
    store_ = std::make_unique<SharedStore>(node_);
    pulse_ = std::make_unique<Pulse>(signs, number_of("VORDA_MPI_PATIENCE", PATIENCE));
    if (!leads())
        keep_lines();
    end_by([this](const ListReport &report) { end(report); });
    pulse_->start(places_of_all(rank_, size_, computer));
    MPI_Comm_free(&computer);
}

void MpiCrew::share_input(RunState &run) {
    const int computers = all_of(node_rank_ == 0 ? 1 : 0, MPI_SUM, MPI_COMM_WORLD);
    line_at_signal(
        "  The run was ended by a signal: from outside, or since another of its processes has died");
    Image image;
    if (leads())
        image = image_of(run);
    list_line("  " + std::to_string(size_) + " processes on " + std::to_string(computers) +
              " computers share the periods; the input goes to them as " +
              std::to_string((image.size() >> 10) + 1) + " KB");
    broadcast(image, MPI_COMM_WORLD);
    if (!leads() && !from_image(image, run)) {
        (void)MSGOUT(" RAM too small ");
        STOPRN(0);
    }
}

void MpiCrew::share_flows(SteadyFlow &flow) {
    Image image;
    if (leads())
        image = image_of(flow);
    broadcast(image, MPI_COMM_WORLD);
    if (!leads() && !from_image(image, flow)) {
        (void)MSGOUT(" RAM too small ");
        STOPRN(0);
    }
}

void MpiCrew::measure_memory(Memory &memory) {
    MemorySizes sizes;
    if (!leads())
        memory.AVAILM = query_memory(sizes) ? sizes.available : 0;
    // All processes of a computer plan with the same number.
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Ibcast(&memory.AVAILM, 1, MPI_INT64_T, 0, node_, &request);
    wait_for(request);
}

void MpiCrew::divide_memory(Memory &memory) {
    // In memory and on scratch the last bits of a solution differ: it is one or the other for all.
    const bool everywhere = all_of(memory.INCORE ? 1 : 0, MPI_MIN, MPI_COMM_WORLD) == 1;
    if (memory.INCORE && !everywhere)
        list_line("  Another computer of the run has not the memory: scratch files are used");
    memory.INCORE = everywhere;
    const int periods = std::max(memory.NTMAX, 0);
    memory.NTMAX = periods / node_size_ + (node_rank_ < periods % node_size_ ? 1 : 0);
    if (!memory.INCORE && !leads())
        enter_own_folder();
}

// The named scratch files of two processes must not meet. The folder is on the disk of this computer if
// TMPDIR tells one, else in that of the run.
void MpiCrew::enter_own_folder() const {
    const char *const place = std::getenv("TMPDIR");
    std::string name =
        std::string(place != nullptr && *place != '\0' ? place : ".") + "/vorda_scratch_XXXXXX";
    char *const made = mkdtemp(name.data()) != nullptr ? realpath(name.c_str(), nullptr) : nullptr;
    if (made == nullptr || !remove_at_end(made) || chdir(made) != 0) {
        (void)MSGOUT_with(" Error opening scratch file in RANKIN ", 0, name + ": " + std::strerror(errno));
        STOPRN(0);
    }
    std::free(made);
}

Status MpiCrew::allocate_rankine(RunState &run) {
    return store_->shared() ? store_->allocate(run) : Crew::allocate_rankine(run);
}

PeriodExchange &MpiCrew::open_exchange(PeriodBook *book, int threads, int &first_thread) {
    first_thread = 0;
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Iexscan(&threads, &first_thread, 1, MPI_INT, MPI_SUM, MPI_COMM_WORLD, &request);
    wait_for(request);
    const int all = all_of(threads, MPI_SUM, MPI_COMM_WORLD);
    (void)take_report(); // the stages so far are told by process 0
    if (book == nullptr)
        return remote_.emplace(periods_, threads);
    service_ = std::make_unique<PeriodService>(periods_, *book, all - threads);
    return *book;
}

void MpiCrew::close_exchange() {
    if (service_)
        service_->wait_for_end();
}

void MpiCrew::end(const ListReport &report) {
    const bool good = leads() ? report.complete : report.first_fault.empty();
    if (!good && leads())
        MPI_Abort(MPI_COMM_WORLD, 1);
    if (!good)
        pulse_->report_fault(report);
    if (leads())
        pulse_->end_run();
    else
        pulse_->wait_for_end();
    store_->free();
    MPI_Finalize();
    std::_Exit(0);
}
