// The velocity along the hull as the gradient of the potentials over neighbouring panels.
//
// Sources that are constant over a panel give the velocity there with an error of the order of the panel; the
// potentials are better by an order, and so is their gradient: a quadratic surface in the tangent plane
// through the panel's own value, by least squares over the panels that share a vertex with it. At the free
// surface the rows of panels beside a vertical wall have mirror images above it, by d phi/dz = nu phi. Panels
// with too few neighbours, at edges, have no such gradient.
#pragma once

#include "post/images.hpp"
#include "post/vector3.hpp"

class SurfaceGradient {
  public:
    SurfaceGradient(const P2fFile &p2f, const PanelKinds &kinds);

    // Whether panel J has one, on all its images alike.
    bool has(int J) const { return stencil_[static_cast<std::size_t>(J) - 1].along[0].size() > 0; }

    const std::vector<Image> &images() const { return images_; }

    // Of the potential phi (NEQN,images) of a wave number nu, along the surface at the centroid of image g of
    // panel J (counted from 1 as in images_of); global axes.
    Complex3 along(int J, int g, View<const c64, 2> phi, double nu) const;

  private:
    struct Neighbour {
        int panel;
        std::size_t image; // in images_of
        double height;     // of the mirrored centroid above z = 0; 0 for the panel itself
    };
    // The weight of each neighbour's difference from the panel, along the two axes of the panel.
    struct Stencil {
        std::vector<Neighbour> of;
        std::array<std::vector<double>, 2> along;
    };
    void fit(int J, Stencil &stencil) const;
    std::size_t image_of(double sx, double sy) const;
    Vector3 centroid(const Neighbour &n) const;

    const P2fFile &p_;
    std::vector<Image> images_;
    std::vector<Stencil> stencil_;
};
