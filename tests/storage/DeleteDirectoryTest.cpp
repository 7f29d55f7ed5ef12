// Removing folders with what is in them. Each refusal and each failure leaves all that is behind it:
// the tests compare the whole tree, and a neighbour that nobody has named.

#include "vrUtils/Storage/Directories.h"

#include "tests/storage/Tree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchShare.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

using test::FailingImport;
using test::treeOf;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Storage::DeleteDirectory;

namespace {

using Find = decltype(FindFirstFileW);
using FindNext = decltype(FindNextFileW);
using CloseFind = decltype(FindClose);
using SetAttributes = decltype(SetFileAttributesW);
using DeleteOneFile = decltype(DeleteFileW);
using RemoveFolder = decltype(RemoveDirectoryW);

// A folder to be removed, between two neighbours.
class DeletingDirectory : public testing::Test {
  protected:
    DeletingDirectory() {
        m_folder.write(L"alive\\clip.mxf", "kept");
        m_folder.write(L"doomed.mxf", "kept");
        m_folder.makeFolder(L"doomed");
    }

    int remove(bool recursive = true) const { return DeleteDirectory(m_doomed, recursive); }

    void write(std::wstring const& name) const { m_folder.write(L"doomed\\" + name, "b"); }

    // What is left, without the neighbours, which must be left as they were.
    std::vector<std::wstring> left() const {
        auto tree = treeOf(m_folder);
        auto const isNeighbour = [](std::wstring const& entry) {
            return entry.compare(0, 7, L"doomed\\") != 0;
        };
        std::vector<std::wstring> neighbours;
        std::copy_if(tree.begin(), tree.end(), std::back_inserter(neighbours), isNeighbour);
        EXPECT_THAT(
            neighbours, ElementsAre(L"alive\\", L"alive\\clip.mxf=kept", L"doomed.mxf=kept"));
        tree.erase(std::remove_if(tree.begin(), tree.end(), isNeighbour), tree.end());
        return tree;
    }

    test::ScratchFolder m_folder;
    std::wstring const m_doomed = m_folder.file(L"doomed");
};

class FailingDeletion : public DeletingDirectory {
  protected:
    // `doomed\` with two files, a folder with two more files, and one file behind it.
    FailingDeletion() {
        for (auto const* name : {L"a.mxf", L"b.mxf", L"m\\c.mxf", L"m\\d.mxf", L"z.mxf"})
            write(name);
    }

    test::ImportHook<Find> const m_opens{
        "FindFirstFileW", [this](auto... arguments) { return m_opens.original()(arguments...); }};
    test::ImportHook<CloseFind> const m_closes{
        "FindClose", [this](auto... arguments) { return m_closes.original()(arguments...); }};
};

// The calls of a deletion, in order, with the paths below the folder.
class DeletionCalls : public DeletingDirectory {
  protected:
    std::vector<std::wstring> m_calls;

  private:
    void note(wchar_t const* what, std::wstring const& path) {
        EXPECT_EQ(m_doomed, path.substr(0, m_doomed.size()));
        m_calls.push_back(what + path.substr(m_doomed.size()));
    }

    test::ImportHook<Find> const m_find{
        "FindFirstFileW", [this](LPCWSTR pattern, WIN32_FIND_DATAW* entry) {
            note(L"search ", pattern);
            return m_find.original()(pattern, entry);
        }};
    test::ImportHook<CloseFind> const m_close{"FindClose", [this](HANDLE search) {
                                                  m_calls.push_back(L"close");
                                                  return m_close.original()(search);
                                              }};
    test::ImportHook<SetAttributes> const m_set{
        "SetFileAttributesW", [this](LPCWSTR path, DWORD attributes) {
            note(attributes == 128 ? L"normal " : L"other ", path);
            return m_set.original()(path, attributes);
        }};
    test::ImportHook<DeleteOneFile> const m_delete{"DeleteFileW", [this](LPCWSTR path) {
                                                       note(L"delete ", path);
                                                       return m_delete.original()(path);
                                                   }};
    test::ImportHook<RemoveFolder> const m_remove{"RemoveDirectoryW", [this](LPCWSTR path) {
                                                      note(L"remove ", path);
                                                      return m_remove.original()(path);
                                                  }};
};

std::wstring chain(unsigned levels) {
    std::wstring names;
    for (unsigned level = 0; level < levels; ++level)
        names += L"\\level";
    return names;
}

} // namespace

TEST_F(DeletingDirectory, RemovesAnEmptyFolder) {
    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, RemovesFilesAndFoldersAtEveryDepth) {
    for (auto const* name : {L"a", L"b.mxf", L"c\\d.mxf", L"c\\e\\f.mxf", L"\u00E4 \u65E5\\g h"})
        write(name);
    m_folder.makeFolder(L"doomed\\empty\\emptier");

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, OfWhatIsNotThereIsASuccess) {
    EXPECT_EQ(0, DeleteDirectory(m_folder.file(L"missing"), true));
    EXPECT_EQ(0, DeleteDirectory(m_folder.file(L"missing\\deeper"), false));

    EXPECT_THAT(left(), ElementsAre(L"doomed\\"));
}

TEST_F(DeletingDirectory, OfAFileRemovesNothing) {
    EXPECT_EQ(0, DeleteDirectory(m_folder.file(L"doomed.mxf"), true));

    EXPECT_THAT(left(), ElementsAre(L"doomed\\"));
}

TEST_F(DeletingDirectory, TakesClosingSeparators) {
    write(L"a\\b.mxf");

    EXPECT_EQ(0, DeleteDirectory(m_doomed + L'\\', true));

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, TakesForwardSlashes) {
    write(L"a\\b.mxf");

    EXPECT_EQ(0, DeleteDirectory(m_folder.path() + L"/doomed/", true));

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, OfAnEmptyTextTouchesNothing) {
    test::ImportHook<Find> const finds(
        "FindFirstFileW", [](auto...) { return INVALID_HANDLE_VALUE; });

    EXPECT_EQ(0, DeleteDirectory({}, true));
    EXPECT_EQ(0, DeleteDirectory({}, false));
    EXPECT_EQ(0, DeleteDirectory(std::wstring(3, L'\0'), true));

    EXPECT_EQ(0u, finds.calls());
}

TEST_F(DeletingDirectory, ReadsItsTextUpToAZero) {
    write(L"a.mxf");
    m_folder.write(L"doomed\\sub\\b.mxf", "b");

    EXPECT_EQ(0, DeleteDirectory(m_doomed + L"\\sub" + L'\0' + L"\\..\\..", true));

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\a.mxf=b"));
}

TEST_F(DeletingDirectory, WithoutSubfoldersNeedsNoRecursion) {
    write(L"a.mxf");
    write(L"b.mxf");

    EXPECT_EQ(0, remove(false));

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, WithoutRecursionKeepsSubfoldersAndTheFolder) {
    write(L"a.mxf");
    write(L"m\\c.mxf");
    write(L"z.mxf");

    EXPECT_EQ(0, remove(false));

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\m\\c.mxf=b"));
}

TEST_F(DeletingDirectory, WithoutRecursionLeavesTheAttributesOfAFolderThatStays) {
    m_folder.makeFolder(L"doomed\\m");
    SetFileAttributesW(m_doomed.c_str(), FILE_ATTRIBUTE_HIDDEN);
    auto const before = GetFileAttributesW(m_doomed.c_str());

    EXPECT_EQ(0, remove(false));

    EXPECT_EQ(before, GetFileAttributesW(m_doomed.c_str()));
}

TEST_F(DeletingDirectory, RemovesReadOnlyHiddenAndSystemFiles) {
    for (auto const attributes :
         {FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM,
          FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM}) {
        auto const name = std::to_wstring(attributes);
        write(name + L"\\a.mxf");
        ASSERT_TRUE(SetFileAttributesW(
            m_folder.file(L"doomed\\" + name + L"\\a.mxf").c_str(),
            static_cast<DWORD>(attributes)));
    }

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, RemovesReadOnlyAndHiddenFolders) {
    write(L"a\\b\\c.mxf");
    for (auto const* name : {L"doomed", L"doomed\\a", L"doomed\\a\\b"})
        ASSERT_TRUE(SetFileAttributesW(
            m_folder.file(name).c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, LeavesDotNamedFilesAndFailsOnTheirFolder) {
    write(L".hidden");
    write(L"a.mxf");

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove());

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\.hidden=b"));
}

TEST_F(DeletingDirectory, LeavesDotNamedFoldersWithAllThatIsInThem) {
    write(L".trash\\c.mxf");
    write(L"...\\d.mxf");

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove());

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\...\\", L"doomed\\...\\d.mxf=b", L"doomed\\.trash\\",
                    L"doomed\\.trash\\c.mxf=b"));
}

TEST_F(DeletingDirectory, WithoutRecursionDoesNotTakeADotNamedFolderForOneThatStays) {
    write(L".trash\\c.mxf");
    write(L"a.mxf");

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove(false));

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\.trash\\", L"doomed\\.trash\\c.mxf=b"));
}

TEST_F(DeletingDirectory, StopsAtAFolderThatADotNamedFileKeeps) {
    write(L"a.mxf");
    write(L"m\\.keep");
    write(L"m\\n.mxf");
    write(L"z.mxf");

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove());

    EXPECT_THAT(
        left(),
        ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\m\\.keep=b", L"doomed\\z.mxf=b"));
}

// The platform of the tests hides dot-named files; here they are found with no attribute at all.
TEST_F(DeletingDirectory, KnowsDotNamesByTheName) {
    write(L".visible");
    write(L"a.mxf");
    test::ImportHook<FindNext> const hook(
        "FindNextFileW", [&](HANDLE search, WIN32_FIND_DATAW* entry) {
            auto const found = hook.original()(search, entry);
            entry->dwFileAttributes &= ~static_cast<DWORD>(FILE_ATTRIBUTE_HIDDEN);
            return found;
        });

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove());

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\.visible=b"));
}

TEST_F(DeletingDirectory, RemovesHiddenFilesWithoutADotAndNamesWithADotInside) {
    write(L"b.c.d");
    write(L"hidden");
    SetFileAttributesW(m_folder.file(L"doomed\\hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, StopsAtAFileThatIsOpenElsewhere) {
    for (auto const* name : {L"a.mxf", L"m\\b.mxf", L"m\\c.mxf", L"z.mxf"})
        write(name);
    test::OwnedHandle const other(CreateFileW(
        m_folder.file(L"doomed\\m\\b.mxf").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
        OPEN_EXISTING, 0, nullptr));

    EXPECT_EQ(ERROR_SHARING_VIOLATION, remove());

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\m\\", L"doomed\\m\\b.mxf=b", L"doomed\\m\\c.mxf=b",
                    L"doomed\\z.mxf=b"));
}

TEST_F(DeletingDirectory, IsCompletedByAnotherOneWhenTheFileIsClosed) {
    write(L"a.mxf");
    {
        test::OwnedHandle const other(CreateFileW(
            m_folder.file(L"doomed\\a.mxf").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
            OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(ERROR_SHARING_VIOLATION, remove());
    }

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, OfTheWorkingDirectoryEmptiesItAndFails) {
    write(L"a.mxf");
    wchar_t before[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, before);
    SetCurrentDirectoryW(m_doomed.c_str());

    EXPECT_EQ(ERROR_SHARING_VIOLATION, remove());

    SetCurrentDirectoryW(before);
    EXPECT_THAT(left(), ElementsAre(L"doomed\\"));
}

TEST_F(DeletingDirectory, RemovesPathsLongerThan260Characters) {
    auto const name = std::wstring(150, L'n');
    write(name + L'\\' + name + L'\\' + name + L"\\clip.mxf");

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, RemovesATreeOf500Levels) {
    write(chain(500).substr(1) + L"\\clip.mxf");
    test::HandleLeakCheck const check;

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletingDirectory, FromTheBottomOfATreeStopsAllTheWayUp) {
    write(chain(100).substr(1) + L"\\.keep");
    m_folder.write(L"doomed\\level\\z.mxf", "b");

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove());

    EXPECT_EQ(103u, left().size());
}

TEST_F(DeletingDirectory, RemovesAFolderOfAShare) {
    test::ScratchShare const share;
    auto const doomed = share.path() + L"\\doomed";
    ASSERT_TRUE(CreateDirectoryW(doomed.c_str(), nullptr));
    ASSERT_TRUE(CreateDirectoryW((doomed + L"\\sub").c_str(), nullptr));
    ASSERT_TRUE(
        CopyFileW(m_folder.file(L"doomed.mxf").c_str(), (doomed + L"\\sub\\a.mxf").c_str(), TRUE));

    EXPECT_EQ(0, DeleteDirectory(doomed, true));

    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(doomed.c_str()));
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(share.path().c_str()));
}

TEST_F(DeletingDirectory, LogsNothing) {
    test::LogRecorder const log;
    write(L"a.mxf");

    EXPECT_EQ(0, remove());
    EXPECT_EQ(0, remove());

    EXPECT_THAT(log.lines(), IsEmpty());
}

// A link that leads to a folder is found as a folder with one attribute more.
TEST_F(DeletingDirectory, EntersLinksLikeFolders) {
    write(L"link\\a.mxf");
    test::ImportHook<FindNext> const hook(
        "FindNextFileW", [&](HANDLE search, WIN32_FIND_DATAW* entry) {
            auto const found = hook.original()(search, entry);
            entry->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
            return found;
        });

    EXPECT_EQ(0, remove());

    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(DeletionCalls, AreThoseOfATreeInOrder) {
    write(L"a");
    write(L"b\\c");
    m_folder.makeFolder(L"doomed\\b\\d");
    write(L"e");

    EXPECT_EQ(0, remove());

    EXPECT_THAT(
        m_calls, ElementsAre(
                     L"search \\*.*", L"normal \\a", L"delete \\a", L"search \\b\\*.*",
                     L"normal \\b\\c", L"delete \\b\\c", L"search \\b\\d\\*.*", L"close",
                     L"normal \\b\\d", L"remove \\b\\d", L"close", L"normal \\b", L"remove \\b",
                     L"normal \\e", L"delete \\e", L"close", L"normal ", L"remove "));
}

TEST_F(DeletionCalls, OfAFolderWithASubfolderThatStaysEndWithTheSearch) {
    write(L"a");
    write(L"b\\c");

    EXPECT_EQ(0, remove(false));

    EXPECT_THAT(m_calls, ElementsAre(L"search \\*.*", L"normal \\a", L"delete \\a", L"close"));
}

TEST_F(DeletionCalls, DoubleAClosingSeparator) {
    write(L"a");

    EXPECT_EQ(0, DeleteDirectory(m_doomed + L'\\', true));

    EXPECT_THAT(
        m_calls, ElementsAre(
                     L"search \\\\*.*", L"normal \\\\a", L"delete \\\\a", L"close", L"normal \\",
                     L"remove \\"));
}

TEST_F(FailingDeletion, ToSearchIsASuccessThatRemovesNothing) {
    for (DWORD const error : {2ul, 3ul, 5ul, 53ul, 1326ul}) {
        FailingImport<Find> const fails(
            "FindFirstFileW", INVALID_HANDLE_VALUE, error, test::everyCall);
        EXPECT_EQ(0, remove());
        EXPECT_EQ(0, remove(false));
    }

    EXPECT_EQ(7u, left().size());
    EXPECT_EQ(0u, m_closes.calls());
}

TEST_F(FailingDeletion, ToSearchASubfolderPassesItOver) {
    FailingImport<Find> const fails("FindFirstFileW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED, 2);

    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, remove());

    EXPECT_THAT(
        left(),
        ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\m\\c.mxf=b", L"doomed\\m\\d.mxf=b"));
    EXPECT_EQ(1u, m_closes.calls());
}

TEST_F(FailingDeletion, ToSearchOnGivesTheErrorAndRemovesNothingMore) {
    // Behind `.`, `..` and `a.mxf`.
    FailingImport<FindNext> const fails("FindNextFileW", FALSE, ERROR_NETNAME_DELETED, 3);

    EXPECT_EQ(ERROR_NETNAME_DELETED, remove());

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\b.mxf=b", L"doomed\\m\\", L"doomed\\m\\c.mxf=b",
                    L"doomed\\m\\d.mxf=b", L"doomed\\z.mxf=b"));
    EXPECT_EQ(1u, m_closes.calls());
}

TEST_F(FailingDeletion, ToSearchOnWithoutRecursionIsNoSuccessEither) {
    // Behind the folder that stays.
    FailingImport<FindNext> const fails("FindNextFileW", FALSE, ERROR_NETNAME_DELETED, 5);

    EXPECT_EQ(ERROR_NETNAME_DELETED, remove(false));

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\m\\", L"doomed\\m\\c.mxf=b", L"doomed\\m\\d.mxf=b",
                    L"doomed\\z.mxf=b"));
}

TEST_F(FailingDeletion, ToSearchOnInASubfolderClosesBothSearches) {
    // Six in the folder itself up to `m`, with `.` and `..`; then the first behind `.` of `m`.
    FailingImport<FindNext> const fails("FindNextFileW", FALSE, ERROR_NETNAME_DELETED, 7);

    EXPECT_EQ(ERROR_NETNAME_DELETED, remove());

    EXPECT_THAT(
        left(),
        ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\m\\d.mxf=b", L"doomed\\z.mxf=b"));
    EXPECT_EQ(2u, m_closes.calls());
}

TEST_F(FailingDeletion, TellsTheErrorOfTheSearchThatItsEndDoesNotChange) {
    FailingImport<FindNext> const fails("FindNextFileW", FALSE, ERROR_NETNAME_DELETED, 3);
    test::ImportHook<CloseFind> const closes("FindClose", [&](HANDLE search) {
        auto const closed = closes.original()(search);
        SetLastError(ERROR_NO_MORE_FILES);
        return closed;
    });

    EXPECT_EQ(ERROR_NETNAME_DELETED, remove());
}

TEST_F(FailingDeletion, ToMakeAFileNormalStopsThere) {
    FailingImport<SetAttributes> const fails("SetFileAttributesW", FALSE, ERROR_ACCESS_DENIED, 2);
    test::ImportHook<DeleteOneFile> const deletes(
        "DeleteFileW", [&](auto... arguments) { return deletes.original()(arguments...); });

    EXPECT_EQ(ERROR_ACCESS_DENIED, remove());

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\b.mxf=b", L"doomed\\m\\", L"doomed\\m\\c.mxf=b",
                    L"doomed\\m\\d.mxf=b", L"doomed\\z.mxf=b"));
    EXPECT_EQ(1u, deletes.calls());
    EXPECT_EQ(1u, m_closes.calls());
}

TEST_F(FailingDeletion, ToDeleteAFileStopsThere) {
    FailingImport<DeleteOneFile> const fails("DeleteFileW", FALSE, ERROR_WRITE_PROTECT, 2);

    EXPECT_EQ(ERROR_WRITE_PROTECT, remove());

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\b.mxf=b", L"doomed\\m\\", L"doomed\\m\\c.mxf=b",
                    L"doomed\\m\\d.mxf=b", L"doomed\\z.mxf=b"));
    EXPECT_EQ(1u, m_closes.calls());
}

TEST_F(FailingDeletion, ToDeleteAFileStopsWithoutRecursionToo) {
    FailingImport<DeleteOneFile> const fails("DeleteFileW", FALSE, ERROR_WRITE_PROTECT, 3);

    EXPECT_EQ(ERROR_WRITE_PROTECT, remove(false));

    EXPECT_THAT(
        left(), ElementsAre(
                    L"doomed\\", L"doomed\\m\\", L"doomed\\m\\c.mxf=b", L"doomed\\m\\d.mxf=b",
                    L"doomed\\z.mxf=b"));
}

TEST_F(FailingDeletion, ToDeleteAFileOfASubfolderStopsEverything) {
    FailingImport<DeleteOneFile> const fails("DeleteFileW", FALSE, ERROR_WRITE_PROTECT, 4);

    EXPECT_EQ(ERROR_WRITE_PROTECT, remove());

    EXPECT_THAT(
        left(),
        ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\m\\d.mxf=b", L"doomed\\z.mxf=b"));
    EXPECT_EQ(2u, m_closes.calls());
}

TEST_F(FailingDeletion, ToMakeASubfolderNormalLeavesItEmpty) {
    FailingImport<SetAttributes> const fails("SetFileAttributesW", FALSE, ERROR_ACCESS_DENIED, 5);

    EXPECT_EQ(ERROR_ACCESS_DENIED, remove());

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\z.mxf=b"));
    EXPECT_EQ(2u, m_closes.calls());
}

TEST_F(FailingDeletion, ToRemoveASubfolderLeavesItEmpty) {
    FailingImport<RemoveFolder> const fails("RemoveDirectoryW", FALSE, ERROR_SHARING_VIOLATION, 1);

    EXPECT_EQ(ERROR_SHARING_VIOLATION, remove());

    EXPECT_THAT(left(), ElementsAre(L"doomed\\", L"doomed\\m\\", L"doomed\\z.mxf=b"));
    EXPECT_EQ(2u, m_closes.calls());
}

TEST_F(FailingDeletion, ToMakeTheFolderNormalLeavesItEmpty) {
    FailingImport<SetAttributes> const fails("SetFileAttributesW", FALSE, ERROR_ACCESS_DENIED, 7);
    test::ImportHook<RemoveFolder> const removes(
        "RemoveDirectoryW", [&](auto... arguments) { return removes.original()(arguments...); });

    EXPECT_EQ(ERROR_ACCESS_DENIED, remove());

    EXPECT_THAT(left(), ElementsAre(L"doomed\\"));
    EXPECT_EQ(1u, removes.calls());
}

TEST_F(FailingDeletion, ToRemoveTheFolderLeavesItEmpty) {
    FailingImport<RemoveFolder> const fails("RemoveDirectoryW", FALSE, ERROR_SHARING_VIOLATION, 2);

    EXPECT_EQ(ERROR_SHARING_VIOLATION, remove());

    EXPECT_THAT(left(), ElementsAre(L"doomed\\"));
}

TEST_F(FailingDeletion, LeaksNoHandle) {
    test::HandleLeakCheck const check;
    {
        FailingImport<FindNext> const fails("FindNextFileW", FALSE, ERROR_NETNAME_DELETED, 7);
        EXPECT_EQ(ERROR_NETNAME_DELETED, remove());
    }
    {
        FailingImport<DeleteOneFile> const fails("DeleteFileW", FALSE, ERROR_WRITE_PROTECT);
        EXPECT_EQ(ERROR_WRITE_PROTECT, remove());
    }

    EXPECT_EQ(0, remove());
}

TEST_F(FailingDeletion, WithoutMemoryLeavesNoSearchOpen) {
    auto const failures = test::failEachAllocation([&] { EXPECT_EQ(0, remove()); });

    EXPECT_LT(0u, failures);
    EXPECT_THAT(left(), IsEmpty());
    EXPECT_EQ(m_opens.calls(), m_closes.calls());
}
