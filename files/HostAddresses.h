#ifndef FILES_HOSTADDRESSES_H
#define FILES_HOSTADDRESSES_H

#include <list>
#include <string>

namespace vrUtils::Files {

// The dotted IPv4 addresses of a host, in the order of the name service; none if it is not known.
// The empty name is this computer.
// @param name with or without backslashes around it; its case does not count
std::list<std::wstring> getHostAddresses(std::wstring const& name);

// This computer's name; empty if the platform does not give it.
std::wstring getComputerName();

} // namespace vrUtils::Files

#endif
