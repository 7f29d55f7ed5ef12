#ifndef TESTS_VORRANELOG_LOGGINGCHILD_H
#define TESTS_VORRANELOG_LOGGINGCHILD_H

// The log of a process is set up once, so every test logs in a process of its own.

#include "tests/support/ChildAction.h"

#include <string>

namespace test {

// The name under which tests log.
inline constexpr wchar_t moduleName[] = L"vrUtils";

// A process that logs to this file, up to this level; the log's own choice where they are empty.
ChildStart loggingTo(std::wstring const& file, std::wstring const& level = L"");

// Logs its arguments at level 6, each as a format.
extern ChildAction const logFormats;

} // namespace test

#endif
