// Regular expressions where they cannot overflow the stack.

#include "tools/vrtool/LargeStack.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <regex>
#include <system_error>

TEST(VrtoolLargeStack, TakesALongName) {
    std::wstring const name(30'000, L'a');
    bool matches = false;

    onLargeStack([&] { matches = std::regex_match(name, std::wregex(L"(a|b)*")); });

    EXPECT_TRUE(matches);
}

TEST(VrtoolLargeStack, PassesOnWhatIsThrown) {
    EXPECT_THROW(
        onLargeStack([] { throw std::regex_error(std::regex_constants::error_paren); }),
        std::regex_error);
}

TEST(VrtoolLargeStack, MustBeHad) {
    test::FailingImport<decltype(CreateThread)> const fails(
        "CreateThread", nullptr, ERROR_NOT_ENOUGH_MEMORY, 1, test::thisProgram());
    bool hasRun = false;

    EXPECT_THROW(onLargeStack([&] { hasRun = true; }), std::system_error);

    EXPECT_FALSE(hasRun);
}

TEST(VrtoolLargeStack, IsNotLargeEnoughForEverything) {
    EXPECT_TRUE(fitsLargeStack(L"(a|b)*", 32'767));
    EXPECT_FALSE(fitsLargeStack(std::wstring(1000, L'a'), 32'767));
}

TEST(VrtoolLargeStack, CountsWhatIsWrittenOut) {
    EXPECT_TRUE(fitsLargeStack(LR"((.*)_\d{8}\.mov)", 1000));
    EXPECT_FALSE(fitsLargeStack(LR"((.*)_\d{80}\.mov)", 1000));
    EXPECT_FALSE(fitsLargeStack(LR"((.*)_\d{8,80}\.mov)", 1000));
    EXPECT_FALSE(fitsLargeStack(LR"(((\d{9}){9})*\.mov)", 1000));
    EXPECT_TRUE(fitsLargeStack(LR"((.*)_\d{,}\.mov{)", 1000));
}

TEST(VrtoolLargeStack, LeavesNoHandleOpen) {
    onLargeStack([] {});
    test::HandleLeakCheck const check;

    onLargeStack([] {});
}
