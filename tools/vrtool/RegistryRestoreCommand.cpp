#include "tools/vrtool/RegistryRestoreCommand.h"

#include "tools/vrtool/ChildRun.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/TimeLimits.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files.h"
#include "vrUtils/Registry.h"

#include <chrono>
#include <limits>
#include <stdexcept>
#include <vector>

namespace Registry = vrUtils::Registry;

namespace {

constexpr char registryRestoreExplanation[] =
    R"(Says line by line what in the file will not come back as it was, and restores
the rest. The key is made if it is missing; values that are not in the file
stay. A key in the file that the platform refuses is tried again without end:
give a time limit where that may be.

Ends with 0 if the last value was written, 1 if not, if a line ended the
restore, or if the time was up; with --check 1 if anything would be lost; 2 if
the arguments are wrong.

Example:
  vrtool registry restore --check HKLM\Software\Vorrane C:\Vorrane.reg
  vrtool registry restore HKLM\Software\Vorrane C:\Vorrane.reg --time-limit 60)";

constexpr char surveyedFlag[] = "--surveyed";

std::string tableOf(DumpSurvey const& survey, std::optional<std::size_t> width) {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    TextTable table({
        {L"LINE", Align::right},
        {L"WHAT", Align::left, Narrow::cut},
        {L"WILL NOT COME BACK AS IT WAS", Align::left, Narrow::wrap},
    });
    for (auto const& loss : survey.losses)
        table.addRow({std::to_wstring(loss.line), loss.what, loss.why});
    return table.text(width);
}

int fail(Console& console, std::wstring const& what) {
    console.error("vrtool: " + toUtf8(what) + '\n');
    return ExitCode::failure;
}

// The library makes a key when it is asked for a value, and the product's root with it.
// @return whether the key is there
bool makeKey(TreeName const& tree) {
    try {
        if (tree.isMachines())
            Registry::ReadLocalMachineDWORDValue(tree.key(), {});
        else
            Registry::ReadCurrentUserDWORDValue(tree.key(), {});
    } catch (Registry::vrRegistryValueMissingException const&) {
        // Whether there is such a value does not matter.
    } catch (Registry::vrRegistryAccessException const&) {
        return false;
    }
    return true;
}

} // namespace

RegistryRestoreCommand::RegistryRestoreCommand()
    : Command(
          "restore", "Write a dump file back, and say what it loses", registryRestoreExplanation) {}

void RegistryRestoreCommand::declare(CLI::App& arguments) {
    m_arguments.declare(arguments);
    auto* const check =
        arguments.add_flag("--check", m_check, "Only say what would be lost; restore nothing");
    arguments.add_option("--time-limit", m_seconds, "End a restore that takes longer than that")
        ->check(CLI::Range(1u, secondsOfADay).description(""))
        ->type_name("SECONDS")
        ->excludes(check);
    arguments.add_flag(surveyedFlag, m_surveyed)->group("");
}

int RegistryRestoreCommand::run(Console& console) const {
    if (m_surveyed)
        return restore(console);

    auto const tree = m_arguments.tree();
    auto const found = survey(console);
    if (m_check)
        return found.losses.empty() ? ExitCode::success : ExitCode::failure;
    if (found.keys != 0 && !makeKey(tree))
        return fail(console, tree.text() + L" can be neither opened nor made");
    return m_seconds ? restoreInChild(console) : restore(console);
}

DumpSurvey RegistryRestoreCommand::survey(Console& console) const {
    std::vector<char> content;
    vrUtils::Files::LoadSmallFile(
        vr::Path::file(m_arguments.file()), std::numeric_limits<std::uint32_t>::max(), &content);
    auto found = surveyDump(content, m_arguments.tree().inFile());
    if (!found.losses.empty())
        console.out(tableOf(found, console.width()));
    else if (m_check)
        console.out("Everything in the file will come back as it was.\n");
    return found;
}

int RegistryRestoreCommand::restore(Console& console) const {
    auto const tree = m_arguments.tree();
    auto const file = m_arguments.file();
    long code = 0;
    try {
        Registry::RegDumper const dumper(tree.hive(), tree.inFile());
        code = dumper.restoreRegistry(vr::Path::file(file));
    } catch (std::out_of_range const&) {
        return fail(
            console, L"a line of " + file + L" ended the restore; what is before it is restored");
    }

    if (code == Registry::RegRestoreNothing)
        return fail(console, L"nothing was restored: " + file + L" holds no value");
    if (code != 0)
        return fail(
            console,
            L"the last value was not written: " + systemText(static_cast<std::uint32_t>(code)));
    console.out("Restored " + toUtf8(tree.text()) + " from " + toUtf8(file) + ".\n");
    return ExitCode::success;
}

int RegistryRestoreCommand::restoreInChild(Console& console) const {
    auto const code = runWithin(
        std::chrono::seconds(m_seconds), thisProgram(),
        {L"registry", L"restore", fromUtf8(surveyedFlag), m_arguments.tree().text(),
         m_arguments.file()});
    if (!code)
        return fail(
            console, L"the restore did not end within " + std::to_wstring(m_seconds) +
                         L" s and was stopped; what was restored by then stays");
    return static_cast<int>(*code);
}
