#ifndef VRUTILS_STORAGE_TEMPFOLDER_H
#define VRUTILS_STORAGE_TEMPFOLDER_H

/// @file
/// A folder that lasts as long as an object.

#include "vrUtils/Path.h"

#include <cstdint>
#include <string>

namespace vrUtils::Storage {

/// What to make of a folder that is there already.
enum CreateBehaviour : std::int32_t {
    UseExisting = 0,     ///< use it; it stays when the object goes
    NewNameIfExists = 1, ///< make a numbered one beside it
};

/// How a folder goes that the object has made.
enum DeleteBehaviour : std::int32_t {
    DeleteIfEmpty = 0, ///< only if nothing is in it
    DeleteAlways = 1,  ///< with all that it holds; see `DeleteDirectory`
};

/// Makes a folder when it is built, and removes it when it goes, if it has made it. What else is in
/// the folder, and who put it there, does not matter.
///
/// A folder that could not be made is no exception: `Created` tells. The parent must be there. An
/// object belongs to one thread at a time; none can be copied.
///
/// @code
/// TempFolder const work(path, NewNameIfExists, DeleteAlways, L"Transcoder");
/// if (!work.Created()) ...
/// auto const clip = work.Name() + vr::Path::file(L"clip.mxf");
/// @endcode
class VRUTILS_API TempFolder {
  public:
    /// Makes the folder. With `NewNameIfExists` and a folder that is there, the first of the names
    /// `work.01\` to `work.99\` and `work.100\` is made that is free. They follow from the text
    /// in front of its last separator: `C:\tmp\work\` gives `C:\tmp\work.01\`, but `C:\tmp\work`
    /// gives `C:\tmp.01\`.
    ///
    /// Logs `Created temporary folder "PATH"` or `Using temporary folder "PATH"` at level 7, or
    /// `Unable to create temporary folder "PATH"` at level 4. A value that is no behaviour fails.
    /// @param logModule the module name of the log lines
    TempFolder(
        vr::Path const& folder, CreateBehaviour createBehaviour, DeleteBehaviour deleteBehaviour,
        std::wstring const& logModule);

    TempFolder(TempFolder const&) = delete;
    TempFolder& operator=(TempFolder const&) = delete;

    /// Removes the folder if this object has made it. Logs `Unable to delete temp folder "PATH"` at
    /// level 4 if it cannot be removed, or has something in it that is to stay.
    ~TempFolder();

    /// Whether this object has made the folder, and will remove it.
    bool Created() const;

    /// The folder that was made; **empty if it was there already**, which the log line shows too;
    /// the folder that was wanted if it could not be made.
    vr::Path Name() const;

  private:
    void report(bool failed) const;
    void remove() const;

    vr::Path m_folder;
    std::wstring m_logModule;
    bool m_created = false;
    DeleteBehaviour m_deleteBehaviour;
    CreateBehaviour m_createBehaviour;
};

} // namespace vrUtils::Storage

#endif
