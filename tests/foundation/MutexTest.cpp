#include "foundation/Mutex.h"

#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

TEST(Mutex, IsHeldByOneThreadAtATime) {
    vrUtils::Mutex mutex;
    unsigned count = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 100; ++turn) {
                std::lock_guard const guard(mutex);
                unsigned const before = count;
                std::this_thread::yield();
                count = before + 1;
            }
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(400u, count);
}

TEST(Mutex, NeedsNoMemory) {
    vrUtils::Mutex mutex;
    test::AllocationCounter counter;
    counter.reset();

    std::lock_guard const guard(mutex);

    EXPECT_EQ(0u, counter.allocations());
}
