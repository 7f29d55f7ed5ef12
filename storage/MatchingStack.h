#ifndef STORAGE_MATCHINGSTACK_H
#define STORAGE_MATCHINGSTACK_H

#include <cstddef>
#include <functional>
#include <string>

namespace vrUtils::Storage {

// The standard library compiles and matches regular expressions by calling itself, once for each
// step: a long name overflows the stack of an ordinary thread, which ends the process. Here the
// work is done on a stack that is large enough for whatever the expression and the longest text ask
// for; only what is used of it takes memory.
//
// The work runs on the calling thread and in its name. What it throws arrives here.
// Throws std::regex_error if the stack would have to be larger than a gigabyte, std::bad_alloc if
// there is none to be had.
void onMatchingStack(
    std::wstring const& expression, std::size_t longestText, std::function<void()> const& work);

// The stack in bytes that compiling and matching take at most.
double matchingStackNeeded(std::wstring const& expression, std::size_t longestText);

} // namespace vrUtils::Storage

#endif
