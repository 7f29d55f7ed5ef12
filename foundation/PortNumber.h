#ifndef FOUNDATION_PORTNUMBER_H
#define FOUNDATION_PORTNUMBER_H

#include <cstdint>
#include <string>

namespace vrUtils {

// Reads a port as a wide text stream reads an unsigned decimal number: blanks before it are
// skipped, what follows it is ignored, a minus sign wraps it around. Text that begins with no
// number gives the preset, a number too large 0xFFFFFFFF.
std::uint32_t portNumber(std::wstring const& text, std::uint32_t preset);

} // namespace vrUtils

#endif
