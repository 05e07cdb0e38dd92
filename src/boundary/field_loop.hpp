// Field points shared among the cores that are idle.
#pragma once

#include "base/lapack.hpp"
#include "state/messages.hpp"

// Calls body(i, work) for i = 1..count on the cores that the caller has, each thread with a Work of its own
// that `make` allocates (false: no memory). What a body writes belongs to its i alone. Failed: " RAM too
// small ", or a body failed.
template <class Work, class Make, class Body>
[[nodiscard]] Status for_field_points(int count, Make make, Body body) {
    bool memory = true;
    bool values = true;
#pragma omp parallel if (count > 1)
    {
        const SerialBlas serial;
        Work work;
        const bool made = make(work);
#pragma omp critical(field_point_memory)
        memory = memory && made;
#pragma omp barrier
#pragma omp for schedule(dynamic, 1) reduction(&& : values)
        for (int i = 1; i <= count; ++i)
            if (memory && values)
                values = !failed(body(i, work));
    }
    if (!memory)
        return MSGOUT(" RAM too small ");
    return values ? Status::ok : Status::failed;
}
