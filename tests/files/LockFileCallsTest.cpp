// What a lock file asks of the platform, with which values, and in which order.

#include "tests/files/LockFiles.h"
#include "tests/files/Outsider.h"
#include "tests/support/LogRecorder.h"

#include <cstring>
#include <optional>
#include <utility>

using namespace vrUtils::Files;
using namespace std::string_literals;
using testing::ElementsAre;

namespace {

// Each call on the lock file, its values and how many lines were logged ahead of it.
class LockFileCalls : public LockFiles {
  protected:
    struct Open {
        std::wstring name;
        DWORD access, share, disposition, flags;
        void const* security;
        void const* model;
    };

    struct Write {
        HANDLE handle;
        std::string bytes;
        void const* overlapped;
    };

    struct Lock {
        HANDLE handle;
        DWORD flags, reserved, low, high;
        OVERLAPPED overlapped;
    };

    struct Unlock {
        HANDLE handle;
        DWORD offsetLow, offsetHigh, low, high;
    };

    void note(char const* call) { m_calls.emplace_back(call, m_log.lines().size()); }

    ComputerNamed m_computer{L"VR-7"};
    test::LogRecorder m_log;
    std::vector<std::pair<std::string, std::size_t>> m_calls;
    HANDLE m_handle = nullptr;
    Open m_opened{};
    Write m_written{};
    Lock m_locked{};
    Unlock m_unlocked{};
    std::wstring m_deleted;

    test::ImportHook<decltype(CreateFileW)> m_open{
        "CreateFileW", [this](
                           LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                           DWORD disposition, DWORD flags, HANDLE model) {
            note("open");
            m_opened = {name, access, share, disposition, flags, security, model};
            m_handle = CreateFileW(name, access, share, security, disposition, flags, model);
            return m_handle;
        }};

    test::ImportHook<decltype(WriteFile)> m_write{
        "WriteFile",
        [this](
            HANDLE handle, LPCVOID bytes, DWORD count, LPDWORD written, LPOVERLAPPED overlapped) {
            note("write");
            m_written = {handle, std::string(static_cast<char const*>(bytes), count), overlapped};
            return WriteFile(handle, bytes, count, written, overlapped);
        }};

    test::ImportHook<decltype(LockFileEx)> m_lock{
        "LockFileEx", [this](
                          HANDLE handle, DWORD flags, DWORD reserved, DWORD low, DWORD high,
                          LPOVERLAPPED overlapped) {
            note("lock");
            m_locked = {handle, flags, reserved, low, high, *overlapped};
            return LockFileEx(handle, flags, reserved, low, high, overlapped);
        }};

    test::ImportHook<decltype(UnlockFile)> m_unlock{
        "UnlockFile",
        [this](HANDLE handle, DWORD offsetLow, DWORD offsetHigh, DWORD low, DWORD high) {
            note("unlock");
            m_unlocked = {handle, offsetLow, offsetHigh, low, high};
            return UnlockFile(handle, offsetLow, offsetHigh, low, high);
        }};

    test::ImportHook<decltype(CloseHandle)> m_close{"CloseHandle", [this](HANDLE handle) {
                                                        if (handle == m_handle)
                                                            note("close");
                                                        return CloseHandle(handle);
                                                    }};

    test::ImportHook<decltype(DeleteFileW)> m_delete{"DeleteFileW", [this](LPCWSTR name) {
                                                         note("delete");
                                                         m_deleted = name;
                                                         return DeleteFileW(name);
                                                     }};
};

} // namespace

TEST_F(LockFileCalls, ComeInOrderBetweenTheLinesThatTellOfThem) {
    std::optional<LockFile> lock(std::in_place, m_path);
    EXPECT_THAT(
        m_calls, ElementsAre(std::pair("open", 2u), std::pair("write", 4u), std::pair("lock", 6u)));
    m_calls.clear();
    m_log.clear();

    lock.reset();

    EXPECT_THAT(
        m_calls,
        ElementsAre(std::pair("unlock", 2u), std::pair("close", 4u), std::pair("delete", 6u)));
}

TEST_F(LockFileCalls, OpenTheLockFileSharingNothing) {
    take();

    EXPECT_EQ(m_lockText, m_opened.name);
    EXPECT_EQ(0xC0000000u, m_opened.access);
    EXPECT_EQ(0u, m_opened.share);
    EXPECT_EQ(DWORD{CREATE_ALWAYS}, m_opened.disposition);
    EXPECT_EQ(128u, m_opened.flags);
    EXPECT_EQ(nullptr, m_opened.security);
    EXPECT_EQ(nullptr, m_opened.model);
}

TEST_F(LockFileCalls, WriteTheNameAtOnce) {
    take();

    EXPECT_EQ(m_handle, m_written.handle);
    EXPECT_EQ("V\0R\0-\0007\0"s, m_written.bytes);
    EXPECT_EQ(nullptr, m_written.overlapped);
}

TEST_F(LockFileCalls, LockTheRangeOfTheNameWithoutWaiting) {
    take();

    EXPECT_EQ(m_handle, m_locked.handle);
    EXPECT_EQ(3u, m_locked.flags);
    EXPECT_EQ(0u, m_locked.reserved);
    EXPECT_EQ(8u, m_locked.low);
    EXPECT_EQ(0u, m_locked.high);
    OVERLAPPED const zeros{};
    EXPECT_EQ(0, std::memcmp(&zeros, &m_locked.overlapped, sizeof zeros));
}

TEST_F(LockFileCalls, UnlockTheRangeOfTheName) {
    take();

    EXPECT_EQ(m_handle, m_unlocked.handle);
    EXPECT_EQ(0u, m_unlocked.offsetLow);
    EXPECT_EQ(0u, m_unlocked.offsetHigh);
    EXPECT_EQ(8u, m_unlocked.low);
    EXPECT_EQ(0u, m_unlocked.high);
}

TEST_F(LockFileCalls, UnlockTheNameThatWasWritten) {
    std::optional<LockFile> lock(std::in_place, m_path);
    ComputerNamed const renamed(L"RENAMED");

    lock.reset();

    EXPECT_EQ(8u, m_unlocked.low);
}

TEST_F(LockFileCalls, DeleteTheLockFile) {
    take();

    EXPECT_EQ(m_lockText, m_deleted);
}

TEST_F(LockFileCalls, AskForNothingTwice) {
    take();

    EXPECT_EQ(6u, m_calls.size());
}

TEST_F(LockFileCalls, WriteAndLockNothingWhereTheComputerHasNoName) {
    ComputerNamed const nameless({});
    LockFile const lock(m_path);

    EXPECT_EQ("", m_written.bytes);
    EXPECT_EQ(1u, m_write.calls());
    EXPECT_EQ(1u, m_lock.calls());
    EXPECT_EQ(0u, m_locked.low);
    EXPECT_EQ(0u, m_locked.high);
    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
}

TEST_F(LockFileCalls, UnlockNothingWhereTheComputerHasNoName) {
    ComputerNamed const nameless({});

    take();

    EXPECT_EQ(1u, m_unlock.calls());
    EXPECT_EQ(0u, m_unlocked.low);
    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

namespace {

// The library shares its lock files, so that an outsider can see which bytes are locked.
class LockedRange : public LockFiles {
  protected:
    bool outsiderLocks(DWORD offset, DWORD length) const {
        auto const file = openAsOutsider(m_lockText, GENERIC_READ | GENERIC_WRITE);
        OVERLAPPED place{};
        place.Offset = offset;
        DWORD const flags = LOCKFILE_FAIL_IMMEDIATELY | LOCKFILE_EXCLUSIVE_LOCK;
        return LockFileEx(file.get(), flags, 0, length, 0, &place) != FALSE;
    }

    ComputerNamed m_computer{L"VR-7"};
    test::ImportHook<decltype(CreateFileW)> m_shares{
        "CreateFileW", [](LPCWSTR name, DWORD access, DWORD, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE model) {
            DWORD const everything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
            return CreateFileW(name, access, everything, security, disposition, flags, model);
        }};
};

} // namespace

TEST_F(LockedRange, IsThatOfTheName) {
    LockFile const lock(m_path);

    for (DWORD place = 0; place < 8; ++place)
        EXPECT_FALSE(outsiderLocks(place, 1)) << place;
    EXPECT_TRUE(outsiderLocks(8, 1000));
}

TEST_F(LockedRange, IsFreeBeforeTheFileIsClosed) {
    bool free = false;
    test::ImportHook<decltype(CloseHandle)> const closes("CloseHandle", [&](HANDLE handle) {
        free = outsiderLocks(0, 8);
        return CloseHandle(handle);
    });

    take();

    EXPECT_TRUE(free);
}

TEST_F(LockedRange, RefusesASecondHolderWhomTheOpenLetIn) {
    LockFile const lock(m_path);

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
}
