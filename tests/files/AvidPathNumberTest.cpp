// Numbered folders. What a base has been given stays with the process: each test has bases of its own.

#include "vrUtils/Files/AvidPathNumber.h"

#include "foundation/Platform.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <future>
#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class AvidPathNumber : public testing::Test {
  protected:
    std::wstring number(int limit) const { return get_avid_path_number(base(), limit); }

    std::wstring base() const { return m_folder.path() + L'\\'; }

    // Puts so many files into a numbered folder.
    void fill(std::wstring const& number, int count) const {
        m_folder.makeFolder(number);
        for (int file = 0; file < count; ++file)
            m_folder.write(number + L'\\' + std::to_wstring(file) + L".mxf", "");
    }

    void empty(std::wstring const& number) const {
        for (auto const& name : m_folder.names(number))
            DeleteFileW(m_folder.file(number + L'\\' + name).c_str());
    }

    test::ScratchFolder m_folder;
};

// The patterns that are searched for, in order.
class Searches {
  public:
    std::vector<std::wstring> const& patterns() const { return m_patterns; }

  private:
    std::vector<std::wstring> m_patterns;
    test::ImportHook<decltype(FindFirstFileW)> m_hook{
        "FindFirstFileW", [this](wchar_t const* pattern, WIN32_FIND_DATAW* entry) {
            m_patterns.emplace_back(pattern);
            return m_hook.original()(pattern, entry);
        }};
};

// What a process of its own is given.
test::ChildAction const giveNumber(L"give number", [](auto const& arguments) {
    auto const limit = std::stoi(arguments.at(1));
    auto const number = get_avid_path_number(arguments.at(0), limit);
    std::printf("given %s.", test::utf8(number).c_str());
    return 0;
});

class WorkingFolder {
  public:
    explicit WorkingFolder(std::wstring const& folder) : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }

    WorkingFolder(WorkingFolder const&) = delete;
    WorkingFolder& operator=(WorkingFolder const&) = delete;

    ~WorkingFolder() { std::filesystem::current_path(m_before); }

  private:
    std::filesystem::path m_before;
};

} // namespace

TEST_F(AvidPathNumber, IsOneAtFirst) {
    EXPECT_EQ(L"1", number(10));
    EXPECT_THAT(m_folder.names(), ElementsAre(L"1"));
}

TEST_F(AvidPathNumber, StaysBelowTwoLessThanTheLimit) {
    fill(L"1", 3);

    EXPECT_EQ(L"1", number(5));
}

TEST_F(AvidPathNumber, GoesOnAtOneLessThanTheLimit) {
    fill(L"1", 4);

    EXPECT_EQ(L"2", number(5));
    EXPECT_THAT(m_folder.names(), ElementsAre(L"1", L"2"));
}

TEST_F(AvidPathNumber, GoesOnBeyondTheLimit) {
    fill(L"1", 5);
    fill(L"2", 6);
    fill(L"3", 20);

    EXPECT_EQ(L"4", number(5));
}

TEST_F(AvidPathNumber, CountsFoldersAsWell) {
    m_folder.makeFolder(L"1\\a");
    m_folder.makeFolder(L"1\\b");

    EXPECT_EQ(L"2", number(3));
}

TEST_F(AvidPathNumber, TakesTheFirstGap) {
    fill(L"1", 2);
    fill(L"3", 0);

    EXPECT_EQ(L"2", number(3));
}

TEST_F(AvidPathNumber, TakesAFileOfThatNameForAFolderThatIsMissing) {
    m_folder.write(L"1", "no folder");

    EXPECT_EQ(L"1", number(3));
    EXPECT_EQ("no folder", m_folder.read(L"1"));
}

TEST_F(AvidPathNumber, HasMoreThanOneDigitInTheEnd) {
    for (int folder = 1; folder <= 11; ++folder)
        fill(std::to_wstring(folder), 0);

    EXPECT_EQ(L"12", number(1));
}

TEST_F(AvidPathNumber, PassesOverEveryFolderWithALimitOfOneOrLess) {
    for (auto const limit : {1, 0, -1, -2147483647 - 1}) {
        test::ScratchFolder const folder;
        folder.makeFolder(L"1");

        EXPECT_EQ(L"2", get_avid_path_number(folder.path() + L'\\', limit)) << limit;
    }
}

TEST_F(AvidPathNumber, TakesAnEmptyFolderWithALimitOfTwo) {
    fill(L"1", 0);

    EXPECT_EQ(L"1", number(2));
}

TEST_F(AvidPathNumber, TakesAnyFolderWithTheGreatestLimit) {
    fill(L"1", 30);

    EXPECT_EQ(L"1", number(2147483647));
}

TEST_F(AvidPathNumber, BeginsWithTheOneGivenLast) {
    fill(L"1", 2);
    number(3);
    Searches const searches;

    EXPECT_EQ(L"2", number(3));

    EXPECT_THAT(searches.patterns(), ElementsAre(base() + L"2\\*"));
}

TEST_F(AvidPathNumber, NeverGoesDown) {
    fill(L"1", 2);
    number(3);
    empty(L"1");

    EXPECT_EQ(L"2", number(3));
}

TEST_F(AvidPathNumber, GoesUpFromTheOneGivenLastUnderAnotherLimit) {
    fill(L"1", 2);
    number(3);
    fill(L"2", 4);

    EXPECT_EQ(L"2", number(10));
    EXPECT_EQ(L"3", number(4));
    EXPECT_EQ(L"3", number(10));
}

TEST_F(AvidPathNumber, BeginsWithOneInANewProcess) {
    fill(L"1", 2);
    number(3);
    empty(L"1");

    auto const child = giveNumber.start({base(), L"3"});

    EXPECT_TRUE(child->waitForOutput("given 1."));
}

TEST_F(AvidPathNumber, IsKeptForEachSpellingOfTheBase) {
    fill(L"1", 2);
    number(3);
    empty(L"1");
    auto other = base();
    CharUpperW(other.data());
    ASSERT_NE(base(), other);

    EXPECT_EQ(L"1", get_avid_path_number(other, 3));
}

TEST_F(AvidPathNumber, JoinsTheBaseWithoutSeparator) {
    EXPECT_EQ(L"1", get_avid_path_number(base() + L"day ", 10));

    EXPECT_THAT(m_folder.names(), ElementsAre(L"day 1"));
}

TEST_F(AvidPathNumber, IsInTheWorkingFolderWithoutBase) {
    fill(L"1", 1);
    WorkingFolder const folder(m_folder.path());

    EXPECT_EQ(L"2", get_avid_path_number(L"", 2));

    EXPECT_TRUE(m_folder.exists(L"2"));
}

TEST_F(AvidPathNumber, OfAFolderThatCannotBeReadIsTaken) {
    fill(L"1", 9);
    test::FailingImport<decltype(FindFirstFileW)> const unreadable(
        "FindFirstFileW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    test::ImportHook<decltype(FindClose)> const close("FindClose", [](HANDLE) { return FALSE; });

    EXPECT_EQ(L"1", number(3));

    EXPECT_EQ(0u, close.calls());
}

TEST_F(AvidPathNumber, CountsAsFarAsTheFolderCanBeRead) {
    fill(L"1", 9);
    test::FailingImport<decltype(FindNextFileW)> const unreadable(
        "FindNextFileW", FALSE, ERROR_READ_FAULT, 3);

    EXPECT_EQ(L"1", number(3));
}

TEST_F(AvidPathNumber, OfAFolderThatCannotBeMadeIsGivenAllTheSame) {
    test::FailingImport<decltype(CreateDirectoryW)> const full(
        "CreateDirectoryW", FALSE, ERROR_DISK_FULL);

    EXPECT_EQ(L"1", number(3));

    EXPECT_EQ(1u, full.calls());
    EXPECT_THAT(m_folder.names(), IsEmpty());
}

TEST_F(AvidPathNumber, BelowAMissingFolderIsGivenAllTheSame) {
    EXPECT_EQ(L"1", get_avid_path_number(base() + L"missing\\", 3));

    EXPECT_FALSE(m_folder.exists(L"missing"));
}

TEST_F(AvidPathNumber, OfAPathThatIsNoneIsGivenAllTheSame) {
    EXPECT_EQ(L"1", get_avid_path_number(base() + L"a?b\\", 3));
    EXPECT_EQ(L"1", get_avid_path_number(std::wstring(40000, L'n'), 3));
}

TEST_F(AvidPathNumber, MakesTheFolderForEverybodyEachTime) {
    std::vector<std::wstring> made;
    test::ImportHook<decltype(CreateDirectoryW)> const make(
        "CreateDirectoryW", [&](wchar_t const* path, SECURITY_ATTRIBUTES* attributes) {
            made.emplace_back(path);
            EXPECT_EQ(nullptr, attributes);
            return TRUE;
        });

    number(3);
    number(3);

    EXPECT_THAT(made, ElementsAre(base() + L"1", base() + L"1"));
}

TEST_F(AvidPathNumber, StopsCountingBeyondTheLimit) {
    fill(L"1", 50);
    test::ImportHook<decltype(FindNextFileW)> const next(
        "FindNextFileW",
        [&](HANDLE search, WIN32_FIND_DATAW* entry) { return next.original()(search, entry); });

    EXPECT_EQ(L"2", number(10));

    EXPECT_EQ(10u, next.calls());
}

TEST_F(AvidPathNumber, ClosesEachSearch) {
    fill(L"1", 3);
    fill(L"2", 3);
    fill(L"3", 1);
    test::ImportHook<decltype(FindClose)> const close(
        "FindClose", [&](HANDLE search) { return close.original()(search); });
    test::HandleLeakCheck const check;

    EXPECT_EQ(L"3", number(4));

    EXPECT_EQ(3u, close.calls());
}

TEST_F(AvidPathNumber, IsGivenToOthersDuringASearch) {
    auto const others = base() + L"others\\";
    std::atomic<bool> isAsked{false};
    auto isGiven = std::future_status::timeout;
    test::ImportHook<decltype(FindFirstFileW)> const search(
        "FindFirstFileW", [&](wchar_t const* pattern, WIN32_FIND_DATAW* entry) {
            if (!isAsked.exchange(true)) {
                auto const other =
                    std::async(std::launch::async, [&] { get_avid_path_number(others, 3); });
                isGiven = other.wait_for(test::ceiling);
            }
            return search.original()(pattern, entry);
        });

    EXPECT_EQ(L"1", number(3));

    EXPECT_EQ(std::future_status::ready, isGiven);
}

TEST_F(AvidPathNumber, MayBeGivenTwiceAtTheSameTime) {
    std::wstring other;
    test::ImportHook<decltype(CreateDirectoryW)> const make(
        "CreateDirectoryW", [&](wchar_t const* path, SECURITY_ATTRIBUTES* attributes) {
            if (make.calls() == 1)
                other = number(3);
            return make.original()(path, attributes);
        });

    EXPECT_EQ(L"1", number(3));

    EXPECT_EQ(L"1", other);
}

TEST_F(AvidPathNumber, NeverGoesDownBehindASlowerCaller) {
    test::ImportHook<decltype(CreateDirectoryW)> const make(
        "CreateDirectoryW", [&](wchar_t const* path, SECURITY_ATTRIBUTES* attributes) {
            if (make.calls() == 1) {
                fill(L"1", 2);
                EXPECT_EQ(L"2", number(3));
                empty(L"1");
            }
            return make.original()(path, attributes);
        });

    EXPECT_EQ(L"1", number(3));

    EXPECT_EQ(L"2", number(3));
}

TEST_F(AvidPathNumber, OfManyThreadsLosesNothingAndKeepsTheSoftLimit) {
    constexpr int limit = 12;
    constexpr int threadCount = 8;
    constexpr int filesOfAThread = 40;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([&, thread] {
            for (int file = 0; file < filesOfAThread; ++file) {
                auto const path = base() + number(limit) + L'\\' + std::to_wstring(thread) + L'_' +
                                  std::to_wstring(file);
                auto* const handle =
                    CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
                if (handle == INVALID_HANDLE_VALUE)
                    ++failures;
                else
                    CloseHandle(handle);
            }
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(0, failures);
    std::size_t files = 0;
    auto const folders = m_folder.names();
    for (std::size_t folder = 1; folder <= folders.size(); ++folder) {
        auto const count = m_folder.names(std::to_wstring(folder)).size();
        // Each of the other threads may have been given the number before the last file came.
        EXPECT_LT(count, static_cast<std::size_t>(limit + threadCount)) << folder;
        files += count;
    }
    EXPECT_EQ(static_cast<std::size_t>(threadCount * filesOfAThread), files);
}
