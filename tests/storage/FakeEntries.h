#ifndef TESTS_STORAGE_FAKEENTRIES_H
#define TESTS_STORAGE_FAKEENTRIES_H

// The entries of every folder, with attributes that no disk at hand keeps:
//
//     test::FakeEntries const entries{{L"a.xml", FILE_ATTRIBUTE_OFFLINE}};
//     EXPECT_EQ(L"", FindSidecarFile(...));
//     EXPECT_EQ(0, entries.openSearches());

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace test {

class FakeEntries {
  public:
    // A name and its attributes.
    using Entry = std::pair<std::wstring, DWORD>;

    FakeEntries(std::initializer_list<Entry> entries) : FakeEntries(std::vector<Entry>(entries)) {}

    explicit FakeEntries(std::vector<Entry> entries) : m_entries(std::move(entries)) {}

    // The patterns that were searched for, in order.
    std::vector<std::wstring> const& patterns() const noexcept { return m_patterns; }

    int openSearches() const noexcept { return m_openSearches; }

  private:
    // No real search has it.
    static HANDLE search() noexcept { return reinterpret_cast<HANDLE>(0x5EA4C4); }

    HANDLE begin(wchar_t const* pattern, WIN32_FIND_DATAW* data) {
        m_patterns.emplace_back(pattern);
        m_next = 0;
        if (!give(data)) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return INVALID_HANDLE_VALUE;
        }
        ++m_openSearches;
        return search();
    }

    BOOL give(WIN32_FIND_DATAW* data) {
        if (m_next == m_entries.size()) {
            SetLastError(ERROR_NO_MORE_FILES);
            return FALSE;
        }
        auto const& [name, attributes] = m_entries[m_next++];
        *data = {};
        data->dwFileAttributes = attributes;
        name.copy(data->cFileName, MAX_PATH - 1);
        return TRUE;
    }

    BOOL close(HANDLE handle) {
        if (handle != search())
            return FALSE;
        --m_openSearches;
        return TRUE;
    }

    std::vector<Entry> m_entries;
    std::size_t m_next = 0;
    std::vector<std::wstring> m_patterns;
    int m_openSearches = 0;
    ImportHook<decltype(FindFirstFileW)> m_begin{
        "FindFirstFileW",
        [this](wchar_t const* pattern, WIN32_FIND_DATAW* data) { return begin(pattern, data); }};
    ImportHook<decltype(FindNextFileW)> m_give{
        "FindNextFileW", [this](HANDLE, WIN32_FIND_DATAW* data) { return give(data); }};
    ImportHook<decltype(FindClose)> m_close{
        "FindClose", [this](HANDLE handle) { return close(handle); }};
};

} // namespace test

#endif
