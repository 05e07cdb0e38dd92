// Case files as TOML, held to the tables of keys: what their readers share.
#pragma once

#include "post/case_file.hpp"

#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

// Parses the file. False, with file, line, what is wrong and the nearest key in `error`: no such file, a
// fault of TOML, an unknown key, a value that is not what its key wants.
[[nodiscard]] bool parse_case(const std::string &name, toml::table &top, std::string &error);

// The same for a file of other keys; `listed` tells of unknown ones where all keys are listed.
[[nodiscard]] bool parse_keyed(const std::string &name, const std::vector<CaseKey> &keys, const char *listed,
                               toml::table &top, std::string &error);

// "file, line n: why".
std::string at_line(const std::string &name, const toml::source_region &where, const std::string &why);

// The number of a node that holds one, else 0.
double number(const toml::node &node);
