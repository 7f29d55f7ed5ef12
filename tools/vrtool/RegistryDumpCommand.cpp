#include "tools/vrtool/RegistryDumpCommand.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/DumpSurvey.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/OwnedHandle.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files.h"

#include <limits>
#include <vector>

namespace {

constexpr char registryDumpExplanation[] =
    R"(Writes the values of the key and of all keys below it to the file, in place of
what was there. REG_SZ, REG_DWORD, REG_BINARY and REG_MULTI_SZ values are
written, up to 1,024 bytes each; others leave their name alone. Says how much
the file holds, and how many of its lines a restore would not bring back as
they were.

Ends with 0, or with 1 if the tree or the file failed, 2 if the arguments are
wrong.

Example:
  vrtool registry dump HKLM\Software\Vorrane\Ostrel C:\Backup\Ostrel.reg)";

// The library says nothing of a file that it cannot write, so that an older one would pass for the
// dump.
// @return why the file cannot be written over; empty if it can or is not there
std::wstring whyNotOverwritten(std::wstring const& file) {
    OwnedHandle const opened(CreateFileW(
        file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD const error = GetLastError();
    bool const isWritable = opened.get() != INVALID_HANDLE_VALUE || error == ERROR_FILE_NOT_FOUND;
    return isWritable ? std::wstring() : systemText(error);
}

std::string counted(std::size_t count, char const* one, char const* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string report(DumpSurvey const& survey, std::wstring const& file) {
    auto const keys = counted(survey.keys, "key", "keys");
    auto const values = counted(survey.values, "value", "values");
    auto text = "Wrote " + keys + " with " + values + " to " + toUtf8(file) + ".\n";
    if (!survey.losses.empty())
        text += "A restore will not bring everything back: " +
                counted(survey.losses.size(), "loss", "losses") +
                ", told by `vrtool registry restore --check`.\n";
    return text;
}

} // namespace

RegistryDumpCommand::RegistryDumpCommand()
    : Command("dump", "Save a key and all below it to a file", registryDumpExplanation) {}

void RegistryDumpCommand::declare(CLI::App& arguments) { m_arguments.declare(arguments); }

int RegistryDumpCommand::run(Console& console) const {
    auto const tree = m_arguments.tree();
    auto const file = m_arguments.file();
    auto const fail = [&](std::wstring const& what) {
        console.error("vrtool: " + toUtf8(what) + '\n');
        return ExitCode::failure;
    };

    auto const why = whyNotOverwritten(file);
    if (!why.empty())
        return fail(L"cannot write " + file + L": " + why);

    vrUtils::Registry::RegDumper const dumper(tree.hive(), tree.inFile());
    if (dumper.dumpRegistry(vr::Path::file(file)) == vrUtils::Registry::RegDumpFailed)
        return fail(tree.text() + L" cannot be dumped: it, or a key in it, does not open");
    if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES)
        return fail(L"cannot write " + file);

    std::vector<char> content;
    vrUtils::Files::LoadSmallFile(
        vr::Path::file(file), std::numeric_limits<std::uint32_t>::max(), &content);
    console.out(report(surveyDump(content, tree.inFile()), file));
    return ExitCode::success;
}
