#include "pulse.hpp"

#include "base/platform.hpp"
#include "transfer.hpp"

#include <cstdio>

namespace {

enum Tag { SIGN = 1, FAULT, END, FAREWELL };
constexpr std::chrono::milliseconds PAUSE(5), BETWEEN_SIGNS(500);

void send_empty(int to, int tag, MPI_Comm comm) {
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Isend(nullptr, 0, MPI_BYTE, to, tag, comm, &request);
    MPI_Request_free(&request);
}

} // namespace

Pulse::Pulse(MPI_Comm comm, double patience) : comm_(comm), patience_(patience) {
    MPI_Comm_rank(comm_, &rank_);
    MPI_Comm_size(comm_, &size_);
}

void Pulse::start(std::vector<Place> places) {
    places_ = std::move(places);
    heard_.assign(static_cast<std::size_t>(size_), Clock::now());
    if (size_ > 1)
        thread_ = std::thread([this] { beat(); });
}

void Pulse::beat() {
    Clock::time_point sent{}, last = Clock::now();
    while (leads() ? !end_wanted_ || farewells_ < size_ - 1 : !ended_) {
        const Clock::time_point now = Clock::now();
        // A run that was halted as a whole goes on.
        if (now - last > patience_ / 2)
            heard_.assign(heard_.size(), now);
        last = now;
        if (now - sent > BETWEEN_SIGNS && !end_wanted_) {
            send_signs();
            look_for_the_dead();
            sent = now;
        }
        receive();
        look_for_the_silent(now);
        std::this_thread::sleep_for(PAUSE);
    }
}

void Pulse::send_signs() {
    for (int r = leads() ? 1 : 0; r < (leads() ? size_ : 1); ++r)
        send_empty(r, SIGN, comm_);
}

void Pulse::receive() {
    for (;;) {
        int there = 0;
        MPI_Status status;
        if (MPI_Iprobe(MPI_ANY_SOURCE, MPI_ANY_TAG, comm_, &there, &status) != MPI_SUCCESS || there == 0)
            return;
        take(status);
    }
}

void Pulse::take(const MPI_Status &status) {
    int bytes = 0;
    MPI_Get_count(&status, MPI_BYTE, &bytes);
    Image text(static_cast<std::size_t>(bytes));
    MPI_Recv(text.data(), bytes, MPI_BYTE, status.MPI_SOURCE, status.MPI_TAG, comm_, MPI_STATUS_IGNORE);
    const std::size_t source = static_cast<std::size_t>(status.MPI_SOURCE);
    heard_[source] = Clock::now();
    if (status.MPI_TAG == FAULT) {
        add_report(unpacked(std::move(text)));
        message_detail(places_[source].text);
        STOPRN(0);
    } else if (status.MPI_TAG == FAREWELL) {
        ++farewells_;
    } else if (status.MPI_TAG == END) {
        send_empty(0, FAREWELL, comm_);
        ended_ = true;
    }
}

void Pulse::look_for_the_dead() {
    if (!leads())
        return;
    for (const Place &place : places_) {
        if (place.computer != places_[0].computer || !process_has_ended(place.pid))
            continue;
        MSGOUT_with("A process of the run has died", 0, place.text);
        STOPRN(0);
    }
}

void Pulse::look_for_the_silent(Clock::time_point now) {
    for (int r = leads() ? 1 : 0; r < (leads() ? size_ : 1); ++r) {
        if (now - heard_[static_cast<std::size_t>(r)] < patience_)
            continue;
        if (leads() && !end_wanted_) {
            MSGOUT_with("A process of the run does not answer any more", 0,
                        places_[static_cast<std::size_t>(r)].text);
            STOPRN(0);
        }
        // The report is closed, or somewhere else.
        std::fprintf(stderr, "vorda-mpi: process %d hears nothing of process %d any more, it ends\n", rank_,
                     r);
        MPI_Abort(MPI_COMM_WORLD, 1);
    }
}

void Pulse::end_run() {
    end_wanted_ = true;
    for (int r = 1; r < size_; ++r)
        send_empty(r, END, comm_);
    if (thread_.joinable())
        thread_.join();
}

void Pulse::wait_for_end() {
    thread_.join();
}

void Pulse::report_fault(const ListReport &report) {
    const Image text = packed(report);
    send_bytes(text.data(), text.size(), 0, FAULT, comm_);
    std::this_thread::sleep_for(2 * patience_); // process 0 ends all
    MPI_Abort(MPI_COMM_WORLD, 1);
    std::_Exit(1);
}
