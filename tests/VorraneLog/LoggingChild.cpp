#include "tests/VorraneLog/LoggingChild.h"

#include "VorraneLog/VorraneLog.h"

namespace test {

ChildStart loggingTo(std::wstring const& file, std::wstring const& level) {
    ChildStart start;
    start.environment = {{L"VORRANELOG_FILE", file}, {L"VORRANELOG_LEVEL", level}};
    return start;
}

ChildAction const logFormats(L"log formats", [](ChildAction::Arguments const& formats) {
    for (auto const& format : formats)
        VL_WriteLog(6, moduleName, format.c_str());
    return 0;
});

} // namespace test
