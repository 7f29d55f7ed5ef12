// `vrtool path` as its users run it.

#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Json::Value partsOf(std::wstring const& text) {
    auto const run = test::runTool({L"path", L"--json", text});
    EXPECT_EQ(0u, run.exitCode);
    return run.json();
}

} // namespace

TEST(VrtoolPath, TellsEveryPartOfAFileOnAShare) {
    auto const file = partsOf(LR"(\\server:8080\share\Media\clip.mxf)")["file"];

    EXPECT_EQ(R"(\\server:8080\)", file["root"].asString());
    EXPECT_EQ("", file["drive"].asString());
    EXPECT_EQ(R"(\\server:8080\)", file["rootAndDrive"].asString());
    EXPECT_EQ(R"(share\Media\)", file["folderText"].asString());
    EXPECT_EQ(R"(\\server:8080\share\Media\)", file["folderPath"].asString());
    EXPECT_EQ(R"(\\server:8080\share\Media\clip)", file["pathNoExtension"].asString());
    EXPECT_EQ(R"(\\server:8080\share\Media\clip.mxf)", file["wholePath"].asString());
    EXPECT_EQ("clip", file["fileName"].asString());
    EXPECT_EQ(".mxf", file["extension"].asString());
    EXPECT_EQ("clip.mxf", file["fullName"].asString());
    EXPECT_EQ(R"(\\server\)", file["host"].asString());
    EXPECT_EQ(8080u, file["port"].asUInt());
    EXPECT_EQ(R"(share\)", file["firstFolder"].asString());
    EXPECT_EQ(Json::Value(false), file["relative"]);
    EXPECT_EQ(Json::Value(true), file["absolute"]);
    EXPECT_EQ("file", file["type"].asString());
    EXPECT_EQ(17u, file.size());
}

TEST(VrtoolPath, ListsTheFolders) {
    auto const folders = partsOf(L"C:/Media/Day 1/clip.mxf")["file"]["folders"];

    ASSERT_EQ(2u, folders.size());
    EXPECT_EQ("Media", folders[0].asString());
    EXPECT_EQ("Day 1", folders[1].asString());
}

TEST(VrtoolPath, KeepsTheTextAsItWasTyped) {
    auto const document = partsOf(L"C:/\u00dcbung/\U0001F3AC");

    EXPECT_EQ("C:/\u00dcbung/\U0001F3AC", document["text"].asString());
    EXPECT_EQ("C:\\\u00dcbung\\\U0001F3AC", document["file"]["wholePath"].asString());
    EXPECT_EQ(4u, document.size());
}

TEST(VrtoolPath, ReadsADotByTheTypeOfTheReading) {
    auto const document = partsOf(L"C:\\Media\\day.1");

    EXPECT_EQ("", document["folder"]["extension"].asString());
    EXPECT_EQ(".1", document["detect"]["extension"].asString());
    EXPECT_EQ(".1", document["file"]["extension"].asString());
}

TEST(VrtoolPath, DetectsAFolderByItsLastBackslash) {
    auto const document = partsOf(L"C:\\Media\\");

    EXPECT_EQ("folder", document["folder"]["type"].asString());
    EXPECT_EQ("folder", document["detect"]["type"].asString());
    EXPECT_EQ("file", document["file"]["type"].asString());
}

TEST(VrtoolPath, DetectsAFileByItsName) {
    auto const document = partsOf(L"C:\\Media");

    EXPECT_EQ("folder", document["folder"]["type"].asString());
    EXPECT_EQ("file", document["detect"]["type"].asString());
    EXPECT_EQ("file", document["file"]["type"].asString());
}

TEST(VrtoolPath, ShowsThatADriveWithoutABackslashIsAFolder) {
    auto const file = partsOf(L"C:clip.mxf")["file"];

    EXPECT_EQ("", file["drive"].asString());
    EXPECT_EQ("C:\\", file["folderText"].asString());
    EXPECT_EQ(Json::Value(true), file["relative"]);
}

TEST(VrtoolPath, PrintsTheReadingsSideBySide) {
    auto const run = test::runTool({L"path", LR"(\\10.0.0.1:80)"});

    EXPECT_EQ(
        R"(PART             FOLDER          DETECT       FILE
type             folder          file         file
wholePath        \\10.0.0.1:80\  10.0.0.1:80  10.0.0.1:80
root             \\10.0.0.1:80\
drive
rootAndDrive     \\10.0.0.1:80\
folderText
folderPath       \\10.0.0.1:80\
pathNoExtension  \\10.0.0.1:80\  10.0.0       10.0.0
fileName                         10.0.0       10.0.0
extension                        .1:80        .1:80
fullName                         10.0.0.1:80  10.0.0.1:80
folders
host             \\10.0.0.1\
port             80              0            0
firstFolder
relative         no              yes          yes
absolute         yes             no           no
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolPath, SeparatesFoldersByBars) {
    auto const run = test::runTool({L"path", L"C:\\a b\\c\\d.e"});

    EXPECT_THAT(run.out, HasSubstr("folders          a b | c "));
}

TEST(VrtoolPath, TakesAnEmptyText) {
    auto const document = partsOf({});

    EXPECT_EQ("", document["text"].asString());
    EXPECT_EQ("folder", document["detect"]["type"].asString());
    EXPECT_EQ("", document["file"]["wholePath"].asString());
    EXPECT_EQ(0u, document["file"]["port"].asUInt());
}

TEST(VrtoolPath, ShowsAPortThatIsTooLargeAsHostsSeeIt) {
    auto const folder = partsOf(LR"(\\host:99999999999\a\)")["folder"];

    EXPECT_EQ(0xFFFFFFFFu, folder["port"].asUInt());
}

TEST(VrtoolPath, WrapsLongTextsOnATerminalAndCutsNone) {
    auto const run = test::runTool(
        {L"path", L"C:\\Media\\Recordings of the first day\\clip.wav", L"--width", L"79"});

    EXPECT_THAT(
        run.out, HasSubstr(
                     R"(
wholePath       C:\Media\Recordings  C:\Media\Recordings  C:\Media\Recordings
                of the first day\    of the first day\    of the first day\
                clip.wav             clip.wav             clip.wav
)"));
}

struct Text {
    char const* kind;
    std::wstring text;
};

void PrintTo(Text const& text, std::ostream* stream) { *stream << text.kind; }

class VrtoolPathTexts : public testing::TestWithParam<Text> {};

TEST_P(VrtoolPathTexts, ComeThroughAsTheyAre) {
    auto const document = partsOf(GetParam().text);

    EXPECT_EQ(test::utf8(GetParam().text), document["text"].asString());
    EXPECT_EQ(test::utf8(GetParam().text), document["file"]["wholePath"].asString());
}

INSTANTIATE_TEST_SUITE_P(
    VrtoolPath, VrtoolPathTexts,
    testing::Values(
        Text{"ThreeHundredCharacters", std::wstring(300, L'n') + L".wav"},
        Text{"FourThousandCharacters", L"C:\\" + std::wstring(4000, L'f') + L"\\a.wav"},
        Text{"PercentSigns", L"100%s%n%d%%.wav"}, Text{"Brackets", L"[a,b]"},
        Text{"EmptyBrackets", L"[]"}, Text{"Plus", L"++"}, Text{"Braces", L"{}"},
        Text{"TwoPercentSigns", L"%%"}, Text{"Number", L"-1"},
        Text{"NameOfASubcommand", L"inspect"}, Text{"NameOfThisSubcommand", L"path"},
        Text{"Ideographs", L"\u65e5\u672c\u8a9e.wav"}, Text{"Quotes", L"a\"b\" c.wav"},
        Text{"TrailingBlank", L"trailing blank .wav "}),
    [](auto const& test) { return test.param.kind; });
