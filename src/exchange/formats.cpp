#include "exchange/formats.hpp"

std::string message_of_missing(std::string_view format, std::string_view package) {
    return std::string(format) + " files need the library " + std::string(package) +
           ": install it and build again";
}
