#ifndef TESTS_SUPPORT_CHILDACTION_H
#define TESTS_SUPPORT_CHILDACTION_H

// A part of the test program that runs in a process of its own, for behaviour that hangs, crashes
// or ends the process, and for what two processes do to one another:
//
//     test::ChildAction const takeLock(L"take lock", [](auto const& arguments) {
//         LockFile const lock(vr::Path::file(arguments.at(0)));
//         std::puts("taken");
//         std::fflush(stdout);
//         Sleep(INFINITE);
//         return 0;
//     });
//
//     TEST(LockFile, IsRefusedWhileAnotherProcessHoldsIt) {
//         auto const child = takeLock.start({path});
//         ASSERT_TRUE(child->waitForOutput("taken"));
//         ...
//
// Such an object stands outside all functions. The process ends with what the action returns, and
// after 30 seconds in any case.

#include "tests/support/ChildProcess.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test {

class ChildAction {
  public:
    using Arguments = std::vector<std::wstring>;
    using Function = int (*)(Arguments const&);

    // @param name one for each action of a test program
    ChildAction(std::wstring name, Function function);
    ChildAction(ChildAction const&) = delete;
    ChildAction& operator=(ChildAction const&) = delete;

    // Starts this program again, to do nothing but the action.
    std::unique_ptr<ChildProcess>
    start(Arguments const& arguments = {}, ChildStart start = {}) const;

    // Carries out the action that this process was started for.
    // @return its result; none if the process was not started by `start`
    static std::optional<int> runRequested();

  private:
    std::wstring m_name;
};

} // namespace test

#endif
