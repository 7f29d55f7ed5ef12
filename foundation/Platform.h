#ifndef FOUNDATION_PLATFORM_H
#define FOUNDATION_PLATFORM_H

// The one way in for the platform's headers, so that every unit sees them under the same settings.

#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#undef WINVER
#define WINVER 0x0601
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0601

#include <windows.h>

#endif
