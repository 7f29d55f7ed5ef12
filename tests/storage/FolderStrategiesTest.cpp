// The ways to make and to remove a folder, one by one.

#include "storage/FolderStrategies.h"

#include "foundation/Platform.h"
#include "tests/storage/Tree.h"
#include "tests/support/ImportHook.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace vrUtils::Storage;
using test::FailingImport;
using test::treeOf;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

using Create = decltype(CreateDirectoryW);

static_assert(FolderCreated == 0 && FolderExisted == 1 && FolderFailed == 2);

// A disk on which every folder exists but one.
class FullDisk {
  public:
    explicit FullDisk(std::wstring vacant = {}) : m_vacant(std::move(vacant)) {}

    std::vector<std::wstring> const& tried() const { return m_tried; }

  private:
    BOOL create(LPCWSTR text, SECURITY_ATTRIBUTES const* security) {
        EXPECT_EQ(nullptr, security);
        m_tried.push_back(text);
        if (m_vacant == text)
            return TRUE;
        SetLastError(ERROR_ALREADY_EXISTS);
        return FALSE;
    }

    std::wstring m_vacant;
    std::vector<std::wstring> m_tried;
    test::ImportHook<Create> m_hook{
        "CreateDirectoryW",
        [this](LPCWSTR text, SECURITY_ATTRIBUTES* security) { return create(text, security); }};
};

// The first name that is tried beside a folder that exists.
struct FirstNumber {
    wchar_t const* text;
    wchar_t const* sibling;

    friend void PrintTo(FirstNumber const& tested, std::ostream* stream) {
        *stream << testing::PrintToString(tested.text);
    }
};

class FirstNumberOf : public testing::TestWithParam<FirstNumber> {};

INSTANTIATE_TEST_SUITE_P(
    Folders, FirstNumberOf,
    testing::Values(
        FirstNumber{L"C:\\tmp\\work\\", L"C:\\tmp\\work.01\\"},
        FirstNumber{L"C:\\tmp\\work.d\\", L"C:\\tmp\\work.d.01\\"},
        FirstNumber{L"C:\\work\\", L"C:\\work.01\\"},
        FirstNumber{L"\\\\srv\\share\\work\\", L"\\\\srv\\share\\work.01\\"},
        FirstNumber{L"work\\", L"work.01\\"}, FirstNumber{L"a\\work\\", L"a\\work.01\\"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutSeparator, FirstNumberOf,
    testing::Values(
        FirstNumber{L"C:\\tmp\\work", L"C:\\tmp.01\\"},
        FirstNumber{L"C:\\tmp\\work.d", L"C:\\tmp.01\\"},
        FirstNumber{L"\\\\srv\\share\\work", L"\\\\srv\\share.01\\"},
        FirstNumber{L"a\\work", L"a.01\\"}));

} // namespace

TEST(FolderCreatorUseExisting, KeepsTheTextOfAFolderThatItMakes) {
    test::ScratchFolder const folder;
    auto text = folder.file(L"work");

    EXPECT_EQ(FolderCreated, FolderCreatorUseExisting().Create(text));

    EXPECT_EQ(folder.file(L"work"), text);
    EXPECT_THAT(treeOf(folder), ElementsAre(L"work\\"));
}

TEST(FolderCreatorUseExisting, ClearsTheTextOfAFolderThatExists) {
    test::ScratchFolder const folder;
    auto text = folder.path();

    EXPECT_EQ(FolderExisted, FolderCreatorUseExisting().Create(text));

    EXPECT_EQ(L"", text);
}

TEST(FolderCreatorUseExisting, FailsWithTheErrorForItsCallerToRead) {
    std::wstring text = L"D:\\work";
    FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_DISK_FULL);

    EXPECT_EQ(FolderFailed, FolderCreatorUseExisting().Create(text));

    EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
    EXPECT_EQ(L"D:\\work", text);
    EXPECT_EQ(1u, fails.calls());
}

TEST(FolderCreatorNewNameIfExists, KeepsTheTextOfAFolderThatItMakes) {
    test::ScratchFolder const folder;
    auto text = folder.file(L"work");

    EXPECT_EQ(FolderCreated, FolderCreatorNewNameIfExists().Create(text));

    EXPECT_EQ(folder.file(L"work"), text);
    EXPECT_THAT(treeOf(folder), ElementsAre(L"work\\"));
}

TEST_P(FirstNumberOf, IsOne) {
    FullDisk const disk(GetParam().sibling);
    std::wstring text = GetParam().text;

    EXPECT_EQ(FolderCreated, FolderCreatorNewNameIfExists().Create(text));

    EXPECT_EQ(GetParam().sibling, text);
    EXPECT_THAT(disk.tried(), ElementsAre(GetParam().text, GetParam().sibling));
}

TEST(FolderCreatorNewNameIfExists, TriesAHundredNumbersOfTwoDigitsAndMore) {
    FullDisk const disk;
    std::wstring text = L"C:\\tmp\\work\\";

    EXPECT_EQ(FolderFailed, FolderCreatorNewNameIfExists().Create(text));

    ASSERT_THAT(disk.tried(), SizeIs(101));
    EXPECT_EQ(L"C:\\tmp\\work.01\\", disk.tried().at(1));
    EXPECT_EQ(L"C:\\tmp\\work.09\\", disk.tried().at(9));
    EXPECT_EQ(L"C:\\tmp\\work.10\\", disk.tried().at(10));
    EXPECT_EQ(L"C:\\tmp\\work.99\\", disk.tried().at(99));
    EXPECT_EQ(L"C:\\tmp\\work.100\\", disk.tried().at(100));
    EXPECT_EQ(L"C:\\tmp\\work\\", text);
    EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
}

TEST(FolderCreatorNewNameIfExists, StopsAtTheFirstNameThatIsFree) {
    FullDisk const disk(L"C:\\work.100\\");
    std::wstring text = L"C:\\work\\";

    EXPECT_EQ(FolderCreated, FolderCreatorNewNameIfExists().Create(text));

    EXPECT_EQ(L"C:\\work.100\\", text);
}

TEST(FolderCreatorNewNameIfExists, DoesNotNumberBehindAnotherFailure) {
    std::wstring text = L"D:\\work\\";
    FailingImport<Create> const fails(
        "CreateDirectoryW", FALSE, ERROR_PATH_NOT_FOUND, test::everyCall);

    EXPECT_EQ(FolderFailed, FolderCreatorNewNameIfExists().Create(text));

    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_EQ(L"D:\\work\\", text);
    EXPECT_EQ(1u, fails.calls());
}

TEST(FolderCreatorNewNameIfExists, StopsNumberingAtAnotherFailure) {
    FullDisk const disk;
    FailingImport<Create> const fails("CreateDirectoryW", FALSE, ERROR_DISK_FULL, 5);
    std::wstring text = L"D:\\work\\";

    EXPECT_EQ(FolderFailed, FolderCreatorNewNameIfExists().Create(text));

    EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
    EXPECT_EQ(L"D:\\work\\", text);
    EXPECT_THAT(disk.tried(), SizeIs(4));
}

TEST(FolderDeleterIfEmpty, RemovesOnlyWhatIsEmpty) {
    test::ScratchFolder const folder;
    folder.makeFolder(L"empty");
    folder.write(L"filled\\clip.mxf", "b");

    EXPECT_TRUE(FolderDeleterIfEmpty().Delete(folder.file(L"empty")));
    EXPECT_FALSE(FolderDeleterIfEmpty().Delete(folder.file(L"filled")));
    EXPECT_FALSE(FolderDeleterIfEmpty().Delete(folder.file(L"missing")));

    EXPECT_THAT(treeOf(folder), ElementsAre(L"filled\\", L"filled\\clip.mxf=b"));
}

TEST(FolderDeleterAlways, RemovesAllButDotNames) {
    test::ScratchFolder const folder;
    folder.write(L"filled\\sub\\clip.mxf", "b");
    folder.write(L"kept\\.clip", "b");

    EXPECT_TRUE(FolderDeleterAlways().Delete(folder.file(L"filled")));
    EXPECT_TRUE(FolderDeleterAlways().Delete(folder.file(L"missing")));
    EXPECT_FALSE(FolderDeleterAlways().Delete(folder.file(L"kept")));

    EXPECT_THAT(treeOf(folder), ElementsAre(L"kept\\", L"kept\\.clip=b"));
}

TEST(FolderStrategies, StandForTheirBehaviours) {
    EXPECT_NE(nullptr, dynamic_cast<FolderCreatorUseExisting const*>(folderCreator(UseExisting)));
    EXPECT_NE(
        nullptr, dynamic_cast<FolderCreatorNewNameIfExists const*>(folderCreator(NewNameIfExists)));
    EXPECT_NE(nullptr, dynamic_cast<FolderDeleterIfEmpty const*>(folderDeleter(DeleteIfEmpty)));
    EXPECT_NE(nullptr, dynamic_cast<FolderDeleterAlways const*>(folderDeleter(DeleteAlways)));
}

TEST(FolderStrategies, AreNoneForOtherValues) {
    for (int const value : {-1, 2, 3, 0x7FFFFFFF}) {
        EXPECT_EQ(nullptr, folderCreator(static_cast<CreateBehaviour>(value)));
        EXPECT_EQ(nullptr, folderDeleter(static_cast<DeleteBehaviour>(value)));
    }
}
