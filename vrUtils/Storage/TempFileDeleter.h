#ifndef VRUTILS_STORAGE_TEMPFILEDELETER_H
#define VRUTILS_STORAGE_TEMPFILEDELETER_H

/// @file
/// A file that lasts as long as an object.

#include "vrUtils/Path.h"

namespace vrUtils::Storage {

/// Deletes one file when it goes, whoever made it. Whether it could is not reported: no path and a
/// file that has gone are no failures. **Each copy deletes the file.** An object belongs to one
/// thread at a time.
///
/// @code
/// TempFileDeleter partial(target);
/// write(target);
/// partial.SetFile({}); // it is whole: keep it
/// @endcode
class VRUTILS_API TempFileDeleter {
  public:
    /// Nothing to delete yet.
    TempFileDeleter();

    /// Deletes this file.
    explicit TempFileDeleter(vr::Path const& file);

    /// Deletes the file too; see above.
    TempFileDeleter(TempFileDeleter const&);
    /// Takes over the other's file; the one that this object had stays.
    TempFileDeleter& operator=(TempFileDeleter const&);

    ~TempFileDeleter();

    /// Replaces the file; the earlier one stays. An empty path keeps all.
    void SetFile(vr::Path const& file);

  private:
    vr::Path m_file;
};

} // namespace vrUtils::Storage

#endif
