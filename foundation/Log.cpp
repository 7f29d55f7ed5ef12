#include "foundation/Log.h"

namespace vrUtils {

void logComposed(char level, std::wstring const& text) noexcept {
    VL_WriteLog(level, logModule, text.c_str());
}

} // namespace vrUtils
