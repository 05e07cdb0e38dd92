// Kinds of modes: one row each, from which the reader of the modes file, the shapes and the documents come.
#pragma once

#include "modes/mode_file.hpp"
#include "modes/shape.hpp"

struct ModeType {
    const char *name;
    const char *keys;  // of [[mode]] that go with it, beside those of all types
    const char *needs; // keys that must be given, or ""
    const char *what;
    // Makes the shape. False with what is wrong in `error`, without the place.
    bool (*make)(const ModeFile &file, const ModeEntry &entry, ModeShape &shape, std::string &error);
};
const std::vector<ModeType> &mode_types();
const ModeType &mode_type(const std::string &name);
std::string mode_type_names(); // "free-free, cantilever, ..."
// The types as rows of a Markdown table.
std::string mode_type_rows();
// Keys of every type.
constexpr const char *KEYS_OF_ALL = "type, like, mass, stiffness";
bool listed(const std::string &word, const std::string &list); // in "a, b, c"
