#include "vrUtils/Process/ExternalProcess.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

using vrUtils::Process::ExternalProcess;

namespace {

struct Quoting {
    wchar_t const* argument;
    wchar_t const* quoted;
};

class ExternalProcessQuoting : public testing::TestWithParam<Quoting> {};

INSTANTIATE_TEST_SUITE_P(
    EachSpecialCharacter, ExternalProcessQuoting,
    testing::Values(
        Quoting{L"a\"b", L"\"a\"\"b\""}, Quoting{L"a&b", L"\"a&b\""}, Quoting{L"a|b", L"\"a|b\""},
        Quoting{L"a'b", L"\"a'b\""}, Quoting{L"a<b", L"\"a<b\""}, Quoting{L"a>b", L"\"a>b\""},
        Quoting{L"a b", L"\"a b\""}, Quoting{L"a\tb", L"\"a\tb\""}));

INSTANTIATE_TEST_SUITE_P(
    OrdinaryText, ExternalProcessQuoting,
    testing::Values(
        Quoting{L"", L""}, Quoting{L"word", L"word"}, Quoting{L"C:\\folder\\", L"C:\\folder\\"},
        Quoting{L"a\nb", L"a\nb"}, Quoting{L"a\rb", L"a\rb"}, Quoting{L"100%^;,()=", L"100%^;,()="},
        Quoting{L"`\u00A0", L"`\u00A0"}));

INSTANTIATE_TEST_SUITE_P(
    QuotesAndBackslashes, ExternalProcessQuoting,
    testing::Values(
        Quoting{L"\"", L"\"\"\"\""}, Quoting{L"\"\"", L"\"\"\"\"\"\""},
        Quoting{L"\"a\"", L"\"\"\"a\"\"\""}, Quoting{L" ", L"\" \""},
        Quoting{L"C:\\a folder\\", L"\"C:\\a folder\\\""}, Quoting{L"\\\"", L"\"\\\"\"\""},
        Quoting{L" a ", L"\" a \""}));

// An object that is not executed.
class ExternalProcessLine : public testing::Test {
  protected:
    ExternalProcess m_process{L"name", 0, L""};
};

struct Adding {
    wchar_t const* before;
    wchar_t const* argument;
    wchar_t const* after;
};

class ExternalProcessArgument : public testing::TestWithParam<Adding> {};

INSTANTIATE_TEST_SUITE_P(
    , ExternalProcessArgument,
    testing::Values(
        Adding{L"", L"word", L"word"}, Adding{L"", L"  \t word\t ", L"word"},
        Adding{L"first", L"word", L"first word"}, Adding{L"first", L" \tword", L"first word"},
        Adding{L"first", L"", L"first "}, Adding{L"first", L" \t ", L"first "},
        Adding{L"", L"", L""}, Adding{L"", L" \t", L""},
        Adding{L"first", L" two words ", L"first \"two words\""},
        Adding{L"first ", L"word", L"first  word"}, Adding{L" ", L"word", L"  word"},
        Adding{L"first", L"\nword\n", L"first \nword\n"},
        Adding{L"first", L"\"quoted\"", L"first \"\"\"quoted\"\"\""}));

} // namespace

static_assert(!std::is_copy_constructible_v<ExternalProcess>);
static_assert(std::is_copy_assignable_v<ExternalProcess>);
static_assert(
    std::is_same_v<std::wstring&, decltype(std::declval<ExternalProcess&>().rawCommandLine())>);
static_assert(std::is_same_v<
              std::wstring const&, decltype(std::declval<ExternalProcess const&>().commandLine())>);

TEST_P(ExternalProcessQuoting, WrapsWhatHoldsASpecialCharacter) {
    EXPECT_EQ(GetParam().quoted, ExternalProcess::quoteArg(GetParam().argument));
}

TEST(ExternalProcessQuoting, SeesAZeroAsAnOrdinaryCharacter) {
    std::wstring const text(L"a\0b", 3);

    EXPECT_EQ(text, ExternalProcess::quoteArg(text));
    EXPECT_EQ(L"\"" + text + L" c\"", ExternalProcess::quoteArg(text + L" c"));
}

TEST_P(ExternalProcessArgument, IsTrimmedAndQuotedBehindABlank) {
    ExternalProcess process(L"name", 0, L"");
    process.addRawArg(GetParam().before);

    process.addArg(GetParam().argument);

    EXPECT_EQ(GetParam().after, process.commandLine());
}

TEST_F(ExternalProcessLine, IsEmptyAtFirst) { EXPECT_EQ(L"", m_process.commandLine()); }

TEST_F(ExternalProcessLine, BlankArgumentsPileUpBlanks) {
    m_process.addArg(L"first");
    m_process.addArg(L"");
    m_process.addArg(L" ");
    m_process.addArg(L"last");

    EXPECT_EQ(L"first   last", m_process.commandLine());
}

TEST_F(ExternalProcessLine, RawArgumentsAreAddedAsTheyAre) {
    m_process.addRawArg(L" first");
    m_process.addRawArg(L"second \"third");
    m_process.addRawArg(L"");
    m_process.addRawArg(L" \t");

    EXPECT_EQ(L" firstsecond \"third \t", m_process.commandLine());
}

TEST_F(ExternalProcessLine, ChainAddsArguments) {
    m_process.args().add(L" first ").add(L"two words") << L"third" << L"";

    EXPECT_EQ(L"first \"two words\" third ", m_process.commandLine());
}

TEST_F(ExternalProcessLine, ChainGivesItself) {
    auto chain = m_process.args();

    EXPECT_EQ(&chain, &chain.add(L"a"));
    EXPECT_EQ(&chain, &(chain << L"b"));
    EXPECT_EQ(L"a b", m_process.commandLine());
}

TEST_F(ExternalProcessLine, IsWrittenByHand) {
    m_process.addArg(L"first");

    m_process.rawCommandLine().replace(0, 2, L"w");
    m_process.addArg(L"second");

    EXPECT_EQ(L"wrst second", m_process.commandLine());
    EXPECT_EQ(&m_process.rawCommandLine(), &m_process.commandLine());
}

TEST_F(ExternalProcessLine, AddsItselfToItself) {
    m_process.addRawArg(L"two words");

    m_process.addArg(m_process.commandLine());
    m_process.addRawArg(m_process.commandLine());

    std::wstring const twice = L"two words \"two words\"";
    EXPECT_EQ(twice + twice, m_process.commandLine());
}

TEST_F(ExternalProcessLine, IsSharedAfterAnAssignment) {
    ExternalProcess other(L"other", 0, L"");
    m_process.addArg(L"old");
    other.addArg(L"first");

    m_process = other;
    m_process.addArg(L"second");

    EXPECT_EQ(L"first second", other.commandLine());
    EXPECT_EQ(&other.commandLine(), &m_process.commandLine());
}

TEST_F(ExternalProcessLine, OutlivesTheObjectThatItWasAssignedFrom) {
    {
        ExternalProcess other(L"other", L"");
        other.addArg(L"first");
        m_process = other;
    }

    m_process.addArg(L"second");

    EXPECT_EQ(L"first second", m_process.commandLine());
}

TEST_F(ExternalProcessLine, AssignmentToItselfChangesNothing) {
    m_process.addArg(L"first");

    auto const& same = m_process;
    m_process = same;

    EXPECT_EQ(L"first", m_process.commandLine());
}
