#include "config/DumpFile.h"

#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

using vrUtils::Registry::DumpFile;

namespace {

using Write = std::size_t(void const*, std::size_t, std::size_t, std::FILE*);

class DumpFileTest : public testing::Test {
  protected:
    std::string content() const { return m_folder.read(L"a.reg"); }

    test::ScratchFolder m_folder;
    std::wstring const m_path = m_folder.file(L"a.reg");
};

// Whether the file lets in somebody who asks for this access and shares all but deleting.
bool opensFor(std::wstring const& path, DWORD access) {
    HANDLE const file = CreateFileW(
        path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(file);
    return true;
}

} // namespace

TEST_F(DumpFileTest, PutsACarriageReturnInFrontOfEachLineFeed) {
    DumpFile file(m_path);

    file.write(L"a\r\nb\n\r");
    file.close();

    EXPECT_EQ("a\r\r\nb\r\n\r", content());
}

TEST_F(DumpFileTest, AddsWhatIsWrittenToTheEnd) {
    DumpFile file(m_path);

    file.write(L"first, ");
    file.write(L"");
    file.write(L"second");
    file.close();

    EXPECT_EQ("first, second", content());
}

TEST_F(DumpFileTest, HasOneByteForEachCharacter) {
    std::wstring text;
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        text += static_cast<wchar_t>(value);
        bytes += value == '\n' ? "\r" : "";
        bytes += static_cast<char>(value);
    }
    DumpFile file(m_path);

    file.write(text);
    file.close();

    EXPECT_EQ(bytes, content());
}

TEST_F(DumpFileTest, EndsForGoodBeforeACharacterWithoutAByte) {
    DumpFile file(m_path);

    file.write(L"one, ");
    file.write(L"two\x0100three");
    file.write(L"four");
    file.close();

    EXPECT_EQ("one, two", content());
}

TEST_F(DumpFileTest, EndsBeforeASurrogatePair) {
    DumpFile file(m_path);

    file.write(L"a\xD83D\xDE00");
    file.write(L"b");
    file.close();

    EXPECT_EQ("a", content());
}

TEST_F(DumpFileTest, ReplacesALongerFile) {
    m_folder.write(L"a.reg", "something longer than what is written");
    DumpFile file(m_path);

    file.write(L"short");
    file.close();

    EXPECT_EQ("short", content());
}

TEST_F(DumpFileTest, MakesTheFileBeforeAnythingIsWritten) {
    DumpFile const file(m_path);

    EXPECT_EQ("", content());
}

TEST_F(DumpFileTest, IsClosedByItsEnd) {
    {
        DumpFile file(m_path);
        file.write(L"text");
    }

    EXPECT_EQ("text", content());
    EXPECT_TRUE(DeleteFileW(m_path.c_str()));
}

TEST_F(DumpFileTest, TakesNothingOnceItIsClosed) {
    DumpFile file(m_path);
    file.write(L"before");
    file.close();

    file.write(L"after");
    file.close();

    EXPECT_EQ("before", content());
}

TEST_F(DumpFileTest, LetsOthersReadAndWriteMeanwhile) {
    DumpFile const file(m_path);

    EXPECT_TRUE(opensFor(m_path, GENERIC_READ));
    EXPECT_TRUE(opensFor(m_path, GENERIC_WRITE));
}

TEST_F(DumpFileTest, OpensWhatOthersReadAndWrite) {
    m_folder.write(L"a.reg", "before");
    test::OwnedHandle const other(CreateFileW(
        m_path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    DumpFile file(m_path);

    file.write(L"after");
    file.close();

    EXPECT_EQ("after", content());
}

TEST_F(DumpFileTest, ThatCannotBeOpenedTakesEverythingWithoutAWord) {
    DumpFile file(m_folder.file(L"no folder\\a.reg"));

    EXPECT_NO_THROW(file.write(L"text"));
    EXPECT_NO_THROW(file.close());
}

TEST_F(DumpFileTest, EndsForGoodWhereNothingCanBeWritten) {
    DumpFile file(m_path);
    file.write(L"one, ");
    {
        test::FailingImport<Write> const fails("fwrite", 0, ERROR_DISK_FULL);
        file.write(L"two, ");
    }

    file.write(L"three");
    file.close();

    EXPECT_EQ("one, ", content());
}

TEST_F(DumpFileTest, EndsForGoodWhereOnlyAPartCanBeWritten) {
    DumpFile file(m_path);
    {
        test::ImportHook<Write> const shortens(
            "fwrite", [&](void const* data, std::size_t size, std::size_t, std::FILE* stream) {
                return shortens.original()(data, size, 2, stream);
            });
        file.write(L"one");
    }

    file.write(L"two");
    file.close();

    EXPECT_EQ("on", content());
}

TEST_F(DumpFileTest, LeavesNothingOpen) {
    DumpFile(m_path).write(L"the first use");
    test::HandleLeakCheck const check;

    DumpFile(m_path).write(L"text");
    DumpFile(m_path).write(L"\x0100");
    DumpFile(m_folder.path()).write(L"text");
}

TEST_F(DumpFileTest, FailedAllocationStaysOneAndLeavesNothingOpen) {
    DumpFile(m_path).write(L"the first use");
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation(
        [&] { DumpFile(m_path).write(L"a text that is longer than a small string"); });

    EXPECT_LT(0u, failed);
}
