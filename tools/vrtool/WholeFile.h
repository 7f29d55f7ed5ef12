#ifndef TOOLS_VRTOOL_WHOLEFILE_H
#define TOOLS_VRTOOL_WHOLEFILE_H

#include "vrUtils/Path.h"
#include "vrUtils/Storage.h"

#include <string>

// A file that appears under its name only when it is whole. It is written under the name with
// ".part" added, and takes the place of whatever has its name in one step; unless that is done, the
// part goes with the object. A process that dies leaves the part, which the next one writes over.
class WholeFile {
  public:
    explicit WholeFile(vr::Path const& target);

    // Where it is written.
    vr::Path const& part() const { return m_part; }

    // Takes the place of the target.
    // @throws TransferFailure with the reason; the target then is as it was
    void commit();

  private:
    vr::Path m_target;
    vr::Path m_part;
    vrUtils::Storage::TempFileDeleter m_partDeleter;
};

// Writes a small text as a whole file.
// @throws vrException, TransferFailure
void saveWhole(std::string const& text, vr::Path const& target);

#endif
