#ifndef VRUTILS_CMDLINEPROCESSOR_H
#define VRUTILS_CMDLINEPROCESSOR_H

/// @file
/// Splitting of command lines.

#include "vrUtils/vrException.h"

namespace vrUtils::CmdLineProcessor {

/// A malformed command line: code 0x80E0603D, no source name and line 0.
class VRUTILS_API BadCommandLineException : public vrException {
  public:
    /// @param text becomes the message, such as "Mismatched quotes in Command Line"
    explicit BadCommandLineException(std::wstring const& text) : vrException(text, 0x80E0603D) {}
};

} // namespace vrUtils::CmdLineProcessor

#endif
