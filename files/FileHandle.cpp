#include "vrUtils/Files/FileHandle.h"

#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "vrUtils/vrException.h"

namespace vrUtils::Files {

FileHandle::FileHandle() : m_handle(INVALID_HANDLE_VALUE) {}

// Copies share the value as it stands: no class of this family duplicates a handle.
FileHandle::FileHandle(FileHandle const&) = default;
FileHandle& FileHandle::operator=(FileHandle const&) = default;

FileHandle::~FileHandle() { Close(); }

void FileHandle::Open(vr::Path const& path) {
    auto const text = path.components().wholePath();
    m_handle = CreateFileW(
        text.c_str(), Access(), ShareMode(), nullptr, CreationDisposition(), FILE_ATTRIBUTE_NORMAL,
        nullptr);
    if (m_handle == INVALID_HANDLE_VALUE)
        throw vrException(__LINE__, composeMessage(L"Unable to open file ", text));
}

void FileHandle::Close() {
    if (m_handle == INVALID_HANDLE_VALUE)
        return;
    CloseHandle(m_handle);
    m_handle = INVALID_HANDLE_VALUE;
}

std::uint32_t FileHandleRead::Access() const { return GENERIC_READ; }

std::uint32_t FileHandleRead::ShareMode() const { return FILE_SHARE_READ; }

std::uint32_t FileHandleRead::CreationDisposition() const { return OPEN_EXISTING; }

std::uint32_t FileHandleWrite::Access() const { return GENERIC_WRITE; }

std::uint32_t FileHandleWrite::ShareMode() const { return FILE_SHARE_READ; }

std::uint32_t FileHandleWriteNew::CreationDisposition() const { return CREATE_ALWAYS; }

std::uint32_t FileHandleWriteExisting::CreationDisposition() const { return OPEN_EXISTING; }

std::uint32_t FileHandleWriteNewOrExisting::CreationDisposition() const { return OPEN_ALWAYS; }

std::uint32_t FileHandleWriteExclusive::Access() const { return GENERIC_READ | GENERIC_WRITE; }

// What lock files rest on: nobody gets in while this handle is open.
std::uint32_t FileHandleWriteExclusive::ShareMode() const { return 0; }

std::uint32_t FileHandleWriteExclusive::CreationDisposition() const { return CREATE_ALWAYS; }

} // namespace vrUtils::Files
