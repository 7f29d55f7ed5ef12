#include "VorraneLog/LogConfiguration.h"

#include "tests/support/ImportHook.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using VorraneLog::readLogConfiguration;

namespace {

// The tests' own environment names no file.
class DefaultLogFile : public testing::Test {
  protected:
    DefaultLogFile() { SetEnvironmentVariableW(L"VORRANELOG_FILE", nullptr); }
};

} // namespace

TEST_F(DefaultLogFile, BearsTheNameOfAProgramWhoseLongPathTakesASecondQuestion) {
    std::wstring const path = L"C:\\" + std::wstring(300, L'd') + L"\\host.v2.exe";
    test::ImportHook<decltype(GetModuleFileNameW)> const asked(
        "GetModuleFileNameW",
        [&path](HMODULE, LPWSTR buffer, DWORD units) {
            auto const fits = std::min<DWORD>(units, static_cast<DWORD>(path.size()));
            path.copy(buffer, fits);
            return fits;
        },
        test::thisProgram());

    EXPECT_EQ(L"C:\\ProgramData\\Vorrane\\Log\\host.v2.log", readLogConfiguration().file);

    EXPECT_EQ(2u, asked.calls());
}

TEST_F(DefaultLogFile, IsNoneWhereTheSystemKnowsNoFolderForIt) {
    test::FailingImport<decltype(SHGetFolderPathW)> const fails(
        "SHGetFolderPathW", E_FAIL, 0, 1, test::thisProgram());

    EXPECT_EQ(L"", readLogConfiguration().file);

    EXPECT_EQ(1u, fails.calls());
}
