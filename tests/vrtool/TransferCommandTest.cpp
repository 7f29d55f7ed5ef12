// `vrtool transfer` as its users run it.

#include "tools/vrtool/TransferCommand.h"

#include "tests/support/ByteBuilder.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/KeyConsole.h"
#include "tests/vrtool/RunHere.h"
#include "tools/vrtool/FileCopy.h"
#include "tools/vrtool/SystemText.h"
#include "vrUtils/Files.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

class VrtoolTransfer : public testing::Test {
  protected:
    using Words = std::vector<std::wstring>;

    // What is given stands ahead of the destination.
    test::ToolRun transfer(Words const& words) const {
        Words all{L"transfer"};
        all.insert(all.end(), words.begin(), words.end());
        all.push_back(to);
        return test::runTool(all);
    }

    // The same in the test itself.
    test::ToolRun transferHere() const {
        return test::runHere<TransferCommand>("transfer", {test::utf8(to), test::utf8(from)});
    }

    std::wstring source(std::wstring const& name, std::string_view bytes) const {
        return scratch.write(L"from\\" + name, bytes);
    }

    std::string target(std::wstring const& name) const { return scratch.read(L"to\\" + name); }

    std::string failureLine(std::wstring const& name, std::wstring const& reason) const {
        return "vrtool: " + test::utf8(scratch.file(name) + L": " + reason) + '\n';
    }

    // The lines of the table, header included, and the closing line.
    static std::vector<std::string> table(test::ToolRun const& run) {
        auto lines = run.lines();
        lines.erase(lines.begin());
        return lines;
    }

    test::ScratchFolder const scratch;
    std::wstring const from = scratch.makeFolder(L"from");
    std::wstring const to = scratch.file(L"to");
};

} // namespace

TEST_F(VrtoolTransfer, CarriesAFile) {
    auto const run = transfer({source(L"a.mxf", "media")});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ("", run.error);
    EXPECT_EQ("media", target(L"a.mxf"));
    auto const lines = run.lines();
    ASSERT_EQ(4u, lines.size());
    EXPECT_EQ("To " + test::utf8(to) + "\\, on this machine", lines[0]);
    EXPECT_THAT(
        test::cellsOf(lines[1]), ElementsAre("FILE", "BYTES", "HZ", "BITS", "RESULT", "INDEX"));
    EXPECT_THAT(
        test::cellsOf(lines[2]),
        ElementsAre(
            "a.mxf", "5", "-", "-", "transferred",
            test::utf8(vr::Path(vrUtils::Files::ArchiveToIndexPathConverter().GetIndexPath(
                                    vr::Path::file(to + L"\\a.mxf")))
                           .str())));
    EXPECT_THAT(lines[3], MatchesRegex("1 file: 1 transferred; 5 B in .*, .*/s"));
}

TEST_F(VrtoolTransfer, CarriesFoldersWithAllThatIsInThem) {
    source(L"day 1\\a.mxf", "a");
    source(L"day 1\\take\\b.mxf", "b");
    source(L"c.mxf", "c");

    EXPECT_EQ(0u, transfer({scratch.file(L"from\\day 1"), scratch.file(L"from\\c.mxf")}).exitCode);

    EXPECT_EQ("a", target(L"day 1\\a.mxf"));
    EXPECT_EQ("b", target(L"day 1\\take\\b.mxf"));
    EXPECT_EQ("c", target(L"c.mxf"));
}

TEST_F(VrtoolTransfer, CarriesAFolderIntoOneBelowIt) {
    source(L"a.mxf", "a");

    auto const run = test::runTool({L"transfer", from, scratch.file(L"from\\below")});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ("a", scratch.read(L"from\\below\\from\\a.mxf"));
    EXPECT_FALSE(scratch.exists(L"from\\below\\from\\below"));
}

TEST_F(VrtoolTransfer, FindsEverythingThereTheSecondTime) {
    source(L"a.mxf", "a");
    source(L"b.wav", "");
    transfer({from});

    auto const run = transfer({from});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_THAT(run.lines().back(), MatchesRegex("2 files: 2 already there; 0 B in .*"));
}

TEST_F(VrtoolTransfer, CarriesOnWhatHasComeByATransfer) {
    source(L"a.mxf", "a");
    transfer({from});

    auto const run = test::runTool({L"transfer", to, scratch.file(L"further")});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ("Left out, since transfers make them themselves: 1 file", run.lines().at(1));
    EXPECT_THAT(scratch.names(L"further\\to\\from"), ElementsAre(L"a.mxf", L"messages"));
    EXPECT_THAT(scratch.names(L"further\\to\\from\\messages"), ElementsAre(L"a.mxf.xml"));
}

TEST_F(VrtoolTransfer, ReplacesOnlyWhenItIsTold) {
    auto const file = source(L"a.mxf", "brand-new");
    scratch.write(L"to\\a.mxf", "old");

    auto const refused = transfer({file});

    EXPECT_EQ(1u, refused.exitCode);
    EXPECT_EQ(
        failureLine(
            L"from\\a.mxf",
            L"there is another file at \"" + to + L"\\a.mxf\"; --replace replaces it"),
        refused.error);
    EXPECT_EQ("old", target(L"a.mxf"));

    auto const run = transfer({file, L"--replace"});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_THAT(run.lines().back(), MatchesRegex("1 file: 1 replaced; 9 B in .*"));
    EXPECT_EQ("brand-new", target(L"a.mxf"));
}

TEST_F(VrtoolTransfer, TellsWhatFailsAndGoesOn) {
    auto const first = scratch.file(L"from\\gone.mxf");
    auto const second = source(L"b.mxf", "b");

    auto const run = transfer({first, second});

    EXPECT_EQ(1u, run.exitCode);
    EXPECT_EQ(failureLine(L"from\\gone.mxf", systemText(ERROR_FILE_NOT_FOUND)), run.error);
    EXPECT_EQ("b", target(L"b.mxf"));
    auto const lines = table(run);
    EXPECT_THAT(test::cellsOf(lines[0]).back(), "REMARK");
    EXPECT_THAT(lines[1], HasSubstr("gone.mxf"));
    EXPECT_THAT(lines[1], HasSubstr("failed"));
    EXPECT_THAT(lines[3], MatchesRegex("2 files: 1 transferred, 1 failed; 1 B in .*"));
}

TEST_F(VrtoolTransfer, CarriesABrokenRecordingWithARemark) {
    source(L"a.wav", "not a recording at all");

    auto const run = transfer({from});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ("", run.error);
    EXPECT_THAT(test::cellsOf(run.lines().at(2)).back(), "Missing RIFF tag");
    EXPECT_EQ("not a recording at all", target(L"from\\a.wav"));
}

TEST_F(VrtoolTransfer, ShowsTheFormatOfRecordings) {
    scratch.write(L"from\\a.wav", test::wavHead(48000, 24));
    scratch.write(L"from\\b.aiff", test::aiffHead(test::extended(44100), 16));

    auto const lines = transfer({from}).lines();

    EXPECT_THAT(lines.at(2), HasSubstr("  48000    24  transferred  "));
    EXPECT_THAT(lines.at(3), HasSubstr("  44100    16  transferred  "));
}

TEST_F(VrtoolTransfer, CarriesEmptyFiles) {
    auto const run = transfer({source(L"empty.mxf", "")});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ("", target(L"empty.mxf"));
    EXPECT_THAT(target(L"messages\\empty.mxf.xml"), HasSubstr("<bytes>0</bytes>"));
}

TEST_F(VrtoolTransfer, HasNothingToDoForAnEmptyFolder) {
    auto const run = transfer({from});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_FALSE(scratch.exists(L"to"));
}

TEST_F(VrtoolTransfer, IsRefusedAFileThatAnotherOneHas) {
    auto const file = source(L"a.mxf", "new");
    scratch.makeFolder(L"to");
    vrUtils::Files::LockFile const lock(vr::Path::file(to + L"\\a.mxf"));

    auto const run = transfer({file});

    EXPECT_EQ(1u, run.exitCode);
    EXPECT_EQ(
        failureLine(L"from\\a.mxf", L"another transfer has \"" + to + L"\\a.mxf\""), run.error);
    EXPECT_FALSE(scratch.exists(L"to\\a.mxf"));
}

TEST_F(VrtoolTransfer, ActsForAnInstance) {
    transfer({source(L"a.mxf", "a")});
    auto const plain = target(L"messages\\a.mxf.xml");

    transfer({source(L"b.mxf", "b"), L"--instance", L"3"});

    EXPECT_THAT(plain, Not(HasSubstr(":60822</server>")));
    EXPECT_THAT(target(L"messages\\b.mxf.xml"), HasSubstr(":60822</server>"));
}

TEST_F(VrtoolTransfer, SavesTheStatistics) {
    auto const file = source(L"a.mxf", "media");

    auto const run =
        transfer({file, scratch.file(L"from\\gone"), L"--json", scratch.file(L"s.json")});

    EXPECT_EQ(1u, run.exitCode);
    auto const stats = test::ToolRun{0, scratch.read(L"s.json"), {}}.json();
    EXPECT_EQ(5u, stats["BytesRead"].asUInt64());
    EXPECT_EQ(5u, stats["BytesWritten"].asUInt64());
    EXPECT_EQ(1u, stats["FilesTransferred"].asUInt64());
    EXPECT_EQ(1u, stats["FilesFailed"].asUInt64());
    EXPECT_EQ(1u, stats["TransferStatus"].asUInt64());
}

TEST_F(VrtoolTransfer, SaysThatTheStatisticsCannotBeSaved) {
    auto const file = scratch.file(L"gone\\s.json");

    auto const run = transfer({source(L"a.mxf", "media"), L"--json", file});

    EXPECT_EQ(1u, run.exitCode);
    EXPECT_EQ(
        "vrtool: cannot write \"" + test::utf8(file) +
            ".part\": " + test::utf8(systemText(ERROR_PATH_NOT_FOUND)) + '\n',
        run.error);
    EXPECT_EQ("media", target(L"a.mxf"));
}

TEST_F(VrtoolTransfer, NeedsADestination) {
    auto const run = test::runTool({L"transfer", from});

    EXPECT_EQ(2u, run.exitCode);
    EXPECT_THAT(run.error, HasSubstr("vrtool: DESTINATION is required"));
}

TEST_F(VrtoolTransfer, RefusesAnInstanceThatThereIsNot) {
    EXPECT_EQ(2u, transfer({from, L"--instance", L"101"}).exitCode);
}

TEST_F(VrtoolTransfer, CannotGoToADriveThatIsNotThere) {
    auto const run = test::runTool({L"transfer", source(L"a.mxf", "a"), L"Q:\\to"});

    EXPECT_EQ(1u, run.exitCode);
    EXPECT_THAT(run.error, HasSubstr("from\\a.mxf: cannot make the folder \"Q:\\to"));
}

// The source has no end until the key has been seen.
TEST_F(VrtoolTransfer, IsEndedByCtrlCAndTakesTheFileOnItsWayBack) {
    auto const file = source(L"b.mxf", "media");
    scratch.write(L"to\\b.mxf", "old");
    test::KeyConsole const console;
    auto const end = std::chrono::steady_clock::now() + test::ceiling;
    auto const isEndless = [&](DWORD size) {
        return size == copyPieceSize && std::chrono::steady_clock::now() < end;
    };
    test::ImportHook<decltype(ReadFile)> const hook(
        "ReadFile",
        [&](HANDLE source, LPVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
            if (!isEndless(size))
                return hook.original()(source, bytes, size, count, overlapped);
            if (hook.calls() == 1)
                console.send();
            *static_cast<char*>(bytes) = 'x';
            *count = 1;
            return TRUE;
        },
        test::thisProgram());

    auto const run = test::runHere<TransferCommand>(
        "transfer", {test::utf8(to), test::utf8(from), test::utf8(file), "--replace"});

    EXPECT_EQ(4u, run.exitCode);
    EXPECT_EQ("", run.error);
    EXPECT_THAT(run.lines().back(), MatchesRegex("1 file: 1 cancelled; .*"));
    EXPECT_EQ("old", target(L"b.mxf"));
    EXPECT_THAT(scratch.names(L"to"), ElementsAre(L"b.mxf"));
}

TEST_F(VrtoolTransfer, CarriesReportsAndMakesTheHtmlOne) {
    source(L"m.mov", "movie");
    source(
        L"pfc\\m.xml",
        "<preflight><check name=\"Levels\" result=\"passed\">-9 dB</check></preflight>");
    source(L"genealogy\\m.xml", "<genealogy/>");
    source(L"pfchtml\\m.html", "an old page");

    auto const run = transfer({from, L"--report"});

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_EQ("<genealogy/>", target(L"from\\genealogy\\m.xml"));
    EXPECT_THAT(target(L"from\\pfchtml\\m.html"), HasSubstr("m.mov"));
    EXPECT_THAT(target(L"from\\pfchtml\\m.html"), HasSubstr("vrtool "));
    EXPECT_THAT(run.out, HasSubstr("  REPORT"));
    EXPECT_THAT(run.out, HasSubstr(test::utf8(to + L"\\from\\pfchtml\\m.html")));
}

TEST_F(VrtoolTransfer, CarriesReportsAsFilesUnlessTheyAreToBeMade) {
    source(L"m.mov", "movie");
    source(L"pfc\\m.xml", "<pfc/>");
    source(L"pfchtml\\m.html", "an old page");

    EXPECT_EQ(0u, transfer({from}).exitCode);

    EXPECT_EQ("an old page", target(L"from\\pfchtml\\m.html"));
}

TEST_F(VrtoolTransfer, KeepsTheMovieWhoseReportCannotBeMade) {
    source(L"m.mov", "movie");
    source(L"pfc\\m.xml", "<pfc/>");
    scratch.write(L"to\\from\\pfchtml\\m.html", "the page of an earlier movie");
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND, test::everyCall);

    auto const run =
        test::runHere<TransferCommand>("transfer", {test::utf8(to), test::utf8(from), "--report"});

    EXPECT_EQ(1u, run.exitCode);
    EXPECT_EQ(
        failureLine(
            L"from\\m.mov", L"PFCreportGenerator.exe has not made the report \"" + to +
                                L"\\from\\pfchtml\\m.html\""),
        run.error);
    EXPECT_EQ("movie", target(L"from\\m.mov"));
    EXPECT_EQ("<pfc/>", target(L"from\\pfc\\m.xml"));
}

TEST_F(VrtoolTransfer, LeavesNoHandleOpen) {
    source(L"a.mxf", "media");
    transferHere();
    source(L"b.mxf", "media");
    test::HandleLeakCheck const check;

    transferHere();
}
