// A first case file for a hull.
#pragma once

#include <string>

// The text of a commented case whose periods, headings and panels suit the hull of `mesh`, a file that
// vorda-run takes. False with the reason in `error`: it cannot be read or imported.
[[nodiscard]] bool new_case(const std::string &mesh, std::string &text, std::string &error);
