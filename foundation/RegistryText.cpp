#include "foundation/RegistryText.h"

#include <memory>

namespace vrUtils {

std::optional<std::wstring>
readRegistryText(HKEY key, std::wstring const& name, std::size_t maximumBytes) {
    // Not filled with zeros, unlike any container's.
    std::unique_ptr<wchar_t[]> const text(new wchar_t[maximumBytes / sizeof(wchar_t)]);
    auto length = static_cast<DWORD>(maximumBytes);
    DWORD type = REG_NONE;
    auto const error = RegQueryValueExW(
        key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.get()), &length);
    if (error != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
        return std::nullopt;

    if (length == 0)
        return std::wstring();
    if (length % sizeof(wchar_t) != 0 || text[length / sizeof(wchar_t) - 1] != L'\0')
        return std::nullopt;
    return text.get();
}

} // namespace vrUtils
