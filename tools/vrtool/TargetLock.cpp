#include "tools/vrtool/TargetLock.h"

#include "tools/vrtool/OwnedHandle.h"
#include "tools/vrtool/TransferFailure.h"

namespace Files = vrUtils::Files;

namespace {

// The library does not tell why a lock is refused, so the lock file is asked for once more.
TransferFailure refusal(vr::Path const& target) {
    auto const lockFile = lockFileOf(target);
    auto const text = lockFile.components().wholePath();
    auto* const handle = CreateFileW(
        text.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    auto const error = GetLastError();
    OwnedHandle const probe(handle);
    // If it is there now, the other one has just finished.
    if (handle != INVALID_HANDLE_VALUE || error == ERROR_SHARING_VIOLATION)
        return TransferFailure(L"another transfer has " + quoted(target));
    return {L"cannot make the lock file", lockFile, error};
}

} // namespace

Files::LockFile lockTarget(vr::Path const& target) {
    try {
        return Files::LockFile(target);
    } catch (Files::LockFileException const&) {
        throw refusal(target);
    }
}

void removeDeadLock(vr::Path const& target) {
    DeleteFileW(lockFileOf(target).components().wholePath().c_str());
}

vr::Path lockFileOf(vr::Path const& target) {
    return vr::Path::file(target.components().wholePath() + L".lck");
}
