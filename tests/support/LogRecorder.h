#ifndef TESTS_SUPPORT_LOGRECORDER_H
#define TESTS_SUPPORT_LOGRECORDER_H

// Records what a module logs, instead of the log:
//
//     test::LogRecorder recorder;
//     ...
//     EXPECT_THAT(recorder.lines(), ElementsAre(test::Logged(7, L"Locking file [C:\\a.txt]")));
//
// A composed text is a format without values. Where it holds a percent sign, its `text` would fill
// in values that nobody passed; such a line is told by its format:
//
//     EXPECT_THAT(recorder.lines(), ElementsAre(test::LoggedFormat(4, L"No such key 100%s")));

#include "tests/support/ImportHook.h"

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdint>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace test {

// One value of a log line.
struct LogValue {
    // The argument as it came: the lower bits are the number, or all of them the address of a text.
    std::uint64_t word = 0;
    // For `%s`: what stood at the address when the line was logged, as far as that could be read.
    std::wstring text;
};

// One call of the log.
struct LogLine {
    int level = 0;
    std::wstring module;
    // As it was passed, directives and all.
    std::wstring format;
    // One for each directive that takes a value, eight at the most.
    std::vector<LogValue> values;
    // Source name and source line, if the call tells them.
    std::optional<std::wstring> file;
    std::optional<int> line;

    // The format with its values filled in. What is no directive of d, i, u, x, X, c or s stays as
    // it is, and so does every directive behind the eighth.
    std::wstring text() const;
};

// What a failed test shows of a line.
void PrintTo(LogLine const& line, std::ostream* stream);

// Takes the place of both log calls of a module for its life. Any number of threads may log; the
// last error stays what it was. Of two recorders the younger one records.
class LogRecorder {
  public:
    // Throws std::runtime_error if the module imports neither of the two calls.
    explicit LogRecorder(HMODULE module = moduleUnderTest());
    LogRecorder(LogRecorder const&) = delete;
    LogRecorder& operator=(LogRecorder const&) = delete;
    ~LogRecorder();

    // The lines so far, in order.
    std::vector<LogLine> lines() const;

    // The filled-in texts of the lines so far, in order.
    std::vector<std::wstring> texts() const;

    // Forgets the lines so far.
    void clear();

    // Waits until other threads have brought the number of lines to the count.
    // @return whether they did so within the time
    bool waitForLines(std::size_t count, std::chrono::milliseconds time) const;

  private:
    static void record(LogLine line, va_list values);
    static void recordLine(char level, wchar_t const* module, wchar_t const* format, ...) noexcept;
    static void recordDebugLine(
        char level, wchar_t const* module, wchar_t const* file, int line, wchar_t const* format,
        ...) noexcept;

    LogRecorder* m_previous;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_added;
    std::vector<LogLine> m_lines;
    // Of the two calls a module may import only one.
    std::optional<ImportPatch> m_lineCall;
    std::optional<ImportPatch> m_debugLineCall;
};

// Matches a line of this level under this module whose filled-in text is what is given, or matches
// it.
template <typename Text>
testing::Matcher<LogLine const&>
Logged(int level, Text const& text, std::wstring const& module = L"vrUtils") {
    return testing::AllOf(
        testing::Field("level", &LogLine::level, level),
        testing::Field("module", &LogLine::module, module),
        testing::Property("text", &LogLine::text, text));
}

// The same for the format as it was passed.
template <typename Text>
testing::Matcher<LogLine const&>
LoggedFormat(int level, Text const& format, std::wstring const& module = L"vrUtils") {
    return testing::AllOf(
        testing::Field("level", &LogLine::level, level),
        testing::Field("module", &LogLine::module, module),
        testing::Field("format", &LogLine::format, format));
}

} // namespace test

#endif
