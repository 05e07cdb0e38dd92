#include "assembly/thread_state.hpp"

#include "state/messages.hpp"

#include <algorithm>

namespace {

bool allocate_second_order(const RunState &run, SecondOrder &second) {
    const int n = run.mesh.NEQN, panels = run.surface.NFSP;
    const int columns = run.sym.NSYMD, headings = run.periods.NBETAM, classes = run.sym.NSYMR;
    bool made = second.PHID2.alloc(n, headings, classes) && second.SRCD2.alloc(n, headings, classes) &&
                second.VELD2.alloc(n, 3, headings, classes);
    for (Array<c32, 2> *set : {&second.W2R0, &second.W2R1, &second.W2R2, &second.W2R3})
        made = made && set->alloc(n, columns);
    for (Array<c32, 3> *set : {&second.W2D0, &second.W2D0B, &second.W2D1, &second.W2D2, &second.W2D3})
        made = made && set->alloc(n, headings, classes);
    for (Array<c32, 2> *set : {&second.FSR1, &second.FSR2, &second.FSR3})
        made = made && set->alloc(panels, columns);
    for (Array<c32, 3> *set : {&second.FSD1, &second.FSD2, &second.FSD3, &second.FSD4, &second.FSD5})
        made = made && set->alloc(panels, headings, classes);
    return made;
}

// An array of these extents that holds zeros: the one that an earlier period left, or a new one.
template <class T, int R, class... N> bool zeroed(Array<T, R> &array, N... extents) {
    if (array.empty())
        return array.alloc(extents...);
    array.fill(T(0));
    return true;
}

// The same with any values.
template <class T, int R, class... N> bool any_values(Array<T, R> &array, N... extents) {
    return !array.empty() || array.alloc(extents...);
}

} // namespace

bool allocate_velocities(const RunState &run, ThreadState &thread, bool flows) {
    const int n = run.mesh.NEQN, columns = run.sym.NSYMD;
    const bool second = run.opt.IWADD == 1;
    bool made = true;
    if (run.opt.IRAD >= 0 || second)
        made = zeroed(thread.SRCR, n, second ? std::max(columns, 3) : columns) &&
               zeroed(thread.VELR, n, 3, flows ? std::max(columns, 3) : columns);
    return made && (run.opt.IDIFF < 0 || zeroed(thread.VELD, n, 3, run.periods.NBETAM, run.sym.NSYMR));
}

Status allocate_solution(const RunState &run, ThreadState &thread) {
    const int n = run.mesh.NEQN;
    const int headings = run.periods.NBETAM;
    const int classes = run.sym.NSYMR;
    bool made = thread.PHIR.alloc(n, run.sym.NSYMD) && thread.PHID.alloc(n, headings, classes);
    if (run.opt.IDIFF >= 0)
        made = made && thread.SRCD.alloc(n, headings, classes) && thread.PHI0.alloc(n, headings, classes);
    if (!made)
        return MSGOUT(" RAM too small for number of panels ");
    if (run.opt.IWADD == 1 && !allocate_second_order(run, thread.second))
        return MSGOUT(" RAM too small ");
    if (!run.memory.INCORE && !thread.AMAT.alloc(run.opt.NCORE, run.opt.NCORE))
        return MSGOUT(" RAM too small.  Reduce MAXSCR ");
    return Status::ok;
}

Status ALLOCATE_WA(const RunState &run, ThreadState &thread, bool flows) {
    const int n = run.mesh.NEQN;
    if (run.opt.ISOR == 1 && !allocate_velocities(run, thread, flows))
        return MSGOUT(" RAM too small.or try to set ISOR=0 ");
    if (!run.memory.INCORE)
        return Status::ok;
    // The assembly writes every element of these.
    const int classes = run.sym.NSYMR;
    bool made = any_values(thread.ACORE, n, n, classes);
    if (run.opt.ISOR == 1)
        made = made && any_values(thread.ECORE, n, n, classes) && any_values(thread.VCORE, n, n, 3 * classes);
    return made ? Status::ok : MSGOUT(" RAM too small ");
}
