// `vrtool lock` as its users run it.

#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/KeyConsole.h"
#include "tests/vrtool/ToolRun.h"
#include "tests/vrtool/WorkingFolder.h"
#include "vrUtils/Files.h"

#include <gmock/gmock.h>

#include <optional>

using testing::HasSubstr;

namespace {

std::wstring const program = test::besideTestProgram(L"child_program.exe");

class VrtoolLock : public testing::Test {
  protected:
    using Words = std::vector<std::wstring>;

    static Words commandOf(std::wstring const& path, Words const& child) {
        Words all{L"lock", path, L"--", program};
        all.insert(all.end(), child.begin(), child.end());
        return all;
    }

    test::ToolRun lock(Words const& child) const {
        return test::runToolInConsole(commandOf(file, child));
    }

    // Another vrtool that has the lock while its program waits for the event.
    test::ChildProcess& holder() {
        test::ChildStart start;
        start.program = test::besideTestProgram(L"vrtool.exe");
        m_holder.emplace(commandOf(file, {L"wait", eventName}), start);
        EXPECT_TRUE(m_holder->waitForOutput("waiting"));
        return *m_holder;
    }

    void letGo() const { SetEvent(m_event.get()); }

    void expectRefusal(test::ToolRun const& run) const {
        EXPECT_EQ(
            "vrtool: Unable to lock " + test::utf8(file) +
                ": another one holds it, or the lock file cannot be written; the program was not "
                "run\n",
            run.error);
        EXPECT_EQ("", run.out);
        EXPECT_EQ(5u, run.exitCode);
    }

    // The program that waits ends, whatever becomes of the vrtool that started it.
    void TearDown() override { letGo(); }

    test::KeyConsole const console;
    test::ScratchFolder const folder;
    std::wstring const file = folder.file(L"a.mxf");

  private:
    std::wstring const eventName = L"vrtool-lock-" + std::to_wstring(GetCurrentProcessId());
    test::OwnedHandle const m_event{CreateEventW(nullptr, TRUE, FALSE, eventName.c_str())};
    std::optional<test::ChildProcess> m_holder;
};

} // namespace

TEST_F(VrtoolLock, RunsTheProgramAndLeavesNothing) {
    auto const run = lock({L"echo", L"two words", L"--"});

    EXPECT_EQ("two words\n--\n", run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_FALSE(folder.exists(L"a.mxf.lck"));
}

TEST_F(VrtoolLock, HoldsTheLockAsLongAsTheProgramRuns) {
    auto const& tool = holder();

    EXPECT_THROW(vrUtils::Files::LockFile(vr::Path::file(file)), vrUtils::Files::LockFileException);
    EXPECT_TRUE(tool.isRunning());

    letGo();
    EXPECT_EQ(0u, tool.exitCode());
    EXPECT_NO_THROW(vrUtils::Files::LockFile(vr::Path::file(file)));
}

TEST_F(VrtoolLock, IsRefusedToASecondTaker) {
    holder();

    expectRefusal(lock({L"echo", L"must not run"}));
}

TEST_F(VrtoolLock, IsGivenOnceTheHolderWasKilled) {
    holder().kill();
    EXPECT_TRUE(folder.exists(L"a.mxf.lck"));

    auto const run = lock({L"echo", L"mine"});

    EXPECT_EQ("mine\n", run.out);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_FALSE(folder.exists(L"a.mxf.lck"));
}

TEST_F(VrtoolLock, SaysThatTheProgramFailed) {
    auto const run = lock({L"exit", L"7"});

    EXPECT_EQ(
        "vrtool: " + test::utf8(program) +
            " failed: it could not be started, or ended with another code than 0\n",
        run.error);
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_FALSE(folder.exists(L"a.mxf.lck"));
}

TEST_F(VrtoolLock, SaysThatTheProgramIsMissing) {
    auto const run = test::runToolInConsole({L"lock", file, L"--", L"no such.exe"});

    EXPECT_THAT(run.error, HasSubstr("no such.exe failed: it could not be started"));
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_FALSE(folder.exists(L"a.mxf.lck"));
}

TEST_F(VrtoolLock, IsRefusedInAFolderThatIsMissing) {
    auto const missing = folder.file(L"gone\\a.mxf");

    auto const run = test::runToolInConsole(commandOf(missing, {L"echo", L"must not run"}));

    EXPECT_THAT(run.error, HasSubstr("Unable to lock " + test::utf8(missing)));
    EXPECT_EQ("", run.out);
    EXPECT_EQ(5u, run.exitCode);
}

TEST_F(VrtoolLock, LooksRelativeNamesUpInTheCurrentFolder) {
    holder();
    test::WorkingFolder const inside(folder.path());

    expectRefusal(test::runToolInConsole(commandOf(L"a.mxf", {L"echo"})));
}

TEST_F(VrtoolLock, TakesAFolder) {
    auto const path = folder.path() + L'\\';
    vrUtils::Files::LockFile const lock(vr::Path(path, vr::Path::eFolder));

    EXPECT_EQ(5u, test::runToolInConsole(commandOf(path, {L"echo"})).exitCode);
    EXPECT_TRUE(folder.exists(L".lck"));
}

TEST_F(VrtoolLock, IsHeldThroughCtrlCAsLongAsTheProgramIs) {
    test::ChildStart start;
    start.program = test::besideTestProgram(L"vrtool.exe");
    start.environment[L"VRUTILS_CHILD_SECONDS"] = L"2";
    test::ChildProcess const tool(commandOf(file, {L"deaf"}), start);
    ASSERT_TRUE(tool.waitForOutput("deaf"));

    ASSERT_TRUE(console.press());

    EXPECT_THROW(vrUtils::Files::LockFile(vr::Path::file(file)), vrUtils::Files::LockFileException);
    EXPECT_EQ(1u, tool.exitCode());
    EXPECT_FALSE(folder.exists(L"a.mxf.lck"));
}
