#include "tools/vrtool/TransferMessage.h"

#include "tools/vrtool/TransferDestination.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/AssetManagement.h"
#include "vrUtils/Instancing.h"
#include "vrUtils/Process.h"

namespace {

// The kind of target whose messages are named as they are told.
constexpr std::uint32_t namedBySource = 20;

// The port of the service that takes files over, in the plain system.
constexpr std::uint32_t transferService = 60774;

std::wstring escaped(std::wstring const& text) {
    std::wstring safe;
    for (auto const character : text)
        switch (character) {
        case L'&':
            safe += L"&amp;";
            break;
        case L'<':
            safe += L"&lt;";
            break;
        case L'>':
            safe += L"&gt;";
            break;
        default:
            safe += character < L' ' || character > L'\xFFFD' ? L'\xFFFD' : character;
        }
    return safe;
}

std::string element(char const* name, std::wstring const& text) {
    auto const tag = std::string(name) + '>';
    return "  <" + tag + toUtf8(escaped(text)) + "</" + tag + '\n';
}

} // namespace

std::wstring transferServer() {
    return vrUtils::Instancing::instanceHost(vrUtils::Process::GetComputerNameW(), transferService);
}

vr::Path messageFile(vr::Path const& target) {
    auto const& parts = target.components();
    TransferParams transfer;
    transfer.type = namedBySource;
    putText(transfer.metadataFolder, parts.folderPath() + L"messages");
    putText(transfer.sourceName, parts.fullName());
    return vr::Path::file(
        vrUtils::AssetManagement::CreateMetadataMsgFileName(&transfer, {}, L".xml"));
}

std::string messageText(TransferMessage const& message) {
    auto text = std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<transfer>\n") +
                element("server", message.server) +
                element("source", message.source.components().wholePath()) +
                element("target", message.target.components().wholePath()) +
                element("index", message.index.components().wholePath()) +
                element("bytes", std::to_wstring(message.size));
    if (message.format)
        text += element("samplesPerSecond", std::to_wstring(message.format->samplesPerSecond)) +
                element("bitsPerSample", std::to_wstring(message.format->bitsPerSample));
    return text + "</transfer>\n";
}
