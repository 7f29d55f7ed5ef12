#ifndef FOUNDATION_DEBUGGER_H
#define FOUNDATION_DEBUGGER_H

#include "foundation/Platform.h"

namespace vrUtils {

// Stops a developer at the place of a fault; nothing where no debugger is attached.
inline void breakIntoDebugger() {
    if (IsDebuggerPresent())
        DebugBreak();
}

} // namespace vrUtils

#endif
