#include "VorraneLog/VorraneLog.h"

void VL_WriteLog(char, wchar_t const*, wchar_t const*, ...) noexcept {}

void VL_WriteDebugLog(char, wchar_t const*, wchar_t const*, int, wchar_t const*, ...) noexcept {}
