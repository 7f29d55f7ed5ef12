#include "VorraneLog/VorraneLog.h"

#include "tests/VorraneLog/LogLines.h"
#include "tests/VorraneLog/PrivateMemory.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Campaign.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using Arguments = test::ChildAction::Arguments;

namespace {

constexpr wchar_t module[] = L"vrUtils";

// The log of a process is set up once, so every test logs in a process of its own.
test::ChildStart loggingTo(std::wstring const& file, std::wstring const& level = L"") {
    test::ChildStart start;
    start.environment = {{L"VORRANELOG_FILE", file}, {L"VORRANELOG_LEVEL", level}};
    return start;
}

HMODULE logModule() { return test::loadedModule(L"VorraneLog.dll"); }

std::string bytesOf(std::wstring const& path) {
    auto const narrow = test::utf8(path);
    std::ifstream file(narrow, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// One line at each level there is.
test::ChildAction const logAtAllLevels(L"log at all levels", [](Arguments const&) {
    for (char level = 0; level <= 7; ++level)
        VL_WriteLog(level, module, L"line");
    return 0;
});

test::ChildAction const logFormats(L"log formats", [](Arguments const& formats) {
    for (auto const& format : formats)
        VL_WriteLog(6, module, format.c_str());
    return 0;
});

test::ChildAction const logNumbered(L"log numbered", [](Arguments const& arguments) {
    for (int number = 0; number < std::stoi(arguments.at(1)); ++number)
        VL_WriteLog(6, module, L"%s %d", arguments[0].c_str(), number);
    return 0;
});

void expectNumbered(std::vector<std::string> const& texts, std::string const& name, int count) {
    ASSERT_THAT(texts, SizeIs(static_cast<std::size_t>(count)));
    for (int number = 0; number < count; ++number)
        ASSERT_EQ(name + ' ' + std::to_string(number), texts[static_cast<std::size_t>(number)]);
}

} // namespace

TEST(VorraneLog, LineHasItsColumns) {
    test::ScratchFolder const folder;
    auto const child = logFormats.start({L"text"}, loggingTo(folder.file(L"a.log")));
    ASSERT_EQ(0U, child->exitCode());

    auto const lines = test::logLines(folder.read(L"a.log"));

    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines[0].time, testing::MatchesRegex("....-..-.. ..:..:..\\...."));
    EXPECT_EQ("6", lines[0].level);
    EXPECT_EQ("vrUtils", lines[0].module);
    EXPECT_EQ(std::to_string(child->id()), lines[0].process);
    EXPECT_EQ("text", lines[0].text);
}

TEST(VorraneLog, TimeIsLocal) {
    test::ScratchFolder const folder;
    SYSTEMTIME before;
    GetLocalTime(&before);
    ASSERT_EQ(0U, logFormats.start({L"text"}, loggingTo(folder.file(L"a.log")))->exitCode());
    SYSTEMTIME after;
    GetLocalTime(&after);

    auto const lines = test::logLines(folder.read(L"a.log"));

    auto const shown = [](SYSTEMTIME const& time) {
        char text[32];
        std::snprintf(
            text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", time.wYear, time.wMonth,
            time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds);
        return std::string(text);
    };
    EXPECT_LE(shown(before), lines.at(0).time);
    EXPECT_GE(shown(after), lines.at(0).time);
}

struct LevelCase {
    wchar_t const* setting;
    std::size_t lines;
};

std::ostream& operator<<(std::ostream& stream, LevelCase const& level) {
    return stream << test::utf8(level.setting);
}

class VorraneLogLevel : public testing::TestWithParam<LevelCase> {};

TEST_P(VorraneLogLevel, LinesOfGreaterLevelsAreLeftOut) {
    test::ScratchFolder const folder;
    auto const start = loggingTo(folder.file(L"a.log"), GetParam().setting);

    ASSERT_EQ(0U, logAtAllLevels.start({}, start)->exitCode());

    auto const lines = test::logLines(folder.read(L"a.log"));
    ASSERT_THAT(lines, SizeIs(GetParam().lines));
    for (std::size_t level = 0; level < lines.size(); ++level)
        EXPECT_EQ(std::to_string(level), lines[level].level);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, VorraneLogLevel,
    testing::Values(
        LevelCase{L"0", 1}, LevelCase{L"3", 4}, LevelCase{L"6", 7}, LevelCase{L"7", 8},
        LevelCase{L"", 7}, LevelCase{L"/", 7}, LevelCase{L"8", 7}, LevelCase{L"-1", 7},
        LevelCase{L"33", 7}, LevelCase{L" 3", 7}, LevelCase{L"three", 7}, LevelCase{L"\u0663", 7}));

namespace {

test::ChildAction const logOutsideLevels(L"log outside levels", [](Arguments const&) {
    VL_WriteLog(-128, module, L"least");
    VL_WriteLog(127, module, L"greatest");
    return 0;
});

} // namespace

TEST(VorraneLog, LevelOutsideCountsAsTheNearest) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logOutsideLevels.start({}, loggingTo(folder.file(L"a.log"), L"7"))->exitCode());

    auto const lines = test::logLines(folder.read(L"a.log"));

    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ("0", lines[0].level);
    EXPECT_EQ("7", lines[1].level);
}

TEST(VorraneLog, DefaultFileBearsTheNameOfTheProgram) {
    auto const mark = L"mark " + std::to_wstring(GetCurrentProcessId());
    auto const text = test::utf8(mark);

    ASSERT_EQ(0U, logFormats.start({mark}, loggingTo(L""))->exitCode());

    auto const bytes = bytesOf(L"C:\\ProgramData\\Vorrane\\Log\\log_tests.log");
    EXPECT_THAT(bytes, HasSubstr("\t" + text + "\r\n"));
}

TEST(VorraneLog, PathOfTheFileMayBeLong) {
    test::ScratchFolder const folder;
    auto const file = std::wstring(150, L'f') + L'\\' + std::wstring(150, L'n') + L".log";

    ASSERT_EQ(0U, logFormats.start({L"text"}, loggingTo(folder.file(file)))->exitCode());

    EXPECT_THAT(test::logLines(folder.read(file)), SizeIs(1));
}

TEST(VorraneLog, FileNameMayHoldUmlautsAndPercentSigns) {
    test::ScratchFolder const folder;
    std::wstring const name = L"\u00DCbertragung \u0416 %s\\\u00C4rger \U0001F3AC.log";

    ASSERT_EQ(0U, logFormats.start({L"text"}, loggingTo(folder.file(name)))->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(name)), ElementsAre("text"));
}

namespace {

test::ChildAction const logAfterMoving(L"log after moving", [](Arguments const& arguments) {
    VL_WriteLog(6, module, L"here");
    SetCurrentDirectoryW(arguments.at(0).c_str());
    VL_WriteLog(6, module, L"still here");
    return 0;
});

} // namespace

TEST(VorraneLog, RelativeFileStaysWhereItWas) {
    test::ScratchFolder const folder;
    auto start = loggingTo(L"a.log");
    start.folder = folder.makeFolder(L"one");

    ASSERT_EQ(0U, logAfterMoving.start({folder.makeFolder(L"two")}, start)->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"one\\a.log")), ElementsAre("here", "still here"));
    EXPECT_THAT(folder.names(L"two"), IsEmpty());
}

class VorraneLogBadFile : public testing::TestWithParam<wchar_t const*> {};

TEST_P(VorraneLogBadFile, LinesAreDroppedAndTheProcessGoesOn) {
    test::ScratchFolder const folder;
    auto start = loggingTo(GetParam());
    start.folder = folder.path();

    EXPECT_EQ(0U, logNumbered.start({L"line", L"1000"}, start)->exitCode());

    EXPECT_THAT(folder.names(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Paths, VorraneLogBadFile,
    testing::Values(
        L"Q:\\nowhere\\a.log", L"C:\\", L"C:\\ProgramData\\", L"NUL", L"C:\\a|b\\c.log",
        L"C:\\*.log", L"\\\\", L"\\\\.\\pipe\\nobody", L"a:b:c:d"));

TEST(VorraneLog, NameWithDirectivesDoesNotHarm) {
    test::ScratchFolder const folder;
    std::wstring const name = L"Locking file [C:\\%n%n\\%100%%]";

    ASSERT_EQ(0U, logFormats.start({name}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(
        test::logTexts(folder.read(L"a.log")), ElementsAre("Locking file [C:\\%n%n\\%100%]"));
}

TEST(VorraneLog, TextForgesNoLine) {
    test::ScratchFolder const folder;
    std::wstring const name = L"name\r\n2024-05-01 12:34:56.789\t3\tvrUtils\t1\t1\tforged";

    ASSERT_EQ(0U, logFormats.start({name}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(
        test::logTexts(folder.read(L"a.log")),
        ElementsAre("name<U+000D><U+000A>2024-05-01 12:34:56.789<U+0009>3<U+0009>vrUtils<U+0009>1"
                    "<U+0009>1<U+0009>forged"));
}

namespace {

test::ChildAction const logBeyondAscii(L"log beyond ascii", [](Arguments const&) {
    std::wstring const text{L'\u00E4', 0xD83C, 0xDFAC, L'-', 0xD83C, L'-'};
    VL_WriteLog(6, module, text.c_str());
    VL_WriteLog(6, module, L"%s", text.c_str());
    VL_WriteLog(6, L"Modul \u00E4\t", L"module");
    return 0;
});

test::ChildAction const logFromSource(L"log from source", [](Arguments const&) {
    VL_WriteDebugLog(4, module, L"Process", 214, L"Abandoning %d %s", 42, L"now");
    VL_WriteDebugLog(4, module, nullptr, -1, L"nowhere");
    return 0;
});

test::ChildAction const logBadPointers(L"log bad pointers", [](Arguments const&) {
    test::PrivatePage const page;
    auto* const nowhere = reinterpret_cast<wchar_t const*>(page.end());
    VL_WriteLog(6, nullptr, nullptr);
    VL_WriteLog(6, nowhere, nowhere);
    VL_WriteLog(6, module, L"%s", nowhere);
    VL_WriteDebugLog(6, module, nowhere, 1, L"%s", page.lastCharacters(L"half"));
    return 0;
});

} // namespace

TEST(VorraneLog, LinesAreUtf8) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logBeyondAscii.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    auto const lines = test::logLines(folder.read(L"a.log"));

    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ("\xC3\xA4\xF0\x9F\x8E\xAC-\xEF\xBF\xBD-", lines[0].text);
    EXPECT_EQ(lines[0].text, lines[1].text);
    EXPECT_EQ("Modul \xC3\xA4<U+0009>", lines[2].module);
}

TEST(VorraneLog, DebugLineTellsItsSource) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logFromSource.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(
        test::logTexts(folder.read(L"a.log")),
        ElementsAre("[Process:214] Abandoning 42 now", "[(null):-1] nowhere"));
}

TEST(VorraneLog, BadPointersAreTold) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logBadPointers.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    auto const bytes = folder.read(L"a.log");

    EXPECT_THAT(
        test::logTexts(bytes),
        ElementsAre("(null)", "(unreadable)", "(unreadable)", "[(unreadable):1] half(unreadable)"));
    EXPECT_EQ("(null)", test::logLines(bytes)[0].module);
    EXPECT_EQ("(unreadable)", test::logLines(bytes)[1].module);
}

namespace {

test::ChildAction const logHostileNames(L"log hostile names", [](Arguments const&) {
    std::wstring const alphabet = L"%%%%sdxncSlh064*.- \\:\u00E4\n";
    test::Campaign campaign(10'000);
    while (campaign.nextRound()) {
        std::wstring name(1 + campaign.below(60), L'\0');
        for (auto& character : name)
            character = alphabet[campaign.below(alphabet.size())];
        VL_WriteLog(6, module, (L"Locking file [" + name + L"]|").c_str());
    }
    VL_WriteLog(6, module, L"Locking file [the last of them]");
    return 0;
});

// A thread's first frame, with next to nothing above it on the stack.
DWORD WINAPI logWithoutValues(void*) {
    VL_WriteLog(6, module, L"%d%d%d%d%d%d%d%d%s%s%s%s%s%s%s%s%d%d%d%d%d%d%d%d%s%s%s%s%s%s%s%s");
    return 0;
}

test::ChildAction const logFromShallowStack(L"log from shallow stack", [](Arguments const&) {
    auto* const thread = CreateThread(nullptr, 0, logWithoutValues, nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    return 0;
});

} // namespace

TEST(VorraneLog, StormOfHostileNamesIsSurvived) {
    test::ScratchFolder const folder;
    auto start = loggingTo(folder.file(L"a.log"));
    // A child is not waited for longer than this, however long the campaign is to be.
    start.environment[L"VRUTILS_TORTURE_SECONDS"] = L"10";
    ASSERT_EQ(0U, logHostileNames.start({}, start)->exitCode());

    auto const texts = test::logTexts(folder.read(L"a.log"));

    // A long campaign goes through several files, of which this is the last.
    EXPECT_THAT(texts, Each(StartsWith("Locking file [")));
    EXPECT_THAT(texts.back(), StartsWith("Locking file [the last of them]"));
}

TEST(VorraneLog, ValuesBeyondTheStackDoNotHarm) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logFromShallowStack.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), SizeIs(1));
}

namespace {

constexpr int threadCount = 8;
constexpr int linesOfThread = 1000;

test::ChildAction const logFromThreads(L"log from threads", [](Arguments const&) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([thread] {
            for (int number = 0; number < linesOfThread; ++number)
                VL_WriteLog(6, module, L"%d %d", thread, number);
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

TEST(VorraneLog, TwoProcessesHaveTheirOwnFiles) {
    test::ScratchFolder const folder;
    auto const start = loggingTo(folder.file(L"a.log"));
    auto const one = logNumbered.start({L"line", L"3000"}, start);
    auto const other = logNumbered.start({L"line", L"3000"}, start);
    ASSERT_EQ(0U, one->exitCode());
    ASSERT_EQ(0U, other->exitCode());

    ASSERT_THAT(folder.names(), Contains(L"a.log"));
    std::size_t count = 0;
    for (auto const& name : folder.names()) {
        auto const texts = test::logTexts(folder.read(name));
        count += texts.size();
        ASSERT_EQ(0U, texts.size() % 3000);
        expectNumbered({texts.end() - 3000, texts.end()}, "line", 3000);
    }
    EXPECT_EQ(6000U, count);
}

namespace {

test::ChildAction const logAndWait(L"log and wait", [](Arguments const& arguments) {
    VL_WriteLog(6, module, L"%s", arguments.at(0).c_str());
    std::puts("logged");
    std::fflush(stdout);
    Sleep(INFINITE);
    return 0;
});

} // namespace

TEST(VorraneLog, SecondProcessTakesANumberedName) {
    test::ScratchFolder const folder;
    auto const start = loggingTo(folder.file(L"a.log"));
    auto const first = logAndWait.start({L"first"}, start);
    ASSERT_TRUE(first->waitForOutput("logged"));

    ASSERT_EQ(0U, logFormats.start({L"second"}, start)->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), ElementsAre("first"));
    EXPECT_THAT(test::logTexts(folder.read(L"a-2.log")), ElementsAre("second"));
}

TEST(VorraneLog, LineOfAKilledProcessIsThereAndItsNameIsFree) {
    test::ScratchFolder const folder;
    auto const start = loggingTo(folder.file(L"a.log"));
    auto const first = logAndWait.start({L"last words"}, start);
    ASSERT_TRUE(first->waitForOutput("logged"));
    first->kill();

    ASSERT_EQ(0U, logFormats.start({L"next"}, start)->exitCode());

    EXPECT_THAT(test::logTexts(folder.read(L"a.log")), ElementsAre("last words", "next"));
}

namespace {

constexpr int longLines = 800;

test::ChildAction const logLongLines(L"log long lines", [](Arguments const&) {
    std::wstring const text(30'000, L'x');
    for (int number = 0; number < longLines; ++number)
        VL_WriteLog(6, module, L"%d %s", number, text.c_str());
    return 0;
});

} // namespace

TEST(VorraneLog, FullFilesBecomeOldOnesAndNoLineIsLost) {
    test::ScratchFolder const folder;
    ASSERT_EQ(0U, logLongLines.start({}, loggingTo(folder.file(L"a.log")))->exitCode());

    ASSERT_THAT(folder.names(), ElementsAre(L"a.1.log", L"a.2.log", L"a.log"));
    int number = 0;
    for (auto const* const name : {L"a.2.log", L"a.1.log", L"a.log"}) {
        auto const bytes = folder.read(name);
        EXPECT_LE(bytes.size(), 10U * 1024 * 1024);
        for (auto const& text : test::logTexts(bytes))
            ASSERT_THAT(text, StartsWith(std::to_string(number++) + " xxx"));
    }
    EXPECT_EQ(longLines, number);
}

namespace {

test::ChildAction const keepErrors(L"keep errors", [](Arguments const&) {
    for (int call = 0; call < 3; ++call) {
        SetLastError(4711);
        errno = 42;
        VL_WriteLog(6, module, L"%s", reinterpret_cast<wchar_t const*>(0x10));
        VL_WriteDebugLog(7, module, L"file", 1, L"left out");
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

test::ChildAction const countHandles(L"count handles", [](Arguments const&) {
    VL_WriteLog(6, module, L"first");
    auto const before = test::handleCount();
    for (int number = 0; number < 1000; ++number)
        VL_WriteLog(6, module, L"%d", number);
    return test::handleCount() == before ? 0 : 1;
});

// A hook of the log's own import must be reached from a function that has not called before.
int logOnce(wchar_t const* text) {
    VL_WriteLog(6, module, L"%s", text);
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
            VL_WriteLog(6, module, text);
    }
};

LoggingStatic const loggingStatic;

using WriteLog = void (*)(char, wchar_t const*, wchar_t const*, ...);

test::ChildAction const unloadLog(L"unload log", [](Arguments const& arguments) {
    auto* const library = LoadLibraryW(arguments.at(0).c_str());
    auto* const address = GetProcAddress(library, "VL_WriteLog");
    auto* const write = reinterpret_cast<WriteLog>(reinterpret_cast<void*>(address));
    write(6, module, L"loaded");
    FreeLibrary(library);
    write(6, module, L"let go");
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
