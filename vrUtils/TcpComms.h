#ifndef VRUTILS_TCPCOMMS_H
#define VRUTILS_TCPCOMMS_H

/// @file
/// Sockets and endpoint strings.

#include "vrUtils/vrException.h"

namespace vrUtils::TcpComms {

/// A socket operation failed; source name "TcpComms". The code tells at what: 0x80E0605C resolving
/// an address, 0x80E0600B creating or connecting, 0x80004005 sending or receiving, 0x80E06034
/// waiting.
class VRUTILS_API vrSocketException : public vrException {
  public:
    using vrException::vrException;
    explicit vrSocketException(vrException const& failure) : vrException(failure) {}
};

} // namespace vrUtils::TcpComms

#endif
