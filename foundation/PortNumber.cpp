#include "foundation/PortNumber.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

namespace vrUtils {

namespace {

// So many digits never overflow, and need no stream.
constexpr std::size_t safeDigits = 9;

bool isDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

std::uint32_t numberOf(std::wstring_view digits) {
    std::uint32_t number = 0;
    for (auto const digit : digits)
        number = number * 10 + static_cast<std::uint32_t>(digit - L'0');
    return number;
}

} // namespace

std::uint32_t portNumber(std::wstring const& text, std::uint32_t preset) {
    auto const digits = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
    if (digits > 0 && digits <= safeDigits)
        return numberOf(std::wstring_view(text).substr(0, digits));

    // Blanks, signs and overflow, as a stream reads them.
    std::wistringstream stream(text);
    stream.imbue(std::locale::classic());
    std::uint32_t number = 0;
    stream >> number;
    // A number too large fails as well, and leaves the largest value behind.
    if (stream.fail() && number != std::numeric_limits<std::uint32_t>::max())
        return preset;
    return number;
}

} // namespace vrUtils
