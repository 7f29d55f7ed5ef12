#include "vrUtils/Parsing.h"

#include "tests/media/AudioHeads.h"
#include "tests/media/ParsingFailures.h"

#include <gtest/gtest.h>

using test::Bytes;
using test::chunk;
using vrUtils::Parsing::AIFParser;
using vrUtils::Parsing::AudioFormatParser;
using vrUtils::Parsing::WavParser;

namespace {

// A parser whose values a test sets itself.
class HandSetParser : public AudioFormatParser {
  public:
    HandSetParser() : AudioFormatParser(nullptr, 0) {}

    void Parse() override {}

    void setSamplesPerSecond(std::uint32_t value) { m_samplesPerSecond.set(value); }
    void setBitsPerSample(std::uint32_t value) { m_bitsPerSample.set(value); }
};

template <typename Read>
void expectUnset(Read const& read) {
    try {
        read();
        ADD_FAILURE() << "the value is set";
    } catch (vrUnsetValueException const& failure) {
        EXPECT_EQ(0x80004005u, failure.code());
        EXPECT_EQ(L"UtilValue", failure.file());
        EXPECT_EQ(58u, failure.line());
        EXPECT_EQ(L"Value not set", failure.message());
    }
}

void expectBothUnset(AudioFormatParser const& parser) {
    expectUnset([&] { parser.GetSamplesPerSecond(); });
    expectUnset([&] { parser.GetBitsPerSample(); });
}

} // namespace

TEST(AudioFormatParser, ValuesAreUnsetAtFirst) { expectBothUnset(HandSetParser()); }

TEST(AudioFormatParser, ConstructorReadsNothing) {
    class NullParser : public AudioFormatParser {
      public:
        NullParser() : AudioFormatParser(nullptr, 1000) {}

        void Parse() override {}
    };

    EXPECT_NO_THROW(NullParser());
}

TEST(AudioFormatParser, EachValueIsSetForItself) {
    HandSetParser parser;
    parser.setBitsPerSample(0);

    EXPECT_EQ(0u, parser.GetBitsPerSample());
    expectUnset([&] { parser.GetSamplesPerSecond(); });
}

TEST(AudioFormatParser, ValuesMayBeReadAgain) {
    HandSetParser parser;
    parser.setSamplesPerSecond(48000);

    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
    EXPECT_EQ(48000u, parser.GetSamplesPerSecond());
}

TEST(AudioFormatParser, CopyTakesFlagsAndValues) {
    HandSetParser parser;
    parser.setSamplesPerSecond(48000);

    auto const copy = parser;

    EXPECT_EQ(48000u, copy.GetSamplesPerSecond());
    expectUnset([&] { copy.GetBitsPerSample(); });
}

TEST(AudioFormatParser, ValuesAreUnsetBeforeParse) {
    auto const wav = test::wavFile({chunk("fmt ", test::wavFormat(48000, 24))});
    auto const aiff = test::aiffFile({chunk("COMM", Bytes(18))});

    expectBothUnset(WavParser(wav.data(), static_cast<std::uint32_t>(wav.size())));
    expectBothUnset(AIFParser(aiff.data(), static_cast<std::uint32_t>(aiff.size())));
}

TEST(AudioFormatParser, ValuesAreUnsetAfterAParseThatFailed) {
    auto const head = test::wavFile({chunk("data", Bytes(20))});
    WavParser parser(head.data(), static_cast<std::uint32_t>(head.size()));

    EXPECT_EQ(test::insufficientData, test::parsingFailureOf([&] { parser.Parse(); }));

    expectBothUnset(parser);
}

TEST(AudioFormatParser, ParsesThroughItsBase) {
    auto const head = test::aiffFile({chunk("COMM", test::aiffFormat(test::extended(96000), 20))});
    AIFParser parser(head.data(), static_cast<std::uint32_t>(head.size()));
    AudioFormatParser& base = parser;

    base.Parse();

    EXPECT_EQ(96000u, base.GetSamplesPerSecond());
    EXPECT_EQ(20u, base.GetBitsPerSample());
}
