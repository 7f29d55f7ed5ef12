// Reports of a movie's pre-flight check. The XML one lies in a folder beside the movie; a
// stylesheet makes text of it here, and a program beside this one makes the HTML report on demand.

#include <vrUtils/Files.h>
#include <vrUtils/PFC.h>
#include <vrUtils/Storage.h>
#include <vrUtils/XSLT.h>

#include <filesystem>
#include <iostream>
#include <string>

using namespace vrUtils::Storage;

namespace {

constexpr char report[] = "<preflight><check name=\"loudness\" result=\"passed\"/></preflight>";
constexpr char stylesheet[] =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"check\">"
    "<xsl:value-of select=\"concat(@name, ': ', @result)\"/>"
    "</xsl:template></xsl:stylesheet>";

void write(std::wstring const& path, std::string const& text) {
    vrUtils::Files::SaveSmallFile({text.begin(), text.end()}, vr::Path::file(path));
}

void makeReports(std::wstring const& folder) {
    auto const movie = vr::Path::file(folder + L"News 1.mov");
    auto const xml = vrUtils::PFC::getPFCFileName(movie).str();
    MakeDirectory(vr::Path::folder(folder + L"pfc"));
    write(xml, report);
    write(folder + L"plain.xsl", stylesheet);

    std::string text;
    if (vrUtils::XSLT::XSLTtoString(xml, folder + L"plain.xsl", &text) >= 0)
        std::cout << text << '\n';

    std::vector<char> page;
    vrUtils::PFC::getPFCHTMLReport({movie, L"News 1", L"Checked by an example"}, &page);
    auto const isPage = std::string(page.begin(), page.end()).find("News 1") != std::string::npos;
    std::cout << (isPage ? "made the page\n" : "made something else\n");
}

} // namespace

int main() try {
    std::wstring name;
    vrUtils::Files::GenerateTempFilename(name);
    auto const wanted = std::filesystem::temp_directory_path() / name / L"";
    auto const folder = vr::Path::folder(wanted.wstring());
    TempFolder const work(folder, NewNameIfExists, DeleteAlways, L"Reports");
    makeReports(work.Name().str());
} catch (vrException const& failure) {
    std::wcerr << failure.message() << L'\n';
    return 1;
} catch (vrStorageException const& failure) {
    std::wcerr << failure.text() << L": error " << failure.error() << L'\n';
    return 1;
}
