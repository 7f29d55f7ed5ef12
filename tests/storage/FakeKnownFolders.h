#ifndef TESTS_STORAGE_FAKEKNOWNFOLDERS_H
#define TESTS_STORAGE_FAKEKNOWNFOLDERS_H

// The folders that the shell knows by an id, all of them one folder of the test's own:
//
//     test::FakeKnownFolders const shell(folder.path());
//     GetPFRCommonAppDataFolder(nullptr);
//     EXPECT_EQ(FOLDERID_ProgramData, shell.id());

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"

#include <shlobj.h>

#include <string>
#include <utility>

namespace test {

class FakeKnownFolders {
  public:
    explicit FakeKnownFolders(std::wstring path) : m_path(std::move(path)) {}

    // The folder that was asked for last.
    KNOWNFOLDERID const& id() const noexcept { return m_id; }

    unsigned calls() const noexcept { return m_ask.calls(); }

    // Whether each call was without flags and for the user of the process.
    bool wereAskedCleanly() const noexcept { return m_clean; }

    // Whether the last answer was freed, and how often anything was.
    bool wasFreed() const noexcept { return m_freed == m_answer; }
    unsigned timesFreed() const noexcept { return m_free.calls(); }

  private:
    HRESULT answer(KNOWNFOLDERID const& id, DWORD flags, HANDLE token, wchar_t** text) {
        m_id = id;
        m_clean = m_clean && flags == 0 && !token;
        m_answer = static_cast<wchar_t*>(CoTaskMemAlloc((m_path.size() + 1) * sizeof(wchar_t)));
        m_answer[m_path.copy(m_answer, m_path.size())] = L'\0';
        *text = m_answer;
        return S_OK;
    }

    void release(void* memory) {
        m_freed = memory;
        m_free.original()(memory);
    }

    std::wstring const m_path;
    KNOWNFOLDERID m_id{};
    bool m_clean = true;
    wchar_t* m_answer = nullptr;
    void* m_freed = nullptr;
    ImportHook<decltype(SHGetKnownFolderPath)> m_ask{
        "SHGetKnownFolderPath",
        [this](KNOWNFOLDERID const& id, DWORD flags, HANDLE token, wchar_t** text) {
            return answer(id, flags, token, text);
        }};
    ImportHook<decltype(CoTaskMemFree)> m_free{
        "CoTaskMemFree", [this](void* memory) { release(memory); }};
};

} // namespace test

#endif
