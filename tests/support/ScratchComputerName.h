#ifndef TESTS_SUPPORT_SCRATCHCOMPUTERNAME_H
#define TESTS_SUPPORT_SCRATCHCOMPUTERNAME_H

// A name that the computer bears while the object lives:
//
//     test::ScratchComputerName const name(L"HOST1");
//
// The name belongs to the whole machine: a test program that uses this locks `computer_name`. Of
// several objects the last one must go first. Failed preparations throw std::system_error.

#include "tests/support/RegistryPlace.h"

#include <string>

namespace test {

class ScratchComputerName {
  public:
    explicit ScratchComputerName(std::wstring const& name)
        : m_before(m_place.getText(value).value()) {
        m_place.setText(value, name);
    }

    ScratchComputerName(ScratchComputerName const&) = delete;
    ScratchComputerName& operator=(ScratchComputerName const&) = delete;

    ~ScratchComputerName() { m_place.setText(value, m_before); }

  private:
    static constexpr wchar_t value[] = L"ComputerName";

    RegistryPlace m_place{
        HKEY_LOCAL_MACHINE,
        L"System\\CurrentControlSet\\Control\\ComputerName\\ActiveComputerName"};
    std::wstring m_before;
};

} // namespace test

#endif
