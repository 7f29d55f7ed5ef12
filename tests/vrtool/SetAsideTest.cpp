#include "tools/vrtool/SetAside.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/Carried.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"

#include <optional>

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

class VrtoolSetAside : public testing::Test {
  protected:
    std::wstring failure() const {
        try {
            SetAside const old(path);
        } catch (TransferFailure const& failure) {
            return failure.text();
        }
        return {};
    }

    test::ScratchFolder const folder;
    std::wstring const text = folder.write(L"a.mxf", "old");
    vr::Path const path = vr::Path::file(text);
};

} // namespace

TEST_F(VrtoolSetAside, CopiesTheFileAndLeavesItInItsPlace) {
    SetAside const old(path);

    EXPECT_EQ("old", folder.read(L"a.mxf"));
    EXPECT_EQ("old", folder.read(L"Recovery\\a.mxf"));
}

TEST_F(VrtoolSetAside, GoesWithTheObject) {
    { SetAside const old(path); }

    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
}

TEST_F(VrtoolSetAside, IsPutBackOverWhateverIsInItsPlace) {
    {
        SetAside old(path);
        folder.write(L"a.mxf", "something else");
        old.putBack();
    }

    EXPECT_EQ("old", folder.read(L"a.mxf"));
    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
}

TEST_F(VrtoolSetAside, IsKeptIfItCannotBePutBack) {
    {
        SetAside old(path);
        test::OwnedHandle const other(
            CreateFileW(text.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        try {
            old.putBack();
            ADD_FAILURE();
        } catch (TransferFailure const& failure) {
            EXPECT_EQ(
                L"cannot put the old file back, which is kept as \"" +
                    folder.file(L"Recovery\\a.mxf") + L"\": " + systemText(ERROR_SHARING_VIOLATION),
                failure.text());
        }
    }

    EXPECT_EQ("old", folder.read(L"Recovery\\a.mxf"));
}

TEST_F(VrtoolSetAside, LeavesTheCopiesOfOthersAlone) {
    folder.write(L"b.mxf", "other");
    std::optional<SetAside> first(path);
    SetAside const second(vr::Path::file(folder.file(L"b.mxf")));

    first.reset();

    EXPECT_THAT(folder.names(L"Recovery"), ElementsAre(L"b.mxf"));
}

TEST_F(VrtoolSetAside, LeavesWhatADeadOneHasLeft) {
    folder.write(L"Recovery\\b.mxf", "of a dead one");

    { SetAside const old(path); }

    EXPECT_THAT(folder.names(L"Recovery"), ElementsAre(L"b.mxf"));
}

TEST_F(VrtoolSetAside, TakesThePlaceOfWhatADeadOneHasLeftOfTheSameFile) {
    folder.write(L"Recovery\\a.mxf", "ol");
    {
        SetAside const old(path);
        EXPECT_EQ("old", folder.read(L"Recovery\\a.mxf"));
    }

    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
}

TEST_F(VrtoolSetAside, KeepsItsFolderFromOthersWhoAreDone) {
    RecoveryFolder const mine(vr::Path::folder(folder.file(L"Recovery\\")));

    { RecoveryFolder const others(vr::Path::folder(folder.file(L"Recovery\\"))); }

    EXPECT_FALSE(RemoveDirectoryW(folder.file(L"Recovery").c_str()));
    EXPECT_TRUE(folder.exists(L"Recovery"));
}

// Another one may remove the folder between its making and its opening.
TEST_F(VrtoolSetAside, MakesItsFolderAgainIfItHasGone) {
    unsigned made = 0;
    test::ImportHook<decltype(CreateDirectoryW)> const hook(
        "CreateDirectoryW",
        [&](auto... arguments) { return ++made == 3 ? hook.original()(arguments...) : TRUE; },
        test::thisProgram());

    SetAside const old(path);

    EXPECT_EQ(3u, made);
    EXPECT_EQ("old", folder.read(L"Recovery\\a.mxf"));
}

TEST_F(VrtoolSetAside, DoesNotTryForEver) {
    test::ImportHook<decltype(CreateDirectoryW)> const hook(
        "CreateDirectoryW", [](auto...) -> BOOL { return FALSE; }, test::thisProgram());

    EXPECT_EQ(
        L"cannot make the folder \"" + folder.file(L"Recovery\\") + L"\": " +
            systemText(ERROR_FILE_NOT_FOUND),
        failure());
}

TEST_F(VrtoolSetAside, FailsWithTheReasonIfTheCopyFindsNoRoom) {
    test::FailingImport<decltype(CopyFileW)> const fails("CopyFileW", FALSE, ERROR_DISK_FULL);

    EXPECT_EQ(
        L"cannot copy the old file to \"" + folder.file(L"Recovery\\a.mxf") + L"\": " +
            systemText(ERROR_DISK_FULL),
        failure());
    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
}

TEST_F(VrtoolSetAside, IsRefusedForAFileThatIsBeingWritten) {
    test::OwnedHandle const writer(CreateFileW(
        text.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
        nullptr));

    EXPECT_EQ(L"cannot read \"" + text + L"\": " + systemText(ERROR_SHARING_VIOLATION), failure());
    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
}

TEST_F(VrtoolSetAside, PutsTheFileBackWhereSharingDoesNotKeepIt) {
    test::ImportHook<decltype(DeleteFileW)> const hook(
        "DeleteFileW", [](auto...) -> BOOL { return TRUE; });
    test::ImportHook<decltype(CopyFileW)> const copies(
        "CopyFileW", [&](auto... arguments) { return copies.original()(arguments...); });

    SetAside const old(path);

    EXPECT_EQ(2u, copies.calls());
    EXPECT_EQ("old", folder.read(L"a.mxf"));
    EXPECT_THAT(folder.names(), UnorderedElementsAre(L"Recovery", L"a.mxf"));
}

TEST_F(VrtoolSetAside, LeavesNoHandleOpen) {
    { SetAside const old(path); }
    test::HandleLeakCheck const check;

    SetAside old(path);
    old.putBack();
}
