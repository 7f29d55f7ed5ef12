#include "vrUtils/Process/ExternalProcess.h"

#include "foundation/Platform.h"
#include "tests/process/FakeProgram.h"
#include "tests/process/StartedPrograms.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

using namespace std::string_literals;
using vrUtils::Process::ExternalProcess;
using vrUtils::Process::ExternalProcessFailed;

namespace {

template <typename Structure>
bool isZero(Structure const& structure) {
    Structure const zero{};
    return std::memcmp(&structure, &zero, sizeof zero) == 0;
}

class ExternalProcessStart : public testing::Test {
  protected:
    test::StartCall const& execute() {
        EXPECT_EQ(0, m_process.Execute());
        EXPECT_FALSE(m_program.starts().empty());
        return m_program.starts().back();
    }

    test::FakeProgram m_program;
    ExternalProcess m_process{L"name", 0, L""};
};

// With real programs, whose standard output goes to a file.
class ExternalProcessChild : public testing::Test {
  protected:
    // The lines of what the child program prints when it does this.
    std::vector<std::string> linesOf(std::vector<std::wstring> arguments) {
        arguments.insert(arguments.begin(), {L"into", m_folder.file(L"out.txt")});
        test::addChild(m_process, arguments);
        EXPECT_EQ(0, m_process.Execute());

        std::istringstream output(m_folder.read(L"out.txt"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(output, line);)
            lines.push_back(line);
        return lines;
    }

    test::ScratchFolder m_folder;
    ExternalProcess m_process{L"name", 20, L""};
};

bool isOfTheTest(std::string const& variable) { return variable.rfind("VRUTILS_", 0) == 0; }

} // namespace

TEST_F(ExternalProcessStart, NamesTheProgramOnTheLineOnly) {
    m_process.rawCommandLine() = L"C:\\tool.exe  \"a\" ";

    auto const& start = execute();

    EXPECT_EQ(nullptr, start.application);
    EXPECT_EQ(L"C:\\tool.exe  \"a\" ", start.line);
}

TEST_F(ExternalProcessStart, GivesACopyOfTheLineThatMayBeWrittenTo) {
    m_process.rawCommandLine() = L"C:\\tool.exe with a line that is longer than a few characters";
    auto const line = m_process.commandLine();

    auto const* const given = execute().lineAddress;

    EXPECT_NE(m_process.commandLine().c_str(), given);
    EXPECT_EQ(line, m_process.commandLine());
}

TEST_F(ExternalProcessStart, GivesAnEmptyLineThatMayBeWrittenTo) {
    EXPECT_EQ(L"", execute().line);
    EXPECT_EQ(L"", m_process.commandLine());
}

TEST_F(ExternalProcessStart, AsksForNoMoreThanAWideEnvironment) {
    auto const& start = execute();

    EXPECT_FALSE(start.hasAttributes);
    EXPECT_EQ(FALSE, start.inheritsHandles);
    EXPECT_EQ(0x400u, start.flags);
}

TEST_F(ExternalProcessStart, GivesZeroedStructures) {
    auto const& start = execute();

    EXPECT_EQ(0u, start.startup.cb);
    EXPECT_TRUE(isZero(start.startup));
    EXPECT_TRUE(isZero(start.process));
}

TEST_F(ExternalProcessStart, PassesNoFolderAndNoEnvironmentUnlessTheyAreSet) {
    auto const& start = execute();

    EXPECT_EQ(std::nullopt, start.folder);
    EXPECT_EQ(std::nullopt, start.environment);
}

TEST_F(ExternalProcessStart, PassesTheLastFolderThatWasSet) {
    m_process.SetWorkingDirectory(L"C:\\first");
    m_process.SetWorkingDirectory(L"C:\\second folder\\");

    EXPECT_EQ(L"C:\\second folder\\", execute().folder);
}

TEST_F(ExternalProcessStart, PassesNoFolderAfterAnEmptyOne) {
    m_process.SetWorkingDirectory(L"C:\\first");
    m_process.SetWorkingDirectory(L"");

    EXPECT_EQ(std::nullopt, execute().folder);
}

TEST_F(ExternalProcessStart, EnvironmentOfOneVariableEndsWithTwoZeros) {
    m_process.SetEnv(L"KEY", L"a value");

    EXPECT_EQ(L"KEY=a value\0\0"s, execute().environment);
}

TEST_F(ExternalProcessStart, EnvironmentIsInTheOrderOfCodeUnits) {
    m_process.SetEnv(L"\u00E4", L"4");
    m_process.SetEnv(L"b", L"3");
    m_process.SetEnv(L"C", L"2");
    m_process.SetEnv(L"A1", L"1");
    m_process.SetEnv(L"A", L"0");

    EXPECT_EQ(L"A=0\0A1=1\0C=2\0b=3\0\u00E4=4\0\0"s, execute().environment);
}

TEST_F(ExternalProcessStart, LastValueOfAVariableWins) {
    m_process.SetEnv(L"KEY", L"first");
    m_process.SetEnv(L"OTHER", L"");
    m_process.SetEnv(L"KEY", L"second");

    EXPECT_EQ(L"KEY=second\0OTHER=\0\0"s, execute().environment);
}

TEST_F(ExternalProcessStart, VariablesThatDifferInCaseAreTwo) {
    m_process.SetEnv(L"key", L"lower");
    m_process.SetEnv(L"KEY", L"upper");

    EXPECT_EQ(L"KEY=upper\0key=lower\0\0"s, execute().environment);
}

TEST_F(ExternalProcessStart, ClosesBothHandlesOnce) {
    execute();

    EXPECT_THAT(
        m_program.closed(), testing::UnorderedElementsAre(m_program.process(), m_program.thread()));
}

TEST_F(ExternalProcessStart, ClosesNothingWhereNothingWasStarted) {
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(ExternalProcessFailed, m_process.Execute());

    EXPECT_THAT(m_program.closed(), testing::IsEmpty());
    EXPECT_THAT(m_program.waits(), testing::IsEmpty());
}

TEST_F(ExternalProcessStart, CloseThatFailsChangesNothing) {
    test::FailingImport<decltype(CloseHandle)> const fails(
        "CloseHandle", FALSE, ERROR_INVALID_HANDLE, test::everyCall);

    EXPECT_EQ(0, m_process.Execute());

    EXPECT_EQ(2u, fails.calls());
    // What the library could not close here.
    CloseHandle(m_program.process());
    CloseHandle(m_program.thread());
}

TEST_F(ExternalProcessStart, RunsTheSameLineAgain) {
    m_process.rawCommandLine() = L"C:\\tool.exe";
    m_process.SetEnv(L"KEY", L"value");
    ExternalProcess const& unchanged = m_process;

    EXPECT_EQ(0, unchanged.Execute());
    m_program.exitCode = 1;
    EXPECT_EQ(ExternalProcessFailed, unchanged.Execute());

    ASSERT_EQ(2u, m_program.starts().size());
    for (auto const& start : m_program.starts()) {
        EXPECT_EQ(L"C:\\tool.exe", start.line);
        EXPECT_EQ(L"KEY=value\0\0"s, start.environment);
    }
}

TEST_F(ExternalProcessStart, AssignedObjectRunsAllThatTheOtherWasGiven) {
    ExternalProcess other(L"other", 7, L"");
    m_process = other;
    other.addArg(L"tool.exe");
    other.SetEnv(L"KEY", L"value");
    other.SetWorkingDirectory(L"C:\\folder");

    auto const& start = execute();

    EXPECT_EQ(L"tool.exe", start.line);
    EXPECT_EQ(L"KEY=value\0\0"s, start.environment);
    EXPECT_EQ(L"C:\\folder", start.folder);
    EXPECT_THAT(m_program.waits(), testing::ElementsAre(7000u));
}

TEST_F(ExternalProcessChild, ReceivesItsArguments) {
    EXPECT_THAT(
        linesOf({L"echo", L"one", L"two words", L"C:\\folder\\"}),
        testing::ElementsAre("one", "two words", "C:\\folder\\"));
}

TEST_F(ExternalProcessChild, ReceivesTheLineAsItStands) {
    auto const lines = linesOf({L"command", L"a\"b", L"", L"c|d\\"});

    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(test::utf8(m_process.commandLine()), lines[0]);
}

// The most that the platform promises, which counts the zero at the end.
TEST_F(ExternalProcessChild, ReceivesTheLongestLine) {
    auto const start = test::quotedArgument(test::besideTestProgram(L"child_program.exe")) +
                       L" into " + m_folder.file(L"out.txt") + L" command ";
    m_process.rawCommandLine() = start + std::wstring(32766 - start.size(), L'x');

    EXPECT_EQ(0, m_process.Execute());

    EXPECT_EQ(test::utf8(m_process.commandLine()) + "\n", m_folder.read(L"out.txt"));
}

TEST_F(ExternalProcessChild, StartsInTheFolderThatWasSet) {
    auto const folder = m_folder.makeFolder(L"a folder");
    m_process.SetWorkingDirectory(folder);

    EXPECT_THAT(linesOf({L"folder"}), testing::ElementsAre(test::utf8(folder)));
}

TEST_F(ExternalProcessChild, StartsInTheFolderOfThisProcessOtherwise) {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetCurrentDirectoryW(MAX_PATH, folder.data()));

    EXPECT_THAT(linesOf({L"folder"}), testing::ElementsAre(test::utf8(folder)));
}

TEST_F(ExternalProcessChild, InheritsTheEnvironmentIfNoneIsSet) {
    SetEnvironmentVariableW(L"VRUTILS_INHERITED", L"from the test");

    auto const lines = linesOf({L"environment", L"VRUTILS_INHERITED"});

    SetEnvironmentVariableW(L"VRUTILS_INHERITED", nullptr);
    EXPECT_THAT(lines, testing::ElementsAre("=from the test"));
}

TEST_F(ExternalProcessChild, LosesTheInheritedEnvironmentIfOneIsSet) {
    SetEnvironmentVariableW(L"VRUTILS_INHERITED", L"from the test");
    m_process.SetEnv(L"VRUTILS_SET", L"a value=with that");

    auto const lines = linesOf(
        {L"environment", L"VRUTILS_SET", L"VRUTILS_INHERITED", L"PATH", L"USERNAME", L"TEMP"});

    SetEnvironmentVariableW(L"VRUTILS_INHERITED", nullptr);
    EXPECT_THAT(
        lines, testing::ElementsAre("=a value=with that", "unset", "unset", "unset", "unset"));
}

// The platform adds a few of its own.
TEST_F(ExternalProcessChild, SeesTheVariablesInOrder) {
    m_process.SetEnv(L"VRUTILS_b", L"3");
    m_process.SetEnv(L"VRUTILS_C", L"2");
    m_process.SetEnv(L"VRUTILS_A", L"1");
    m_process.SetEnv(L"VRUTILS_a", L"");

    std::vector<std::string> variables;
    for (auto const& variable : linesOf({L"variables"}))
        if (isOfTheTest(variable))
            variables.push_back(variable);

    EXPECT_THAT(
        variables, testing::ElementsAre("VRUTILS_A=1", "VRUTILS_C=2", "VRUTILS_a=", "VRUTILS_b=3"));
}

TEST_F(ExternalProcessChild, IsFoundBesideThisProgram) {
    m_process.addRawArg(L"child_program exit 0");

    EXPECT_EQ(0, m_process.Execute());
}

TEST_F(ExternalProcessChild, FailsWhereThereIsNoProgram) {
    ExternalProcess process(L"name", 20, L"Module");
    process.addArg(L"vrUtilsTests-no-such-program");
    test::LogRecorder const recorder;

    EXPECT_EQ(ExternalProcessFailed, process.Execute());

    EXPECT_THAT(
        recorder.lines(), testing::Contains(test::Logged(
                              3, L"Failed to start process \"name\". Error 2", L"Module")));
}

TEST_F(ExternalProcessChild, FailsWhereTheFolderIsMissing) {
    ExternalProcess process(L"name", 20, L"Module");
    test::addChild(process, {L"exit", L"0"});
    process.SetWorkingDirectory(m_folder.file(L"missing"));
    test::LogRecorder const recorder;

    EXPECT_EQ(ExternalProcessFailed, process.Execute());

    EXPECT_THAT(
        recorder.lines(), testing::Contains(test::Logged(
                              3, L"Failed to start process \"name\". Error 267", L"Module")));
}
