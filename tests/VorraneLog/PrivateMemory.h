#ifndef TESTS_VORRANELOG_PRIVATEMEMORY_H
#define TESTS_VORRANELOG_PRIVATEMEMORY_H

#include "foundation/Platform.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace test {

// Two pages of memory: the first can be read, the second is guarded as the test wants it.
class PrivatePage {
  public:
    static constexpr std::size_t size = 4096;

    explicit PrivatePage(DWORD secondProtection = PAGE_NOACCESS)
        : m_memory(static_cast<char*>(
              VirtualAlloc(nullptr, 2 * size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE))) {
        DWORD before = 0;
        if (m_memory == nullptr ||
            !VirtualProtect(m_memory + size, size, secondProtection, &before))
            throw std::runtime_error("no private memory");
    }

    PrivatePage(PrivatePage const&) = delete;
    PrivatePage& operator=(PrivatePage const&) = delete;

    ~PrivatePage() { VirtualFree(m_memory, 0, MEM_RELEASE); }

    char* start() const { return m_memory; }

    // The first address of the second page.
    char* end() const { return m_memory + size; }

    // The text at the very end of the first page, with no terminator behind it.
    wchar_t* lastCharacters(std::wstring_view text) const {
        auto const bytes = text.size() * sizeof(wchar_t);
        std::memcpy(end() - bytes, text.data(), bytes);
        return reinterpret_cast<wchar_t*>(end() - bytes);
    }

  private:
    char* m_memory;
};

} // namespace test

#endif
