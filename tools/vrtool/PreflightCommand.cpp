#include "tools/vrtool/PreflightCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files.h"
#include "vrUtils/Storage.h"

#include <optional>

namespace Files = vrUtils::Files;
namespace PFC = vrUtils::PFC;

namespace {

constexpr char preflightExplanation[] =
    R"(The movie itself need not be there. The HTML report is made anew of the XML
report, by PFCreportGenerator.exe, which is looked for in the folder of vrtool
first. If that fails or takes longer than 5 seconds, an earlier report stays.

htmlReport is "made", "earlier" for one that was not made anew, or "-".

Ends with 0 if the HTML report was made, 1 if not, 2 if the arguments are
wrong.

Example:
  vrtool preflight D:\Media\clip.mxf --name "The news" --signature "Studio 3")";

// When a file was written; none if it is not there.
std::optional<std::uint64_t> writeTimeOf(vr::Path const& file) {
    if (!Files::FileExists(file))
        return std::nullopt;
    return Files::FileModificationDateTime(file);
}

// @return why no report was made; empty if one was
std::wstring makeReport(PFC::PFCHTMLReportParameters const& parameters) {
    if (!Files::FileExists(PFC::getPFCFileName(parameters.MoviePath())))
        return L"there is no XML report to make it of";
    auto const html = PFC::getPFCHTMLFileName(parameters.MoviePath());
    auto const before = writeTimeOf(html);
    try {
        PFC::createPFCHTMLReport(parameters);
    } catch (vrUtils::Storage::vrCreateFolderException const& failure) {
        return L"cannot make the folder \"" + failure.text() + L"\": " +
               systemText(failure.error());
    }
    // What the program answers is only logged; that it was at work shows in the file alone.
    return writeTimeOf(html) == before ? L"PFCreportGenerator.exe did not make it; the log says why"
                                       : L"";
}

Json::Value reportState(vr::Path const& html, bool made) {
    if (!Files::FileExists(html))
        return {};
    return made ? "made" : "earlier";
}

Json::Value textOf(vr::Path const& path) { return toUtf8(path.components().wholePath()); }

} // namespace

PreflightCommand::PreflightCommand()
    : Command(
          "preflight", "Find a movie's pre-flight reports, make the HTML one",
          preflightExplanation) {}

void PreflightCommand::declare(CLI::App& arguments) {
    m_movie = arguments.add_option("MOVIE")->required()->description("The movie's file");
    m_name = arguments.add_option("--name")->type_name("TEXT");
    m_name->description("The movie's name in the report; else its file's name");
    m_signature = arguments.add_option("--signature")->type_name("TEXT");
    m_signature->description("Who signs the report; nobody if not given");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

PFC::PFCHTMLReportParameters PreflightCommand::parameters() const {
    auto const textOr = [](CLI::Option const& option, std::wstring const& standard) {
        return option.count() ? CommandLine::textOf(option) : standard;
    };
    auto const movie = vr::Path::file(fullPath(CommandLine::textOf(*m_movie)));
    return {movie, textOr(*m_name, movie.components().fullName()), textOr(*m_signature, {})};
}

int PreflightCommand::run(Console& console) const {
    auto const report = parameters();
    auto const movie = report.MoviePath();
    auto const xml = PFC::getPFCFileName(movie);
    auto const genealogy = PFC::getGenealogyFileName(movie);
    auto const html = PFC::getPFCHTMLFileName(movie);

    auto const failure = makeReport(report);
    Facts const facts{
        {"movie", textOf(movie)},
        {"xml", textOf(xml)},
        {"hasXml", Files::FileExists(xml)},
        {"genealogy", textOf(genealogy)},
        {"hasGenealogy", Files::FileExists(genealogy)},
        {"html", textOf(html)},
        {"htmlReport", reportState(html, failure.empty())},
    };
    console.out(m_json ? jsonText(objectOf(facts)) : tableOf(facts, console.width()));
    if (failure.empty())
        return ExitCode::success;
    console.error("vrtool: no HTML report: " + toUtf8(failure) + '\n');
    return ExitCode::failure;
}
