// Panels that a cut left hardly any area.
#pragma once

#include "mesh/merge.hpp"

// Merges panels that are marked and have less than 1e-3 of the mean area into their neighbours: one of their
// sides vanishes, the point at one end of it moves to the other end. Points in a plane x, y or z = 0 stay
// there, and the surface stays where it is, edges and corners of the hull included; a sliver that cannot go
// so stays. Give the panels in tidy form and call tidy after it. Returns the number of those that went.
int merge_slivers(MergedVertices &mesh, const std::vector<bool> &marked);
