// The cores of the processes of a job.
#pragma once

#include <mpi.h>

// The sum, the least or the like of a number over the processes.
int all_of(int value, MPI_Op operation, MPI_Comm comm);
// Threads that suit this process when nothing else is wished: its cores; those that the processes of
// `computer` may all use are shared among them.
int threads_of_process(MPI_Comm computer);
