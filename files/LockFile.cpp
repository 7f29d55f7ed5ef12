#include "vrUtils/Files/LockFile.h"

#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "vrUtils/Process.h"
#include "vrUtils/vrException.h"

namespace vrUtils::Files {

namespace {

void trace(wchar_t const* format, vr::Path const& path) {
    VL_WriteLog(LogLevel::trace, logModule, format, path.components().wholePath().c_str());
}

void trace(wchar_t const* format, std::wstring const& holder, vr::Path const& path) {
    VL_WriteLog(
        LogLevel::trace, logModule, format, holder.c_str(), path.components().wholePath().c_str());
}

DWORD bytesOf(std::wstring const& name) {
    return static_cast<DWORD>(name.size() * sizeof(wchar_t));
}

} // namespace

LockFile::LockFile(vr::Path const& path) : m_lockedPath(path) {
    try {
        trace(L"Locking file [%s]", m_lockedPath);
        trace(L"Opening lock file for [%s]", m_lockedPath);
        m_handle.Open(GetLockFilePath(m_lockedPath));
        trace(L"Opened lock file for [%s]", m_lockedPath);
        WriteAndLockName();
    } catch (vrException const&) {
        trace(L"Failed to lock file [%s]", m_lockedPath);
        throw LockFileException(m_lockedPath);
    }
}

LockFile::LockFile(LockFile const&) = default;

LockFile& LockFile::operator=(LockFile const&) = default;

LockFile::~LockFile() {
    try {
        release();
    } catch (...) {
        // No memory for a path: the handle closes with its owner, and the next taker replaces the
        // file.
    }
}

vr::Path LockFile::GetLockFilePath(vr::Path const& path) {
    return vr::Path(path.components().wholePath() + L".lck", vr::Path::eDetect);
}

void LockFile::WriteAndLockName() {
    m_lockHolder = Process::GetComputerNameW();
    auto const length = bytesOf(m_lockHolder);

    // What fails here reaches the caller as LockFileException, without a reason.
    trace(L"Writing name [%s] to lock file for [%s]", m_lockHolder, m_lockedPath);
    DWORD written = 0;
    if (!WriteFile(m_handle.Handle(), m_lockHolder.data(), length, &written, nullptr))
        throw vrException();
    trace(L"Wrote name [%s] to lock file for [%s]", m_lockHolder, m_lockedPath);

    trace(L"Locking lock file for [%s]", m_lockedPath);
    OVERLAPPED fromStart{};
    if (!LockFileEx(
            m_handle.Handle(), LOCKFILE_FAIL_IMMEDIATELY | LOCKFILE_EXCLUSIVE_LOCK, 0, length, 0,
            &fromStart))
        throw vrException();
    trace(L"Locked lock file for [%s]", m_lockedPath);
}

void LockFile::Unlock() {
    trace(L"Unlocking lock file for [%s]", m_lockedPath);
    if (UnlockFile(m_handle.Handle(), 0, 0, bytesOf(m_lockHolder), 0))
        trace(L"Unlocked lock file for [%s]", m_lockedPath);
    else
        trace(L"Failed to unlock lock file for [%s]", m_lockedPath);
}

// The file can only be deleted once it is closed. Another holder may take it in between: it then
// shares nothing, and the deletion fails without harm.
void LockFile::release() {
    trace(L"Unlocking file [%s]", m_lockedPath);
    Unlock();

    trace(L"Closing lock file for [%s]", m_lockedPath);
    m_handle.Close();
    trace(L"Closed lock file for [%s]", m_lockedPath);

    trace(L"Deleting lock file for [%s]", m_lockedPath);
    DeleteFileW(GetLockFilePath(m_lockedPath).components().wholePath().c_str());
    trace(L"Deleted lock file for [%s]", m_lockedPath);
}

} // namespace vrUtils::Files
