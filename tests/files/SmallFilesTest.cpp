#include "vrUtils/Files/FileQueries.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

using namespace vrUtils::Files;

namespace {

using Bytes = std::vector<char>;
using Query = decltype(GetFileAttributesExW);

constexpr std::uint32_t noLimit = std::numeric_limits<std::uint32_t>::max();

Bytes bytesOf(std::string const& text) { return {text.begin(), text.end()}; }

class SmallFile : public testing::Test {
  protected:
    SmallFile() { m_folder.write(L"a.bin", "content"); }

    vr::Path pathOf(wchar_t const* name) const { return vr::Path::file(m_folder.file(name)); }

    test::ScratchFolder m_folder;
    std::wstring const m_name = m_folder.file(L"a.bin");
    vr::Path const m_path = vr::Path::file(m_name);
    Bytes m_bytes;
};

// Tells another length of every file than it has, as for a file that grows or shrinks meanwhile.
class ToldLength {
  public:
    explicit ToldLength(std::uint64_t length) : m_length(length) {}

  private:
    BOOL answer(LPCWSTR name, GET_FILEEX_INFO_LEVELS level, LPVOID answer) const {
        auto const result = m_hook.original()(name, level, answer);
        auto& data = *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(answer);
        data.nFileSizeHigh = static_cast<DWORD>(m_length >> 32);
        data.nFileSizeLow = static_cast<DWORD>(m_length);
        return result;
    }

    std::uint64_t const m_length;
    test::ImportHook<Query> const m_hook{
        "GetFileAttributesExW", [this](auto... arguments) { return answer(arguments...); }};
};

// Makes every allocation of the library disturb the last error.
class DisturbingAllocations {
    test::ImportHook<void*(std::size_t)> const m_hook{"malloc", [this](std::size_t size) {
                                                          auto* const block =
                                                              m_hook.original()(size);
                                                          SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                                                          return block;
                                                      }};
};

} // namespace

class SmallFileLoad : public SmallFile {};

TEST_F(SmallFileLoad, GivesTheContent) {
    LoadSmallFile(m_path, noLimit, &m_bytes);

    EXPECT_EQ(bytesOf("content"), m_bytes);
}

TEST_F(SmallFileLoad, GivesEveryByteValue) {
    std::string all;
    for (int value = 0; value < 256; ++value)
        all += static_cast<char>(value);
    m_folder.write(L"all.bin", all);

    LoadSmallFile(pathOf(L"all.bin"), noLimit, &m_bytes);

    EXPECT_EQ(bytesOf(all), m_bytes);
}

TEST_F(SmallFileLoad, ReplacesWhatTheVectorHeld) {
    m_bytes = bytesOf("something longer than the file");

    LoadSmallFile(m_path, noLimit, &m_bytes);

    EXPECT_EQ(bytesOf("content"), m_bytes);
}

TEST_F(SmallFileLoad, AcceptsExactlyTheMaximum) {
    LoadSmallFile(m_path, 7, &m_bytes);

    EXPECT_EQ(bytesOf("content"), m_bytes);
}

TEST_F(SmallFileLoad, RefusesOneMoreThanTheMaximum) {
    m_bytes = bytesOf("before");

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, 6, &m_bytes); },
        FailsWith(
            L"LoadSmallFile failed on \"" + m_name +
            L"\" because it's 7 length exceeds max permitted of 6"));

    EXPECT_EQ(bytesOf("before"), m_bytes);
}

TEST_F(SmallFileLoad, ComparesTheWholeLength) {
    ToldLength const told(0x100000005);

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, noLimit, &m_bytes); },
        FailsWith(
            L"LoadSmallFile failed on \"" + m_name +
            L"\" because it's 4294967301 length exceeds max permitted of 4294967295"));
}

TEST_F(SmallFileLoad, OfAnEmptyFileReadsNothing) {
    m_folder.write(L"empty.bin", "");
    m_bytes = bytesOf("before");
    test::FailingImport<decltype(ReadFile)> const fails("ReadFile", FALSE, ERROR_CRC);

    LoadSmallFile(pathOf(L"empty.bin"), 0, &m_bytes);

    EXPECT_TRUE(m_bytes.empty());
    EXPECT_EQ(0u, fails.calls());
}

TEST_F(SmallFileLoad, OfAMissingFileFailsToOpenIt) {
    m_bytes = bytesOf("before");

    EXPECT_THAT(
        [&] { LoadSmallFile(pathOf(L"missing.bin"), noLimit, &m_bytes); },
        FailsWith(L"Unable to open file " + m_folder.file(L"missing.bin")));

    EXPECT_EQ(bytesOf("before"), m_bytes);
}

TEST_F(SmallFileLoad, OfAFolderFailsToOpenIt) {
    EXPECT_THAT(
        [&] { LoadSmallFile(vr::Path::folder(m_folder.path()), noLimit, &m_bytes); },
        FailsWith(L"Unable to open file " + m_folder.path()));
}

TEST_F(SmallFileLoad, OfAFileBeingWrittenFailsToOpenIt) {
    HANDLE const writer = CreateFileW(
        m_name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr);

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, noLimit, &m_bytes); },
        FailsWith(L"Unable to open file " + m_name));

    CloseHandle(writer);
}

TEST_F(SmallFileLoad, LetsOtherReadersIn) {
    HANDLE const reader = CreateFileW(
        m_name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr);

    EXPECT_NO_THROW(LoadSmallFile(m_path, noLimit, &m_bytes));

    CloseHandle(reader);
}

TEST_F(SmallFileLoad, PassesOnTheFailureOfTheLength) {
    m_bytes = bytesOf("before");
    test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, noLimit, &m_bytes); },
        FailsWith(L"GetFileAttributesEx failed on \"" + m_name + L"\" - error 5"));

    EXPECT_EQ(bytesOf("before"), m_bytes);
}

TEST_F(SmallFileLoad, ReportsAFailedRead) {
    test::FailingImport<decltype(ReadFile)> const fails("ReadFile", FALSE, ERROR_CRC);
    DisturbingAllocations const disturbing;

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, noLimit, &m_bytes); },
        FailsWith(L"ReadFile failed on \"" + m_name + L"\" - error 23"));

    EXPECT_EQ(7u, m_bytes.size());
}

TEST_F(SmallFileLoad, ReportsAShortReadWithItsCounts) {
    test::ImportHook const shortens(
        "ReadFile", [](HANDLE, LPVOID, DWORD, LPDWORD count, LPOVERLAPPED) -> BOOL {
            *count = 3;
            SetLastError(ERROR_HANDLE_EOF);
            return TRUE;
        });
    DisturbingAllocations const disturbing;

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, noLimit, &m_bytes); },
        FailsWith(L"ReadFile failed on \"" + m_name + L"\", read 3 bytes, expected 7 - error 38"));

    EXPECT_EQ(7u, m_bytes.size());
}

TEST_F(SmallFileLoad, ReportsAFileThatWasCutMeanwhile) {
    ToldLength const told(9);
    SetLastError(ERROR_SUCCESS);

    EXPECT_THAT(
        [&] { LoadSmallFile(m_path, noLimit, &m_bytes); },
        FailsWith(L"ReadFile failed on \"" + m_name + L"\", read 7 bytes, expected 9 - error 0"));

    EXPECT_EQ(9u, m_bytes.size());
}

TEST_F(SmallFileLoad, LeavesOutWhatWasAddedMeanwhile) {
    ToldLength const told(4);

    LoadSmallFile(m_path, noLimit, &m_bytes);

    EXPECT_EQ(bytesOf("cont"), m_bytes);
}

TEST_F(SmallFileLoad, OpensAsksReadsAndClosesOnce) {
    std::vector<std::string> order;
    test::ImportHook<decltype(CreateFileW)> const opens("CreateFileW", [&](auto... arguments) {
        order.emplace_back("open");
        return opens.original()(arguments...);
    });
    test::ImportHook<Query> const asks("GetFileAttributesExW", [&](auto... arguments) {
        order.emplace_back("length");
        return asks.original()(arguments...);
    });
    test::ImportHook<decltype(ReadFile)> const reads("ReadFile", [&](auto... arguments) {
        order.emplace_back("read");
        return reads.original()(arguments...);
    });
    test::ImportHook<decltype(CloseHandle)> const closes("CloseHandle", [&](HANDLE handle) {
        order.emplace_back("close");
        return closes.original()(handle);
    });

    LoadSmallFile(m_path, noLimit, &m_bytes);

    EXPECT_EQ((std::vector<std::string>{"open", "length", "read", "close"}), order);
}

TEST_F(SmallFileLoad, ReadsTheWholeLengthIntoTheVector) {
    void const* target = nullptr;
    DWORD wanted = 0;
    LPOVERLAPPED overlapped = reinterpret_cast<LPOVERLAPPED>(this);
    test::ImportHook<decltype(ReadFile)> const reads(
        "ReadFile",
        [&](HANDLE file, LPVOID buffer, DWORD size, LPDWORD count, LPOVERLAPPED asynchronous) {
            target = buffer;
            wanted = size;
            overlapped = asynchronous;
            return reads.original()(file, buffer, size, count, asynchronous);
        });

    LoadSmallFile(m_path, noLimit, &m_bytes);

    EXPECT_EQ(m_bytes.data(), target);
    EXPECT_EQ(7u, wanted);
    EXPECT_EQ(nullptr, overlapped);
}

TEST_F(SmallFileLoad, ClosesTheFileOnEveryWayOut) {
    test::HandleLeakCheck const check;

    LoadSmallFile(m_path, noLimit, &m_bytes);
    EXPECT_ANY_THROW(LoadSmallFile(pathOf(L"missing.bin"), noLimit, &m_bytes));
    EXPECT_ANY_THROW(LoadSmallFile(m_path, 6, &m_bytes));
    {
        test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, ERROR_CRC);
        EXPECT_ANY_THROW(LoadSmallFile(m_path, noLimit, &m_bytes));
    }
    {
        test::FailingImport<decltype(ReadFile)> const fails("ReadFile", FALSE, ERROR_CRC);
        EXPECT_ANY_THROW(LoadSmallFile(m_path, noLimit, &m_bytes));
    }
    {
        ToldLength const told(9);
        EXPECT_ANY_THROW(LoadSmallFile(m_path, noLimit, &m_bytes));
    }
}

TEST_F(SmallFileLoad, FailedAllocationStaysOneAndClosesTheFile) {
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] {
        Bytes bytes;
        LoadSmallFile(pathOf(L"a.bin"), noLimit, &bytes);
        EXPECT_EQ(bytesOf("content"), bytes);
    });

    EXPECT_LT(0u, failed);
}

class SmallFileSave : public SmallFile {};

TEST_F(SmallFileSave, MakesTheFile) {
    SaveSmallFile(bytesOf("saved"), pathOf(L"new.bin"));

    EXPECT_EQ("saved", m_folder.read(L"new.bin"));
}

TEST_F(SmallFileSave, ReplacesALongerFile) {
    SaveSmallFile(bytesOf("new"), m_path);

    EXPECT_EQ("new", m_folder.read(L"a.bin"));
}

TEST_F(SmallFileSave, OfNothingLeavesAnEmptyFile) {
    test::FailingImport<decltype(WriteFile)> const fails("WriteFile", FALSE, ERROR_DISK_FULL);

    SaveSmallFile({}, m_path);

    EXPECT_EQ("", m_folder.read(L"a.bin"));
    EXPECT_EQ(0u, fails.calls());
}

TEST_F(SmallFileSave, KeepsEveryByteValue) {
    Bytes all;
    for (int value = 0; value < 256; ++value)
        all.push_back(static_cast<char>(value));

    SaveSmallFile(all, m_path);
    LoadSmallFile(m_path, noLimit, &m_bytes);

    EXPECT_EQ(all, m_bytes);
}

TEST_F(SmallFileSave, OpensWritesAndClosesOnce) {
    std::vector<std::string> order;
    test::ImportHook<decltype(CreateFileW)> const opens("CreateFileW", [&](auto... arguments) {
        order.emplace_back("open");
        return opens.original()(arguments...);
    });
    test::ImportHook<decltype(WriteFile)> const writes("WriteFile", [&](auto... arguments) {
        order.emplace_back("write");
        return writes.original()(arguments...);
    });
    test::ImportHook<decltype(CloseHandle)> const closes("CloseHandle", [&](HANDLE handle) {
        order.emplace_back("close");
        return closes.original()(handle);
    });

    SaveSmallFile(Bytes(1'000'000, 'x'), m_path);

    EXPECT_EQ((std::vector<std::string>{"open", "write", "close"}), order);
}

TEST_F(SmallFileSave, DoesNotCompareTheWrittenCount) {
    test::ImportHook const shortens(
        "WriteFile", [](HANDLE, LPCVOID, DWORD, LPDWORD count, LPOVERLAPPED) -> BOOL {
            *count = 1;
            return TRUE;
        });

    EXPECT_NO_THROW(SaveSmallFile(bytesOf("saved"), m_path));
}

TEST_F(SmallFileSave, ReportsAFailedWrite) {
    test::FailingImport<decltype(WriteFile)> const fails("WriteFile", FALSE, ERROR_DISK_FULL);
    DisturbingAllocations const disturbing;

    EXPECT_THAT(
        [&] { SaveSmallFile(bytesOf("saved"), m_path); },
        FailsWith(L"WriteFile failed on \"" + m_name + L"\" - error 112"));
}

TEST_F(SmallFileSave, IntoAMissingFolderFailsToOpen) {
    auto const name = m_folder.file(L"no folder\\a.bin");

    EXPECT_THAT(
        [&] { SaveSmallFile(bytesOf("saved"), vr::Path::file(name)); },
        FailsWith(L"Unable to open file " + name));
}

TEST_F(SmallFileSave, OfAFileBeingReadFailsAndKeepsIt) {
    HANDLE const reader = CreateFileW(
        m_name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr);

    EXPECT_THAT(
        [&] { SaveSmallFile(bytesOf("saved"), m_path); },
        FailsWith(L"Unable to open file " + m_name));

    CloseHandle(reader);
    EXPECT_EQ("content", m_folder.read(L"a.bin"));
}

TEST_F(SmallFileSave, ClosesTheFileOnEveryWayOut) {
    test::HandleLeakCheck const check;

    SaveSmallFile(bytesOf("saved"), m_path);
    SaveSmallFile({}, m_path);
    EXPECT_ANY_THROW(SaveSmallFile(bytesOf("saved"), pathOf(L"no folder\\a.bin")));
    test::FailingImport<decltype(WriteFile)> const fails("WriteFile", FALSE, ERROR_DISK_FULL);
    EXPECT_ANY_THROW(SaveSmallFile(bytesOf("saved"), m_path));
}

TEST_F(SmallFileSave, FailedAllocationStaysOneAndClosesTheFile) {
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] { SaveSmallFile(m_bytes, pathOf(L"a.bin")); });

    EXPECT_LT(0u, failed);
}

namespace {

// A vector that claims a length that no test could afford; nothing may touch its bytes.
class ClaimedBytes {
  public:
    explicit ClaimedBytes(std::uint64_t length) {
        char* const start = reinterpret_cast<char*>(0x10000);
        char* const bounds[] = {start, start + length, start + length};
        static_assert(sizeof bounds == sizeof(Bytes));
        std::memcpy(static_cast<void*>(&m_bytes), bounds, sizeof bounds);
    }

    ~ClaimedBytes() { std::memset(static_cast<void*>(&m_bytes), 0, sizeof m_bytes); }

    Bytes const& get() const { return m_bytes; }

  private:
    Bytes m_bytes;
};

} // namespace

TEST_F(SmallFileSave, CutsFourGibibytesAndMoreToTheLow32Bits) {
    ClaimedBytes const bytes(0x100000005);
    std::vector<DWORD> sizes;
    test::ImportHook const writes(
        "WriteFile", [&](HANDLE, LPCVOID, DWORD size, LPDWORD, LPOVERLAPPED) -> BOOL {
            sizes.push_back(size);
            return TRUE;
        });

    SaveSmallFile(bytes.get(), m_path);

    EXPECT_EQ(std::vector<DWORD>{5}, sizes);
}
