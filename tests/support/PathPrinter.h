#ifndef TESTS_SUPPORT_PATHPRINTER_H
#define TESTS_SUPPORT_PATHPRINTER_H

// What a failed test shows of a path. Without this header the test framework would print its bytes;
// wide strings it prints well by itself, with escapes for what is not ASCII.

#include "vrUtils/Path.h"

#include "tests/support/WideText.h"

#include <ostream>

namespace vr {

// The normal form, in quotes. The parse that it needs is not left behind in the path.
inline void PrintTo(Path const& path, std::ostream* stream) {
    *stream << '"' << test::utf8(Path(path).str()) << '"';
}

} // namespace vr

#endif
