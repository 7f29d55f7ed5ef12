// The working directory for the length of a scope.

#include "vrUtils/Storage/DirectorySetter.h"

#include "foundation/Platform.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using test::Logged;
using test::LoggedFormat;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Storage::DirectorySetter;

namespace {

using Get = decltype(GetCurrentDirectoryW);
using Set = decltype(SetCurrentDirectoryW);

static_assert(std::is_copy_constructible_v<DirectorySetter>);
static_assert(std::is_copy_assignable_v<DirectorySetter>);
static_assert(std::is_nothrow_destructible_v<DirectorySetter>);

std::wstring workingDirectory() {
    std::wstring directory(1000, L'\0');
    directory.resize(GetCurrentDirectoryW(1000, directory.data()));
    return directory;
}

// Each test begins in a folder of its own, and the program is where it was behind it.
class SettingDirectory : public testing::Test {
  protected:
    SettingDirectory() { SetCurrentDirectoryW(m_start.c_str()); }

    ~SettingDirectory() override { SetCurrentDirectoryW(m_before.c_str()); }

    std::wstring const m_before = workingDirectory();
    test::ScratchFolder m_folder;
    std::wstring const m_start = m_folder.makeFolder(L"start");
    std::wstring const m_other = m_folder.makeFolder(L"other");
    std::wstring const m_third = m_folder.makeFolder(L"third");
    test::LogRecorder m_log;
};

// A platform whose working directory has a length around that of a usual path, or far beyond. The
// real one keeps no directory of more than 260 characters.
class SettingDirectoryFrom : public testing::TestWithParam<std::size_t> {
  protected:
    std::wstring const m_start = L"D:\\" + std::wstring(GetParam() - 3, L's');
    std::wstring m_now = m_start;

  private:
    DWORD get(DWORD size, LPWSTR buffer) const {
        if (size <= m_now.size())
            return static_cast<DWORD>(m_now.size() + 1);
        buffer[m_now.copy(buffer, size)] = L'\0';
        return static_cast<DWORD>(m_now.size());
    }

    test::ImportHook<Get> const m_get{
        "GetCurrentDirectoryW", [this](DWORD size, LPWSTR buffer) { return get(size, buffer); }};
    test::ImportHook<Set> const m_set{"SetCurrentDirectoryW", [this](LPCWSTR directory) -> BOOL {
                                          m_now = directory;
                                          return TRUE;
                                      }};
};

INSTANTIATE_TEST_SUITE_P(
    Lengths, SettingDirectoryFrom, testing::Values(3, 257, 258, 259, 260, 261, 262, 520, 32766));

} // namespace

TEST_F(SettingDirectory, LastsAsLongAsTheObject) {
    {
        DirectorySetter const setter(m_other, L"Host");
        EXPECT_EQ(m_other, workingDirectory());
    }

    EXPECT_EQ(m_start, workingDirectory());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(SettingDirectory, EndsWithAnException) {
    try {
        DirectorySetter const setter(m_other, L"Host");
        throw std::runtime_error("test");
    } catch (std::runtime_error const&) {
    }

    EXPECT_EQ(m_start, workingDirectory());
}

TEST_F(SettingDirectory, NestsInScopes) {
    DirectorySetter const outer(m_other, L"Host");
    {
        DirectorySetter const inner(m_third, L"Host");
        EXPECT_EQ(m_third, workingDirectory());
    }

    EXPECT_EQ(m_other, workingDirectory());
}

TEST_F(SettingDirectory, SetsTheSavedOneWhateverIsThereMeanwhile) {
    {
        DirectorySetter const setter(m_other, L"Host");
        SetCurrentDirectoryW(m_third.c_str());
    }

    EXPECT_EQ(m_start, workingDirectory());
}

TEST_F(SettingDirectory, TakesARelativeDirectory) {
    DirectorySetter const setter(L"..\\other", L"Host");

    EXPECT_EQ(m_other, workingDirectory());
}

TEST_F(SettingDirectory, ToAMissingOneLogsAndGoesOnInTheOldOne) {
    auto const missing = m_folder.file(L"missing");
    {
        DirectorySetter const setter(missing, L"Host");
        EXPECT_EQ(m_start, workingDirectory());
    }

    EXPECT_EQ(m_start, workingDirectory());
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(4, L"Failed to set directory to \"" + missing + L"\" Error code : 2", L"Host")));
}

TEST_F(SettingDirectory, ToAFileLogsItsError) {
    auto const file = m_folder.write(L"clip.mxf", "bytes");

    DirectorySetter const setter(file, L"Host");

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(4, L"Failed to set directory to \"" + file + L"\" Error code : 267", L"Host")));
}

TEST_F(SettingDirectory, ToAnEmptyTextLogs) {
    DirectorySetter const setter(L"", L"Host");

    EXPECT_EQ(m_start, workingDirectory());
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(4, L"Failed to set directory to \"\" Error code : 123", L"Host")));
}

TEST_F(SettingDirectory, LogsUnderTheModuleOfItsOwnerWithTheTextAsFormat) {
    DirectorySetter const setter(L"Z:\\no such\\100%s %n", L"100%d");

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(LoggedFormat(
            4, L"Failed to set directory to \"Z:\\no such\\100%s %n\" Error code : 3", L"100%d")));
}

TEST_F(SettingDirectory, LogsLargeErrorsInDecimalWithoutGroups) {
    test::FailingImport<Set> const fails("SetCurrentDirectoryW", FALSE, 0xFFFFFFFF);

    DirectorySetter const setter(L"D:\\a", L"Host");

    EXPECT_THAT(
        m_log.texts(),
        ElementsAre(L"Failed to set directory to \"D:\\a\" Error code : 4294967295"));
}

TEST_F(SettingDirectory, BackToOneThatHasGoneLogs) {
    {
        DirectorySetter const setter(m_other, L"Host");
        ASSERT_TRUE(RemoveDirectoryW(m_start.c_str()));
    }

    EXPECT_EQ(m_other, workingDirectory());
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(4, L"Failed to set directory to \"" + m_start + L"\" Error code : 2", L"Host")));
    SetCurrentDirectoryW(m_before.c_str());
}

TEST_F(SettingDirectory, AsksForTheOldOneAheadOfTheNew) {
    std::vector<std::wstring> calls;
    test::ImportHook<Get> const get("GetCurrentDirectoryW", [&](DWORD size, LPWSTR buffer) {
        calls.push_back(L"get " + std::to_wstring(size));
        return get.original()(size, buffer);
    });
    test::ImportHook<Set> const set("SetCurrentDirectoryW", [&](LPCWSTR directory) {
        calls.push_back(directory);
        return set.original()(directory);
    });

    { DirectorySetter const setter(m_other, L"Host"); }

    EXPECT_THAT(calls, ElementsAre(L"get 260", m_other, m_start));
}

TEST_F(SettingDirectory, WithoutOneToBeHadSetsNoneInTheEnd) {
    {
        test::FailingImport<Get> const fails("GetCurrentDirectoryW", 0, ERROR_ACCESS_DENIED);
        DirectorySetter const setter(m_other, L"Host");
    }

    EXPECT_EQ(m_other, workingDirectory());
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(4, L"Failed to set directory to \"\" Error code : 123", L"Host")));
}

TEST_F(SettingDirectory, FromOneThatGrowsWhileItIsReadIsNeverCut) {
    std::wstring const longer(400, L'l');
    std::vector<DWORD> sizes;
    std::vector<std::wstring> set;
    test::ImportHook<Get> const gets(
        "GetCurrentDirectoryW", [&](DWORD size, LPWSTR buffer) -> DWORD {
            sizes.push_back(size);
            if (sizes.size() == 1)
                return 300;
            if (size <= longer.size())
                return static_cast<DWORD>(longer.size() + 1);
            return static_cast<DWORD>(longer.copy(buffer, size));
        });
    test::ImportHook<Set> const sets("SetCurrentDirectoryW", [&](LPCWSTR directory) -> BOOL {
        set.push_back(directory);
        return TRUE;
    });

    { DirectorySetter const setter(m_other, L"Host"); }

    EXPECT_THAT(sizes, ElementsAre(260u, 300u, 401u));
    EXPECT_THAT(set, ElementsAre(m_other, longer));
}

TEST_P(SettingDirectoryFrom, OneOfThisLengthComesBackToItWhole) {
    {
        DirectorySetter const setter(L"D:\\other", L"Host");
        EXPECT_EQ(L"D:\\other", m_now);
    }

    EXPECT_EQ(m_start, m_now);
}

TEST_F(SettingDirectory, CopyComesBackToTheSameOne) {
    std::optional<DirectorySetter> first(std::in_place, m_other, L"Host");
    {
        auto const copy = *first;
        first.reset();
        SetCurrentDirectoryW(m_third.c_str());
    }

    EXPECT_EQ(m_start, workingDirectory());
}

TEST_F(SettingDirectory, CopyLogsUnderTheSameModule) {
    std::optional<DirectorySetter> first(std::in_place, m_other, L"Host");
    auto copy = std::make_optional(*first);
    first.reset();
    test::FailingImport<Set> const fails("SetCurrentDirectoryW", FALSE, 5);

    copy.reset();

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(4, L"Failed to set directory to \"" + m_start + L"\" Error code : 5", L"Host")));
}

TEST_F(SettingDirectory, AssignmentTakesTheSavedOneAndTheModule) {
    std::optional<DirectorySetter> first(std::in_place, m_other, L"First");
    std::optional<DirectorySetter> second(std::in_place, m_third, L"Second");

    *first = *second;

    EXPECT_EQ(m_third, workingDirectory());
    test::FailingImport<Set> const fails("SetCurrentDirectoryW", FALSE, 5);
    first.reset();
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(
            4, L"Failed to set directory to \"" + m_other + L"\" Error code : 5", L"Second")));
}

TEST_F(SettingDirectory, LeaksNothing) {
    { DirectorySetter const setter(L"missing", L"Host"); }
    test::HandleLeakCheck const check;

    { DirectorySetter const setter(m_other, L"Host"); }
    { DirectorySetter const setter(L"missing", L"Host"); }
}

TEST_F(SettingDirectory, WithoutMemoryThrowsAheadOfTheChange) {
    auto const failures = test::failEachAllocation([&] {
        EXPECT_EQ(m_start, workingDirectory());
        DirectorySetter const setter(m_other, std::wstring(50, L'm'));
    });

    EXPECT_LT(0u, failures);
    EXPECT_EQ(m_start, workingDirectory());
}

TEST_F(SettingDirectory, WithoutMemoryForTheLineGoesOn) {
    std::optional<DirectorySetter> setter(std::in_place, m_other, L"Host");
    test::FailingImport<Set> const fails("SetCurrentDirectoryW", FALSE, 5);
    test::AllocationCounter counter;
    counter.failAt(1);

    setter.reset();

    EXPECT_LE(1u, counter.allocations());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}
