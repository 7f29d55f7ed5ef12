#ifndef FILES_DRIVEMAPPINGS_H
#define FILES_DRIVEMAPPINGS_H

namespace vrUtils::Files {

// Makes the connections that the registry lists, and fills the table of path mappings from the drive
// letters of the machine. Failures are logged at most.
void loadDriveMappings();

} // namespace vrUtils::Files

#endif
