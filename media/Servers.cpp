#include "vrUtils/Servers.h"

namespace vrUtils::Servers {

EArchiveSource getArchiveSupport(EServerType type) {
    switch (static_cast<std::int32_t>(type)) {
    case 1:
    case 2:
    case 7:
    case 8:
    case 9:
    case 12:
    case 17:
    case 18:
    case 19:
        return eArchiveFirst;
    case 13:
        return eArchiveSecond;
    default:
        return eArchiveNone;
    }
}

bool isCombiningArchive(EServerType type) { return type == eServerCombiningArchive; }

} // namespace vrUtils::Servers
