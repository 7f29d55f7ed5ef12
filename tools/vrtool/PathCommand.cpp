#include "tools/vrtool/PathCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Path.h"

#include <array>
#include <utility>
#include <vector>

namespace {

constexpr char pathExplanation[] =
    R"(The text is read as a folder, as what it looks like (detect), and as a file;
the row "type" tells what each reading ends as. No disk is touched.

Ends with 0, or with 2 if the arguments are wrong.

Example:
  vrtool path \\server\share\Media\clip.mxf
  vrtool path --json "C:\Media\Day 1")";

// The parts of one reading, in the order in which they are shown.
using Parts = std::vector<std::pair<char const*, Json::Value>>;

char const* typeOf(vr::Path const& path, vr::Path::eType reading) {
    bool const isFile = reading == vr::Path::eDetect ? !path.components().fullName().empty()
                                                     : reading == vr::Path::eFile;
    return isFile ? "file" : "folder";
}

Json::Value foldersOf(vr::PathSplitter const& parts) {
    Json::Value folders(Json::arrayValue);
    for (auto const& folder : parts.folders())
        folders.append(toUtf8(folder));
    return folders;
}

Parts read(std::wstring const& text, vr::Path::eType reading) {
    vr::Path const path(text, reading);
    auto const& parts = path.components();
    return {
        {"type", typeOf(path, reading)},
        {"wholePath", toUtf8(parts.wholePath())},
        {"root", toUtf8(parts.root())},
        {"drive", toUtf8(parts.drive())},
        {"rootAndDrive", toUtf8(parts.rootAndDrive())},
        {"folderText", toUtf8(parts.folderText())},
        {"folderPath", toUtf8(parts.folderPath())},
        {"pathNoExtension", toUtf8(parts.pathNoExtension())},
        {"fileName", toUtf8(parts.fileName())},
        {"extension", toUtf8(parts.extension())},
        {"fullName", toUtf8(parts.fullName())},
        {"folders", foldersOf(parts)},
        {"host", toUtf8(parts.host())},
        {"port", parts.port()},
        {"firstFolder", toUtf8(parts.firstFolder())},
        {"relative", path.isRelative()},
        {"absolute", path.isAbsolute()},
    };
}

struct PathReading {
    char const* name;
    Parts parts;
};

std::array<PathReading, 3> readAll(std::wstring const& text) {
    return {
        {{"folder", read(text, vr::Path::eFolder)},
         {"detect", read(text, vr::Path::eDetect)},
         {"file", read(text, vr::Path::eFile)}}};
}

// The bar that separates folders cannot be part of a name.
std::wstring partCell(Json::Value const& part) {
    if (part.isBool())
        return part.asBool() ? L"yes" : L"no";
    if (!part.isArray())
        return fromUtf8(part.asString());
    std::wstring folders;
    for (auto const& folder : part)
        folders += (folders.empty() ? L"" : L" | ") + fromUtf8(folder.asString());
    return folders;
}

std::string tableOf(std::array<PathReading, 3> const& readings, std::optional<std::size_t> width) {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    TextTable table({
        {L"PART"},
        {L"FOLDER", Align::left, Narrow::wrap},
        {L"DETECT", Align::left, Narrow::wrap},
        {L"FILE", Align::left, Narrow::wrap},
    });
    for (std::size_t part = 0; part < readings[0].parts.size(); ++part)
        table.addRow(
            {fromUtf8(readings[0].parts[part].first), partCell(readings[0].parts[part].second),
             partCell(readings[1].parts[part].second), partCell(readings[2].parts[part].second)});
    return table.text(width);
}

std::string jsonOf(std::wstring const& text, std::array<PathReading, 3> const& readings) {
    Json::Value document;
    document["text"] = toUtf8(text);
    for (auto const& reading : readings)
        for (auto const& [name, part] : reading.parts)
            document[reading.name][name] = part;
    return jsonText(document);
}

} // namespace

PathCommand::PathCommand()
    : Command("path", "Take a path apart in the three ways to read it", pathExplanation) {}

void PathCommand::declare(CLI::App& arguments) {
    m_text = arguments.add_option("TEXT")->required();
    m_text->description("Any text; in quotes if it holds blanks");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int PathCommand::run(Console& console) const {
    auto const text = CommandLine::textOf(*m_text);
    auto const readings = readAll(text);
    console.out(m_json ? jsonOf(text, readings) : tableOf(readings, console.width()));
    return ExitCode::success;
}
