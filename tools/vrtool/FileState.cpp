#include "tools/vrtool/FileState.h"

#include "tools/vrtool/Platform.h"
#include "tools/vrtool/TransferFailure.h"

#include <algorithm>
#include <array>

namespace {

std::uint64_t joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

// How finely file systems keep times: a microsecond, a millisecond, ten of them, one second, two.
constexpr std::array<std::uint64_t, 5> timestampSteps = {
    10, 10'000, 100'000, 10'000'000, 20'000'000};

} // namespace

std::optional<FileState> stateOf(vr::Path const& path) {
    auto const text = path.components().wholePath();
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(text.c_str(), GetFileExInfoStandard, &data)) {
        auto const error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
            return std::nullopt;
        throw TransferFailure(L"cannot look at", path, error);
    }
    auto const& written = data.ftLastWriteTime;
    return FileState{
        joined(data.nFileSizeHigh, data.nFileSizeLow),
        joined(written.dwHighDateTime, written.dwLowDateTime),
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
        (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0};
}

// A file system may round up or down; only a time that has been rounded may be off.
bool isCopyOf(FileState const& source, FileState const& target) {
    if (target.isFolder || source.size != target.size)
        return false;
    auto const [earlier, later] = std::minmax(source.lastWrite, target.lastWrite);
    auto const distance = later - earlier;
    return distance == 0 ||
           std::any_of(timestampSteps.begin(), timestampSteps.end(), [&](std::uint64_t step) {
               return distance < step && target.lastWrite % step == 0;
           });
}
