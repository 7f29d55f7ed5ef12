#ifndef TESTS_STORAGE_TREE_H
#define TESTS_STORAGE_TREE_H

// What tests of folders ask the disk.

#include "foundation/Platform.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <string>
#include <vector>

namespace test {

inline bool isFolder(std::wstring const& path) {
    auto const attributes = GetFileAttributesW((L"\\\\?\\" + path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// All that is in a scratch folder, at every depth: `name\` of a folder, ahead of what is in it, and
// `name=bytes` of a file.
inline std::vector<std::wstring>
treeOf(ScratchFolder const& folder, std::wstring const& below = {}) {
    std::vector<std::wstring> tree;
    for (auto const& name : folder.names(below)) {
        auto const entry = below.empty() ? name : below + L'\\' + name;
        if (!isFolder(folder.file(entry))) {
            tree.push_back(entry + L'=' + fromUtf8(folder.read(entry)));
            continue;
        }
        tree.push_back(entry + L'\\');
        auto const inside = treeOf(folder, entry);
        tree.insert(tree.end(), inside.begin(), inside.end());
    }
    return tree;
}

} // namespace test

#endif
