#ifndef VRUTILS_PROCESSSTATUS_H
#define VRUTILS_PROCESSSTATUS_H

/// @file
/// One text for all threads of a process that tells what it is doing.

#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::ProcessStatus {

/// The text that was set last; "intialising" before that. It never waits for a writer, and is never
/// half of two texts. From any thread.
VRUTILS_API std::wstring status();

/// Replaces the text. From any thread.
VRUTILS_API void status(std::wstring const& text);

} // namespace vrUtils::ProcessStatus

#endif
