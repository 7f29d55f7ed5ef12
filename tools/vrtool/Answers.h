#ifndef TOOLS_VRTOOL_ANSWERS_H
#define TOOLS_VRTOOL_ANSWERS_H

#include <optional>
#include <string>

class CancelKey;

// What the user, or a script, answers on standard input.
//
// @param key ends the wait
// @return the next line in lower case, without blanks at its ends; none at the end of the input, or
//         when the key was pressed, behind which there are no further answers
// @throws std::system_error if the platform has nothing to wait on
std::optional<std::string> nextAnswer(CancelKey const& key);

#endif
