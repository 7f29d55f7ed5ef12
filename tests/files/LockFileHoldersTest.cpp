// One holder at a time: threads, processes, processes that are killed, and takers who come in the
// middle of a release.

#include "tests/files/LockFiles.h"
#include "tests/files/Outsider.h"
#include "tests/support/ChildAction.h"

#include <cstdio>
#include <optional>
#include <thread>

using namespace vrUtils::Files;
using namespace std::string_literals;

namespace {

void say(char const* text) {
    std::puts(text);
    std::fflush(stdout);
}

// Takes the lock and keeps it until the process is killed, or says that it was refused.
test::ChildAction const holdElsewhere(L"hold a lock", [](auto const& arguments) {
    try {
        vrUtils::Files::LockFile const lock(vr::Path::file(arguments.at(0)));
        say("taken");
        Sleep(INFINITE);
    } catch (LockFileException const&) {
        say("refused");
    }
    return 0;
});

// Takes the lock and gives it back.
test::ChildAction const takeElsewhere(L"take a lock", [](auto const& arguments) {
    vrUtils::Files::LockFile const lock(vr::Path::file(arguments.at(0)));
    return 7;
});

// Ends in the middle of its work, without a word to the lock.
test::ChildAction const endElsewhere(L"end with a lock", [](auto const& arguments) {
    static vrUtils::Files::LockFile const* const lock =
        new vrUtils::Files::LockFile(vr::Path::file(arguments.at(0)));
    TerminateProcess(GetCurrentProcess(), lock ? 5 : 6);
    return 0;
});

class LockHolders : public LockFiles {
  protected:
    bool isRefusedElsewhere() const {
        return holdElsewhere.start({m_text})->waitForOutput("refused");
    }
};

} // namespace

TEST_F(LockHolders, InAnotherProcessRefusesThisOne) {
    auto const child = holdElsewhere.start({m_text});
    ASSERT_TRUE(child->waitForOutput("taken"));

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOutsider(m_lockText, GENERIC_READ));
}

TEST_F(LockHolders, InThisProcessRefusesAnotherOne) {
    LockFile const lock(m_path);

    EXPECT_TRUE(isRefusedElsewhere());
}

TEST_F(LockHolders, InAnotherThreadRefusesThisOne) {
    LockFile const lock(m_path);

    std::thread([&] { EXPECT_THAT([&] { take(); }, FailsToLock(m_text)); }).join();
}

TEST_F(LockHolders, InAnotherProcessGivesTheLockBack) {
    EXPECT_EQ(7u, takeElsewhere.start({m_text})->exitCode());

    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
    EXPECT_NO_THROW(take());
}

TEST_F(LockHolders, WhoIsKilledLeavesALockFileThatCountsForNothing) {
    auto const child = holdElsewhere.start({m_text});
    ASSERT_TRUE(child->waitForOutput("taken"));

    child->kill();

    EXPECT_TRUE(m_folder.exists(L"clip.mxf.lck"));
    EXPECT_NO_THROW(take());
    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockHolders, WhoEndsWithoutAReleaseLeavesALockFileThatCountsForNothing) {
    EXPECT_EQ(5u, endElsewhere.start({m_text})->exitCode());

    EXPECT_TRUE(m_folder.exists(L"clip.mxf.lck"));
    EXPECT_NO_THROW(take());
}

TEST_F(LockHolders, AfterAKilledOneRefusesOthersLikeAnyOther) {
    auto const child = holdElsewhere.start({m_text});
    ASSERT_TRUE(child->waitForOutput("taken"));
    child->kill();

    LockFile const lock(m_path);

    EXPECT_TRUE(isRefusedElsewhere());
}

TEST_F(LockHolders, WhoComesBeforeTheCloseIsRefused) {
    std::optional<LockFile> first(std::in_place, m_path);
    test::ImportHook<decltype(CloseHandle)> const hook("CloseHandle", [&](HANDLE handle) {
        EXPECT_THAT([&] { LockFile const second(m_path); }, FailsToLock(m_text));
        return CloseHandle(handle);
    });

    first.reset();

    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockHolders, WhoComesBetweenCloseAndDeleteKeepsTheFile) {
    std::optional<LockFile> first(std::in_place, m_path);
    std::optional<LockFile> second;
    {
        BOOL deleted = TRUE;
        test::ImportHook<decltype(DeleteFileW)> const hook("DeleteFileW", [&](LPCWSTR name) {
            second.emplace(m_path);
            return deleted = DeleteFileW(name);
        });
        first.reset();
        EXPECT_FALSE(deleted);
    }

    EXPECT_TRUE(m_folder.exists(L"clip.mxf.lck"));
    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    second.reset();
    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockHolders, FromAnotherProcessWhoComesBetweenCloseAndDeleteKeepsTheFile) {
    std::optional<LockFile> first(std::in_place, m_path);
    std::unique_ptr<test::ChildProcess> second;
    test::ImportHook<decltype(DeleteFileW)> const hook("DeleteFileW", [&](LPCWSTR name) {
        second = holdElsewhere.start({m_text});
        EXPECT_TRUE(second->waitForOutput("taken"));
        return DeleteFileW(name);
    });

    first.reset();

    EXPECT_TRUE(m_folder.exists(L"clip.mxf.lck"));
    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
}
