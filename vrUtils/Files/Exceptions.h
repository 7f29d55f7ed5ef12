#ifndef VRUTILS_FILES_EXCEPTIONS_H
#define VRUTILS_FILES_EXCEPTIONS_H

/// @file
/// The two failures of this area that carry a path.

#include "vrUtils/Path.h"
#include "vrUtils/vrException.h"

namespace vrUtils::Files {

/// A file could not be locked: code 0x80E0609E, message "Unable to lock " and the path, no source
/// name and line 0.
class VRUTILS_API LockFileException : public vrException {
  public:
    /// The failure to lock this file.
    explicit LockFileException(vr::Path const& path);
};

/// An index path that no archive path can be made of. It is the path and nothing else: no code, no
/// message, and not a `vrException`.
class VRUTILS_API vrInvalidIndexPathException {
  public:
    /// Keeps a copy of the path.
    explicit vrInvalidIndexPathException(vr::Path const& path);

    /// The path that was refused.
    vr::Path const& path() const noexcept { return m_path; }

  private:
    vr::Path m_path;
};

} // namespace vrUtils::Files

#endif
