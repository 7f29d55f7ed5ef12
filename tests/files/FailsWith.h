#ifndef TESTS_FILES_FAILSWITH_H
#define TESTS_FILES_FAILSWITH_H

#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <string>

// Whether the call throws the failure of the file layer with this message:
//
//     EXPECT_THAT([&] { FileLength(path); }, FailsWith(L"GetFileAttributesEx failed on ..."));
MATCHER_P(FailsWith, message, "fails with " + testing::PrintToString(std::wstring(message))) {
    try {
        arg();
    } catch (vrException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message());
        return failure.message() == message && failure.file() == L"Files" &&
               failure.code() == 0x80004005 && failure.line() > 0;
    }
    *result_listener << "which throws nothing";
    return false;
}

#endif
