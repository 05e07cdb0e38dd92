// The panels of a run in a page, in a view that can be turned.
#pragma once

#include "exchange/hull_cells.hpp"

#include <string>

// A canvas, the panels as data and the lines that draw them. Of more panels than a page should hold, images
// are left out, and then all but the first; a note tells.
std::string mesh_view(const P2fFile &p2f, double length);
