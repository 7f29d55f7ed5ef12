#ifndef TESTS_NET_FAILSFORPORT_H
#define TESTS_NET_FAILSFORPORT_H

#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <string>
#include <typeinfo>

// Whether the call throws the failure of a port that does not fit, with this message:
//
//     EXPECT_THAT([] { instanceFromPort(80); }, FailsForPort(L"Expected port >= 60772"));
MATCHER_P(FailsForPort, message, "fails with " + testing::PrintToString(std::wstring(message))) {
    try {
        arg();
    } catch (vrException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message());
        return failure.message() == message && failure.file() == L"Instancing" &&
               failure.code() == 0x80E06007 && failure.line() > 0 &&
               typeid(failure) == typeid(vrException);
    }
    *result_listener << "which throws nothing";
    return false;
}

#endif
