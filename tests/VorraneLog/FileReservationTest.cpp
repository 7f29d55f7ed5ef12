#include "VorraneLog/FileReservation.h"

#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <string>

using VorraneLog::FileReservation;

namespace {

using FinalPath = decltype(GetFinalPathNameByHandleW);

// Two spellings that mean one folder, where the platform tells the final path.
bool meetInOneFolder(test::ScratchFolder const& folder) {
    FileReservation const first(folder.path(), {L"a.log"});
    FileReservation const second(folder.path() + L"\\.", {L"a.log"});
    EXPECT_TRUE(first.isHeld());
    return !second.isHeld();
}

} // namespace

TEST(FileReservation, TwoSpellingsOfAFolderMeet) {
    test::ScratchFolder const folder;

    EXPECT_TRUE(meetInOneFolder(folder));
}

TEST(FileReservation, FolderThatCannotBeOpenedCountsAsItIsSpelled) {
    FileReservation const first(L"Q:\\nowhere", {L"a.log"});
    FileReservation const same(L"q:\\NOWHERE", {L"A.LOG"});
    FileReservation const other(L"Q:\\nowhere\\.", {L"a.log"});

    EXPECT_TRUE(first.isHeld());
    EXPECT_FALSE(same.isHeld());
    EXPECT_TRUE(other.isHeld());
}

TEST(FileReservation, FolderWhoseFinalPathIsNotToldCountsAsItIsSpelled) {
    test::ScratchFolder const folder;
    test::FailingImport<FinalPath> const fails(
        "GetFinalPathNameByHandleW", 0, ERROR_ACCESS_DENIED, test::everyCall, test::thisProgram());

    EXPECT_FALSE(meetInOneFolder(folder));
}

TEST(FileReservation, FinalPathWhoseSizeAloneIsToldCountsAsNotTold) {
    test::ScratchFolder const folder;
    test::ImportHook<FinalPath> hook(
        "GetFinalPathNameByHandleW",
        [&hook](HANDLE file, LPWSTR buffer, DWORD units, DWORD flags) -> DWORD {
            return buffer ? 0 : hook.original()(file, buffer, units, flags);
        },
        test::thisProgram());

    EXPECT_FALSE(meetInOneFolder(folder));
}

TEST(FileReservation, FinalPathThatGrowsBetweenTwoQuestionsCountsAsNotTold) {
    test::ScratchFolder const folder;
    test::ImportHook<FinalPath> const grows(
        "GetFinalPathNameByHandleW",
        [](HANDLE, LPWSTR, DWORD units, DWORD) -> DWORD { return units + 1; }, test::thisProgram());

    EXPECT_FALSE(meetInOneFolder(folder));
}

TEST(FileReservation, NameThatTheSystemRefusesIsTaken) {
    test::FailingImport<decltype(CreateMutexW)> const fails(
        "CreateMutexW", nullptr, ERROR_INVALID_HANDLE, 2, test::thisProgram());

    EXPECT_FALSE(FileReservation(L"Q:\\nowhere", {L"a.log", L"a.1.log"}).isHeld());

    EXPECT_EQ(2u, fails.calls());
}

TEST(FileReservation, OfWhichOneNameIsTakenHoldsNoneOfTheOthers) {
    FileReservation const owner(L"Q:\\nowhere", {L"a.1.log"});

    EXPECT_FALSE(FileReservation(L"Q:\\nowhere", {L"a.log", L"a.1.log"}).isHeld());

    EXPECT_TRUE(FileReservation(L"Q:\\nowhere", {L"a.log"}).isHeld());
}
