#include "tools/vrtool/NamesCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/AssetManagement.h"

#include <cstddef>
#include <limits>
#include <string>

namespace {

constexpr char namesExplanation[] =
    R"(Tells where the MAM message and the metadata message of a transfer go, and what
they are called. Nothing is written, and what is not given is empty. One --file
is a transfer of one; several, or any beside --file-name, are one of many. The
MAM message is named after the first file. The metadata message is named after
the one file or --file-name, or for --type 20 after --source-name.

Ends with 0, with 1 if a message has no name, 2 if the arguments are wrong.

Example:
  vrtool names --host media01 --folder share\Out --file clip.mxf --prefix done_)";

// A transfer's texts have room for so many characters and a zero.
template <std::size_t capacity>
void put(wchar_t (&field)[capacity], CLI::Option const& option, std::wstring const& text) {
    if (text.size() >= capacity)
        throw CLI::ValidationError(
            option.get_name(), "more than " + std::to_string(capacity - 1) + " characters");
    text.copy(field, text.size());
}

} // namespace

NamesCommand::NamesCommand()
    : Command("names", "Name the message files of a transfer", namesExplanation) {}

void NamesCommand::declare(CLI::App& arguments) {
    auto const text = [&](char const* name, char const* type, char const* description) {
        auto* const option = arguments.add_option(name)->type_name(type);
        option->description(description);
        return option;
    };
    m_host = text("--host", "HOST", "The target's host");
    arguments.add_option("--type", m_type, "The target's kind; 0 if not given")
        ->check(CLI::Range(0u, std::numeric_limits<std::uint32_t>::max()).description(""))
        ->type_name("N");
    m_folder = text("--folder", "FOLDER", "The folder on the host; its first part is the share");
    m_root = text("--root", "FOLDER", "Where relative file names are taken");
    m_metadataFolder =
        text("--metadata-folder", "FOLDER", "Where metadata messages go, without the host");
    m_files = text("--file", "FILE", "A file; may be given several times")->take_all();
    m_fileName = text("--file-name", "FILE", "The one file, where --file tells others");
    m_sourceName = text("--source-name", "NAME", "The whole name for --type 20");
    m_prefix = text("--prefix", "TEXT", "In front of both names");
    m_extension = text("--extension", "TEXT", "Of the metadata message, with its dot");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
    arguments.final_callback([this] { transfer(); });
}

TransferParams NamesCommand::transfer() const {
    TransferParams transfer;
    transfer.host = CommandLine::textOf(*m_host);
    transfer.type = m_type;
    put(transfer.folder, *m_folder, CommandLine::textOf(*m_folder));
    put(transfer.relativeRoot, *m_root, CommandLine::textOf(*m_root));
    put(transfer.metadataFolder, *m_metadataFolder, CommandLine::textOf(*m_metadataFolder));
    put(transfer.sourceName, *m_sourceName, CommandLine::textOf(*m_sourceName));

    auto const files = CommandLine::valuesOf(*m_files);
    if (files.size() == 1 && m_fileName->empty()) {
        put(transfer.fileName, *m_files, files.front());
        return transfer;
    }
    put(transfer.fileName, *m_fileName, CommandLine::textOf(*m_fileName));
    for (std::uint32_t number = 0; number < files.size(); ++number)
        transfer.files.emplace_back(vr::Path::file(files[number]), number);
    return transfer;
}

int NamesCommand::run(Console& console) const {
    using namespace vrUtils::AssetManagement;
    auto const target = transfer();
    auto const prefix = CommandLine::textOf(*m_prefix);
    auto const extension = CommandLine::textOf(*m_extension);
    Facts const facts{
        findFact("mamMessage", [&] { return toUtf8(CreateMAMMsgFileName(&target, prefix)); }),
        findFact(
            "metadataMessage",
            [&] { return toUtf8(CreateMetadataMsgFileName(&target, prefix, extension)); }),
    };
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return hasFailure(facts) ? ExitCode::failure : ExitCode::success;
}
