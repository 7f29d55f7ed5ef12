#ifndef VORRANELOG_FILERESERVATION_H
#define VORRANELOG_FILERESERVATION_H

#include "VorraneLog/Handle.h"

#include <string>
#include <vector>

namespace VorraneLog {

// The claim of one process to a log file and the old files that it turns into, so that no other
// process writes, renames or removes one of them. The system gives it back when the process ends,
// in whatever way that happens.
//
// A file is known by its folder's final path and its name without regard to case, so that two
// spellings of one file meet. Each is claimed by the existence of a named object, in the namespace
// of the whole computer since services and users share the folder.
class FileReservation {
  public:
    FileReservation() = default;

    // Claims all the names in the folder, which must exist. Holds nothing if another owner, of this
    // process or of another, has one of them.
    FileReservation(std::wstring const& folder, std::vector<std::wstring> const& names);

    bool isHeld() const noexcept { return !m_claims.empty(); }

  private:
    std::vector<Handle> m_claims;
};

} // namespace VorraneLog

#endif
