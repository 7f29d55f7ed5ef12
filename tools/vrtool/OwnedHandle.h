#ifndef TOOLS_VRTOOL_OWNEDHANDLE_H
#define TOOLS_VRTOOL_OWNEDHANDLE_H

// Owners of the platform's handles; for sources only, as the platform's declarations are.

#include "tools/vrtool/Platform.h"

#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};

using OwnedHandle = std::unique_ptr<void, HandleCloser>;

struct SearchCloser {
    void operator()(HANDLE search) const noexcept {
        if (search != INVALID_HANDLE_VALUE)
            FindClose(search);
    }
};

// A search of a folder has a closing call of its own.
using OwnedSearch = std::unique_ptr<void, SearchCloser>;

#endif
