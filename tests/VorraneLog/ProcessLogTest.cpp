#include "VorraneLog/ProcessLog.h"

#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

using testing::EndsWith;
using testing::IsEmpty;
using VorraneLog::ProcessLog;

TEST(ProcessLog, LineThatCannotWaitForItsTurnIsLeftOut) {
    test::ScratchFolder const folder;
    ProcessLog log({6, folder.file(L"a.log")});
    {
        test::FailingImport<decltype(WaitForSingleObject)> const fails(
            "WaitForSingleObject", WAIT_FAILED, ERROR_INVALID_HANDLE, 1, test::thisProgram());
        log.write("left out");
        EXPECT_EQ(1u, fails.calls());
    }
    EXPECT_THAT(folder.names(), IsEmpty());

    log.write("text");

    EXPECT_THAT(folder.read(L"a.log"), EndsWith("\ttext\r\n"));
}

TEST(ProcessLog, WithoutALockWritesNothing) {
    test::ScratchFolder const folder;
    test::FailingImport<decltype(CreateMutexW)> const fails(
        "CreateMutexW", nullptr, ERROR_NOT_ENOUGH_MEMORY, 1, test::thisProgram());
    ProcessLog log({6, folder.file(L"a.log")});

    log.write("text");

    EXPECT_THAT(folder.names(), IsEmpty());
}
