// Making folders, one or a chain of them.

#include "vrUtils/Storage/Directories.h"

#include "tests/storage/StorageFailures.h"
#include "tests/storage/Tree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchShare.h"
#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::Storage;
using test::isFolder;
using test::Logged;
using test::LoggedFormat;
using test::treeOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Create = decltype(CreateDirectoryW);

// Who handles the library's failures does not handle these.
static_assert(!std::is_base_of_v<vrException, vrCreateFolderException>);
static_assert(std::is_base_of_v<vrStorageException, vrCreateFolderException>);

// The folders that the library tries to make, none of which it makes.
class TriedFolders {
  public:
    std::vector<std::wstring> of(vr::Path const& path) {
        m_tried.clear();
        MakeDirectoryIterative(path);
        return m_tried;
    }

  private:
    std::vector<std::wstring> m_tried;
    test::ImportHook<Create> m_hook{
        "CreateDirectoryW", [this](LPCWSTR text, SECURITY_ATTRIBUTES* security) -> BOOL {
            EXPECT_EQ(nullptr, security);
            m_tried.push_back(text);
            return TRUE;
        }};
};

class MakingDirectory : public testing::Test {
  protected:
    // A folder as it is entered: with the separator that closes it.
    vr::Path closed(std::wstring const& name) const {
        return vr::Path::folder(m_folder.file(name) + L'\\');
    }

    test::ScratchFolder m_folder;
    test::LogRecorder m_log;
};

class MakingDirectories : public MakingDirectory {};

} // namespace

TEST_F(MakingDirectory, MakesOne) {
    MakeDirectory(closed(L"a \u00E4\u65E5.d"));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a \u00E4\u65E5.d\\"));
}

TEST_F(MakingDirectory, TakesAPathOfAnyType) {
    MakeDirectory(vr::Path::folder(m_folder.file(L"folder")));
    MakeDirectory(vr::Path::file(m_folder.file(L"file.ext")));
    MakeDirectory(vr::Path(m_folder.file(L"detect"), vr::Path::eDetect));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"detect\\", L"file.ext\\", L"folder\\"));
}

TEST_F(MakingDirectory, LeavesAnExistingOneAsItIs) {
    m_folder.write(L"a\\clip.mxf", "bytes");

    EXPECT_NO_THROW(MakeDirectory(closed(L"a")));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\", L"a\\clip.mxf=bytes"));
}

TEST_F(MakingDirectory, TakesAnExistingFileForTheFolder) {
    m_folder.write(L"a", "bytes");

    EXPECT_NO_THROW(MakeDirectory(vr::Path::folder(m_folder.file(L"a"))));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a=bytes"));
}

TEST_F(MakingDirectory, FailsWithoutAParent) {
    auto const text = m_folder.file(L"missing\\a\\");

    EXPECT_THAT(
        [&] { MakeDirectory(vr::Path::folder(text)); }, FailsAs<vrCreateFolderException>(3, text));

    EXPECT_THAT(treeOf(m_folder), IsEmpty());
}

TEST_F(MakingDirectory, FailsWithTheNormalFormOfThePath) {
    EXPECT_THAT(
        [&] { MakeDirectory(vr::Path::folder(m_folder.path() + L"//missing/a/")); },
        FailsAs<vrCreateFolderException>(3, m_folder.file(L"missing\\a\\")));
}

TEST_F(MakingDirectory, FailsBelowAFile) {
    m_folder.write(L"a", "bytes");
    auto const text = m_folder.file(L"a\\b\\");

    EXPECT_THAT(
        [&] { MakeDirectory(vr::Path::folder(text)); }, FailsAs<vrCreateFolderException>(3, text));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a=bytes"));
}

TEST_F(MakingDirectory, FailsWithEveryErrorButThatOfAnExistingFolder) {
    auto const text = m_folder.file(L"a\\");

    for (DWORD const error : {5ul, 53ul, 80ul, 112ul, 182ul, 184ul}) {
        test::FailingImport<Create> const fails("CreateDirectoryW", FALSE, error);
        EXPECT_THAT(
            [&] { MakeDirectory(vr::Path::folder(text)); },
            FailsAs<vrCreateFolderException>(error, text));
    }

    EXPECT_THAT(treeOf(m_folder), IsEmpty());
}

TEST_F(MakingDirectory, FailsOnAnEmptyPath) {
    EXPECT_THROW(MakeDirectory(vr::Path()), vrCreateFolderException);
}

TEST_F(MakingDirectory, LogsNothing) {
    MakeDirectory(closed(L"a"));
    EXPECT_ANY_THROW(MakeDirectory(closed(L"missing\\a")));

    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(MakingDirectory, MakesOneOnAShare) {
    test::ScratchShare const share;

    MakeDirectory(vr::Path::folder(share.host(), L"share/a/"));

    EXPECT_TRUE(isFolder(L"UNC\\" + share.host() + L"\\share\\a"));
}

TEST_F(MakingDirectory, MakesWhatIsLongerThan260Characters) {
    auto const parent = m_folder.makeFolder(std::wstring(200, L'p'));

    MakeDirectory(vr::Path::folder(parent + L'\\' + std::wstring(200, L'n')));

    EXPECT_TRUE(isFolder(parent + L'\\' + std::wstring(200, L'n')));
}

TEST_F(MakingDirectories, MakeEveryLevel) {
    MakeDirectoryIterative(closed(L"a\\b b\\c.d"));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\", L"a\\b b\\", L"a\\b b\\c.d\\"));
}

TEST_F(MakingDirectories, GoOnBelowLevelsThatExist) {
    m_folder.write(L"a\\clip.mxf", "bytes");

    MakeDirectoryIterative(closed(L"a\\b"));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\", L"a\\b\\", L"a\\clip.mxf=bytes"));
}

TEST_F(MakingDirectories, LeaveAChainThatExistsAsItIs) {
    m_folder.write(L"a\\b\\clip.mxf", "bytes");

    EXPECT_NO_THROW(MakeDirectoryIterative(closed(L"a\\b")));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\", L"a\\b\\", L"a\\b\\clip.mxf=bytes"));
}

TEST_F(MakingDirectories, LeaveTheLastWordOutUnlessASeparatorClosesIt) {
    MakeDirectoryIterative(vr::Path::file(m_folder.file(L"a\\clip.mxf")));
    MakeDirectoryIterative(vr::Path::folder(m_folder.file(L"b\\folder")));
    MakeDirectoryIterative(vr::Path(m_folder.file(L"c\\detect"), vr::Path::eDetect));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\", L"b\\", L"c\\"));
}

TEST(MakingDirectoriesLevels, BeginBelowTheDrive) {
    EXPECT_THAT(
        TriedFolders().of(vr::Path::folder(L"D:\\a\\b\\")), ElementsAre(L"D:\\a", L"D:\\a\\b"));
}

TEST(MakingDirectoriesLevels, BeginBelowTheShare) {
    EXPECT_THAT(
        TriedFolders().of(vr::Path::folder(L"\\\\srv\\share\\a\\b\\")),
        ElementsAre(L"\\\\srv\\share\\a", L"\\\\srv\\share\\a\\b"));
}

TEST(MakingDirectoriesLevels, OfARelativePathBeginWithItsFirstFolder) {
    EXPECT_THAT(TriedFolders().of(vr::Path::folder(L"a\\b\\")), ElementsAre(L"a", L"a\\b"));
}

TEST(MakingDirectoriesLevels, AreNoneWhereThereIsNoFolder) {
    EXPECT_THAT(TriedFolders().of(vr::Path()), IsEmpty());
    EXPECT_THAT(TriedFolders().of(vr::Path::folder(L"D:\\")), IsEmpty());
    EXPECT_THAT(TriedFolders().of(vr::Path::file(L"D:\\clip.mxf")), IsEmpty());
    EXPECT_THAT(TriedFolders().of(vr::Path::folder(L"\\\\srv\\")), IsEmpty());
    EXPECT_THAT(TriedFolders().of(vr::Path::folder(L"\\\\srv\\share\\")), IsEmpty());
    EXPECT_THAT(TriedFolders().of(vr::Path::file(L"\\\\srv\\share\\clip.mxf")), IsEmpty());
}

TEST(MakingDirectoriesLevels, KeepHostAndPortOfTheRoot) {
    EXPECT_THAT(
        TriedFolders().of(vr::Path::folder(L"//srv:8080/share/a/")),
        ElementsAre(L"\\\\srv:8080\\share\\a"));
}

TEST_F(MakingDirectories, LogEveryLevelAheadOfItsAttempt) {
    std::vector<std::size_t> logged;
    test::ImportHook<Create> const hook("CreateDirectoryW", [&](auto...) -> BOOL {
        logged.push_back(m_log.lines().size());
        SetLastError(ERROR_ALREADY_EXISTS);
        return FALSE;
    });

    MakeDirectoryIterative(vr::Path::folder(L"D:\\a\\b\\"));

    EXPECT_THAT(logged, ElementsAre(1u, 2u));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(7, L"Creating Folder [D:\\a]"), Logged(7, L"Creating Folder [D:\\a\\b]")));
}

TEST_F(MakingDirectories, LogLevelsAsValues) {
    MakeDirectoryIterative(closed(L"100%s"));

    EXPECT_THAT(m_log.lines().back(), LoggedFormat(7, L"Creating Folder [%s]"));
    EXPECT_EQ(m_folder.file(L"100%s"), m_log.lines().back().values.at(0).text);
}

TEST_F(MakingDirectories, FailWithTheLevelThatFailed) {
    m_folder.write(L"a\\file", "bytes");

    EXPECT_THAT(
        [&] { MakeDirectoryIterative(closed(L"a\\file\\c\\d")); },
        FailsAs<vrCreateFolderException>(3, m_folder.file(L"a\\file\\c")));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\", L"a\\file=bytes"));
    EXPECT_THAT(
        m_log.lines().back(),
        Logged(7, L"Creating Folder [" + m_folder.file(L"a\\file\\c") + L"]"));
}

TEST_F(MakingDirectories, KeepTheLevelsAboveTheOneThatFailed) {
    test::FailingImport<Create> const fails(
        "CreateDirectoryW", FALSE, ERROR_DISK_FULL,
        static_cast<unsigned>(closed(L"a").components().folders().size() + 1));

    EXPECT_THAT(
        [&] { MakeDirectoryIterative(closed(L"a\\b\\c")); },
        FailsAs<vrCreateFolderException>(112, m_folder.file(L"a\\b")));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"a\\"));
}

TEST_F(MakingDirectories, MakeAChainOnAShare) {
    test::ScratchShare const share;

    MakeDirectoryIterative(vr::Path::folder(share.path() + L"\\a\\b\\"));

    EXPECT_TRUE(isFolder(L"UNC\\" + share.host() + L"\\share\\a\\b"));
    EXPECT_THAT(
        m_log.texts(), ElementsAre(
                           L"Creating Folder [" + share.path() + L"\\a]",
                           L"Creating Folder [" + share.path() + L"\\a\\b]"));
}

TEST_F(MakingDirectories, LeaveThePathOfTheCallerAlone) {
    auto const path = closed(L"a\\b");
    auto const text = path.components().wholePath();

    MakeDirectoryIterative(path);

    EXPECT_EQ(text, path.components().wholePath());
}

TEST_F(MakingDirectories, LeakNothingWhenALevelFails) {
    EXPECT_ANY_THROW(MakeDirectory(closed(L"missing\\a")));
    test::HandleLeakCheck const check;
    test::FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_ANY_THROW(MakeDirectoryIterative(closed(L"a\\b")));
}

TEST_F(MakingDirectories, PassOnThatThereIsNoMemory) {
    auto const path = closed(L"a folder with a name that needs memory\\b");

    EXPECT_LT(0u, test::failEachAllocation([&] { MakeDirectoryIterative(path); }));

    EXPECT_EQ(2u, treeOf(m_folder).size());
}
