#include "tests/support/AllocationCounter.h"

#include "vrUtils/Path.h"
#include "vrUtils/Strings.h"

#include <memory>
#include <string>

namespace {

// Too long to be kept inside a string object.
std::wstring const longName(100, L'n');

} // namespace

TEST(AllocationCounter, CountsTheAllocationsOfTheLibrary) {
    test::AllocationCounter const counter;

    vr::PathCreator const path(longName);

    EXPECT_EQ(1u, counter.allocations());
    EXPECT_LE(sizeof(wchar_t) * 100, counter.bytes());
    EXPECT_EQ(0u, counter.releases());
}

TEST(AllocationCounter, CountsReleases) {
    test::AllocationCounter const counter;

    { vr::PathCreator const path(longName); }

    EXPECT_EQ(1u, counter.releases());
    EXPECT_EQ(counter.allocations(), counter.releases());
}

TEST(AllocationCounter, LeavesTheAllocationsOfTheTestOut) {
    test::AllocationCounter const counter;

    auto const text = std::make_unique<std::wstring>(longName);

    EXPECT_EQ(0u, counter.allocations());
    EXPECT_EQ(100u, text->size());
}

TEST(AllocationCounter, CountsFromZeroAgain) {
    test::AllocationCounter counter;
    vr::PathCreator const path(longName);

    counter.reset();

    EXPECT_EQ(0u, counter.allocations());
    EXPECT_EQ(0u, counter.bytes());
}

TEST(AllocationCounter, FailedAllocationComesOutAsBadAlloc) {
    test::AllocationCounter counter;

    counter.failAt(1);

    EXPECT_THROW(vr::PathCreator{longName}, std::bad_alloc);
    EXPECT_NO_THROW(vr::PathCreator{longName});
}

TEST(AllocationCounter, FailsTheAllocationOfTheGivenNumber) {
    test::AllocationCounter counter;
    vr::PathCreator const counted(longName);

    counter.failAt(2);

    EXPECT_NO_THROW(vr::PathCreator{longName});
    EXPECT_THROW(vr::PathCreator{longName}, std::bad_alloc);
}

TEST(AllocationCounter, FailsNoneAnyMore) {
    test::AllocationCounter counter;
    counter.failAt(1);

    counter.failNone();

    EXPECT_NO_THROW(vr::PathCreator{longName});
}

TEST(AllocationCounter, FailsEachAllocationInTurn) {
    unsigned rounds = 0;

    auto const failures = test::failEachAllocation([&rounds] {
        ++rounds;
        vr::PathCreator const one(longName);
        vr::PathCreator const other(longName);
    });

    EXPECT_EQ(2u, failures);
    EXPECT_EQ(3u, rounds);
}
