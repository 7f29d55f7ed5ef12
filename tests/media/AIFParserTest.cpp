#include "vrUtils/Parsing.h"

#include "tests/media/AudioHeads.h"
#include "tests/media/GuardedBytes.h"
#include "tests/media/HeadModel.h"
#include "tests/media/ParsingFailures.h"

#include <gtest/gtest.h>

#include <algorithm>

using test::aiffFile;
using test::aiffFormat;
using test::Bytes;
using test::chunk;
using test::extended;
using test::insufficientData;
using test::lyingChunk;
using test::modelOfAiff;
using test::outcomeOf;
using test::parsingFailureOf;
using vrUtils::Parsing::AIFParser;

namespace {

using Field = test::ExtendedBytes;

// A head with all that its constructor looks at, of 64 bytes.
Bytes headBeginning(std::string const& name, std::string const& type) {
    Bytes head(64, 0xEE);
    std::copy(name.begin(), name.end(), head.begin());
    std::copy(type.begin(), type.end(), head.begin() + 8);
    return head;
}

std::wstring constructionFailure(Bytes const& head, std::uint32_t length) {
    return parsingFailureOf([&] { AIFParser(head.data(), length); });
}

AIFParser parserOf(Bytes const& head) {
    return AIFParser(head.data(), static_cast<std::uint32_t>(head.size()));
}

std::wstring parseFailure(Bytes const& head) {
    auto parser = parserOf(head);
    return parsingFailureOf([&] { parser.Parse(); });
}

Bytes common48000() { return aiffFormat(extended(48000), 24); }

std::uint32_t rateOf(Field const& field) {
    return outcomeOf<AIFParser>(aiffFile({chunk("COMM", aiffFormat(field, 16))})).samplesPerSecond;
}

} // namespace

TEST(AIFParser, HeadOfTwelveBytesIsTooShort) {
    for (auto const* type : {"AIFF", "AIFC"}) {
        auto const head = headBeginning("FORM", type);

        for (std::uint32_t length = 0; length <= 12; ++length)
            EXPECT_EQ(insufficientData, constructionFailure(head, length)) << length;
    }
}

TEST(AIFParser, HeadOfThirteenBytesIsEnough) {
    for (auto const* type : {"AIFF", "AIFC"}) {
        auto const head = headBeginning("FORM", type);

        for (std::uint32_t length = 13; length <= 64; ++length)
            EXPECT_NO_THROW(AIFParser(head.data(), length)) << length;
    }
}

TEST(AIFParser, LengthIsReadBeforeTheNameIsTested) {
    auto const head = headBeginning("RIFF", "AIFF");

    for (std::uint32_t length = 0; length <= 8; ++length)
        EXPECT_EQ(insufficientData, constructionFailure(head, length)) << length;
    for (std::uint32_t length = 9; length <= 64; ++length)
        EXPECT_EQ(L"Missing FORM tag", constructionFailure(head, length)) << length;
}

TEST(AIFParser, OtherTypeIsRefused) {
    auto const head = headBeginning("FORM", "8SVX");

    for (std::uint32_t length = 0; length <= 12; ++length)
        EXPECT_EQ(insufficientData, constructionFailure(head, length)) << length;
    for (std::uint32_t length = 13; length <= 64; ++length)
        EXPECT_EQ(L"Missing AIFF/AIFC tag", constructionFailure(head, length)) << length;
}

TEST(AIFParser, NamesAreComparedExactly) {
    for (auto const* name : {"form", "FORN", "MROF", "RIFF"})
        EXPECT_EQ(L"Missing FORM tag", constructionFailure(headBeginning(name, "AIFF"), 64));
    for (auto const* type : {"aiff", "AIFD", "AIF ", "FFIA", "WAVE"})
        EXPECT_EQ(L"Missing AIFF/AIFC tag", constructionFailure(headBeginning("FORM", type), 64));
}

TEST(AIFParser, NameIsTestedBeforeTheType) {
    EXPECT_EQ(L"Missing FORM tag", constructionFailure(headBeginning("RIFF", "WAVE"), 64));
}

TEST(AIFParser, ParseTakesBothValues) {
    auto const head = aiffFile({chunk("COMM", common48000()), chunk("SSND", Bytes(100))});
    auto parser = parserOf(head);

    parser.Parse();

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(24u, parser.GetBitsPerSample());
}

TEST(AIFParser, CompressedFileIsReadAlike) {
    auto value = common48000();
    for (char const character : std::string("fl32\4name"))
        value.push_back(static_cast<unsigned char>(character));

    auto const outcome =
        outcomeOf<AIFParser>(aiffFile({chunk("FVER", Bytes(4)), chunk("COMM", value)}, "AIFC"));

    EXPECT_EQ(48000u, outcome.samplesPerSecond);
    EXPECT_EQ(24u, outcome.bitsPerSample);
}

TEST(AIFParser, WidthIsReadMostSignificantByteFirst) {
    auto const head = aiffFile({chunk("COMM", aiffFormat(extended(48000), 0xA5B6))});

    EXPECT_EQ(0xA5B6u, outcomeOf<AIFParser>(head).bitsPerSample);
}

TEST(AIFParser, CommonChunkMayStandBehindOthers) {
    auto const head = aiffFile(
        {chunk("NAME", Bytes(28, 0xEE)), chunk("SSND", Bytes(100000)),
         chunk("COMM", common48000())});

    EXPECT_EQ(48000u, outcomeOf<AIFParser>(head).samplesPerSecond);
}

TEST(AIFParser, CommonNameIsComparedExactly) {
    for (auto const* name : {"comm", "COMN", "MMOC", "COMT", "fmt "})
        EXPECT_EQ(insufficientData, parseFailure(aiffFile({chunk(name, common48000())})));
}

TEST(AIFParser, CommonChunkAtTheVeryEndIsNotFound) {
    auto head = aiffFile({chunk("COMM", common48000())});
    EXPECT_EQ(48000u, outcomeOf<AIFParser>(head).samplesPerSecond);

    head.pop_back();

    EXPECT_EQ(insufficientData, parseFailure(head));
}

TEST(AIFParser, OddChunkIsNotPadded) {
    auto const head = aiffFile({chunk("NAME", Bytes(3)), chunk("COMM", common48000())});

    EXPECT_EQ(48000u, outcomeOf<AIFParser>(head).samplesPerSecond);
}

TEST(AIFParser, PadByteMakesTheWalkLoseStep) {
    auto const head = aiffFile({lyingChunk("NAME", 3, Bytes(4)), chunk("COMM", common48000())});

    EXPECT_EQ(insufficientData, parseFailure(head));
}

TEST(AIFParser, ReadNextLengthIsPublicAndMostSignificantByteFirst) {
    auto const head = aiffFile({{std::string("\x12\x34\x56\xF8"), {}, 0}});
    auto parser = parserOf(head);

    EXPECT_EQ(0x123456F8u, parser.ReadNextLength());
}

TEST(AIFParser, ReadNextLengthFailsAtTheEnd) {
    auto const head = headBeginning("FORM", "AIFF");
    AIFParser tooShort(head.data(), 16);
    AIFParser longEnough(head.data(), 17);

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { tooShort.ReadNextLength(); }));
    EXPECT_EQ(0xEEEEEEEEu, longEnough.ReadNextLength());
}

TEST(AIFParser, UsualRatesAreRead) {
    for (std::uint32_t const rate :
         {8000u, 11025u, 16000u, 22050u, 32000u, 44056u, 44100u, 47952u, 48000u, 48048u, 88200u,
          96000u, 176400u, 192000u, 384000u})
        EXPECT_EQ(rate, rateOf(extended(rate)));
}

TEST(AIFParser, FieldsOf44100And48000AreRead) {
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0xAC, 0x44}));
    EXPECT_EQ(48000u, rateOf({0x40, 0x0E, 0xBB, 0x80}));
}

TEST(AIFParser, FieldOfZerosIsARateOfTwo) { EXPECT_EQ(2u, rateOf({})); }

TEST(AIFParser, FractionOfTheRateIsDropped) {
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0xAC, 0x44, 0xE6, 0x66, 0x66, 0x66, 0x66, 0x66}));
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0xAC, 0x44, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(AIFParser, RateOfTwoToThePowerOf63IsZero) {
    EXPECT_EQ(0u, rateOf({0x40, 0x3E, 0x80}));
    EXPECT_EQ(0u, rateOf({0x40, 0x3E, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(AIFParser, RateBeyond32BitsKeepsItsLowOnes) {
    // 2^62 + 2^31, whose low word is 2^31.
    EXPECT_EQ(0x80000000u, rateOf({0x40, 0x3D, 0x80, 0x00, 0x00, 0x01}));
}

TEST(AIFParser, ShortCommonChunkReadsAsIfZerosFollowed) {
    auto const whole = aiffFormat({0x40, 0x0E, 0xAC, 0x44, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 0x6655);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes const part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        auto zeros = part;
        zeros.resize(18);

        auto const outcome =
            outcomeOf<AIFParser>(aiffFile({chunk("COMM", part), chunk("SSND", Bytes(40, 0xEE))}));

        EXPECT_EQ(outcomeOf<AIFParser>(aiffFile({chunk("COMM", zeros)})), outcome) << size;
    }
}

TEST(AIFParser, CommonChunkWithoutARateHasARateOfTwo) {
    auto const head = aiffFile({chunk("COMM", {0, 2, 0, 0, 0, 9, 0, 24})});

    auto const outcome = outcomeOf<AIFParser>(head);

    EXPECT_EQ(2u, outcome.samplesPerSecond);
    EXPECT_EQ(24u, outcome.bitsPerSample);
}

TEST(AIFParser, CommonChunkOfWrappingLengthIsRead) {
    auto const head = aiffFile({lyingChunk("COMM", 0xFFFFFFF0, common48000())});

    EXPECT_EQ(48000u, outcomeOf<AIFParser>(head).samplesPerSecond);
}

TEST(AIFParser, ChunkThatLeadsBackToItselfEnds) {
    auto const head = aiffFile({lyingChunk("NAME", 0xFFFFFFF8, {}), chunk("COMM", common48000())});

    EXPECT_EQ(insufficientData, parseFailure(head));
}

TEST(AIFParser, EveryStatedLengthGivesWhatTheRulesSay) {
    std::vector<std::uint32_t> lengths{0x7FFFFFFF, 0x80000000, 0xFFFFFF00};
    for (std::uint32_t distance = 0; distance <= 64; ++distance) {
        lengths.push_back(distance);
        lengths.push_back(0xFFFFFFFF - distance);
    }
    for (auto const length : lengths) {
        auto const ahead =
            aiffFile({lyingChunk("NAME", length, Bytes(8)), chunk("COMM", common48000())});
        auto const itself =
            aiffFile({lyingChunk("COMM", length, common48000()), chunk("SSND", Bytes(8, 0xEE))});

        EXPECT_EQ(modelOfAiff(ahead), outcomeOf<AIFParser>(ahead)) << length;
        EXPECT_EQ(modelOfAiff(itself), outcomeOf<AIFParser>(itself)) << length;
    }
}

TEST(AIFParser, NoTruncationIsReadBeyondItsEnd) {
    auto const whole = aiffFile(
        {chunk("FVER", Bytes(4)), chunk("COMM", common48000()),
         lyingChunk("SSND", 0xFFFFFFFF, Bytes(30))},
        "AIFC");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        Bytes const part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        test::GuardedBytes const guarded(part);

        auto const outcome = outcomeOf<AIFParser>(guarded.data(), guarded.size());

        EXPECT_EQ(modelOfAiff(part), outcome) << size;
    }
}

TEST(AIFParser, ChunkOfFourGibibytesIsNotReadBeyondTheEnd) {
    for (std::uint32_t length = 0xFFFFFFFF; length >= 0xFFFFFFC0; --length)
        for (auto const* name : {"COMM", "NAME"}) {
            auto const head = aiffFile({lyingChunk(name, length, Bytes(12, 0x11))});
            test::GuardedBytes const guarded(head);

            auto const outcome = outcomeOf<AIFParser>(guarded.data(), guarded.size());

            EXPECT_EQ(modelOfAiff(head), outcome) << name << length;
        }
}

TEST(AIFParser, SecondParseFailsAndKeepsTheValues) {
    auto const head = aiffFile({chunk("COMM", common48000()), chunk("SSND", Bytes(8))});
    auto parser = parserOf(head);
    parser.Parse();

    EXPECT_EQ(insufficientData, parsingFailureOf([&] { parser.Parse(); }));

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(24u, parser.GetBitsPerSample());
}

TEST(AIFParser, SecondParseTakesTheSecondCommonChunk) {
    auto const head =
        aiffFile({chunk("COMM", aiffFormat(extended(44100), 16)), chunk("COMM", common48000())});
    auto parser = parserOf(head);
    parser.Parse();

    parser.Parse();

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(24u, parser.GetBitsPerSample());
}
