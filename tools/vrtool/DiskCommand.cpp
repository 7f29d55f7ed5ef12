#include "tools/vrtool/DiskCommand.h"

#include "tools/vrtool/ClosedFolder.h"
#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Platform.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Path.h"
#include "vrUtils/Storage/DiskSpace.h"

#include <charconv>
#include <iterator>
#include <optional>
#include <system_error>

namespace Storage = vrUtils::Storage;

namespace {

constexpr char diskExplanation[] =
    R"(Asks as the server does before a transfer, as the user that vrtool runs as.
Exactly enough is enough. The bytes that are free are the disk's, whatever a
quota leaves to the user.

Ends with 0 if there is enough, with 1 if not or if nobody can tell, 2 if the
arguments are wrong.

Example:
  vrtool disk \\media01\share\Day1 250000000000)";

// The record of a server whose folder is the target; none if the target is too long for it.
std::optional<SrvrParam> diskServerOf(vr::Path const& target) {
    auto const& parts = target.components();
    SrvrParam server;
    server.host = parts.root();
    auto const folder = parts.wholePath().substr(server.host.size());
    if (folder.size() >= std::size(server.folder))
        return {};
    folder.copy(server.folder, folder.size());
    return server;
}

Fact freeBytesOf(vr::Path const& target) {
    ULARGE_INTEGER free{};
    auto const folder = target.components().wholePath();
    if (GetDiskFreeSpaceExW(folder.c_str(), nullptr, nullptr, &free))
        return {"freeBytes", Json::UInt64{free.QuadPart}};
    auto const error = GetLastError();
    return {"freeBytes", {}, systemText(error)};
}

char const* verdictOf(long result) {
    if (result == 0)
        return "enough";
    return result == Storage::DiskSpaceNotEnough ? "not enough" : "unknown";
}

// The parser itself would wrap a minus sign and cut what is too large.
// @return what is wrong with the number; empty if nothing is
std::string wrongByteCount(std::string const& text) {
    std::uint64_t number = 0;
    auto const* const end = text.data() + text.size();
    auto const [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure == std::errc() && stop == end)
        return {};
    return "Value " + text + " not in range 0 to 18446744073709551615";
}

} // namespace

DiskCommand::DiskCommand()
    : Command("disk", "Tell whether a transfer has room at its destination", diskExplanation) {}

void DiskCommand::declare(CLI::App& arguments) {
    m_target = arguments.add_option("TARGET")->required();
    m_target->description("A folder; in quotes if it holds blanks");
    arguments.add_option("BYTES", m_required, "What the transfer needs")
        ->check(wrongByteCount)
        ->type_name("")
        ->required();
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int DiskCommand::run(Console& console) const {
    auto const target = closedFolder(CommandLine::textOf(*m_target));
    auto const server = diskServerOf(target);
    if (!server) {
        console.error("vrtool: TARGET: a folder has at most 259 characters\n");
        return ExitCode::wrongArguments;
    }

    auto const result = Storage::CheckForDiskSpace(&*server, m_required);
    Facts const facts{
        {"target", toUtf8(target.components().wholePath())},
        freeBytesOf(target),
        {"requiredBytes", Json::UInt64{m_required}},
        {"verdict", verdictOf(result)},
    };
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return result == 0 ? ExitCode::success : ExitCode::failure;
}
