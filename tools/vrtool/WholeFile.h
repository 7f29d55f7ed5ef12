#ifndef TOOLS_VRTOOL_WHOLEFILE_H
#define TOOLS_VRTOOL_WHOLEFILE_H

#include "vrUtils/Path.h"
#include "vrUtils/Storage.h"

#include <cstdint>
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
    // @param size of the whole file
    // @throws TransferFailure with the reason; the target then is as it was
    void commit(std::uint64_t size);

    // The same for a target that is not there; one that has come meanwhile is in the way.
    void commitNew(std::uint64_t size);

  private:
    void rename(std::uint64_t size, std::uint32_t flags);

    vr::Path m_target;
    vr::Path m_part;
    vrUtils::Storage::TempFileDeleter m_partDeleter;
};

// The part of a target.
vr::Path partOf(vr::Path const& target);

// @throws TransferFailure unless there is a file of this size
void requireWhole(vr::Path const& file, std::uint64_t size);

// Writes a small text as a whole file.
// @throws TransferFailure
void saveWhole(std::string const& text, vr::Path const& target);

#endif
