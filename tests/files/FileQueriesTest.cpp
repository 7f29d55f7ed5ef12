#include "vrUtils/Files/FileQueries.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <new>
#include <string>
#include <vector>

using namespace vrUtils::Files;

namespace {

using Query = decltype(GetFileAttributesExW);

constexpr std::uint64_t ticksPerSecond = 10'000'000;
constexpr std::uint64_t ticksPerHour = 3600 * ticksPerSecond;

FILETIME fileTime(std::uint64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

std::uint64_t currentTicks() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return static_cast<std::uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
}

// Sets the last write time of a file, to the tick.
void setWriteTime(std::wstring const& name, std::uint64_t ticks) {
    HANDLE const file = CreateFileW(
        name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    auto const time = fileTime(ticks);
    EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
}

// A platform on which every file has these attributes.
test::ImportHook<Query> answerEveryQuery(WIN32_FILE_ATTRIBUTE_DATA const& data) {
    return {"GetFileAttributesExW", [data](LPCWSTR, GET_FILEEX_INFO_LEVELS, LPVOID answer) -> BOOL {
                *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(answer) = data;
                return TRUE;
            }};
}

WIN32_FILE_ATTRIBUTE_DATA withAttributes(DWORD attributes) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    data.dwFileAttributes = attributes;
    return data;
}

class FileQueries : public testing::Test {
  protected:
    FileQueries() { m_folder.write(L"a.bin", "content"); }

    test::ScratchFolder m_folder;
    vr::Path const m_path = vr::Path::file(m_folder.file(L"a.bin"));
    vr::Path const m_missing = vr::Path::file(m_folder.file(L"missing.bin"));
};

} // namespace

class FileExistence : public FileQueries {};

TEST_F(FileExistence, FileExists) { EXPECT_TRUE(FileExists(m_path)); }

TEST_F(FileExistence, FolderExists) {
    EXPECT_TRUE(FileExists(vr::Path::folder(m_folder.path())));
    EXPECT_TRUE(FileExists(vr::Path::folder(m_folder.path() + L"\\")));
}

TEST_F(FileExistence, MissingFileDoesNot) { EXPECT_FALSE(FileExists(m_missing)); }

TEST_F(FileExistence, FileInAMissingFolderDoesNot) {
    EXPECT_FALSE(FileExists(vr::Path::file(m_folder.file(L"no folder\\a.bin"))));
}

TEST_F(FileExistence, FileThatIsLockedDoes) {
    HANDLE const file = CreateFileW(
        m_folder.file(L"a.bin").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr);

    EXPECT_TRUE(FileExists(m_path));

    CloseHandle(file);
}

TEST_F(FileExistence, EveryFailureReadsAsMissing) {
    for (DWORD const error : {5u, 21u, 53u}) { // access denied, not ready, bad network path
        test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, error);

        EXPECT_FALSE(FileExists(m_path)) << error;
    }
}

TEST_F(FileExistence, IsAskedOnceForTheNormalForm) {
    std::vector<std::wstring> asked;
    GET_FILEEX_INFO_LEVELS level = GetFileExMaxInfoLevel;
    test::ImportHook const hook(
        "GetFileAttributesExW", [&](LPCWSTR name, GET_FILEEX_INFO_LEVELS wanted, LPVOID) -> BOOL {
            asked.emplace_back(name);
            level = wanted;
            return TRUE;
        });

    EXPECT_TRUE(FileExists(vr::Path::file(L"C:/Media//a.bin")));

    EXPECT_EQ(std::vector<std::wstring>{L"C:\\Media\\a.bin"}, asked);
    EXPECT_EQ(GetFileExInfoStandard, level);
}

class FileLengths : public FileQueries {};

TEST_F(FileLengths, AreInBytes) { EXPECT_EQ(7u, FileLength(m_path)); }

TEST_F(FileLengths, OfAnEmptyFileIsNothing) {
    m_folder.write(L"empty.bin", "");

    EXPECT_EQ(0u, FileLength(vr::Path::file(m_folder.file(L"empty.bin"))));
}

TEST_F(FileLengths, JoinHighAndLowWord) {
    auto data = withAttributes(FILE_ATTRIBUTE_NORMAL);
    data.nFileSizeHigh = 0x89ABCDEF;
    data.nFileSizeLow = 0xFEDCBA98;
    auto const hook = answerEveryQuery(data);

    EXPECT_EQ(0x89ABCDEFFEDCBA98u, FileLength(m_path));
}

TEST_F(FileLengths, ReachBeyondFourGibibytes) {
    auto const name = m_folder.file(L"long.bin");
    HANDLE const file = CreateFileW(
        name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    LARGE_INTEGER end;
    end.QuadPart = 0x140000003;
    EXPECT_TRUE(SetFilePointerEx(file, end, nullptr, FILE_BEGIN));
    EXPECT_TRUE(SetEndOfFile(file));
    CloseHandle(file);

    EXPECT_EQ(0x140000003u, FileLength(vr::Path::file(name)));
}

TEST_F(FileLengths, OfAFolderIsWhatThePlatformGives) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    ASSERT_TRUE(GetFileAttributesExW(m_folder.path().c_str(), GetFileExInfoStandard, &data));

    EXPECT_EQ(
        static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow,
        FileLength(vr::Path::folder(m_folder.path())));
}

class ModificationTime : public FileQueries {};

TEST_F(ModificationTime, IsTheLastWriteToTheTick) {
    setWriteTime(m_folder.file(L"a.bin"), 0x01D9ABCDEF123457);

    EXPECT_EQ(0x01D9ABCDEF123457u, FileModificationDateTime(m_path));
}

TEST_F(ModificationTime, IsNeitherCreationNorAccess) {
    auto data = withAttributes(FILE_ATTRIBUTE_NORMAL);
    data.ftCreationTime = fileTime(1);
    data.ftLastAccessTime = fileTime(2);
    data.ftLastWriteTime = fileTime(0xFEDCBA9876543210);
    auto const hook = answerEveryQuery(data);

    EXPECT_EQ(0xFEDCBA9876543210u, FileModificationDateTime(m_path));
}

class OfflineFile : public FileQueries {};

TEST_F(OfflineFile, PlainFileIsNot) { EXPECT_FALSE(FileIsOffline(m_path)); }

TEST_F(OfflineFile, IsToldByItsAttribute) {
    auto const hook = answerEveryQuery(withAttributes(0x1000 | FILE_ATTRIBUTE_ARCHIVE));

    EXPECT_TRUE(FileIsOffline(m_path));
}

TEST_F(OfflineFile, IsNotToldByAnyOtherAttribute) {
    auto const hook = answerEveryQuery(withAttributes(~DWORD{0x1000}));

    EXPECT_FALSE(FileIsOffline(m_path));
}

struct NamedQuery {
    char const* name;
    std::function<void(vr::Path const&)> ask;

    friend std::ostream& operator<<(std::ostream& stream, NamedQuery const& query) {
        return stream << query.name;
    }
};

class EachQuery : public FileQueries, public testing::WithParamInterface<NamedQuery> {
  protected:
    std::wstring missingFileMessage() const {
        return L"GetFileAttributesEx failed on \"" + m_folder.file(L"missing.bin") +
               L"\" - error 2";
    }
};

INSTANTIATE_TEST_SUITE_P(
    , EachQuery,
    testing::Values(
        NamedQuery{"FileLength", FileLength},
        NamedQuery{"FileModificationDateTime", FileModificationDateTime},
        NamedQuery{"FileIsOffline", FileIsOffline}),
    [](auto const& tested) { return std::string(tested.param.name); });

TEST_P(EachQuery, FailsOnAMissingFile) {
    EXPECT_THAT([&] { GetParam().ask(m_missing); }, FailsWith(missingFileMessage()));
}

TEST_P(EachQuery, FailsInAMissingFolder) {
    auto const name = m_folder.file(L"no folder\\a.bin");

    EXPECT_THAT(
        [&] { GetParam().ask(vr::Path::file(name)); },
        FailsWith(L"GetFileAttributesEx failed on \"" + name + L"\" - error 3"));
}

TEST_P(EachQuery, FailsWithTheErrorOfThePlatform) {
    test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, 1234567890);

    EXPECT_THAT(
        [&] { GetParam().ask(m_path); }, FailsWith(
                                             L"GetFileAttributesEx failed on \"" +
                                             m_folder.file(L"a.bin") + L"\" - error 1234567890"));
}

TEST_P(EachQuery, ReadsTheErrorBeforeAnythingElseDisturbsIt) {
    test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, ERROR_ACCESS_DENIED);
    test::ImportHook<void*(std::size_t)> const disturbs("malloc", [&](std::size_t size) {
        auto* const block = disturbs.original()(size);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return block;
    });

    EXPECT_THAT(
        [&] { GetParam().ask(m_path); },
        FailsWith(L"GetFileAttributesEx failed on \"" + m_folder.file(L"a.bin") + L"\" - error 5"));
    EXPECT_LT(0u, disturbs.calls());
}

TEST_P(EachQuery, AsksThePlatformOnce) {
    test::ImportHook<Query> const hook(
        "GetFileAttributesExW", [&](auto... arguments) { return hook.original()(arguments...); });

    GetParam().ask(m_path);

    EXPECT_EQ(1u, hook.calls());
}

TEST_P(EachQuery, FailedAllocationStaysOneOrLeavesTheWholeMessage) {
    test::AllocationCounter counter;
    unsigned failures = 0;
    for (unsigned number = 1; number <= 40; ++number) {
        counter.failAt(number);
        try {
            GetParam().ask(vr::Path(m_missing));
        } catch (std::bad_alloc const&) {
            ++failures;
        } catch (vrException const& failure) {
            EXPECT_EQ(missingFileMessage(), failure.message()) << number;
        }
        counter.failNone();
    }

    EXPECT_LT(0u, failures);
}

class FileAge : public FileQueries {
  protected:
    // The age of a file that was written this many ticks before the hour strikes.
    std::uint32_t ageAfter(std::int64_t ticks) {
        std::uint64_t const now = 0x01D9ABCDEF123457;
        test::ImportHook const clock(
            "GetSystemTimeAsFileTime", [&](LPFILETIME time) -> void { *time = fileTime(now); });
        auto data = withAttributes(FILE_ATTRIBUTE_NORMAL);
        data.ftLastWriteTime = fileTime(now - static_cast<std::uint64_t>(ticks));
        auto const hook = answerEveryQuery(data);
        return GetAgeOfFileInHours(m_path);
    }
};

TEST_F(FileAge, OfAFileJustWrittenIsNothing) { EXPECT_EQ(0u, GetAgeOfFileInHours(m_path)); }

TEST_F(FileAge, Of59MinutesIsNothing) {
    setWriteTime(m_folder.file(L"a.bin"), currentTicks() - 59 * 60 * ticksPerSecond);

    EXPECT_EQ(0u, GetAgeOfFileInHours(m_path));
}

TEST_F(FileAge, Of61MinutesIsOneHour) {
    setWriteTime(m_folder.file(L"a.bin"), currentTicks() - 61 * 60 * ticksPerSecond);

    EXPECT_EQ(1u, GetAgeOfFileInHours(m_path));
}

TEST_F(FileAge, OfAFileOfTomorrowIsVeryLarge) {
    setWriteTime(m_folder.file(L"a.bin"), currentTicks() + 24 * ticksPerHour);

    EXPECT_EQ(0xFFFFFFE9, GetAgeOfFileInHours(m_path)); // a little less than 24 hours ahead
}

TEST_F(FileAge, CountsWholeHours) {
    std::int64_t const hour = ticksPerHour;

    EXPECT_EQ(0u, ageAfter(0));
    EXPECT_EQ(0u, ageAfter(hour - 1));
    EXPECT_EQ(1u, ageAfter(hour));
    EXPECT_EQ(1u, ageAfter(2 * hour - 1));
    EXPECT_EQ(2u, ageAfter(2 * hour));
    EXPECT_EQ(1'000'000u, ageAfter(1'000'000 * hour));
}

TEST_F(FileAge, RoundsTowardZeroInTheFuture) {
    std::int64_t const hour = ticksPerHour;

    EXPECT_EQ(0u, ageAfter(1 - hour));
    EXPECT_EQ(0xFFFFFFFF, ageAfter(-hour));
    EXPECT_EQ(0xFFFFFFFF, ageAfter(1 - 2 * hour));
    EXPECT_EQ(0xFFFFFFFE, ageAfter(-2 * hour));
}

TEST_F(FileAge, OfAnImpossibleTimeIsANumberAllTheSame) {
    std::int64_t const farthest = std::numeric_limits<std::int64_t>::min();

    EXPECT_EQ(static_cast<std::uint32_t>(farthest / 36'000'000'000), ageAfter(farthest));
}

TEST_F(FileAge, ReadsTheClockBeforeTheWriteTime) {
    std::vector<std::string> order;
    test::ImportHook<decltype(GetSystemTimeAsFileTime)> const clock(
        "GetSystemTimeAsFileTime", [&](LPFILETIME time) {
            order.emplace_back("clock");
            clock.original()(time);
        });
    test::ImportHook<Query> const query("GetFileAttributesExW", [&](auto... arguments) {
        order.emplace_back("write time");
        return query.original()(arguments...);
    });

    GetAgeOfFileInHours(m_path);

    EXPECT_EQ((std::vector<std::string>{"clock", "write time"}), order);
}

TEST_F(FileAge, OfAMissingFileFailsInItsOwnWords) {
    EXPECT_THAT(
        [&] { GetAgeOfFileInHours(m_missing); },
        FailsWith(L"Unable to determine age of file " + m_folder.file(L"missing.bin")));
}

TEST_F(FileAge, FailsInItsOwnWordsForEveryPlatformError) {
    test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_THAT(
        [&] { GetAgeOfFileInHours(m_path); },
        FailsWith(L"Unable to determine age of file " + m_folder.file(L"a.bin")));
}

class FileDeletion : public FileQueries {};

TEST_F(FileDeletion, RemovesTheFile) {
    EXPECT_TRUE(DeleteFileIfExists(m_path));

    EXPECT_FALSE(m_folder.exists(L"a.bin"));
}

TEST_F(FileDeletion, OfAMissingFileSucceedsWithoutTrying) {
    test::ImportHook const hook("DeleteFileW", [](LPCWSTR) -> BOOL { return FALSE; });

    EXPECT_TRUE(DeleteFileIfExists(m_missing));

    EXPECT_EQ(0u, hook.calls());
}

TEST_F(FileDeletion, OfAFolderFails) {
    EXPECT_FALSE(DeleteFileIfExists(vr::Path::folder(m_folder.path())));

    EXPECT_TRUE(FileExists(vr::Path::folder(m_folder.path())));
}

TEST_F(FileDeletion, OfAFileOpenWithoutDeleteSharingFails) {
    HANDLE const file = CreateFileW(
        m_folder.file(L"a.bin").c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);

    EXPECT_FALSE(DeleteFileIfExists(m_path));

    CloseHandle(file);
    EXPECT_TRUE(m_folder.exists(L"a.bin"));
}

TEST_F(FileDeletion, OfAReadOnlyFileFails) {
    SetFileAttributesW(m_folder.file(L"a.bin").c_str(), FILE_ATTRIBUTE_READONLY);

    EXPECT_FALSE(DeleteFileIfExists(m_path));

    EXPECT_TRUE(m_folder.exists(L"a.bin"));
}

TEST_F(FileDeletion, OfAFileThatCannotBeSeenCountsAsDone) {
    test::FailingImport<Query> const fails("GetFileAttributesExW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_TRUE(DeleteFileIfExists(m_path));

    EXPECT_TRUE(m_folder.exists(L"a.bin"));
}

TEST_F(FileDeletion, GivesTheResultOfThePlatform) {
    test::FailingImport<decltype(DeleteFileW)> const fails("DeleteFileW", FALSE, ERROR_IO_DEVICE);

    EXPECT_FALSE(DeleteFileIfExists(m_path));
}
