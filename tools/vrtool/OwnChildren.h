#ifndef TOOLS_VRTOOL_OWNCHILDREN_H
#define TOOLS_VRTOOL_OWNCHILDREN_H

#include <cstdint>
#include <set>

// The process ids of the programs that this one has started and that run at this moment. An older
// program may be among them, whose parent had the same id and is gone.
// @throws std::system_error if the platform does not list them
std::set<std::uint32_t> ownChildren();

#endif
