// Which panels are near one: the distance test of a row of pairs.
#pragma once

#include "base/types.hpp"

#include <cstdint>
#include <vector>

// Centroids, PSIZ(2) and region2 of all panels, padded with points far away to a multiple of BATCH.
struct PairPoints {
    std::vector<f32> x, y, z, size, reach;
    int padded = 0; // length of the arrays
};

// The images of the field panel, in list order: the signs of their coordinates.
struct PairImages {
    int count = 0;
    f32 sx[4] = {}, sy[4] = {};
};

// Of PSIZ(2): largest squared sum of the heights of two panels in z = 0.
constexpr f32 SURFACE2 = 1.0e-8f;

// Bits of a mask: bit p-1 tells that the pair is near with image p, PAIR_SURFACE that both panels lie in
// z = 0.
constexpr std::uint8_t PAIR_SURFACE = 16;

// Fills mask[i] for field panel a and source panels i (from 0) of the padded list.
void near_pairs(const PairPoints &points, int a, const PairImages &images, std::uint8_t *mask);
