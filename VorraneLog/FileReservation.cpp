#include "VorraneLog/FileReservation.h"

#include <cstdint>
#include <utility>

#include <fmt/format.h>
#include <fmt/xchar.h>

namespace VorraneLog {

namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// The folder with links and short names resolved; as it was given if the system cannot tell.
std::wstring finalPath(std::wstring const& folder) {
    auto const handle = ownFile(CreateFileW(
        folder.c_str(), 0, shareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!handle)
        return folder;
    std::wstring path(GetFinalPathNameByHandleW(handle.get(), nullptr, 0, 0), L'\0');
    auto const length =
        GetFinalPathNameByHandleW(handle.get(), path.data(), static_cast<DWORD>(path.size()), 0);
    if (length == 0 || length >= path.size())
        return folder;
    path.resize(length);
    return path;
}

std::wstring upperCase(std::wstring text) {
    auto const size = static_cast<int>(text.size());
    LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, text.data(), size, text.data(), size);
    return text;
}

// The names of objects are shorter than paths may be, so the path goes in as a number (FNV-1a). Two
// paths with the same number only cost one of them a numbered name.
std::wstring claimName(std::wstring const& path) {
    std::uint64_t number = 0xCBF29CE484222325;
    for (wchar_t const unit : path)
        number = (number ^ unit) * 0x100000001B3;
    return fmt::format(L"Global\\VorraneLog-{:016x}", number);
}

// A name that exists already, or that another user keeps to himself, is taken.
Handle claim(std::wstring const& name) {
    Handle object(CreateMutexW(nullptr, FALSE, name.c_str()));
    auto const error = GetLastError();
    return error != ERROR_ALREADY_EXISTS ? std::move(object) : nullptr;
}

} // namespace

FileReservation::FileReservation(
    std::wstring const& folder, std::vector<std::wstring> const& names) {
    auto const place = finalPath(folder) + L'\\';
    std::vector<Handle> claims;
    for (auto const& name : names) {
        auto claimed = claim(claimName(upperCase(place + name)));
        if (!claimed)
            return;
        claims.push_back(std::move(claimed));
    }
    m_claims = std::move(claims);
}

} // namespace VorraneLog
