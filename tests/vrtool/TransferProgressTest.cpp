#include "tools/vrtool/TransferProgress.h"

#include "tests/vrtool/RunHere.h"
#include "tests/vrtool/Screen.h"

#include <gtest/gtest.h>

#include <limits>

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr std::uint64_t mebibyte = 1 << 20;

struct ByteText {
    std::uint64_t bytes;
    char const* text;
};

class VrtoolBytesText : public testing::TestWithParam<ByteText> {};

} // namespace

TEST_P(VrtoolBytesText, KeepsFourDigitsBeforeItTakesTheNextUnit) {
    EXPECT_EQ(GetParam().text, bytesText(GetParam().bytes));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, VrtoolBytesText,
    testing::Values(
        ByteText{0, "0 B"}, ByteText{17, "17 B"}, ByteText{10239, "10239 B"},
        ByteText{10240, "10 KB"}, ByteText{10485759, "10239 KB"}, ByteText{10485760, "10 MB"},
        ByteText{1280 * mebibyte, "1280 MB"}, ByteText{10240 * mebibyte, "10 GB"},
        ByteText{std::numeric_limits<std::uint64_t>::max(), "17179869183 GB"}));

TEST(VrtoolProgressLine, ShowsBarShareBytesRateAndTimeLeft) {
    EXPECT_EQ(
        L"[########            ]  40 %  512 MB of 1280 MB  128 MB/s  0:06 left  clip.mxf",
        progressLine(L"clip.mxf", 512 * mebibyte, 1280 * mebibyte, seconds(4)));
}

TEST(VrtoolProgressLine, BeginsEmptyAndIsInNoHurry) {
    EXPECT_EQ(
        L"[                    ]   0 %  0 B of 100 B  0 B/s  0:00 left  a",
        progressLine(L"a", 0, 100, milliseconds(0)));
}

TEST(VrtoolProgressLine, EndsFull) {
    EXPECT_EQ(
        L"[####################] 100 %  100 B of 100 B  50 B/s  0:00 left  a",
        progressLine(L"a", 100, 100, seconds(2)));
}

TEST(VrtoolProgressLine, IsNoMoreThanDoneForAFileThatHasGrown) {
    EXPECT_EQ(
        L"[####################] 100 %  100 B of 100 B  50 B/s  0:00 left  a",
        progressLine(L"a", 500, 100, seconds(2)));
}

TEST(VrtoolProgressLine, IsDoneForAnEmptyFile) {
    EXPECT_EQ(
        L"[####################] 100 %  0 B of 0 B  0 B/s  0:00 left  a",
        progressLine(L"a", 0, 0, seconds(1)));
}

TEST(VrtoolTransferProgress, SaysNothingToAFileInTheFirstSeconds) {
    test::ScratchFolder const folder;
    {
        test::Redirected const error(STD_ERROR_HANDLE, folder.file(L"error"));
        Console console;
        TransferProgress progress(console, L"a", 10);
        progress.show(5);
    }

    EXPECT_EQ("", folder.read(L"error"));
}

TEST(VrtoolTransferProgress, WritesOneLineOverOnAScreenAndTakesItAway) {
    test::Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";
    auto* const before = GetStdHandle(STD_ERROR_HANDLE);
    SetStdHandle(STD_ERROR_HANDLE, screen.handle());
    Console console;
    console.setWidth(40);
    std::wstring shown;
    {
        TransferProgress progress(console, L"a", 10);
        auto const end = TransferProgress::Clock::now() + seconds(20);
        while (shown.empty() && TransferProgress::Clock::now() < end) {
            progress.show(5);
            shown = screen.line(0);
        }
    }
    SetStdHandle(STD_ERROR_HANDLE, before);

    EXPECT_EQ(L"[##########          ]  50 %  5 B of 10", shown);
    EXPECT_EQ(L"", screen.line(0));
}
