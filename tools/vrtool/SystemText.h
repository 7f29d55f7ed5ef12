#ifndef TOOLS_VRTOOL_SYSTEMTEXT_H
#define TOOLS_VRTOOL_SYSTEMTEXT_H

#include <cstdint>
#include <string>

// What the platform says about one of its errors, and its number: "Access denied (error 5)"; the
// number alone where it says nothing.
std::wstring systemText(std::uint32_t error);

// A file's name from the root of its drive on, as functions need it that would look a bare name up
// elsewhere than in the current folder.
// @throws std::system_error if the platform takes it for no name
std::wstring fullPath(std::wstring const& file);

#endif
