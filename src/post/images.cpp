#include "post/images.hpp"

#include "post/names.hpp"

#include <cmath>

std::vector<Image> images_of(const P2fFile &p2f) {
    std::vector<Image> images = {{1, 1, true}};
    if (p2f.ISX != 0)
        images.push_back({-1, 1, p2f.ISX == 1});
    const std::size_t n = images.size();
    for (std::size_t i = 0; p2f.ISY != 0 && i < n; ++i)
        images.push_back({images[i].sx, -1, images[i].body && p2f.ISY == 1});
    return images;
}

double parity(int type, const Image &image) {
    const bool odd_x = type == 2 || type == 3, odd_y = type == 3 || type == 4;
    return (odd_x ? image.sx : 1) * (odd_y ? image.sy : 1);
}

int class_of(const P2fFile &p2f, int mode) {
    for (int s = 1; s <= p2f.NSYMR; ++s)
        for (int k = 1; k <= p2f.NMCLS[s]; ++k)
            if (p2f.MODCLS(k, s) == mode)
                return s;
    return 0;
}

double mode_parity(const P2fFile &p2f, int mode, const Image &image) {
    const int s = class_of(p2f, mode);
    return s == 0 ? 0 : parity(p2f.ICLS[s], image);
}

int body_of_panel(const P2fFile &p2f, int panel) {
    int b = 1;
    for (int last = p2f.NEQNB(1); b < p2f.NBODY && panel > last; last += p2f.NEQNB(b))
        ++b;
    return b;
}

int modes_before(const P2fFile &p2f, int body) {
    int modes = 0;
    for (int b = 1; b < body; ++b)
        modes += 6 + p2f.NEWMDS(b);
    return modes;
}

int body_of_mode(const P2fFile &p2f, int mode) {
    int b = 1;
    while (b < p2f.NBODY && mode > modes_before(p2f, b + 1))
        ++b;
    return b;
}

PanelKinds::PanelKinds(const P2fFile &p2f) {
    int panel = 0;
    for (int b = 1; b <= p2f.NBODY; ++b) {
        const int heave = modes_before(p2f, b) + 3;
        bool in_surface = true, stands_for_it = false;
        for (int k = 1; k <= p2f.NEQNB(b); ++k) {
            ++panel;
            const int mark = p2f.IFSP.empty() ? 0 : p2f.IFSP(panel);
            // A hull of no draught has a velocity, a panel that stands for free surface has none in any mode.
            const bool hull = mark == 0 || (mark == -1 && p2f.VEL(heave, panel) != 0);
            hull_.push_back(hull ? 1 : 0);
            plate_.push_back(!p2f.IDIP.empty() && p2f.IDIP(panel) != 0 ? 1 : 0);
            in_surface = in_surface && mark != 0;
            stands_for_it = stands_for_it || !hull;
        }
        lid_body = lid_body || in_surface || (stands_for_it && p2f.IRR == 0);
    }
}

bool has_waves(const P2fFile &p2f, int t) {
    return p2f.PER(t) > 0 && p2f.WVNH(t) > 0;
}

double deep_wave_number(const P2fFile &p2f, int t) {
    const double K = static_cast<double>(p2f.WVNH(t)), H = static_cast<double>(p2f.HBOT);
    return H > 0 ? K * std::tanh(K * H) : K;
}

double unit_motion(const P2fFile &p2f, int mode) {
    return is_rotation(p2f, mode) ? static_cast<double>(p2f.ULEN(1)) : 1;
}
