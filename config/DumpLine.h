#ifndef CONFIG_DUMPLINE_H
#define CONFIG_DUMPLINE_H

#include <string>
#include <vector>

namespace vrUtils::Registry {

// One line of a dump file, taken apart without a look at its quotes.
struct DumpLine {
    // A line with no equals sign leaves all three empty.
    // @throws std::out_of_range the line ends at its equals sign
    explicit DumpLine(std::wstring const& line);

    std::wstring name;
    // "dword:", "hex:", "hex(7):" or "string"; any other text is of no known type.
    std::wstring type;
    std::wstring data;
};

// The bytes of a list such as "0a,ff". Each has two digits and a separator, which may be any
// character; what is no hexadecimal digit counts as 0.
// @throws std::out_of_range the last byte has one digit only
std::vector<unsigned char> decodeHex(std::wstring const& text);

} // namespace vrUtils::Registry

#endif
