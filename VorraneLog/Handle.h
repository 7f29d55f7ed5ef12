#ifndef VORRANELOG_HANDLE_H
#define VORRANELOG_HANDLE_H

#include "foundation/Platform.h"

#include <memory>

namespace VorraneLog {

struct HandleCloser {
    using pointer = HANDLE;

    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

// Owner of a handle of the system; null if there is none.
using Handle = std::unique_ptr<HANDLE, HandleCloser>;

// The owner of what CreateFileW answers, which has a failure value of its own.
inline Handle ownFile(HANDLE file) noexcept {
    return Handle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

} // namespace VorraneLog

#endif
