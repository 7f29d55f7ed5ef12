// Folders that last as long as an object: each way to make one with each way to remove it.

#include "vrUtils/Storage/TempFolder.h"

#include "tests/storage/Tree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/PathPrinter.h"
#include "tests/support/ScratchShare.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

using namespace vrUtils::Storage;
using test::FailingImport;
using test::Logged;
using test::LoggedFormat;
using test::treeOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

static_assert(UseExisting == 0 && NewNameIfExists == 1);
static_assert(DeleteIfEmpty == 0 && DeleteAlways == 1);
static_assert(!std::is_copy_constructible_v<TempFolder>);
static_assert(!std::is_copy_assignable_v<TempFolder>);
static_assert(std::is_nothrow_destructible_v<TempFolder>);

using Create = decltype(CreateDirectoryW);

class TempFolders : public testing::Test {
  protected:
    // With the separator that closes it, as a folder is entered.
    vr::Path work() const { return vr::Path::folder(m_work); }

    auto logged(int level, std::wstring const& start, std::wstring const& path) const {
        return Logged(level, start + L" temporary folder \"" + path + L"\"", L"Host");
    }

    auto loggedUnableToDelete(std::wstring const& path) const {
        return Logged(4, L"Unable to delete temp folder \"" + path + L"\"", L"Host");
    }

    test::ScratchFolder m_folder;
    std::wstring const m_work = m_folder.file(L"work\\");
    test::LogRecorder m_log;
};

// Both ways to make a folder, and both to remove it.
struct Behaviours {
    CreateBehaviour create;
    DeleteBehaviour remove;

    friend void PrintTo(Behaviours const& tested, std::ostream* stream) {
        *stream << (tested.create == UseExisting ? "UseExisting" : "NewNameIfExists") << ", "
                << (tested.remove == DeleteIfEmpty ? "DeleteIfEmpty" : "DeleteAlways");
    }
};

class AnyTempFolder : public TempFolders, public testing::WithParamInterface<Behaviours> {
  protected:
    std::optional<TempFolder> make() const {
        return std::optional<TempFolder>(
            std::in_place, work(), GetParam().create, GetParam().remove, L"Host");
    }
};

INSTANTIATE_TEST_SUITE_P(
    All, AnyTempFolder,
    testing::Values(
        Behaviours{UseExisting, DeleteIfEmpty}, Behaviours{UseExisting, DeleteAlways},
        Behaviours{NewNameIfExists, DeleteIfEmpty}, Behaviours{NewNameIfExists, DeleteAlways}));

constexpr auto noCreateBehaviour = static_cast<CreateBehaviour>(2);
constexpr auto noDeleteBehaviour = static_cast<DeleteBehaviour>(-1);

} // namespace

TEST_P(AnyTempFolder, ThatIsNewIsMadeAndRemoved) {
    auto folder = make();

    EXPECT_TRUE(folder->Created());
    EXPECT_EQ(work(), folder->Name());
    EXPECT_EQ(m_work, folder->Name().str());
    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\"));
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(7, L"Created", m_work)));

    m_log.clear();
    folder.reset();
    EXPECT_THAT(treeOf(m_folder), IsEmpty());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(AnyTempFolder, WithoutAParentIsNotMade) {
    auto const text = m_folder.file(L"missing\\work\\");
    {
        TempFolder const folder(
            vr::Path::folder(text), GetParam().create, GetParam().remove, L"Host");
        EXPECT_FALSE(folder.Created());
        EXPECT_EQ(text, folder.Name().str());
    }

    EXPECT_THAT(treeOf(m_folder), IsEmpty());
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(4, L"Unable to create", text)));
}

TEST_P(AnyTempFolder, ThatCannotBeMadeIsTriedOnce) {
    FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_DISK_FULL, test::everyCall);

    auto folder = make();

    EXPECT_FALSE(folder->Created());
    EXPECT_EQ(m_work, folder->Name().str());
    EXPECT_EQ(1u, fails.calls());
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(4, L"Unable to create", m_work)));
}

TEST_P(AnyTempFolder, ThatCouldNotBeMadeIsNotRemovedThoughItIsThereByThen) {
    std::optional<TempFolder> folder;
    {
        FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_DISK_FULL);
        folder.emplace(work(), GetParam().create, GetParam().remove, L"Host");
    }
    m_folder.makeFolder(L"work");

    folder.reset();

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\"));
}

TEST_P(AnyTempFolder, IsRemovedWhenAnExceptionPasses) {
    try {
        auto const folder = make();
        throw std::runtime_error("test");
    } catch (std::runtime_error const&) {
    }

    EXPECT_THAT(treeOf(m_folder), IsEmpty());
}

TEST_P(AnyTempFolder, ThatSomebodyHasRemovedIsLoggedOrNot) {
    auto folder = make();
    m_log.clear();
    ASSERT_TRUE(RemoveDirectoryW(m_work.c_str()));

    folder.reset();

    // What is not there counts as deleted, but not as removed.
    if (GetParam().remove == DeleteAlways)
        EXPECT_THAT(m_log.lines(), IsEmpty());
    else
        EXPECT_THAT(m_log.lines(), ElementsAre(loggedUnableToDelete(m_work)));
}

TEST_P(AnyTempFolder, LogsUnderTheModuleOfItsOwnerWithTheTextAsFormat) {
    auto const text = m_folder.file(L"100%s %n\\");
    {
        TempFolder const folder(
            vr::Path::folder(text), GetParam().create, GetParam().remove, L"50%d");
        m_folder.write(L"100%s %n\\.kept", "b");
    }

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            LoggedFormat(7, L"Created temporary folder \"" + text + L"\"", L"50%d"),
            LoggedFormat(4, L"Unable to delete temp folder \"" + text + L"\"", L"50%d")));
}

TEST_P(AnyTempFolder, LeaksNoHandle) {
    make();
    test::HandleLeakCheck const check;

    make();
    FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_DISK_FULL, test::everyCall);
    make();
}

TEST_P(AnyTempFolder, WithoutMemoryLeavesNoFolderBehind) {
    std::optional<TempFolder> folder;

    EXPECT_LT(0u, test::failEachAllocation([&] {
                  EXPECT_THAT(treeOf(m_folder), IsEmpty());
                  folder.emplace(work(), GetParam().create, GetParam().remove, L"Host");
              }));

    EXPECT_EQ(m_work, folder->Name().str());
    folder.reset();
    EXPECT_THAT(treeOf(m_folder), IsEmpty());
}

TEST_F(TempFolders, ThatWereThereStayWithoutMemory) {
    m_folder.makeFolder(L"work");

    EXPECT_LT(0u, test::failEachAllocation([this] {
                  TempFolder const folder(work(), UseExisting, DeleteAlways, L"Host");
              }));

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\"));
}

TEST_P(AnyTempFolder, WithoutMemoryAtItsEndDoesNotThrow) {
    for (unsigned number = 1; number <= 10; ++number) {
        auto folder = make();
        test::AllocationCounter counter;
        counter.failAt(number);

        folder.reset();

        counter.failNone();
        RemoveDirectoryW(m_work.c_str());
    }

    EXPECT_THAT(treeOf(m_folder), IsEmpty());
}

TEST_F(TempFolders, ThatExistsIsUsedWithoutItsName) {
    m_folder.write(L"work\\clip.mxf", "bytes");
    for (auto const remove : {DeleteIfEmpty, DeleteAlways}) {
        TempFolder const folder(work(), UseExisting, remove, L"Host");
        EXPECT_FALSE(folder.Created());
        EXPECT_TRUE(folder.Name().empty());
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work\\clip.mxf=bytes"));
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(7, L"Using", L""), logged(7, L"Using", L"")));
}

TEST_F(TempFolders, ThatExistsEmptyStays) {
    m_folder.makeFolder(L"work");

    for (auto const remove : {DeleteIfEmpty, DeleteAlways})
        TempFolder const folder(work(), UseExisting, remove, L"Host");

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\"));
}

TEST_F(TempFolders, TakesAFileForAFolderThatExists) {
    m_folder.write(L"work", "bytes");
    {
        TempFolder const folder(
            vr::Path::folder(m_folder.file(L"work")), UseExisting, DeleteAlways, L"Host");
        EXPECT_FALSE(folder.Created());
        EXPECT_TRUE(folder.Name().empty());
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work=bytes"));
}

TEST_F(TempFolders, BesideOneThatExistsGetsANumber) {
    m_folder.write(L"work\\clip.mxf", "bytes");
    auto const sibling = m_folder.file(L"work.01\\");
    {
        TempFolder const folder(work(), NewNameIfExists, DeleteAlways, L"Host");
        EXPECT_TRUE(folder.Created());
        EXPECT_EQ(sibling, folder.Name().str());
        m_folder.write(L"work.01\\new.mxf", "new");
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work\\clip.mxf=bytes"));
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(7, L"Created", sibling)));
}

TEST_F(TempFolders, OfOneNameAreNumberedInTurn) {
    TempFolder const first(work(), NewNameIfExists, DeleteIfEmpty, L"Host");
    TempFolder const second(work(), NewNameIfExists, DeleteIfEmpty, L"Host");
    std::optional<TempFolder> third(std::in_place, work(), NewNameIfExists, DeleteIfEmpty, L"Host");
    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work.01\\", L"work.02\\"));

    third.reset();
    TempFolder const fourth(work(), NewNameIfExists, DeleteIfEmpty, L"Host");

    EXPECT_EQ(m_folder.file(L"work.02\\"), fourth.Name().str());
}

TEST_F(TempFolders, WithoutASeparatorIsNumberedByItsParent) {
    m_folder.makeFolder(L"tmp\\work");
    auto const text = m_folder.file(L"tmp\\work");
    {
        TempFolder const folder(vr::Path::folder(text), NewNameIfExists, DeleteIfEmpty, L"Host");
        EXPECT_EQ(m_folder.file(L"tmp.01\\"), folder.Name().str());
        EXPECT_THAT(treeOf(m_folder), ElementsAre(L"tmp\\", L"tmp\\work\\", L"tmp.01\\"));
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"tmp\\", L"tmp\\work\\"));
}

TEST_F(TempFolders, AreAHundredAtTheMostBesideOne) {
    m_folder.makeFolder(L"work");
    for (int number = 1; number <= 98; ++number)
        m_folder.makeFolder((number < 10 ? L"work.0" : L"work.") + std::to_wstring(number));

    TempFolder const last2(work(), NewNameIfExists, DeleteIfEmpty, L"Host");
    TempFolder const last1(work(), NewNameIfExists, DeleteIfEmpty, L"Host");
    TempFolder const none(work(), NewNameIfExists, DeleteIfEmpty, L"Host");

    EXPECT_TRUE(last2.Created());
    EXPECT_TRUE(last1.Created());
    EXPECT_FALSE(none.Created());
    EXPECT_THAT(
        m_log.lines(), ElementsAre(
                           logged(7, L"Created", m_folder.file(L"work.99\\")),
                           logged(7, L"Created", m_folder.file(L"work.100\\")),
                           logged(4, L"Unable to create", m_work)));
    EXPECT_EQ(101u, m_folder.names().size());
}

TEST_F(TempFolders, StopNumberingAtAnyOtherFailure) {
    m_folder.makeFolder(L"work");
    m_folder.makeFolder(L"work.01");
    FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED, 3);
    {
        TempFolder const folder(work(), NewNameIfExists, DeleteAlways, L"Host");
        EXPECT_FALSE(folder.Created());
        EXPECT_EQ(m_work, folder.Name().str());
    }

    EXPECT_EQ(3u, fails.calls());
    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work.01\\"));
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(4, L"Unable to create", m_work)));
}

TEST_F(TempFolders, OnAShareAreNumberedThere) {
    test::ScratchShare const share;
    auto const text = share.path() + L"\\work\\";
    TempFolder const first(vr::Path::folder(text), NewNameIfExists, DeleteIfEmpty, L"Host");
    TempFolder const second(vr::Path::folder(text), NewNameIfExists, DeleteIfEmpty, L"Host");

    EXPECT_EQ(text, first.Name().str());
    EXPECT_EQ(share.path() + L"\\work.01\\", second.Name().str());
    EXPECT_TRUE(second.Created());
}

TEST_F(TempFolders, ThatAreFilledStayWithDeleteIfEmpty) {
    {
        TempFolder const folder(work(), UseExisting, DeleteIfEmpty, L"Host");
        m_folder.write(L"work\\clip.mxf", "bytes");
        m_log.clear();
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work\\clip.mxf=bytes"));
    EXPECT_THAT(m_log.lines(), ElementsAre(loggedUnableToDelete(m_work)));
}

TEST_F(TempFolders, WithAnEmptyFolderInThemStayWithDeleteIfEmpty) {
    {
        TempFolder const folder(work(), UseExisting, DeleteIfEmpty, L"Host");
        m_folder.makeFolder(L"work\\sub");
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work\\sub\\"));
}

TEST_F(TempFolders, GoWithAllThatIsInThemWithDeleteAlways) {
    {
        TempFolder const folder(work(), UseExisting, DeleteAlways, L"Host");
        auto const readOnly = m_folder.write(L"work\\sub\\clip.mxf", "bytes");
        SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
        m_folder.write(L"worker.mxf", "kept");
        m_log.clear();
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"worker.mxf=kept"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(TempFolders, WithADotNamedFileStayAlsoWithDeleteAlways) {
    {
        TempFolder const folder(work(), UseExisting, DeleteAlways, L"Host");
        m_folder.write(L"work\\.kept", "bytes");
        m_folder.write(L"work\\clip.mxf", "bytes");
        m_log.clear();
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work\\.kept=bytes"));
    EXPECT_THAT(m_log.lines(), ElementsAre(loggedUnableToDelete(m_work)));
}

TEST_F(TempFolders, WithAFileThatIsOpenElsewhereStay) {
    test::OwnedHandle other;
    {
        TempFolder const folder(work(), UseExisting, DeleteAlways, L"Host");
        auto const file = m_folder.write(L"work\\clip.mxf", "bytes");
        other.reset(CreateFileW(
            file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        m_log.clear();
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\", L"work\\clip.mxf=bytes"));
    EXPECT_THAT(m_log.lines(), ElementsAre(loggedUnableToDelete(m_work)));
}

TEST_F(TempFolders, LogThatTheyCannotBeRemoved) {
    for (auto const remove : {DeleteIfEmpty, DeleteAlways}) {
        m_folder.makeFolder(L"parent");
        auto const text = m_folder.file(L"parent\\work\\");
        std::optional<TempFolder> folder(
            std::in_place, vr::Path::folder(text), UseExisting, remove, L"Host");
        m_log.clear();
        FailingImport<decltype(RemoveDirectoryW)> const fails("RemoveDirectoryW", FALSE, 5);

        folder.reset();

        EXPECT_THAT(m_log.lines(), ElementsAre(loggedUnableToDelete(text)));
        EXPECT_TRUE(RemoveDirectoryW(text.c_str()));
    }
}

TEST_F(TempFolders, OfNoCreateBehaviourAreNotMade) {
    {
        TempFolder const folder(work(), noCreateBehaviour, DeleteAlways, L"Host");
        EXPECT_FALSE(folder.Created());
        EXPECT_EQ(m_work, folder.Name().str());
    }

    EXPECT_THAT(treeOf(m_folder), IsEmpty());
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(4, L"Unable to create", m_work)));
}

TEST_F(TempFolders, OfNoDeleteBehaviourStay) {
    {
        TempFolder const folder(work(), UseExisting, noDeleteBehaviour, L"Host");
        EXPECT_TRUE(folder.Created());
        m_log.clear();
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"work\\"));
    EXPECT_THAT(m_log.lines(), ElementsAre(loggedUnableToDelete(m_work)));
}

TEST_F(TempFolders, HaveTheNormalFormOfThePath) {
    auto withSlashes = m_work;
    std::replace(withSlashes.begin(), withSlashes.end(), L'\\', L'/');

    TempFolder const folder(vr::Path::folder(withSlashes), UseExisting, DeleteIfEmpty, L"Host");

    EXPECT_EQ(m_work, folder.Name().str());
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(7, L"Created", m_work)));
}

TEST_F(TempFolders, OfAnEmptyPathAreNotMade) {
    TempFolder const folder(vr::Path(), UseExisting, DeleteAlways, L"Host");

    EXPECT_FALSE(folder.Created());
    EXPECT_THAT(m_log.lines(), ElementsAre(logged(4, L"Unable to create", L"")));
}

TEST_F(TempFolders, AreMadeFromAPathThatMayGo) {
    auto path = work();
    TempFolder const folder(path, UseExisting, DeleteIfEmpty, L"Host");

    path = vr::Path::folder(L"D:\\elsewhere\\");

    EXPECT_EQ(m_work, folder.Name().str());
}
