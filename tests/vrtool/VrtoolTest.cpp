// The program as a whole: help, version, and where its output goes.

#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/vrtool/ToolRun.h"
#include "tools/vrtool/TextWidth.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/version.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

using testing::AllOf;
using testing::Each;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::ResultOf;
using testing::StartsWith;

namespace {

using Words = std::vector<std::wstring>;

// The words that call each subcommand, in the order in which the help lists them.
std::vector<Words> const& allSubcommands() {
    static std::vector<Words> const subcommands{
        {L"inspect"},
        {L"transfer"},
        {L"preflight"},
        {L"xslt"},
        {L"path"},
        {L"settings"},
        {L"settings", L"get"},
        {L"settings", L"set"},
        {L"registry"},
        {L"registry", L"dump"},
        {L"registry", L"restore"},
        {L"run"},
        {L"watch"},
        {L"terminate"},
        {L"lock"},
        {L"services"},
        {L"services", L"start"},
        {L"services", L"stop"},
        {L"whoami"},
        {L"port"},
        {L"endpoint"},
        {L"where"},
        {L"same"},
        {L"connect"},
        {L"disk"},
        {L"sidecar"},
        {L"find"},
        {L"index"},
        {L"archive"},
        {L"number"},
        {L"places"},
        {L"remove"},
        {L"timecode"},
        {L"names"},
        {L"stats-demo"},
    };
    return subcommands;
}

std::string joined(Words const& words, char separator) {
    std::string text;
    for (auto const& word : words)
        text += (text.empty() ? "" : std::string(1, separator)) + toUtf8(word);
    return text;
}

test::ToolRun helpOf(Words words) {
    words.emplace_back(L"--help");
    return test::runTool(words);
}

// The subcommands that a help lists, below their heading.
std::vector<std::string> listedIn(std::string const& help) {
    std::vector<std::string> names;
    std::istringstream lines(help.substr(help.find("\nSubcommands:\n") + 14));
    for (std::string line; std::getline(lines, line) && (names.empty() || !line.empty());)
        if (line.size() > 2 && line[2] != ' ')
            names.push_back(line.substr(2, line.find(' ', 2) - 2));
    return names;
}

std::size_t columnsOf(std::string const& line) { return widthOf(fromUtf8(line)); }

// Of lines that there are: no output at all would fit too.
auto fit(std::size_t columns) {
    return AllOf(Not(IsEmpty()), Each(ResultOf(columnsOf, testing::Le(columns))));
}

} // namespace

TEST(Vrtool, VersionIsThatOfTheLibrary) {
    auto const run = test::runTool({L"--version"});

    EXPECT_EQ("vrtool " VRUTILS_VERSION "\n", run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(Vrtool, HelpListsEverySubcommand) {
    auto const run = helpOf({});

    std::vector<std::string> names;
    for (auto const& words : allSubcommands())
        if (words.size() == 1)
            names.push_back(toUtf8(words.front()));
    EXPECT_THAT(run.out, HasSubstr("Usage: vrtool"));
    EXPECT_THAT(listedIn(run.out), ElementsAreArray(names));
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(Vrtool, HelpFitsATerminalOfEightyColumns) { EXPECT_THAT(helpOf({}).lines(), fit(79)); }

TEST(Vrtool, HelpOfTheRestoreHidesWhatOnlyItsChildIsToldOf) {
    auto const run = test::runTool({L"registry", L"restore", L"--help"});

    EXPECT_THAT(
        run.out,
        AllOf(
            HasSubstr("Usage: vrtool registry restore [OPTIONS] KEY FILE"),
            HasSubstr("--time-limit SECONDS"), HasSubstr("--check"), Not(HasSubstr("surveyed"))));
    EXPECT_EQ(0u, run.exitCode);
}

class VrtoolHelp : public testing::TestWithParam<Words> {};

TEST_P(VrtoolHelp, FitsATerminalOfEightyColumns) {
    EXPECT_THAT(helpOf(GetParam()).lines(), fit(79));
}

TEST_P(VrtoolHelp, HasAnExample) {
    auto const run = helpOf(GetParam());

    auto const call = "vrtool " + joined(GetParam(), ' ');
    EXPECT_THAT(
        run.out, AllOf(HasSubstr("Usage: " + call + ' '), HasSubstr("\nExample:\n  " + call)));
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

INSTANTIATE_TEST_SUITE_P(
    Vrtool, VrtoolHelp, testing::ValuesIn(allSubcommands()), [](auto const& test) {
        auto name = joined(test.param, '_');
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

TEST(Vrtool, TakesTheWidthBeforeAndBehindTheSubcommand) {
    std::wstring const text = L"C:\\Media\\Recordings of the first day\\clip.wav";
    auto const before = test::runTool({L"--width", L"60", L"path", text});
    auto const behind = test::runTool({L"path", text, L"--width", L"60"});

    EXPECT_THAT(before.lines(), fit(60));
    EXPECT_EQ(before.out, behind.out);
    EXPECT_EQ(0u, behind.exitCode);
}

TEST(Vrtool, EndsItsLinesWithPlainLineFeeds) {
    auto const run = test::runTool({L"path", L"a"});

    EXPECT_THAT(run.out, Not(HasSubstr("\r")));
    EXPECT_EQ('\n', run.out.back());
}

TEST(Vrtool, SaysThatItsOutputHasNoReader) {
    test::ScratchFolder const folder;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    ASSERT_TRUE(CreatePipe(&readEnd, &writeEnd, &inherited, 0));
    CloseHandle(readEnd);
    test::OwnedHandle const out(writeEnd);
    test::OwnedHandle error(CreateFileW(
        folder.file(L"error").c_str(), GENERIC_WRITE, 0, &inherited, CREATE_NEW, 0, nullptr));

    auto const exitCode = test::runTool({L"path", L"a"}, out.get(), error.get());
    error.reset();

    EXPECT_EQ(1u, exitCode);
    EXPECT_THAT(folder.read(L"error"), StartsWith("vrtool: cannot write the output: "));
}
