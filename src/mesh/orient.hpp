// Which way panels face: neighbours alike, and all of them out of the body.
#pragma once

#include "mesh/merge.hpp"

struct OrientCounts {
    int parts = 0;          // connected pieces
    int turned = 0;         // panels turned against the others of their piece
    int parts_turned = 0;   // pieces that faced the wrong way as a whole, or of which one part did
    int inner = 0;          // pieces inside another one: they bound a hollow
    bool one_sided = false; // a surface with one side only: it cannot be oriented
};
// Gives all panels the order of vertices that is anti-clockwise seen from the water: along shared sides
// within a piece, then by piece, by the number of surfaces between it and the outside (odd: inside). Free of
// images: give the whole body. What is open at the top is closed by z = 0, as the rays run downwards. Panels
// that share a side with more than one other are not linked there.
OrientCounts orient(MergedVertices &mesh);

// Panels, from 0, at sides that more than two panels share.
std::vector<int> crowded_panels(const MergedVertices &mesh);
