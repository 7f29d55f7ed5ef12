#include "tests/support/HandleCount.h"

#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <optional>

using testing::Contains;
using testing::Not;

namespace {

test::OwnedHandle newEvent() {
    return test::OwnedHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

std::uintptr_t numberOf(test::OwnedHandle const& handle) {
    return reinterpret_cast<std::uintptr_t>(handle.get());
}

} // namespace

TEST(HandleCount, CountsExactly) {
    auto const before = test::handleCount();

    auto const one = newEvent();
    auto const other = newEvent();

    EXPECT_EQ(before + 2, test::handleCount());
}

TEST(HandleCount, ListsTheHandlesThatAreOpen) {
    auto event = newEvent();
    auto const number = numberOf(event);

    EXPECT_THAT(test::openHandles(), Contains(number));
    event.reset();
    EXPECT_THAT(test::openHandles(), Not(Contains(number)));
}

TEST(HandleCount, CountsThousandsOfHandles) {
    auto const before = test::handleCount();

    std::vector<test::OwnedHandle> events(3000);
    for (auto& event : events)
        event = newEvent();

    EXPECT_EQ(before + 3000, test::handleCount());
}

TEST(HandleLeakCheck, PassesWhenEverythingIsClosed) {
    test::HandleLeakCheck const check;

    newEvent();
}

TEST(HandleLeakCheck, PassesWhenFewerAreOpen) {
    auto event = newEvent();
    test::HandleLeakCheck const check;

    event.reset();
}

TEST(HandleLeakCheck, FailsTheTestThatLeavesAHandleOpen) {
    std::optional<test::HandleLeakCheck> check(std::in_place);
    auto const event = newEvent();

    EXPECT_NONFATAL_FAILURE(check.reset(), "1 handles were left open, of these: 0x");
}
