#ifndef VRUTILS_ASSETS_H
#define VRUTILS_ASSETS_H

/// @file
/// The media objects (mobs) of an asset's item.
///
/// A walk is `getFirstMobID`, then `getNextMobID` until null. **Its place is kept in the item's
/// list**, which copies of the item share: two walks over one item disturb each other, and
/// `getBaseTC` and `getDuration` send a walk back to the head.
///
/// The records belong to the list; the caller keeps the item alive while it uses one. An item with
/// no list, and one with an empty list, give null. Nothing throws, and nothing is locked: one item
/// is for one thread at a time.

#include "vrUtils/ServerRecords.h"
#include "vrUtils/vrUtilsApi.h"

#include <cstdint>

namespace vrUtils::Assets {

/// The first record. Null if it has none or one without the tag of a valid record, which is logged
/// as "*** Get first mob not a valid mob" at level 3; the walk has begun all the same.
VRUTILS_API MyMobID* getFirstMobID(vrAssetItem const& item);

/// The record behind the one that was got last. Null at the end, and as often as it is asked for
/// there; null before any `getFirstMobID`; null for a record without the tag of a valid one, which
/// is logged as "*** Get next mob not a valid mob" at level 3, and from which the walk goes on.
VRUTILS_API MyMobID* getNextMobID(vrAssetItem const& item);

/// The base timecode of the first record, in frames from midnight; 0 if there is no valid one.
/// Restarts the walk.
VRUTILS_API std::uint32_t getBaseTC(vrAssetItem const& item);

/// The duration of the first record, in frames; 0 if there is no valid one. Restarts the walk.
VRUTILS_API std::uint32_t getDuration(vrAssetItem const& item);

} // namespace vrUtils::Assets

#endif
