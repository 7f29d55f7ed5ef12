#ifndef STORAGE_DIRECTORYREMOVAL_H
#define STORAGE_DIRECTORYREMOVAL_H

#include "foundation/Handle.h"
#include "foundation/Platform.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vrUtils::Storage {

// One removal of a folder, from beginning to end. The folders on the way down stand on a stack of
// their own, and one text is the path of whatever is at hand, so that neither the depth of a tree
// nor the length of its paths costs more than itself.
class DirectoryRemoval {
  public:
    DirectoryRemoval(std::wstring path, bool recursive)
        : m_path(std::move(path)), m_recursive(recursive) {}

    // 0 or the Windows error.
    DWORD run();

  private:
    struct Level {
        FindOwner search;
        std::size_t pathLength;
    };

    bool enter();
    bool findEntry();
    DWORD removeEntry();
    DWORD removeFile();
    DWORD leave();

    std::wstring m_path;
    bool m_recursive;
    bool m_subfolderStays = false;
    std::vector<Level> m_levels;
    // What the search of the innermost level found, and whether it is still to be looked at.
    WIN32_FIND_DATAW m_entry{};
    bool m_entered = false;
};

} // namespace vrUtils::Storage

#endif
