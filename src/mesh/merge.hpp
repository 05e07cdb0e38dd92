// Panels that share points: the first thing to be made of a list of loose panels.
#pragma once

#include "mesh/edges.hpp"

struct MergeCounts {
    int points = 0;     // that were merged with another one
    int degenerate = 0; // panels left with fewer than three corners, or without area
    int doubled = 0;    // panels that lay on the points of another one, which is kept
    int folded = 0;     // panels of which two lay on the same points and none is kept: inner walls and folds
};
// Merges points that are nearer than `tolerance` to each other and leaves out what has become no panel. In
// the result a triangle has its last two corners equal, and each point belongs to a panel.
MergeCounts merge(MergedVertices &mesh, double tolerance);

// The part of it about panels on the same points. All of an even number go where that closes the surface, one
// stays where it would leave a hole.
void erase_doubled(MergedVertices &mesh, MergeCounts &counts);
// Leaves out the panels that are marked; returns their number.
int erase_panels(MergedVertices &mesh, const std::vector<bool> &out);

// Brings the panels into that form, with corner numbers that may have become equal; leaves out those of fewer
// than three corners and points without a panel. Returns the number of panels left out.
int tidy(MergedVertices &mesh);

// Largest extent of the points.
double size_of(const MergedVertices &mesh);
// A panel with its corners in space.
BodyPanel panel_of(const MergedVertices &mesh, std::size_t panel);
inline bool is_triangle(const std::array<int, 4> &corners) {
    return corners[2] == corners[3];
}
// All panels in the other order of vertices.
void reverse(std::array<int, 4> &corners);
// Adds the images of all panels in the plane x = 0 (axis 0) or y = 0 (axis 1). Points within `tolerance` of
// the plane are put on it and shared.
void add_images(MergedVertices &mesh, int axis, double tolerance);
// The connected pieces, each a mesh of its own.
std::vector<MergedVertices> divide(const MergedVertices &mesh);
