// Deletions that can be undone: what is on the disk behind each step, and behind each failure.

#include "vrUtils/Storage/RecoverableFileDeleter.h"

#include "tests/storage/StorageFailures.h"
#include "tests/storage/Tree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchShare.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::Storage;
using test::FailingImport;
using test::Logged;
using test::LoggedFormat;
using test::treeOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

static_assert(!std::is_copy_constructible_v<RecoverableFileDeleter>);
static_assert(!std::is_copy_assignable_v<RecoverableFileDeleter>);
static_assert(std::is_nothrow_destructible_v<RecoverableFileDeleter>);
static_assert(std::is_base_of_v<vrStorageException, vrCopyFileException>);
static_assert(std::is_base_of_v<vrStorageException, vrDeleteFileException>);

using Copy = decltype(CopyFileW);

// `media\clip.mxf` and a neighbour, which no test may lose.
class RecoverableDeletion : public testing::Test {
  protected:
    RecoverableDeletion() { m_folder.write(L"media\\other.mxf", "other"); }

    ~RecoverableDeletion() override { EXPECT_EQ("other", m_folder.read(L"media\\other.mxf")); }

    RecoverableFileDeleter deleter() const {
        return RecoverableFileDeleter(vr::Path::file(m_file), L"Host");
    }

    // What is in the folder of the file, but for the neighbour.
    std::vector<std::wstring> media() const {
        auto tree = treeOf(m_folder, L"media");
        tree.erase(std::find(tree.begin(), tree.end(), L"media\\other.mxf=other"));
        for (auto& entry : tree)
            entry.erase(0, 6);
        return tree;
    }

    void openElsewhere(std::wstring const& name, DWORD sharing) {
        m_other.reset(
            CreateFileW(name.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_NE(INVALID_HANDLE_VALUE, m_other.get());
    }

    test::ScratchFolder m_folder;
    std::wstring const m_file = m_folder.write(L"media\\clip.mxf", "media");
    std::wstring const m_recovery = m_folder.file(L"media\\Recovery\\");
    std::wstring const m_copy = m_recovery + L"clip.mxf";
    test::OwnedHandle m_other;
    test::LogRecorder m_log;
};

class FailingRecoverableDeletion : public RecoverableDeletion {};

} // namespace

TEST_F(RecoverableDeletion, BeginsWithNothingOnDisk) {
    {
        auto const idle = deleter();
        EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
    }

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(RecoverableDeletion, KeepsACopyBesideTheFile) {
    auto deleted = deleter();

    deleted.Delete();

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media"));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(7, L"Created temporary folder \"" + m_recovery + L"\"", L"Host")));
}

TEST_F(RecoverableDeletion, IsFinalWhenTheObjectGoes) {
    {
        auto deleted = deleter();
        deleted.Delete();
        m_log.clear();
    }

    EXPECT_THAT(media(), IsEmpty());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(RecoverableDeletion, RecoversWithACopyLeft) {
    auto deleted = deleter();
    deleted.Delete();

    deleted.Recover();

    EXPECT_THAT(
        media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"clip.mxf=media"));
}

TEST_F(RecoverableDeletion, IsUndoneForGoodWhenTheObjectGoes) {
    {
        auto deleted = deleter();
        deleted.Delete();
        deleted.Recover();
    }

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
}

TEST_F(RecoverableDeletion, RecoversOverWhatTookThePlace) {
    auto deleted = deleter();
    deleted.Delete();
    m_folder.write(L"media\\clip.mxf", "half of the transfer that failed");

    deleted.Recover();

    EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
}

TEST_F(RecoverableDeletion, RecoversAsOftenAsItIsAsked) {
    auto deleted = deleter();
    deleted.Delete();
    deleted.Recover();
    DeleteFileW(m_file.c_str());

    deleted.Recover();

    EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
}

TEST_F(RecoverableDeletion, OfTwoTimesLosesTheCopyOfTheFirst) {
    auto deleted = deleter();
    deleted.Delete();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(2, m_copy));

    EXPECT_THAT(media(), IsEmpty());
}

TEST_F(RecoverableDeletion, BehindARecoveryFailsAndKeepsTheFile) {
    auto deleted = deleter();
    deleted.Delete();
    deleted.Recover();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(3, m_copy));

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
    EXPECT_THAT(
        m_log.lines(), ElementsAre(
                           Logged(7, L"Created temporary folder \"" + m_recovery + L"\"", L"Host"),
                           Logged(7, L"Using temporary folder \"\"", L"Host")));
}

TEST_F(RecoverableDeletion, OfTheThirdTimeIsPossibleAgain) {
    auto deleted = deleter();
    deleted.Delete();
    deleted.Recover();
    EXPECT_ANY_THROW(deleted.Delete());

    deleted.Delete();

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media"));
}

TEST_F(RecoverableDeletion, AheadOfItThereIsNothingToRecover) {
    auto idle = deleter();

    EXPECT_THAT([&] { idle.Recover(); }, FailsAs<vrCopyFileException>(3, m_file));

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
}

TEST_F(RecoverableDeletion, InAFolderThatWasThereKeepsFolderAndCopy) {
    m_folder.write(L"media\\Recovery\\old.mxf", "old");
    {
        auto deleted = deleter();
        deleted.Delete();
    }

    EXPECT_THAT(
        media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"Recovery\\old.mxf=old"));
    EXPECT_THAT(m_log.lines(), ElementsAre(Logged(7, L"Using temporary folder \"\"", L"Host")));
}

TEST_F(RecoverableDeletion, InAFolderThatWasThereMayBeRepeated) {
    m_folder.makeFolder(L"media\\Recovery");
    auto deleted = deleter();
    deleted.Delete();
    deleted.Recover();

    EXPECT_NO_THROW(deleted.Delete());

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media"));
}

TEST_F(RecoverableDeletion, ReplacesACopyThatWasThere) {
    m_folder.write(L"media\\Recovery\\clip.mxf", "of an earlier day");
    auto deleted = deleter();

    deleted.Delete();

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media"));
}

TEST_F(RecoverableDeletion, RecoversWhatAnotherProcessLeftBehind) {
    m_folder.write(L"media\\Recovery\\clip.mxf", "of another process");
    DeleteFileW(m_file.c_str());

    deleter().Recover();

    EXPECT_THAT(
        media(), ElementsAre(
                     L"Recovery\\", L"Recovery\\clip.mxf=of another process",
                     L"clip.mxf=of another process"));
}

TEST_F(RecoverableDeletion, ThatMadeTheFolderTakesTheCopiesOfOthersAlong) {
    m_folder.write(L"media\\second.mxf", "second");
    std::optional<RecoverableFileDeleter> first(std::in_place, vr::Path::file(m_file), L"Host");
    RecoverableFileDeleter second(vr::Path::file(m_folder.file(L"media\\second.mxf")), L"Host");
    first->Delete();
    second.Delete();
    EXPECT_THAT(
        media(),
        ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"Recovery\\second.mxf=second"));

    first.reset();

    EXPECT_THAT(media(), IsEmpty());
    EXPECT_THROW(second.Recover(), vrCopyFileException);
}

TEST_F(RecoverableDeletion, ThatFoundTheFolderLeavesTheCopiesOfOthers) {
    m_folder.write(L"media\\second.mxf", "second");
    auto first = deleter();
    first.Delete();
    {
        RecoverableFileDeleter second(vr::Path::file(m_folder.file(L"media\\second.mxf")), L"Host");
        second.Delete();
    }

    EXPECT_THAT(
        media(),
        ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"Recovery\\second.mxf=second"));
}

TEST_F(RecoverableDeletion, OfAReadOnlyFileFailsBehindTheCopy) {
    SetFileAttributesW(m_file.c_str(), FILE_ATTRIBUTE_READONLY);
    auto deleted = deleter();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrDeleteFileException>(5, m_file));

    EXPECT_THAT(
        media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"clip.mxf=media"));
}

TEST_F(RecoverableDeletion, OfADotNamedFileKeepsItsCopyForEver) {
    m_folder.write(L"media\\.clip", "hidden");
    DeleteFileW(m_file.c_str());
    {
        RecoverableFileDeleter deleted(vr::Path::file(m_folder.file(L"media\\.clip")), L"Host");
        deleted.Delete();
        m_log.clear();
    }

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\.clip=hidden"));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(4, L"Unable to delete temp folder \"" + m_recovery + L"\"", L"Host")));
}

TEST_F(RecoverableDeletion, LogsUnderTheModuleOfItsOwnerWithTheTextAsFormat) {
    auto const file = m_folder.write(L"media\\100%s\\a.mxf", "bytes");
    {
        RecoverableFileDeleter deleted(vr::Path::file(file), L"50%d");
        deleted.Delete();
    }

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(LoggedFormat(
            7, L"Created temporary folder \"" + m_folder.file(L"media\\100%s\\Recovery\\") + L"\"",
            L"50%d")));
    RemoveDirectoryW(m_folder.file(L"media\\100%s").c_str());
}

TEST_F(RecoverableDeletion, WorksOnAShare) {
    test::ScratchShare const share;
    auto const file = share.path() + L"\\clip.mxf";
    ASSERT_TRUE(CopyFileW(m_file.c_str(), file.c_str(), TRUE));
    {
        RecoverableFileDeleter deleted(vr::Path::file(file), L"Host");
        deleted.Delete();
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(file.c_str()));
        deleted.Recover();
    }

    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(file.c_str()));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW((share.path() + L"\\Recovery").c_str()));
}

TEST_F(RecoverableDeletion, TakesTheNormalFormOfThePath) {
    RecoverableFileDeleter deleted(vr::Path::file(m_folder.path() + L"//media//clip.mxf"), L"Host");
    openElsewhere(m_file, FILE_SHARE_READ);

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrDeleteFileException>(32, m_file));
}

TEST_F(RecoverableDeletion, CopiesOverAndDeletesBehindTheCopy) {
    std::vector<std::wstring> calls;
    test::ImportHook<Copy> const copies("CopyFileW", [&](LPCWSTR from, LPCWSTR to, BOOL keeps) {
        calls.push_back(std::wstring(from) + L" > " + to + (keeps ? L" keeps" : L""));
        return copies.original()(from, to, keeps);
    });
    test::ImportHook<decltype(DeleteFileW)> const deletes("DeleteFileW", [&](LPCWSTR name) {
        calls.push_back(name);
        return deletes.original()(name);
    });
    auto deleted = deleter();

    deleted.Delete();
    deleted.Recover();

    EXPECT_THAT(calls, ElementsAre(m_file + L" > " + m_copy, m_file, m_copy + L" > " + m_file));
}

TEST_F(FailingRecoverableDeletion, OfTheFolderShowsAtTheCopy) {
    FailingImport<decltype(CreateDirectoryW)> const fails(
        "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED);
    auto deleted = deleter();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(3, m_copy));

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(4, L"Unable to create temporary folder \"" + m_recovery + L"\"", L"Host")));
}

TEST_F(FailingRecoverableDeletion, ForAFileInThePlaceOfTheFolderKeepsBoth) {
    m_folder.write(L"media\\Recovery", "a file");
    auto deleted = deleter();

    EXPECT_THROW(deleted.Delete(), vrCopyFileException);

    EXPECT_THAT(media(), ElementsAre(L"Recovery=a file", L"clip.mxf=media"));
}

TEST_F(FailingRecoverableDeletion, ForAFolderInThePlaceOfTheCopyKeepsBoth) {
    m_folder.makeFolder(L"media\\Recovery\\clip.mxf");
    auto deleted = deleter();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(5, m_copy));

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf\\", L"clip.mxf=media"));
}

TEST_F(FailingRecoverableDeletion, ForAMissingFileLeavesNothing) {
    DeleteFileW(m_file.c_str());
    {
        auto deleted = deleter();
        EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(2, m_copy));
    }

    EXPECT_THAT(media(), IsEmpty());
}

TEST_F(FailingRecoverableDeletion, ForAMissingParentIsThatOfTheCopy) {
    RecoverableFileDeleter deleted(
        vr::Path::file(m_folder.file(L"media\\missing\\clip.mxf")), L"Host");

    EXPECT_THAT(
        [&] { deleted.Delete(); },
        FailsAs<vrCopyFileException>(3, m_folder.file(L"media\\missing\\Recovery\\clip.mxf")));
}

TEST_F(FailingRecoverableDeletion, OfTheCopyKeepsTheFile) {
    for (DWORD const error : {5ul, 32ul, 39ul, 53ul, 112ul}) {
        auto deleted = deleter();
        FailingImport<Copy> const fails("CopyFileW", FALSE, error);
        test::ImportHook<decltype(DeleteFileW)> const deletes(
            "DeleteFileW", [&](auto... arguments) { return deletes.original()(arguments...); });

        EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(error, m_copy));

        EXPECT_EQ(0u, deletes.calls());
        EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"clip.mxf=media"));
    }

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
}

TEST_F(FailingRecoverableDeletion, OfADiskThatIsFullHalfWayKeepsTheFile) {
    {
        auto deleted = deleter();
        test::ImportHook<Copy> const fills("CopyFileW", [&](auto...) -> BOOL {
            m_folder.write(L"media\\Recovery\\clip.mxf", "med");
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
        EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(112, m_copy));
        EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
    }

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
}

TEST_F(FailingRecoverableDeletion, OfAFileThatIsOpenElsewhereKeepsFileAndCopy) {
    openElsewhere(m_file, FILE_SHARE_READ);
    auto deleted = deleter();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrDeleteFileException>(32, m_file));

    EXPECT_THAT(
        media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"clip.mxf=media"));
}

TEST_F(FailingRecoverableDeletion, OfAFileThatNobodyMayReadKeepsTheFile) {
    openElsewhere(m_file, 0);
    auto deleted = deleter();

    EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrCopyFileException>(32, m_copy));

    m_other.reset();
    EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
}

TEST_F(FailingRecoverableDeletion, ToDeleteEndsWithTheFileAlone) {
    for (DWORD const error : {5ul, 19ul, 32ul, 1117ul}) {
        auto deleted = deleter();
        FailingImport<decltype(DeleteFileW)> const fails("DeleteFileW", FALSE, error);
        EXPECT_THAT([&] { deleted.Delete(); }, FailsAs<vrDeleteFileException>(error, m_file));
        EXPECT_THAT(
            media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media", L"clip.mxf=media"));
    }

    EXPECT_THAT(media(), ElementsAre(L"clip.mxf=media"));
}

TEST_F(FailingRecoverableDeletion, ToRecoverKeepsTheCopyAndMayBeTriedAgain) {
    auto deleted = deleter();
    deleted.Delete();
    {
        FailingImport<Copy> const fails("CopyFileW", FALSE, ERROR_DISK_FULL);
        EXPECT_THAT([&] { deleted.Recover(); }, FailsAs<vrCopyFileException>(112, m_file));
    }
    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media"));

    deleted.Recover();

    EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
}

TEST_F(FailingRecoverableDeletion, ToRecoverOverAFileThatIsOpenElsewhereKeepsTheCopy) {
    auto deleted = deleter();
    deleted.Delete();
    m_folder.write(L"media\\clip.mxf", "new");
    openElsewhere(m_file, 0);

    EXPECT_THAT([&] { deleted.Recover(); }, FailsAs<vrCopyFileException>(32, m_file));

    EXPECT_EQ("media", m_folder.read(L"media\\Recovery\\clip.mxf"));
}

TEST_F(FailingRecoverableDeletion, ToRecoverLosesTheCopyWithTheObject) {
    {
        auto deleted = deleter();
        deleted.Delete();
        FailingImport<Copy> const fails("CopyFileW", FALSE, ERROR_DISK_FULL);
        EXPECT_THROW(deleted.Recover(), vrCopyFileException);
    }

    EXPECT_THAT(media(), IsEmpty());
}

TEST_F(FailingRecoverableDeletion, AtTheEndIsLoggedAndKeepsTheCopy) {
    std::optional<RecoverableFileDeleter> deleted(std::in_place, vr::Path::file(m_file), L"Host");
    deleted->Delete();
    m_log.clear();
    openElsewhere(m_copy, FILE_SHARE_READ);

    deleted.reset();

    EXPECT_THAT(media(), ElementsAre(L"Recovery\\", L"Recovery\\clip.mxf=media"));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(4, L"Unable to delete temp folder \"" + m_recovery + L"\"", L"Host")));
}

TEST_F(FailingRecoverableDeletion, LeaksNoHandle) {
    EXPECT_ANY_THROW(deleter().Recover());
    test::HandleLeakCheck const check;
    {
        auto deleted = deleter();
        FailingImport<Copy> const fails("CopyFileW", FALSE, ERROR_DISK_FULL);
        EXPECT_ANY_THROW(deleted.Delete());
    }
    {
        auto deleted = deleter();
        FailingImport<decltype(DeleteFileW)> const fails("DeleteFileW", FALSE, 5);
        EXPECT_ANY_THROW(deleted.Delete());
    }

    auto deleted = deleter();
    deleted.Delete();
    EXPECT_NO_THROW(deleted.Recover());
}

TEST_F(FailingRecoverableDeletion, WithoutMemoryKeepsTheFile) {
    auto const deletesWithFailing = [&](unsigned number) {
        auto deleted = deleter();
        test::AllocationCounter counter;
        counter.failAt(number);
        try {
            deleted.Delete();
        } catch (std::bad_alloc const&) {
            counter.failNone();
            return false;
        }
        counter.failNone();
        return true;
    };

    unsigned failures = 0;
    while (!deletesWithFailing(failures + 1)) {
        ++failures;
        ASSERT_THAT(media(), ElementsAre(L"clip.mxf=media")) << "at allocation " << failures;
    }

    EXPECT_LT(0u, failures);
    EXPECT_THAT(media(), IsEmpty());
}

TEST_F(FailingRecoverableDeletion, WithoutMemoryToRecoverKeepsTheCopy) {
    auto deleted = deleter();
    deleted.Delete();

    auto const failures = test::failEachAllocation([&] {
        EXPECT_EQ("media", m_folder.read(L"media\\Recovery\\clip.mxf"));
        deleted.Recover();
    });

    EXPECT_LT(0u, failures);
    EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
}

TEST_F(FailingRecoverableDeletion, WithoutMemoryAtTheEndDoesNotThrow) {
    for (unsigned number = 1; number <= 10; ++number) {
        m_folder.write(L"media\\clip.mxf", "media");
        std::optional<RecoverableFileDeleter> deleted(
            std::in_place, vr::Path::file(m_file), L"Host");
        deleted->Delete();
        deleted->Recover();
        test::AllocationCounter counter;
        counter.failAt(number);

        deleted.reset();

        counter.failNone();
        EXPECT_EQ("media", m_folder.read(L"media\\clip.mxf"));
        DeleteFileW(m_copy.c_str());
        RemoveDirectoryW(m_recovery.c_str());
    }
}
