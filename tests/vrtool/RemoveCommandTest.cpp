// `vrtool remove`: nothing is lost that nobody has confirmed.

#include "tools/vrtool/RemoveCommand.h"

#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/AnswersFile.h"
#include "tests/vrtool/KeyConsole.h"
#include "tests/vrtool/RunHere.h"
#include "tests/vrtool/Talk.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr char content[] = "the only take";

class VrtoolRemove : public testing::Test {
  protected:
    static std::string quoted(std::wstring const& path) { return '"' + test::utf8(path) + '"'; }

    std::vector<std::wstring> command() const { return {L"remove", file, L"--recoverable"}; }

    // All answers at once.
    test::ToolRun remove(std::string const& answers) const { return remove(file, answers); }

    static test::ToolRun remove(std::wstring const& path, std::string const& answers) {
        test::AnswersFile const input(answers);
        return test::runHere<RemoveCommand>("remove", {"--recoverable", test::utf8(path)});
    }

    void expectUntouched() const {
        EXPECT_THAT(folder.names(), ElementsAre(L"clip.mxf"));
        EXPECT_EQ(content, folder.read(L"clip.mxf"));
    }

    void expectCopyAlone() const {
        EXPECT_FALSE(folder.exists(L"clip.mxf"));
        EXPECT_EQ(content, folder.read(LR"(Recovery\clip.mxf)"));
    }

    test::ScratchFolder const folder;
    std::wstring const file = folder.write(L"clip.mxf", content);
    std::wstring const copy = folder.file(LR"(Recovery\clip.mxf)");
    std::string const firstQuestion = "Remove " + quoted(file) + "? yes or no:\n";
    std::string const secondQuestion = "removed; until this ends, a copy is in " + quoted(copy) +
                                       "\ndone to make that final, undo to put the file back:\n";
};

} // namespace

TEST_F(VrtoolRemove, RemovesWhatIsConfirmedTwice) {
    auto const run = remove("yes\ndone\n");

    EXPECT_EQ(firstQuestion + secondQuestion + "removed: " + quoted(file) + '\n', run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_THAT(folder.names(), testing::IsEmpty());
}

TEST_F(VrtoolRemove, PutsTheFileBackOnRequest) {
    auto const run = remove("yes\nundo\n");

    EXPECT_EQ(firstQuestion + secondQuestion + "put back: " + quoted(file) + '\n', run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(4u, run.exitCode);
    expectUntouched();
}

TEST_F(VrtoolRemove, PutsTheFileBackAtTheEndOfTheInput) {
    auto const run = remove("yes\n");

    EXPECT_EQ(firstQuestion + secondQuestion + "put back: " + quoted(file) + '\n', run.out);
    EXPECT_EQ(4u, run.exitCode);
    expectUntouched();
}

TEST_F(VrtoolRemove, LeavesTheFileUnlessItIsConfirmed) {
    for (auto const* const answer : {"no\n", " NO \r\n", "", "y\n"}) {
        auto const run = remove(answer);

        EXPECT_THAT(run.out, testing::EndsWith("left as it was: " + quoted(file) + '\n'));
        EXPECT_EQ(4u, run.exitCode);
        expectUntouched();
    }
}

TEST_F(VrtoolRemove, AsksUntilItUnderstands) {
    auto const run = remove("yes!\n\nYES\r\ny\nDone\n");

    EXPECT_EQ(
        firstQuestion + firstQuestion + firstQuestion + secondQuestion + secondQuestion +
            "removed: " + quoted(file) + '\n',
        run.out);
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolRemove, KeepsTheCopyWhileItWaits) {
    test::Talk talk(command());
    talk.answer("yes\n");

    ASSERT_TRUE(talk.tool().waitForOutput(secondQuestion));
    expectCopyAlone();
    talk.answer("undo\n");

    EXPECT_EQ(4u, talk.tool().exitCode());
    expectUntouched();
}

TEST_F(VrtoolRemove, LeavesTheCopyIfItIsKilledWhileItWaits) {
    test::Talk talk(command());
    talk.answer("yes\n");
    ASSERT_TRUE(talk.tool().waitForOutput(secondQuestion));

    talk.tool().kill();

    expectCopyAlone();
}

TEST_F(VrtoolRemove, PutsTheFileBackAtCtrlC) {
    test::KeyConsole const console;
    test::Talk talk(command());
    talk.answer("yes\n");
    ASSERT_TRUE(talk.tool().waitForOutput(secondQuestion));

    ASSERT_TRUE(console.press());

    EXPECT_EQ(4u, talk.tool().exitCode());
    EXPECT_THAT(talk.tool().output(), HasSubstr("put back: " + quoted(file) + '\n'));
    expectUntouched();
}

TEST_F(VrtoolRemove, LeavesTheFileAtCtrlC) {
    test::KeyConsole const console;
    test::Talk talk(command());
    ASSERT_TRUE(talk.tool().waitForOutput(firstQuestion));

    ASSERT_TRUE(console.press());

    EXPECT_EQ(4u, talk.tool().exitCode());
    expectUntouched();
}

TEST_F(VrtoolRemove, TellsOfACopyThatStaysInAFolderThatWasThere) {
    folder.makeFolder(L"Recovery");

    auto const run = remove("yes\ndone\n");

    EXPECT_EQ(
        firstQuestion + secondQuestion + "removed: " + quoted(file) +
            "\nthe copy stays: " + quoted(copy) + '\n',
        run.out);
    EXPECT_EQ(0u, run.exitCode);
    expectCopyAlone();
}

TEST_F(VrtoolRemove, TellsOfACopyThatStaysBesideTheFile) {
    folder.makeFolder(L"Recovery");

    auto const run = remove("yes\nundo\n");

    EXPECT_THAT(
        run.out,
        HasSubstr("put back: " + quoted(file) + "\nthe copy stays: " + quoted(copy) + '\n'));
    EXPECT_EQ(4u, run.exitCode);
    EXPECT_EQ(content, folder.read(L"clip.mxf"));
}

TEST_F(VrtoolRemove, WritesOverNoEarlierCopy) {
    folder.write(LR"(Recovery\clip.mxf)", "an earlier take");

    auto const run = remove("yes\ndone\n");

    EXPECT_EQ(
        "vrtool: an earlier removal was not finished; its copy is in the way: " + quoted(copy) +
            '\n',
        run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_EQ("an earlier take", folder.read(LR"(Recovery\clip.mxf)"));
    EXPECT_EQ(content, folder.read(L"clip.mxf"));
}

TEST_F(VrtoolRemove, AsksForNoFileThatIsMissing) {
    auto const run = remove(folder.file(L"b.mxf"), "yes\ndone\n");

    EXPECT_EQ("vrtool: no such file: " + quoted(folder.file(L"b.mxf")) + '\n', run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
    expectUntouched();
}

TEST_F(VrtoolRemove, RemovesNoFolder) {
    auto const day = folder.makeFolder(L"day");

    auto const run = remove(day, "yes\ndone\n");

    EXPECT_EQ("vrtool: a folder, which cannot be put back: " + quoted(day) + '\n', run.error);
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_TRUE(folder.exists(L"day"));
}

TEST_F(VrtoolRemove, LooksTheFileUpInTheCurrentFolder) {
    test::ChildStart start;
    start.program = test::besideTestProgram(L"vrtool.exe");
    start.folder = folder.path();
    test::ChildProcess const tool({L"remove", L"clip.mxf", L"--recoverable"}, start);

    EXPECT_THAT(tool.output(), testing::StartsWith(firstQuestion));
    EXPECT_EQ(4u, tool.exitCode());
    expectUntouched();
}

TEST_F(VrtoolRemove, LeavesTheFileIfItCannotBeCopied) {
    test::FailingImport<decltype(CopyFileW)> const fails("CopyFileW", FALSE, ERROR_DISK_FULL);

    auto const run = remove("yes\ndone\n");

    EXPECT_EQ(firstQuestion, run.out);
    EXPECT_THAT(run.error, testing::StartsWith("vrtool: not removed: " + quoted(copy) + ": "));
    EXPECT_THAT(run.error, HasSubstr("error 112"));
    EXPECT_EQ(1u, run.exitCode);
    expectUntouched();
}

TEST_F(VrtoolRemove, LeavesAFileThatIsOpenElsewhere) {
    test::OwnedHandle const open(CreateFileW(
        file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));

    auto const run = remove("yes\ndone\n");

    EXPECT_THAT(run.error, testing::StartsWith("vrtool: not removed: " + quoted(file) + ": "));
    EXPECT_THAT(run.error, HasSubstr("error 32"));
    EXPECT_EQ(1u, run.exitCode);
    expectUntouched();
}

TEST_F(VrtoolRemove, LeavesTheCopyIfItCannotBePutBack) {
    test::FailingImport<decltype(CopyFileW)> const fails("CopyFileW", FALSE, ERROR_DISK_FULL, 2);

    auto const run = remove("yes\nundo\n");

    EXPECT_THAT(run.error, testing::StartsWith("vrtool: not put back: " + quoted(file) + ": "));
    EXPECT_THAT(run.error, testing::EndsWith("\nthe file is in " + quoted(copy) + '\n'));
    EXPECT_EQ(1u, run.exitCode);
    expectCopyAlone();
}

TEST_F(VrtoolRemove, PutsTheFileBackIfNobodyCanBeAsked) {
    test::AnswersFile const input("yes\ndone\n");
    test::FailingImport<decltype(WriteFile)> const fails(
        "WriteFile", FALSE, ERROR_BROKEN_PIPE, 2, test::thisProgram());

    auto const run = test::runHere<RemoveCommand>("remove", {"--recoverable", test::utf8(file)});

    EXPECT_THAT(run.error, testing::StartsWith("vrtool: cannot write the output: "));
    EXPECT_EQ(firstQuestion + "put back: " + quoted(file) + '\n', run.out);
    EXPECT_EQ(4u, run.exitCode);
    expectUntouched();
}
