#include "tools/vrtool/IndexCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/IndexPaths.h"

namespace {

constexpr char indexExplanation[] =
    R"(The last word of the path counts as a file's name. No disk is touched.

Ends with 0, or with 2 if the arguments are wrong.

Example:
  vrtool index \\arc\vault\2011\clip.mxf)";

} // namespace

IndexCommand::IndexCommand()
    : Command("index", "Convert an archive path to its index path", indexExplanation) {}

void IndexCommand::declare(CLI::App& arguments) {
    m_path = arguments.add_option("PATH")->required();
    m_path->description("A file in the archive; in quotes if it holds blanks");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int IndexCommand::run(Console& console) const {
    auto const path = vr::Path::file(CommandLine::textOf(*m_path));
    auto const index = vrUtils::Files::ArchiveToIndexPathConverter().GetIndexPath(path);

    Facts const facts{
        {"archivePath", toUtf8(path.components().wholePath())},
        {"indexPath", toUtf8(index.components().wholePath())},
    };
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return ExitCode::success;
}
