#ifndef TOOLS_VRTOOL_TEXTWIDTH_H
#define TOOLS_VRTOOL_TEXTWIDTH_H

#include <cstddef>
#include <string_view>

// How many columns of a terminal a text takes: two for the ideographs and most emoji, none for an
// accent that joins the letter before it, one for everything else.
std::size_t widthOf(std::wstring_view text);

// How many units from the front of a text fit into so many columns; never half a surrogate pair.
std::size_t unitsWithin(std::wstring_view text, std::size_t columns);

#endif
