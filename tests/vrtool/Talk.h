#ifndef TESTS_VRTOOL_TALK_H
#define TESTS_VRTOOL_TALK_H

// A vrtool that asks, and is answered:
//
//     test::Talk talk({L"remove", path, L"--recoverable"});
//     talk.answer("yes\n");
//     ASSERT_TRUE(talk.tool().waitForOutput("a copy is in"));
//     talk.endInput();
//     EXPECT_EQ(4u, talk.tool().exitCode());

#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnedHandle.h"

#include <optional>
#include <string>
#include <vector>

namespace test {

class Talk {
  public:
    explicit Talk(std::vector<std::wstring> const& arguments) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        HANDLE readEnd = nullptr;
        HANDLE writeEnd = nullptr;
        if (!CreatePipe(&readEnd, &writeEnd, &inherited, 0)) {
            DWORD const error = GetLastError();
            throw platformFailure(error, "cannot make a pipe");
        }
        SetHandleInformation(writeEnd, HANDLE_FLAG_INHERIT, 0);
        OwnedHandle const input(readEnd);
        m_answers.reset(writeEnd);

        ChildStart start;
        start.program = besideTestProgram(L"vrtool.exe");
        start.input = input.get();
        m_tool.emplace(arguments, start);
    }

    void answer(std::string const& lines) {
        DWORD written = 0;
        WriteFile(
            m_answers.get(), lines.data(), static_cast<DWORD>(lines.size()), &written, nullptr);
    }

    void endInput() { m_answers.reset(); }

    ChildProcess& tool() { return *m_tool; }

  private:
    OwnedHandle m_answers;
    std::optional<ChildProcess> m_tool;
};

} // namespace test

#endif
