#include "tests/support/WideText.h"

#include "foundation/Platform.h"

namespace test {

std::string utf8(std::wstring_view text) {
    if (text.empty())
        return {};
    // No character takes more than three bytes for each of its 16-bit units.
    std::string result(text.size() * 3, '\0');
    int const count = WideCharToMultiByte(
        CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
        static_cast<int>(result.size()), nullptr, nullptr);
    result.resize(static_cast<std::size_t>(count));
    return result;
}

std::wstring fromUtf8(std::string_view text) {
    if (text.empty())
        return {};
    std::wstring result(text.size(), L'\0');
    int const count = MultiByteToWideChar(
        CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
        static_cast<int>(result.size()));
    result.resize(static_cast<std::size_t>(count));
    return result;
}

} // namespace test
