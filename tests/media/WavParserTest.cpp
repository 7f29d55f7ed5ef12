#include "vrUtils/Parsing.h"

#include "tests/media/AudioHeads.h"
#include "tests/media/GuardedBytes.h"
#include "tests/media/HeadModel.h"
#include "tests/media/ParsingFailures.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>

using test::Bytes;
using test::chunk;
using test::insufficientData;
using test::lyingChunk;
using test::modelOfWav;
using test::outcomeOf;
using test::parsingFailureOf;
using test::wavFile;
using test::wavFormat;
using vrUtils::Parsing::WavParser;

namespace {

// A head with all that its constructor looks at, of 64 bytes.
Bytes headBeginning(std::string const& name, std::string const& type) {
    Bytes head(64, 0xEE);
    std::copy(name.begin(), name.end(), head.begin());
    std::copy(type.begin(), type.end(), head.begin() + 8);
    return head;
}

std::wstring constructionFailure(Bytes const& head, std::uint32_t length) {
    return parsingFailureOf([&] { WavParser(head.data(), length); });
}

WavParser parserOf(Bytes const& head) {
    return WavParser(head.data(), static_cast<std::uint32_t>(head.size()));
}

std::wstring parseFailure(Bytes const& head) {
    auto parser = parserOf(head);
    return parsingFailureOf([&] { parser.Parse(); });
}

} // namespace

TEST(WavParser, HeadOfTwelveBytesIsTooShort) {
    auto const head = headBeginning("RIFF", "WAVE");

    for (std::uint32_t length = 0; length <= 12; ++length)
        EXPECT_EQ(insufficientData, constructionFailure(head, length)) << length;
}

TEST(WavParser, HeadOfThirteenBytesIsEnough) {
    auto const head = headBeginning("RIFF", "WAVE");

    for (std::uint32_t length = 13; length <= 64; ++length)
        EXPECT_NO_THROW(WavParser(head.data(), length)) << length;
}

TEST(WavParser, LengthIsReadBeforeTheNameIsTested) {
    auto const head = headBeginning("FORM", "WAVE");

    for (std::uint32_t length = 0; length <= 8; ++length)
        EXPECT_EQ(insufficientData, constructionFailure(head, length)) << length;
    for (std::uint32_t length = 9; length <= 64; ++length)
        EXPECT_EQ(L"Missing RIFF tag", constructionFailure(head, length)) << length;
}

TEST(WavParser, OtherTypeIsRefused) {
    auto const head = headBeginning("RIFF", "AVI ");

    for (std::uint32_t length = 0; length <= 12; ++length)
        EXPECT_EQ(insufficientData, constructionFailure(head, length)) << length;
    for (std::uint32_t length = 13; length <= 64; ++length)
        EXPECT_EQ(L"Missing WAVE tag", constructionFailure(head, length)) << length;
}

TEST(WavParser, NamesAreComparedExactly) {
    for (auto const* name : {"riff", "RIFX", "RIF ", "FFIR", "FORM"})
        EXPECT_EQ(L"Missing RIFF tag", constructionFailure(headBeginning(name, "WAVE"), 64));
    for (auto const* type : {"wave", "WAV ", "EVAW", "AIFF"})
        EXPECT_EQ(L"Missing WAVE tag", constructionFailure(headBeginning("RIFF", type), 64));
}

TEST(WavParser, NameIsTestedBeforeTheType) {
    EXPECT_EQ(L"Missing RIFF tag", constructionFailure(headBeginning("FORM", "AIFF"), 64));
}

TEST(WavParser, LengthOfTheFileIsIgnored) {
    auto head = wavFile({chunk("fmt ", wavFormat(48000, 24))});
    for (auto const byte : Bytes{0x00, 0x01, 0x7F, 0xFF}) {
        std::fill_n(head.begin() + 4, 4, byte);

        EXPECT_EQ(48000u, outcomeOf<WavParser>(head).samplesPerSecond);
    }
}

TEST(WavParser, ParseTakesBothValues) {
    auto const head = wavFile({chunk("fmt ", wavFormat(48000, 24)), chunk("data", Bytes(100))});
    auto parser = parserOf(head);

    parser.Parse();

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(24u, parser.GetBitsPerSample());
}

TEST(WavParser, ValuesAreReadLeastSignificantByteFirst) {
    auto const head = wavFile(
        {chunk("fmt ", {0, 0, 0, 0, 0xC4, 0xD3, 0xE2, 0xF1, 0, 0, 0, 0, 0, 0, 0xA6, 0xB5})});

    auto const outcome = outcomeOf<WavParser>(head);

    EXPECT_EQ(0xF1E2D3C4u, outcome.samplesPerSecond);
    EXPECT_EQ(0xB5A6u, outcome.bitsPerSample);
}

TEST(WavParser, LongerFormatChunkIsReadAlike) {
    auto value = wavFormat(96000, 32);
    for (std::size_t const size : {17u, 18u, 40u, 1000u}) {
        value.resize(size, 0xEE);

        auto const outcome = outcomeOf<WavParser>(wavFile({chunk("fmt ", value)}));

        EXPECT_EQ(96000u, outcome.samplesPerSecond);
        EXPECT_EQ(32u, outcome.bitsPerSample);
    }
}

TEST(WavParser, FormatChunkMayStandBehindOthers) {
    auto const head = wavFile(
        {chunk("JUNK", Bytes(28, 0xEE)), chunk("bext", Bytes(602)), chunk("data", Bytes(100000)),
         chunk("fmt ", wavFormat(44100, 16))});

    EXPECT_EQ(44100u, outcomeOf<WavParser>(head).samplesPerSecond);
}

TEST(WavParser, FirstFormatChunkCounts) {
    auto const head =
        wavFile({chunk("fmt ", wavFormat(44100, 16)), chunk("fmt ", wavFormat(48000, 24))});

    EXPECT_EQ(44100u, outcomeOf<WavParser>(head).samplesPerSecond);
}

TEST(WavParser, FormatNameEndsInABlank) {
    for (auto const* name : {"fmt", "FMT ", "Fmt ", " fmt", "fmt_"}) {
        std::string fourCharacters(name);
        fourCharacters.resize(4);

        EXPECT_EQ(
            insufficientData, parseFailure(wavFile({chunk(fourCharacters, wavFormat(1, 1))})));
    }
}

TEST(WavParser, FormatChunkAtTheVeryEndIsNotFound) {
    auto head = wavFile({chunk("fmt ", wavFormat(48000, 24))});
    EXPECT_EQ(48000u, outcomeOf<WavParser>(head).samplesPerSecond);

    head.pop_back();

    EXPECT_EQ(insufficientData, parseFailure(head));
}

TEST(WavParser, OddChunkIsNotPadded) {
    auto const head = wavFile({chunk("odd ", Bytes(3)), chunk("fmt ", wavFormat(48000, 24))});

    EXPECT_EQ(48000u, outcomeOf<WavParser>(head).samplesPerSecond);
}

TEST(WavParser, PadByteMakesTheWalkLoseStep) {
    auto const padded = lyingChunk("odd ", 3, Bytes(4));
    auto const head = wavFile({padded, chunk("fmt ", wavFormat(48000, 24))});

    EXPECT_EQ(insufficientData, parseFailure(head));
}

TEST(WavParser, WalkOutOfStepMayMeetAnotherChunkByChance) {
    auto const padded = lyingChunk("odd ", 3, Bytes(4));
    // Read one byte early, this name and length are "\0odd" and 0x20, the blank at the name's end.
    auto const outOfStep = lyingChunk("odd ", 0, Bytes(31));
    auto const head = wavFile({padded, outOfStep, chunk("fmt ", wavFormat(48000, 24))});

    EXPECT_EQ(48000u, outcomeOf<WavParser>(head).samplesPerSecond);
}

TEST(WavParser, ShortFormatChunkReadsAsIfZerosFollowed) {
    auto const whole = wavFormat(0x44332211, 0x6655);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes const part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        auto zeros = part;
        zeros.resize(16);

        auto const outcome =
            outcomeOf<WavParser>(wavFile({chunk("fmt ", part), chunk("data", Bytes(40, 0xEE))}));

        EXPECT_EQ(outcomeOf<WavParser>(wavFile({chunk("fmt ", zeros)})), outcome) << size;
    }
}

TEST(WavParser, StatedLengthBoundsTheValues) {
    auto const head = wavFile({lyingChunk("fmt ", 6, wavFormat(0x44332211, 0x6655))});

    auto const outcome = outcomeOf<WavParser>(head);

    EXPECT_EQ(0x2211u, outcome.samplesPerSecond);
    EXPECT_EQ(0u, outcome.bitsPerSample);
}

TEST(WavParser, FormatChunkOfWrappingLengthIsRead) {
    auto const head = wavFile({lyingChunk("fmt ", 0xFFFFFFF0, wavFormat(48000, 24))});

    auto const outcome = outcomeOf<WavParser>(head);

    EXPECT_EQ(48000u, outcome.samplesPerSecond);
    EXPECT_EQ(24u, outcome.bitsPerSample);
}

TEST(WavParser, ChunkOfHalfTheLargestLengthLeadsOut) {
    EXPECT_EQ(
        insufficientData, parseFailure(wavFile({lyingChunk("JUNK", 0x7FFFFFFF, Bytes(100))})));
    EXPECT_EQ(
        insufficientData,
        parseFailure(wavFile({lyingChunk("fmt ", 0x7FFFFFFF, wavFormat(48000, 24))})));
}

TEST(WavParser, ChunkThatLeadsBackToItselfEnds) {
    EXPECT_EQ(
        insufficientData,
        parseFailure(
            wavFile({lyingChunk("JUNK", 0xFFFFFFF8, {}), chunk("fmt ", wavFormat(48000, 24))})));
}

TEST(WavParser, EveryStatedLengthGivesWhatTheRulesSay) {
    std::vector<std::uint32_t> lengths{0x7FFFFFFF, 0x80000000, 0xFFFFFF00};
    for (std::uint32_t distance = 0; distance <= 64; ++distance) {
        lengths.push_back(distance);
        lengths.push_back(0xFFFFFFFF - distance);
    }
    for (auto const length : lengths) {
        auto const ahead =
            wavFile({lyingChunk("JUNK", length, Bytes(8)), chunk("fmt ", wavFormat(48000, 24))});
        auto const itself = wavFile(
            {lyingChunk("fmt ", length, wavFormat(48000, 24)), chunk("data", Bytes(8, 0xEE))});

        EXPECT_EQ(modelOfWav(ahead), outcomeOf<WavParser>(ahead)) << length;
        EXPECT_EQ(modelOfWav(itself), outcomeOf<WavParser>(itself)) << length;
    }
}

TEST(WavParser, NoTruncationIsReadBeyondItsEnd) {
    auto const whole = wavFile(
        {chunk("JUNK", Bytes(28)), chunk("fmt ", wavFormat(48000, 24)),
         lyingChunk("data", 0xFFFFFFFF, Bytes(30))});
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        Bytes const part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        test::GuardedBytes const guarded(part);

        auto const outcome = outcomeOf<WavParser>(guarded.data(), guarded.size());

        EXPECT_EQ(modelOfWav(part), outcome) << size;
    }
}

TEST(WavParser, ChunkOfFourGibibytesIsNotReadBeyondTheEnd) {
    for (std::uint32_t length = 0xFFFFFFFF; length >= 0xFFFFFFC0; --length)
        for (auto const* name : {"fmt ", "JUNK"}) {
            auto const head = wavFile({lyingChunk(name, length, Bytes(12, 0x11))});
            test::GuardedBytes const guarded(head);

            auto const outcome = outcomeOf<WavParser>(guarded.data(), guarded.size());

            EXPECT_EQ(modelOfWav(head), outcome) << name << length;
        }
}

TEST(WavParser, SecondParseFailsAndKeepsTheValues) {
    auto const head = wavFile({chunk("fmt ", wavFormat(48000, 24)), chunk("data", Bytes(8))});
    auto parser = parserOf(head);
    parser.Parse();

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.Parse(); }));

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(24u, parser.GetBitsPerSample());
}

TEST(WavParser, SecondParseTakesTheSecondFormatChunk) {
    auto const head = wavFile(
        {chunk("fmt ", wavFormat(44100, 16)), chunk("data", Bytes(8)),
         chunk("fmt ", wavFormat(48000, 24))});
    auto parser = parserOf(head);
    parser.Parse();

    parser.Parse();

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(24u, parser.GetBitsPerSample());
}

TEST(WavParser, CopyTakesTheValues) {
    auto const head = wavFile({chunk("fmt ", wavFormat(48000, 24))});
    auto parser = parserOf(head);
    parser.Parse();

    auto const copy = parser;

    EXPECT_EQ(48000u, copy.GetSamplesPerSecond());
    EXPECT_EQ(24u, copy.GetBitsPerSample());
}

TEST(WavParser, CopiesParseIndependently) {
    auto const head = wavFile({chunk("fmt ", wavFormat(48000, 24))});
    auto parser = parserOf(head);
    auto copy = parser;

    parser.Parse();
    copy.Parse();

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(48000u, copy.GetSamplesPerSecond());
}

TEST(WavParser, AssignmentTakesTheFlagsToo) {
    auto const head = wavFile({chunk("fmt ", wavFormat(48000, 24))});
    auto parser = parserOf(head);
    auto const fresh = parser;
    parser.Parse();

    parser = fresh;

    EXPECT_THROW(parser.GetSamplesPerSecond(), vrUnsetValueException);
    EXPECT_NO_THROW(parser.Parse());
}

TEST(WavParser, FailedAllocationPassesToTheCallerAndSetsNothing) {
    auto const head = wavFile({chunk("fmt ", wavFormat(48000, 24))});
    auto parser = parserOf(head);
    test::AllocationCounter counter;

    counter.failAt(1);
    EXPECT_THROW(parser.Parse(), std::bad_alloc);
    counter.failNone();

    EXPECT_THROW(parser.GetSamplesPerSecond(), vrUnsetValueException);
    EXPECT_THROW(parser.GetBitsPerSample(), vrUnsetValueException);
}

TEST(WavParser, ParseAllocatesOncePerChunk) {
    auto const head = wavFile({chunk("JUNK", Bytes(28)), chunk("fmt ", wavFormat(48000, 24))});
    test::AllocationCounter const counter;

    parserOf(head).Parse();

    EXPECT_EQ(2u, counter.allocations());
    EXPECT_EQ(2u, counter.releases());
}
