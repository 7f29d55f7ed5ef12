#ifndef TESTS_FILES_OUTSIDER_H
#define TESTS_FILES_OUTSIDER_H

#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"

#include <string>

// Opens an existing file as an outsider who lets others do whatever they like.
inline test::OwnedHandle openAsOutsider(std::wstring const& name, DWORD access) {
    return test::OwnedHandle(CreateFileW(
        name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// What the platform answers to that.
inline DWORD errorOfOutsider(std::wstring const& name, DWORD access) {
    auto const file = openAsOutsider(name, access);
    return file.get() == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
}

#endif
