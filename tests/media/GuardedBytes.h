#ifndef TESTS_MEDIA_GUARDEDBYTES_H
#define TESTS_MEDIA_GUARDEDBYTES_H

#include "foundation/Platform.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <vector>

namespace test {

// Bytes that end where memory ends: reading one byte more is an access violation, which ends the
// test program.
class GuardedBytes {
  public:
    explicit GuardedBytes(std::size_t capacity)
        : m_room((capacity + pageSize - 1) / pageSize * pageSize),
          m_pages(static_cast<unsigned char*>(
              VirtualAlloc(nullptr, m_room + pageSize, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS))) {
        DWORD before;
        if (!m_pages || (m_room && !VirtualProtect(m_pages, m_room, PAGE_READWRITE, &before)))
            throw std::bad_alloc();
    }

    explicit GuardedBytes(std::vector<unsigned char> const& bytes) : GuardedBytes(bytes.size()) {
        place(bytes);
    }

    GuardedBytes(GuardedBytes const&) = delete;
    GuardedBytes& operator=(GuardedBytes const&) = delete;

    ~GuardedBytes() { VirtualFree(m_pages, 0, MEM_RELEASE); }

    // Puts other bytes in the place of the last ones, no more than the capacity.
    void place(std::vector<unsigned char> const& bytes) {
        m_size = bytes.size();
        std::copy(bytes.begin(), bytes.end(), m_pages + m_room - m_size);
    }

    unsigned char const* data() const { return m_pages + m_room - m_size; }

    std::uint32_t size() const { return static_cast<std::uint32_t>(m_size); }

  private:
    static constexpr std::size_t pageSize = 4096;

    std::size_t m_room;
    unsigned char* m_pages;
    std::size_t m_size = 0;
};

} // namespace test

#endif
