#ifndef MEDIA_PARSINGFAILURE_H
#define MEDIA_PARSINGFAILURE_H

#include "foundation/FailureCodes.h"
#include "vrUtils/vrException.h"

namespace vrUtils::Parsing {

// The failure of this folder's units; the line is that of the throw.
inline vrException parsingFailure(std::uint32_t line, wchar_t const* message) {
    return vrException("ParsingUtils", line, message, AudioTagParsingFailed);
}

} // namespace vrUtils::Parsing

#endif
