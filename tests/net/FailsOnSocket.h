#ifndef TESTS_NET_FAILSONSOCKET_H
#define TESTS_NET_FAILSONSOCKET_H

#include "vrUtils/TcpComms.h"

#include <gmock/gmock.h>

#include <ios>

// Whether the call throws the failure of a socket with this message and this code:
//
//     EXPECT_THAT([&] { socket.Connect(); }, FailsOnSocket(L"Error creating socket", 0x80E0600B));
MATCHER_P2(FailsOnSocket, message, code, "fails with " + testing::PrintToString(message)) {
    try {
        arg();
    } catch (vrUtils::TcpComms::vrSocketException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message())
                         << " and whose code is 0x" << std::hex << failure.code();
        return failure.message() == message && failure.file() == L"TcpComms" &&
               failure.code() == code && failure.line() > 0;
    } catch (vrException const& failure) {
        *result_listener << "which throws " << testing::PrintToString(failure.message());
        return false;
    }
    *result_listener << "which throws nothing";
    return false;
}

#endif
