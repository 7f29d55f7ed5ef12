#ifndef TOOLS_VRTOOL_TRANSFERDESTINATION_H
#define TOOLS_VRTOOL_TRANSFERDESTINATION_H

#include "vrUtils/Path.h"
#include "vrUtils/ServerRecords.h"

#include <string>

// The folder that a transfer goes to. The host program of the transfer has started Winsock.
struct TransferDestination {
    // As others know it, closed by a backslash.
    vr::Path folder;
    // The same folder without the network where it is on this machine and its local path is known.
    vr::Path local;
    bool onThisMachine = false;
    // Its drive or share, as the check of the free space takes it.
    SrvrParam server;
};

TransferDestination transferDestination(std::wstring const& argument);

// Puts a text into one of the server's arrays.
// @throws TransferFailure if it is too long
void putText(wchar_t (&array)[260], std::wstring const& text);

#endif
