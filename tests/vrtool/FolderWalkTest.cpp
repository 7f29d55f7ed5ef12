#include "tools/vrtool/FolderWalk.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The paths below the folder, without it.
std::vector<std::wstring> walked(std::wstring const& folder) {
    std::vector<std::wstring> names;
    for (auto const& file : filesBelow(vr::Path::folder(folder)))
        names.push_back(file.path.components().wholePath().substr(folder.size() + 1));
    return names;
}

} // namespace

TEST(FolderWalk, GoesInTheOrderOfNamesWithoutRegardToCase) {
    test::ScratchFolder const folder;
    for (auto const* name : {L"b.wav", L"C.wav", L"a.wav", L"\u00c4.wav", L"Z.wav", L"\u00e4b.wav"})
        folder.write(name, "");

    EXPECT_THAT(
        walked(folder.path()),
        ElementsAre(L"a.wav", L"b.wav", L"C.wav", L"Z.wav", L"\u00c4.wav", L"\u00e4b.wav"));
}

TEST(FolderWalk, TakesASubfolderInItsPlace) {
    test::ScratchFolder const folder;
    for (auto const* name : {L"a.wav", L"m\\2.wav", L"m\\1\\x.wav", L"m\\1\\b.wav", L"z.wav"})
        folder.write(name, "");

    EXPECT_THAT(
        walked(folder.path()),
        ElementsAre(L"a.wav", L"m\\1\\b.wav", L"m\\1\\x.wav", L"m\\2.wav", L"z.wav"));
}

TEST(FolderWalk, FindsNothingInEmptyFolders) {
    test::ScratchFolder const folder;
    folder.makeFolder(L"a\\b");

    EXPECT_THAT(walked(folder.path()), IsEmpty());
}

TEST(FolderWalk, KnowsFilesAndFoldersByTheirKindNotTheirName) {
    test::ScratchFolder const folder;
    folder.write(L"folder.wav\\plain", "");

    auto const files = filesBelow(vr::Path::folder(folder.path()));

    ASSERT_EQ(1u, files.size());
    EXPECT_EQ(L"plain", files[0].path.components().fileName());
}

TEST(FolderWalk, GoesToTheGroundOfADeepTree) {
    test::ScratchFolder const folder;
    std::wstring deep;
    for (int level = 0; level < 100; ++level)
        deep += L"level " + std::to_wstring(level) + L"\\";
    folder.write(deep + L"clip.wav", "");

    EXPECT_THAT(walked(folder.path()), ElementsAre(deep + L"clip.wav"));
}

TEST(FolderWalk, NamesAFolderThatCannotBeListed) {
    test::ScratchFolder const folder;
    folder.write(L"a.wav", "");
    test::FailingImport<decltype(FindFirstFileExW)> const fails(
        "FindFirstFileExW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED, 1, test::thisProgram());

    auto const files = filesBelow(vr::Path::folder(folder.path()));

    ASSERT_EQ(1u, files.size());
    EXPECT_EQ(L"FindFirstFile failed on \"" + folder.path() + L"\" - error 5", files[0].failure);
}

TEST(FolderWalk, KeepsWhatItHasFoundBeforeAListingBreaksOff) {
    test::ScratchFolder const folder;
    folder.write(L"a.wav", "");
    // The platform lists "." and ".." first.
    test::FailingImport<decltype(FindNextFileW)> const fails(
        "FindNextFileW", FALSE, ERROR_NETNAME_DELETED, 3, test::thisProgram());

    auto const files = filesBelow(vr::Path::folder(folder.path()));

    ASSERT_EQ(2u, files.size());
    EXPECT_EQ(L"FindNextFile failed on \"" + folder.path() + L"\" - error 64", files[0].failure);
    EXPECT_EQ(L"a.wav", files[1].path.components().fullName());
    EXPECT_EQ(L"", files[1].failure);
}

TEST(FolderWalk, TakesTheRootOfAnEmptyDriveForEmpty) {
    test::FailingImport<decltype(FindFirstFileExW)> const fails(
        "FindFirstFileExW", INVALID_HANDLE_VALUE, ERROR_FILE_NOT_FOUND, 1, test::thisProgram());

    EXPECT_THAT(filesBelow(vr::Path::folder(L"C:\\")), IsEmpty());
}

TEST(FolderWalk, ClosesNoSearchThatDidNotOpen) {
    test::FailingImport<decltype(FindFirstFileExW)> const fails(
        "FindFirstFileExW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED, 1, test::thisProgram());
    test::ImportHook<decltype(FindClose)> const closes(
        "FindClose", [](HANDLE) -> BOOL { return TRUE; }, test::thisProgram());

    filesBelow(vr::Path::folder(L"C:\\"));

    EXPECT_EQ(0u, closes.calls());
}

TEST(FolderWalk, DoesNotFollowFoldersThatAreLinks) {
    test::ScratchFolder const folder;
    folder.write(L"link\\a.wav", "");
    test::ImportHook<decltype(FindNextFileW)> hook(
        "FindNextFileW",
        [&](HANDLE search, WIN32_FIND_DATAW* found) {
            BOOL const result = hook.original()(search, found);
            if (found->cFileName == std::wstring(L"link")) {
                found->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
                found->dwReserved0 = IO_REPARSE_TAG_MOUNT_POINT;
            }
            return result;
        },
        test::thisProgram());

    EXPECT_THAT(walked(folder.path()), IsEmpty());
}

TEST(FolderWalk, GoesIntoFoldersThatASlowStorageManages) {
    test::ScratchFolder const folder;
    folder.write(L"archive\\a.wav", "");
    test::ImportHook<decltype(FindNextFileW)> hook(
        "FindNextFileW",
        [&](HANDLE search, WIN32_FIND_DATAW* found) {
            BOOL const result = hook.original()(search, found);
            if (found->cFileName == std::wstring(L"archive")) {
                found->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
                found->dwReserved0 = IO_REPARSE_TAG_HSM;
            }
            return result;
        },
        test::thisProgram());

    EXPECT_THAT(walked(folder.path()), ElementsAre(L"archive\\a.wav"));
}

TEST(FolderWalk, LeavesNoHandleOpen) {
    test::ScratchFolder const folder;
    folder.write(L"a\\b\\c.wav", "");
    test::HandleLeakCheck const check;

    walked(folder.path());
}
