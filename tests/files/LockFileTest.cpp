#include "tests/files/HostileName.h"
#include "tests/files/LockFiles.h"
#include "tests/files/Outsider.h"
#include "tests/support/HandleCount.h"
#include "vrUtils/Process.h"
#include "vrUtils/Storage.h"

#include <optional>
#include <type_traits>

using namespace vrUtils::Files;
using namespace std::string_literals;

static_assert(std::has_virtual_destructor_v<vrUtils::Files::LockFile>);
static_assert(std::is_nothrow_destructible_v<vrUtils::Files::LockFile>);
static_assert(
    !std::is_default_constructible_v<vrUtils::Files::LockFile>, "an object is a lock that is held");
static_assert(
    std::is_copy_constructible_v<vrUtils::Files::LockFile> &&
    std::is_copy_assignable_v<vrUtils::Files::LockFile>);
static_assert(
    sizeof(vrUtils::Files::LockFile) ==
        sizeof(void*) + sizeof(FileHandleWriteExclusive) + sizeof(vr::Path) + sizeof(std::wstring),
    "handle, path and name are all the state");

namespace {

vr::Path lockFilePathOf(vr::Path const& path);

// An explicit instantiation may name what is private.
template <auto lockFilePath>
struct Inside {
    friend vr::Path lockFilePathOf(vr::Path const& path) { return lockFilePath(path); }
};
template struct Inside<&vrUtils::Files::LockFile::GetLockFilePath>;

// A lock file whose holder leaves it behind.
class LeftBehind : public LockFiles {
  protected:
    std::string contentFor(std::wstring const& computer) const {
        ComputerNamed const name(computer);
        test::FailingImport<decltype(DeleteFileW)> const stays(
            "DeleteFileW", FALSE, ERROR_ACCESS_DENIED);
        take();
        return m_folder.read(L"clip.mxf.lck");
    }
};

} // namespace

TEST_F(LockFiles, LieBesideTheFileWhileTheLockIsHeld) {
    LockFile const lock(m_path);

    EXPECT_EQ(std::vector<std::wstring>{L"clip.mxf.lck"}, m_folder.names());
}

TEST_F(LockFiles, AreGoneAfterTheRelease) {
    take();

    EXPECT_EQ(std::vector<std::wstring>{}, m_folder.names());
}

TEST_F(LockFiles, LeaveTheProtectedFileAlone) {
    m_folder.write(L"clip.mxf", "content");

    LockFile const lock(m_path);

    EXPECT_EQ("content", m_folder.read(L"clip.mxf"));
    EXPECT_EQ(DWORD{ERROR_SUCCESS}, errorOfOutsider(m_text, GENERIC_WRITE | DELETE));
}

TEST_F(LeftBehind, HoldsTheNameAndNothingElse) {
    EXPECT_EQ("V\0R\0-\0007\0"s, contentFor(L"VR-7"));
}

TEST_F(LeftBehind, HoldsEachUnitWithItsLowByteFirst) {
    EXPECT_EQ("\xD6\0\x34\x12\x00\xD8\0\xE0"s, contentFor(L"\xD6\x1234\xD800\xE000"));
}

TEST_F(LeftBehind, HoldsTheLongestNameInFull) {
    EXPECT_EQ(30u, contentFor(L"ABCDEFGHIJKLMNO").size());
}

TEST_F(LeftBehind, IsEmptyWhereTheComputerHasNoName) { EXPECT_EQ("", contentFor({})); }

TEST_F(LeftBehind, HoldsTheNameOfThisComputer) {
    test::FailingImport<decltype(DeleteFileW)> const stays(
        "DeleteFileW", FALSE, ERROR_ACCESS_DENIED);
    take();

    auto const name = vrUtils::Process::GetComputerNameW();
    std::string const bytes(
        reinterpret_cast<char const*>(name.data()), name.size() * sizeof(wchar_t));
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(bytes, m_folder.read(L"clip.mxf.lck"));
}

TEST_F(LeftBehind, IsReplacedByTheNextTaker) {
    contentFor(L"DEAD");

    EXPECT_EQ("N\0E\0X\0T\0"s, contentFor(L"NEXT"));
}

TEST_F(LeftBehind, LeavesNothingOfALongerContent) {
    m_folder.write(L"clip.mxf.lck", std::string(100'000, 'x'));

    EXPECT_EQ("A\0"s, contentFor(L"A"));
}

TEST_F(LeftBehind, LeavesNothingOfAShorterContent) {
    m_folder.write(L"clip.mxf.lck", "x");

    EXPECT_EQ("N\0E\0X\0T\0"s, contentFor(L"NEXT"));
}

TEST_F(LeftBehind, IsRemovedByTheNextRelease) {
    contentFor(L"DEAD");

    take();

    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
}

TEST_F(LockFiles, CanBeOpenedByNobodyWhileTheLockIsHeld) {
    LockFile const lock(m_path);

    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOutsider(m_lockText, GENERIC_READ));
    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOutsider(m_lockText, GENERIC_WRITE));
    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOutsider(m_lockText, DELETE));
}

TEST_F(LockFiles, RefuseASecondObject) {
    LockFile const lock(m_path);

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
}

TEST_F(LockFiles, RefuseASecondObjectAtOnce) {
    LockFile const lock(m_path);
    test::ImportHook<decltype(CreateFileW)> const opens(
        "CreateFileW", [&](auto... arguments) { return opens.original()(arguments...); });

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_EQ(1u, opens.calls());
}

TEST_F(LockFiles, RefuseASecondObjectHoweverThePathIsSpelt) {
    LockFile const lock(m_path);
    auto const slashes = vr::Path::file(m_folder.path() + L"//CLIP.mxf");
    auto const folder = vr::Path::folder(m_text);

    EXPECT_THAT([&] { LockFile const second(slashes); }, FailsToLock(m_folder.file(L"CLIP.mxf")));
    EXPECT_THAT([&] { LockFile const second(folder); }, FailsToLock(m_text));
}

TEST_F(LockFiles, StayWithTheirHolderWhenASecondObjectIsRefused) {
    ComputerNamed const first(L"FIRST");
    test::FailingImport<decltype(DeleteFileW)> const stays(
        "DeleteFileW", FALSE, ERROR_ACCESS_DENIED);
    {
        LockFile const lock(m_path);
        ComputerNamed const second(L"SECOND");
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    }

    EXPECT_EQ("F\0I\0R\0S\0T\0"s, m_folder.read(L"clip.mxf.lck"));
}

TEST_F(LockFiles, GoToTheNextAfterTheRelease) {
    std::optional<LockFile> lock(std::in_place, m_path);
    lock.reset();

    EXPECT_NO_THROW(lock.emplace(m_path));
}

TEST_F(LockFiles, OfTwoPathsAreTwoLocks) {
    LockFile const lock(m_path);

    EXPECT_NO_THROW(LockFile(vr::Path::file(m_text + L"2")));
}

TEST_F(LockFiles, OfARelativePathStayWhereTheWorkingFolderHasChanged) {
    vrUtils::Storage::DirectorySetter const here(m_folder.path(), L"test");
    {
        LockFile const lock(vr::Path::file(L"clip.mxf"));
        SetCurrentDirectoryW(L"C:\\");
    }

    EXPECT_EQ(std::vector<std::wstring>{L"clip.mxf.lck"}, m_folder.names());
}

TEST_F(LockFiles, LeaveNoHandleOpen) {
    take();
    test::HandleLeakCheck const check;

    for (int round = 0; round < 100; ++round) {
        LockFile const lock(m_path);
        EXPECT_THAT([&] { take(); }, FailsToLock(m_text));
    }
}

namespace {

// A protected path, its text, and the lock file that goes with it.
struct LockName {
    char const* label;
    vr::Path path;
    std::wstring text;
    std::wstring lockFile;

    friend std::ostream& operator<<(std::ostream& stream, LockName const& name) {
        return stream << name.label;
    }
};

std::vector<LockName> lockNames() {
    using vr::Path;
    std::wstring const a300(300, L'a');
    std::wstring const a4000(4'000, L'a');
    // clang-format off
    return {
        {"File", Path::file(L"C:\\d\\a.mxf"), L"C:\\d\\a.mxf", L"C:\\d\\a.mxf.lck"},
        {"FileWithoutExtension", Path::file(L"C:\\d\\a"), L"C:\\d\\a", L"C:\\d\\a.lck"},
        {"FileThatEndsInADot", Path::file(L"C:\\d\\a."), L"C:\\d\\a.", L"C:\\d\\a..lck"},
        {"LockFileItself", Path::file(L"C:\\a.lck"), L"C:\\a.lck", L"C:\\a.lck.lck"},
        {"Folder", Path::folder(L"C:\\d\\day.1"), L"C:\\d\\day.1", L"C:\\d\\day.1.lck"},
        {"FolderThatIsClosed", Path::folder(L"C:\\d\\"), L"C:\\d\\", L"C:\\d\\.lck"},
        {"Drive", Path::folder(L"C:"), L"C:\\", L"C:\\.lck"},
        {"Share", Path::file(L"\\\\h:80\\s\\a.x"), L"\\\\h:80\\s\\a.x", L"\\\\h:80\\s\\a.x.lck"},
        {"Host", Path::folder(L"\\\\host"), L"\\\\host\\", L"\\\\host\\.lck"},
        {"Nothing", Path(), L"", L".lck"},
        {"NameAlone", Path::file(L"a.mxf"), L"a.mxf", L"a.mxf.lck"},
        {"OtherSeparators", Path::file(L"C:/d//e///a.mxf"), L"C:\\d\\e\\a.mxf", L"C:\\d\\e\\a.mxf.lck"},
        {"Stream", Path::file(L"C:\\a.mxf:s"), L"C:\\a.mxf:s", L"C:\\a.mxf:s.lck"},
        {"Percent", Path::file(L"C:\\%s%n 100%"), L"C:\\%s%n 100%", L"C:\\%s%n 100%.lck"},
        {"Blanks", Path::file(L"C:\\ d \\ a b .x "), L"C:\\ d \\ a b .x ", L"C:\\ d \\ a b .x .lck"},
        {"Surrogates", Path::file(L"C:\\a\xD83D.\xDE00"), L"C:\\a\xD83D.\xDE00", L"C:\\a\xD83D.\xDE00.lck"},
        {"Characters300", Path::file(a300), a300, a300 + L".lck"},
        {"Characters4000", Path::file(L"C:\\" + a4000), L"C:\\" + a4000, L"C:\\" + a4000 + L".lck"},
    };
    // clang-format on
}

class LockFileNames : public LockFiles, public testing::WithParamInterface<LockName> {};

INSTANTIATE_TEST_SUITE_P(, LockFileNames, testing::ValuesIn(lockNames()), [](auto const& tested) {
    return std::string(tested.param.label);
});

} // namespace

TEST_P(LockFileNames, AddTheExtensionToTheTextAndTheFailureNamesTheProtectedFile) {
    std::wstring opened;
    test::ImportHook const hook(
        "CreateFileW",
        [&](LPCWSTR name, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) -> HANDLE {
            opened = name;
            return INVALID_HANDLE_VALUE;
        });

    EXPECT_THAT([&] { LockFile const lock(GetParam().path); }, FailsToLock(GetParam().text));

    EXPECT_EQ(GetParam().lockFile, opened);
}

TEST_P(LockFileNames, AreThoseOfFiles) {
    auto path = lockFilePathOf(GetParam().path);

    EXPECT_EQ(GetParam().lockFile, path.str());
    EXPECT_EQ(L".lck", path.components().extension());
}

namespace {

class HostileLockNames : public LockFiles, public testing::WithParamInterface<HostileName> {};

INSTANTIATE_TEST_SUITE_P(
    , HostileLockNames,
    testing::Values(
        HostileName{"Percent", L"%s%n%d%.500s 100%"}, HostileName{"Blanks", L" a  b "},
        HostileName{"HighHalf", L"a\xD83D"}, HostileName{"LowHalf", L"\xDE00z"},
        HostileName{"Wildcard", L"*.?"}, HostileName{"Quotes", L"a\"b\""},
        HostileName{"Controls", L"a\n\x01"}, HostileName{"Characters300", std::wstring(300, L'a')},
        HostileName{"Characters4000", std::wstring(4'000, L'a')},
        HostileName{"Characters32767", std::wstring(32'767, L'a')}),
    [](auto const& tested) { return std::string(tested.param.label); });

} // namespace

TEST_P(HostileLockNames, AreTakenOrRefusedAsTold) {
    auto const path = vr::Path::file(m_folder.file(GetParam().name));
    test::HandleLeakCheck const check;

    try {
        LockFile const lock(path);
        EXPECT_THAT(
            [&] { LockFile const second(path); }, FailsToLock(m_folder.file(GetParam().name)));
    } catch (LockFileException const& failure) {
        EXPECT_EQ(L"Unable to lock " + m_folder.file(GetParam().name), failure.message());
    }

    EXPECT_EQ(std::vector<std::wstring>{}, m_folder.names());
}
