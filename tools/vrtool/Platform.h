#ifndef TOOLS_VRTOOL_PLATFORM_H
#define TOOLS_VRTOOL_PLATFORM_H

// The platform's own declarations, for sources only: the tool's headers stay free of them.

#ifndef UNICODE
#define UNICODE
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0601

#include <windows.h>

#endif
