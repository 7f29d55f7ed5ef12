#ifndef TESTS_SUPPORT_SCRATCHSHARE_H
#define TESTS_SUPPORT_SCRATCHSHARE_H

// A share of a test's own on a host that nobody else has, served by the platform of the tests from
// its own files. It goes with the object, and with all that is in it.
//
//     test::ScratchShare const share;
//     MakeDirectory(vr::Path::folder(share.path() + L"\\a\\"));

#include <string>

namespace test {

class ScratchShare {
  public:
    // Throws std::system_error if the platform has no such shares.
    ScratchShare();
    ScratchShare(ScratchShare const&) = delete;
    ScratchShare& operator=(ScratchShare const&) = delete;
    ~ScratchShare();

    // The name of the host, without backslashes.
    std::wstring const& host() const noexcept { return m_host; }

    // The share, with no backslash at the end: `\\host\share`.
    std::wstring path() const { return L"\\\\" + m_host + L"\\share"; }

  private:
    std::wstring m_host;
};

} // namespace test

#endif
