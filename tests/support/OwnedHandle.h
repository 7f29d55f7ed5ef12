#ifndef TESTS_SUPPORT_OWNEDHANDLE_H
#define TESTS_SUPPORT_OWNEDHANDLE_H

#include "foundation/Platform.h"

#include <memory>
#include <string>
#include <system_error>

namespace test {

struct HandleCloser {
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};

// Owner of a handle of the tests' own; the code under test has owners of its own.
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

// The end of a test whose own preparation fails: the platform's error, and what it failed for.
inline std::system_error platformFailure(DWORD error, std::string const& what) {
    return {static_cast<int>(error), std::system_category(), what};
}

} // namespace test

#endif
