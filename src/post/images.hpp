// Mirror images, symmetry classes and kinds of panels of a hand-over file.
#pragma once

#include "post/p2f_reader.hpp"

#include <complex>
#include <vector>

// A mirror image: x and y of the file's panels times sx, sy.
struct Image {
    double sx, sy;
    bool body; // the image is part of the body; false behind a wall
};
// The panels themselves, then their images.
std::vector<Image> images_of(const P2fFile &p2f);

// Sign with which an image enters a function of parity type 1 even-even, 2 odd-even, 3 odd-odd, 4 even-odd in
// x, y.
double parity(int type, const Image &image);

// Active class of a mode, 0 when it was not solved.
int class_of(const P2fFile &p2f, int mode);

// Sign of a mode's normal velocity and potential on an image; 0 when the mode was not solved.
double mode_parity(const P2fFile &p2f, int mode, const Image &image);

// Body of a panel or a mode, from 1, and the mode before the first of a body.
int body_of_panel(const P2fFile &p2f, int panel);
int body_of_mode(const P2fFile &p2f, int mode);
int modes_before(const P2fFile &p2f, int body);

// What the panels are.
class PanelKinds {
  public:
    explicit PanelKinds(const P2fFile &p2f);
    // Wetted hull or plate; false for panels of the free surface, inside a body or on a lid.
    bool hull(int panel) const { return hull_[static_cast<std::size_t>(panel) - 1] != 0; }
    // Without thickness, fluid on both sides: its potential is the jump across it.
    bool plate(int panel) const { return plate_[static_cast<std::size_t>(panel) - 1] != 0; }
    // Some body lies in z = 0 alone and may be a lid that takes energy. Of a run with interior panels the
    // file does not tell it from a hull of no draught; of one without them it has no marks where there is no
    // lid.
    bool lid_body = false;

  private:
    std::vector<char> hull_, plate_;
};

// The period has waves: it is no limit frequency.
bool has_waves(const P2fFile &p2f, int t);
// Deep-water wave number nu = omega^2 L / g of a period with waves.
double deep_wave_number(const P2fFile &p2f, int t);

// What turns a motion in SI units, m/m or for a rotation rad/m, into one of the lengths of the file: L for a
// rotation, else 1.
double unit_motion(const P2fFile &p2f, int mode);
