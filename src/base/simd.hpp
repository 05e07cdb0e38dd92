// What a hot loop needs to become vector code: vector versions of the elementary functions, one clone of the
// kernel per instruction set, and the fixed length of a batch.
#pragma once

// One binary holds the kernel for SSE2, AVX2 and AVX-512 and picks at load time.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(VORDA_NO_SIMD_CLONES)
#define VORDA_SIMD __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#else
#define VORDA_SIMD
#endif

// glibc shows the vector versions only under -ffast-math; redeclared, they serve without it.
extern "C" {
#pragma omp declare simd notinbranch
float expf(float) noexcept;
#pragma omp declare simd notinbranch
float logf(float) noexcept;
#pragma omp declare simd notinbranch
float sinf(float) noexcept;
#pragma omp declare simd notinbranch
float cosf(float) noexcept;
#pragma omp declare simd notinbranch
double log(double) noexcept;
#pragma omp declare simd notinbranch
double atan2(double, double) noexcept;
}

// Kernels run on full batches, the last one padded: a value then never depends on its place in the list,
// as it would if the vector body and the scalar tail rounded differently.
constexpr int BATCH = 64;
