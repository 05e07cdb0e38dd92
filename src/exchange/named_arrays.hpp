// The results as named arrays over named dimensions: what NetCDF and JSON files hold.
#pragma once

#include "exchange/dataset.hpp"

#include <variant>

// The last dimension runs fastest. Numbers or words; no dimension: one value.
struct NamedArray {
    std::string name;
    std::vector<std::string> dimensions;
    std::string unit;    // "1" for a ratio; empty for words
    std::string meaning; // long name
    std::variant<std::vector<double>, std::vector<std::string>> values;
};

struct NamedArrays {
    std::vector<std::pair<std::string, std::size_t>> dimensions; // name and length
    std::vector<NamedArray> arrays;                              // coordinates first
    std::vector<std::pair<std::string, std::string>> texts;      // of the whole file
    std::size_t length(const std::string &dimension) const;
};

// Time factor of complex values: that of the hand-over file, exp(+i omega t), or the conjugates.
enum class TimeFactor { plus, minus };
// Its description with the meaning of directions, for people and for attributes.
std::string convention_text(TimeFactor factor);

// Names of the degrees of freedom: "Surge", "Mode7", with several bodies "body2__Surge".
std::string dof_name(const P2fFile &p2f, int mode);
std::string body_name(int body);

// All arrays that the data set has, of the solved modes.
NamedArrays named_arrays(const DataSet &data, TimeFactor factor);
