#include "vrUtils/Parsing.h"

#include "tests/support/AllocationCounter.h"
#include "tests/support/ByteBuilder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <type_traits>
#include <utility>

using test::Bytes;
using testing::Each;
using vrUtils::Parsing::Tag;

namespace {

constexpr std::uint32_t name = 0x64617461;

Bytes const twentyBytes = [] {
    Bytes bytes(20);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i + 1);
    return bytes;
}();

Tag tagOfTwentyBytes() { return Tag(name, 20, twentyBytes.data()); }

Bytes valueOf(Tag const& tag, std::size_t count) { return Bytes(tag.Value(), tag.Value() + count); }

} // namespace

TEST(Tag, KeepsNameAndLength) {
    auto const tag = tagOfTwentyBytes();

    EXPECT_EQ(name, tag.Name());
    EXPECT_EQ(20u, tag.Length());
}

TEST(Tag, CopiesTheBytes) {
    auto bytes = twentyBytes;

    Tag const tag(name, 20, bytes.data());
    bytes.assign(20, 0xFF);

    EXPECT_EQ(twentyBytes, valueOf(tag, 20));
}

TEST(Tag, FillsAShortBlockUpWithZeros) {
    for (std::uint32_t length = 0; length < 18; ++length) {
        Tag const tag(name, length, twentyBytes.data());

        auto const value = valueOf(tag, 18);
        EXPECT_TRUE(std::equal(value.begin(), value.begin() + length, twentyBytes.begin()));
        EXPECT_THAT(Bytes(value.begin() + length, value.end()), Each(0)) << "of length " << length;
    }
}

TEST(Tag, OfNoBytesNeedsNoSource) {
    Tag const tag(name, 0, nullptr);

    EXPECT_EQ(0u, tag.Length());
    EXPECT_THAT(valueOf(tag, 18), Each(0));
}

TEST(Tag, CopyTakesTheBlockAway) {
    auto source = tagOfTwentyBytes();
    auto const* const block = source.Value();

    Tag const copy(source);

    EXPECT_EQ(block, copy.Value());
    EXPECT_EQ(nullptr, source.Value());
    EXPECT_EQ(name, copy.Name());
    EXPECT_EQ(20u, copy.Length());
}

TEST(Tag, NameAndLengthStayInTheSourceOfACopy) {
    auto source = tagOfTwentyBytes();

    Tag const copy(source);

    EXPECT_EQ(name, source.Name());
    EXPECT_EQ(20u, source.Length());
}

TEST(Tag, AssignmentTakesTheBlockAway) {
    auto source = tagOfTwentyBytes();
    auto const* const block = source.Value();
    Tag target(0x4A554E4B, 3, twentyBytes.data());

    auto& result = target = source;

    EXPECT_EQ(&target, &result);
    EXPECT_EQ(block, target.Value());
    EXPECT_EQ(nullptr, source.Value());
    EXPECT_EQ(name, target.Name());
    EXPECT_EQ(20u, target.Length());
}

TEST(Tag, NameAndLengthStayInTheSourceOfAnAssignment) {
    auto source = tagOfTwentyBytes();
    Tag target(0x4A554E4B, 3, twentyBytes.data());

    target = source;

    EXPECT_EQ(name, source.Name());
    EXPECT_EQ(20u, source.Length());
}

TEST(Tag, AssignedToItselfKeepsItsBlock) {
    auto tag = tagOfTwentyBytes();
    auto const* const block = tag.Value();
    auto& same = tag;

    tag = same;

    EXPECT_EQ(block, tag.Value());
    EXPECT_EQ(twentyBytes, valueOf(tag, 20));
}

TEST(Tag, MovedToItselfKeepsItsBlock) {
    auto tag = tagOfTwentyBytes();
    auto const* const block = tag.Value();
    auto& same = tag;

    tag = std::move(same);

    EXPECT_EQ(block, tag.Value());
    EXPECT_EQ(twentyBytes, valueOf(tag, 20));
}

TEST(Tag, MoveActsAsCopyDoes) {
    auto source = tagOfTwentyBytes();
    auto const* const block = source.Value();

    Tag const moved(std::move(source));

    EXPECT_EQ(block, moved.Value());
    EXPECT_EQ(nullptr, source.Value());
    EXPECT_EQ(name, source.Name());
    EXPECT_EQ(20u, source.Length());
}

TEST(Tag, IsAssignedFromATemporary) {
    Tag target(0x4A554E4B, 3, twentyBytes.data());

    target = tagOfTwentyBytes();

    EXPECT_EQ(name, target.Name());
    EXPECT_EQ(20u, target.Length());
    EXPECT_EQ(twentyBytes, valueOf(target, 20));
}

TEST(Tag, CopyOfAnEmptiedTagIsEmpty) {
    auto source = tagOfTwentyBytes();
    Tag const first(source);

    Tag const second(source);

    EXPECT_EQ(nullptr, second.Value());
    EXPECT_EQ(20u, second.Length());
    EXPECT_NE(nullptr, first.Value());
}

TEST(Tag, EmptiedTagEmptiesItsTarget) {
    auto source = tagOfTwentyBytes();
    Tag const first(source);
    auto target = tagOfTwentyBytes();

    target = source;

    EXPECT_EQ(nullptr, target.Value());
}

TEST(Tag, IsNotCopiedFromAConstantOne) {
    EXPECT_FALSE((std::is_constructible_v<Tag, Tag const&>));
    EXPECT_FALSE((std::is_assignable_v<Tag&, Tag const&>));
    EXPECT_TRUE((std::is_constructible_v<Tag, Tag&>));
    EXPECT_TRUE((std::is_assignable_v<Tag&, Tag&>));
}

TEST(Tag, AssignmentReleasesTheBlockOfTheTarget) {
    auto source = tagOfTwentyBytes();
    auto target = tagOfTwentyBytes();
    test::AllocationCounter const counter;

    target = source;

    EXPECT_EQ(1u, counter.releases());
    EXPECT_EQ(0u, counter.allocations());
}

TEST(Tag, AssignmentToItselfReleasesNothing) {
    auto tag = tagOfTwentyBytes();
    auto& same = tag;
    test::AllocationCounter const counter;

    tag = same;

    EXPECT_EQ(0u, counter.releases());
}

TEST(Tag, BlockIsReleasedOnceHoweverManyOwnersItHad) {
    test::AllocationCounter const counter;

    {
        auto first = tagOfTwentyBytes();
        Tag second(first);
        Tag third(std::move(second));
        first = third;
    }

    EXPECT_EQ(1u, counter.allocations());
    EXPECT_EQ(1u, counter.releases());
}

TEST(Tag, FailedAllocationPassesToTheCaller) {
    EXPECT_EQ(1u, test::failEachAllocation([] { tagOfTwentyBytes(); }));
}
