#ifndef TESTS_FILES_OPENERS_H
#define TESTS_FILES_OPENERS_H

#include "vrUtils/Files/FileHandle.h"

#include <memory>
#include <ostream>
#include <vector>

// A host's own way to open: what `FileHandleWrite` leaves open is given, and nothing else.
class FileHandleWriteCut : public vrUtils::Files::FileHandleWrite {
  protected:
    std::uint32_t CreationDisposition() const override { return 5; } // TRUNCATE_EXISTING
};

// One way to open a file, and what it asks of the platform.
struct Opener {
    char const* name;
    std::unique_ptr<vrUtils::Files::FileHandle> (*make)();
    std::uint32_t access;
    std::uint32_t share;
    std::uint32_t disposition;
    bool makesMissingFile;
    bool keepsContent;

    friend std::ostream& operator<<(std::ostream& stream, Opener const& opener) {
        return stream << opener.name;
    }
};

template <typename Class>
std::unique_ptr<vrUtils::Files::FileHandle> makeHandle() {
    return std::make_unique<Class>();
}

// Every way to open, the host's own one included.
inline std::vector<Opener> openers() {
    using namespace vrUtils::Files;
    std::uint32_t const read = 0x80000000;
    std::uint32_t const write = 0x40000000;
    // clang-format off
    return {
        {"Read",               makeHandle<FileHandleRead>,               read,         1, 3, false, true},
        {"WriteCut",           makeHandle<FileHandleWriteCut>,           write,        1, 5, false, false},
        {"WriteNew",           makeHandle<FileHandleWriteNew>,           write,        1, 2, true,  false},
        {"WriteExisting",      makeHandle<FileHandleWriteExisting>,      write,        1, 3, false, true},
        {"WriteNewOrExisting", makeHandle<FileHandleWriteNewOrExisting>, write,        1, 4, true,  true},
        {"WriteExclusive",     makeHandle<FileHandleWriteExclusive>,     read | write, 0, 2, true,  false},
    };
    // clang-format on
}

#endif
