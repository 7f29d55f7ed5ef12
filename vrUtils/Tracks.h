#ifndef VRUTILS_TRACKS_H
#define VRUTILS_TRACKS_H

/// @file
/// Kinds of tracks.

#include "vrUtils/ServerRecords.h"
#include "vrUtils/vrUtilsApi.h"

namespace vrUtils::Tracks {

/// The name of a track's kind: "Undefined", "Master", "Timecode", "Video", "Audio", "Data",
/// "Segment", "Comment"; "Unknown" for any other number. The text belongs to the library and never
/// goes. From any thread.
VRUTILS_API wchar_t const* typeName(vrTrackType type);

} // namespace vrUtils::Tracks

#endif
