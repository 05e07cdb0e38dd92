// Sides of panels that meet: which panels share them, and which end where nothing else begins.
#pragma once

#include "mesh/body_mesh.hpp"

// Panels by the points that they share: for each vertex of each panel the number of its point, from 0.
struct MergedVertices {
    std::vector<std::array<int, 4>> of_panel;
    std::vector<BodyPoint> points;
};
// Vertices nearer to each other than `tolerance` are one. Method: a spatial hash.
MergedVertices merge_vertices(const std::vector<BodyPanel> &panels, double tolerance);
// For each point the number of the first one that it is merged with, itself when there is none.
std::vector<int> merge_points(const std::vector<BodyPoint> &points, double tolerance);

// A side of panel `panel` (from 0) from point a to point b.
struct PanelSide {
    int a, b, panel;
};

// The sides by how often they occur in both senses.
struct MeshEdges {
    std::vector<std::array<PanelSide, 2>> shared; // by two panels, in opposite sense as it should be
    std::vector<std::array<PanelSide, 2>>
        same_sense;                              // by two panels, in the same sense: one of them is turned
    std::vector<PanelSide> open;                 // of one panel only
    std::vector<std::vector<PanelSide>> crowded; // of more than two panels
};
// Of the panels for which `counts` is true.
MeshEdges edges_of(const MergedVertices &vertices, const std::vector<bool> &counts);

// The panels by connected pieces, for those that count (else -1 and 0): the number of the piece, from 0, and
// the sense, 1 as the first panel of the piece, -1 turned against it.
struct MeshPieces {
    std::vector<int> piece, sense;
    int pieces = 0;
};
MeshPieces pieces_of(const MeshEdges &edges, const std::vector<bool> &counts);
