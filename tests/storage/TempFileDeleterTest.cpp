// Files that last as long as an object.

#include "vrUtils/Storage/TempFileDeleter.h"

#include "tests/storage/Tree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using test::treeOf;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Storage::TempFileDeleter;

namespace {

static_assert(!std::is_convertible_v<vr::Path, TempFileDeleter>);
static_assert(std::is_copy_constructible_v<TempFileDeleter>);
static_assert(std::is_copy_assignable_v<TempFileDeleter>);
static_assert(std::is_nothrow_destructible_v<TempFileDeleter>);

class TempFiles : public testing::Test {
  protected:
    test::ScratchFolder m_folder;
    vr::Path const m_first = vr::Path::file(m_folder.write(L"first.mxf", "1"));
    vr::Path const m_second = vr::Path::file(m_folder.write(L"second.mxf", "2"));
    test::LogRecorder m_log;
};

} // namespace

TEST_F(TempFiles, GoWithTheObject) {
    {
        TempFileDeleter const deleter(m_first);
        EXPECT_TRUE(m_folder.exists(L"first.mxf"));
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"second.mxf=2"));
}

TEST_F(TempFiles, GoWhenAnExceptionPasses) {
    try {
        TempFileDeleter const deleter(m_first);
        throw std::runtime_error("test");
    } catch (std::runtime_error const&) {
    }

    EXPECT_FALSE(m_folder.exists(L"first.mxf"));
}

TEST_F(TempFiles, MayBeMadeBehindTheObject) {
    {
        TempFileDeleter const deleter(vr::Path::file(m_folder.file(L"third.mxf")));
        m_folder.write(L"third.mxf", "3");
    }

    EXPECT_FALSE(m_folder.exists(L"third.mxf"));
}

TEST_F(TempFiles, AreNoneWithoutAPath) {
    { TempFileDeleter const deleter; }
    { TempFileDeleter const deleter{vr::Path()}; }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"first.mxf=1", L"second.mxf=2"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(TempFiles, MayBeSetLater) {
    {
        TempFileDeleter deleter;
        deleter.SetFile(m_second);
        EXPECT_TRUE(m_folder.exists(L"second.mxf"));
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"first.mxf=1"));
}

TEST_F(TempFiles, StayWhenTheyAreReplaced) {
    {
        TempFileDeleter deleter(m_first);
        deleter.SetFile(m_second);
        EXPECT_TRUE(m_folder.exists(L"first.mxf"));
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"first.mxf=1"));
}

TEST_F(TempFiles, StayWhenAnEmptyPathIsSet) {
    {
        TempFileDeleter deleter(m_first);
        deleter.SetFile({});
    }

    EXPECT_TRUE(m_folder.exists(L"first.mxf"));
}

TEST_F(TempFiles, GoWithTheFirstCopy) {
    TempFileDeleter const deleter(m_first);

    { auto const copy = deleter; }

    EXPECT_FALSE(m_folder.exists(L"first.mxf"));
}

TEST_F(TempFiles, GoOnceMoreWithTheSecondCopy) {
    {
        TempFileDeleter const deleter(m_first);
        { auto const copy = deleter; }
        m_folder.write(L"first.mxf", "new");
    }

    EXPECT_FALSE(m_folder.exists(L"first.mxf"));
}

TEST_F(TempFiles, ThatWereAssignedGoAndTheEarlierOneStays) {
    {
        TempFileDeleter deleter(m_first);
        std::optional<TempFileDeleter> other(std::in_place, m_second);
        deleter = *other;
        EXPECT_TRUE(m_folder.exists(L"first.mxf"));
        other.reset();
        m_folder.write(L"second.mxf", "new");
    }

    EXPECT_THAT(treeOf(m_folder), ElementsAre(L"first.mxf=1"));
}

TEST_F(TempFiles, ThatHaveGoneAreNoFailure) {
    {
        TempFileDeleter const deleter(m_first);
        DeleteFileW(m_folder.file(L"first.mxf").c_str());
    }

    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(TempFiles, ThatAreOpenElsewhereStayWithoutAWord) {
    test::OwnedHandle const other(CreateFileW(
        m_folder.file(L"first.mxf").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
        0, nullptr));

    { TempFileDeleter const deleter(m_first); }

    EXPECT_TRUE(m_folder.exists(L"first.mxf"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(TempFiles, ThatAreReadOnlyStay) {
    auto const name = m_folder.file(L"first.mxf");
    SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_READONLY);

    { TempFileDeleter const deleter(m_first); }

    EXPECT_TRUE(m_folder.exists(L"first.mxf"));
}

TEST_F(TempFiles, AreNeverFolders) {
    m_folder.makeFolder(L"folder");

    { TempFileDeleter const deleter(vr::Path::folder(m_folder.file(L"folder\\"))); }

    EXPECT_TRUE(m_folder.exists(L"folder"));
}

TEST_F(TempFiles, AreDeletedOnceByTheirNormalForm) {
    std::vector<std::wstring> deleted;
    test::ImportHook<decltype(DeleteFileW)> const hook("DeleteFileW", [&](LPCWSTR name) -> BOOL {
        deleted.push_back(name);
        return FALSE;
    });

    { TempFileDeleter const deleter(vr::Path::file(L"D:/a//b.mxf")); }

    EXPECT_THAT(deleted, ElementsAre(L"D:\\a\\b.mxf"));
}

TEST_F(TempFiles, StayWithoutMemoryForTheirName) {
    std::optional<TempFileDeleter> deleter(std::in_place, m_first);
    test::AllocationCounter counter;
    counter.failAt(1);

    deleter.reset();

    EXPECT_LE(1u, counter.allocations());
    EXPECT_TRUE(m_folder.exists(L"first.mxf"));
}

TEST_F(TempFiles, LeakNothing) {
    { TempFileDeleter const deleter(m_first); }
    test::HandleLeakCheck const check;

    { TempFileDeleter const deleter(m_first); }
    { TempFileDeleter const deleter(m_second); }
}
