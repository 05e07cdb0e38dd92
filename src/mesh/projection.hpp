// From the axes of the run onto a picture plane.
#pragma once

#include "mesh/picture.hpp"

// How a view looks: unit vectors to the right, up and towards the eye; a perspective has its eye at
// `distance` from `centre`, 0: parallel rays.
struct Camera {
    BodyPoint right{}, up{}, eye{}, centre{};
    double distance = 0;
};
Camera camera_of(const Picture &picture, PictureView view);

// Right, up, and nearness as for painting_order.
struct PlanePoint {
    double x, y, nearness;
};
PlanePoint project(const Camera &camera, const BodyPoint &p);
