#ifndef TESTS_CONFIG_DUMPEDTREE_H
#define TESTS_CONFIG_DUMPEDTREE_H

// A registry tree of a test's own, the object that dumps and restores it, and a folder for the files:
//
//     test::DumpedTree tree;
//     tree.key.setText(L"name", L"text");
//     EXPECT_EQ(0, tree.dump());
//     EXPECT_EQ(tree.onDisk("Windows Registry Editor Version 5.00\n[ROOT\\]\n..."), tree.dumped());

#include "vrUtils/Registry/RegDumper.h"

#include "tests/support/ScratchFolder.h"
#include "tests/support/ScratchKey.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace test {

// What a failed test shows of a value.
void PrintTo(RegistryValue const& value, std::ostream* stream);

// What stands for the tree's root in the sample files of tests/data/registry.
inline constexpr char sampleRoot[] = "HKEY_CURRENT_USER\\Software\\Sample";

// A file of tests/data/registry, byte for byte.
std::string sampleFile(std::string const& name);

class DumpedTree {
  public:
    ScratchKey key;
    ScratchFolder folder;

    // The tree's root as it stands in section headers.
    std::wstring root() const { return L"HKEY_CURRENT_USER\\" + key.path(); }

    vrUtils::Registry::RegDumper dumper() const { return {key.hive(), root()}; }

    vr::Path file() const { return vr::Path::file(folder.file(fileName)); }

    std::int32_t dump() const { return dumper().dumpRegistry(file()); }

    std::int32_t restore() const { return dumper().restoreRegistry(file()); }

    // The bytes of the file.
    std::string dumped() const { return folder.read(fileName); }

    // What a dump of the tree leaves in the file behind its first line and the root's header.
    std::string dumpedBehindHeader() const;

    // Makes the file of these bytes, the sample root being replaced by that of the tree.
    void write(std::string const& bytes) const { folder.write(fileName, withRoot(bytes)); }

    // Makes the file of these lines, each ending in '\n'; "ROOT" is the tree's root.
    void writeLines(std::string const& lines) const { folder.write(fileName, onDisk(lines)); }

    // Makes a file of the root's section with these lines, and restores it.
    std::int32_t restoreLines(std::string const& lines) const;

    // How many values there are directly in the root.
    DWORD values() const { return count(&Counts::values); }

    // How many keys there are directly below the root.
    DWORD subkeys() const { return count(&Counts::subkeys); }

    bool isEmpty() const { return values() == 0 && subkeys() == 0; }

    // Removes all values and subkeys.
    void wipe() const;

    // Bytes with the sample root replaced by that of the tree.
    std::string withRoot(std::string const& bytes) const;

    // Lines as they end on disk, with the root in place of "ROOT".
    std::string onDisk(std::string const& lines) const;

    static constexpr wchar_t fileName[] = L"tree.reg";

  private:
    struct Counts {
        DWORD values = 0;
        DWORD subkeys = 0;
    };

    DWORD count(DWORD Counts::*member) const;
    std::string narrowRoot() const;
};

} // namespace test

#endif
