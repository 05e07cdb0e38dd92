// The solver over the processes of an MPI job.
#include "mpi_crew.hpp"

#include "run/driver.hpp"

#include <cstdio>
#include <cstring>

namespace {

bool told(const char *argument) {
    if (std::strcmp(argument, "--version") == 0)
        std::puts("vorda-mpi " VORDA_VERSION);
    else if (std::strcmp(argument, "--help") == 0 || std::strcmp(argument, "-h") == 0)
        std::puts("The solver vorda over the processes of an MPI job, on one computer or many.\n"
                  "Usage: mpirun -n PROCESSES vorda-mpi\n\n"
                  "It works in the current folder, with the files of vorda, and gives the same result.\n"
                  "The first process reads and writes them. OMP_NUM_THREADS limits the threads of each\n"
                  "process; without it those on the same cores share them. VORDA_MPI_PATIENCE is the\n"
                  "time after which a process that does not answer ends the run [s]. The exit code is\n"
                  "not 0 when the run failed.\n\n"
                  "  -h,--help    prints this text\n"
                  "  --version    prints the version");
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc == 2 && told(argv[1]))
        return 0;
    int provided = MPI_THREAD_SINGLE;
    MPI_Init_thread(&argc, &argv, MPI_THREAD_MULTIPLE, &provided);
    if (provided < MPI_THREAD_MULTIPLE) {
        std::fprintf(stderr, "vorda-mpi: this MPI library does not serve several threads at a time\n");
        MPI_Abort(MPI_COMM_WORLD, 1);
    }
    // Not destroyed: other threads may use it to the end of the process.
    run_solver(*new MpiCrew);
}
