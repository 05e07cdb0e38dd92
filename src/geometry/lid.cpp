#include "geometry/lid.hpp"

bool LIDDMP(const Bodies &bodies, int P, f32 &EPS) {
    EPS = 0;
    if (bodies.BDTYP.empty())
        return false;
    for (int b = 1; b <= bodies.NBODY; ++b) {
        if (bodies.BDTYP(b) == 3 && bodies.IPANB0(b) <= P && P <= bodies.IPANB1(b)) {
            EPS = bodies.FSDMP(b);
            return true;
        }
    }
    return false;
}
