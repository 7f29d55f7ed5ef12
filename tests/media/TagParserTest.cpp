#include "tests/media/WalkingParser.h"

#include "tests/media/GuardedBytes.h"
#include "tests/media/ParsingFailures.h"
#include "tests/support/AllocationCounter.h"

#include <gmock/gmock.h>

#include <cstring>
#include <type_traits>

using test::Bytes;
using test::chunk;
using test::insufficientData;
using test::lyingChunk;
using test::parsingFailureOf;
using test::WalkingParser;
using test::wavChunks;
using testing::Each;
using vrUtils::Parsing::AudioFormatParser;
using vrUtils::Parsing::TagParser;

namespace {

constexpr std::uint32_t goal = 0x474F414C;

// Chunk headers anywhere in a buffer, each with the length that leads to a place of choice, behind
// or ahead.
class Headers {
  public:
    explicit Headers(std::size_t size) : m_bytes(size) {}

    Headers& place(std::uint32_t start, std::string const& name, std::uint32_t next) {
        auto const header = wavChunks({lyingChunk(name, next - (start + 8), {})});
        std::copy(header.begin(), header.end(), m_bytes.begin() + start);
        return *this;
    }

    Bytes const& bytes() const { return m_bytes; }

  private:
    Bytes m_bytes;
};

// A walk to the far end of a buffer and from there back in 1000 steps of 16 bytes.
Headers thousandStepsBack() {
    Headers headers(16 * 1002);
    headers.place(0, "FAR ", 16 * 1000);
    for (std::uint32_t step = 1000; step > 1; --step)
        headers.place(16 * step, "BACK", 16 * (step - 1));
    return headers;
}

class RecordingParser : public TagParser {
  public:
    RecordingParser() : TagParser(nullptr, 0) {}

    void Parse() override { calls += "Parse "; }

    std::string calls;

  protected:
    std::uint32_t ReadNextLength() override {
        calls += "ReadNextLength ";
        return 0;
    }
};

// A parser of chunks that are all of one length.
class FixedLengthParser : public WalkingParser {
  public:
    using WalkingParser::WalkingParser;

  protected:
    std::uint32_t ReadNextLength() override { return 2; }
};

} // namespace

TEST(TagParser, HasNoVirtualDestructor) {
    EXPECT_TRUE(std::is_polymorphic_v<TagParser>);
    EXPECT_FALSE(std::has_virtual_destructor_v<TagParser>);
    EXPECT_FALSE(std::has_virtual_destructor_v<AudioFormatParser>);
}

TEST(TagParser, LeavesParseToItsSubclasses) {
    EXPECT_TRUE(std::is_abstract_v<TagParser>);
    EXPECT_TRUE(std::is_abstract_v<AudioFormatParser>);
}

// Programs that were built against another release reach the operations by their places.
TEST(TagParser, VirtualOperationsAreParseThenReadNextLength) {
    RecordingParser parser;
    TagParser* const base = &parser;
    using Operation = void (*)(TagParser*);
    Operation const* operations;
    std::memcpy(&operations, static_cast<void const*>(base), sizeof operations);

    operations[0](base);
    operations[1](base);

    EXPECT_EQ("Parse ReadNextLength ", parser.calls);
}

TEST(TagParser, ConstructorReadsNothing) {
    EXPECT_NO_THROW(WalkingParser(nullptr, 100));
    EXPECT_NO_THROW(WalkingParser(nullptr, 0));
}

TEST(TagParser, NameIsReadMostSignificantByteFirst) {
    Bytes const buffer{0x52, 0x49, 0x46, 0xF8, 0};
    WalkingParser parser(buffer);

    EXPECT_EQ(0x524946F8u, parser.ReadNextName());
}

TEST(TagParser, LengthIsReadLeastSignificantByteFirst) {
    Bytes const buffer{0x52, 0x49, 0x46, 0xF8, 0};
    WalkingParser parser(buffer);

    EXPECT_EQ(0xF8464952u, parser.ReadNextLength());
}

TEST(TagParser, ValueIsWhereItLiesInTheBuffer) {
    Bytes const buffer(20);
    WalkingParser parser(buffer);

    EXPECT_EQ(buffer.data(), parser.ReadNextValue(7));
    EXPECT_EQ(buffer.data() + 7, parser.ReadNextValue(3));
    EXPECT_EQ(buffer.data() + 10, parser.ReadNextValue(0));
}

TEST(TagParser, LastByteIsNeverRead) {
    Bytes const buffer(20);

    EXPECT_NO_THROW(WalkingParser(buffer).ReadNextValue(19));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { WalkingParser(buffer).ReadNextValue(20); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { WalkingParser(buffer).ReadNextValue(21); }));
}

TEST(TagParser, NothingIsReadFromAnEmptyBuffer) {
    WalkingParser parser(nullptr, 0);

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextValue(0); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextName(); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextLength(); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextTag(); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.FindTag(goal); }));
}

TEST(TagParser, NameAndLengthNeedOneByteMoreThanTheirFour) {
    Bytes const four(4);
    Bytes const five(5);

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { WalkingParser(four).ReadNextName(); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { WalkingParser(four).ReadNextLength(); }));
    EXPECT_NO_THROW(WalkingParser(five).ReadNextName());
    EXPECT_NO_THROW(WalkingParser(five).ReadNextLength());
}

TEST(TagParser, FailedReadLeavesThePosition) {
    Bytes const buffer(20);
    WalkingParser parser(buffer);
    parser.ReadNextValue(17);

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextValue(3); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextName(); }));
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextLength(); }));

    EXPECT_EQ(buffer.data() + 17, parser.ReadNextValue(0));
}

TEST(TagParser, LengthThatWrapsMovesThePositionBack) {
    Bytes const buffer(20);
    WalkingParser parser(buffer);
    parser.ReadNextValue(10);

    EXPECT_EQ(buffer.data() + 10, parser.ReadNextValue(0xFFFFFFFC));

    EXPECT_EQ(buffer.data() + 6, parser.ReadNextValue(0));
}

TEST(TagParser, LengthThatJustWrapsLeadsToTheStart) {
    Bytes const buffer(20);
    WalkingParser parser(buffer);
    parser.ReadNextValue(10);

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.ReadNextValue(0xFFFFFFF5); }));
    parser.ReadNextValue(0xFFFFFFF6);

    EXPECT_EQ(buffer.data(), parser.ReadNextValue(0));
}

TEST(TagParser, TagDoesNotDependOnTheBuffer) {
    auto buffer = wavChunks({chunk("data", Bytes(20, 0x77)), chunk("next", {})});

    auto const tag = WalkingParser(buffer).ReadNextTag();
    buffer.assign(buffer.size(), 0);

    EXPECT_EQ(0x64617461u, tag.Name());
    EXPECT_EQ(20u, tag.Length());
    EXPECT_THAT(Bytes(tag.Value(), tag.Value() + 20), Each(0x77));
}

TEST(TagParser, NextTagStandsDirectlyBehindAnOddOne) {
    auto const buffer = wavChunks({chunk("odd ", Bytes(3)), chunk("GOAL", {}), chunk("end ", {})});
    WalkingParser parser(buffer);

    parser.ReadNextTag();

    EXPECT_EQ(goal, parser.ReadNextTag().Name());
}

TEST(TagParser, TagTakesItsLengthFromTheSubclass) {
    Bytes const buffer{'G', 'O', 'A', 'L', 0xAB, 0xCD, 'n', 'e', 'x', 't', 0};
    FixedLengthParser parser(buffer);

    auto const tag = parser.ReadNextTag();

    EXPECT_EQ(2u, tag.Length());
    EXPECT_EQ(0xAB, tag.Value()[0]);
    EXPECT_EQ(0x6E657874u, parser.ReadNextName());
}

TEST(TagParser, TagOfALengthThatWrapsHoldsTheBytesThatAreThere) {
    auto const buffer = wavChunks({lyingChunk("huge", 0xFFFFFFF8, Bytes(30, 0x77))});
    test::GuardedBytes const guarded(buffer);

    auto const tag = WalkingParser(guarded.data(), guarded.size()).ReadNextTag();

    EXPECT_EQ(0xFFFFFFF8u, tag.Length());
    EXPECT_THAT(Bytes(tag.Value(), tag.Value() + 30), Each(0x77));
}

TEST(TagParser, TagOfALengthThatWrapsHasAtLeastEighteenBytes) {
    auto const buffer = wavChunks({lyingChunk("huge", 0xFFFFFFFF, Bytes(5, 0x77))});
    test::GuardedBytes const guarded(buffer);

    auto const tag = WalkingParser(guarded.data(), guarded.size()).ReadNextTag();

    EXPECT_THAT(Bytes(tag.Value(), tag.Value() + 5), Each(0x77));
    EXPECT_THAT(Bytes(tag.Value() + 5, tag.Value() + 18), Each(0));
}

TEST(TagParser, TagOfALengthThatWrapsCostsNoMoreThanTheBytesThatAreThere) {
    auto const buffer = wavChunks({lyingChunk("huge", 0xFFFFFFF8, Bytes(30))});
    test::AllocationCounter const counter;

    WalkingParser(buffer).ReadNextTag();

    EXPECT_EQ(1u, counter.allocations());
    EXPECT_EQ(30u, counter.bytes());
}

TEST(TagParser, FindTagPassesOtherChunks) {
    auto const buffer = wavChunks(
        {chunk("one ", Bytes(6)), chunk("two ", {}), chunk("GOAL", {1, 2}), chunk("last", {})});

    auto const tag = WalkingParser(buffer).FindTag(goal);

    EXPECT_EQ(goal, tag.Name());
    EXPECT_EQ(2u, tag.Length());
    EXPECT_EQ(2, tag.Value()[1]);
}

TEST(TagParser, FindTagCopiesAndReleasesTheChunksOnItsWay) {
    auto const buffer = wavChunks(
        {chunk("one ", Bytes(600)), chunk("two ", Bytes(100)), chunk("GOAL", Bytes(30)),
         chunk("last", {})});
    test::AllocationCounter const counter;

    auto const tag = WalkingParser(buffer).FindTag(goal);

    EXPECT_EQ(3u, counter.allocations());
    EXPECT_EQ(730u, counter.bytes());
    EXPECT_EQ(2u, counter.releases());
}

TEST(TagParser, FindTagPassesEachFailedAllocationToTheCaller) {
    auto const buffer = wavChunks(
        {chunk("one ", Bytes(600)), chunk("two ", Bytes(100)), chunk("GOAL", Bytes(30)),
         chunk("last", {})});

    EXPECT_EQ(3u, test::failEachAllocation([&] { WalkingParser(buffer).FindTag(goal); }));
}

TEST(TagParser, WalkThatFailsLeavesNothingBehind) {
    Headers headers(100);
    headers.place(0, "one ", 12).place(12, "two ", 60).place(60, "thre", 12);
    auto const walk = [&] { WalkingParser(headers.bytes()).FindTag(goal); };
    // The first exception of a module makes blocks that stay for good.
    EXPECT_THROW(walk(), vrException);
    test::AllocationCounter const counter;

    EXPECT_THROW(walk(), vrException);

    EXPECT_LT(0u, counter.allocations());
    EXPECT_EQ(counter.allocations(), counter.releases());
}

TEST(TagParser, FindTagGoesOnFromTheLastOneFound) {
    auto const buffer =
        wavChunks({chunk("GOAL", {1}), chunk("else", {}), chunk("GOAL", {2}), chunk("last", {})});
    WalkingParser parser(buffer);

    EXPECT_EQ(1, parser.FindTag(goal).Value()[0]);
    EXPECT_EQ(2, parser.FindTag(goal).Value()[0]);
    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.FindTag(goal); }));
}

TEST(TagParser, FindTagComparesNamesExactly) {
    auto const buffer = wavChunks(
        {chunk("goal", {}), chunk("GOAl", {}), chunk("GOA ", {}), chunk("LAOG", {}),
         chunk("end ", {})});

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { WalkingParser(buffer).FindTag(goal); }));
}

TEST(TagParser, FindTagTakesTheLengthFromTheSubclass) {
    Bytes const buffer{'e', 'l', 's', 'e', 0, 0, 'G', 'O', 'A', 'L', 0xAB, 0xCD, 0};

    auto const tag = FixedLengthParser(buffer).FindTag(goal);

    EXPECT_EQ(0xCD, tag.Value()[1]);
}

TEST(TagParser, FindTagFindsWhatAWrapLeadsBackTo) {
    Headers headers(100);
    headers.place(0, "FAR ", 60).place(60, "BACK", 20).place(20, "GOAL", 40);

    auto const tag = WalkingParser(headers.bytes()).FindTag(goal);

    EXPECT_EQ(12u, tag.Length());
}

TEST(TagParser, FindTagEndsWhereAThousandStepsBackLead) {
    auto headers = thousandStepsBack();
    headers.place(16, "GOAL", 30);

    auto const tag = WalkingParser(headers.bytes()).FindTag(goal);

    EXPECT_EQ(6u, tag.Length());
}

TEST(TagParser, FindTagCopiesLittleHoweverOftenTheWalkMovesBack) {
    auto headers = thousandStepsBack();
    headers.place(16, "GOAL", 30);
    test::AllocationCounter const counter;

    WalkingParser(headers.bytes()).FindTag(goal);

    EXPECT_GT(2 * headers.bytes().size(), counter.bytes());
}

TEST(TagParser, FindTagStandsBehindWhatAWrapLedBackTo) {
    Headers headers(100);
    headers.place(0, "FAR ", 60).place(60, "BACK", 20).place(20, "GOAL", 40).place(40, "next", 50);
    WalkingParser parser(headers.bytes());

    parser.FindTag(goal);

    EXPECT_EQ(0x6E657874u, parser.ReadNextName());
}

TEST(TagParser, FindTagMayFindTheSameChunkAgain) {
    Headers headers(100);
    headers.place(0, "else", 20).place(20, "GOAL", 0);
    WalkingParser parser(headers.bytes());

    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(goal, parser.FindTag(goal).Name());
}

TEST(TagParser, CircleOfOneChunkEnds) {
    Headers headers(100);
    headers.place(0, "self", 0);

    EXPECT_EQ(
        insufficientData, parsingFailureOf([&] { WalkingParser(headers.bytes()).FindTag(goal); }));
}

TEST(TagParser, CircleOfSeveralChunksEnds) {
    Headers headers(100);
    headers.place(0, "one ", 12).place(12, "two ", 60).place(60, "thre", 0);

    EXPECT_EQ(
        insufficientData, parsingFailureOf([&] { WalkingParser(headers.bytes()).FindTag(goal); }));
}

TEST(TagParser, CircleThatBeginsBehindTheStartEnds) {
    Headers headers(100);
    headers.place(0, "one ", 12).place(12, "two ", 60).place(60, "thre", 12);

    EXPECT_EQ(
        insufficientData, parsingFailureOf([&] { WalkingParser(headers.bytes()).FindTag(goal); }));
}

TEST(TagParser, CircleWithAThousandStepsBackEnds) {
    auto headers = thousandStepsBack();
    headers.place(16, "FAR ", 16 * 1000);

    EXPECT_EQ(
        insufficientData, parsingFailureOf([&] { WalkingParser(headers.bytes()).FindTag(goal); }));
}

TEST(TagParser, CircleBehindAThousandStepsBackEnds) {
    auto headers = thousandStepsBack();
    headers.place(16, "self", 16);

    EXPECT_EQ(
        insufficientData, parsingFailureOf([&] { WalkingParser(headers.bytes()).FindTag(goal); }));
}

TEST(TagParser, CopyWalksOnFromTheSamePlace) {
    Bytes const buffer(20);
    WalkingParser parser(buffer);
    parser.ReadNextValue(5);

    WalkingParser copy(parser);
    parser.ReadNextValue(7);

    EXPECT_EQ(buffer.data() + 5, copy.ReadNextValue(1));
    EXPECT_EQ(buffer.data() + 12, parser.ReadNextValue(1));
}

TEST(TagParser, AssignmentTakesBufferSizeAndPosition) {
    Bytes const buffer(20);
    WalkingParser parser(buffer);
    parser.ReadNextValue(5);
    WalkingParser target(nullptr, 0);

    target = parser;

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { target.ReadNextValue(15); }));
    EXPECT_EQ(buffer.data() + 5, target.ReadNextValue(14));
}

namespace {

// A buffer of the largest size, of which only the last page holds memory: it ends where the next
// page, which does not, begins.
class LargestBuffer {
  public:
    LargestBuffer()
        : m_pages(static_cast<unsigned char*>(
              VirtualAlloc(nullptr, pagesSize + pageSize, MEM_RESERVE, PAGE_NOACCESS))) {
        if (m_pages)
            VirtualAlloc(m_pages + pagesSize - pageSize, pageSize, MEM_COMMIT, PAGE_READWRITE);
    }

    LargestBuffer(LargestBuffer const&) = delete;
    LargestBuffer& operator=(LargestBuffer const&) = delete;

    ~LargestBuffer() { VirtualFree(m_pages, 0, MEM_RELEASE); }

    // The buffer is one byte shorter than its pages.
    unsigned char* data() const { return m_pages + 1; }

    static constexpr std::uint32_t size = 0xFFFFFFFF;

  private:
    static constexpr std::size_t pagesSize = 0x100000000;
    static constexpr std::size_t pageSize = 4096;

    unsigned char* m_pages;
};

} // namespace

TEST(TagParser, HeaderFieldThatWrapsReadsMissingBytesAsZeros) {
    LargestBuffer const buffer;
    buffer.data()[0xFFFFFFFD] = 0x12;
    buffer.data()[0xFFFFFFFE] = 0x34;
    WalkingParser named(buffer.data(), LargestBuffer::size);
    named.ReadNextValue(0xFFFFFFFD);
    auto measured = named;

    EXPECT_EQ(0x12340000u, named.ReadNextName());
    EXPECT_EQ(0x00003412u, measured.ReadNextLength());
    EXPECT_EQ(buffer.data() + 1, named.ReadNextValue(0));
}
