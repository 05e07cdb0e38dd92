#include "assembly/thread_state.hpp"

#include "run/messages.hpp"

Status allocate_solution(const RunState &run, ThreadState &thread) {
    const int n = run.mesh.NEQN;
    const int headings = run.periods.NBETAM;
    const int classes = run.sym.NSYMR;
    bool made = thread.PHIR.alloc(n, run.sym.NSYMD) && thread.PHID.alloc(n, headings, classes);
    if (run.opt.IDIFF >= 0)
        made = made && thread.SRCD.alloc(n, headings, classes) && thread.PHI0.alloc(n, headings, classes);
    if (!made)
        return MSGOUT(" RAM too small for number of panels ");
    if (!run.memory.INCORE && !thread.AMAT.alloc(run.opt.NCORE, run.opt.NCORE))
        return MSGOUT(" RAM too small.  Reduce MAXSCR ");
    return Status::ok;
}

Status ALLOCATE_WA(const RunState &run, ThreadState &thread) {
    const int n = run.mesh.NEQN;
    if (run.opt.ISOR == 1) {
        bool velocities = run.opt.IRAD < 0 || (thread.SRCR.alloc(n, run.sym.NSYMD) && thread.VELR.alloc(n, 3, run.sym.NSYMD));
        velocities =
            velocities && (run.opt.IDIFF < 0 || thread.VELD.alloc(n, 3, run.periods.NBETAM, run.sym.NSYMR));
        if (!velocities)
            return MSGOUT(" RAM too small.or try to set ISOR=0 ");
    }
    if (!run.memory.INCORE)
        return Status::ok;
    bool made = thread.ACORE.alloc(n, n, run.sym.NSYMR);
    if (run.opt.ISOR == 1)
        made = made && thread.ECORE.alloc(n, n, run.sym.NSYMR) && thread.VCORE.alloc(n, n, 3 * run.sym.NSYMR);
    return made ? Status::ok : MSGOUT(" RAM too small ");
}

void DEALLOCATE_WA(ThreadState &thread) {
    thread.ACORE.release();
    thread.ECORE.release();
    thread.VCORE.release();
    thread.SRCR.release();
    thread.VELR.release();
    thread.VELD.release();
}
