#ifndef VRUTILS_STORAGE_SHARECONNECTION_H
#define VRUTILS_STORAGE_SHARECONNECTION_H

/// @file
/// Connections to network shares under a user's name, without a drive letter.
///
/// A connection always goes to the share itself, however deep the path reaches:
/// `\\srv\share\a\b.mov` connects to `\\srv\share`. The path has a separator behind the share,
/// since its last word counts as a file's name: `\\srv\share` alone would connect to `\\srv\`.
///
/// Each call is one attempt and blocks for as long as the platform takes. The password is never
/// logged. All of it may be called from any thread.

#include "vrUtils/Path.h"

#include <cstdint>
#include <string>

namespace vrUtils::Storage {

/// Connects. Logs `Server : [ROOT] WNetAddConnection2 connecting to "SHARE"` at level 6 first, and
/// on failure `Server : ROOT WNetAddConnection2 failed, error (NUMBER), using username [USER] to
/// connect to "SHARE"` and the platform's text for the error at level 7.
/// @param user null for the user that the process runs as
/// @param password null for the one of that user
/// @return 0 or the Windows error
VRUTILS_API std::uint32_t
ConnectAsUserWithRetCode(vr::PathCreator const& path, wchar_t const* user, wchar_t const* password);

/// `ConnectAsUserWithRetCode` without a reason.
/// @return whether it connected
VRUTILS_API bool
ConnectAsUser(vr::PathCreator const& path, wchar_t const* user, wchar_t const* password);

/// Ends a connection, unless files are open over it. Whether there was one is not looked at.
/// @param name the share, such as `\\srv\share`
VRUTILS_API void Disconnect(std::wstring const& name);

/// A connection that ends with its scope.
///
/// **Each copy ends the connection when it goes.** The end is asked for with the text as it was
/// given, while the connection was made to the share: a path with folders or a separator behind the
/// share leaves the connection standing.
class VRUTILS_API NetworkShareConnection {
  public:
    /// Connects, as `ConnectAsUserWithRetCode` does.
    /// @throws vrException "Failed to connect to share " and the text of the path; source name
    ///         "Storage", line 768; code 0x80606005 if the share is connected under another user's
    ///         name already (1219), otherwise 0x80606002
    NetworkShareConnection(
        vr::PathCreator const& path, std::wstring const& user, std::wstring const& password);

    /// Ends the connection too; see above.
    NetworkShareConnection(NetworkShareConnection const&);
    /// Takes over the other's connection; the one that this object held stays.
    NetworkShareConnection& operator=(NetworkShareConnection const&);

    /// Ends the connection; failures are not reported.
    ~NetworkShareConnection();

  private:
    bool m_connected = false;
    std::wstring m_path;
};

} // namespace vrUtils::Storage

#endif
