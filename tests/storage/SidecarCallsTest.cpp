// What the search for a sidecar does to the process: platform calls that fail, stacks and handles.

#include "vrUtils/Storage/Sidecar.h"

#include "tests/foundation/RandomText.h"
#include "tests/storage/FakeEntries.h"
#include "tests/storage/SmallThread.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Campaign.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <regex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using test::Logged;
using test::onSmallThread;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Storage::FindSidecarFile;

namespace {

constexpr wchar_t anyMovie[] = L"(.*)\\.mov";
constexpr std::size_t longestName = 32767;

class SidecarCalls : public testing::Test {
  protected:
    std::wstring folder() const { return m_folder.path() + L'\\'; }

    std::wstring find() const {
        return FindSidecarFile(L"Clip1.mov", anyMovie, folder(), L"\\1_.\\.xml", L"*");
    }

    test::ScratchFolder m_folder;
    test::LogRecorder m_log;
};

// The filled name, written out step by step.
std::wstring filled(std::wstring name, std::wsmatch const& captures) {
    std::size_t position = 0;
    for (;;) {
        auto const backslash = name.find(L'\\', position);
        if (backslash == std::wstring::npos || backslash == name.size() - 1)
            return name;
        auto const digit = static_cast<int>(name[backslash + 1]) - static_cast<int>(L'0');
        if (digit >= 0 && digit <= 9 && static_cast<std::size_t>(digit) < captures.size() &&
            captures[static_cast<std::size_t>(digit)].matched) {
            auto const capture = captures[static_cast<std::size_t>(digit)].str();
            name.replace(backslash, 2, capture);
            position = backslash + capture.size();
        } else
            position = backslash + 1;
    }
}

} // namespace

TEST_F(SidecarCalls, SearchWhereTheExactNameCannotBeAskedFor) {
    m_folder.write(L"Clip1.xml", "");
    test::FailingImport<decltype(GetFileAttributesW)> const refused(
        "GetFileAttributesW", INVALID_FILE_ATTRIBUTES, ERROR_ACCESS_DENIED);

    EXPECT_EQ(
        folder() + L"Clip1.xml",
        FindSidecarFile(L"Clip1.mov", anyMovie, folder(), L"\\1.xml", L"*"));

    EXPECT_EQ(1u, refused.calls());
}

TEST_F(SidecarCalls, FindNothingInAFolderThatCannotBeSearched) {
    m_folder.write(L"Clip1_a.xml", "");
    test::FailingImport<decltype(FindFirstFileW)> const refused(
        "FindFirstFileW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    test::ImportHook<decltype(FindClose)> const close("FindClose", [](HANDLE) { return FALSE; });

    EXPECT_EQ(L"", find());

    EXPECT_EQ(0u, close.calls());
    EXPECT_THAT(
        m_log.lines(),
        Contains(Logged(4, L"Failed to find matching sidecar in [" + folder() + L"]")));
}

TEST_F(SidecarCalls, KeepWhatWasFoundBeforeASearchFails) {
    m_folder.write(L"Clip1_a.xml", "");
    m_folder.write(L"Clip1_b.xml", "");
    // "." comes first, then ".." and the two files.
    test::FailingImport<decltype(FindNextFileW)> const broken(
        "FindNextFileW", FALSE, ERROR_READ_FAULT, 3);

    EXPECT_EQ(folder() + L"Clip1_a.xml", find());

    EXPECT_EQ(3u, broken.calls());
    EXPECT_EQ(2u, m_log.lines().size());
}

TEST_F(SidecarCalls, CloseTheSearch) {
    m_folder.write(L"Clip1_a.xml", "");
    test::ImportHook<decltype(FindClose)> const close(
        "FindClose", [&](HANDLE search) { return close.original()(search); });
    test::HandleLeakCheck const check;

    find();

    EXPECT_EQ(1u, close.calls());
}

TEST_F(SidecarCalls, CloseTheSearchWhereNothingMatches) {
    test::FakeEntries const entries{{L"other.xml", FILE_ATTRIBUTE_ARCHIVE}};

    EXPECT_EQ(L"", find());

    EXPECT_EQ(1u, entries.patterns().size());
    EXPECT_EQ(0, entries.openSearches());
}

TEST_F(SidecarCalls, ReportAThreadThatCannotBeAFiber) {
    test::FailingImport<decltype(ConvertThreadToFiberEx)> const fails(
        "ConvertThreadToFiberEx", nullptr, ERROR_NOT_ENOUGH_MEMORY);

    EXPECT_EQ(L"", find());

    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(3, L"Failed to parse sidecar regex [(.*)\\.mov]")));
}

TEST_F(SidecarCalls, ReportThatThereIsNoStack) {
    for (unsigned failing : {1u, 2u}) {
        test::FailingImport<decltype(CreateFiberEx)> const fails(
            "CreateFiberEx", nullptr, ERROR_NOT_ENOUGH_MEMORY, failing);
        m_log.clear();

        EXPECT_EQ(L"", find());

        EXPECT_EQ(failing, m_log.lines().size());
        EXPECT_THAT(m_log.lines().back(), Logged(3, L"Failed to parse sidecar regex [(.*)\\.mov]"));
        EXPECT_FALSE(IsThreadAFiber());
    }
}

TEST_F(SidecarCalls, ReportEachAllocationThatFails) {
    m_folder.write(L"Clip1_a.xml", "");
    auto const sidecar = folder() + L"Clip1_a.xml";
    auto const inFolder = folder();
    std::wstring const movie = L"Clip1.mov";
    std::wstring const regex = anyMovie;
    std::wstring const name = L"\\1_.\\.xml";
    std::wstring const pattern = L"*";
    test::ImportHook<decltype(FindClose)> const close(
        "FindClose", [&](HANDLE search) { return close.original()(search); });
    test::ImportHook<decltype(FindFirstFileW)> const search(
        "FindFirstFileW", [&](wchar_t const* path, WIN32_FIND_DATAW* entry) {
            return search.original()(path, entry);
        });
    test::AllocationCounter counter;
    unsigned failed = 0;
    for (std::wstring result; result.empty();) {
        m_log.clear();
        counter.reset();
        counter.failAt(++failed);
        result = FindSidecarFile(movie, regex, inFolder, name, pattern);
        counter.failNone();

        if (result.empty()) {
            ASSERT_THAT(
                m_log.lines(), Contains(Logged(3, L"Failed to parse sidecar regex [(.*)\\.mov]")));
        } else {
            EXPECT_EQ(sidecar, result);
        }
        ASSERT_FALSE(IsThreadAFiber());
    }

    EXPECT_GT(failed, 20u);
    EXPECT_EQ(search.calls(), close.calls());
}

TEST_F(SidecarCalls, CostTheSameForEachEntryHoweverManyThereAre) {
    auto const allocationsAmong = [this](int count) {
        std::vector<test::FakeEntries::Entry> names;
        for (int entry = 0; entry < count; ++entry)
            names.emplace_back(L"Entry " + std::to_wstring(10000 + entry), 0);
        test::FakeEntries const entries(std::move(names));
        test::AllocationCounter const counter;
        find();
        return counter.allocations();
    };

    auto const amongOneThousand = allocationsAmong(1000);
    auto const amongTwoThousand = allocationsAmong(2000);
    auto const amongThreeThousand = allocationsAmong(3000);

    EXPECT_EQ(amongThreeThousand - amongTwoThousand, amongTwoThousand - amongOneThousand);
}

TEST_F(SidecarCalls, LeaveAThreadThatIsAFiberOne) {
    m_folder.write(L"Clip1_a.xml", "");
    ASSERT_NE(nullptr, ConvertThreadToFiber(nullptr));
    auto* const self = GetCurrentFiber();

    EXPECT_EQ(folder() + L"Clip1_a.xml", find());

    EXPECT_TRUE(IsThreadAFiber());
    EXPECT_EQ(self, GetCurrentFiber());
    ConvertFiberToThread();
}

TEST_F(SidecarCalls, DeleteEachFiber) {
    m_folder.write(L"Clip1_a.xml", "");
    test::ImportHook<decltype(CreateFiberEx)> const make(
        "CreateFiberEx",
        [&](SIZE_T commit, SIZE_T reserve, DWORD flags, LPFIBER_START_ROUTINE start, void* data) {
            return make.original()(commit, reserve, flags, start, data);
        });
    test::ImportHook<decltype(DeleteFiber)> const remove(
        "DeleteFiber", [&](void* fiber) { remove.original()(fiber); });

    find();

    EXPECT_EQ(2u, make.calls());
    EXPECT_EQ(2u, remove.calls());
    EXPECT_FALSE(IsThreadAFiber());
}

TEST_F(SidecarCalls, TakeTheLongestNameFromASmallThread) {
    auto const movie = std::wstring(longestName - 4, L'n') + L".mov";
    m_folder.write(L"fixed.xml", "");
    for (auto const* const regex : {anyMovie, L"(n|m)*\\.mov", L".*\\.mov", L"(.+?)\\.MOV"}) {
        std::wstring result;

        onSmallThread(
            [&] { result = FindSidecarFile(movie, regex, folder(), L"fixed\\.xml", L"*"); });

        EXPECT_EQ(folder() + L"fixed.xml", result);
    }
}

TEST_F(SidecarCalls, RefuseTheLongestNameFromASmallThread) {
    std::wstring const movie(longestName, L'n');
    std::wstring result = L"none yet";

    onSmallThread([&] { result = FindSidecarFile(movie, anyMovie, folder(), L"\\1", L"*"); });

    EXPECT_EQ(L"", result);
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre(
            L"Movie file [" + movie + L"] failed to match regular expression [(.*)\\.mov]"));
}

TEST_F(SidecarCalls, ReportALongNameThatIsNoUsableExpression) {
    auto const movie = std::wstring(longestName - 4, L'n') + L".mov";
    std::wstring result = L"none yet";

    onSmallThread([&] { result = FindSidecarFile(movie, anyMovie, folder(), L"\\1\\.xml", L"*"); });

    EXPECT_EQ(L"", result);
    EXPECT_EQ(2u, m_log.lines().size());
    EXPECT_THAT(m_log.lines().back(), Logged(3, L"Failed to parse sidecar regex [(.*)\\.mov]"));
}

TEST_F(SidecarCalls, TakeALongExpressionFromASmallThread) {
    std::wstring const expression(longestName, L'(');
    std::wstring result = L"none yet";

    onSmallThread([&] { result = FindSidecarFile({}, expression, folder(), L"x", L"*"); });

    EXPECT_EQ(L"", result);
    EXPECT_THAT(m_log.texts(), ElementsAre(L"Failed to parse sidecar regex [" + expression + L"]"));
}

TEST_F(SidecarCalls, MatchTheLongestEntryFromASmallThread) {
    auto const entry = std::wstring(255, L'n') + L".xml";
    test::FakeEntries const entries{{entry, FILE_ATTRIBUTE_ARCHIVE}};
    std::wstring result;

    onSmallThread(
        [&] { result = FindSidecarFile(L"a.mov", anyMovie, folder(), L"((n|m)|x)*\\.xml", L"*"); });

    EXPECT_EQ(folder() + entry, result);
}

TEST_F(SidecarCalls, OfManyThreadsStormWithoutFault) {
    m_folder.write(L"Clip1_a.xml", "");
    std::atomic<unsigned> faults{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 20; ++turn)
                if (find() != folder() + L"Clip1_a.xml" || IsThreadAFiber())
                    ++faults;
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(0u, faults);
    EXPECT_EQ(8u * 20 * 2, m_log.lines().size());
}

TEST_F(SidecarCalls, RandomNamesAreFilledAsWrittenOutStepByStep) {
    test::ImportHook<decltype(GetFileAttributesW)> const exists(
        "GetFileAttributesW", [](wchar_t const*) -> DWORD { return FILE_ATTRIBUTE_ARCHIVE; });
    std::array<std::wstring, 4> const expressions{
        L"(.*)", L"(a*)(.*)|(b.*)", L"((.)|)(.)?(.)?(.)?(.)?(.)?(.)?(.)?(.)?(.)?(.)?(.*)", L".*"};
    test::Campaign campaign(3000);
    RandomText<wchar_t> names(L"\\\\\\\\0123789:/ax", campaign);
    RandomText<wchar_t> movies(L"ab\\12", campaign);
    while (campaign.nextRound()) {
        auto const& expression = expressions[campaign.below(expressions.size())];
        auto const movie = movies.upTo(6);
        auto const name = names.upTo(10);
        std::wsmatch captures;
        ASSERT_TRUE(std::regex_match(movie, captures, std::wregex(expression)));

        ASSERT_EQ(
            L"F:\\" + filled(name, captures),
            FindSidecarFile(movie, expression, L"F:\\", name, L"*"))
            << campaign << ", " << testing::PrintToString(name);
    }
}
