#ifndef TESTS_MEDIA_PARSINGFAILURES_H
#define TESTS_MEDIA_PARSINGFAILURES_H

#include "vrUtils/vrException.h"

#include <gtest/gtest.h>

#include <string>

namespace test {

inline constexpr wchar_t insufficientData[] = L"Insufficient data for tag parse read";

// The message of the parsing failure that the action raises, once its code and its place have
// proved right; "nothing was raised" if it raises none.
template <typename Action>
std::wstring parsingFailureOf(Action const& action) {
    try {
        action();
    } catch (vrException const& failure) {
        EXPECT_EQ(0x80E06025u, failure.code());
        EXPECT_EQ(L"ParsingUtils", failure.file());
        EXPECT_NE(0u, failure.line());
        return failure.message();
    }
    return L"nothing was raised";
}

} // namespace test

#endif
