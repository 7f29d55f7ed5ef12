#ifndef VRUTILS_REGISTRY_REGDUMPER_H
#define VRUTILS_REGISTRY_REGDUMPER_H

/// @file
/// A registry tree saved to a text file and written back.

#include "vrUtils/Path.h"
#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

struct HKEY__;

/// A key handle, as the platform's headers declare it.
using HKEY = HKEY__*;

namespace vrUtils::Registry {

/// The tree could not be opened or walked.
inline constexpr auto RegDumpFailed = static_cast<std::int32_t>(0x81A0600C);

/// The file gave no section, or no value was written.
inline constexpr auto RegRestoreNothing = static_cast<std::int32_t>(0x81A0600D);

/// Saves one registry tree to a text file, and writes it back.
///
/// The file looks like an export of the platform's registry editor but is not one: it holds
/// `REG_SZ`, `REG_DWORD`, `REG_BINARY` and `REG_MULTI_SZ`, escapes nothing, and is read back with
/// the functions for profile (.ini) files. `docs/registry-dump.md` tells the format, and what does
/// not survive the way back.
///
/// @code
/// RegDumper const tree(HKEY_CURRENT_USER, L"HKEY_CURRENT_USER\\Software\\Vorrane\\Ostrel");
/// auto const code = tree.dumpRegistry(vr::Path::file(L"C:\\Backup\\Ostrel.reg"));
/// @endcode
///
/// An object holds its two values and nothing else; it may be copied, and used from any thread.
class VRUTILS_API RegDumper {
  public:
    /// @param hive the open key in which the tree lies, such as `HKEY_CURRENT_USER`; borrowed
    /// @param path the tree's root as it stands in the file: "HKEY_CURRENT_USER\" and the key below
    ///        the hive. The first 18 characters are never looked at, whatever the hive
    RegDumper(HKEY hive, std::wstring path);

    /// Writes the tree to a file, in place of what was there. It is no snapshot: changes that
    /// others make meanwhile are seen or not.
    ///
    /// A character beyond U+00FF ends the output for good; what stands before it stays. A file that
    /// cannot be opened or written does not change the result. A key that does not open below the
    /// first level cuts the dump short without a word.
    /// @return 0; or `RegDumpFailed` if the root does not open, no file then being touched, with
    ///         the line "Failed to open registry hive [PATH]" in the log at level 3; or
    ///         `RegDumpFailed` if a key directly below the root does not open, the file then being
    ///         deleted, with the line "Failed to save registry hive [PATH], file deleted" at level 3
    /// @throws std::out_of_range if the path is shorter than 18 characters
    std::int32_t dumpRegistry(vr::Path const& file) const;

    /// Writes what a file holds into the tree; values that are not in the file stay. The names of
    /// its sections are cut after the length of the path, whatever they begin with.
    ///
    /// Beware: a key that cannot be made is tried again without end.
    /// @param file absolute; a bare name would be looked up in the Windows folder
    /// @return the result of the last write of a value, as a Windows error: 0 if it was taken; 13 if
    ///         an empty list of strings came last; `RegRestoreNothing` if no value was written
    /// @throws std::out_of_range for a path shorter than 18 characters, a section's name shorter
    ///         than the path, a line that ends at its equals sign, a byte with one digit only; what
    ///         stands before it in the file has been written then
    std::int32_t restoreRegistry(vr::Path const& file) const;

  private:
    HKEY m_hive;
    std::wstring m_path;
};

} // namespace vrUtils::Registry

#endif
