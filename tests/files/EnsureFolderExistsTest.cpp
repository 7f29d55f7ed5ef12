#include "vrUtils/Files/FileQueries.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>

using namespace vrUtils::Files;

namespace {

using Create = decltype(SHCreateDirectoryExW);

bool isFolder(std::wstring const& name) {
    auto const attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

class EnsureFolderExists : public testing::Test {
  protected:
    test::ScratchFolder m_folder;
};

} // namespace

TEST_F(EnsureFolderExists, MakesAFolder) {
    ensureFolderExists(vr::Path::folder(m_folder.file(L"new")));

    EXPECT_TRUE(isFolder(m_folder.file(L"new")));
}

TEST_F(EnsureFolderExists, MakesAllMissingLevels) {
    ensureFolderExists(vr::Path::folder(m_folder.file(L"a\\b b\\\u00E4\\d.e\\")));

    EXPECT_TRUE(isFolder(m_folder.file(L"a\\b b\\\u00E4\\d.e")));
}

TEST_F(EnsureFolderExists, LeavesAnExistingFolderAlone) {
    test::FailingImport<Create> const fails("SHCreateDirectoryExW", ERROR_ACCESS_DENIED, 0);

    EXPECT_NO_THROW(ensureFolderExists(vr::Path::folder(m_folder.path())));

    EXPECT_EQ(0u, fails.calls());
}

TEST_F(EnsureFolderExists, LeavesAnExistingFileAlone) {
    m_folder.write(L"a.bin", "content");

    EXPECT_NO_THROW(ensureFolderExists(vr::Path::file(m_folder.file(L"a.bin"))));

    EXPECT_EQ("content", m_folder.read(L"a.bin"));
}

TEST_F(EnsureFolderExists, FailsWhenAnotherMakesTheFolderMeanwhile) {
    auto const name = m_folder.file(L"new");
    test::ImportHook<Create> const hook(
        "SHCreateDirectoryExW",
        [&](HWND window, LPCWSTR path, SECURITY_ATTRIBUTES const* security) {
            EXPECT_TRUE(CreateDirectoryW(path, nullptr));
            return hook.original()(window, path, security);
        });

    EXPECT_THAT(
        [&] { ensureFolderExists(vr::Path::folder(name)); },
        FailsWith(L"SHCreateDirectoryEx failed on \"" + name + L"\" - error 183"));
}

TEST_F(EnsureFolderExists, FailsWithTheReturnedNumberAndNotTheLastError) {
    auto const name = m_folder.file(L"new");
    test::FailingImport<Create> const fails("SHCreateDirectoryExW", 206, ERROR_ACCESS_DENIED);

    EXPECT_THAT(
        [&] { ensureFolderExists(vr::Path::folder(name)); },
        FailsWith(L"SHCreateDirectoryEx failed on \"" + name + L"\" - error 206"));
}

TEST_F(EnsureFolderExists, FailsOnARelativePath) {
    EXPECT_THAT(
        [&] { ensureFolderExists(vr::Path::folder(L"no such folder")); },
        FailsWith(L"SHCreateDirectoryEx failed on \"no such folder\" - error 161"));
}

TEST_F(EnsureFolderExists, FailsOnAnEmptyPath) {
    EXPECT_THAT(
        [&] { ensureFolderExists(vr::Path()); },
        FailsWith(L"SHCreateDirectoryEx failed on \"\" - error 161"));
}

TEST_F(EnsureFolderExists, FailsBelowAFile) {
    m_folder.write(L"a.bin", "content");
    auto const name = m_folder.file(L"a.bin\\new");

    EXPECT_THAT(
        [&] { ensureFolderExists(vr::Path::folder(name)); },
        FailsWith(L"SHCreateDirectoryEx failed on \"" + name + L"\" - error 3"));
}

TEST_F(EnsureFolderExists, AsksForTheNormalFormWithoutWindowAndSecurity) {
    std::wstring text;
    HWND owner = GetDesktopWindow();
    void const* security = this;
    test::ImportHook const hook(
        "SHCreateDirectoryExW",
        [&](HWND window, LPCWSTR path, SECURITY_ATTRIBUTES const* attributes) -> int {
            text = path;
            owner = window;
            security = attributes;
            return 0;
        });

    ensureFolderExists(vr::Path::folder(m_folder.path() + L"//new"));

    EXPECT_EQ(m_folder.file(L"new"), text);
    EXPECT_EQ(nullptr, owner);
    EXPECT_EQ(nullptr, security);
}

TEST_F(EnsureFolderExists, LeaksNoHandle) {
    ensureFolderExists(vr::Path::folder(m_folder.file(L"first")));
    test::HandleLeakCheck const check;

    ensureFolderExists(vr::Path::folder(m_folder.file(L"a\\b\\c")));
    EXPECT_ANY_THROW(ensureFolderExists(vr::Path::folder(L"no such folder")));
}
