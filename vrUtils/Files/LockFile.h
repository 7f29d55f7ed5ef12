#ifndef VRUTILS_FILES_LOCKFILE_H
#define VRUTILS_FILES_LOCKFILE_H

/// @file
/// Exclusive use of a file across processes and computers.

#include "vrUtils/Files/Exceptions.h"
#include "vrUtils/Files/FileHandle.h"
#include "vrUtils/Path.h"

#include <string>

namespace vrUtils::Files {

/// Holds a file for one holder at a time, among all processes and computers that see it and ask in
/// this way. An object holds its lock from construction to destruction.
///
/// The lock is a second file beside the protected one, with ".lck" added to its name, that is kept
/// open without sharing; the protected file itself is not touched and need not exist. The lock file
/// holds the name of the holder's computer, in UTF-16 with no byte order mark, for people who look
/// at one that was left behind. One whose holder died counts for nothing: the next taker replaces
/// it. `docs/lock-files.md` tells what is promised, and between whom.
///
/// Each step is logged at level 7.
///
/// **Copies share the handle**, and each of them would release the lock: use a copy for nothing but
/// to look at. An object belongs to one thread at a time.
///
/// @code
/// try {
///     vrUtils::Files::LockFile const lock(clip);
///     changeInPlace(clip);
/// } catch (vrUtils::Files::LockFileException const&) {
///     // somebody else has it
/// }
/// @endcode
class VRUTILS_API LockFile {
  public:
    /// Takes the lock, or fails at once: there is no waiting.
    /// @param path the file to protect
    /// @throws LockFileException "Unable to lock " and the path: another holder has it, or the lock
    ///         file cannot be made, written or locked. It then stays where it is, to be replaced
    explicit LockFile(vr::Path const& path);

    /// Shares the handle; see above.
    LockFile(LockFile const&);
    /// As a copy; the lock that this object held is not given back.
    LockFile& operator=(LockFile const&);

    /// Gives the lock back and removes the lock file, whatever fails on the way. If another holder
    /// takes the lock in the middle of it, the file is that one's and stays.
    virtual ~LockFile();

  private:
    static vr::Path GetLockFilePath(vr::Path const& path);
    void WriteAndLockName();
    void Unlock();
    void release();

    FileHandleWriteExclusive m_handle;
    vr::Path m_lockedPath;
    std::wstring m_lockHolder;
};

} // namespace vrUtils::Files

#endif
