// vrtool, the operator's command-line program: reads the command line, runs the subcommand.

#include "tools/vrtool/ArchiveCommand.h"
#include "tools/vrtool/Command.h"
#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/ConnectCommand.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/DiskCommand.h"
#include "tools/vrtool/EndpointCommand.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/FindCommand.h"
#include "tools/vrtool/IndexCommand.h"
#include "tools/vrtool/InspectCommand.h"
#include "tools/vrtool/LockCommand.h"
#include "tools/vrtool/NamesCommand.h"
#include "tools/vrtool/NumberCommand.h"
#include "tools/vrtool/PathCommand.h"
#include "tools/vrtool/PlacesCommand.h"
#include "tools/vrtool/PortCommand.h"
#include "tools/vrtool/PreflightCommand.h"
#include "tools/vrtool/RegistryCommand.h"
#include "tools/vrtool/RemoveCommand.h"
#include "tools/vrtool/RunCommand.h"
#include "tools/vrtool/SameCommand.h"
#include "tools/vrtool/ServicesCommand.h"
#include "tools/vrtool/SettingsCommand.h"
#include "tools/vrtool/SidecarCommand.h"
#include "tools/vrtool/StatsDemoCommand.h"
#include "tools/vrtool/TerminateCommand.h"
#include "tools/vrtool/TimecodeCommand.h"
#include "tools/vrtool/TransferCommand.h"
#include "tools/vrtool/Utf8.h"
#include "tools/vrtool/WatchCommand.h"
#include "tools/vrtool/WhereCommand.h"
#include "tools/vrtool/WhoamiCommand.h"
#include "tools/vrtool/XsltCommand.h"
#include "vrUtils/version.h"
#include "vrUtils/vrException.h"

#include <exception>
#include <memory>
#include <vector>

namespace {

using Commands = std::vector<std::unique_ptr<Command>>;

Commands allCommands() {
    Commands commands;
    commands.push_back(std::make_unique<InspectCommand>());
    commands.push_back(std::make_unique<TransferCommand>());
    commands.push_back(std::make_unique<PreflightCommand>());
    commands.push_back(std::make_unique<XsltCommand>());
    commands.push_back(std::make_unique<PathCommand>());
    commands.push_back(std::make_unique<SettingsCommand>());
    commands.push_back(std::make_unique<RegistryCommand>());
    commands.push_back(std::make_unique<RunCommand>());
    commands.push_back(std::make_unique<WatchCommand>());
    commands.push_back(std::make_unique<TerminateCommand>());
    commands.push_back(std::make_unique<LockCommand>());
    commands.push_back(std::make_unique<ServicesCommand>());
    commands.push_back(std::make_unique<WhoamiCommand>());
    commands.push_back(std::make_unique<PortCommand>());
    commands.push_back(std::make_unique<EndpointCommand>());
    commands.push_back(std::make_unique<WhereCommand>());
    commands.push_back(std::make_unique<SameCommand>());
    commands.push_back(std::make_unique<ConnectCommand>());
    commands.push_back(std::make_unique<DiskCommand>());
    commands.push_back(std::make_unique<SidecarCommand>());
    commands.push_back(std::make_unique<FindCommand>());
    commands.push_back(std::make_unique<IndexCommand>());
    commands.push_back(std::make_unique<ArchiveCommand>());
    commands.push_back(std::make_unique<NumberCommand>());
    commands.push_back(std::make_unique<PlacesCommand>());
    commands.push_back(std::make_unique<RemoveCommand>());
    commands.push_back(std::make_unique<TimecodeCommand>());
    commands.push_back(std::make_unique<NamesCommand>());
    commands.push_back(std::make_unique<StatsDemoCommand>());
    return commands;
}

// What holds for every subcommand is set before they join, since they inherit it.
void declare(CLI::App& program, Commands const& commands, std::size_t& width) {
    // A slash begins a path here, never an option.
    program.allow_windows_style_options(false);
    program.fallthrough();
    program.require_subcommand(1);
    program.get_formatter()->column_width(22);
    program.set_help_flag("-h,--help", "Print this help and end");
    program.set_version_flag("--version", "vrtool " VRUTILS_VERSION, "Print the version and end");
    program.add_option("--width", width, "Lay tables out for this many columns; 0 for no limit")
        ->check(CLI::Range(0, 32767).description(""))
        ->type_name("COLUMNS");
    program.footer(
        "`vrtool SUBCOMMAND --help` tells about each, with an example.\n\n"
        "Ends with 0 if all went well, 1 if something failed, 2 if the arguments are\n"
        "wrong, 3 if a program was late, 4 after Ctrl-C, 5 if a lock was not to be had.");
    for (auto const& command : commands)
        command->join(program);
}

int run(Console& console) {
    CLI::App program("The operator's tool of the media-transfer server", "vrtool");
    Commands const commands = allCommands();
    std::size_t width = console.width().value_or(0);
    declare(program, commands, width);

    try {
        program.parse(CommandLine::arguments());
    } catch (CLI::CallForHelp const&) {
        console.out(program.help());
        return ExitCode::success;
    } catch (CLI::CallForVersion const& version) {
        console.out(std::string(version.what()) + '\n');
        return ExitCode::success;
    } catch (CLI::ParseError const& wrong) {
        console.error("vrtool: " + CommandLine::readable(wrong.what()) + "\n\n" + program.help());
        return ExitCode::wrongArguments;
    }

    console.setWidth(width);
    for (auto const& command : commands)
        if (command->chosen())
            return command->run(console);
    return ExitCode::wrongArguments;
}

} // namespace

int main() {
    Console console;
    try {
        return run(console);
    } catch (vrException const& failure) {
        console.error("vrtool: " + toUtf8(failure.message()) + '\n');
    } catch (std::exception const& failure) {
        console.error(std::string("vrtool: ") + failure.what() + '\n');
    }
    return ExitCode::failure;
}
