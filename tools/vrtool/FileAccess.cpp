#include "tools/vrtool/FileAccess.h"

#include "tools/vrtool/TransferFailure.h"

namespace {

OwnedFile
open(vr::Path const& path, wchar_t const* what, DWORD access, DWORD disposition, DWORD hints) {
    OwnedFile file{{}, path};
    auto const text = path.components().wholePath();
    auto* const handle = CreateFileW(
        text.c_str(), access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL | hints,
        nullptr);
    auto const error = GetLastError();
    file.handle.reset(handle);
    if (handle == INVALID_HANDLE_VALUE)
        throw TransferFailure(what, path, error);
    return file;
}

} // namespace

OwnedFile openToRead(vr::Path const& path) {
    return open(path, L"cannot read", GENERIC_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
}

OwnedFile openToWrite(vr::Path const& path) {
    return open(path, L"cannot write", GENERIC_WRITE, CREATE_ALWAYS, 0);
}

std::size_t readPiece(OwnedFile const& file, void* bytes, std::size_t size) {
    DWORD count = 0;
    if (!ReadFile(file.handle.get(), bytes, static_cast<DWORD>(size), &count, nullptr)) {
        auto const error = GetLastError();
        throw TransferFailure(L"cannot read", file.path, error);
    }
    return count;
}

void writePiece(OwnedFile const& file, void const* bytes, std::size_t size) {
    DWORD count = 0;
    if (!WriteFile(file.handle.get(), bytes, static_cast<DWORD>(size), &count, nullptr)) {
        auto const error = GetLastError();
        throw TransferFailure(L"cannot write", file.path, error);
    }
    // A full disk may take a part of a piece.
    if (count != size)
        throw TransferFailure(L"cannot write all of", file.path, ERROR_DISK_FULL);
}

void copyTime(OwnedFile const& from, OwnedFile const& to) {
    FILETIME written;
    if (!GetFileTime(from.handle.get(), nullptr, nullptr, &written)) {
        auto const error = GetLastError();
        throw TransferFailure(L"cannot read the time of", from.path, error);
    }
    if (!SetFileTime(to.handle.get(), nullptr, nullptr, &written)) {
        auto const error = GetLastError();
        throw TransferFailure(L"cannot set the time of", to.path, error);
    }
}
