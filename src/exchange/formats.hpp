// Files of other programs: what every format shares.
#pragma once

#include <string>
#include <string_view>

// The message of a format whose library was not there when the program was built, e.g.
// "NetCDF files need the library libnetcdf-dev: install it and build again".
std::string message_of_missing(std::string_view format, std::string_view package);
