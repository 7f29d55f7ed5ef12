#include "vrUtils/Process/ExternalProcess.h"

#include "foundation/Platform.h"
#include "tests/process/FakeProgram.h"
#include "tests/process/StartedPrograms.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Campaign.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

using namespace vrUtils::Process;

namespace {

// Lets so many polls pass, and cancels at the next.
class PatientCallback : public ExternalProcessCallback {
  public:
    explicit PatientCallback(std::size_t polls) : m_polls(polls) {}

    void OnPoll() override { --m_polls; }

    bool ShouldCancel() override { return m_polls == 0; }

  private:
    std::size_t m_polls;
};

// One run of a program: what is made of it, and what must come of that.
struct Run {
    std::int32_t (*execute)(test::Campaign&);
    std::int32_t result;
    bool starts;
};

std::int32_t execute(ExternalProcess&& process, std::vector<std::wstring> const& arguments) {
    test::addChild(process, arguments);
    return process.Execute();
}

std::int32_t succeed(test::Campaign&) {
    return execute(ExternalProcess(L"name", 20, L"Campaign"), {L"exit", L"0"});
}

std::int32_t endBadly(test::Campaign& campaign) {
    auto const code = std::to_wstring(1 + campaign.random()() / 2);
    return execute(ExternalProcess(L"name", 20, L"Campaign"), {L"exit", code});
}

std::int32_t endBadlyWhilePolled(test::Campaign& campaign) {
    PatientCallback callback(static_cast<std::size_t>(-1));
    auto const interval = static_cast<std::uint32_t>(campaign.below(5));
    return execute(ExternalProcess(L"name", 20, L"Campaign", &callback, interval), {L"exit", L"1"});
}

std::int32_t timeOut(test::Campaign&) {
    return execute(
        ExternalProcess(L"name", test::noTimeAtAll, L"Campaign"), {L"into", L"NUL", L"sleep"});
}

std::int32_t timeOutWhilePolled(test::Campaign&) {
    PatientCallback callback(static_cast<std::size_t>(-1));
    return execute(
        ExternalProcess(L"name", test::noTimeAtAll, L"", &callback, 1),
        {L"into", L"NUL", L"sleep"});
}

std::int32_t cancel(test::Campaign& campaign) {
    PatientCallback callback(campaign.below(4));
    return execute(
        ExternalProcess(L"name", 0, L"Campaign", &callback, 0), {L"into", L"NUL", L"sleep"});
}

std::int32_t doNotWait(test::Campaign&) {
    return execute(ExternalProcess(L"name", L"Campaign"), {L"into", L"NUL", L"sleep"});
}

std::int32_t failToStart(test::Campaign&) {
    ExternalProcess process(L"name", 20, L"Campaign");
    process.addArg(L"vrUtilsTests-no-such-program");
    return process.Execute();
}

constexpr std::array runs{
    Run{succeed, 0, true},
    Run{endBadly, ExternalProcessFailed, true},
    Run{endBadlyWhilePolled, ExternalProcessFailed, true},
    Run{timeOut, ExternalProcessTimedOut, true},
    Run{timeOutWhilePolled, ExternalProcessTimedOut, true},
    Run{cancel, ExternalProcessCancelled, true},
    Run{doNotWait, 0, true},
    Run{failToStart, ExternalProcessFailed, false},
};

} // namespace

TEST(ExternalProcessCampaign, MixedRunsGiveTheirResultsAndLeaveNoHandle) {
    test::LogRecorder const recorder;
    test::StartedPrograms started;
    test::Campaign campaign(100);
    for (auto const& run : runs)
        run.execute(campaign);
    started.endAll();
    test::HandleLeakCheck const check;

    while (campaign.nextRound()) {
        auto const& run = runs[campaign.below(runs.size())];

        ASSERT_EQ(run.result, run.execute(campaign)) << campaign;

        ASSERT_EQ(run.starts ? 1u : 0u, started.count()) << campaign;
        started.endAll();
    }
}

TEST(ExternalProcessAllocation, FailingLeavesNothingOpen) {
    test::LogRecorder const recorder;
    test::FakeProgram program;
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] {
        program.exitCode = 1;
        ExternalProcess process(L"a name of some length", 1, L"a module of some length");
        process.addArg(L"C:\\folder\\a tool with a long name.exe");
        process.SetWorkingDirectory(L"C:\\a folder with a long name");
        process.SetEnv(L"a variable of some length", L"a value of some length");
        process.Execute();
    });

    EXPECT_GT(failed, 10u);
}

TEST(ExternalProcessAllocation, FailingInTheReportOfATimeOutLeavesNothingOpen) {
    test::LogRecorder const recorder;
    test::FakeProgram program;
    PatientCallback callback(static_cast<std::size_t>(-1));
    ExternalProcess const process(L"a name of some length", 1, L"", &callback, 1001);
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] {
        program.waitAnswers = {WAIT_TIMEOUT};
        process.Execute();
    });

    EXPECT_GT(failed, 0u);
}

TEST(ExternalProcessAllocation, FailingInTheReportOfAFailedStartLeavesNothingOpen) {
    test::LogRecorder const recorder;
    ExternalProcess const process(L"a name of some length", 1, L"a module of some length");
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND, test::everyCall);
    test::HandleLeakCheck const check;

    EXPECT_GT(test::failEachAllocation([&] { process.Execute(); }), 0u);
}

TEST(ExternalProcessAllocation, EverythingIsReleasedAfterARun) {
    test::LogRecorder const recorder;
    test::FakeProgram program;
    ExternalProcess process(L"a name of some length", 1, L"a module of some length");
    process.addArg(L"C:\\folder\\a tool with a long name.exe");
    process.SetEnv(L"a variable of some length", L"a value of some length");
    process.Execute();
    test::AllocationCounter const counter;

    process.Execute();

    EXPECT_GT(counter.allocations(), 0u);
    EXPECT_EQ(counter.allocations(), counter.releases());
}

TEST(ExternalProcessAllocation, AssignedObjectsReleaseEachProgramOnce) {
    test::AllocationCounter const counter;
    {
        ExternalProcess first(L"a name of some length", 1, L"a module of some length");
        ExternalProcess second(L"another name of some length", L"another module of some length");
        first.SetWorkingDirectory(L"C:\\a folder with a long name");
        first = second;
        second = first;
    }

    EXPECT_GT(counter.allocations(), 0u);
    EXPECT_EQ(counter.allocations(), counter.releases());
}
