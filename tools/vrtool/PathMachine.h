#ifndef TOOLS_VRTOOL_PATHMACHINE_H
#define TOOLS_VRTOOL_PATHMACHINE_H

#include "tools/vrtool/Facts.h"
#include "vrUtils/Path.h"

#include <json/json.h>

#include <string>

// What the output tells of the machine that a path is on. The socket layer must have been started.

// The name of the host without its backslashes; null for a path without a host.
Json::Value hostOf(vr::Path const& path);

// The addresses of the host, or of this computer for a path without one; empty if the host is not
// known.
Json::Value addressesOf(vr::Path const& path);

// The share that a connection to the path would go to; null for a path without a host.
// @param text as the user gave it, since a connection reads it in its own way
Json::Value connectionShareOf(std::wstring const& text);

// All of it, with the local path that the library knows for the path.
Facts whereaboutsOf(std::wstring const& text);

#endif
