#include "tools/vrtool/Utf8.h"

#include "tools/vrtool/Platform.h"

namespace {

std::wstring decoded(std::string_view text, UINT codePage) {
    auto const bytes = static_cast<int>(text.size());
    if (bytes == 0)
        return {};

    int const needed = MultiByteToWideChar(codePage, 0, text.data(), bytes, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), bytes, result.data(), needed);
    return result;
}

} // namespace

std::string toUtf8(std::wstring_view text) {
    auto const units = static_cast<int>(text.size());
    if (units == 0)
        return {};

    int const needed =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, result.data(), needed, nullptr, nullptr);
    return result;
}

std::wstring fromUtf8(std::string_view text) { return decoded(text, CP_UTF8); }

std::wstring fromAnsi(std::string_view text) { return decoded(text, CP_ACP); }
