// Changes the name of the computer, and puts it back.

#include "foundation/Platform.h"
#include "vrUtils/Process/Identity.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

class ComputerName : public testing::Test {
  protected:
    void SetUp() override {
        DWORD size = sizeof m_before;
        ASSERT_EQ(
            ERROR_SUCCESS,
            RegGetValueW(
                HKEY_LOCAL_MACHINE, key, value, RRF_RT_REG_SZ, nullptr, m_before.data(), &size));
    }

    void TearDown() override {
        if (m_before.front())
            change(m_before.data());
    }

    static void change(std::wstring const& name) {
        auto const bytes = static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t));
        ASSERT_EQ(
            ERROR_SUCCESS,
            RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, value, REG_SZ, name.c_str(), bytes));
    }

  private:
    static constexpr wchar_t key[] =
        L"System\\CurrentControlSet\\Control\\ComputerName\\ActiveComputerName";
    static constexpr wchar_t value[] = L"ComputerName";

    std::array<wchar_t, 256> m_before{};
};

} // namespace

TEST_F(ComputerName, OfFifteenCharactersIsTold) {
    change(L"FIFTEEN-LETTERS");

    EXPECT_EQ(L"FIFTEEN-LETTERS", vrUtils::Process::GetComputerNameW());
}

TEST_F(ComputerName, OfSixteenCharactersIsEmpty) {
    change(L"SIXTEEN-LETTERS-");

    EXPECT_EQ(L"", vrUtils::Process::GetComputerNameW());
}

TEST_F(ComputerName, IsAskedForAtEachCall) {
    change(L"FIRST");
    EXPECT_EQ(L"FIRST", vrUtils::Process::GetComputerNameW());

    change(L"SECOND");

    EXPECT_EQ(L"SECOND", vrUtils::Process::GetComputerNameW());
}
