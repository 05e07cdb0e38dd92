// What the numbers of a hand-over file are called: modes, bodies, periods and units.
#pragma once

#include "post/p2f_reader.hpp"

#include <string>
#include <vector>

// Body of a mode, from 1, and its number within the body: 1 to 6 rigid, 7 and up extra modes.
struct BodyMode {
    int body = 0, number = 0;
};
BodyMode body_mode(const P2fFile &p2f, int mode);

// "surge", "sway", "heave", "roll", "pitch", "yaw", or "mode 7" and up.
std::string mode_name(const BodyMode &mode);

// True for a rotation among the six rigid modes of a body; extra modes count as translations.
bool is_rotation(const P2fFile &p2f, int mode);

// What a period stands for.
enum class Frequency { wave, zero, infinite };
Frequency frequency_kind(const P2fFile &p2f, int period);
// Period [s] and circular frequency [rad/s], 0 and infinity at the limits; wave number at the depth of the
// run, 1/ULEN(1), likewise.
double period_of(const P2fFile &p2f, int period);
double omega_of(const P2fFile &p2f, int period);
double wave_number_of(const P2fFile &p2f, int period);

// Names of the units that go with the file's gravity: m, kg, N for 9.7 to 9.9, ft, slug, lbf for 32 to 32.4;
// else L, M, F, the user's own.
struct UnitNames {
    std::string length, mass, force;
};
UnitNames unit_names(double gravity);

// Makes values of a hand-over file dimensional; with a density of 0 they stay as they are.
struct Scales {
    double density = 0; // mass per volume
    double gravity = 1;
    double length = 1; // ULEN(1)
    UnitNames names;
    bool dimensional() const { return density > 0; }
};
// With the file's gravity and length.
Scales scales_of(const P2fFile &p2f, double density);
// The same for results that are always dimensional: a density of 0 stands for sea water, 1025 kg/m^3. False,
// with the reason in `error`, when the units of the file are the user's own, so that it must be given.
[[nodiscard]] bool dimensional_scales(const P2fFile &p2f, double density, Scales &scales, std::string &error);

// The modes that were solved, in order.
std::vector<int> solved_modes(const P2fFile &p2f);
