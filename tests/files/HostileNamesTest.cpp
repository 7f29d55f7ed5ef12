#include "vrUtils/Files.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/files/HostileName.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vrUtils::Files;

namespace {

std::vector<HostileName> hostileNames() {
    return {
        {"Percent", L"%s%n%d%.500s 100%"},
        {"Wildcard", L"*.?"},
        {"Quotes", L"a\"b\".bin"},
        {"Controls", L"a\x01\x1F\n.bin"},
        {"Characters300", std::wstring(300, L'a')},
        {"Characters4000", std::wstring(4'000, L'a')},
        {"Characters32767", std::wstring(32'767, L'a')},
        {"Folders8000", std::wstring(16'000, L'a').replace(1, 1, L"\\")},
        {"HighHalf", L"a\xD83D"},
        {"LowHalf", L"\xDE00z"},
        {"ZeroInside", std::wstring(L"a\0b.bin", 7)},
    };
}

class HostileNames : public testing::TestWithParam<HostileName> {
  protected:
    std::wstring failureOfQuery() const {
        WIN32_FILE_ATTRIBUTE_DATA data;
        EXPECT_FALSE(GetFileAttributesExW(m_text.c_str(), GetFileExInfoStandard, &data));
        return L"GetFileAttributesEx failed on \"" + m_text + L"\" - error " +
               std::to_wstring(GetLastError());
    }

    test::ScratchFolder m_folder;
    vr::Path const m_path = vr::Path::file(m_folder.path() + L"\\" + GetParam().name);
    std::wstring const m_text = m_path.components().wholePath();
    std::vector<char> m_bytes{'a', 'b'};
};

INSTANTIATE_TEST_SUITE_P(, HostileNames, testing::ValuesIn(hostileNames()), [](auto const& tested) {
    return std::string(tested.param.label);
});

} // namespace

TEST_P(HostileNames, QueriesOfAMissingFileFailAsTold) {
    test::HandleLeakCheck const check;

    EXPECT_FALSE(FileExists(m_path));
    EXPECT_TRUE(DeleteFileIfExists(m_path));
    EXPECT_THAT([&] { FileLength(m_path); }, FailsWith(failureOfQuery()));
    EXPECT_THAT([&] { FileModificationDateTime(m_path); }, FailsWith(failureOfQuery()));
    EXPECT_THAT([&] { FileIsOffline(m_path); }, FailsWith(failureOfQuery()));
    EXPECT_THAT(
        [&] { GetAgeOfFileInHours(m_path); },
        FailsWith(L"Unable to determine age of file " + m_text));
}

TEST_P(HostileNames, LoadOfAMissingFileFailsAsTold) {
    test::HandleLeakCheck const check;

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, 1000, &m_bytes); },
        FailsWith(L"Unable to open file " + m_text));

    EXPECT_EQ(2u, m_bytes.size());
}

TEST_P(HostileNames, SaveIsReadBackOrFailsAsTold) {
    test::HandleLeakCheck const check;

    try {
        SaveSmallFile(m_bytes, m_path);
        std::vector<char> loaded;
        LoadSmallFile(m_path, 2, &loaded);
        EXPECT_EQ(m_bytes, loaded);
        EXPECT_TRUE(DeleteFileIfExists(m_path));
    } catch (vrException const& failure) {
        EXPECT_EQ(L"Unable to open file " + m_text, failure.message());
    }

    EXPECT_FALSE(FileExists(m_path));
}

TEST_P(HostileNames, FolderIsMadeOrFailsAsTold) {
    // The shell opens handles at its first use that stay.
    ensureFolderExists(vr::Path::folder(m_folder.file(L"first")));
    test::HandleLeakCheck const check;

    try {
        ensureFolderExists(m_path);
        // Not every shell refuses what is longer than it can make; some cut it.
        EXPECT_TRUE(FileExists(m_path) || m_text.size() >= MAX_PATH);
    } catch (vrException const& failure) {
        auto const beginning = L"SHCreateDirectoryEx failed on \"" + m_text + L"\" - error ";
        EXPECT_EQ(beginning, failure.message().substr(0, beginning.size()));
        EXPECT_NE(L"0", failure.message().substr(beginning.size()));
    }
}

TEST(EmptyPath, NamesNoFile) {
    vr::Path const path;
    std::vector<char> bytes;

    EXPECT_FALSE(FileExists(path));
    EXPECT_TRUE(DeleteFileIfExists(path));
    EXPECT_THAT(
        [&] { FileLength(path); }, FailsWith(L"GetFileAttributesEx failed on \"\" - error 3"));
    EXPECT_THAT([&] { GetAgeOfFileInHours(path); }, FailsWith(L"Unable to determine age of file "));
    EXPECT_THAT([&] { LoadSmallFile(path, 1, &bytes); }, FailsWith(L"Unable to open file "));
    EXPECT_THAT([&] { SaveSmallFile(bytes, path); }, FailsWith(L"Unable to open file "));
}
