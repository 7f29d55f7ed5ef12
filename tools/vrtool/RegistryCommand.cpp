#include "tools/vrtool/RegistryCommand.h"

namespace {

constexpr char registryExplanation[] =
    R"(`vrtool registry dump --help` and `vrtool registry restore --help` tell about
each.

Example:
  vrtool registry dump HKLM\Software\Vorrane\Ostrel C:\Backup\Ostrel.reg)";

} // namespace

RegistryCommand::RegistryCommand()
    : Command(
          "registry", "Save a tree of the registry to a file, or restore it", registryExplanation) {
}

void RegistryCommand::declare(CLI::App& arguments) {
    arguments.require_subcommand(1);
    m_dump.join(arguments);
    m_restore.join(arguments);
}

int RegistryCommand::run(Console& console) const {
    return m_dump.chosen() ? m_dump.run(console) : m_restore.run(console);
}
