#include "tests/support/LogRecorder.h"

#include "foundation/Log.h"

#include <thread>

using test::Logged;
using test::LoggedFormat;
using testing::ElementsAre;
using testing::HasSubstr;
using vrUtils::logComposed;

namespace {

// The text of one recorded line of this format.
template <typename... Values>
std::wstring textOf(wchar_t const* format, Values... values) {
    test::LogRecorder const recorder;
    VL_WriteLog(6, L"vrUtils", format, values...);
    return recorder.lines().at(0).text();
}

} // namespace

TEST(LogRecorder, RecordsLevelModuleAndText) {
    test::LogRecorder const recorder;

    logComposed(4, L"Failed to create registry key");
    VL_WriteLog(7, L"Backup", L"Creating Folder [%s]", L"C:\\a");

    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              Logged(4, L"Failed to create registry key"),
                              Logged(7, L"Creating Folder [C:\\a]", L"Backup")));
}

TEST(LogRecorder, RecordsSourceAndLineOfDebugLines) {
    test::LogRecorder const recorder;

    VL_WriteDebugLog(4, L"vrUtils", L"Process", 120, L"CloseHandle failed (error 0x%x)", 0xABCu);

    auto const line = recorder.lines().at(0);
    EXPECT_THAT(line, Logged(4, L"CloseHandle failed (error 0xabc)"));
    EXPECT_EQ(L"Process", line.file);
    EXPECT_EQ(120, line.line);
}

TEST(LogRecorder, PlainLinesHaveNoSource) {
    test::LogRecorder const recorder;

    logComposed(4, L"text");

    EXPECT_FALSE(recorder.lines().at(0).file);
    EXPECT_FALSE(recorder.lines().at(0).line);
}

TEST(LogRecorder, KeepsTheFormatAsItCame) {
    test::LogRecorder const recorder;

    logComposed(4, L"100%s of %n %d");

    EXPECT_THAT(recorder.lines(), ElementsAre(LoggedFormat(4, L"100%s of %n %d")));
}

TEST(LogRecorder, KeepsTheValuesAsTheyCame) {
    test::LogRecorder const recorder;
    wchar_t const name[] = L"tool";

    VL_WriteLog(5, L"vrUtils", L"%s %I64x", name, 0x123456789ABCDEF0ull);

    auto const values = recorder.lines().at(0).values;
    ASSERT_EQ(2u, values.size());
    EXPECT_EQ(reinterpret_cast<std::uint64_t>(name), values[0].word);
    EXPECT_EQ(0x123456789ABCDEF0u, values[1].word);
}

TEST(LogRecorder, KeepsATextThatHasGoneSince) {
    test::LogRecorder const recorder;

    VL_WriteLog(5, L"vrUtils", L"[%s]", std::wstring(300, L'x').c_str());

    EXPECT_EQ(L"[" + std::wstring(300, L'x') + L"]", recorder.texts().at(0));
}

TEST(LogRecorder, FillsInNumbers) {
    EXPECT_EQ(L"-1 -2 3", textOf(L"%d %i %u", -1, -2, 3u));
    EXPECT_EQ(L"ff FF", textOf(L"%x %X", 255u, 255u));
    EXPECT_EQ(L"-5 4294967295", textOf(L"%ld %lu", -5L, 0xFFFFFFFFul));
    EXPECT_EQ(L"-6 18446744073709551615", textOf(L"%lld %I64u", -6LL, ~0ull));
    EXPECT_EQ(L"-1 65535", textOf(L"%hd %hu", 0xFFFF, 0xFFFF));
    EXPECT_EQ(L"0x0000002a   7|7  |007", textOf(L"0x%08x %3d|%-3d|%.3d", 42u, 7, 7, 7));
}

TEST(LogRecorder, FillsInCharactersAndPercentSigns) {
    EXPECT_EQ(L"a\u00E4 100%d", textOf(L"%c%c 100%%d", L'a', L'\u00E4'));
}

TEST(LogRecorder, CutsATextAtItsPrecision) {
    EXPECT_EQ(L"abc||", textOf(L"%.3s|%.0s|%.s", L"abcdef", L"abc", L"abc"));
}

TEST(LogRecorder, ReadsATextWithoutEndOnlyUpToItsPrecision) {
    wchar_t const letters[] = {L'a', L'b', L'c'};

    EXPECT_EQ(L"abc", textOf(L"%.3s", letters));
}

TEST(LogRecorder, SurvivesTextsThatAreNoneToRead) {
    EXPECT_EQ(L"[][]", textOf(L"[%s][%s]", nullptr, reinterpret_cast<wchar_t const*>(0x1001)));
}

TEST(LogRecorder, ReadsATextAcrossPagesUpToTheLastReadableOne) {
    auto* const pages = static_cast<std::byte*>(
        VirtualAlloc(nullptr, 3 * 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD protection = 0;
    VirtualProtect(pages + 2 * 4096, 4096, PAGE_NOACCESS, &protection);
    auto* const text = reinterpret_cast<wchar_t*>(pages);
    std::fill_n(text, 4096, L'p');

    auto const aligned = textOf(L"%s", text);
    auto const odd = textOf(L"%s", reinterpret_cast<wchar_t*>(pages + 1));

    EXPECT_EQ(4096u, aligned.size());
    EXPECT_EQ(4095u, odd.size());
    VirtualFree(pages, 0, MEM_RELEASE);
}

TEST(LogRecorder, LeavesUnknownDirectivesAlone) {
    EXPECT_EQ(L"%n %f %*d % 9", textOf(L"%n %f %*d % %d", 9));
}

TEST(LogRecorder, TakesEightValuesAtTheMost) {
    EXPECT_EQ(L"12345678%d%s", textOf(L"%d%d%d%d%d%d%d%d%d%s", 1, 2, 3, 4, 5, 6, 7, 8, 9, L"ten"));
}

TEST(LogRecorder, SurvivesHostileComposedTexts) {
    test::LogRecorder const recorder;

    logComposed(3, L"%s%s%s%s%s%s%s%s%s%s%n%n%1$s%999999999d%");

    EXPECT_THAT(recorder.texts().at(0), HasSubstr(L"%n%n%1$s%999999999d%"));
}

TEST(LogRecorder, SurvivesALongRunOfFlags) {
    auto const text = L"%" + std::wstring(100000, L' ');
    test::LogRecorder const recorder;

    logComposed(3, text);

    EXPECT_EQ(text, recorder.texts().at(0));
}

TEST(LogRecorder, PreservesTheLastError) {
    test::LogRecorder const recorder;
    SetLastError(1234);

    VL_WriteLog(3, L"vrUtils", L"%s", reinterpret_cast<wchar_t const*>(0x1001));

    EXPECT_EQ(1234u, GetLastError());
}

TEST(LogRecorder, TakesNullTexts) {
    test::LogRecorder const recorder;

    VL_WriteDebugLog(3, nullptr, nullptr, 1, nullptr);

    EXPECT_THAT(recorder.lines(), ElementsAre(Logged(3, L"", L"")));
}

TEST(LogRecorder, RecordsManyThreads) {
    test::LogRecorder const recorder;

    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count)
        threads.emplace_back([] {
            for (int call = 0; call < 500; ++call)
                VL_WriteLog(6, L"vrUtils", L"%d", call);
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(2000u, recorder.lines().size());
}

TEST(LogRecorder, WaitsForTheLinesOfAnotherThread) {
    test::LogRecorder const recorder;

    std::thread thread([] { logComposed(6, L"late"); });

    EXPECT_TRUE(recorder.waitForLines(1, std::chrono::seconds(10)));
    EXPECT_FALSE(recorder.waitForLines(2, std::chrono::milliseconds(1)));
    thread.join();
}

TEST(LogRecorder, ForgetsLines) {
    test::LogRecorder recorder;
    logComposed(6, L"first");

    recorder.clear();
    logComposed(6, L"second");

    EXPECT_THAT(recorder.lines(), ElementsAre(Logged(6, L"second")));
}

TEST(LogRecorder, YoungerRecorderRecords) {
    test::LogRecorder const outer;
    {
        test::LogRecorder const inner;
        logComposed(6, L"in");
        EXPECT_THAT(inner.texts(), ElementsAre(L"in"));
    }

    logComposed(6, L"out");

    EXPECT_THAT(outer.texts(), ElementsAre(L"out"));
}

TEST(LogRecorder, ModuleWithoutLogCallsIsRefused) {
    EXPECT_THROW(test::LogRecorder(test::loadedModule(L"VorraneLog.dll")), std::runtime_error);
}

TEST(LogRecorder, MatcherTellsLevelModuleAndText) {
    test::LogLine line;
    line.level = 4;
    line.module = L"vrUtils";
    line.format = L"text";

    EXPECT_THAT(line, Logged(4, L"text"));
    EXPECT_THAT(line, testing::Not(Logged(5, L"text")));
    EXPECT_THAT(line, testing::Not(Logged(4, L"other")));
    EXPECT_THAT(line, testing::Not(Logged(4, L"text", L"other")));
    EXPECT_THAT(line, Logged(4, HasSubstr(L"ex")));
}

TEST(LogRecorder, PrintsLinesReadably) {
    test::LogLine line;
    line.level = 4;
    line.module = L"vrUtils";
    line.format = L"M\u00FCller 100%%";

    EXPECT_EQ(
        "level 4, module vrUtils, text \"M\xC3\xBCller 100%\", format \"M\xC3\xBCller 100%%\"",
        testing::PrintToString(line));
}
