// What a line holds: its columns, the levels that are written, formats and values of every kind.

#include "VorraneLog/VorraneLog.h"

#include "tests/VorraneLog/LogLines.h"
#include "tests/VorraneLog/LoggingChild.h"
#include "tests/VorraneLog/PrivateMemory.h"
#include "tests/support/Campaign.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <ostream>
#include <string>

using test::logFormats;
using test::loggingTo;
using test::moduleName;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;
using testing::StartsWith;
using Arguments = test::ChildAction::Arguments;

namespace {

// One line at each level there is.
test::ChildAction const logAtAllLevels(L"log at all levels", [](Arguments const&) {
    for (char level = 0; level <= 7; ++level)
        VL_WriteLog(level, moduleName, L"line");
    return 0;
});

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
    VL_WriteLog(-128, moduleName, L"least");
    VL_WriteLog(127, moduleName, L"greatest");
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
    VL_WriteLog(6, moduleName, text.c_str());
    VL_WriteLog(6, moduleName, L"%s", text.c_str());
    VL_WriteLog(6, L"Modul \u00E4\t", L"module");
    return 0;
});

test::ChildAction const logFromSource(L"log from source", [](Arguments const&) {
    VL_WriteDebugLog(4, moduleName, L"Process", 214, L"Abandoning %d %s", 42, L"now");
    VL_WriteDebugLog(4, moduleName, nullptr, -1, L"nowhere");
    return 0;
});

test::ChildAction const logBadPointers(L"log bad pointers", [](Arguments const&) {
    test::PrivatePage const page;
    auto* const nowhere = reinterpret_cast<wchar_t const*>(page.end());
    VL_WriteLog(6, nullptr, nullptr);
    VL_WriteLog(6, nowhere, nowhere);
    VL_WriteLog(6, moduleName, L"%s", nowhere);
    VL_WriteDebugLog(6, moduleName, nowhere, 1, L"%s", page.lastCharacters(L"half"));
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
        VL_WriteLog(6, moduleName, (L"Locking file [" + name + L"]|").c_str());
    }
    VL_WriteLog(6, moduleName, L"Locking file [the last of them]");
    return 0;
});

// A thread's first frame, with next to nothing above it on the stack.
DWORD WINAPI logWithoutValues(void*) {
    VL_WriteLog(6, moduleName, L"%d%d%d%d%d%d%d%d%s%s%s%s%s%s%s%s%d%d%d%d%d%d%d%d%s%s%s%s%s%s%s%s");
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
