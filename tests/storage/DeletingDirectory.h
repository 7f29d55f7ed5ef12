#ifndef TESTS_STORAGE_DELETINGDIRECTORY_H
#define TESTS_STORAGE_DELETINGDIRECTORY_H

#include "tests/storage/Tree.h"
#include "vrUtils/Storage/Directories.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace test {

// A folder to be removed, between two neighbours.
class DeletingDirectory : public testing::Test {
  protected:
    DeletingDirectory() {
        m_folder.write(L"alive\\clip.mxf", "kept");
        m_folder.write(L"doomed.mxf", "kept");
        m_folder.makeFolder(L"doomed");
    }

    int remove(bool recursive = true) const {
        return vrUtils::Storage::DeleteDirectory(m_doomed, recursive);
    }

    void write(std::wstring const& name) const { m_folder.write(L"doomed\\" + name, "b"); }

    // What is left, without the neighbours, which must be left as they were.
    std::vector<std::wstring> left() const {
        auto tree = treeOf(m_folder);
        auto const isNeighbour = [](std::wstring const& entry) {
            return entry.compare(0, 7, L"doomed\\") != 0;
        };
        std::vector<std::wstring> neighbours;
        std::copy_if(tree.begin(), tree.end(), std::back_inserter(neighbours), isNeighbour);
        EXPECT_THAT(
            neighbours,
            testing::ElementsAre(L"alive\\", L"alive\\clip.mxf=kept", L"doomed.mxf=kept"));
        tree.erase(std::remove_if(tree.begin(), tree.end(), isNeighbour), tree.end());
        return tree;
    }

    ScratchFolder m_folder;
    std::wstring const m_doomed = m_folder.file(L"doomed");
};

} // namespace test

#endif
