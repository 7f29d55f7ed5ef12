// What becomes of a lock file when something goes wrong on the way.

#include "tests/files/LockFiles.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/OwnedHandle.h"

#include <initializer_list>
#include <new>
#include <optional>

using namespace vrUtils::Files;
using namespace std::string_literals;
using test::FailingImport;

namespace {

class LockFileFailure : public LockFiles {
  protected:
    bool existsUnlocked() const {
        auto const exists = m_folder.exists(L"clip.mxf.lck");
        return exists && (take(), true);
    }

    ComputerNamed m_computer{L"VR-7"};
};

} // namespace

TEST_F(LockFileFailure, OfTheOpenIsTheSameForEveryPlatformError) {
    for (auto const error : std::initializer_list<DWORD>{
             ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_WRITE_PROTECT, ERROR_DISK_FULL,
             ERROR_BAD_NETPATH, ERROR_FILENAME_EXCED_RANGE}) {
        FailingImport<decltype(CreateFileW)> const fails(
            "CreateFileW", INVALID_HANDLE_VALUE, error);

        EXPECT_THAT([&] { take(); }, FailsToLock(m_text)) << error;
    }

    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockFileFailure, OfTheOpenClosesNothing) {
    FailingImport<decltype(CreateFileW)> const fails(
        "CreateFileW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    test::ImportHook const closes("CloseHandle", [](HANDLE) -> BOOL { return TRUE; });

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_EQ(0u, closes.calls());
}

TEST_F(LockFileFailure, NamesTheProtectedFileWhoseFolderIsMissing) {
    auto const text = m_folder.file(L"no folder\\clip.mxf");

    EXPECT_THAT([&] { LockFile const lock(vr::Path::file(text)); }, FailsToLock(text));
}

TEST_F(LockFileFailure, IsCaughtAsTheBaseOfTheFamily) {
    LockFile const lock(m_path);

    EXPECT_THROW(take(), vrException);
}

TEST_F(LockFileFailure, OfAFullDiskLeavesAnEmptyLockFileThatNobodyHolds) {
    {
        FailingImport<decltype(WriteFile)> const full("WriteFile", FALSE, ERROR_DISK_FULL);
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    }

    EXPECT_EQ("", m_folder.read(L"clip.mxf.lck"));
    EXPECT_TRUE(existsUnlocked());
}

TEST_F(LockFileFailure, OfTheRangeLeavesALockFileThatNobodyHolds) {
    {
        FailingImport<decltype(LockFileEx)> const fails("LockFileEx", FALSE, ERROR_LOCK_VIOLATION);
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    }

    EXPECT_EQ("V\0R\0-\0007\0"s, m_folder.read(L"clip.mxf.lck"));
    EXPECT_TRUE(existsUnlocked());
}

TEST_F(LockFileFailure, RunsNoStepOfTheRelease) {
    FailingImport<decltype(LockFileEx)> const fails("LockFileEx", FALSE, ERROR_LOCK_VIOLATION);
    test::ImportHook<decltype(UnlockFile)> const unlocks(
        "UnlockFile", [&](auto... arguments) { return unlocks.original()(arguments...); });
    test::ImportHook<decltype(DeleteFileW)> const deletes(
        "DeleteFileW", [&](auto... arguments) { return deletes.original()(arguments...); });

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_EQ(0u, unlocks.calls());
    EXPECT_EQ(0u, deletes.calls());
}

TEST_F(LockFileFailure, ClosesTheHandle) {
    EXPECT_NO_THROW(take());
    test::HandleLeakCheck const check;
    {
        FailingImport<decltype(WriteFile)> const full("WriteFile", FALSE, ERROR_DISK_FULL);
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    }

    FailingImport<decltype(LockFileEx)> const fails("LockFileEx", FALSE, ERROR_LOCK_VIOLATION);
    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
}

TEST_F(LockFileFailure, IsNotSeenInAWriteThatComesShort) {
    test::ImportHook const shortWrite(
        "WriteFile", [](HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) -> BOOL {
            *written = 1;
            return TRUE;
        });

    EXPECT_NO_THROW(take());
}

TEST_F(LockFileFailure, ToUnlockStillClosesAndDeletes) {
    FailingImport<decltype(UnlockFile)> const fails("UnlockFile", FALSE, ERROR_NOT_LOCKED);
    test::HandleLeakCheck const check;

    take();

    EXPECT_EQ(1u, fails.calls());
    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockFileFailure, ToCloseIsNotReportedAndStillDeletes) {
    test::ImportHook const closes("CloseHandle", [](HANDLE handle) -> BOOL {
        CloseHandle(handle);
        SetLastError(ERROR_IO_DEVICE);
        return FALSE;
    });

    take();

    EXPECT_EQ(1u, closes.calls());
    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockFileFailure, ToDeleteLeavesALockFileThatNobodyHolds) {
    {
        FailingImport<decltype(DeleteFileW)> const fails("DeleteFileW", FALSE, ERROR_ACCESS_DENIED);
        test::HandleLeakCheck const check;
        take();
    }

    EXPECT_TRUE(existsUnlocked());
}

TEST_F(LockFileFailure, OfAFolderInItsPlaceLeavesTheFolder) {
    m_folder.makeFolder(L"clip.mxf.lck");

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_TRUE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockFileFailure, OfALockFileThatIsHeldByAnOutsiderIsTheSame) {
    m_folder.write(L"clip.mxf.lck", "stale");
    test::OwnedHandle const outsider(CreateFileW(
        m_lockText.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_EQ("stale", m_folder.read(L"clip.mxf.lck"));
}

// The administrator of the machine that these tests run on may replace a read-only file.
TEST_F(LockFileFailure, OfAReadOnlyLockFileLeavesItAndIsToldAsEver) {
    m_folder.write(L"clip.mxf.lck", "stale");
    SetFileAttributesW(m_lockText.c_str(), FILE_ATTRIBUTE_READONLY);
    test::HandleLeakCheck const check;

    try {
        LockFile const lock(m_path);
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    } catch (LockFileException const& failure) {
        EXPECT_EQ(L"Unable to lock " + m_text, failure.message());
        EXPECT_EQ("stale", m_folder.read(L"clip.mxf.lck"));
    }
}

TEST_F(LockFileFailure, OfMemoryPassesThroughTheConstructor) {
    take();
    unsigned failures = 0;
    for (;; ++failures) {
        test::HandleLeakCheck const check;
        test::AllocationCounter counter;
        counter.failAt(failures + 1);
        try {
            LockFile const lock(m_path);
            counter.failNone();
            break;
        } catch (std::bad_alloc const&) {
        }
        counter.failNone();
        EXPECT_NO_THROW(take()) << "after failure " << failures;
    }

    EXPECT_GT(failures, 7u);
}

// Of a failure of the platform and one of memory, which of the two comes out is open.
TEST_F(LockFileFailure, OfMemoryIsNothingElseWhileTheLockIsRefused) {
    LockFile const lock(m_path);
    for (unsigned number = 1; number < 100; ++number) {
        test::HandleLeakCheck const check;
        test::AllocationCounter counter;
        counter.failAt(number);
        try {
            LockFile const second(m_path);
            ADD_FAILURE() << "two hold the lock";
        } catch (std::bad_alloc const&) {
        } catch (LockFileException const& failure) {
            counter.failNone();
            EXPECT_EQ(L"Unable to lock " + m_text, failure.message());
        }
        if (counter.allocations() < number)
            return;
    }
    ADD_FAILURE() << "the allocations have no end";
}

TEST_F(LockFileFailure, OfMemoryNeverLeavesTheDestructorAndTheLockIsFree) {
    take();
    for (unsigned number = 1; number < 100; ++number) {
        test::HandleLeakCheck const check;
        std::optional<LockFile> lock(std::in_place, m_path);
        test::AllocationCounter counter;
        counter.failAt(number);

        lock.reset();

        auto const failed = counter.allocations() >= number;
        counter.failNone();
        EXPECT_NO_THROW(take()) << "after failure " << number;
        if (!failed)
            return;
    }
    ADD_FAILURE() << "the allocations have no end";
}

TEST_F(LockFileFailure, NeverLeavesADestructorThatAnExceptionRuns) {
    FailingImport<decltype(UnlockFile)> const unlock("UnlockFile", FALSE, ERROR_NOT_LOCKED);
    FailingImport<decltype(DeleteFileW)> const remove("DeleteFileW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_THROW(
        {
            LockFile const lock(m_path);
            throw 7;
        },
        int);

    EXPECT_EQ(1u, remove.calls());
}
