#ifndef CONFIG_PRODUCTROOT_H
#define CONFIG_PRODUCTROOT_H

#include <string>

namespace vrUtils::Registry {

// Whether the product's root key begins this path, without regard to case. What follows is not
// looked at, so a neighbour whose name only begins as the root's does counts too.
bool beginsWithProductRoot(std::wstring const& path);

// Makes the product's root key in the machine's hive, with an access list that lets everyone write
// settings below it. A key that is there already stays as it is. A failure is told to a debugger
// only: whether the key wanted can be made will show.
void createProductRoot();

} // namespace vrUtils::Registry

#endif
