#ifndef VRUTILS_ASSETMANAGEMENT_H
#define VRUTILS_ASSETMANAGEMENT_H

/// @file
/// Where the message files for an asset-management system go, and what they are called.
///
/// A message is named after the first file of the transfer, without that file's last extension and
/// made legal for the file system (see `vrUtils::Files::GenerateLegalFilename`). A prefix belongs
/// to the name: with the prefix `done_`, `clip1.mxf` gives `done_clip1.xml`. A prefix may bring
/// folders along; what stands behind its last separator is in front of the name.
///
/// Only paths are worked out; nothing is written. From any thread, as long as the transfer does not
/// change meanwhile.

#include "vrUtils/ServerRecords.h"
#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::AssetManagement {

/// The MAM message of a transfer, in the target's folder on its host. The name comes from the first
/// of `files`, or from `fileName` if there are none; with neither it is ".xml".
/// @param prefix may be empty
VRUTILS_API std::wstring
CreateMAMMsgFileName(TransferParams const* transfer, std::wstring const& prefix);

/// The metadata message of a transfer, in `metadataFolder`, which then stands for itself without
/// the host, or in the target's folder if that is empty. The name comes from `fileName` whatever
/// `files` holds; for a target of type 20 it is `sourceName` with all its dots.
/// @param prefix may be empty
/// @param extension added as it is, not made legal: with its own dot. Empty: ".xml"
/// @throws vrException "GenerateLegalFilename failed as the source file name was empty" if there is
///         no name
VRUTILS_API std::wstring CreateMetadataMsgFileName(
    TransferParams const* transfer, std::wstring const& prefix, std::wstring const& extension);

} // namespace vrUtils::AssetManagement

#endif
