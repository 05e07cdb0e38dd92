// A wave that passes the moving bodies, as a series of VTK files.
#pragma once

#include "exchange/export.hpp"

// What every VTK file tells of where it came from and of its phases.
std::vector<std::pair<std::string, std::string>> vtu_texts(const DataSet &data);

// NAME.pvd of the request's NAME.vtu, and the folder NAME_phases: 24 phases of the hull in its place with the
// pressure of the wave, and of the wave on a level grid around the bodies. False, with the reason in `error`:
// no such period or heading, no motions, as form_field; then neither is there.
[[nodiscard]] bool write_animation(const DataSet &data, ExportRequest &request, std::string &error);
