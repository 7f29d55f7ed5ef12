#include "foundation/PortNumber.h"

#include <limits>
#include <locale>
#include <sstream>

namespace vrUtils {

std::uint32_t portNumber(std::wstring const& text, std::uint32_t preset) {
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
