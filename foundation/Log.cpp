#include "foundation/Log.h"

namespace vrUtils {

void logComposed(char level, std::wstring const& text) noexcept {
    VL_WriteLog(level, logModule, text.c_str());
}

void logComposed(char level, std::wstring const& module, std::wstring const& text) noexcept {
    VL_WriteLog(level, module.c_str(), text.c_str());
}

} // namespace vrUtils
