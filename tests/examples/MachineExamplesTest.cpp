// The examples that look at what the whole machine shares: its settings, services, name and drives.

#include "tests/examples/ExampleRun.h"

#include "tests/support/AbsentKey.h"

#include <gmock/gmock.h>

using test::Example;

namespace {

// A machine on which the product was never set up. What the examples make of it goes again.
class MachineExamples : public testing::TestWithParam<Example> {
  private:
    test::AbsentKey const m_machineSettings{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
    test::AbsentKey const m_userSettings{HKEY_CURRENT_USER, L"Software\\Vorrane"};
};

// The keys that examples have made for themselves, and that are still there.
std::vector<std::wstring> keysOfExamples() {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, &key);
    std::vector<std::wstring> names;
    wchar_t name[256];
    DWORD length = 256;
    for (DWORD at = 0;
         RegEnumKeyExW(key, at, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++at, length = 256)
        if (std::wstring(name).find(L"vrUtils example") == 0)
            names.push_back(name);
    RegCloseKey(key);
    return names;
}

} // namespace

TEST_P(MachineExamples, DoWhatTheyTeach) {
    test::expectLesson(GetParam());

    EXPECT_THAT(keysOfExamples(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, MachineExamples,
    testing::Values(
        Example{
            "Identity",
            {R"(programs in C:\Program Files\Vorrane\)", R"(data in C:\ProgramData\Quantum\Index\)",
             R"(media in C:\OstrelMedia\)", "memory is known", "a second one is told"}},
        Example{
            "Machines",
            {R"(\\198.51.100.7\Media\clip.mxf and \\198.51.100.7:8080\Archive\: one machine)",
             R"(\\198.51.100.7\Media\clip.mxf and \\198.51.100.8\Media\: two machines)",
             R"(C:\Media\clip.mxf is here, reached as C:\Media\clip.mxf)",
             R"(\\localhost\Media\clip.mxf is here, reached as \\localhost\Media\clip.mxf)",
             R"(\\198.51.100.7\Media\clip.mxf is elsewhere, reached as \\198.51.100.7\Media\clip.mxf)",
             R"(by address: \\198.51.100.7\Media\clip.mxf)"}},
        Example{"RegistryDump", {"cache depth: 7", "host: interplay01"}},
        Example{
            "Services",
            {"sync: not installed, or not for this user to ask",
             "engine: not installed, or not for this user to ask"}},
        Example{
            "Settings",
            {"retries on a fresh machine: 3", "retries: 5", "host: interplay01",
             "host as a number: Registry value missing", "transfers at once: 4"}}),
    [](auto const& test) { return test.param.name; });
