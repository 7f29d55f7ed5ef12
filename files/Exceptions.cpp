#include "vrUtils/Files/Exceptions.h"

#include "foundation/FailureCodes.h"
#include "foundation/Message.h"

namespace vrUtils::Files {

LockFileException::LockFileException(vr::Path const& path)
    : vrException(composeMessage("Unable to lock ", path), FileNotLocked) {}

vrInvalidIndexPathException::vrInvalidIndexPathException(vr::Path const& path) : m_path(path) {}

} // namespace vrUtils::Files
