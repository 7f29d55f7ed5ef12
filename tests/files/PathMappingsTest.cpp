// The table is one for the process: each test has shares of its own in it.

#include "files/PathMappings.h"

#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using vrUtils::Files::addPathMapping;
using vrUtils::Files::findPathMapping;

namespace {

constexpr unsigned mostRows = 33;

void add(std::wstring const& localRoot, std::wstring const& uncRoot) {
    addPathMapping(vr::Path::folder(localRoot), vr::Path::folder(uncRoot));
}

std::wstring share(unsigned number) { return L"\\\\srv\\s" + std::to_wstring(number) + L'\\'; }

void addShares(unsigned count) {
    for (unsigned number = 1; number <= count; ++number)
        add(L"D:\\" + std::to_wstring(number), share(number));
}

} // namespace

TEST(PathMappings, RowIsFoundByItsNetworkRoot) {
    add(L"M:\\", L"\\\\srv\\media\\");

    EXPECT_EQ(L"M:\\", findPathMapping(L"\\\\srv\\media\\"));
}

TEST(PathMappings, UnknownRootHasNoRow) {
    add(L"M:\\", L"\\\\srv\\media\\");

    for (auto const* const root :
         {L"", L"\\\\srv\\", L"\\\\srv\\media", L"\\\\srv\\media\\sub\\", L"\\\\other\\media\\",
          L"\\\\srv:80\\media\\"})
        EXPECT_EQ(L"", findPathMapping(root)) << root;
}

TEST(PathMappings, NetworkRootIsKeptInLowerCaseAndNormalForm) {
    add(L"M:\\", L"//SRV/Upper//");

    EXPECT_EQ(L"M:\\", findPathMapping(L"\\\\srv\\upper\\"));
}

TEST(PathMappings, LocalRootIsGivenInNormalFormWithItsCase) {
    add(L"d:/Store//Media/", L"\\\\srv\\normal\\");

    EXPECT_EQ(L"d:\\Store\\Media\\", findPathMapping(L"\\\\srv\\normal\\"));
}

TEST(PathMappings, OfTwoRowsForOneRootTheOlderCounts) {
    add(L"M:\\", L"\\\\srv\\twice\\");
    add(L"N:\\", L"\\\\srv\\twice\\");

    EXPECT_EQ(L"M:\\", findPathMapping(L"\\\\srv\\twice\\"));
}

TEST(PathMappings, RowWithoutLocalRootReadsAsNone) {
    add({}, L"\\\\srv\\nowhere\\");

    EXPECT_EQ(L"", findPathMapping(L"\\\\srv\\nowhere\\"));
}

TEST(PathMappings, RowWithoutLocalRootHidesYoungerOnes) {
    add({}, L"\\\\srv\\hidden\\");
    add(L"M:\\", L"\\\\srv\\hidden\\");

    EXPECT_EQ(L"", findPathMapping(L"\\\\srv\\hidden\\"));
}

TEST(PathMappings, ThirtyThreeRowsStay) {
    addShares(mostRows);

    for (unsigned number = 1; number <= mostRows; ++number)
        EXPECT_EQ(L"D:\\" + std::to_wstring(number), findPathMapping(share(number)));
}

TEST(PathMappings, ThirtyFourthRowDropsTheOldest) {
    addShares(mostRows + 1);

    EXPECT_EQ(L"", findPathMapping(share(1)));
    EXPECT_EQ(L"D:\\2", findPathMapping(share(2)));
    EXPECT_EQ(L"D:\\34", findPathMapping(share(34)));
}

TEST(PathMappings, RowThatIsAddedAgainTakesAPlaceOfItsOwn) {
    addShares(mostRows);
    add(L"E:\\", share(mostRows));

    EXPECT_EQ(L"", findPathMapping(share(1)));
    EXPECT_EQ(L"D:\\33", findPathMapping(share(mostRows)));
}

TEST(PathMappings, FailedAllocationLeavesTheTableAsItWas) {
    addShares(mostRows);
    auto const local = vr::Path::folder(L"F:\\");
    auto const unc = vr::Path::folder(share(1000));

    test::failEachAllocation([&] {
        EXPECT_EQ(L"D:\\1", findPathMapping(share(1)));
        EXPECT_EQ(L"", findPathMapping(share(1000)));
        addPathMapping(local, unc);
    });

    EXPECT_EQ(L"", findPathMapping(share(1)));
    EXPECT_EQ(L"F:\\", findPathMapping(share(1000)));
}

TEST(PathMappings, ThreadsNeverSeeHalfARow) {
    auto const letter = [](unsigned number) {
        return std::wstring(1, static_cast<wchar_t>(L'D' + number)) +
               L":\\folder behind the share\\";
    };
    std::atomic<unsigned> faults{0};
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < 8; ++number)
        threads.emplace_back([&, number] {
            auto const root = L"\\\\srv\\of a thread " + std::to_wstring(number) + L'\\';
            for (int turn = 0; turn < 500; ++turn) {
                add(letter(number), root);
                auto const found = findPathMapping(root);
                // Rows of the others may have driven it out meanwhile.
                if (!found.empty() && found != letter(number))
                    ++faults;
            }
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(0u, faults);
}
