#include "green/gradsg.hpp"

#include "green/vgrn98.hpp"

void GRADSG(const f32 (&record)[16], int MODE, f32 c1, f32 s1, f32 c2, f32 s2, c32 (&V)[3]) {
    const auto value = [&](GreenValue j) { return c32(record[2 * j], record[2 * j + 1]); };
    const bool column = MODE == 1;
    V[0] = -(column ? c2 : c1) * value(G_R);
    V[1] = -(column ? s2 : s1) * value(G_R);
    V[2] = -value(column ? G_Z : G_ZETA);
}
