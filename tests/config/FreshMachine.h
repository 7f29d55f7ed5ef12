#ifndef TESTS_CONFIG_FRESHMACHINE_H
#define TESTS_CONFIG_FRESHMACHINE_H

#include "tests/support/AbsentKey.h"

#include <gtest/gtest.h>

namespace test {

// A machine that knows nothing yet of the product, nor of the framework it may ask for.
class FreshMachine : public testing::Test {
  protected:
    AbsentKey const m_machine{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
    AbsentKey const m_user{HKEY_CURRENT_USER, L"Software\\Vorrane"};
    AbsentKey const m_framework{HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\NET Framework Setup"};
};

} // namespace test

#endif
