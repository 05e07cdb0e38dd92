#include "shared_store.hpp"

#include "state/memory_plan.hpp"
#include "state/messages.hpp"
#include "transfer.hpp"

#include <cstring>

SharedStore::SharedStore(MPI_Comm node) : node_(node) {
    MPI_Comm_rank(node_, &rank_);
    MPI_Comm_size(node_, &size_);
}

Status SharedStore::allocate(RunState &run) {
    constexpr std::int64_t ALIGNMENT = 64;
    const std::int64_t bytes = lay_out_store(run.opt, run.sym, run.mesh.NEQN, nullptr, run.store);
    void *base = nullptr;
    MPI_Errhandler before = MPI_ERRHANDLER_NULL;
    MPI_Comm_get_errhandler(node_, &before);
    MPI_Comm_set_errhandler(node_, MPI_ERRORS_RETURN); // a refusal is told as any other
    const int made =
        MPI_Win_allocate_shared(rank_ == 0 ? bytes + ALIGNMENT : 0, 1, MPI_INFO_NULL, node_, &base, &window_);
    MPI_Comm_set_errhandler(node_, before);
    MPI_Errhandler_free(&before);
    if (made != MPI_SUCCESS)
        return MSGOUT_with(" RAM too small ", 0,
                           "no " + std::to_string(bytes >> 20) +
                               " MB of memory that processes share (/dev/shm)");
    MPI_Aint size = 0;
    int unit = 0;
    MPI_Win_shared_query(window_, 0, &size, &unit, &base);
    MPI_Win_lock_all(MPI_MODE_NOCHECK, window_);
    std::byte *block = static_cast<std::byte *>(base);
    block += (ALIGNMENT - reinterpret_cast<std::intptr_t>(block) % ALIGNMENT) % ALIGNMENT;
    const auto part = [&](int k) { return bytes / size_ * k + bytes % size_ * k / size_; };
    std::memset(block + part(rank_), 0, static_cast<std::size_t>(part(rank_ + 1) - part(rank_)));
    wait_for_all();
    (void)lay_out_store(run.opt, run.sym, run.mesh.NEQN, block, run.store);
    list_line(
        "  Memory allocation is done for influence coeff. matrices, once for the processes of a computer");
    list_line(" ");
    return Status::ok;
}

void SharedStore::wait_for_all() {
    if (window_ == MPI_WIN_NULL)
        return;
    MPI_Win_sync(window_);
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Ibarrier(node_, &request);
    wait_for(request);
    MPI_Win_sync(window_);
}

void SharedStore::free() {
    if (window_ == MPI_WIN_NULL)
        return;
    MPI_Win_unlock_all(window_);
    MPI_Win_free(&window_);
}
