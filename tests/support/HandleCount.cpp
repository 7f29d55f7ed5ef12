#include "tests/support/HandleCount.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <sstream>

namespace test {

namespace {

// Handles are multiples of this, and a new one takes the lowest number that is free.
constexpr std::uintptr_t step = 4;

// Unused numbers in a row behind which no further handle is looked for.
constexpr std::uintptr_t widestGap = 512;

// The system may take back what belonged to a thread a moment after its end; what was left open
// stays.
constexpr std::chrono::milliseconds timeToSettle{500};

bool isOpen(std::uintptr_t handle) {
    DWORD flags = 0;
    return GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE;
}

} // namespace

// Each number is asked for. The list of all handles of the system would tell in one question, but
// asking for it ends the server of this platform if another process happens to end meanwhile.
std::vector<std::uintptr_t> openHandles() {
    std::vector<std::uintptr_t> handles;
    auto const limit = [&] { return (handles.empty() ? 0 : handles.back()) + widestGap * step; };
    for (auto handle = step; handle <= limit(); handle += step)
        if (isOpen(handle))
            handles.push_back(handle);
    return handles;
}

std::size_t handleCount() { return openHandles().size(); }

HandleLeakCheck::~HandleLeakCheck() {
    auto const end = std::chrono::steady_clock::now() + timeToSettle;
    auto after = openHandles();
    while (after.size() > m_before.size() && std::chrono::steady_clock::now() < end) {
        SwitchToThread();
        after = openHandles();
    }
    if (after.size() <= m_before.size())
        return;
    std::vector<std::uintptr_t> added;
    std::set_difference(
        after.begin(), after.end(), m_before.begin(), m_before.end(), std::back_inserter(added));
    std::ostringstream list;
    for (auto const handle : added)
        list << " 0x" << std::hex << handle;
    ADD_FAILURE() << after.size() - m_before.size()
                  << " handles were left open, of these:" << list.str();
}

} // namespace test
