#include "transfer.hpp"

#include <algorithm>
#include <chrono>
#include <sched.h>
#include <thread>

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 30; // [bytes], as counts are of type int

// Calls piece(offset, length) for each piece of a message.
template <class Piece> void in_pieces(std::size_t bytes, Piece piece) {
    for (std::size_t at = 0; at < bytes; at += PIECE)
        piece(at, static_cast<int>(std::min(PIECE, bytes - at)));
}

} // namespace

void wait_for(MPI_Request &request) {
    constexpr int QUICK = 20;              // looks before the first sleep
    constexpr int SHORT = 20, LONG = 1000; // [us]
    int done = 0, pause = SHORT;
    for (int look = 0; MPI_Test(&request, &done, MPI_STATUS_IGNORE) == MPI_SUCCESS && done == 0; ++look) {
        if (look < QUICK) {
            sched_yield();
            continue;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pause));
        pause = std::min(2 * pause, LONG);
    }
}

void send_bytes(const void *data, std::size_t bytes, int to, int tag, MPI_Comm comm) {
    in_pieces(bytes, [&](std::size_t at, int length) {
        MPI_Request request = MPI_REQUEST_NULL;
        MPI_Isend(static_cast<const char *>(data) + at, length, MPI_BYTE, to, tag, comm, &request);
        wait_for(request);
    });
}

void receive_bytes(void *data, std::size_t bytes, int from, int tag, MPI_Comm comm) {
    in_pieces(bytes, [&](std::size_t at, int length) {
        MPI_Request request = MPI_REQUEST_NULL;
        MPI_Irecv(static_cast<char *>(data) + at, length, MPI_BYTE, from, tag, comm, &request);
        wait_for(request);
    });
}

// Texts, each behind its kind and ended by a zero.
Image packed(const ListReport &report) {
    Image text;
    const auto add = [&](char kind, const std::string &line) {
        text.push_back(kind);
        text.insert(text.end(), line.c_str(), line.c_str() + line.size() + 1);
    };
    for (const std::string &line : report.lines)
        add('l', line);
    for (const std::string &warning : report.end_warnings)
        add('w', warning);
    add('f', report.first_fault);
    add('d', report.first_detail);
    return text;
}

ListReport unpacked(Image text) {
    text.push_back('\0');
    ListReport report;
    for (const char *at = text.data(), *end = at + text.size() - 1; at < end;) {
        const char kind = *at;
        const std::string line(at + 1);
        at += line.size() + 2;
        if (kind == 'l' || kind == 'w')
            (kind == 'l' ? report.lines : report.end_warnings).push_back(line);
        else
            (kind == 'f' ? report.first_fault : report.first_detail) = line;
    }
    return report;
}

void broadcast(Image &image, MPI_Comm comm) {
    std::uint64_t size = image.size();
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Ibcast(&size, sizeof size, MPI_BYTE, 0, comm, &request);
    wait_for(request);
    image.resize(size);
    in_pieces(size, [&](std::size_t at, int length) {
        MPI_Ibcast(image.data() + at, length, MPI_BYTE, 0, comm, &request);
        wait_for(request);
    });
}
