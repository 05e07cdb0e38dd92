// Which panels are seen from a place, and in which order they are painted.
#pragma once

#include <array>
#include <vector>

// A panel on the picture plane: corners in cells of the picture, x to the right and y up, not negative;
// `nearness` grows towards the eye and is linear over the picture: less the distance along parallel rays, one
// over the distance in a perspective.
struct SeenPanel {
    std::array<std::array<double, 2>, 4> at{};
    std::array<double, 4> nearness{};
};

// Numbers of the panels (from 0) of a picture of width by height cells that are not wholly hidden, those
// behind others first. Each cell is asked which panels lie over it; they are ordered so that all cells agree.
// Panels that hide each other in a circle (they intersect) come in the order of their middles. 20 000 panels
// take about 0.2 s.
std::vector<int> painting_order(const std::vector<SeenPanel> &panels, int width, int height);
