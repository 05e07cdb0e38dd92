// Libraries for files of other programs that the build has; a test that needs another one is skipped.
#pragma once

#include <gtest/gtest.h>

#ifdef VORDA_WITH_NETCDF
constexpr bool WITH_NETCDF = true;
#else
constexpr bool WITH_NETCDF = false;
#endif
#ifdef VORDA_WITH_HDF5
constexpr bool WITH_HDF5 = true;
#else
constexpr bool WITH_HDF5 = false;
#endif
#ifdef VORDA_WITH_GMSH
constexpr bool WITH_GMSH = true;
#else
constexpr bool WITH_GMSH = false;
#endif
#ifdef VORDA_WITH_ASSIMP
constexpr bool WITH_ASSIMP = true;
#else
constexpr bool WITH_ASSIMP = false;
#endif

#define VORDA_NEEDS(...)                                                                                     \
    if (!(__VA_ARGS__))                                                                                      \
    GTEST_SKIP() << "this build lacks: " #__VA_ARGS__
