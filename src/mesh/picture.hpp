// A picture of panels as SVG: three views and a perspective, without what is hidden.
#pragma once

#include "mesh/body_mesh.hpp"

#include <string>
#include <vector>

struct DrawnPanel {
    BodyPanel panel; // axes of the run [length]
    bool image = false;
    bool fault = false; // a finding that makes numbers wrong names it
};
// The panel mirrored in x = 0 (axis 0) or y = 0 (axis 1), seen from the water anti-clockwise again; an image.
DrawnPanel image_of(const DrawnPanel &drawn, std::size_t axis);

enum class PictureView { all, side, front, top, perspective };
struct Picture {
    std::string title;
    std::vector<DrawnPanel> panels;
    std::vector<std::string> faults, notes; // lines below the picture, in red and in grey
    PictureView view = PictureView::all;
    double azimuth = 40,
           elevation = 25; // of the eye of the perspective [degrees], from the x axis, above z = 0
    bool waterline = true; // z = 0 is the free surface
};

// The text of the SVG file. Panels show the side that they turn to the eye: that in the water in the colour
// of their kind, images paler, the dry inside of a hull in grey. Faulty panels are red; where they are
// hidden, their outlines are. Lines in z = 0 are the waterline. Wholly hidden panels are left out. No panels:
// an empty text.
std::string picture_svg(const Picture &picture);
