#ifndef TESTS_FILES_HOSTILENAME_H
#define TESTS_FILES_HOSTILENAME_H

#include <ostream>
#include <string>

// A name that no file should have, and what a failed test calls it.
struct HostileName {
    char const* label;
    std::wstring name;

    friend std::ostream& operator<<(std::ostream& stream, HostileName const& hostile) {
        return stream << hostile.label;
    }
};

#endif
