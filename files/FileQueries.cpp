#include "vrUtils/Files/FileQueries.h"

#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "vrUtils/vrException.h"

namespace vrUtils::Files {

namespace {

constexpr std::int64_t ticksPerHour = 36'000'000'000;

std::uint64_t joined(DWORD high, DWORD low) { return static_cast<std::uint64_t>(high) << 32 | low; }

std::uint64_t ticks(FILETIME const& time) {
    return joined(time.dwHighDateTime, time.dwLowDateTime);
}

// One call gives attributes, times and size without opening the file.
bool query(std::wstring const& text, WIN32_FILE_ATTRIBUTE_DATA& data) {
    return GetFileAttributesExW(text.c_str(), GetFileExInfoStandard, &data) != FALSE;
}

WIN32_FILE_ATTRIBUTE_DATA queryOrThrow(vr::Path const& path) {
    auto const text = path.components().wholePath();
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!query(text, data)) {
        auto const error = GetLastError();
        throw vrException(
            __LINE__,
            composeMessage(L"GetFileAttributesEx failed on \"", text, L"\" - error ", error));
    }
    return data;
}

} // namespace

bool FileExists(vr::Path const& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    return query(path.components().wholePath(), data);
}

std::uint64_t FileLength(vr::Path const& path) {
    auto const data = queryOrThrow(path);
    return joined(data.nFileSizeHigh, data.nFileSizeLow);
}

std::uint64_t FileModificationDateTime(vr::Path const& path) {
    return ticks(queryOrThrow(path).ftLastWriteTime);
}

bool FileIsOffline(vr::Path const& path) {
    return (queryOrThrow(path).dwFileAttributes & FILE_ATTRIBUTE_OFFLINE) != 0;
}

std::uint32_t GetAgeOfFileInHours(vr::Path const& path) {
    auto const text = path.components().wholePath();
    FILETIME now;
    GetSystemTimeAsFileTime(&now);

    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!query(text, data))
        throw vrException(__LINE__, composeMessage(L"Unable to determine age of file ", text));

    // Subtracted without sign, since no time that a file system may report can overflow that.
    auto const age = static_cast<std::int64_t>(ticks(now) - ticks(data.ftLastWriteTime));
    return static_cast<std::uint32_t>(age / ticksPerHour);
}

bool DeleteFileIfExists(vr::Path const& path) {
    if (!FileExists(path))
        return true;
    return DeleteFileW(path.components().wholePath().c_str()) != FALSE;
}

} // namespace vrUtils::Files
