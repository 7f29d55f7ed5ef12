#ifndef TESTS_SUPPORT_LIMITEDLIFE_H
#define TESTS_SUPPORT_LIMITEDLIFE_H

#include "foundation/Platform.h"

#include <cstdint>
#include <cstdlib>

namespace test {

// The exit code of a child that has lived too long.
inline constexpr std::uint32_t outlived = 98;

// Ends this process after 30 seconds, or what the environment says, whatever it does by then: the
// child of a test that was killed must not live on.
inline void limitLife() {
    HANDLE const thread = CreateThread(
        nullptr, 0,
        [](void*) -> DWORD {
            char const* const seconds = std::getenv("VRUTILS_CHILD_SECONDS");
            Sleep(1000 * (seconds ? std::strtoul(seconds, nullptr, 10) : 30));
            TerminateProcess(GetCurrentProcess(), outlived);
            return 0;
        },
        nullptr, 0, nullptr);
    if (thread)
        CloseHandle(thread);
}

} // namespace test

#endif
