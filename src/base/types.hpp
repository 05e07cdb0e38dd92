// The number types of the solution and the one failure type of all routines.
#pragma once

#include <complex>
#include <cstdint>

using f32 = float;
using c32 = std::complex<float>;
using c64 = std::complex<double>; // sums and references

// Result of a routine that can fail. `failed` has one meaning: the message is out and the run is to end.
enum class Status { ok, failed };

constexpr bool failed(Status s) {
    return s == Status::failed;
}
