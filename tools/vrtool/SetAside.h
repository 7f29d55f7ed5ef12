#ifndef TOOLS_VRTOOL_SETASIDE_H
#define TOOLS_VRTOOL_SETASIDE_H

#include "vrUtils/Path.h"
#include "vrUtils/Storage.h"

// The folder "Recovery" of the files of a folder, there for as long as an object lives; it goes
// with the last one, unless something is in it. Several programs may have the same one at a time.
class RecoveryFolder {
  public:
    // @throws TransferFailure
    explicit RecoveryFolder(vr::Path const& folder);
    RecoveryFolder(RecoveryFolder const&) = delete;
    RecoveryFolder& operator=(RecoveryFolder const&) = delete;
    ~RecoveryFolder();

  private:
    vr::Path m_folder;
    void* m_handle;
};

// A file that another one is about to replace: copied into the folder "Recovery" beside it, so that
// it can be put back, and left in its place until then. The copy goes with the object; a process
// that dies leaves it.
class SetAside {
  public:
    // @throws TransferFailure if it cannot be copied
    explicit SetAside(vr::Path const& file);
    SetAside(SetAside const&) = delete;
    SetAside& operator=(SetAside const&) = delete;

    // Copies it back over whatever is in its place.
    // @throws TransferFailure telling where the copy is, which then stays
    void putBack();

  private:
    void copy();

    vr::Path m_file;
    vr::Path m_copy;
    // The copy goes ahead of its folder.
    RecoveryFolder m_folder;
    vrUtils::Storage::TempFileDeleter m_copyDeleter;
    vrUtils::Storage::RecoverableFileDeleter m_recovery;
};

#endif
