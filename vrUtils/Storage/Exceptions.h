#ifndef VRUTILS_STORAGE_EXCEPTIONS_H
#define VRUTILS_STORAGE_EXCEPTIONS_H

/// @file
/// Failures of folders, deletions that can be undone, pickers and well-known places.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>
#include <utility>

namespace vrUtils::Storage {

/// A failure of this area: the Windows error at the throw, and the path or host that it concerns;
/// for the well-known places a message instead. A plain value, no `vrException`.
class VRUTILS_API vrStorageException {
  public:
    /// Keeps both.
    vrStorageException(std::uint32_t error, std::wstring text)
        : m_error(error), m_text(std::move(text)) {}

    /// The Windows error.
    std::uint32_t error() const noexcept { return m_error; }

    /// The path or host that the failure concerns, or the message.
    std::wstring const& text() const noexcept { return m_text; }

  private:
    std::uint32_t m_error;
    std::wstring m_text;
};

/// A folder picker was given a host that there is not.
class VRUTILS_API vrBadHostException : public vrStorageException {
  public:
    /// The constructor of `vrStorageException`.
    using vrStorageException::vrStorageException;
};

/// A folder could not be made.
class VRUTILS_API vrCreateFolderException : public vrStorageException {
  public:
    /// The constructor of `vrStorageException`.
    using vrStorageException::vrStorageException;
};

/// A file could not be copied on the way to a deletion that can be undone.
class VRUTILS_API vrCopyFileException : public vrStorageException {
  public:
    /// The constructor of `vrStorageException`.
    using vrStorageException::vrStorageException;
};

/// A file could not be removed on the way to a deletion that can be undone.
class VRUTILS_API vrDeleteFileException : public vrStorageException {
  public:
    /// The constructor of `vrStorageException`.
    using vrStorageException::vrStorageException;
};

} // namespace vrUtils::Storage

#endif
