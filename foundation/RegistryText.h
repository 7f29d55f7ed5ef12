#ifndef FOUNDATION_REGISTRYTEXT_H
#define FOUNDATION_REGISTRYTEXT_H

#include "foundation/Platform.h"

#include <cstddef>
#include <optional>
#include <string>

namespace vrUtils {

// A REG_SZ or REG_EXPAND_SZ value as it is stored, up to its first zero character. None if there is
// no such value, if it is longer than the limit, has an odd length, or does not end with a zero
// character; an empty value is the empty text.
// @param maximumBytes even; the terminator counts
std::optional<std::wstring>
readRegistryText(HKEY key, std::wstring const& name, std::size_t maximumBytes);

} // namespace vrUtils

#endif
