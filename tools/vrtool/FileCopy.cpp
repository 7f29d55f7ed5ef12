#include "tools/vrtool/FileCopy.h"

#include "tools/vrtool/Platform.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"
#include "vrUtils/Files.h"
#include "vrUtils/vrException.h"
#include "vrUtils/vrStatCollector.h"

#include <algorithm>

namespace Files = vrUtils::Files;

namespace {

constexpr int bytesReadStat = 0x10000;
constexpr int bytesWrittenStat = 0x10001;

[[noreturn]] void fail(wchar_t const* what, vr::Path const& path, DWORD error) {
    throw TransferFailure(
        std::wstring(what) + L" \"" + path.components().wholePath() + L"\": " + systemText(error));
}

DWORD readPiece(
    Files::FileHandle const& file, vr::Path const& path, std::vector<unsigned char>& buffer) {
    DWORD count = 0;
    if (!ReadFile(
            file.Handle(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr)) {
        auto const error = GetLastError();
        fail(L"cannot read", path, error);
    }
    return count;
}

void writePiece(
    Files::FileHandle const& file, vr::Path const& path, std::vector<unsigned char> const& buffer,
    DWORD size) {
    DWORD count = 0;
    if (!WriteFile(file.Handle(), buffer.data(), size, &count, nullptr)) {
        auto const error = GetLastError();
        fail(L"cannot write", path, error);
    }
    // A full disk may take a part of a piece.
    if (count != size)
        fail(L"cannot write all of", path, ERROR_DISK_FULL);
}

void copyTime(
    Files::FileHandle const& from, vr::Path const& source, Files::FileHandle const& to,
    vr::Path const& target) {
    FILETIME written;
    if (!GetFileTime(from.Handle(), nullptr, nullptr, &written)) {
        auto const error = GetLastError();
        fail(L"cannot read the time of", source, error);
    }
    if (!SetFileTime(to.Handle(), nullptr, nullptr, &written)) {
        auto const error = GetLastError();
        fail(L"cannot set the time of", target, error);
    }
}

void learnFormat(
    CopiedFile& copied, vr::Path const& source, std::vector<unsigned char> const& buffer,
    std::size_t size) {
    try {
        copied.format = audioFormatOf(
            source.components().extension(), buffer.data(), std::min(size, audioHeadSize));
    } catch (vrException const& failure) {
        copied.formatFailure = failure.message();
    }
}

} // namespace

CopiedFile copyFile(
    vr::Path const& source, vr::Path const& target, std::vector<unsigned char>& buffer,
    CopyListener const& listener) {
    Files::FileHandleRead from;
    from.Open(source);
    Files::FileHandleWriteNew to;
    to.Open(target);

    auto& stats = vrStatCollector::Singleton();
    CopiedFile copied;
    while (auto const size = readPiece(from, source, buffer)) {
        stats.AddStat(bytesReadStat, size);
        if (copied.size == 0)
            learnFormat(copied, source, buffer, size);
        writePiece(to, target, buffer, size);
        stats.AddStat(bytesWrittenStat, size);
        copied.size += size;
        listener(copied.size);
    }
    if (copied.size == 0)
        learnFormat(copied, source, buffer, 0);
    copyTime(from, source, to, target);
    return copied;
}
