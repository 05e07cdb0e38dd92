// Waiting and large messages.
#pragma once

#include "state/messages.hpp"
#include "state/state_image.hpp"

#include <mpi.h>

// Waits for the request in short sleeps that grow to a millisecond: a core that waits is one for the threads
// that work.
void wait_for(MPI_Request &request);

// A message of any length in pieces of up to 1 GiB.
void send_bytes(const void *data, std::size_t bytes, int to, int tag, MPI_Comm comm);
void receive_bytes(void *data, std::size_t bytes, int from, int tag, MPI_Comm comm);
// What a process tells, as a message.
Image packed(const ListReport &report);
ListReport unpacked(Image text);
// The image of process 0 goes to all.
void broadcast(Image &image, MPI_Comm comm);
