#ifndef TESTS_STORAGE_SMALLTHREAD_H
#define TESTS_STORAGE_SMALLTHREAD_H

#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"

#include <gtest/gtest.h>

#include <functional>

namespace test {

// Runs the work on a thread with a stack of a megabyte, as host programs may have them, and waits
// for its end. The work must not throw.
inline void onSmallThread(std::function<void()> work) {
    auto const run = [](void* parameter) -> DWORD {
        (*static_cast<std::function<void()>*>(parameter))();
        return 0;
    };
    OwnedHandle const thread(
        CreateThread(nullptr, 1024 * 1024, run, &work, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    ASSERT_TRUE(thread);
    WaitForSingleObject(thread.get(), INFINITE);
}

} // namespace test

#endif
