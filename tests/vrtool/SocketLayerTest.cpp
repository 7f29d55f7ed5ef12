// The socket layer that the tool starts for the library.

#include "tools/vrtool/SocketLayer.h"

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"

#include <winsock2.h>

#include <gtest/gtest.h>

#include <system_error>

TEST(VrtoolSocketLayer, EndsWithItsScope) {
    test::ImportHook<decltype(WSACleanup)> const ends(
        "WSACleanup", [&] { return ends.original()(); }, test::thisProgram());
    {
        SocketLayer const sockets;

        EXPECT_EQ(0u, ends.calls());
    }

    EXPECT_EQ(1u, ends.calls());
}

TEST(VrtoolSocketLayer, SaysWhyItCannotBeStarted) {
    test::FailingImport<decltype(WSAStartup)> const fails(
        "WSAStartup", WSASYSNOTREADY, 0, 1, test::thisProgram());

    try {
        SocketLayer const sockets;
        FAIL() << "it was started";
    } catch (std::system_error const& failure) {
        EXPECT_EQ(WSASYSNOTREADY, failure.code().value());
        EXPECT_STREQ("no sockets", std::string(failure.what()).substr(0, 10).c_str());
    }
}

TEST(VrtoolSocketLayer, EndsNothingThatWasNotStarted) {
    test::FailingImport<decltype(WSAStartup)> const fails(
        "WSAStartup", WSASYSNOTREADY, 0, 1, test::thisProgram());
    test::ImportHook<decltype(WSACleanup)> const ends(
        "WSACleanup", [&] { return ends.original()(); }, test::thisProgram());

    EXPECT_THROW(SocketLayer(), std::system_error);

    EXPECT_EQ(0u, ends.calls());
}
