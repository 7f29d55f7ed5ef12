#include "tools/vrtool/TransferCommand.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/FileCopy.h"
#include "tools/vrtool/FileTransfer.h"
#include "tools/vrtool/SocketLayer.h"
#include "tools/vrtool/TransferFailure.h"
#include "tools/vrtool/TransferMessage.h"
#include "tools/vrtool/TransferStatistics.h"
#include "tools/vrtool/TransferSummary.h"
#include "tools/vrtool/Utf8.h"
#include "tools/vrtool/WholeFile.h"
#include "vrUtils/Instancing.h"
#include "vrUtils/Performance.h"
#include "vrUtils/version.h"
#include "vrUtils/vrStatCollector.h"

namespace {

constexpr char transferExplanation[] =
    R"(Copies files, and folders with all that is in them, to the folder DESTINATION.
At every moment a target is the old file or the new one, whole: the new one is
written under its name with ".part" added, and takes its place at the end. A
transfer that was interrupted is completed by giving the same command again.

Beside each target goes a message for the asset management, in the folder
"messages". With --report the pre-flight reports of a movie that has them go
along, and PFCreportGenerator.exe makes the HTML one. INDEX is where the index
of the archive keeps the file.

A file that fails is told in one line, and the rest goes on. Ctrl-C ends the
transfer: what has arrived stays, the file on its way is taken back.

Ends with 0 if all files are there; 1 if a file failed; 2 if the arguments are
wrong; 4 after Ctrl-C.

Example:
  vrtool transfer "D:\Media\Day 1" \\server\share\archive --report
  vrtool transfer clip.wav E:\Backup --replace --json totals.json)";

constexpr std::uint32_t highestInstance = 100;

std::string introduction(TransferDestination const& destination) {
    auto text = "To " + toUtf8(destination.folder.components().wholePath()) +
                (destination.onThisMachine ? ", on this machine" : ", on another machine");
    if (destination.local != destination.folder)
        text += ", by " + toUtf8(destination.local.components().wholePath());
    return text + '\n';
}

std::wstring signature() {
    return L"vrtool " + fromUtf8(VRUTILS_VERSION) + L", instance " +
           std::to_wstring(vrUtils::Instancing::currentInstance());
}

// Seen before anything is written, so that a folder can be carried into one below it.
std::vector<TransferSource> sourcesOf(std::vector<std::wstring> const& arguments) {
    std::vector<TransferSource> all;
    for (auto const& argument : arguments)
        for (auto& source : transferSources(argument))
            all.push_back(std::move(source));
    return all;
}

std::string leftOut(std::size_t count) {
    return "Left out, since transfers make them themselves: " + std::to_string(count) +
           (count == 1 ? " file\n" : " files\n");
}

} // namespace

TransferCommand::TransferCommand()
    : Command(
          "transfer", "Carry media to a folder, with all that belongs to it", transferExplanation) {
}

void TransferCommand::declare(CLI::App& arguments) {
    m_paths =
        arguments.add_option("SOURCE... DESTINATION")->required()->expected(1, -1)->take_all();
    m_paths->description("Files and folders, and the folder to carry them to")->allow_extra_args();
    arguments.add_option("--instance", m_instance, "The instance of the system to act for")
        ->check(CLI::Range(0u, highestInstance).description(""))
        ->type_name("N");
    arguments.add_flag("--report", m_report, "Take the pre-flight reports of movies along");
    arguments.add_flag("--replace", m_replace, "Replace files that are there and differ");
    m_jsonFile = arguments.add_option("--json")->type_name("FILE");
    m_jsonFile->description("Save the statistics to a file");
    arguments.final_callback([this] {
        if (m_paths->count() < 2)
            throw CLI::RequiredError("DESTINATION");
    });
}

int TransferCommand::run(Console& console) const {
    try {
        return transfer(console);
    } catch (TransferFailure const& failure) {
        console.error("vrtool: " + toUtf8(failure.text()) + '\n');
        return ExitCode::failure;
    }
}

int TransferCommand::transfer(Console& console) const {
    vrUtils::Performance::ElapsedTimeLogger const timing(L"vrtool");
    auto const start = std::chrono::steady_clock::now();
    SocketLayer const sockets;
    CancelKey const key;
    vrUtils::Instancing::setInstance(m_instance);

    auto paths = CommandLine::valuesOf(*m_paths);
    auto const destination = transferDestination(paths.back());
    paths.pop_back();
    console.out(introduction(destination));
    auto const found = sourcesOf(paths);
    auto const sources = withoutTraces(found, m_report);
    if (sources.size() < found.size())
        console.out(leftOut(found.size() - sources.size()));

    TransferSetting setting{console,     key,
                            destination, m_replace,
                            m_report,    transferServer(),
                            signature(), std::vector<unsigned char>(copyPieceSize),
                            {}};
    TransferSummary summary;
    auto isCancelled = false;
    for (auto const& source : sources) {
        isCancelled = isCancelled || key.wasPressed();
        if (isCancelled)
            break;
        auto const outcome = transferFile(source, setting);
        isCancelled = outcome.result == TransferOutcome::cancelled;
        if (!outcome.failure.empty())
            console.error(
                "vrtool: " + toUtf8(source.file.components().wholePath()) + ": " +
                toUtf8(outcome.failure) + '\n');
        summary.add(source.place, outcome);
    }

    vrStatCollector::Singleton().SetStat(
        transferStatusStat, summary.allWell() && !isCancelled ? 0 : 1);
    console.out(summary.table(console.width()));
    console.out(summary.line(std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start)));
    for (auto const& file : CommandLine::valuesOf(*m_jsonFile))
        saveWhole(toUtf8(vrStatCollector::Singleton().asJson()), vr::Path::file(file));
    if (isCancelled)
        return ExitCode::cancelled;
    return summary.allWell() ? ExitCode::success : ExitCode::failure;
}
