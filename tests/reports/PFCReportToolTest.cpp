// The making of the HTML report: the command line, what the program leaves, and what it does not.

#include "vrUtils/PFC.h"

#include "tests/files/FailsWith.h"
#include "tests/process/FakeProgram.h"
#include "tests/process/StartedPrograms.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "vrUtils/Storage/Exceptions.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

using namespace vrUtils::PFC;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

// What is told of a movie, and what of it reaches the command line.
struct Told {
    wchar_t const* name;
    wchar_t const* signature;
    wchar_t const* line;
};

void PrintTo(Told const& told, std::ostream* stream) { *stream << test::utf8(told.line); }

class PFCCommandLine : public testing::TestWithParam<Told> {};

INSTANTIATE_TEST_SUITE_P(
    , PFCCommandLine,
    testing::Values(
        Told{L"M", L"S", L" M S"}, Told{L"M", L"", L" M"}, Told{L"", L"S", L" S"},
        Told{L"", L"", L""}, Told{L"The news", L"S", L" \"The news\" S"},
        Told{L"a\tb", L"c\td", L" \"a\tb\" \"c\td\""}, Told{L" ", L"\t", L" \" \" \"\t\""},
        Told{L"a\"b", L"\"c\"", L" a\"b \"c\""}, Told{L"a \"b\"", L"S", L" \"a \"b\"\" S"},
        Told{L"a&b|c'<d>", L"e\nf", L" a&b|c'<d> e\nf"},
        Told{L"C:\\a b\\", L"S", L" \"C:\\a b\\\" S"},
        Told{L"100%s%n", L"\u65e5\u672c", L" 100%s%n \u65e5\u672c"},
        Told{L" lead", L"trail ", L" \" lead\" \"trail \""}));

class PFCReportTool : public testing::Test {
  protected:
    PFCReportTool() { m_folder.write(L"pfc\\M.xml", "make it"); }

    PFCHTMLReportParameters parameters(
        std::wstring const& name = L"The news", std::wstring const& signature = L"signed") const {
        return {vr::Path::file(m_folder.file(L"M.mxf")), name, signature};
    }

    std::string report() {
        std::vector<char> bytes;
        getPFCHTMLReport(parameters(), &bytes);
        return {bytes.begin(), bytes.end()};
    }

    test::ScratchFolder m_folder;
};

// The tests' own program runs in place of the one that is named, with the same arguments.
class PFCToolRuns : public PFCReportTool {
  protected:
    test::LogRecorder m_log;
    test::StartedPrograms m_started;

  private:
    test::ImportHook<decltype(CreateProcessW)> m_exchange{
        "CreateProcessW", [this](LPCWSTR application, LPWSTR line, auto... others) {
            std::wstring const given(line);
            auto other = test::quotedArgument(test::besideTestProgram(L"report_tool.exe")) +
                         given.substr(given.find(L' '));
            return m_exchange.original()(application, other.data(), others...);
        }};
};

} // namespace

TEST_P(PFCCommandLine, QuotesBlanksAndTabsAndLeavesOutWhatIsEmpty) {
    test::ScratchFolder const folder;
    test::FakeProgram program;

    createPFCHTMLReport(
        {vr::Path::file(folder.file(L"M.mxf")), GetParam().name, GetParam().signature});

    ASSERT_EQ(1u, program.starts().size());
    EXPECT_EQ(
        L"PFCreportGenerator.exe " + folder.file(L"pfc\\M.xml") + L' ' +
            folder.file(L"pfchtml\\M.html") + GetParam().line,
        program.starts().front().line);
}

TEST_F(PFCReportTool, GetsPathsWithBlanksInQuotes) {
    test::FakeProgram program;

    createPFCHTMLReport({vr::Path::file(m_folder.file(L"a b\\M.mxf")), L"M", L"S"});

    EXPECT_EQ(
        L"PFCreportGenerator.exe \"" + m_folder.file(L"a b\\pfc\\M.xml") + L"\" \"" +
            m_folder.file(L"a b\\pfchtml\\M.html") + L"\" M S",
        program.starts().at(0).line);
}

TEST_F(PFCReportTool, IsStartedAsEveryToolIs) {
    test::FakeProgram program;

    createPFCHTMLReport(parameters());

    auto const start = program.starts().at(0);
    EXPECT_EQ(nullptr, start.application);
    EXPECT_FALSE(start.environment.has_value());
    EXPECT_FALSE(start.folder.has_value());
    EXPECT_FALSE(start.inheritsHandles);
}

TEST_F(PFCReportTool, IsWaitedForFiveSeconds) {
    test::FakeProgram program;

    createPFCHTMLReport(parameters());

    EXPECT_THAT(program.waits(), ElementsAre(5000u));
}

TEST_F(PFCReportTool, LogsUnderItsOwnName) {
    test::FakeProgram program;
    test::LogRecorder const log;

    createPFCHTMLReport(parameters());

    EXPECT_THAT(
        log.lines(),
        testing::IsSupersetOf(
            {test::Logged(6, L"Calling external process \"PFC HTML\"", L"PFC HTML"),
             test::Logged(
                 7, L"External process PFC HTML command line - " + program.starts().at(0).line,
                 L"PFC HTML"),
             test::Logged(6, L"Process \"PFC HTML\" completed successfully", L"PFC HTML")}));
}

TEST_F(PFCReportTool, FindsItsFolderMade) {
    bool wasThere = false;
    test::ImportHook const program(
        "CreateProcessW",
        [&](LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID,
            LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION) -> BOOL {
            wasThere = m_folder.exists(L"pfchtml");
            return FALSE;
        });

    createPFCHTMLReport(parameters());

    EXPECT_TRUE(wasThere);
    EXPECT_THAT(m_folder.names(L"pfchtml"), testing::IsEmpty());
}

TEST_F(PFCReportTool, IsNotStartedWithoutAFolder) {
    auto const movie = vr::Path::file(m_folder.write(L"a file", "") + L"\\M.mxf");
    test::FakeProgram program;
    std::vector<char> bytes{'b'};

    try {
        getPFCHTMLReport({movie, L"M", L"S"}, &bytes);
        ADD_FAILURE() << "no failure";
    } catch (vrUtils::Storage::vrCreateFolderException const& failure) {
        EXPECT_EQ(DWORD{ERROR_PATH_NOT_FOUND}, failure.error());
        EXPECT_EQ(m_folder.file(L"a file\\pfchtml"), failure.text());
    }
    EXPECT_THAT(program.starts(), testing::IsEmpty());
    EXPECT_EQ(std::vector<char>{'b'}, bytes);
}

TEST_F(PFCReportTool, IsNotStartedWhereThePlatformRefusesTheFolder) {
    test::FailingImport<decltype(CreateDirectoryW)> const fails(
        "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED, test::everyCall);
    test::FakeProgram program;

    try {
        createPFCHTMLReport(parameters());
        ADD_FAILURE() << "no failure";
    } catch (vrUtils::Storage::vrCreateFolderException const& failure) {
        EXPECT_EQ(ERROR_ACCESS_DENIED, failure.error());
    }
    EXPECT_THAT(program.starts(), testing::IsEmpty());
}

TEST_F(PFCReportTool, ThatIsMissingIsLoggedAndNoFailureByItself) {
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND);
    test::LogRecorder const log;

    EXPECT_NO_THROW(createPFCHTMLReport(parameters()));

    EXPECT_THAT(
        log.lines(), testing::Contains(test::Logged(
                         3, L"Failed to start process \"PFC HTML\". Error 2", L"PFC HTML")));
}

TEST_F(PFCReportTool, ThatIsMissingLeavesNothingToBeRead) {
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND);

    EXPECT_THAT(
        [&] { report(); }, FailsWith(L"Unable to open file " + m_folder.file(L"pfchtml\\M.html")));
}

TEST_F(PFCReportTool, ThatIsMissingLeavesAnEarlierReport) {
    m_folder.write(L"pfchtml\\M.html", "earlier");
    test::FailingImport<decltype(CreateProcessW)> const fails(
        "CreateProcessW", FALSE, ERROR_FILE_NOT_FOUND);

    EXPECT_EQ("earlier", report());
}

TEST_F(PFCToolRuns, AndItsReportIsRead) { EXPECT_EQ("<html>[The news][signed]", report()); }

TEST_F(PFCToolRuns, AgainForEachRequest) {
    m_folder.write(L"pfchtml\\M.html", "earlier, and longer than what is made now");

    EXPECT_EQ("<html>[The news][signed]", report());
    EXPECT_EQ(1u, m_started.count());
}

TEST_F(PFCToolRuns, WithItsArgumentsMovedForwardWhereOneIsEmpty) {
    createPFCHTMLReport(parameters(L""));

    EXPECT_EQ("<html>[signed]", m_folder.read(L"pfchtml\\M.html"));
}

TEST_F(PFCToolRuns, AndMayFailWithAnEarlierReportInPlace) {
    m_folder.write(L"pfc\\M.xml", "fail");
    m_folder.write(L"pfchtml\\M.html", "earlier");

    EXPECT_EQ("earlier", report());

    EXPECT_EQ(3u, m_started.exitCode());
    EXPECT_THAT(
        m_log.lines(), testing::Contains(test::Logged(
                           6, L"Process \"PFC HTML\" failed with error code 3", L"PFC HTML")));
}

TEST_F(PFCToolRuns, AndMayFailWithoutAReport) {
    m_folder.write(L"pfc\\M.xml", "fail");

    EXPECT_THAT(
        [&] { report(); }, FailsWith(L"Unable to open file " + m_folder.file(L"pfchtml\\M.html")));
}

// Waits for the whole of the five seconds.
TEST_F(PFCToolRuns, OnAfterFiveSecondsWhileWhatStandsOnDiskIsRead) {
    m_folder.write(L"pfc\\M.xml", "half");
    auto const start = GetTickCount64();

    EXPECT_EQ("<html>half", report());

    auto const milliseconds = GetTickCount64() - start;
    EXPECT_LE(4900u, milliseconds);
    EXPECT_TRUE(m_started.isRunning());
    EXPECT_THAT(
        m_log.lines(),
        testing::Contains(test::Logged(3, L"Process \"PFC HTML\" timed out", L"PFC HTML")));
}

// The program that ships as an example lies beside the tests: the platform finds it by itself.
class PFCExampleTool : public PFCReportTool {
  protected:
    void writeXml(std::string const& checks) const {
        m_folder.write(
            L"pfc\\M.xml",
            "<preflight><fact name='Format'>MXF &#xDC;</fact>" + checks + "</preflight>");
    }
};

TEST_F(PFCExampleTool, MakesAPageOfTheXmlReport) {
    writeXml("<check name='Loudness' result='passed'>-23 LUFS</check>");

    EXPECT_THAT(
        report(),
        AllOf(
            testing::StartsWith("<!DOCTYPE html>\n<html"), HasSubstr("charset=\"windows-1252\""),
            HasSubstr("<h1>The news</h1>"), HasSubstr("<th>Format</th>"), HasSubstr("MXF \xdc"),
            HasSubstr("<td>Loudness</td>"), HasSubstr("<footer>signed</footer>"),
            HasSubstr("Fit for air"), Not(HasSubstr("@MOVIE@"))));
}

TEST_F(PFCExampleTool, TellsAMovieThatIsNotFitForAir) {
    writeXml("<check name='a' result='doubtful'/><check name='b' result='failed'>black</check>");

    EXPECT_THAT(report(), AllOf(HasSubstr("Not fit for air"), HasSubstr(">failed</span>")));
}

TEST_F(PFCExampleTool, TellsAMovieThatIsToBeLookedAt) {
    writeXml("<check name='a' result='doubtful'/><check name='b' result='passed'/>");

    EXPECT_THAT(report(), AllOf(HasSubstr("To be looked at"), HasSubstr(">doubtful</span>")));
}

TEST_F(PFCExampleTool, ShowsNamesOfAnyCharacters) {
    writeXml("");

    createPFCHTMLReport(parameters(L"\u65e5 \U0001F3AC <b> & more", L"\u00dc"));

    EXPECT_THAT(
        m_folder.read(L"pfchtml\\M.html"),
        AllOf(
            HasSubstr("<h1>&#26085; &#127916; &#60;b> &#38; more</h1>"),
            HasSubstr("<footer>&#220;</footer>")));
}

TEST_F(PFCExampleTool, EscapesWhatTheXmlReportHolds) {
    writeXml("<fact name='a&lt;b'>&lt;script&gt; &amp;</fact>");

    EXPECT_THAT(report(), AllOf(HasSubstr("a&lt;b"), HasSubstr("&lt;script&gt; &amp;")));
}

TEST_F(PFCExampleTool, MakesNothingOfABrokenXmlReport) {
    m_folder.write(L"pfc\\M.xml", "<preflight>");
    m_folder.write(L"pfchtml\\M.html", "earlier");

    EXPECT_EQ("earlier", report());
}

TEST_F(PFCExampleTool, LeavesNoHandlesOpen) {
    writeXml("");
    report();
    test::HandleLeakCheck const check;

    report();
}
