#include "tests/support/ScratchFolder.h"

#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <memory>

using testing::ElementsAre;

namespace {

bool isThere(std::wstring const& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

TEST(ScratchFolder, IsANewEmptyFolder) {
    test::ScratchFolder const folder;

    EXPECT_TRUE(isThere(folder.path()));
    EXPECT_THAT(folder.names(), ElementsAre());
    EXPECT_NE(L'\\', folder.path().back());
}

TEST(ScratchFolder, NoTwoAreTheSame) {
    test::ScratchFolder const one;
    test::ScratchFolder const other;

    EXPECT_NE(one.path(), other.path());
}

TEST(ScratchFolder, PassesOverAFolderThatWasLeftBehind) {
    std::wstring path;
    { path = test::ScratchFolder().path(); }
    auto const digit = path.rfind(L'-') + 1;
    auto const next = path.substr(0, digit) + std::to_wstring(std::stoi(path.substr(digit)) + 1);
    CreateDirectoryW(next.c_str(), nullptr);

    test::ScratchFolder const folder;

    EXPECT_NE(next, folder.path());
    RemoveDirectoryW(next.c_str());
}

TEST(ScratchFolder, WritesAndReadsFiles) {
    test::ScratchFolder const folder;

    auto const path = folder.write(L"clip.wav", std::string_view("RI\0FF", 5));

    EXPECT_EQ(folder.path() + L"\\clip.wav", path);
    EXPECT_EQ(std::string("RI\0FF", 5), folder.read(L"clip.wav"));
}

TEST(ScratchFolder, WritesBytes) {
    test::ScratchFolder const folder;

    folder.write(L"a.bin", std::vector<unsigned char>{0xFF, 0x00, 0x80});

    EXPECT_EQ(std::string("\xFF\0\x80", 3), folder.read(L"a.bin"));
}

TEST(ScratchFolder, WritesEmptyFiles) {
    test::ScratchFolder const folder;

    folder.write(L"empty", "");

    EXPECT_TRUE(folder.exists(L"empty"));
    EXPECT_EQ("", folder.read(L"empty"));
}

TEST(ScratchFolder, ReplacesAFile) {
    test::ScratchFolder const folder;
    folder.write(L"a.txt", "long text");

    folder.write(L"a.txt", "new");

    EXPECT_EQ("new", folder.read(L"a.txt"));
}

TEST(ScratchFolder, MakesMissingFolders) {
    test::ScratchFolder const folder;

    folder.write(L"a\\b\\c.txt", "c");
    folder.makeFolder(L"a\\d");

    EXPECT_THAT(folder.names(), ElementsAre(L"a"));
    EXPECT_THAT(folder.names(L"a"), ElementsAre(L"b", L"d"));
    EXPECT_THAT(folder.names(L"a\\b"), ElementsAre(L"c.txt"));
}

TEST(ScratchFolder, TellsWhatExists) {
    test::ScratchFolder const folder;
    folder.write(L"a.txt", "");

    EXPECT_TRUE(folder.exists(L"a.txt"));
    EXPECT_FALSE(folder.exists(L"b.txt"));
}

TEST(ScratchFolder, FailsToReadWhatIsNotThere) {
    test::ScratchFolder const folder;

    EXPECT_THROW(folder.read(L"none"), std::system_error);
}

TEST(ScratchFolder, RemovesEverything) {
    auto folder = std::make_unique<test::ScratchFolder>();
    auto const path = folder->path();
    folder->write(L"a\\b\\c.txt", "c");
    auto const readOnly = folder->write(L"a\\read-only.txt", "r");
    SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
    folder->write(L".hidden", "h");

    folder.reset();

    EXPECT_FALSE(isThere(path));
}

TEST(ScratchFolder, TakesUmlautsAndEmoji) {
    auto folder = std::make_unique<test::ScratchFolder>();
    auto const path = folder->path();
    std::wstring const name = L"T\u00F6ne \U0001F3AC";

    folder->write(name + L"\\\u00DF.wav", "x");

    EXPECT_THAT(folder->names(), ElementsAre(name));
    folder.reset();
    EXPECT_FALSE(isThere(path));
}

TEST(ScratchFolder, TakesPathsOverTheLimit) {
    auto folder = std::make_unique<test::ScratchFolder>();
    auto const path = folder->path();
    std::wstring deep(200, L'a');
    for (int level = 0; level < 3; ++level)
        deep += L"\\" + std::wstring(200, L'b');

    folder->write(deep + L"\\c.txt", "deep");

    EXPECT_EQ("deep", folder->read(deep + L"\\c.txt"));
    folder.reset();
    EXPECT_FALSE(isThere(path));
}

TEST(ScratchFolder, MayBeRemovedByTheTestItself) {
    test::ScratchFolder const folder;

    EXPECT_TRUE(RemoveDirectoryW(folder.path().c_str()));
}

TEST(ScratchFolder, FailsTheTestThatLeavesAFileOpen) {
    auto folder = std::make_unique<test::ScratchFolder>();
    auto const path = folder->path();
    auto const file = folder->write(L"open.txt", "");
    test::OwnedHandle handle(
        CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));

    EXPECT_NONFATAL_FAILURE(folder.reset(), "open.txt");

    handle.reset();
    DeleteFileW(file.c_str());
    RemoveDirectoryW(path.c_str());
}
