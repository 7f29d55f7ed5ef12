#include "vrUtils/Process/ExternalProcess.h"

#include "foundation/Platform.h"
#include "tests/process/FakeProgram.h"
#include "tests/process/StartedPrograms.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace vrUtils::Process;
using test::Logged;
using test::LoggedFormat;
using testing::ElementsAre;

namespace {

class Canceller : public ExternalProcessCallback {
  public:
    explicit Canceller(bool cancels) : m_cancels(cancels) {}

    void OnPoll() override {}

    bool ShouldCancel() override { return m_cancels; }

  private:
    bool m_cancels;
};

// A program "checker" that is run under the given module name, and the lines that come of it.
class ExternalProcessLog : public testing::Test {
  protected:
    std::vector<test::LogLine> linesOf(ExternalProcess&& process) {
        process.rawCommandLine() = L"check.exe 5%s";
        process.Execute();
        return m_recorder.lines();
    }

    std::vector<test::LogLine> block(std::wstring const& module) {
        return linesOf(ExternalProcess(L"checker", 1, module));
    }

    std::vector<test::LogLine> poll(std::wstring const& module, bool cancels = false) {
        Canceller callback(cancels);
        return linesOf(ExternalProcess(L"checker", 1, module, &callback, 2000));
    }

    std::vector<test::LogLine> start(std::wstring const& module) {
        return linesOf(ExternalProcess(L"checker", module));
    }

    // The program never ends.
    void outlive() { m_program.waitAnswers.assign(10, WAIT_TIMEOUT); }

    test::FakeProgram m_program;
    test::LogRecorder m_recorder;
};

auto const callingLine = LoggedFormat(6, L"Calling external process \"checker\"", L"Tools");
auto const commandLine = testing::AllOf(
    LoggedFormat(7, L"%.500s", L"Tools"),
    Logged(7, L"External process checker command line - check.exe 5%s", L"Tools"));
auto const successLine = LoggedFormat(6, L"Process \"checker\" completed successfully", L"Tools");

auto failureLine(wchar_t const* code) {
    return LoggedFormat(
        6, std::wstring(L"Process \"checker\" failed with error code ") + code, L"Tools");
}

auto timeoutLine(wchar_t const* module) {
    return LoggedFormat(3, L"Process \"checker\" timed out", module);
}

} // namespace

TEST_F(ExternalProcessLog, TellsTheStartAndTheSuccess) {
    EXPECT_THAT(block(L"Tools"), ElementsAre(callingLine, commandLine, successLine));
}

TEST_F(ExternalProcessLog, TellsTheSuccessOfAPolledProgram) {
    EXPECT_THAT(poll(L"Tools"), ElementsAre(callingLine, commandLine, successLine));
}

TEST_F(ExternalProcessLog, TellsTheExitCodeAsAnUnsignedNumber) {
    m_program.exitCode = 0xFFFFFFFF;

    EXPECT_THAT(block(L"Tools"), ElementsAre(callingLine, commandLine, failureLine(L"4294967295")));
}

TEST_F(ExternalProcessLog, TellsTheExitCodeOfAPolledProgram) {
    m_program.exitCode = 1000000;

    EXPECT_THAT(poll(L"Tools"), ElementsAre(callingLine, commandLine, failureLine(L"1000000")));
}

TEST_F(ExternalProcessLog, TellsTheErrorInPlaceOfAnExitCodeThatCannotBeRead) {
    test::FailingImport<decltype(GetExitCodeProcess)> const fails(
        "GetExitCodeProcess", FALSE, 1234567);

    EXPECT_THAT(block(L"Tools"), ElementsAre(callingLine, commandLine, failureLine(L"1234567")));
}

TEST_F(ExternalProcessLog, TellsATimeOut) {
    outlive();

    EXPECT_THAT(block(L"Tools"), ElementsAre(callingLine, commandLine, timeoutLine(L"Tools")));
}

TEST_F(ExternalProcessLog, TellsATimeOutOfAPolledProgram) {
    outlive();

    EXPECT_THAT(poll(L"Tools"), ElementsAre(callingLine, commandLine, timeoutLine(L"Tools")));
}

TEST_F(ExternalProcessLog, TellsAFailedWaitAsATimeOut) {
    m_program.waitAnswers = {WAIT_FAILED};

    EXPECT_THAT(block(L"Tools"), ElementsAre(callingLine, commandLine, timeoutLine(L"Tools")));
}

TEST_F(ExternalProcessLog, TellsAFailedStart) {
    test::FailingImport<decltype(CreateProcessW)> const fails("CreateProcessW", FALSE, 1234567);

    EXPECT_THAT(
        block(L"Tools"),
        ElementsAre(
            callingLine, commandLine,
            LoggedFormat(3, L"Failed to start process \"checker\". Error 1234567", L"Tools")));
}

TEST_F(ExternalProcessLog, TellsNothingOfACancel) {
    outlive();

    EXPECT_THAT(poll(L"Tools", true), ElementsAre(callingLine, commandLine));
}

TEST_F(ExternalProcessLog, TellsOnlyTheStartOfAProgramThatIsNotWaitedFor) {
    EXPECT_THAT(start(L"Tools"), ElementsAre(callingLine, commandLine));
}

TEST_F(ExternalProcessLog, WithoutAModuleIsSilentOnSuccess) {
    EXPECT_THAT(block(L""), testing::IsEmpty());
    EXPECT_THAT(poll(L""), testing::IsEmpty());
    EXPECT_THAT(start(L""), testing::IsEmpty());
}

TEST_F(ExternalProcessLog, WithoutAModuleIsSilentOnFailure) {
    m_program.exitCode = 5;

    EXPECT_THAT(block(L""), testing::IsEmpty());
    EXPECT_THAT(poll(L""), testing::IsEmpty());
}

TEST_F(ExternalProcessLog, WithoutAModuleIsSilentOnAFailedStart) {
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND, test::everyCall);

    EXPECT_THAT(block(L""), testing::IsEmpty());
    EXPECT_THAT(poll(L""), testing::IsEmpty());
    EXPECT_THAT(start(L""), testing::IsEmpty());
}

TEST_F(ExternalProcessLog, WithoutAModuleIsSilentOnACancel) {
    outlive();

    EXPECT_THAT(poll(L"", true), testing::IsEmpty());
}

TEST_F(ExternalProcessLog, WithoutAModuleTellsATimeOutAllTheSame) {
    outlive();

    EXPECT_THAT(block(L""), ElementsAre(timeoutLine(L"")));
    m_recorder.clear();
    EXPECT_THAT(poll(L""), ElementsAre(timeoutLine(L"")));
}

TEST_F(ExternalProcessLog, TellsTheStartBeforeItHappens) {
    std::size_t linesAtTheStart = 0;
    test::ImportHook<decltype(CreateProcessW)> const hook("CreateProcessW", [&](auto...) -> BOOL {
        linesAtTheStart = m_recorder.lines().size();
        return FALSE;
    });

    block(L"Tools");

    EXPECT_EQ(2u, linesAtTheStart);
}

TEST_F(ExternalProcessLog, PercentSignsOfTheNameAreDirectives) {
    std::wstring const name = L"100%d %s \"%n\"";
    auto const line = [&](int level, std::wstring const& before, std::wstring const& after) {
        return LoggedFormat(level, before + name + after, L"Tools");
    };
    m_program.exitCode = 7;
    m_program.waitAnswers = {WAIT_OBJECT_0, WAIT_TIMEOUT};
    ExternalProcess const process(name, 1, L"Tools");

    process.Execute();
    process.Execute();

    EXPECT_THAT(
        m_recorder.lines(),
        ElementsAre(
            line(6, L"Calling external process \"", L"\""), LoggedFormat(7, L"%.500s", L"Tools"),
            line(6, L"Process \"", L"\" failed with error code 7"),
            line(6, L"Calling external process \"", L"\""), LoggedFormat(7, L"%.500s", L"Tools"),
            line(3, L"Process \"", L"\" timed out")));
}

TEST_F(ExternalProcessLog, PercentSignsOfTheNameAreDirectivesOfAFailedStart) {
    test::FailingImport<decltype(CreateProcessW)> const fails("CreateProcessW", FALSE, 2);

    ExternalProcess(L"5%s", 1, L"Tools").Execute();

    EXPECT_THAT(
        m_recorder.lines().back(),
        LoggedFormat(3, L"Failed to start process \"5%s\". Error 2", L"Tools"));
}

TEST_F(ExternalProcessLog, PercentSignsOfTheNameMeanNothingInTheCommandLine) {
    ExternalProcess process(L"5%s", 1, L"Tools");
    process.addRawArg(L"100%d");

    process.Execute();

    EXPECT_EQ(L"External process 5%s command line - 100%d", m_recorder.lines().at(1).text());
}

TEST_F(ExternalProcessLog, LongestNameIsToldInFull) {
    std::wstring const name(32767, L'n');

    ExternalProcess(name, 1, L"Tools").Execute();

    auto const lines = m_recorder.lines();
    ASSERT_EQ(3u, lines.size());
    EXPECT_EQ(L"Calling external process \"" + name + L"\"", lines[0].format);
    EXPECT_EQ(L"Process \"" + name + L"\" completed successfully", lines[2].format);
}

// The value is longer than what the directive lets through.
TEST_F(ExternalProcessLog, CommandLineIsCutAndRunWhole) {
    std::wstring const head = L"External process checker command line - ";
    ExternalProcess process(L"checker", 1, L"Tools");
    process.addRawArg(std::wstring(500 - head.size(), L'a') + std::wstring(400, L'b'));

    process.Execute();

    auto const line = m_recorder.lines().at(1);
    EXPECT_EQ(L"%.500s", line.format);
    EXPECT_EQ(head + std::wstring(500 - head.size(), L'a'), line.text());
    EXPECT_EQ(process.commandLine(), m_program.starts().at(0).line);
}

TEST_F(ExternalProcessLog, CommandLineOfFiveHundredCharactersIsToldInFull) {
    std::wstring const head = L"External process checker command line - ";
    ExternalProcess process(L"checker", 1, L"Tools");
    process.addRawArg(std::wstring(500 - head.size(), L'a'));

    process.Execute();

    EXPECT_EQ(head + process.commandLine(), m_recorder.lines().at(1).text());
}

TEST(ExternalProcessLogChild, TellsTheRealExitCode) {
    ExternalProcess process(L"checker", 20, L"Tools");
    test::addChild(process, {L"exit", L"0xC0000005"});
    test::LogRecorder const recorder;

    EXPECT_EQ(ExternalProcessFailed, process.Execute());

    EXPECT_EQ(L"Process \"checker\" failed with error code 3221225477", recorder.texts().back());
}
