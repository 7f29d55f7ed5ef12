#ifndef TOOLS_VRTOOL_TRANSFERMESSAGE_H
#define TOOLS_VRTOOL_TRANSFERMESSAGE_H

#include "tools/vrtool/AudioFormat.h"
#include "vrUtils/Path.h"

#include <cstdint>
#include <optional>
#include <string>

// What the asset management is told of a file that has arrived.
struct TransferMessage {
    std::wstring server;
    vr::Path source;
    vr::Path target;
    vr::Path index;
    std::uint64_t size = 0;
    std::optional<AudioFormat> format;
};

// The service of the current instance on this computer that messages name.
std::wstring transferServer();

// Where the message of a target goes: the folder "messages" beside it, under the target's name made
// legal, with ".xml" behind it.
// @throws vrException, TransferFailure if there is no such name
vr::Path messageFile(vr::Path const& target);

// The message, an XML document in UTF-8. What XML cannot hold becomes U+FFFD.
std::string messageText(TransferMessage const& message);

#endif
