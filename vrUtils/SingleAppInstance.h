#ifndef VRUTILS_SINGLEAPPINSTANCE_H
#define VRUTILS_SINGLEAPPINSTANCE_H

/// @file
/// Keeping a desktop program from running twice.

#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::SingleAppInstance {

/// Raises the window of this title, of whatever program; the case of the title does not count.
/// @return whether there is one. Whether the platform lets it come to the front is not looked at
VRUTILS_API bool BringWindowToFrontIfFound(std::wstring const& title);

/// A program's claim to be the only one of its name in its session, held until the object goes or
/// the process ends.
///
/// Any object that asked for the name keeps it alive, whether it got the claim or not: a second
/// process that was told "another is running" is to end, or to drop its object.
///
/// **Assigning copies the handle's value**: only one of the two objects may then be destroyed.
/// Copies cannot be constructed. An object belongs to one thread at a time.
///
/// @code
/// SingleInstance instance;
/// if (instance.isAnotherRunning(L"Ostrel Monitor"))
///     return 0;
/// @endcode
class VRUTILS_API SingleInstance {
  public:
    /// Claims nothing yet.
    SingleInstance();
    SingleInstance(SingleInstance const&) = delete;

    /// Takes the handle's value as it stands; what this object held stays open.
    SingleInstance& operator=(SingleInstance const& other);

    /// Gives the claim up.
    ~SingleInstance();

    /// Claims the name. If another has it, its main window is raised, provided that the window's
    /// title is the name and that it belongs to this same executable. Ask once for each object: it
    /// would find its own claim.
    /// @param name of the application; one with a backslash cannot be claimed, which counts as
    ///        another running
    bool isAnotherRunning(std::wstring const& name);

  private:
    void* m_mutex = nullptr;
};

} // namespace vrUtils::SingleAppInstance

#endif
