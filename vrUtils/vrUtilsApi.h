#ifndef VRUTILS_VRUTILSAPI_H
#define VRUTILS_VRUTILSAPI_H

/// @file
/// The mark of everything that `vrUtils.dll` exports. `VRUTILS_BUILDING` is defined while the
/// library itself is compiled, and by nobody else.

#if defined(VRUTILS_BUILDING)
#define VRUTILS_API __declspec(dllexport)
#else
/// Stands in front of every class and function that leaves the library.
#define VRUTILS_API __declspec(dllimport)
#endif

#endif
