#ifndef TESTS_FILES_LOCKFILES_H
#define TESTS_FILES_LOCKFILES_H

// What the tests of lock files have in common.

#include "vrUtils/Files/LockFile.h"

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <string>

// Whether the call fails with the one failure there is, which names this path and nothing else:
//
//     EXPECT_THAT([&] { LockFile const lock(path); }, FailsToLock(L"C:\\clip.mxf"));
MATCHER_P(FailsToLock, path, "fails to lock " + testing::PrintToString(std::wstring(path))) {
    try {
        arg();
    } catch (vrUtils::Files::LockFileException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message());
        return failure.message() == L"Unable to lock " + std::wstring(path) &&
               failure.code() == 0x80E0609E && failure.file().empty() && failure.line() == 0;
    }
    *result_listener << "which throws nothing";
    return false;
}

// For its life the library takes the computer to have this name, of 15 characters at the most; with
// an empty one, the platform gives none.
class ComputerNamed {
  public:
    explicit ComputerNamed(std::wstring const& name)
        : m_hook("GetComputerNameW", [name](LPWSTR buffer, LPDWORD units) -> BOOL {
              if (name.empty()) {
                  SetLastError(ERROR_NOT_SUPPORTED);
                  return FALSE;
              }
              buffer[name.copy(buffer, *units - 1)] = L'\0';
              *units = static_cast<DWORD>(name.size());
              return TRUE;
          }) {}

  private:
    test::ImportHook<BOOL(LPWSTR, LPDWORD)> m_hook;
};

// A file to protect, which does not exist, in a folder of its own.
class LockFiles : public testing::Test {
  protected:
    // The platform has a function of this name.
    using LockFile = vrUtils::Files::LockFile;

    // With its first line the log opens handles that stay, and tests here count handles.
    LockFiles() { take(); }

    void take() const { LockFile const lock(m_path); }

    test::ScratchFolder m_folder;
    std::wstring const m_text = m_folder.file(L"clip.mxf");
    std::wstring const m_lockText = m_text + L".lck";
    vr::Path const m_path = vr::Path::file(m_text);
};

#endif
