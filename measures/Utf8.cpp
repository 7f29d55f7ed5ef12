#include "measures/Utf8.h"

#include "foundation/Platform.h"

namespace vrUtils {

namespace {

// The most bytes that one 16-bit unit takes.
constexpr std::size_t bytesPerUnit = 3;

} // namespace

std::string wideToUtf8(std::wstring const& text) {
    if (text.empty())
        return {};
    std::string bytes(text.size() * bytesPerUnit, '\0');
    auto const length = WideCharToMultiByte(
        CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
        static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

std::wstring utf8ToWide(std::string const& text) {
    if (text.empty())
        return {};
    std::wstring units(text.size(), L'\0');
    auto const length = MultiByteToWideChar(
        CP_UTF8, 0, text.data(), static_cast<int>(text.size()), units.data(),
        static_cast<int>(units.size()));
    units.resize(static_cast<std::size_t>(length));
    return units;
}

} // namespace vrUtils
