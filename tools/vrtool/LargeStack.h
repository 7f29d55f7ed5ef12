#ifndef TOOLS_VRTOOL_LARGESTACK_H
#define TOOLS_VRTOOL_LARGESTACK_H

#include <cstddef>
#include <functional>
#include <string>

// Regular expressions are compiled and matched by functions that call themselves once for each
// step, which overflows an ordinary stack where a text is long.

// Whether the expression can be tried on texts of this length there.
bool fitsLargeStack(std::wstring const& expression, std::size_t longestText);

// Does the work on a stack of half a gigabyte, and waits for it. What it throws arrives here.
// @throws std::system_error if there is no such stack to be had
void onLargeStack(std::function<void()> const& work);

#endif
