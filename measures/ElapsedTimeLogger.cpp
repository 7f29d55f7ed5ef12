#include "vrUtils/Performance.h"

#include "foundation/Log.h"
#include "foundation/Platform.h"

namespace vrUtils::Performance {

namespace {

constexpr std::int64_t millisecondsPerSecond = 1000;

// The platform promises both since its version of 2001; there is nothing to test.
std::int64_t ticksPerSecond() noexcept {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

std::int64_t ticksNow() noexcept {
    LARGE_INTEGER ticks{};
    QueryPerformanceCounter(&ticks);
    return ticks.QuadPart;
}

} // namespace

// Threads that come here first at the same time all store the same number.
std::atomic<std::int64_t> ElapsedTimeLogger::m_ticksPerSecond{0};

ElapsedTimeLogger::ElapsedTimeLogger(std::wstring const& module) : m_module(module) {
    if (m_ticksPerSecond == 0)
        m_ticksPerSecond = ticksPerSecond();
    // Last, so that the rest is not measured.
    m_start = ticksNow();
}

ElapsedTimeLogger::ElapsedTimeLogger(ElapsedTimeLogger const&) = default;

ElapsedTimeLogger& ElapsedTimeLogger::operator=(ElapsedTimeLogger const&) = default;

ElapsedTimeLogger::~ElapsedTimeLogger() {
    auto const now = ticksNow();
    auto const ticksPerMillisecond = m_ticksPerSecond / millisecondsPerSecond;
    auto const milliseconds = (now - m_start) / ticksPerMillisecond;
    try {
        logComposed(
            LogLevel::trace, m_module,
            L"Elapsed time : " + std::to_wstring(static_cast<std::uint32_t>(milliseconds)));
    } catch (...) {
        // No memory for the line.
    }
}

} // namespace vrUtils::Performance
