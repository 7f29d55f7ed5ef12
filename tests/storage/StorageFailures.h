#ifndef TESTS_STORAGE_STORAGEFAILURES_H
#define TESTS_STORAGE_STORAGEFAILURES_H

#include "vrUtils/Storage/Exceptions.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

// Whether the call throws this failure, with this error and this text:
//
//     EXPECT_THAT([&] { MakeDirectory(path); }, FailsAs<vrCreateFolderException>(3, text));
template <typename Failure>
auto FailsAs(std::uint32_t error, std::wstring const& text) {
    using vrUtils::Storage::vrStorageException;
    return testing::Throws<Failure>(testing::AllOf(
        testing::Property("error", &vrStorageException::error, error),
        testing::Property("text", &vrStorageException::text, text)));
}

#endif
