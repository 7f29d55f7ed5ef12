#ifndef TESTS_SUPPORT_ALLOCATIONCOUNTER_H
#define TESTS_SUPPORT_ALLOCATIONCOUNTER_H

// Counts what a module allocates, by whatever thread, and lets an allocation fail:
//
//     test::AllocationCounter counter;
//     path.str();
//     EXPECT_EQ(1u, counter.allocations());
//
//     counter.failAt(1);
//     EXPECT_THROW(path.str(), std::bad_alloc);
//
// Each module has an `operator new` of its own, which takes its memory from the C runtime. It does
// so by an import of `malloc`, whose calls are counted. What the test allocates is not counted, but
// where the module is the test program itself, in tests of private helpers.

#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <new>

namespace test {

class AllocationCounter {
  public:
    explicit AllocationCounter(HMODULE module = moduleUnderTest());

    // Allocations of the module since the counter was made or reset, the failed ones included.
    unsigned allocations() const noexcept { return m_allocations; }

    // Bytes that were asked for in these allocations.
    std::size_t bytes() const noexcept { return m_bytes; }

    // Blocks that the module has released. A block that was handed out, as the characters of a
    // string that was returned, is released by whoever has it in the end.
    unsigned releases() const noexcept { return m_releases; }

    // Counts from zero again.
    void reset() noexcept;

    // The allocation of this number fails, counted from now and from 1; those behind it do not.
    void failAt(unsigned number) noexcept { m_failing = m_allocations + number; }

    // No allocation fails any more.
    void failNone() noexcept { m_failing = 0; }

  private:
    void* allocate(std::size_t size);
    void release(void* block);

    std::atomic<unsigned> m_allocations{0};
    std::atomic<std::size_t> m_bytes{0};
    std::atomic<unsigned> m_releases{0};
    std::atomic<unsigned> m_failing{0};
    ImportHook<void*(std::size_t)> m_allocate;
    ImportHook<void(void*)> m_release;
};

// Runs the call again and again, with its first, its second, its third allocation failing, until it
// gets by; each failure must come out as std::bad_alloc, or the test fails.
// @param call prepares all it needs itself
// @return how many allocations were made to fail
template <typename Call>
unsigned failEachAllocation(Call call, HMODULE module = moduleUnderTest()) {
    AllocationCounter counter(module);
    for (unsigned number = 1;; ++number) {
        counter.reset();
        counter.failAt(number);
        try {
            call();
        } catch (std::bad_alloc const&) {
            continue;
        } catch (...) {
            ADD_FAILURE() << "allocation " << number << " failed, and came out as something else";
            return number;
        }
        bool const failed = counter.allocations() >= number;
        counter.failNone();
        EXPECT_FALSE(failed) << "allocation " << number << " failed, and nobody has noticed";
        return number - 1;
    }
}

} // namespace test

#endif
