#ifndef VORRANELOG_READABLEMEMORY_H
#define VORRANELOG_READABLEMEMORY_H

// Reading from addresses that nobody vouches for.

#include <cstddef>
#include <string_view>

namespace VorraneLog {

// The number of bytes from the address on that can be read without a fault, at most `most`.
std::size_t readableBytes(void const* address, std::size_t most) noexcept;

// What an untrusted pointer to a wide string leads to.
struct ProvenText {
    enum End { null, unreadable, terminator, bound };

    std::wstring_view text; // all of it readable, empty for a null pointer
    End end;                // what stands behind it
};

// The text at the pointer: up to its terminator, to memory that cannot be read, or to `most`
// characters. A pointer to an odd address counts as unreadable: no wide string stands there.
ProvenText provenText(wchar_t const* pointer, std::size_t most) noexcept;

} // namespace VorraneLog

#endif
