#include "VorraneLog/ReadableMemory.h"

#include "foundation/Platform.h"

#include <algorithm>
#include <cstdint>

namespace VorraneLog {

namespace {

constexpr DWORD readableProtections = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY |
                                      PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE |
                                      PAGE_EXECUTE_WRITECOPY;

// Touching a guard page grows a stack, or uses up somebody's guard: it counts as unreadable.
bool isReadable(MEMORY_BASIC_INFORMATION const& region) noexcept {
    return region.State == MEM_COMMIT && (region.Protect & readableProtections) != 0 &&
           (region.Protect & PAGE_GUARD) == 0;
}

// The bytes from the address to the end of its readable region; 0 if it is in none.
std::size_t readableBytesOfRegion(char const* address) noexcept {
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) == 0 || !isReadable(region))
        return 0;
    auto const end = static_cast<char const*>(region.BaseAddress) + region.RegionSize;
    return static_cast<std::size_t>(end - address);
}

} // namespace

std::size_t readableBytes(void const* address, std::size_t most) noexcept {
    std::size_t proven = 0;
    while (proven < most) {
        auto const more = readableBytesOfRegion(static_cast<char const*>(address) + proven);
        if (more == 0)
            return proven;
        proven += more;
    }
    return most;
}

ProvenText provenText(wchar_t const* pointer, std::size_t most) noexcept {
    if (pointer == nullptr)
        return {{}, ProvenText::null};
    if (reinterpret_cast<std::uintptr_t>(pointer) % alignof(wchar_t) != 0)
        return {{}, ProvenText::unreadable};

    // Region by region, since a short text may stand in front of gigabytes.
    std::size_t length = 0;
    while (length < most) {
        auto const start = pointer + length;
        auto const bytes = readableBytesOfRegion(reinterpret_cast<char const*>(start));
        if (bytes == 0)
            return {{pointer, length}, ProvenText::unreadable};
        auto const units = std::min(bytes / sizeof(wchar_t), most - length);
        auto const found = std::char_traits<wchar_t>::find(start, units, L'\0');
        if (found != nullptr)
            return {{pointer, static_cast<std::size_t>(found - pointer)}, ProvenText::terminator};
        length += units;
    }
    return {{pointer, most}, ProvenText::bound};
}

} // namespace VorraneLog
