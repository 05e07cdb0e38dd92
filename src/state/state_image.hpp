// The read-only run state as bytes: for the other processes of a run, and as hashes by which a checkpoint
// knows its own input.
#pragma once

#include "state/state.hpp"

#include <array>
#include <cstddef>
#include <vector>

using Image = std::vector<char>;

// All that the input stage leaves, for the same program on the same kind of machine: options, names, bodies,
// panels, lists, periods, arrays of the steady flows; not the text echo, the memory plan and the Rankine
// store.
Image image_of(const RunState &run);
// Makes the state of an image. False: the image is no such thing, or memory is refused.
[[nodiscard]] bool from_image(const Image &image, RunState &run);

// The steady flows alone, when they have been solved for.
Image image_of(const SteadyFlow &flow);
[[nodiscard]] bool from_image(const Image &image, SteadyFlow &flow);

// A value that tells byte strings apart; no safeguard against intent. `seed` is the hash of what stands
// before.
std::uint64_t hash_of(const void *data, std::size_t bytes, std::uint64_t seed = 0);

// What the periods of a run are solved from, in parts that a user can tell apart.
constexpr std::array<const char *, 5> INPUT_PARTS = {"the version of the program", "the settings",
                                                     "the names or titles of the files",
                                                     "the panels or bodies", "the periods or headings"};
using InputHash = std::array<std::uint64_t, INPUT_PARTS.size()>;
// Hashes of the parts, before the periods. The number of threads and the memory of the machine do not count,
// but whether the matrices are in memory does.
InputHash input_hash(const RunState &run);
