#include "tools/vrtool/ArchiveCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/Exceptions.h"
#include "vrUtils/Files/IndexPaths.h"

namespace Files = vrUtils::Files;

namespace {

constexpr char archiveExplanation[] =
    R"(An index path begins with a host, has the extension ".mov" and a folder
"PFR-INDEX", each written exactly so. No disk is touched.

Ends with 0, with 1 if the path is no index path, 2 if the arguments are wrong.

Example:
  vrtool archive \\arc\vault\PFR-INDEX\2011\clip.mov .mxf)";

} // namespace

ArchiveCommand::ArchiveCommand()
    : Command("archive", "Convert an index path to its archive path", archiveExplanation) {}

void ArchiveCommand::declare(CLI::App& arguments) {
    m_path = arguments.add_option("PATH")->required();
    m_path->description("An entry in the index; in quotes if it holds blanks");
    m_extension = arguments.add_option("EXTENSION")->required();
    m_extension->description("The archive's file has it, with its dot");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int ArchiveCommand::run(Console& console) const {
    auto const path = vr::Path::file(CommandLine::textOf(*m_path));
    auto const extension = CommandLine::textOf(*m_extension);
    try {
        auto const archive = Files::IndexToArchivePathConverter().GetArchivePath(path, extension);
        Facts const facts{
            {"indexPath", toUtf8(path.components().wholePath())},
            {"archivePath", toUtf8(archive.components().wholePath())},
        };
        console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
        return ExitCode::success;
    } catch (Files::vrInvalidIndexPathException const& refusal) {
        console.error(
            "vrtool: no index path: \"" + toUtf8(refusal.path().components().wholePath()) +
            "\"; one has a host, the extension \".mov\" and a folder \"PFR-INDEX\"\n");
        return ExitCode::failure;
    }
}
