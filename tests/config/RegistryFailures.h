#ifndef TESTS_CONFIG_REGISTRYFAILURES_H
#define TESTS_CONFIG_REGISTRYFAILURES_H

#include "vrUtils/Registry/Exceptions.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace test {

// Whether the failure tells what those of the registry tell, and this.
inline bool tells(vrException const& failure, wchar_t const* message, std::uint32_t code) {
    return failure.message() == message && failure.code() == code &&
           failure.file() == L"vrRegistry" && failure.line() > 0;
}

} // namespace test

// Whether the call throws the failure of a key that cannot be had:
//
//     EXPECT_THAT([&] { ReadLocalMachineString(path, name); }, FailsToAccess());
MATCHER(FailsToAccess, "fails to access the registry") {
    try {
        arg();
    } catch (vrUtils::Registry::vrRegistryAccessException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message());
        return test::tells(failure, L"Unable to access registry", 0x81A06003);
    } catch (vrException const& failure) {
        *result_listener << "which throws " << testing::PrintToString(failure.message());
        return false;
    }
    *result_listener << "which throws nothing";
    return false;
}

// Whether the call throws the failure of a value that cannot be had.
MATCHER(MissesTheValue, "misses the value") {
    try {
        arg();
    } catch (vrUtils::Registry::vrRegistryValueMissingException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message());
        return test::tells(failure, L"Registry value missing", 0x8000000C);
    } catch (vrException const& failure) {
        *result_listener << "which throws " << testing::PrintToString(failure.message());
        return false;
    }
    *result_listener << "which throws nothing";
    return false;
}

#endif
