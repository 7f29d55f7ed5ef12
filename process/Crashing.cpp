#include "vrUtils/Crashing.h"

#include "foundation/Log.h"
#include "foundation/Mutex.h"
#include "foundation/Platform.h"
#include "foundation/Text.h"

#include <mutex>
#include <set>

namespace vrUtils::Crashing {

namespace {

Mutex lock;
// Lower-cased.
std::set<std::wstring> primed;

} // namespace

void primeCrash(std::wstring const& name) {
    VL_WriteLog(LogLevel::change, logModule, L"Priming crash for \"%s\"", name.c_str());
    std::lock_guard const guard(lock);
    primed.insert(Strings::toLower(name));
}

void defuseCrash(std::wstring const& name) {
    VL_WriteLog(LogLevel::change, logModule, L"Defusing crash for \"%s\"", name.c_str());
    std::lock_guard const guard(lock);
    primed.erase(Strings::toLower(name));
}

bool shouldCrash(std::wstring const& name) {
    std::lock_guard const guard(lock);
    return primed.count(Strings::toLower(name)) != 0;
}

void crashIfRequired(std::wstring const& name) {
    if (!shouldCrash(name))
        return;
    VL_WriteLog(LogLevel::plannedEnd, logModule, L"Planned crash at \"%s\"", name.c_str());
    Sleep(100);
    TerminateProcess(GetCurrentProcess(), 1);
}

} // namespace vrUtils::Crashing
