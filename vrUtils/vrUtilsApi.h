#ifndef VRUTILS_VRUTILSAPI_H
#define VRUTILS_VRUTILSAPI_H

/// @file
/// The mark of everything that `vrUtils.dll` exports. `VRUTILS_BUILDING` is defined while the
/// library itself is compiled, and by nobody else.

// The standard library tells itself by any of its headers.
#include <cstddef>

#if !defined(_WIN64) || !defined(__MINGW32__) || !defined(__GLIBCXX__)
#error "vrUtils.dll is for 64-bit hosts that are built with mingw-w64 and GCC's C++ library"
#endif

#if defined(VRUTILS_BUILDING)
#define VRUTILS_API __declspec(dllexport)
#else
/// Stands in front of every class and function that leaves the library.
#define VRUTILS_API __declspec(dllimport)
#endif

#endif
