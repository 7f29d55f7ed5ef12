#include "tests/support/AllocationCounter.h"

namespace test {

AllocationCounter::AllocationCounter(HMODULE module)
    : m_allocate(
          "malloc", [this](std::size_t size) { return allocate(size); }, module),
      m_release(
          "free", [this](void* block) { release(block); }, module) {}

void AllocationCounter::reset() noexcept {
    m_allocations = 0;
    m_bytes = 0;
    m_releases = 0;
    m_failing = 0;
}

void* AllocationCounter::allocate(std::size_t size) {
    m_bytes += size;
    return ++m_allocations == m_failing ? nullptr : m_allocate.original()(size);
}

void AllocationCounter::release(void* block) {
    if (block)
        ++m_releases;
    m_release.original()(block);
}

} // namespace test
