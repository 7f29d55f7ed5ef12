// Where the lines go: the file that is asked for, the one that is taken instead, and its old ones.

#include "VorraneLog/VorraneLog.h"

#include "tests/VorraneLog/LogLines.h"
#include "tests/VorraneLog/LoggingChild.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using test::logFormats;
using test::loggingTo;
using test::moduleName;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using Arguments = test::ChildAction::Arguments;

namespace {

std::string bytesOf(std::wstring const& path) {
    auto const narrow = test::utf8(path);
    std::ifstream file(narrow, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

test::ChildAction const logNumbered(L"log numbered", [](Arguments const& arguments) {
    for (int number = 0; number < std::stoi(arguments.at(1)); ++number)
        VL_WriteLog(6, moduleName, L"%s %d", arguments[0].c_str(), number);
    return 0;
});

void expectNumbered(std::vector<std::string> const& texts, std::string const& name, int count) {
    ASSERT_THAT(texts, SizeIs(static_cast<std::size_t>(count)));
    for (int number = 0; number < count; ++number)
        ASSERT_EQ(name + ' ' + std::to_string(number), texts[static_cast<std::size_t>(number)]);
}

} // namespace

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
    VL_WriteLog(6, moduleName, L"here");
    SetCurrentDirectoryW(arguments.at(0).c_str());
    VL_WriteLog(6, moduleName, L"still here");
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
    VL_WriteLog(6, moduleName, L"%s", arguments.at(0).c_str());
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
        VL_WriteLog(6, moduleName, L"%d %s", number, text.c_str());
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
