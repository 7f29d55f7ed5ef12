#ifndef CONFIG_TREERESTORE_H
#define CONFIG_TREERESTORE_H

#include "config/DumpLine.h"
#include "config/RegistryKey.h"
#include "vrUtils/Registry/RegDumper.h"

#include <cstddef>
#include <string>

namespace vrUtils::Registry {

// Writes the lines of a dump file's sections back as values.
class TreeRestore {
  public:
    // Writes the lines of one section, as the platform's profile functions give them: each ends
    // with a zero character, and an empty one ends them all.
    // @throws std::out_of_range a line ends at its equals sign, or a byte has one digit only
    void apply(RegistryKey const& key, wchar_t const* lines, std::size_t count);

    // The result of the last write; RegRestoreNothing before the first.
    long status() const noexcept { return m_status; }

  private:
    void applyLine(RegistryKey const& key, std::wstring const& line);
    void applyNumber(RegistryKey const& key, DumpLine const& value);
    void applyBytes(RegistryKey const& key, DumpLine const& value);
    void applyList(RegistryKey const& key, DumpLine const& value);

    long m_status = RegRestoreNothing;
};

} // namespace vrUtils::Registry

#endif
