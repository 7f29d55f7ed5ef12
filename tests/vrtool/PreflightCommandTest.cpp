// `vrtool preflight` as its users run it. The report program lies beside vrtool.

#include "tools/vrtool/PreflightCommand.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/RunHere.h"
#include "tests/vrtool/ToolRun.h"
#include "tests/vrtool/WorkingFolder.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

class VrtoolPreflight : public testing::Test {
  protected:
    VrtoolPreflight() {
        m_folder.write(
            L"pfc\\clip.xml",
            "<preflight><check name='Loudness' result='passed'>-23 LUFS</check></preflight>");
    }

    // In a console, which the report program shares.
    test::ToolRun run(std::vector<std::wstring> arguments = {}) const {
        arguments.insert(arguments.begin(), {L"preflight", m_folder.file(L"clip.mxf")});
        return test::runToolInConsole(arguments);
    }

    std::string path(wchar_t const* file) const { return test::utf8(m_folder.file(file)); }

    test::ScratchFolder m_folder;
};

} // namespace

TEST_F(VrtoolPreflight, MakesTheReportAndTellsWhereAllOfThemLie) {
    auto const result = run();

    EXPECT_EQ(
        "WHAT          VALUE\n"
        "movie         " +
            path(L"clip.mxf") +
            "\n"
            "xml           " +
            path(L"pfc\\clip.xml") +
            "\n"
            "hasXml        yes\n"
            "genealogy     " +
            path(L"genealogy\\clip.xml") +
            "\n"
            "hasGenealogy  no\n"
            "html          " +
            path(L"pfchtml\\clip.html") +
            "\n"
            "htmlReport    made\n",
        result.out);
    EXPECT_EQ("", result.error);
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolPreflight, TellsProgramsTheSame) {
    m_folder.write(L"genealogy\\clip.xml", "<genealogy/>");

    auto const document = run({L"--json"}).json();

    EXPECT_EQ(path(L"clip.mxf"), document["movie"].asString());
    EXPECT_EQ(path(L"pfc\\clip.xml"), document["xml"].asString());
    EXPECT_EQ(Json::Value(true), document["hasXml"]);
    EXPECT_EQ(path(L"genealogy\\clip.xml"), document["genealogy"].asString());
    EXPECT_EQ(Json::Value(true), document["hasGenealogy"]);
    EXPECT_EQ(path(L"pfchtml\\clip.html"), document["html"].asString());
    EXPECT_EQ("made", document["htmlReport"].asString());
    EXPECT_EQ(7u, document.size());
}

TEST_F(VrtoolPreflight, NamesTheMovieByItsFile) {
    run();

    EXPECT_THAT(m_folder.read(L"pfchtml\\clip.html"), HasSubstr("<h1>clip.mxf</h1>"));
    EXPECT_THAT(m_folder.read(L"pfchtml\\clip.html"), HasSubstr("<footer></footer>"));
}

TEST_F(VrtoolPreflight, PassesNameAndSignatureOn) {
    run({L"--name", L"The news", L"--signature", L"Studio 3"});

    EXPECT_THAT(m_folder.read(L"pfchtml\\clip.html"), HasSubstr("<h1>The news</h1>"));
    EXPECT_THAT(m_folder.read(L"pfchtml\\clip.html"), HasSubstr("<footer>Studio 3</footer>"));
}

TEST_F(VrtoolPreflight, MakesTheReportAnew) {
    m_folder.write(L"pfchtml\\clip.html", "earlier");

    EXPECT_EQ("made", run({L"--json"}).json()["htmlReport"].asString());

    EXPECT_THAT(m_folder.read(L"pfchtml\\clip.html"), HasSubstr("Fit for air"));
}

TEST_F(VrtoolPreflight, FindsAMovieInTheCurrentFolder) {
    test::WorkingFolder const here(m_folder.path());

    auto const result = test::runToolInConsole({L"preflight", L"clip.mxf", L"--json"});

    EXPECT_EQ(path(L"pfchtml\\clip.html"), result.json()["html"].asString());
    EXPECT_EQ("made", result.json()["htmlReport"].asString());
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolPreflight, MakesNothingWithoutAnXmlReport) {
    auto const result = test::runTool({L"preflight", m_folder.file(L"other.mxf"), L"--json"});

    EXPECT_EQ(Json::Value(false), result.json()["hasXml"]);
    EXPECT_TRUE(result.json()["htmlReport"].isNull());
    EXPECT_EQ("vrtool: no HTML report: there is no XML report to make it of\n", result.error);
    EXPECT_EQ(1u, result.exitCode);
    EXPECT_FALSE(m_folder.exists(L"pfchtml"));
}

TEST_F(VrtoolPreflight, SaysThatTheProgramHasMadeNone) {
    m_folder.write(L"pfc\\clip.xml", "<preflight>");

    auto const result = run();

    EXPECT_THAT(result.out, HasSubstr("htmlReport    -\n"));
    EXPECT_EQ(
        "vrtool: no HTML report: PFCreportGenerator.exe did not make it; the log says why\n",
        result.error);
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolPreflight, TellsAnEarlierReportFromANewOne) {
    m_folder.write(L"pfc\\clip.xml", "<preflight>");
    m_folder.write(L"pfchtml\\clip.html", "earlier");

    auto const result = run();

    EXPECT_THAT(result.out, HasSubstr("htmlReport    earlier\n"));
    EXPECT_EQ(1u, result.exitCode);
    EXPECT_EQ("earlier", m_folder.read(L"pfchtml\\clip.html"));
}

TEST_F(VrtoolPreflight, SaysWhyTheFolderCannotBeMade) {
    test::FailingImport<decltype(CreateDirectoryW)> const fails(
        "CreateDirectoryW", FALSE, ERROR_WRITE_PROTECT, test::everyCall);

    auto const result = test::runHere<PreflightCommand>("preflight", {path(L"clip.mxf")});

    EXPECT_THAT(
        result.error, testing::AllOf(
                          testing::StartsWith("vrtool: no HTML report: cannot make the folder \""),
                          testing::EndsWith("(error 19)\n")));
    EXPECT_THAT(result.out, HasSubstr("htmlReport    -\n"));
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolPreflight, WantsAMovie) {
    auto const result = test::runTool({L"preflight"});

    EXPECT_EQ("", result.out);
    EXPECT_EQ(2u, result.exitCode);
}
