#ifndef FOUNDATION_FAILURECODES_H
#define FOUNDATION_FAILURECODES_H

#include <cstdint>

namespace vrUtils {

// Failure codes of the exceptions, in the form of Windows result codes.
inline constexpr std::uint32_t GeneralFailure = 0x80004005;
inline constexpr std::uint32_t RegistryValueMissing = 0x8000000C;
inline constexpr std::uint32_t RegistryAccessFailed = 0x81A06003;
inline constexpr std::uint32_t ShareConnectionFailed = 0x80606002;
inline constexpr std::uint32_t ShareCredentialsConflict = 0x80606005;
inline constexpr std::uint32_t PortOutOfRange = 0x80E06007;
inline constexpr std::uint32_t SocketNotConnected = 0x80E0600B;
inline constexpr std::uint32_t AudioTagParsingFailed = 0x80E06025;
inline constexpr std::uint32_t SocketFailedWaiting = 0x80E06034;
inline constexpr std::uint32_t ServerNotResolved = 0x80E0605C;
inline constexpr std::uint32_t MalformedUrlEscape = 0x80E0609D;
inline constexpr std::uint32_t FileNotLocked = 0x80E0609E;

} // namespace vrUtils

#endif
