#include "VorraneLog/ReadableMemory.h"

#include "foundation/Platform.h"
#include "tests/VorraneLog/PrivateMemory.h"

#include <gtest/gtest.h>

#include <cstdint>

using VorraneLog::ProvenText;
using VorraneLog::provenText;
using VorraneLog::readableBytes;

namespace {

bool isGuarded(char const* address) {
    MEMORY_BASIC_INFORMATION region{};
    VirtualQuery(address, &region, sizeof region);
    return (region.Protect & PAGE_GUARD) != 0;
}

class ReadableMemoryNowhere : public testing::TestWithParam<std::uintptr_t> {};

} // namespace

TEST(ReadableMemory, CountsNoMoreThanWanted) {
    test::PrivatePage const page;

    EXPECT_EQ(10U, readableBytes(page.start(), 10));
}

TEST(ReadableMemory, CountsUpToAPageWithoutAccess) {
    test::PrivatePage const page;

    EXPECT_EQ(16U, readableBytes(page.end() - 16, 100));
    EXPECT_EQ(0U, readableBytes(page.end(), 100));
}

TEST(ReadableMemory, CountsAcrossRegionsThatCanBeRead) {
    test::PrivatePage const page(PAGE_READONLY);

    EXPECT_EQ(page.size + 100, readableBytes(page.start(), page.size + 100));
}

TEST(ReadableMemory, GuardPageCountsAsUnreadableAndStaysGuarded) {
    test::PrivatePage const page(PAGE_READWRITE | PAGE_GUARD);

    EXPECT_EQ(16U, readableBytes(page.end() - 16, 100));
    EXPECT_TRUE(isGuarded(page.end()));
}

TEST(ReadableMemory, FreedMemoryCountsAsUnreadable) {
    auto* const memory = VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    VirtualFree(memory, 0, MEM_RELEASE);

    EXPECT_EQ(0U, readableBytes(memory, 1));
}

TEST(ReadableMemory, ReservedMemoryCountsAsUnreadable) {
    auto* const memory = VirtualAlloc(nullptr, 4096, MEM_RESERVE, PAGE_READWRITE);

    EXPECT_EQ(0U, readableBytes(memory, 1));

    VirtualFree(memory, 0, MEM_RELEASE);
}

TEST_P(ReadableMemoryNowhere, PointerIsUnreadable) {
    auto const proven = provenText(reinterpret_cast<wchar_t const*>(GetParam()), 100);

    EXPECT_EQ(ProvenText::unreadable, proven.end);
    EXPECT_TRUE(proven.text.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, ReadableMemoryNowhere,
    testing::Values(
        2, 0x10, 0xFFFE, 0x8000000000000000, 0xFFFF800000000000, 0xFFFFFFFFFFFFFFF0,
        0xFFFFFFFFFFFFFFFE, 0x00007FFFFFFFFFFE));

TEST(ReadableMemory, TextEndsAtItsTerminator) {
    auto const proven = provenText(L"clip\0behind", 100);

    EXPECT_EQ(L"clip", proven.text);
    EXPECT_EQ(ProvenText::terminator, proven.end);
}

TEST(ReadableMemory, TextEndsAtTheBound) {
    auto const proven = provenText(L"clip", 3);

    EXPECT_EQ(L"cli", proven.text);
    EXPECT_EQ(ProvenText::bound, proven.end);
}

TEST(ReadableMemory, BoundOfNoneReadsNothing) {
    auto const proven = provenText(reinterpret_cast<wchar_t const*>(0x10), 0);

    EXPECT_TRUE(proven.text.empty());
    EXPECT_EQ(ProvenText::bound, proven.end);
}

TEST(ReadableMemory, TextEndsWhereItCannotBeReadFurther) {
    test::PrivatePage const page;

    auto const proven = provenText(page.lastCharacters(L"half"), 100);

    EXPECT_EQ(L"half", proven.text);
    EXPECT_EQ(ProvenText::unreadable, proven.end);
}

TEST(ReadableMemory, TextGoesOnInTheNextRegion) {
    test::PrivatePage const page(PAGE_READWRITE);
    DWORD before = 0;
    std::memcpy(page.end() - 4, L"whole", 6 * sizeof(wchar_t));
    VirtualProtect(page.end(), page.size, PAGE_READONLY, &before);

    auto const proven = provenText(reinterpret_cast<wchar_t*>(page.end() - 4), 100);

    EXPECT_EQ(L"whole", proven.text);
    EXPECT_EQ(ProvenText::terminator, proven.end);
}

TEST(ReadableMemory, OddAddressCountsAsUnreadable) {
    test::PrivatePage const page;

    auto const proven = provenText(reinterpret_cast<wchar_t const*>(page.start() + 1), 100);

    EXPECT_EQ(ProvenText::unreadable, proven.end);
}

TEST(ReadableMemory, NullIsTold) { EXPECT_EQ(ProvenText::null, provenText(nullptr, 100).end); }
