#include "vrUtils/Tracks.h"

namespace vrUtils::Tracks {

wchar_t const* typeName(vrTrackType type) {
    switch (type) {
    case eTrackUndefined:
        return L"Undefined";
    case eTrackMaster:
        return L"Master";
    case eTrackTimecode:
        return L"Timecode";
    case eTrackVideo:
        return L"Video";
    case eTrackAudio:
        return L"Audio";
    case eTrackData:
        return L"Data";
    case eTrackSegment:
        return L"Segment";
    case eTrackComment:
        return L"Comment";
    default:
        return L"Unknown";
    }
}

} // namespace vrUtils::Tracks
