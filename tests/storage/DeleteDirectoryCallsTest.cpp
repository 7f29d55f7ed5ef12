// The calls by which a folder is removed, and what is left when one of them fails.

#include "vrUtils/Storage/Directories.h"

#include "tests/storage/DeletingDirectory.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using test::DeletingDirectory;
using test::FailingImport;
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

} // namespace

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
