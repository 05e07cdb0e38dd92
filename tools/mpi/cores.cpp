#include "cores.hpp"

#include "transfer.hpp"

#include <algorithm>
#include <sched.h>

int all_of(int value, MPI_Op operation, MPI_Comm comm) {
    int result = 0;
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Iallreduce(&value, &result, 1, MPI_INT, operation, comm, &request);
    wait_for(request);
    return result;
}

int threads_of_process(MPI_Comm computer) {
    cpu_set_t own, all;
    CPU_ZERO(&own);
    if (sched_getaffinity(0, sizeof own, &own) != 0)
        CPU_SET(0, &own);
    MPI_Allreduce(&own, &all, sizeof own, MPI_BYTE, MPI_BOR, computer);
    const int wanted = all_of(CPU_COUNT(&own), MPI_SUM, computer);
    return std::max(1, CPU_COUNT(&own) * CPU_COUNT(&all) / wanted);
}
