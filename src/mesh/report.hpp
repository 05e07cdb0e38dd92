// The report on a mesh: lines for people.
#pragma once

#include "mesh/checks.hpp"

// What a body measures, dimensional by the length scale ULEN; `name` of the body. Lines without an end.
std::vector<std::string> mesh_report(const std::string &name, const MeshMeasures &measures,
                                     const BodyMesh &mesh, double ULEN);
