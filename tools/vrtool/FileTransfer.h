#ifndef TOOLS_VRTOOL_FILETRANSFER_H
#define TOOLS_VRTOOL_FILETRANSFER_H

#include "tools/vrtool/AudioFormat.h"
#include "tools/vrtool/TransferDestination.h"
#include "tools/vrtool/TransferSources.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

class CancelKey;
class Console;

// What all files of one transfer have in common.
struct TransferSetting {
    Console& console;
    CancelKey const& key;
    TransferDestination const& destination;
    bool replace = false;
    bool report = false;
    // What messages and reports name.
    std::wstring server;
    std::wstring signature;
    std::vector<unsigned char> buffer;
    // The folders of the targets that are known to be there.
    std::set<std::wstring> folders;
};

// What became of one file.
struct TransferOutcome {
    enum Result { transferred, replaced, alreadyThere, failed, cancelled };

    Result result = failed;
    vr::Path target;
    vr::Path index;
    vr::Path report;
    std::optional<std::uint64_t> size;
    std::optional<AudioFormat> format;
    std::wstring formatFailure;
    // Why the file is not there, or what is missing beside it although it is.
    std::wstring failure;
};

// Carries one file. At every moment the target is the old file or the new one, whole; a transfer
// that died is completed by the next one of the same file:
//
// 1. The new file is written beside the target, under its name with ".part" behind it.
// 2. An old file is copied into the folder "Recovery" beside it, so that it can be put back.
// 3. The part takes the target's place, in one step.
// 4. If what then stands there is not the new file, the old one is put back.
// 5. Its message is written, and its reports are carried.
//
// All this time the target is locked against other transfers.
TransferOutcome transferFile(TransferSource const& source, TransferSetting& setting);

#endif
