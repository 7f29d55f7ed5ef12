// Where the reports of a movie lie, and how they are read.

#include "vrUtils/PFC.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PathPrinter.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <new>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::PFC;

static_assert(std::is_base_of_v<PFCReportParameters, PFCHTMLReportParameters>);
static_assert(std::is_convertible_v<PFCHTMLReportParameters*, PFCReportParameters*>);
static_assert(
    std::is_same_v<vr::Path, decltype(std::declval<PFCReportParameters const&>().MoviePath())>);
static_assert(std::is_same_v<
              std::wstring, decltype(std::declval<PFCHTMLReportParameters const&>().MovieName())>);
static_assert(
    std::is_same_v<
        std::wstring, decltype(std::declval<PFCHTMLReportParameters const&>().ReportSignature())>);

namespace {

struct Movie {
    wchar_t const* path;
    vr::Path::eType type;
    // What stands ahead of the subfolder, and the name ahead of the report's extension.
    wchar_t const* folder;
    wchar_t const* name;
};

void PrintTo(Movie const& movie, std::ostream* stream) { *stream << test::utf8(movie.path); }

class PFCNames : public testing::TestWithParam<Movie> {
  protected:
    std::wstring expected(wchar_t const* subfolder, wchar_t const* extension) const {
        return std::wstring(GetParam().folder) + subfolder + GetParam().name + extension;
    }

    vr::Path m_movie{GetParam().path, GetParam().type};
};

INSTANTIATE_TEST_SUITE_P(
    OfFiles, PFCNames,
    testing::Values(
        Movie{L"C:\\Media\\M.ext", vr::Path::eFile, L"C:\\Media\\", L"M"},
        Movie{L"C:\\Media\\M.ext", vr::Path::eDetect, L"C:\\Media\\", L"M"},
        Movie{L"C:\\Media\\M", vr::Path::eFile, L"C:\\Media\\", L"M"},
        Movie{L"C:\\Media\\M.b.c", vr::Path::eFile, L"C:\\Media\\", L"M.b"},
        Movie{L"C:\\M.mxf", vr::Path::eFile, L"C:\\", L"M"},
        Movie{L"\\\\server\\share\\M.mxf", vr::Path::eFile, L"\\\\server\\share\\", L"M"},
        Movie{
            L"\\\\server:80\\share\\a\\M.mxf", vr::Path::eFile, L"\\\\server:80\\share\\a\\", L"M"},
        Movie{L"Media/M.mxf", vr::Path::eFile, L"Media\\", L"M"},
        Movie{L"M.mxf", vr::Path::eFile, L"", L"M"},
        Movie{L"C:\\Day.1\\M", vr::Path::eFile, L"C:\\Day.1\\", L"M"},
        Movie{L"C:\\a b\\\u00dc 100%.mxf", vr::Path::eFile, L"C:\\a b\\", L"\u00dc 100%"}));

INSTANTIATE_TEST_SUITE_P(
    OfFolders, PFCNames,
    testing::Values(
        Movie{L"C:\\Media\\M.ext", vr::Path::eFolder, L"C:\\Media\\", L"M.ext"},
        Movie{L"C:\\Media\\M\\", vr::Path::eDetect, L"C:\\Media\\M\\", L""}));

class PFCReports : public testing::Test {
  protected:
    PFCReports() {
        m_folder.write(L"pfc\\M.xml", "<preflight/>");
        m_folder.write(L"genealogy\\M.xml", "<genealogy/>");
    }

    std::string text() const { return {m_report.begin(), m_report.end()}; }

    test::ScratchFolder m_folder;
    PFCReportParameters const m_movie{vr::Path::file(m_folder.file(L"M.mxf"))};
    std::vector<char> m_report{'b', 'e', 'f', 'o', 'r', 'e'};
};

// Gives the library no block of this size or more.
class NoMemory {
  public:
    explicit NoMemory(std::size_t size) : m_size(size) {}

  private:
    std::size_t m_size;
    test::ImportHook<void*(std::size_t)> m_hook{"malloc", [this](std::size_t size) {
                                                    return size < m_size ? m_hook.original()(size)
                                                                         : nullptr;
                                                }};
};

// Tells of every file that it has this length.
class ToldLength {
  public:
    explicit ToldLength(DWORD length) : m_length(length) {}

  private:
    DWORD m_length;
    test::ImportHook<decltype(GetFileAttributesExW)> m_hook{
        "GetFileAttributesExW", [this](LPCWSTR name, GET_FILEEX_INFO_LEVELS level, LPVOID answer) {
            auto const result = m_hook.original()(name, level, answer);
            static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(answer)->nFileSizeLow = m_length;
            return result;
        }};
};

} // namespace

TEST_P(PFCNames, LieInSubfoldersUnderTheNameOfTheMovie) {
    EXPECT_EQ(expected(L"pfc\\", L".xml"), getPFCFileName(m_movie).components().wholePath());
    EXPECT_EQ(
        expected(L"genealogy\\", L".xml"), getGenealogyFileName(m_movie).components().wholePath());
    EXPECT_EQ(
        expected(L"pfchtml\\", L".html"), getPFCHTMLFileName(m_movie).components().wholePath());
}

TEST(PFCParameters, GiveBackWhatTheyAreMadeOf) {
    PFCHTMLReportParameters const parameters(vr::Path::file(L"C:\\M.mxf"), L"name", L"signature");

    EXPECT_EQ(vr::Path::file(L"C:\\M.mxf"), parameters.MoviePath());
    EXPECT_EQ(L"name", parameters.MovieName());
    EXPECT_EQ(L"signature", parameters.ReportSignature());
}

TEST(PFCParameters, OfTheHtmlReportServeTheOthers) {
    PFCHTMLReportParameters const parameters(vr::Path::file(L"C:\\M.mxf"), L"name", L"signature");
    PFCReportParameters const& base = parameters;

    EXPECT_EQ(vr::Path::file(L"C:\\M.mxf"), base.MoviePath());
}

TEST_F(PFCReports, OfXmlAreRead) {
    getPFCXMLReport(m_movie, &m_report);

    EXPECT_EQ("<preflight/>", text());
}

TEST_F(PFCReports, OfTheGenealogyAreRead) {
    getPFCGenealogyReport(m_movie, &m_report);

    EXPECT_EQ("<genealogy/>", text());
}

TEST_F(PFCReports, AreReadForTheParametersOfTheHtmlReportToo) {
    PFCHTMLReportParameters const parameters(m_movie.MoviePath(), L"name", L"signature");

    getPFCXMLReport(parameters, &m_report);

    EXPECT_EQ("<preflight/>", text());
}

TEST_F(PFCReports, MayBeEmpty) {
    m_folder.write(L"pfc\\M.xml", "");

    getPFCXMLReport(m_movie, &m_report);

    EXPECT_EQ("", text());
}

TEST_F(PFCReports, NeedNoMovie) {
    EXPECT_FALSE(m_folder.exists(L"M.mxf"));

    EXPECT_NO_THROW(getPFCXMLReport(m_movie, &m_report));
}

TEST_F(PFCReports, ThatAreMissingFailAsTheirFilesDo) {
    PFCReportParameters const other(vr::Path::file(m_folder.file(L"N.mxf")));
    auto const failure = [this](wchar_t const* report) {
        return L"Unable to open file " + m_folder.file(report);
    };
    test::HandleLeakCheck const check;

    EXPECT_THAT([&] { getPFCXMLReport(other, &m_report); }, FailsWith(failure(L"pfc\\N.xml")));
    EXPECT_THAT(
        [&] { getPFCGenealogyReport(other, &m_report); }, FailsWith(failure(L"genealogy\\N.xml")));

    EXPECT_EQ("before", text());
}

TEST_F(PFCReports, LongerThanAGibibyteAreRefused) {
    NoMemory const memory(0x40000000);
    ToldLength const told(0x40000001);
    auto const failure = [this](wchar_t const* report) {
        return L"LoadSmallFile failed on \"" + m_folder.file(report) +
               L"\" because it's 1073741825 length exceeds max permitted of 1073741824";
    };

    EXPECT_THAT([&] { getPFCXMLReport(m_movie, &m_report); }, FailsWith(failure(L"pfc\\M.xml")));
    EXPECT_THAT(
        [&] { getPFCGenealogyReport(m_movie, &m_report); },
        FailsWith(failure(L"genealogy\\M.xml")));

    EXPECT_EQ("before", text());
}

// That it is not refused shows in the memory that is asked for it.
TEST_F(PFCReports, OfAGibibyteAreNotRefused) {
    NoMemory const memory(0x40000000);
    ToldLength const told(0x40000000);

    EXPECT_THROW(getPFCXMLReport(m_movie, &m_report), std::bad_alloc);
    EXPECT_THROW(getPFCGenealogyReport(m_movie, &m_report), std::bad_alloc);
}
