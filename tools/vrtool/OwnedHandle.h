#ifndef TOOLS_VRTOOL_OWNEDHANDLE_H
#define TOOLS_VRTOOL_OWNEDHANDLE_H

// Owner of a handle of the platform's; for sources only, as the platform's declarations are.

#include "tools/vrtool/Platform.h"

#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};

using OwnedHandle = std::unique_ptr<void, HandleCloser>;

#endif
