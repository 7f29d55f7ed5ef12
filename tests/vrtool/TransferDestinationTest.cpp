#include "tools/vrtool/TransferDestination.h"

#include "tests/support/PathPrinter.h"
#include "tests/vrtool/WorkingFolder.h"
#include "tools/vrtool/SocketLayer.h"

#include <gtest/gtest.h>

namespace {

class VrtoolTransferDestination : public testing::Test {
  private:
    SocketLayer const sockets;
};

} // namespace

TEST_F(VrtoolTransferDestination, IsAFolderHoweverItIsWritten) {
    for (auto const* text : {L"C:\\to", L"C:\\to\\", L"C:\\x\\..\\to\\.", L"C:/to"})
        EXPECT_EQ(L"C:\\to\\", transferDestination(text).folder.components().wholePath());
}

TEST_F(VrtoolTransferDestination, KeepsADotInItsName) {
    EXPECT_EQ(L"C:\\day.1\\", transferDestination(L"C:\\day.1").folder.components().wholePath());
}

TEST_F(VrtoolTransferDestination, IsLookedUpInTheCurrentFolder) {
    test::WorkingFolder const inside(L"C:\\windows");

    EXPECT_EQ(L"C:\\windows\\to\\", transferDestination(L"to").folder.components().wholePath());
}

TEST_F(VrtoolTransferDestination, OnADriveIsOnThisMachine) {
    auto const destination = transferDestination(L"C:\\to");

    EXPECT_TRUE(destination.onThisMachine);
    EXPECT_EQ(destination.folder, destination.local);
    EXPECT_EQ(L"", destination.server.host);
    EXPECT_EQ(std::wstring(L"C:\\"), destination.server.folder);
}

TEST_F(VrtoolTransferDestination, OnAShareOfAnotherMachineHasItsShareChecked) {
    auto const destination = transferDestination(L"\\\\media01.invalid\\archive\\day 1");

    EXPECT_FALSE(destination.onThisMachine);
    EXPECT_EQ(
        L"\\\\media01.invalid\\archive\\day 1\\", destination.folder.components().wholePath());
    EXPECT_EQ(L"\\\\media01.invalid\\", destination.server.host);
    EXPECT_EQ(std::wstring(L"archive\\"), destination.server.folder);
}
