// What is checked of a hand-over file before its numbers are used as sizes and indices.
#pragma once

#include "post/p2f_reader.hpp"

#include <cstdint>

// Each returns an empty text, or which record holds a value out of its range and the value.

// Sizes, switches and class lists, when the head is read; with the sizes, what the file has to hold at least
// against its length [bytes].
std::string wrong_head(const P2fFile &p2f, std::int64_t file_length);
// Bodies and modes, when their records are read.
std::string wrong_bodies(const P2fFile &p2f);
// Waterline and class maps, when all of the head is read.
std::string wrong_lists(const P2fFile &p2f);
