#ifndef FOUNDATION_MESSAGE_H
#define FOUNDATION_MESSAGE_H

#include "vrUtils/Path.h"

#include <ios>
#include <locale>
#include <sstream>
#include <string>

namespace vrUtils {

// Puts a message together from literals, wide strings, numbers and paths, in reading order. The
// classic locale keeps a host's own from grouping the digits, and a failed allocation surfaces
// instead of cutting the message short.
template <typename... Pieces>
std::wstring composeMessage(Pieces const&... pieces) {
    std::wostringstream text;
    text.imbue(std::locale::classic());
    text.exceptions(std::ios_base::badbit);
    (text << ... << pieces);
    return text.str();
}

} // namespace vrUtils

#endif
