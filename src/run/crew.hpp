// The processes that work on a run together. This one is the crew of one process, in which most calls have
// nothing to do; a program for several overrides them.
#pragma once

#include "rankine/rankin.hpp"
#include "run/period_book.hpp"
#include "state/state.hpp"

class Crew {
  public:
    virtual ~Crew() = default;
    // This process reads and checks the input, reports, and writes the result; the others only work.
    virtual bool leads() const { return true; }
    virtual int processes() const { return 1; }

    // After the input stage: all processes get the state of the leading one.
    virtual void share_input(RunState & /*run*/) {}
    // The steady flows, which the leading process has solved for.
    virtual void share_flows(SteadyFlow & /*flow*/) {}

    // Before the memory plan: AVAILM of the computer of this process.
    virtual void measure_memory(Memory & /*memory*/) {}
    // After it: INCORE for all, NTMAX the part of this process.
    virtual void divide_memory(Memory & /*memory*/) {}
    // The Rankine store in memory, zeroed, once a computer. Failed: the message is out.
    [[nodiscard]] virtual Status allocate_rankine(RunState &run);
    // The rows of it that this process fills.
    virtual RowShare rankine_rows() const { return {}; }
    virtual void rankine_is_filled() {}

    // Before the loop of `threads` period threads: what they get their periods from, and the number of the
    // first one in the report. `book` is null but in the leading process, and outlives the loop.
    virtual PeriodExchange &open_exchange(PeriodBook *book, int /*threads*/, int & /*first_thread*/) {
        return *book;
    }
    // Returns when all processes have left the loop.
    virtual void close_exchange() {}
};
