// `vrtool names` as its users run it.

#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Arguments = std::vector<std::wstring>;

test::ToolRun run(Arguments arguments) {
    arguments.insert(arguments.begin(), L"names");
    return test::runTool(arguments);
}

Json::Value told(Arguments arguments) {
    arguments.push_back(L"--json");
    return run(arguments).json();
}

std::string mam(Arguments const& arguments) { return told(arguments)["mamMessage"].asString(); }

std::string metadata(Arguments const& arguments) {
    return told(arguments)["metadataMessage"].asString();
}

constexpr auto noName = "GenerateLegalFilename failed as the source file name was empty";

} // namespace

TEST(VrtoolNames, ShowsBothMessages) {
    auto const shown = run(
        {L"--host", L"media01", L"--folder", L"share/Out", L"--file", L"clip1.mxf", L"--prefix",
         L"done_"});

    EXPECT_EQ(
        R"(WHAT             VALUE
mamMessage       \\media01\share\Out\done_clip1.xml
metadataMessage  \\media01\share\Out\done_clip1.xml
)",
        shown.out);
    EXPECT_EQ("", shown.error);
    EXPECT_EQ(0u, shown.exitCode);
}

TEST(VrtoolNames, TellsProgramsTheSame) {
    auto const document = told({L"--folder", L"C:\\Out", L"--file", L"K\u00F6ln \U0001F3AC.mxf"});

    EXPECT_EQ("C:\\Out\\K\xC3\xB6ln \xF0\x9F\x8E\xAC.xml", document["mamMessage"].asString());
    EXPECT_EQ(document["mamMessage"], document["metadataMessage"]);
    EXPECT_EQ(Json::Value(Json::objectValue), document["failures"]);
    EXPECT_EQ(3u, document.size());
}

TEST(VrtoolNames, FailureStandsInItsRow) {
    auto const shown = run({L"--file", L"first.mxf", L"--file", L"second.mxf"});

    EXPECT_EQ(
        std::string("WHAT             VALUE      FAILURE\n"
                    "mamMessage       first.xml\n"
                    "metadataMessage  -          ") +
            noName + '\n',
        shown.out);
    EXPECT_EQ("", shown.error);
    EXPECT_EQ(1u, shown.exitCode);
}

TEST(VrtoolNames, TellsProgramsOfTheFailure) {
    auto const document = told({});

    EXPECT_EQ(".xml", document["mamMessage"].asString());
    EXPECT_TRUE(document["metadataMessage"].isNull());
    EXPECT_EQ(noName, document["failures"]["metadataMessage"].asString());
    EXPECT_EQ(1u, document["failures"].size());
}

TEST(VrtoolNames, FilesBesideAFileNameAreMany) {
    Arguments const arguments{L"--file", L"first.mxf", L"--file-name", L"other.mxf"};

    EXPECT_EQ("first.xml", mam(arguments));
    EXPECT_EQ("other.xml", metadata(arguments));
    EXPECT_EQ("other.xml", mam({L"--file-name", L"other.mxf"}));
}

TEST(VrtoolNames, MetadataMessageHasItsOwnFolderAndExtension) {
    Arguments const arguments{
        L"--host",      L"media01", L"--folder",          L"share",  L"--file", L"clip.mxf",
        L"--extension", L".meta",   L"--metadata-folder", L"D:/Meta"};

    EXPECT_EQ(R"(\\media01\share\clip.xml)", mam(arguments));
    EXPECT_EQ(R"(D:\Meta\clip.meta)", metadata(arguments));
}

TEST(VrtoolNames, SourceNameCountsForItsType) {
    Arguments arguments{L"--file", L"clip.mxf", L"--source-name", L"News v1.2", L"--type", L"20"};
    EXPECT_EQ("News v1.2.xml", metadata(arguments));

    arguments.back() = L"19";
    EXPECT_EQ("clip.xml", metadata(arguments));
}

TEST(VrtoolNames, RootNamesAFileOfNoName) {
    EXPECT_EQ("Day 1.xml", mam({L"--root", L"Clips\\Day 1", L"--file", L"", L"--file", L"b"}));
}

TEST(VrtoolNames, ValueMayBeginWithADashOrABracket) {
    EXPECT_EQ("-x[a].xml", mam({L"--prefix=-x", L"--file", L"[a].mxf"}));
}

TEST(VrtoolNames, LongestTextsAreTaken) {
    std::wstring const longest(259, L'n');

    for (auto const* option : {L"--folder", L"--root", L"--metadata-folder", L"--source-name"})
        EXPECT_EQ(0u, run({L"--file", L"a.mxf", option, longest}).exitCode) << option;
    for (auto const* option : {L"--file", L"--file-name"})
        EXPECT_EQ(std::string(259, 'n') + ".xml", metadata({option, longest})) << option;
}

TEST(VrtoolNames, LongerTextsAreRefused) {
    std::wstring const tooLong(260, L'n');

    for (auto const* option :
         {L"--folder", L"--root", L"--metadata-folder", L"--file", L"--file-name",
          L"--source-name"}) {
        auto const refused = run({option, tooLong});
        EXPECT_THAT(
            refused.error,
            StartsWith("vrtool: " + test::utf8(option) + ": more than 259 characters\n"));
        EXPECT_THAT(refused.error, HasSubstr("Usage: vrtool names"));
        EXPECT_EQ("", refused.out);
        EXPECT_EQ(2u, refused.exitCode);
    }
}

TEST(VrtoolNames, TypeThatIsNoNumberIsRefused) {
    auto const refused = run({L"--type", L"news"});

    EXPECT_THAT(
        refused.error, StartsWith("vrtool: --type: Value news not in range 0 to 4294967295\n"));
    EXPECT_EQ(2u, refused.exitCode);
}
