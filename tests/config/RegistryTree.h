#ifndef TESTS_CONFIG_REGISTRYTREE_H
#define TESTS_CONFIG_REGISTRYTREE_H

// Registry trees as values: made at random, put into the registry, read out of it, and what a dump
// and a restore leave of them.

#include "tests/config/DumpedTree.h"
#include "tests/support/Campaign.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace test {

// By name, in the order of the registry as long as the names begin with different digits.
using RegistryValues = std::map<std::wstring, RegistryValue>;

// By path below the root, which is the empty one.
using RegistryTree = std::map<std::wstring, RegistryValues>;

// The bytes of a REG_SZ value, with its end.
RegistryValue textValue(std::wstring const& text);

RegistryValue numberValue(std::uint32_t number);

void put(RegistryTree const& tree, ScratchKey const& key);

RegistryTree treeOf(ScratchKey const& key);

// A small tree of what a dump and a restore give back as it was.
RegistryTree randomSurvivor(Campaign& campaign);

// A small tree of all that they may lose.
RegistryTree randomLoser(Campaign& campaign);

// What a dump and a restore leave of a tree, as docs/registry-dump.md tells.
struct Remains {
    RegistryTree tree;
    // What the restore gives; none if it ends in std::out_of_range.
    std::optional<std::int32_t> status;
};

Remains remainsOf(RegistryTree const& tree);

} // namespace test

#endif
