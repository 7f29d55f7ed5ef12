#include "tools/vrtool/SidecarCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/SidecarTrial.h"

namespace {

constexpr char sidecarExplanation[] =
    R"(The movie's name must match the expression as a whole; \0 to \9 in NAME then
stand for the name and its captures. A file of exactly the name that comes of
it is the sidecar, else the first entry of the folder that matches it as an
expression. All that is tried on the way is shown, also entries that match and
are passed over: folders, hidden files, names that begin with a dot.

Ends with 0 if there is a sidecar, 1 if not, 2 if the arguments are wrong.

Example:
  vrtool sidecar Clip1.mov --regex "(.*)\.mov" --folder C:\Media\
      --name "\1_.*\.xml" --pattern *.xml)";

CLI::Option* addText(CLI::App& arguments, char const* name, char const* purpose) {
    return arguments.add_option(name)->required()->description(purpose)->type_name("TEXT");
}

} // namespace

SidecarCommand::SidecarCommand()
    : Command("sidecar", "Find a movie's companion file, and show how", sidecarExplanation) {}

void SidecarCommand::declare(CLI::App& arguments) {
    m_movie = arguments.add_option("MOVIE")->required();
    m_movie->description("The movie's name, as the expression wants it");
    m_regex = addText(arguments, "--regex", "An expression for the movie's name");
    m_folder = addText(arguments, "--folder", "Where to look, with its closing backslash");
    m_name = addText(arguments, "--name", "The sidecar's name, or an expression for it");
    m_pattern = addText(arguments, "--pattern", "Wildcard for the entries to look at");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int SidecarCommand::run(Console& console) const {
    auto const facts = trialOf(
        {CommandLine::textOf(*m_movie), CommandLine::textOf(*m_regex),
         CommandLine::textOf(*m_folder), CommandLine::textOf(*m_name),
         CommandLine::textOf(*m_pattern)});
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return objectOf(facts)["sidecar"].isNull() ? ExitCode::failure : ExitCode::success;
}
