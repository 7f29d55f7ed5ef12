#ifndef VRUTILS_STORAGE_DIRECTORYSETTER_H
#define VRUTILS_STORAGE_DIRECTORYSETTER_H

/// @file
/// A working directory for the length of a scope.

#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::Storage {

/// Changes the working directory, and changes it back when it goes. A directory that cannot be set
/// is logged as `Failed to set directory to "DIRECTORY" Error code : NUMBER` at level 4, and the
/// caller goes on in the old one; neither end throws but for want of memory in the constructor.
///
/// The working directory belongs to the whole process: use it only where no other thread depends on
/// it. **Copies change it back too**, each when it goes.
class VRUTILS_API DirectorySetter {
  public:
    /// @param logModule the module name of the log line
    DirectorySetter(std::wstring const& directory, std::wstring const& logModule);

    /// Changes the directory back too; see above.
    DirectorySetter(DirectorySetter const&);
    /// Takes over what the other is to change back to, and forgets its own.
    DirectorySetter& operator=(DirectorySetter const&);

    /// Sets the directory that was there at construction.
    ~DirectorySetter();

  private:
    void _setDirectory(std::wstring const& directory) const noexcept;

    std::wstring m_savedDirectory;
    std::wstring m_logModule;
};

} // namespace vrUtils::Storage

#endif
