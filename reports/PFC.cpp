#include "vrUtils/PFC.h"

#include "vrUtils/Files/FileQueries.h"
#include "vrUtils/Process/ExternalProcess.h"
#include "vrUtils/Storage/Directories.h"

#include <array>

namespace vrUtils::PFC {

namespace {

constexpr std::uint32_t largestReport = 0x40000000;
constexpr unsigned secondsToMakeReport = 5;

vr::Path reportFile(vr::Path const& movie, wchar_t const* subfolder, wchar_t const* extension) {
    vr::Path const beside(movie.components().pathNoExtension() + extension, vr::Path::eDetect);
    auto const& parts = beside.components();
    return {
        parts.folderPath() + subfolder + parts.fileName() + parts.extension(), vr::Path::eDetect};
}

// The program's own form of quoting. Whether the first argument is there does not matter to the
// blanks before the others.
std::wstring commandLine(std::array<std::wstring, 4> const& arguments) {
    std::wstring line = L"PFCreportGenerator.exe ";
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        auto const& argument = arguments[index];
        if (argument.empty())
            continue;
        if (index > 0)
            line += L' ';
        auto const* const quote =
            argument.find_first_of(L" \t") == std::wstring::npos ? L"" : L"\"";
        line.append(quote).append(argument).append(quote);
    }
    return line;
}

} // namespace

vr::Path getGenealogyFileName(vr::Path const& movie) {
    return reportFile(movie, L"genealogy\\", L".xml");
}

vr::Path getPFCFileName(vr::Path const& movie) { return reportFile(movie, L"pfc\\", L".xml"); }

vr::Path getPFCHTMLFileName(vr::Path const& movie) {
    return reportFile(movie, L"pfchtml\\", L".html");
}

void getPFCXMLReport(PFCReportParameters const& parameters, std::vector<char>* report) {
    Files::LoadSmallFile(getPFCFileName(parameters.MoviePath()), largestReport, report);
}

void getPFCGenealogyReport(PFCReportParameters const& parameters, std::vector<char>* report) {
    Files::LoadSmallFile(getGenealogyFileName(parameters.MoviePath()), largestReport, report);
}

void getPFCHTMLReport(PFCHTMLReportParameters const& parameters, std::vector<char>* report) {
    createPFCHTMLReport(parameters);
    Files::LoadSmallFile(getPFCHTMLFileName(parameters.MoviePath()), largestReport, report);
}

void createPFCHTMLReport(PFCHTMLReportParameters const& parameters) {
    auto const html = getPFCHTMLFileName(parameters.MoviePath());
    Storage::MakeDirectoryIterative(html);
    auto const xml = getPFCFileName(parameters.MoviePath());

    Process::ExternalProcess generator(L"PFC HTML", secondsToMakeReport, L"PFC HTML");
    generator.addRawArg(commandLine(
        {xml.components().wholePath(), html.components().wholePath(), parameters.MovieName(),
         parameters.ReportSignature()}));
    // What it made, or left of an earlier run, is on disk.
    generator.Execute();
}

} // namespace vrUtils::PFC
