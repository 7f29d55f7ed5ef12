#ifndef VRUTILS_STORAGE_RECOVERABLEFILEDELETER_H
#define VRUTILS_STORAGE_RECOVERABLEFILEDELETER_H

/// @file
/// A deletion that can be undone.

#include "vrUtils/Path.h"

#include <memory>
#include <string>

namespace vrUtils::Storage {

/// Takes a file out of the way so that an operation that fails can put it back. The file is copied
/// into the folder `Recovery\` beside it, then deleted; the copy goes for good when the object
/// goes. Until then the file or its copy is there, whole, at every moment; a process that dies in
/// between leaves the copy in `Recovery\`. `docs/deletion.md` tells the rest.
///
/// The folder goes, with all that is in it, with the object that made it: **the first object among
/// the files of one folder removes the copies of the others.** If the folder was there before, it
/// stays, and so does the copy.
///
/// An object belongs to one thread at a time; none can be copied.
///
/// @code
/// RecoverableFileDeleter old(clip, L"Transfer");
/// old.Delete();
/// try {
///     transfer(source, clip);
/// } catch (...) {
///     old.Recover();
///     throw;
/// }
/// @endcode
class VRUTILS_API RecoverableFileDeleter {
  public:
    /// Touches nothing on disk.
    /// @param logModule the module name of the log lines, which are those of `TempFolder`
    RecoverableFileDeleter(vr::Path const& file, std::wstring logModule);

    RecoverableFileDeleter(RecoverableFileDeleter const&) = delete;
    RecoverableFileDeleter& operator=(RecoverableFileDeleter const&) = delete;

    /// Makes the deletion final, if this object made the folder. Never throws.
    ~RecoverableFileDeleter();

    /// Copies the file and deletes it. A second deletion ends the first one's folder once it has
    /// its own, which are the same folder: after `Recover` it fails, and the file stays.
    /// @throws vrCopyFileException the Windows error and the path of the copy; the file stays
    /// @throws vrDeleteFileException the Windows error and the path of the file; the file and its
    ///         copy stay
    void Delete();

    /// Copies the file back, over whatever is in its place. The copy stays as well.
    /// @throws vrCopyFileException the Windows error and the path of the file. **The copy is then
    ///         the only whole one, and goes with the object**: keep it until another call has
    ///         worked
    void Recover();

  private:
    class Implementation;

    std::unique_ptr<Implementation> m_implementation;
};

} // namespace vrUtils::Storage

#endif
