#include "vrUtils/CmdLineProcessor.h"

#include "tests/support/AllocationCounter.h"
#include "tests/support/Campaign.h"

#include <gmock/gmock.h>

#include <string>
#include <type_traits>
#include <vector>

using namespace std::string_literals;
using testing::ElementsAre;
using vrUtils::CmdLineProcessor::BadCommandLineException;
using vrUtils::CmdLineProcessor::Processor;

namespace {

using Parameters = std::vector<std::wstring>;

Parameters parametersOf(Processor const& processor) {
    Parameters parameters;
    for (std::uint64_t index = 0; index < processor.GetNumParameters(); ++index)
        parameters.push_back(processor.GetParameter(index));
    return parameters;
}

Parameters split(std::wstring const& commandLine) {
    Processor processor;
    processor.Process(commandLine);
    return parametersOf(processor);
}

struct Line {
    std::wstring text;
    Parameters parameters;
};

class CmdLineProcessorSplit : public testing::TestWithParam<Line> {};

INSTANTIATE_TEST_SUITE_P(
    Separators, CmdLineProcessorSplit,
    testing::Values(
        Line{L"", {}}, Line{L" ", {}}, Line{L" \t \t", {}}, Line{L"a", {L"a"}},
        Line{L"one two", {L"one", L"two"}}, Line{L"one  two", {L"one", L"two"}},
        Line{L"one\ttwo", {L"one", L"two"}}, Line{L"\t one\t two \t", {L"one", L"two"}},
        Line{L"one\ntwo", {L"one\ntwo"}}, Line{L"\n", {L"\n"}},
        Line{L"a\rb\vc\fd", {L"a\rb\vc\fd"}}, Line{L"a\u00A0b", {L"a\u00A0b"}}));

INSTANTIATE_TEST_SUITE_P(
    Quotes, CmdLineProcessorSplit,
    testing::Values(
        Line{L"\"\"", {L""}}, Line{L"\"\" \"\"", {L"", L""}}, Line{L"\"\"\"\"", {L"", L""}},
        Line{L"\"one two\" \"three four\" five", {L"one two", L"three four", L"five"}},
        Line{L"\"a\"b", {L"a", L"b"}}, Line{L"\"a\"\"b\"", {L"a", L"b"}},
        Line{L"\"a\"b\"c", {L"a", L"b\"c"}}, Line{L"\" a\t\"", {L" a\t"}},
        Line{L"\"a\n\"", {L"a\n"}}, Line{L"\"a\" ", {L"a"}}, Line{L" \"a\"", {L"a"}},
        Line{L"\"a\"\t\tb", {L"a", L"b"}}));

INSTANTIATE_TEST_SUITE_P(
    OrdinaryCharacters, CmdLineProcessorSplit,
    testing::Values(
        Line{L"a\"b", {L"a\"b"}}, Line{L"a\"", {L"a\""}}, Line{L"a\"\"", {L"a\"\""}},
        Line{L"a\"b c\"d", {L"a\"b", L"c\"d"}}, Line{L"\\", {L"\\"}},
        Line{L"C:\\a\\ b", {L"C:\\a\\", L"b"}}, Line{L"\"C:\\a b\\\" c", {L"C:\\a b\\", L"c"}},
        Line{L"\\\"a", {L"\\\"a"}}, Line{L"'a b'", {L"'a", L"b'"}},
        Line{L"a\0b c"s, {L"a\0b"s, L"c"}}, Line{L"\"\0 \"\0"s, {L"\0 "s, L"\0"s}}));

// The scanner, spelt out a character at a time.
class Model {
  public:
    explicit Model(std::wstring text) : m_text(std::move(text)) {}

    // @return false if the quotes do not match; the parameters in front of that are there
    bool run() {
        while (next()) {
        }
        return m_matched;
    }

    Parameters const& parameters() const { return m_parameters; }

  private:
    static bool separates(wchar_t character) { return character == L'\t' || character == L' '; }

    bool next() {
        if (m_position >= m_text.size())
            return false;
        auto start = m_position;
        while (start < m_text.size() && separates(m_text[start]))
            ++start;
        if (start == m_text.size())
            return false;

        bool const isQuoted = m_text[start] == L'"';
        if (isQuoted)
            ++start;
        auto end = start;
        while (end < m_text.size() && !(isQuoted ? m_text[end] == L'"' : separates(m_text[end])))
            ++end;
        if (isQuoted && end == m_text.size())
            return m_matched = false;

        m_position = end + 1;
        m_parameters.push_back(m_text.substr(start, end - start));
        return true;
    }

    std::wstring m_text;
    std::size_t m_position = 0;
    bool m_matched = true;
    Parameters m_parameters;
};

std::wstring randomLine(test::Campaign& campaign) {
    static std::wstring const characters = L"\"\"  \t\nab\\'\0"s;
    std::wstring line;
    for (auto count = campaign.below(30); count > 0; --count)
        line += characters[campaign.below(characters.size())];
    return line;
}

} // namespace

static_assert(std::is_copy_constructible_v<Processor> && std::is_copy_assignable_v<Processor>);
static_assert(
    std::is_same_v<std::uint64_t, decltype(std::declval<Processor const&>().GetNumParameters())>);
static_assert(
    std::is_same_v<std::wstring, decltype(std::declval<Processor const&>().GetParameter(0))>);
static_assert(std::is_base_of_v<vrException, BadCommandLineException>);

TEST_P(CmdLineProcessorSplit, GivesTheParametersInOrder) {
    EXPECT_EQ(GetParam().parameters, split(GetParam().text));
}

TEST(CmdLineProcessor, IsEmptyAtFirst) {
    Processor const processor;

    EXPECT_EQ(0u, processor.GetNumParameters());
    EXPECT_EQ(L"", processor.GetParameter(0));
}

TEST(CmdLineProcessor, TwoQuotesAreOneParameter) {
    Processor processor;

    processor.Process(L"\"\"");

    EXPECT_EQ(1u, processor.GetNumParameters());
}

TEST(CmdLineProcessor, ParameterPastTheEndIsEmpty) {
    Processor processor;
    processor.Process(L"one two");

    EXPECT_EQ(L"two", processor.GetParameter(1));
    EXPECT_EQ(L"", processor.GetParameter(2));
    EXPECT_EQ(L"", processor.GetParameter(0x100000000));
    EXPECT_EQ(L"", processor.GetParameter(0xFFFFFFFFFFFFFFFF));
}

TEST(CmdLineProcessor, BlankTextLeavesTheListAsItWas) {
    Processor processor;
    processor.Process(L"one");

    processor.Process(L"");
    processor.Process(L" \t ");

    EXPECT_THAT(parametersOf(processor), ElementsAre(L"one"));
}

TEST(CmdLineProcessor, TextsBuildUpOneList) {
    Processor processor;

    processor.Process(L"one two");
    processor.Process(L"\"three four\"");

    EXPECT_THAT(parametersOf(processor), ElementsAre(L"one", L"two", L"three four"));
}

TEST(CmdLineProcessor, MismatchedQuoteIsAFailure) {
    try {
        split(L"\"one");
        FAIL() << "nothing was thrown";
    } catch (BadCommandLineException const& failure) {
        EXPECT_EQ(L"Mismatched quotes in Command Line", failure.message());
        EXPECT_EQ(0x80E0603Du, failure.code());
        EXPECT_EQ(L"", failure.file());
        EXPECT_EQ(0u, failure.line());
    }
}

TEST(CmdLineProcessor, KeepsTheParametersInFrontOfAMismatchedQuote) {
    Processor processor;
    processor.Process(L"zero");

    EXPECT_THROW(processor.Process(L"one \"two\" \"three four"), BadCommandLineException);

    EXPECT_THAT(parametersOf(processor), ElementsAre(L"zero", L"one", L"two"));
}

TEST(CmdLineProcessor, GoesOnAfterAFailure) {
    Processor processor;
    EXPECT_THROW(processor.Process(L"one \""), BadCommandLineException);

    processor.Process(L"two");

    EXPECT_THAT(parametersOf(processor), ElementsAre(L"one", L"two"));
}

TEST(CmdLineProcessor, LoneQuoteMattersOnlyAtTheStartOfAParameter) {
    std::wstring const words = L" one\ttwo  three ";
    for (std::size_t place = 0; place <= words.size(); ++place) {
        bool const starts = place == 0 || words[place - 1] == L' ' || words[place - 1] == L'\t';
        auto text = words;
        text.insert(place, 1, L'"');

        if (starts)
            EXPECT_THROW(split(text), BadCommandLineException) << place;
        else
            EXPECT_EQ(3u, split(text).size()) << place;
    }
}

TEST(CmdLineProcessor, CopiesAreIndependent) {
    Processor original;
    original.Process(L"one");
    Processor copy(original);
    Processor assigned;
    assigned.Process(L"other");
    assigned = original;

    original.Process(L"two");
    copy.Process(L"three");

    EXPECT_THAT(parametersOf(original), ElementsAre(L"one", L"two"));
    EXPECT_THAT(parametersOf(copy), ElementsAre(L"one", L"three"));
    EXPECT_THAT(parametersOf(assigned), ElementsAre(L"one"));
}

TEST(CmdLineProcessor, GivesCopiesOfItsParameters) {
    Processor processor;
    processor.Process(L"one");

    processor.GetParameter(0) += L"!";

    EXPECT_EQ(L"one", processor.GetParameter(0));
}

TEST(CmdLineProcessor, SplitsAMebibyte) {
    std::wstring line;
    std::uint64_t count = 0;
    for (; line.size() < 1 << 20; count += 2)
        line += L"word \"two words\"\t";

    Processor processor;
    processor.Process(line);

    EXPECT_EQ(count, processor.GetNumParameters());
    EXPECT_EQ(L"two words", processor.GetParameter(count - 1));
}

TEST(CmdLineProcessor, KeepsOneWordOfAMebibyte) {
    std::wstring const word(1 << 20, L'"');

    EXPECT_EQ(Parameters{L"a" + word}, split(L" a" + word));
}

TEST(CmdLineProcessor, FailedAllocationReachesTheCaller) {
    std::wstring const line = L"\"a parameter of some length\" and-another-one-of-some-length";

    EXPECT_GT(test::failEachAllocation([&] { split(line); }), 1u);
}

TEST(CmdLineProcessorCampaign, SplitsRandomTextsAsTheModel) {
    test::Campaign campaign(20000);
    while (campaign.nextRound()) {
        auto const line = randomLine(campaign);
        Model model(line);
        Processor processor;

        if (model.run())
            ASSERT_NO_THROW(processor.Process(line)) << campaign;
        else
            ASSERT_THROW(processor.Process(line), BadCommandLineException) << campaign;

        ASSERT_EQ(model.parameters(), parametersOf(processor)) << campaign;
    }
}
