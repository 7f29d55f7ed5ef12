#ifndef TESTS_BOUNDARY_RAISER_H
#define TESTS_BOUNDARY_RAISER_H

#include <string>
#include <vector>

#if defined(RAISER_BUILDING)
#define RAISER_API __declspec(dllexport)
#else
#define RAISER_API __declspec(dllimport)
#endif

// The exception classes that `raise` can throw.
RAISER_API std::vector<std::string> raisedClasses();

// Throws one of them from this module.
RAISER_API void raise(std::string const& className);

#endif
