#include "tools/vrtool/SetAside.h"

#include "tools/vrtool/FileAccess.h"
#include "tools/vrtool/RecoveryCopy.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"

namespace Storage = vrUtils::Storage;

namespace {

// A folder that is open without leave to delete it cannot be removed by others. Between its making
// and its opening it can: somebody else may have had it, and be done.
HANDLE openRecoveryFolder(vr::Path const& folder) {
    auto const text = folder.components().wholePath();
    for (auto attempts = 100;; --attempts) {
        CreateDirectoryW(text.c_str(), nullptr);
        auto* const handle = CreateFileW(
            text.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        auto const error = GetLastError();
        if (handle != INVALID_HANDLE_VALUE)
            return handle;
        if (error != ERROR_FILE_NOT_FOUND || attempts == 0)
            throw TransferFailure(L"cannot make the folder", folder, error);
    }
}

} // namespace

RecoveryFolder::RecoveryFolder(vr::Path const& folder)
    : m_folder(folder), m_handle(openRecoveryFolder(folder)) {}

RecoveryFolder::~RecoveryFolder() {
    auto const text = m_folder.components().wholePath();
    CloseHandle(m_handle);
    RemoveDirectoryW(text.c_str());
}

SetAside::SetAside(vr::Path const& file)
    : m_file(file),
      m_copy(recoveryCopyOf(file)),
      m_folder(recoveryFolderOf(file)),
      m_copyDeleter(m_copy),
      m_recovery(file, L"vrtool") {
    try {
        copy();
    } catch (Storage::vrCopyFileException const& failure) {
        throw TransferFailure(L"cannot copy the old file to", m_copy, failure.error());
    }
}

// The library's class copies a file and deletes it. The latter is not wanted here, and refused
// while the file is open.
void SetAside::copy() {
    {
        auto const held = openToRead(m_file);
        try {
            m_recovery.Delete();
        } catch (Storage::vrDeleteFileException const&) {
            return;
        }
    }
    // A file system that heeds no sharing has deleted it all the same.
    putBack();
}

void SetAside::putBack() {
    m_copyDeleter.SetFile({});
    try {
        m_recovery.Recover();
    } catch (Storage::vrCopyFileException const& failure) {
        throw TransferFailure(
            L"cannot put the old file back, which is kept as " + quoted(m_copy) + L": " +
            systemText(failure.error()));
    }
    m_copyDeleter.SetFile(m_copy);
}
