// The Rankine store of a computer, which all processes on it see.
#pragma once

#include "rankine/rankin.hpp"
#include "state/state.hpp"

#include <mpi.h>

class SharedStore {
  public:
    // `node`: the processes of one computer.
    explicit SharedStore(MPI_Comm node);
    bool shared() const { return size_ > 1; }
    // Makes the store of zeros, and its arrays in run.store. Failed: the memory is refused; the message is
    // out.
    [[nodiscard]] Status allocate(RunState &run);
    RowShare rows() const { return {rank_, size_}; }
    // All processes have filled their rows when this returns.
    void wait_for_all();
    void free();

  private:
    MPI_Comm node_;
    int rank_ = 0, size_ = 1;
    MPI_Win window_ = MPI_WIN_NULL;
};
