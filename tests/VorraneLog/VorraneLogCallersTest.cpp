// What the calls promise to whoever makes them: any thread, at any time, and nothing of theirs
// changed.

#include "VorraneLog/VorraneLog.h"

#include "tests/VorraneLog/LogLines.h"
#include "tests/VorraneLog/LoggingChild.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

using test::logFormats;
using test::loggingTo;
using test::moduleName;
using testing::ElementsAre;
using testing::SizeIs;
using Arguments = test::ChildAction::Arguments;

namespace {

constexpr int threadCount = 8;
constexpr int linesOfThread = 1000;

test::ChildAction const logFromThreads(L"log from threads", [](Arguments const&) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([thread] {
            for (int number = 0; number < linesOfThread; ++number)
                VL_WriteLog(6, moduleName, L"%d %d", thread, number);
        });
    for (auto& thread : threads)
        thread.join();
    return 0;
});

} // namespace

TEST(VorraneLog, LinesOfThreadsKeepApart) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logFromThreads.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    auto const texts = test::logTexts(folder.read(L"a.log"));

    ASSERT_THAT(texts, SizeIs(threadCount * linesOfThread));
    std::vector<int> next(threadCount);
    for (auto const& text : texts) {
        auto const thread = std::stoul(text);
        ASSERT_EQ(std::to_string(thread) + ' ' + std::to_string(next.at(thread)++), text);
    }
}

TEST(VorraneLog, TimesNeverGoBackInAFile) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logFromThreads.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    auto const lines = test::logLines(folder.read(L"a.log"));

    auto const earlier = [](auto const& one, auto const& other) { return one.time < other.time; };
    EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end(), earlier));
}

namespace {

test::ChildAction const keepErrors(L"keep errors", [](Arguments const&) {
    for (int call = 0; call < 3; ++call) {
        SetLastError(4711);
        errno = 42;
        VL_WriteLog(6, moduleName, L"%s", reinterpret_cast<wchar_t const*>(0x10));
        VL_WriteDebugLog(7, moduleName, L"file", 1, L"left out");
        if (GetLastError() != 4711 || errno != 42)
            return 1;
    }
    return 0;
});

} // namespace

TEST(VorraneLog, ErrorsOfTheCallerStay) {
    test::ScratchFolder const folder;

    EXPECT_EQ(0U, keepErrors.start({}, loggingTo(folder.file(L"a.log")))->exitCode());
}

TEST(VorraneLog, ErrorsOfTheCallerStayWhenALineIsDropped) {
    EXPECT_EQ(0U, keepErrors.start({}, loggingTo(L"Q:\\nowhere\\a.log"))->exitCode());
}

namespace {

HMODULE logModule() { return test::loadedModule(L"VorraneLog.dll"); }

test::ChildAction const countHandles(L"count handles", [](Arguments const&) {
    VL_WriteLog(6, moduleName, L"first");
    auto const before = test::handleCount();
    for (int number = 0; number < 1000; ++number)
        VL_WriteLog(6, moduleName, L"%d", number);
    return test::handleCount() == before ? 0 : 1;
});

// A hook of the log's own import must be reached from a function that has not called before.
int logOnce(wchar_t const* text) {
    VL_WriteLog(6, moduleName, L"%s", text);
    return 0;
}

test::ChildAction const killWriter(L"kill writer", [](Arguments const&) {
    static auto* const isInside = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    logOnce(L"before");
    test::ImportHook<int(FILE*)> hook(
        "fflush",
        [&hook](FILE* file) {
            if (hook.calls() == 1) {
                SetEvent(isInside);
                Sleep(INFINITE);
            }
            return hook.original()(file);
        },
        logModule());
    auto* const writer = CreateThread(
        nullptr, 0, [](void*) -> DWORD { return static_cast<DWORD>(logOnce(L"dying")); }, nullptr,
        0, nullptr);
    WaitForSingleObject(isInside, INFINITE);
    TerminateThread(writer, 0);
    return logOnce(L"after");
});

test::ChildAction const logWhileLogging(L"log while logging", [](Arguments const&) {
    logOnce(L"before");
    test::ImportHook<int(FILE*)> hook(
        "fflush",
        [&hook](FILE* file) {
            logOnce(L"inner");
            return hook.original()(file);
        },
        logModule());
    return logOnce(L"outer");
});

// Two threads that log first at the same time: the second one's line comes while the first one's is
// about to make the log.
test::ChildAction const logFirstTwice(L"log first twice", [](Arguments const&) {
    test::ImportHook<decltype(GetModuleHandleExW)> hook(
        "GetModuleHandleExW",
        [&hook](auto... arguments) {
            if (hook.calls() == 1)
                logOnce(L"overtaking");
            return hook.original()(arguments...);
        },
        logModule());
    return logOnce(L"overtaken");
});

test::ChildAction const logWithoutMemory(L"log without memory", [](Arguments const&) {
    test::AllocationCounter counter(logModule());
    counter.failAt(1);
    logOnce(L"lost");
    return logOnce(L"text");
});

} // namespace

TEST(VorraneLog, LinesLeaveNoHandlesOpen) {
    test::ScratchFolder const folder;

    EXPECT_EQ(0U, countHandles.start({}, loggingTo(folder.file(L"a.log")))->exitCode());
}

TEST(VorraneLog, ThreadKilledInTheLogDoesNotBlockTheOthers) {
    test::ScratchFolder const folder;
    auto const child = killWriter.start({}, loggingTo(folder.file(L"a.log")));

    ASSERT_EQ(0U, child->exitCode());

    auto const texts = test::logTexts(folder.read(L"a.log"));
    EXPECT_EQ("before", texts.front());
    EXPECT_EQ(1, std::count(texts.begin(), texts.end(), "after"));
}

TEST(VorraneLog, FirstLinesAtTheSameTimeShareOneLog) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logFirstTwice.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), ElementsAre("overtaking", "overtaken"));
    EXPECT_THAT(folder.names(), ElementsAre(L"a.log"));
}

TEST(VorraneLog, FirstLineWithoutMemoryIsDroppedAndTheNextOneIsWritten) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logWithoutMemory.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), ElementsAre("text"));
}

TEST(VorraneLog, LineLoggedWhileALineIsWrittenIsLeftOut) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logWhileLogging.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), ElementsAre("before", "outer"));
}

namespace {

// Logs in its constructor and in its destructor, in the process of the test that is about that.
struct LoggingStatic {
    LoggingStatic() { log(L"construction"); }
    LoggingStatic(LoggingStatic const&) = delete;
    LoggingStatic& operator=(LoggingStatic const&) = delete;
    ~LoggingStatic() { log(L"destruction"); }

    static void log(wchar_t const* text) {
        if (GetEnvironmentVariableW(L"VORRANELOG_TEST_STATICS", nullptr, 0) > 0)
            VL_WriteLog(6, moduleName, text);
    }
};

LoggingStatic const loggingStatic;

using WriteLog = void (*)(char, wchar_t const*, wchar_t const*, ...);

test::ChildAction const unloadLog(L"unload log", [](Arguments const& arguments) {
    auto* const library = LoadLibraryW(arguments.at(0).c_str());
    auto* const address = GetProcAddress(library, "VL_WriteLog");
    auto* const write = reinterpret_cast<WriteLog>(reinterpret_cast<void*>(address));
    write(6, moduleName, L"loaded");
    FreeLibrary(library);
    write(6, moduleName, L"let go");
    return 0;
});

} // namespace

TEST(VorraneLog, WorksDuringStaticConstructionAndDestruction) {
    test::ScratchFolder const folder;
    auto start = loggingTo(folder.file(L"a.log"));
    start.environment[L"VORRANELOG_TEST_STATICS"] = L"1";

    ASSERT_EQ(0U, logFormats.start({L"main"}, start)->exitCode());

    EXPECT_THAT(
        test::logTexts(folder.read(L"a.log")), ElementsAre("construction", "main", "destruction"));
}

TEST(VorraneLog, StaysLoadedUntilTheProcessEnds) {
    test::ScratchFolder const folder;
    auto const library = folder.file(L"OtherLog.dll");
    CopyFileW(test::besideTestProgram(L"VorraneLog.dll").c_str(), library.c_str(), FALSE);

    auto const child = unloadLog.start({library}, loggingTo(folder.file(L"a.log")));

    ASSERT_EQ(0U, child->exitCode());
    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), ElementsAre("loaded", "let go"));
}
