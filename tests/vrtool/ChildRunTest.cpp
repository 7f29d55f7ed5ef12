#include "tools/vrtool/ChildRun.h"
#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <system_error>

namespace {

using namespace std::chrono_literals;

std::wstring const program = test::besideTestProgram(L"child_program.exe");

// Standard output goes to a file for the life of the object.
class OutputToFile {
  public:
    explicit OutputToFile(std::wstring const& path)
        : m_before(GetStdHandle(STD_OUTPUT_HANDLE)),
          m_file(CreateFileW(
              path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr)) {
        SetStdHandle(STD_OUTPUT_HANDLE, m_file.get());
    }
    OutputToFile(OutputToFile const&) = delete;
    OutputToFile& operator=(OutputToFile const&) = delete;
    ~OutputToFile() { SetStdHandle(STD_OUTPUT_HANDLE, m_before); }

  private:
    HANDLE m_before;
    test::OwnedHandle m_file;
};

std::string outputOf(std::vector<std::wstring> const& arguments) {
    test::ScratchFolder const folder;
    {
        OutputToFile const redirected(folder.file(L"out"));
        EXPECT_EQ(0u, runWithin(test::ceiling, program, arguments));
    }
    return folder.read(L"out");
}

} // namespace

TEST(VrtoolChildRun, GivesTheExitCode) {
    EXPECT_EQ(0u, runWithin(test::ceiling, program, {L"exit", L"0"}));
    EXPECT_EQ(3000000000u, runWithin(test::ceiling, program, {L"exit", L"3000000000"}));
}

TEST(VrtoolChildRun, LetsTheOutputPassThroughAnOrdinaryHandle) {
    EXPECT_EQ("one\ntwo\n", outputOf({L"echo", L"one", L"two"}));
}

TEST(VrtoolChildRun, BringsArgumentsThroughAsTheyAre) {
    std::vector<std::wstring> const arguments{
        L"C:\\Day 1\\", L"a\"b", L"\\\"", L"\\\\\" \\\\", L"", L"100%s", L"\u00fc\U0001F3AC"};
    std::wstring expected;
    auto call = arguments;
    call.insert(call.begin(), L"echo");
    for (auto const& argument : arguments)
        expected += argument + L'\n';

    EXPECT_EQ(test::utf8(expected), outputOf(call));
}

TEST(VrtoolChildRun, EndsAProgramAtTheLimit) {
    EXPECT_EQ(std::nullopt, runWithin(50ms, program, {L"sleep"}));
}

TEST(VrtoolChildRun, EndsAProgramThatCannotBeInAJob) {
    test::OwnedHandle child;
    test::ImportHook const refuses(
        "AssignProcessToJobObject",
        [&](HANDLE, HANDLE process) -> BOOL {
            child.reset(OpenProcess(SYNCHRONIZE, FALSE, GetProcessId(process)));
            return FALSE;
        },
        test::thisProgram());

    EXPECT_EQ(std::nullopt, runWithin(50ms, program, {L"sleep"}));

    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(child.get(), 0));
}

TEST(VrtoolChildRun, LeavesNoHandleOpen) {
    runWithin(test::ceiling, program, {L"exit", L"0"});
    test::HandleLeakCheck const check;

    runWithin(test::ceiling, program, {L"exit", L"0"});
    runWithin(50ms, program, {L"sleep"});
}

TEST(VrtoolChildRun, SaysThatAProgramCannotBeStarted) {
    EXPECT_THROW(runWithin(50ms, L"C:\\no such.exe", {}), std::system_error);
}

TEST(VrtoolChildRun, KnowsThisProgram) { EXPECT_EQ(test::testProgram(), thisProgram()); }
