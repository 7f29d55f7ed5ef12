#ifndef TESTS_PROCESS_WATCHLINES_H
#define TESTS_PROCESS_WATCHLINES_H

// What a watchdog says: its lines in the log, and its failures.

#include "foundation/Platform.h"
#include "tests/support/LogRecorder.h"
#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <optional>
#include <string>

using LineMatcher = testing::Matcher<test::LogLine const&>;

// No process has ever had this id, and no other process of these tests watches it.
inline std::uint32_t const nobody = 0x7F000000 + GetCurrentProcessId();

// A grace period that no test is to use up, and the same in milliseconds.
inline constexpr std::uint32_t longGrace = 1000;
inline constexpr DWORD longGraceMs = 1000000;

inline std::wstring eventNameOf(std::uint32_t processId) {
    return L"terminate_" + std::to_wstring(processId);
}

// The lines of a watch, in which the id stands as a signed number.
inline LineMatcher
idLine(int level, wchar_t const* before, std::uint32_t processId, wchar_t const* after) {
    auto const id = std::to_wstring(static_cast<std::int32_t>(processId));
    return testing::AllOf(
        test::Logged(level, before + id + after),
        testing::Field("file", &test::LogLine::file, std::nullopt));
}

inline LineMatcher started(std::uint32_t id) {
    return idLine(6, L"Started process ", id, L" terminator");
}

inline LineMatcher waiting(std::uint32_t id) {
    return idLine(7, L"Waiting to terminate process ", id, L" or adandon this thread...");
}

inline LineMatcher terminating(std::uint32_t id) {
    return idLine(7, L"Terminating process ", id, L"...");
}

inline LineMatcher terminated(std::uint32_t id) {
    return idLine(5, L"Terminated process ", id, L"");
}

inline LineMatcher abandoning(std::uint32_t id) {
    return idLine(7, L"Abandoning process ", id, L" terminator");
}

inline LineMatcher ended(std::uint32_t id) {
    return idLine(7, L"End of process ", id, L" terminator");
}

// A debug line tells its place as well.
inline LineMatcher debugLine(LineMatcher const& line) {
    return testing::AllOf(
        line,
        testing::Field("file", &test::LogLine::file, testing::Optional(std::wstring(L"Process"))),
        testing::Field("line", &test::LogLine::line, testing::Optional(testing::Gt(0))));
}

inline LineMatcher failedToTerminate(std::uint32_t id, std::wstring const& error) {
    return debugLine(test::Logged(
        4, L"Failed to terminate process " + std::to_wstring(id) + L" (error 0x" + error +
               L"), abandoning terminator"));
}

// The first number that this line shows is the error.
inline LineMatcher openFailed(std::uint32_t error) {
    return debugLine(testing::AllOf(
        test::LoggedFormat(4, L"OpenProcess with id %d failed (error 0x%x), abandoning terminator"),
        testing::Truly([error](test::LogLine const& line) {
            return static_cast<std::uint32_t>(line.values.at(0).word) == error;
        })));
}

inline LineMatcher unexpectedReturn(std::wstring const& result) {
    return debugLine(
        test::Logged(4, L"Unexpected return from WaitForMultipleObjects (0x" + result + L")"));
}

inline std::wstring messageOf(vrException const& failure) {
    EXPECT_EQ(0x80004005u, failure.code());
    EXPECT_EQ(L"Process", failure.file());
    EXPECT_GT(failure.line(), 0u);
    return failure.message();
}

template <typename Action>
inline std::wstring failureOf(Action action) {
    try {
        action();
    } catch (vrException const& failure) {
        return messageOf(failure);
    }
    return L"(no failure)";
}

#endif
