#include "vrUtils/Host.h"

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchComputerName.h"
#include "vrUtils/vrException.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>

using vrUtils::Host::GetLocalHostName;
using vrUtils::Host::vrFailedToGetHostNameException;
using vrUtils::Host::vrHostException;

namespace {

static_assert(std::is_base_of_v<vrHostException, vrFailedToGetHostNameException>);
static_assert(!std::is_base_of_v<vrException, vrFailedToGetHostNameException>);
static_assert(std::is_empty_v<vrFailedToGetHostNameException>);

// The platform's answer to the question for the name.
auto answering(std::wstring name, BOOL result) {
    return [=](wchar_t* buffer, DWORD* units) {
        EXPECT_EQ(15u, *units);
        std::copy(name.c_str(), name.c_str() + name.size() + 1, buffer);
        *units = static_cast<DWORD>(name.size());
        return result;
    };
}

} // namespace

TEST(LocalHostName, IsTheNameOfTheComputer) {
    test::ScratchComputerName const name(L"HOST1");

    EXPECT_EQ(L"HOST1", GetLocalHostName());
}

TEST(LocalHostName, MayHaveFourteenCharacters) {
    test::ScratchComputerName const name(L"FOURTEEN-CHARS");

    EXPECT_EQ(L"FOURTEEN-CHARS", GetLocalHostName());
}

TEST(LocalHostName, OfFifteenCharactersFails) {
    test::ScratchComputerName const name(L"FIFTEEN-LETTERS");

    EXPECT_THROW(GetLocalHostName(), vrFailedToGetHostNameException);
}

TEST(LocalHostName, IsAskedForAtEachCall) {
    test::ScratchComputerName const first(L"FIRST");
    EXPECT_EQ(L"FIRST", GetLocalHostName());

    test::ScratchComputerName const second(L"SECOND");

    EXPECT_EQ(L"SECOND", GetLocalHostName());
}

TEST(LocalHostName, IsAskedForWithOneCharacterLessThanTheBufferHolds) {
    test::ImportHook<decltype(GetComputerNameW)> const hook(
        "GetComputerNameW", answering(L"fifteen-letters", TRUE));

    EXPECT_EQ(L"fifteen-letters", GetLocalHostName());
}

TEST(LocalHostName, EndsAtTheEndOfTheString) {
    test::ImportHook<decltype(GetComputerNameW)> const hook(
        "GetComputerNameW", answering(std::wstring(L"AB\0CD", 5), TRUE));

    EXPECT_EQ(L"AB", GetLocalHostName());
}

TEST(LocalHostName, MayBeEmpty) {
    test::ImportHook<decltype(GetComputerNameW)> const hook(
        "GetComputerNameW", answering({}, TRUE));

    EXPECT_EQ(L"", GetLocalHostName());
}

TEST(LocalHostName, FailsWithThePlatform) {
    test::ImportHook<decltype(GetComputerNameW)> const hook(
        "GetComputerNameW", answering(L"HOST1", FALSE));

    EXPECT_THROW(GetLocalHostName(), vrFailedToGetHostNameException);
}

TEST(LocalHostName, FailureIsOneOfThisArea) {
    test::FailingImport<decltype(GetComputerNameW)> const fails(
        "GetComputerNameW", FALSE, ERROR_BUFFER_OVERFLOW);

    EXPECT_THROW(GetLocalHostName(), vrHostException);
}
