#include "vrUtils/Files/FileQueries.h"

#include "foundation/Platform.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ImportHook.h"

#include <rpc.h>

#include <gmock/gmock.h>

#include <set>
#include <string>

using namespace vrUtils::Files;

namespace {

std::wstring generated() {
    std::wstring name = L"before";
    GenerateTempFilename(name);
    return name;
}

} // namespace

TEST(TempFilename, IsAnIdentifierAndItsExtension) {
    auto const name = generated();

    ASSERT_EQ(40u, name.size());
    EXPECT_EQ(L".tmp", name.substr(36));
    for (std::size_t place = 0; place < 36; ++place) {
        bool const dash = place == 8 || place == 13 || place == 18 || place == 23;
        auto const wanted = dash ? std::wstring(L"-") : std::wstring(L"0123456789abcdef");
        EXPECT_NE(std::wstring::npos, wanted.find(name[place])) << place;
    }
}

TEST(TempFilename, IsNeverTheSame) {
    std::set<std::wstring> names;

    for (int count = 0; count < 1000; ++count)
        names.insert(generated());

    EXPECT_EQ(1000u, names.size());
}

TEST(TempFilename, ShowsTheIdentifierOfThePlatform) {
    test::ImportHook const hook("UuidCreate", [](UUID* identifier) -> RPC_STATUS {
        *identifier = {0x01234567, 0x89AB, 0xCDEF, {0, 1, 2, 3, 4, 5, 6, 7}};
        return RPC_S_OK;
    });

    EXPECT_EQ(L"01234567-89ab-cdef-0001-020304050607.tmp", generated());
}

TEST(TempFilename, TakesAnIdentifierThatIsUniqueHereOnly) {
    test::ImportHook const hook("UuidCreate", [](UUID* identifier) -> RPC_STATUS {
        *identifier = {0x01234567, 0x89AB, 0xCDEF, {0, 1, 2, 3, 4, 5, 6, 7}};
        return RPC_S_UUID_LOCAL_ONLY;
    });

    EXPECT_EQ(L"01234567-89ab-cdef-0001-020304050607.tmp", generated());
}

TEST(TempFilename, WithoutAnIdentifierIsOfZeros) {
    test::ImportHook const hook(
        "UuidCreate", [](UUID*) -> RPC_STATUS { return RPC_S_UUID_NO_ADDRESS; });

    EXPECT_EQ(L"00000000-0000-0000-0000-000000000000.tmp", generated());
}

TEST(TempFilename, WithoutATextIsTheExtensionAlone) {
    test::ImportHook const converts("UuidToStringW", [](UUID*, RPC_WSTR* text) -> RPC_STATUS {
        *text = nullptr;
        return RPC_S_OUT_OF_MEMORY;
    });
    test::ImportHook const frees(
        "RpcStringFreeW", [](RPC_WSTR*) -> RPC_STATUS { return RPC_S_OK; });

    EXPECT_EQ(L".tmp", generated());
    EXPECT_EQ(0u, frees.calls());
}

TEST(TempFilename, DoesNotLookAtAResult) {
    test::ImportHook<decltype(UuidToStringW)> const converts(
        "UuidToStringW", [&](auto... arguments) -> RPC_STATUS {
            converts.original()(arguments...);
            return RPC_S_OUT_OF_MEMORY;
        });

    EXPECT_EQ(40u, generated().size());
}

TEST(TempFilename, FreesTheTextOnce) {
    RPC_WSTR made = nullptr;
    RPC_WSTR freed = nullptr;
    test::ImportHook<decltype(UuidToStringW)> const converts(
        "UuidToStringW", [&](UUID* identifier, RPC_WSTR* text) {
            auto const result = converts.original()(identifier, text);
            made = *text;
            return result;
        });
    test::ImportHook<decltype(RpcStringFreeW)> const frees("RpcStringFreeW", [&](RPC_WSTR* text) {
        freed = *text;
        return frees.original()(text);
    });

    generated();

    EXPECT_NE(nullptr, made);
    EXPECT_EQ(made, freed);
    EXPECT_EQ(1u, frees.calls());
}

TEST(TempFilename, FailedAllocationFreesTheTextAllTheSame) {
    test::ImportHook<decltype(UuidToStringW)> const converts(
        "UuidToStringW", [&](auto... arguments) { return converts.original()(arguments...); });
    test::ImportHook<decltype(RpcStringFreeW)> const frees(
        "RpcStringFreeW", [&](auto... arguments) { return frees.original()(arguments...); });

    auto const failed = test::failEachAllocation([] {
        std::wstring name;
        GenerateTempFilename(name);
    });

    EXPECT_LT(0u, failed);
    EXPECT_EQ(converts.calls(), frees.calls());
}
