#include "VorraneLog/LogFile.h"

#include "VorraneLog/Handle.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using VorraneLog::LogFile;

namespace {

// Room for three lines of ten characters, and no pause: what fails is tried again at once.
constexpr LogFile::Limits smallLimits{3 * 36, 2, 0};

// Keeps a file open as a viewer does that lets nobody rename it.
VorraneLog::Handle openAsViewer(std::wstring const& path) {
    return VorraneLog::ownFile(CreateFileW(
        path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
        nullptr));
}

// Keeps a file open as a program that shares it with nobody.
VorraneLog::Handle openAlone(std::wstring const& path) {
    return VorraneLog::ownFile(
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, 0, nullptr));
}

// The lines without their times.
std::vector<std::string> linesOf(std::string const& bytes) {
    std::vector<std::string> lines;
    for (std::size_t start = 0, end = 0; start < bytes.size(); start = end + 2) {
        end = bytes.find("\r\n", start);
        auto const tab = bytes.find('\t', start);
        lines.push_back(bytes.substr(tab + 1, end - tab - 1));
    }
    return lines;
}

} // namespace

TEST(LogFile, WritesTheTimeBeforeALine) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {});

    file.write("6\tvrUtils\ttext");

    EXPECT_THAT(
        folder.read(L"a.log"), MatchesRegex("....-..-.. ..:..:..\\....\t6\tvrUtils\ttext\r\n"));
}

TEST(LogFile, MakesMissingFolders) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"one\\two\\three\\a.log"), {});

    file.write("text");

    EXPECT_THAT(folder.read(L"one\\two\\three\\a.log"), EndsWith("\ttext\r\n"));
}

TEST(LogFile, MakesNothingBeforeTheFirstLine) {
    test::ScratchFolder const folder;
    LogFile const file(folder.file(L"one\\a.log"), {});

    EXPECT_TRUE(folder.names().empty());
}

TEST(LogFile, NameMayHoldAnyCharacter) {
    test::ScratchFolder const folder;
    std::wstring const name = L"\u00C4rger %s \u0416 \U0001F3AC.log";
    LogFile file(folder.file(name), {});

    file.write("text");

    EXPECT_THAT(folder.read(name), EndsWith("\ttext\r\n"));
}

TEST(LogFile, PathMayBeLong) {
    test::ScratchFolder const folder;
    std::wstring const name = std::wstring(200, L'a') + L'\\' + std::wstring(200, L'b') + L".log";
    LogFile file(folder.file(name), {});

    file.write("text");

    EXPECT_THAT(folder.read(name), EndsWith("\ttext\r\n"));
}

TEST(LogFile, AppendsToWhatIsThere) {
    test::ScratchFolder const folder;
    folder.write(L"a.log", "before\r\n");
    LogFile file(folder.file(L"a.log"), {});

    file.write("text");

    EXPECT_THAT(folder.read(L"a.log"), MatchesRegex("before\r\n.*\ttext\r\n"));
}

TEST(LogFile, FullFileBecomesAnOldOne) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), smallLimits);

    for (auto const* const line : {"1234567890", "2234567890", "3234567890", "4234567890"})
        file.write(line);

    EXPECT_THAT(folder.read(L"a.log"), EndsWith("\t4234567890\r\n"));
    EXPECT_THAT(folder.read(L"a.1.log"), HasSubstr("\t1234567890\r\n"));
    EXPECT_THAT(folder.read(L"a.1.log"), EndsWith("\t3234567890\r\n"));
}

TEST(LogFile, OldestFileGoes) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), smallLimits);

    for (int line = 0; line < 20; ++line)
        file.write("1234567890");

    EXPECT_THAT(folder.names(), ElementsAre(L"a.1.log", L"a.2.log", L"a.log"));
}

TEST(LogFile, NothingIsLostWhileAnOldFileCannotBeRenamed) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), smallLimits);
    file.write("1234567890");
    auto const viewer = openAsViewer(folder.file(L"a.log"));

    for (auto const* const line : {"2234567890", "3234567890", "4234567890", "5234567890"})
        file.write(line);

    EXPECT_THAT(folder.names(), ElementsAre(L"a.log"));
    EXPECT_THAT(
        linesOf(folder.read(L"a.log")),
        ElementsAre("1234567890", "2234567890", "3234567890", "4234567890", "5234567890"));
}

TEST(LogFile, RotatesAgainOnceTheViewerHasGone) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), smallLimits);
    file.write("1234567890");
    auto viewer = openAsViewer(folder.file(L"a.log"));
    for (int line = 0; line < 4; ++line)
        file.write("2234567890");
    viewer.reset();

    for (int line = 0; line < 3; ++line)
        file.write("3234567890");

    EXPECT_THAT(folder.names(), ElementsAre(L"a.1.log", L"a.log"));
}

TEST(LogFile, SecondOwnerTakesANumberedName) {
    test::ScratchFolder const folder;
    LogFile first(folder.file(L"a.log"), {});
    LogFile second(folder.file(L"a.log"), {});
    LogFile third(folder.file(L"a.log"), {});

    first.write("one");
    second.write("two");
    third.write("three");

    EXPECT_THAT(folder.read(L"a.log"), EndsWith("\tone\r\n"));
    EXPECT_THAT(folder.read(L"a-2.log"), EndsWith("\ttwo\r\n"));
    EXPECT_THAT(folder.read(L"a-3.log"), EndsWith("\tthree\r\n"));
}

TEST(LogFile, OtherSpellingOfTheNameIsTheSameFile) {
    test::ScratchFolder const folder;
    folder.makeFolder(L"Logs");
    LogFile first(folder.file(L"Logs\\\u00E4.log"), {});
    LogFile second(folder.file(L"LOGS\\\u00C4.LOG"), {});

    first.write("one");
    second.write("two");

    EXPECT_THAT(folder.names(L"Logs"), ElementsAre(L"\u00C4-2.LOG", L"\u00E4.log"));
}

TEST(LogFile, NameOfAnOldFileIsTakenToo) {
    test::ScratchFolder const folder;
    LogFile first(folder.file(L"a.log"), {});
    LogFile second(folder.file(L"a.1.log"), {});

    first.write("one");
    second.write("two");

    EXPECT_THAT(folder.names(), ElementsAre(L"a.1-2.log", L"a.log"));
}

TEST(LogFile, SameNameInAnotherFolderIsFree) {
    test::ScratchFolder const folder;
    LogFile first(folder.file(L"one\\a.log"), {});
    LogFile second(folder.file(L"two\\a.log"), {});

    first.write("one");
    second.write("two");

    EXPECT_THAT(folder.names(L"two"), ElementsAre(L"a.log"));
}

TEST(LogFile, NameIsFreeAgainWhenItsOwnerHasGone) {
    test::ScratchFolder const folder;
    LogFile(folder.file(L"a.log"), {}).write("one");
    LogFile second(folder.file(L"a.log"), {});

    second.write("two");

    EXPECT_THAT(folder.read(L"a.log"), MatchesRegex(".*\tone\r\n.*\ttwo\r\n"));
}

TEST(LogFile, FileThatCannotBeOpenedIsPassedOver) {
    test::ScratchFolder const folder;
    auto const other = openAlone(folder.file(L"a.log"));
    LogFile file(folder.file(L"a.log"), {});

    file.write("text");

    EXPECT_THAT(folder.read(L"a-2.log"), EndsWith("\ttext\r\n"));
}

class LogFileNowhere : public testing::TestWithParam<wchar_t const*> {};

TEST_P(LogFileNowhere, LinesAreDropped) {
    LogFile file(GetParam(), smallLimits);

    file.write("text");
    file.write("text");

    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Paths, LogFileNowhere,
    testing::Values(
        L"", L"name.log", L"Q:\\nowhere\\a.log", L"C:\\a\"b\\c.log", L"C:\\folder|\\c.log",
        L"\\\\?\\nowhere\\c.log", L"\\\\.\\NOWHERE"));

TEST(LogFile, FolderInPlaceOfTheFileIsPassedOver) {
    test::ScratchFolder const folder;
    folder.makeFolder(L"a.log");
    LogFile file(folder.file(L"a.log"), {});

    file.write("text");

    EXPECT_THAT(folder.names(), ElementsAre(L"a-2.log", L"a.log"));
}

TEST(LogFile, DroppedLinesAreCounted) {
    test::ScratchFolder const folder;
    auto const obstacle = folder.write(L"logs", "a file where the folder should be");
    LogFile file(folder.file(L"logs\\a.log"), {1000, 2, 0});
    file.write("lost");
    file.write("lost");
    DeleteFileW(obstacle.c_str());

    file.write("text");

    EXPECT_THAT(
        linesOf(folder.read(L"logs\\a.log")),
        ElementsAre(MatchesRegex("4\tVorraneLog\t.*\tLines dropped before this one: 2"), "text"));
}

TEST(LogFile, FileThatCannotBeOpenedIsLeftAloneForAWhile) {
    test::ScratchFolder const folder;
    auto const obstacle = folder.write(L"logs", "a file where the folder should be");
    LogFile file(folder.file(L"logs\\a.log"), {1000, 2, 3'600'000});
    file.write("lost");
    test::ImportHook<decltype(CreateDirectoryW)> attempts(
        "CreateDirectoryW", [](auto...) { return FALSE; }, test::thisProgram());

    file.write("lost");

    EXPECT_EQ(0U, attempts.calls());
}

TEST(LogFile, FailedWriteIsMadeGoodWithANewFile) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {});
    file.write("one");
    test::FailingImport<int(FILE*)> fails("fflush", EOF, 0, 1, test::thisProgram());

    file.write("two");

    EXPECT_EQ(2U, fails.calls());
    EXPECT_THAT(folder.read(L"a.log"), EndsWith("\ttwo\r\n"));
}

TEST(LogFile, WriteThatFailsAgainIsDropped) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {1000, 2, 0});
    {
        test::FailingImport<int(FILE*)> fails(
            "fflush", EOF, 0, test::everyCall, test::thisProgram());
        file.write("two");
    }

    file.write("three");

    EXPECT_THAT(
        linesOf(folder.read(L"a.log")),
        ElementsAre("two", EndsWith("\tLines dropped before this one: 1"), "three"));
}

TEST(LogFile, CountGoesOnWhereItsOwnNoticeCannotBeWritten) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {1000, 2, 0});
    {
        test::FailingImport<std::size_t(void const*, std::size_t, std::size_t, FILE*)> const
            diskIsFull("fwrite", 0, 0, test::everyCall, test::thisProgram());
        file.write("lost");
        file.write("lost");
    }

    file.write("text");

    EXPECT_THAT(
        linesOf(folder.read(L"a.log")),
        ElementsAre(EndsWith("\tLines dropped before this one: 2"), "text"));
}

TEST(LogFile, FileThatGoesAwayBetweenLookingAndOpeningIsTriedAgainLater) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {1000, 2, 0});
    {
        test::FailingImport<decltype(_wfsopen)> const fails(
            "_wfsopen", nullptr, 0, test::everyCall, test::thisProgram());
        file.write("lost");
    }

    file.write("text");

    EXPECT_THAT(
        linesOf(folder.read(L"a.log")),
        ElementsAre(EndsWith("\tLines dropped before this one: 1"), "text"));
}

TEST(LogFile, FileWhoseSizeIsNotToldIsPassedOver) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {});
    test::FailingImport<decltype(GetFileSizeEx)> const fails(
        "GetFileSizeEx", FALSE, ERROR_ACCESS_DENIED, 1, test::thisProgram());

    file.write("text");

    EXPECT_EQ("", folder.read(L"a.log"));
    EXPECT_THAT(folder.read(L"a-2.log"), EndsWith("\ttext\r\n"));
}

TEST(LogFile, OwnFileThatCannotBeOpenedAgainIsPassedOver) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {});
    file.write("one");
    test::FailingImport<int(FILE*)> const failsToWrite("fflush", EOF, 0, 1, test::thisProgram());
    test::FailingImport<decltype(CreateFileW)> const failsToOpen(
        "CreateFileW", INVALID_HANDLE_VALUE, ERROR_SHARING_VIOLATION, 1, test::thisProgram());

    file.write("two");

    EXPECT_THAT(folder.read(L"a-2.log"), EndsWith("\ttwo\r\n"));
}

TEST(LogFile, FolderIsLookedForUpToTheStartOfThePathAndNoFurther) {
    test::ScratchFolder const folder;
    auto const separators = std::count(folder.path().begin(), folder.path().end(), L'\\');
    constexpr auto separatorsOfPrefix = 3;
    LogFile file(folder.file(L"a.log"), {});
    test::FailingImport<decltype(CreateDirectoryW)> const fails(
        "CreateDirectoryW", FALSE, ERROR_PATH_NOT_FOUND, test::everyCall, test::thisProgram());

    file.write("text");

    EXPECT_EQ(static_cast<unsigned>(separatorsOfPrefix + separators + 1), fails.calls());
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(LogFile, FolderThatCannotBeMadeInItsParentLosesTheLine) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"one\\two\\a.log"), {});
    test::ImportHook<decltype(CreateDirectoryW)> hook(
        "CreateDirectoryW",
        [&hook](LPCWSTR path, SECURITY_ATTRIBUTES* attributes) -> BOOL {
            if (std::wstring(path).find(L"\\two") == std::wstring::npos)
                return hook.original()(path, attributes);
            SetLastError(ERROR_PATH_NOT_FOUND);
            return FALSE;
        },
        test::thisProgram());

    file.write("text");

    EXPECT_EQ(3U, hook.calls());
    EXPECT_THAT(folder.names(), ElementsAre(L"one"));
    EXPECT_THAT(folder.names(L"one"), IsEmpty());
}

TEST(LogFile, LongLineIsCutWithoutMemoryForIt) {
    test::ScratchFolder const folder;
    LogFile file(folder.file(L"a.log"), {});
    file.write("open");
    std::string line;
    for (int character = 0; character < 1000; ++character)
        line += "\xE2\x82\xAC";
    {
        test::FailingImport<void*(std::size_t)> noMemory(
            "malloc", nullptr, 0, test::everyCall, test::thisProgram());
        file.write(line);
    }

    EXPECT_THAT(folder.read(L"a.log"), EndsWith("\t" + line.substr(0, 198) + "\r\n"));
}

TEST(LogFile, GoesOnWithANewFileAfterItWasAbandoned) {
    test::ScratchFolder const folder;
    {
        LogFile file(folder.file(L"a.log"), {});
        file.write("one");

        file.abandon();
        file.write("two");
    }

    EXPECT_THAT(folder.read(L"a.log"), MatchesRegex(".*\tone\r\n.*\ttwo\r\n"));
    _fcloseall();
}
