#include "tools/vrtool/InspectCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/FolderWalk.h"
#include "tools/vrtool/Inspection.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/Platform.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/Utf8.h"

#include <algorithm>
#include <vector>

namespace {

constexpr char inspectExplanation[] =
    R"(Paths are shown in their normal form. DEPTH counts folders, HOURS those since
the last write. For HZ and BITS the first 64 KiB of WAV and AIFF files
(.wav, .aif, .aiff, .aifc) are read, unless the file is offline. What does
not apply or is not known is shown as "-"; FAILURE says why.

Ends with 0 if all went well, 1 if a path is missing or a row has a failure, 2
if the arguments are wrong.

Example:
  vrtool inspect "D:\Media\Day 1" \\server\share\clip.aiff
  vrtool inspect --json D:\Media > media.json)";

std::wstring missing(vr::Path const& path, DWORD error) {
    auto const name = L"\"" + path.components().wholePath() + L"\"";
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
        return L"no such file or folder: " + name;
    return L"cannot reach " + name + L": " + systemText(error);
}

// Adds the inspections of one argument: of the file, or of all files below the folder.
// @return why it cannot be reached; empty if it can
std::wstring inspect(std::wstring const& text, std::vector<Inspection>& inspections) {
    vr::Path path(text, vr::Path::eDetect);
    DWORD const attributes = GetFileAttributesW(path.str().c_str());
    DWORD const error = GetLastError();
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return missing(path, error);
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        inspections.push_back(inspectFile(path));
        return {};
    }

    for (auto const& file : filesBelow(vr::Path::folder(text))) {
        inspections.push_back(
            file.failure.empty() ? inspectFile(file.path) : inspectPath(file.path));
        if (!file.failure.empty())
            inspections.back().failure = file.failure;
    }
    return {};
}

template <class Number>
std::wstring cell(std::optional<Number> const& number) {
    return number ? std::to_wstring(*number) : L"-";
}

std::wstring cell(std::optional<bool> const& answer) {
    return answer ? (*answer ? L"yes" : L"no") : L"-";
}

std::string tableOf(std::vector<Inspection> const& inspections, std::optional<std::size_t> width) {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    TextTable table({
        {L"PATH", Align::left, Narrow::ownLine},
        {L"ROOT", Align::left, Narrow::cut},
        {L"DEPTH", Align::right},
        {L"NAME", Align::left, Narrow::cut},
        {L"EXT", Align::left, Narrow::cut},
        {L"BYTES", Align::right},
        {L"HOURS", Align::right},
        {L"OFFLINE"},
        {L"LEGAL NAME", Align::left, Narrow::cut},
        {L"HZ", Align::right},
        {L"BITS", Align::right},
        {L"FAILURE", Align::left, Narrow::ownLine},
    });
    for (auto const& file : inspections)
        table.addRow(
            {file.path, file.rootOrDrive, std::to_wstring(file.folderCount), file.name,
             file.extension, cell(file.size), cell(file.ageHours), cell(file.offline),
             file.legalName, cell(file.samplesPerSecond), cell(file.bitsPerSample), file.failure});
    return table.text(width);
}

template <class Fact>
Json::Value valueOf(std::optional<Fact> const& fact) {
    return fact ? Json::Value(*fact) : Json::Value();
}

// Every object has every key; null is what does not apply or is not known.
Json::Value objectOf(Inspection const& file) {
    Json::Value object;
    object["path"] = toUtf8(file.path);
    object["rootOrDrive"] = toUtf8(file.rootOrDrive);
    object["folderCount"] = Json::UInt64{file.folderCount};
    object["name"] = toUtf8(file.name);
    object["extension"] = toUtf8(file.extension);
    object["size"] = file.size ? Json::Value(Json::UInt64{*file.size}) : Json::Value();
    object["ageHours"] = valueOf(file.ageHours);
    object["offline"] = valueOf(file.offline);
    object["legalName"] = toUtf8(file.legalName);
    object["samplesPerSecond"] = valueOf(file.samplesPerSecond);
    object["bitsPerSample"] = valueOf(file.bitsPerSample);
    object["failure"] = file.failure.empty() ? Json::Value() : Json::Value(toUtf8(file.failure));
    return object;
}

std::string jsonOf(std::vector<Inspection> const& inspections) {
    Json::Value array(Json::arrayValue);
    for (auto const& file : inspections)
        array.append(objectOf(file));
    return jsonText(array);
}

} // namespace

InspectCommand::InspectCommand()
    : Command("inspect", "Tell what files are: name, size, age, audio format", inspectExplanation) {
}

void InspectCommand::declare(CLI::App& arguments) {
    m_paths = arguments.add_option("PATH")->required()->expected(1, -1)->take_all();
    m_paths->description("A file, or a folder: then all files below it")->allow_extra_args();
    arguments.add_flag("--json", m_json, "Print an array of objects instead of the table");
}

int InspectCommand::run(Console& console) const {
    std::vector<Inspection> inspections;
    bool allReached = true;
    for (auto const& path : CommandLine::valuesOf(*m_paths)) {
        auto const failure = inspect(path, inspections);
        if (!failure.empty()) {
            console.error("vrtool: " + toUtf8(failure) + '\n');
            allReached = false;
        }
    }

    if (m_json)
        console.out(jsonOf(inspections));
    else if (!inspections.empty())
        console.out(tableOf(inspections, console.width()));
    else if (allReached)
        console.out("No files.\n");

    bool const allWell =
        std::all_of(inspections.begin(), inspections.end(), [](Inspection const& file) {
            return file.failure.empty();
        });
    return allReached && allWell ? ExitCode::success : ExitCode::failure;
}
