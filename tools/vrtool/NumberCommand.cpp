#include "tools/vrtool/NumberCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/AvidPathNumber.h"
#include "vrUtils/Files/FileQueries.h"

#include <limits>

namespace {

constexpr char numberExplanation[] =
    R"(Counts up from 1 to the first folder that has room, and makes it if it is
missing, as the server does. "." and ".." count as entries: a folder is full
at LIMIT - 1 entries of its own.

Ends with 0, with 1 if the folder cannot be made, 2 if the arguments are wrong.

Example:
  vrtool number C:\Media\ 5000)";

} // namespace

NumberCommand::NumberCommand()
    : Command("number", "Pick the numbered folder for the next file", numberExplanation) {}

void NumberCommand::declare(CLI::App& arguments) {
    m_base = arguments.add_option("BASE")->required();
    m_base->description("What stands in front of the number, backslash included");
    arguments.add_option("LIMIT", m_limit, "Of entries in a folder")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""))
        ->type_name("")
        ->required();
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int NumberCommand::run(Console& console) const {
    auto const base = CommandLine::textOf(*m_base);
    auto const number = get_avid_path_number(base, m_limit);

    // Whether the folder could be made is not reported.
    auto const folder = base + number;
    bool const isThere = vrUtils::Files::FileExists(vr::Path::folder(folder));
    Facts const facts{
        {"base", toUtf8(base)},
        {"limit", m_limit},
        {"number", std::stoi(number)},
        {"folder", toUtf8(folder), isThere ? L"" : L"it cannot be made"},
    };
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return isThere ? ExitCode::success : ExitCode::failure;
}
