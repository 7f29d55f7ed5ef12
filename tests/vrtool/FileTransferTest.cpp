// One file on its way, in the test itself, where platform calls can be made to fail.

#include "tools/vrtool/FileTransfer.h"

#include "tests/support/ByteBuilder.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/Carried.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TargetLock.h"
#include "vrUtils/Files.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class VrtoolFileTransfer : public test::CarriedFiles {
  protected:
    VrtoolFileTransfer() { setting.replace = true; }

    // An old file at the target, and a source that is to replace it.
    void makeOldAndNew() const {
        scratch.write(L"to\\a.mxf", "old");
        source(L"a.mxf", "brand-new");
    }

    // Whether the old file is there, and nothing else.
    void expectOldAlone() const {
        EXPECT_THAT(scratch.names(L"to"), ElementsAre(L"a.mxf"));
        EXPECT_EQ("old", target(L"a.mxf"));
    }
};

} // namespace

TEST_F(VrtoolFileTransfer, BringsANewFileAndItsMessage) {
    source(L"a.mxf", "media");

    auto const outcome = carry(L"a.mxf");

    EXPECT_EQ(TransferOutcome::transferred, outcome.result);
    EXPECT_EQ(L"", outcome.failure);
    EXPECT_EQ("media", target(L"a.mxf"));
    EXPECT_EQ(test::someTime, test::lastWriteOf(scratch.file(L"to\\a.mxf")));
    EXPECT_THAT(scratch.names(L"to"), ElementsAre(L"a.mxf", L"messages"));
    EXPECT_THAT(target(L"messages\\a.mxf.xml"), HasSubstr("<bytes>5</bytes>"));
}

TEST_F(VrtoolFileTransfer, MakesTheFoldersOfTheTarget) {
    source(L"day 1\\a.mxf", "media");

    carry(L"day 1\\a.mxf");

    EXPECT_EQ("media", target(L"day 1\\a.mxf"));
    EXPECT_TRUE(isLeft(L"day 1\\messages\\a.mxf.xml"));
}

TEST_F(VrtoolFileTransfer, LeavesAFileAloneThatIsThereAlready) {
    source(L"a.mxf", "media");
    carry(L"a.mxf");
    test::ImportHook<decltype(WriteFile)> const writes(
        "WriteFile", [](auto...) -> BOOL { return FALSE; }, test::thisProgram());

    auto const outcome = carry(L"a.mxf");

    EXPECT_EQ(TransferOutcome::alreadyThere, outcome.result);
    EXPECT_EQ(L"", outcome.failure);
}

TEST_F(VrtoolFileTransfer, WritesTheMessageThatADeadTransferHasNotLeft) {
    source(L"a.mxf", "media");
    carry(L"a.mxf");
    DeleteFileW(scratch.file(L"to\\messages\\a.mxf.xml").c_str());

    EXPECT_EQ(TransferOutcome::alreadyThere, carry(L"a.mxf").result);

    EXPECT_THAT(target(L"messages\\a.mxf.xml"), HasSubstr("<bytes>5</bytes>"));
}

TEST_F(VrtoolFileTransfer, TellsTheFormatOfARecordingThatIsThereAlready) {
    setting.buffer.resize(1000);
    auto const head = test::wavHead(48000, 24);
    source(L"a.wav", {reinterpret_cast<char const*>(head.data()), head.size()});
    carry(L"a.wav");

    auto const outcome = carry(L"a.wav");

    ASSERT_EQ(TransferOutcome::alreadyThere, outcome.result);
    ASSERT_TRUE(outcome.format);
    EXPECT_EQ(48000u, outcome.format->samplesPerSecond);
    EXPECT_THAT(target(L"messages\\a.wav.xml"), HasSubstr("<bitsPerSample>24</bitsPerSample>"));
}

TEST_F(VrtoolFileTransfer, ReplacesAnotherFileAndLeavesNothing) {
    makeOldAndNew();

    EXPECT_EQ(TransferOutcome::replaced, carry(L"a.mxf").result);

    EXPECT_EQ("brand-new", target(L"a.mxf"));
    EXPECT_THAT(scratch.names(L"to"), ElementsAre(L"a.mxf", L"messages"));
}

TEST_F(VrtoolFileTransfer, TakesTheSameSizeAtAnotherTimeForAnotherFile) {
    scratch.write(L"to\\a.mxf", "old");
    source(L"a.mxf", "new");

    EXPECT_EQ(TransferOutcome::replaced, carry(L"a.mxf").result);
    EXPECT_EQ("new", target(L"a.mxf"));
}

TEST_F(VrtoolFileTransfer, ReplacesNothingUnlessItIsTold) {
    makeOldAndNew();
    setting.replace = false;

    auto const outcome = carry(L"a.mxf");

    EXPECT_EQ(TransferOutcome::failed, outcome.result);
    EXPECT_EQ(
        L"there is another file at " + quotedTarget(L"a.mxf") + L"; --replace replaces it",
        outcome.failure);
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, LeavesAReadOnlyFileAsItIs) {
    makeOldAndNew();
    SetFileAttributesW(scratch.file(L"to\\a.mxf").c_str(), FILE_ATTRIBUTE_READONLY);

    EXPECT_EQ(L"the file at " + quotedTarget(L"a.mxf") + L" is read-only", carry(L"a.mxf").failure);
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, DoesNotReplaceAFolder) {
    source(L"a.mxf", "new");
    scratch.makeFolder(L"to\\a.mxf");

    EXPECT_EQ(L"there is a folder at " + quotedTarget(L"a.mxf"), carry(L"a.mxf").failure);
}

TEST_F(VrtoolFileTransfer, LeavesTheOldFileThatAnotherProgramHasOpen) {
    makeOldAndNew();
    test::OwnedHandle const reader(CreateFileW(
        scratch.file(L"to\\a.mxf").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
        0, nullptr));

    EXPECT_THAT(
        carry(L"a.mxf").failure,
        StartsWith(L"cannot take the place of " + quotedTarget(L"a.mxf") + L": "));
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, IsRefusedWhileAnotherOneHasTheTarget) {
    source(L"a.mxf", "media");
    auto const lock = lockTarget(vr::Path::file(scratch.file(L"to\\a.mxf")));

    EXPECT_EQ(L"another transfer has " + quotedTarget(L"a.mxf"), carry(L"a.mxf").failure);
    EXPECT_FALSE(isLeft(L"a.mxf"));
}

// Another one changes the target between the look at it and the lock.
TEST_F(VrtoolFileTransfer, LeavesAFileThatHasComeMeanwhile) {
    source(L"a.mxf", "brand-new");
    test::ImportHook<decltype(LockFileEx)> const hook("LockFileEx", [&](auto... arguments) {
        scratch.write(L"to\\a.mxf", "old");
        return hook.original()(arguments...);
    });

    EXPECT_EQ(
        L"cannot take the place of " + quotedTarget(L"a.mxf") + L": " +
            systemText(ERROR_ALREADY_EXISTS),
        carry(L"a.mxf").failure);
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, FindsThatAnotherOneHasReplacedTheFileMeanwhile) {
    makeOldAndNew();
    test::ImportHook<decltype(LockFileEx)> const hook("LockFileEx", [&](auto... arguments) {
        CopyFileW(scratch.file(L"from\\a.mxf").c_str(), scratch.file(L"to\\a.mxf").c_str(), FALSE);
        return hook.original()(arguments...);
    });

    EXPECT_EQ(TransferOutcome::alreadyThere, carry(L"a.mxf").result);
}

TEST_F(VrtoolFileTransfer, TellsThatTheSourceHasGone) {
    auto const outcome = carry(L"a.mxf");

    EXPECT_EQ(TransferOutcome::failed, outcome.result);
    EXPECT_EQ(L'"' + scratch.file(L"from\\a.mxf") + L"\" is no longer there", outcome.failure);
    EXPECT_THAT(scratch.names(L"to"), ElementsAre());
}

TEST_F(VrtoolFileTransfer, TellsWhyASourceCouldNotBeReached) {
    auto const outcome = transferFile({vr::Path::file(L"C:\\x"), L"x", L"the reason"}, setting);

    EXPECT_EQ(L"the reason", outcome.failure);
    EXPECT_FALSE(outcome.size);
}

TEST_F(VrtoolFileTransfer, TakesBackWhatASourceThatBreaksOffHasLeft) {
    source(L"a.mxf", "0123456789");
    test::FailingImport<decltype(ReadFile)> const fails(
        "ReadFile", FALSE, ERROR_NETNAME_DELETED, 2, test::thisProgram());

    EXPECT_EQ(
        L"cannot read \"" + scratch.file(L"from\\a.mxf") + L"\": " +
            systemText(ERROR_NETNAME_DELETED),
        carry(L"a.mxf").failure);
    EXPECT_THAT(scratch.names(L"to"), ElementsAre());
}

TEST_F(VrtoolFileTransfer, LeavesTheOldFileWhereTheNewOneFindsNoRoom) {
    makeOldAndNew();
    test::FailingImport<decltype(WriteFile)> const fails(
        "WriteFile", FALSE, ERROR_DISK_FULL, 2, test::thisProgram());

    EXPECT_EQ(
        L"cannot write " + quotedTarget(L"a.mxf.part") + L": " + systemText(ERROR_DISK_FULL),
        carry(L"a.mxf").failure);
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, WantsRoomForTheOldFileAndTheNewOne) {
    makeOldAndNew();
    ULARGE_INTEGER free;
    test::ImportHook<decltype(GetDiskFreeSpaceExW)> const hook(
        "GetDiskFreeSpaceExW",
        [&](LPCWSTR, PULARGE_INTEGER, PULARGE_INTEGER, PULARGE_INTEGER result) -> BOOL {
            *result = free;
            return TRUE;
        });

    free.QuadPart = 11;
    EXPECT_EQ(L"not enough space at the destination for 12 bytes", carry(L"a.mxf").failure);
    expectOldAlone();
    free.QuadPart = 12;
    EXPECT_EQ(TransferOutcome::replaced, carry(L"a.mxf").result);
}

TEST_F(VrtoolFileTransfer, FailsWhereTheFreeSpaceIsNotKnown) {
    source(L"a.mxf", "media");
    test::FailingImport<decltype(GetDiskFreeSpaceExW)> const fails(
        "GetDiskFreeSpaceExW", FALSE, ERROR_NOT_READY);

    EXPECT_EQ(L"the free space of the destination cannot be read", carry(L"a.mxf").failure);
}

TEST_F(VrtoolFileTransfer, FailsWhereTheFolderCannotBeMade) {
    source(L"day\\a.mxf", "media");
    scratch.write(L"to\\day", "a file");

    EXPECT_THAT(
        carry(L"day\\a.mxf").failure,
        StartsWith(L"cannot make the lock file " + quotedTarget(L"day\\a.mxf.lck") + L": "));
}

TEST_F(VrtoolFileTransfer, TellsWhichFolderCannotBeMade) {
    source(L"day\\a.mxf", "media");
    test::ImportHook<decltype(CreateDirectoryW)> const hook(
        "CreateDirectoryW", [&](LPCWSTR path, LPSECURITY_ATTRIBUTES rights) -> BOOL {
            if (!std::wstring(path).compare(0, 3, L"C:\\") &&
                std::wstring(path).find(L"to\\day") == std::wstring::npos)
                return hook.original()(path, rights);
            SetLastError(ERROR_ACCESS_DENIED);
            return FALSE;
        });

    EXPECT_THAT(
        carry(L"day\\a.mxf").failure,
        testing::AllOf(
            StartsWith(L"cannot make the folder \"" + scratch.file(L"to\\day")),
            testing::EndsWith(systemText(ERROR_ACCESS_DENIED))));
}

TEST_F(VrtoolFileTransfer, TellsANameThatTheTargetCannotHold) {
    std::wstring const name(252, L'n');
    source(name, "media");

    auto const outcome = carry(name);

    EXPECT_EQ(TransferOutcome::failed, outcome.result);
    EXPECT_THAT(
        outcome.failure, StartsWith(L"cannot make the lock file " + quotedTarget(name + L".lck")));
    EXPECT_FALSE(isLeft(name));
}

TEST_F(VrtoolFileTransfer, TellsANameThatIsNotLegal) {
    source(L"a.mxf", "media");

    auto const outcome =
        transferFile({vr::Path::file(scratch.file(L"from\\a.mxf")), L"a?.mxf", {}}, setting);

    EXPECT_EQ(
        L"cannot look at " + quotedTarget(L"a?.mxf") + L": " + systemText(ERROR_INVALID_NAME),
        outcome.failure);
}

TEST_F(VrtoolFileTransfer, KeepsTheFileWhoseMessageCannotBeWritten) {
    source(L"a.mxf", "media");
    scratch.makeFolder(L"to\\messages\\a.mxf.xml");

    auto const outcome = carry(L"a.mxf");

    EXPECT_EQ(TransferOutcome::transferred, outcome.result);
    EXPECT_THAT(
        outcome.failure,
        StartsWith(L"cannot take the place of " + quotedTarget(L"messages\\a.mxf.xml") + L": "));
    EXPECT_EQ("media", target(L"a.mxf"));
    EXPECT_THAT(scratch.names(L"to\\messages"), ElementsAre(L"a.mxf.xml"));
}

TEST_F(VrtoolFileTransfer, PutsTheOldFileBackIfTheNewOneIsNotWhole) {
    makeOldAndNew();
    test::ImportHook<decltype(MoveFileExW)> const hook(
        "MoveFileExW",
        [&](LPCWSTR from, LPCWSTR to, DWORD flags) {
            auto const moved = hook.original()(from, to, flags);
            scratch.write(L"to\\a.mxf", "bran");
            return moved;
        },
        test::thisProgram());

    EXPECT_EQ(L"not all of it has arrived at " + quotedTarget(L"a.mxf"), carry(L"a.mxf").failure);
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, LeavesTheOldFileIfItCannotBeSetAside) {
    makeOldAndNew();
    test::FailingImport<decltype(CopyFileW)> const fails("CopyFileW", FALSE, ERROR_DISK_FULL);

    EXPECT_EQ(
        L"cannot copy the old file to " + quotedTarget(L"Recovery\\a.mxf") + L": " +
            systemText(ERROR_DISK_FULL),
        carry(L"a.mxf").failure);
    expectOldAlone();
}

TEST_F(VrtoolFileTransfer, FollowsADeadTransferThatHasLeftAllItCan) {
    makeOldAndNew();
    scratch.write(L"to\\a.mxf.part", "brand-newer");
    scratch.write(L"to\\a.mxf.lck", "PC");
    scratch.write(L"to\\Recovery\\a.mxf", "ol");
    scratch.write(L"to\\messages\\a.mxf.xml.part", "<tr");

    EXPECT_EQ(TransferOutcome::replaced, carry(L"a.mxf").result);

    EXPECT_EQ("brand-new", target(L"a.mxf"));
    EXPECT_THAT(scratch.names(L"to"), ElementsAre(L"a.mxf", L"messages"));
    EXPECT_THAT(scratch.names(L"to\\messages"), ElementsAre(L"a.mxf.xml"));
}

TEST_F(VrtoolFileTransfer, MakesAFolderAgainWhoseMakingHasFailed) {
    source(L"day\\a.mxf", "media");
    {
        test::FailingImport<decltype(CreateDirectoryW)> const fails(
            "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED, test::everyCall);
        EXPECT_NE(L"", carry(L"day\\a.mxf").failure);
    }

    EXPECT_EQ(TransferOutcome::transferred, carry(L"day\\a.mxf").result);
}

TEST_F(VrtoolFileTransfer, LeavesNoHandleOpen) {
    makeOldAndNew();
    carry(L"a.mxf");
    scratch.write(L"to\\a.mxf", "old");
    test::HandleLeakCheck const check;

    carry(L"a.mxf");
}

TEST(VrtoolTargetLock, IsFreeOnceItsHolderHasDied) {
    test::ScratchFolder const folder;
    auto const path = vr::Path::file(folder.file(L"a.mxf"));
    folder.write(L"a.mxf.lck", "PC");

    { auto const lock = lockTarget(path); }

    EXPECT_THAT(folder.names(), ElementsAre());
}

TEST_F(VrtoolFileTransfer, RemovesTheLockOfATransferThatDiedBehindItsMessage) {
    source(L"a.mxf", "media");
    carry(L"a.mxf");
    scratch.write(L"to\\a.mxf.lck", "PC");

    EXPECT_EQ(TransferOutcome::alreadyThere, carry(L"a.mxf").result);

    EXPECT_FALSE(isLeft(L"a.mxf.lck"));
}

TEST_F(VrtoolFileTransfer, FindsAFileThereThatAnotherOneStillHas) {
    source(L"a.mxf", "media");
    carry(L"a.mxf");
    auto const lock = lockTarget(vr::Path::file(scratch.file(L"to\\a.mxf")));

    EXPECT_EQ(TransferOutcome::alreadyThere, carry(L"a.mxf").result);

    EXPECT_TRUE(isLeft(L"a.mxf.lck"));
}

TEST(VrtoolTargetLock, LeavesNoProbeBehind) {
    test::ScratchFolder const folder;
    test::FailingImport<decltype(LockFileEx)> const fails("LockFileEx", FALSE, ERROR_LOCK_FAILED);

    EXPECT_ANY_THROW(lockTarget(vr::Path::file(folder.file(L"a.mxf"))));

    EXPECT_THAT(folder.names(), ElementsAre());
}
