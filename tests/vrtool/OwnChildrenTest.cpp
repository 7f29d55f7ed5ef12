#include "tools/vrtool/OwnChildren.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <system_error>

TEST(VrtoolOwnChildren, AreThoseThatRun) {
    test::ChildProcess child({L"sleep"});
    EXPECT_EQ(1u, ownChildren().count(child.id()));

    child.kill();

    EXPECT_EQ(0u, ownChildren().count(child.id()));
}

TEST(VrtoolOwnChildren, AreNotThisProgramNorItsParents) {
    auto const children = ownChildren();

    EXPECT_EQ(0u, children.count(GetCurrentProcessId()));
    EXPECT_EQ(0u, children.count(0));
}

TEST(VrtoolOwnChildren, LeaveNoHandleOpen) {
    ownChildren();
    test::HandleLeakCheck const check;

    ownChildren();
}

TEST(VrtoolOwnChildren, CannotAlwaysBeListed) {
    test::FailingImport<decltype(CreateToolhelp32Snapshot)> const fails(
        "CreateToolhelp32Snapshot", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED, 1,
        test::thisProgram());

    EXPECT_THROW(ownChildren(), std::system_error);
}
