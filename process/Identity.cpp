#include "vrUtils/Process/Identity.h"

#include "foundation/FailureCodes.h"
#include "foundation/Handle.h"
#include "foundation/Platform.h"
#include "vrUtils/vrException.h"

#include <lmcons.h>
#include <psapi.h>
#include <shlobj.h>

#include <array>

namespace vrUtils::Process {

namespace {

vr::Path appended(vr::Path path, wchar_t const* folder) {
    path.modify(vr::Path::eDetect).append(folder);
    return path;
}

PROCESS_MEMORY_COUNTERS queryMemory() {
    ProcessOwner const process(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, GetCurrentProcessId()));
    if (!process)
        throw vrException("Process", __LINE__, L"OpenProcess failed", GeneralFailure);

    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(process.get(), &counters, sizeof counters))
        throw vrException("Process", __LINE__, L"GetProcessMemoryInfo failed", GeneralFailure);
    return counters;
}

} // namespace

std::wstring GetComputerNameW() {
    std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name;
    auto units = static_cast<DWORD>(name.size());
    if (!::GetComputerNameW(name.data(), &units))
        return {};
    return name.data();
}

std::wstring GetCurrentUserName() {
    std::array<wchar_t, UNLEN + 1> name;
    auto units = static_cast<DWORD>(name.size());
    if (!GetUserNameW(name.data(), &units))
        return {};
    return name.data();
}

AboutProcessMem GetCurrentProcessMemoryInfo() {
    auto const counters = queryMemory();
    AboutProcessMem memory;
    memory.PageFaultCount = counters.PageFaultCount;
    memory.PeakWorkingSetSize = counters.PeakWorkingSetSize;
    memory.WorkingSetSize = counters.WorkingSetSize;
    memory.QuotaPeakPagedPoolUsage = counters.QuotaPeakPagedPoolUsage;
    memory.QuotaPagedPoolUsage = counters.QuotaPagedPoolUsage;
    memory.QuotaPeakNonPagedPoolUsage = counters.QuotaPeakNonPagedPoolUsage;
    memory.QuotaNonPagedPoolUsage = counters.QuotaNonPagedPoolUsage;
    memory.PagefileUsage = counters.PagefileUsage;
    memory.PeakPagefileUsage = counters.PeakPagefileUsage;
    return memory;
}

std::wstring GetOstrelBinaryPath() {
    std::array<wchar_t, MAX_PATH> name;
    auto const units =
        GetModuleFileNameW(GetModuleHandleW(nullptr), name.data(), static_cast<DWORD>(name.size()));
    vr::PathSplitter const program(std::wstring(name.data(), units), true);
    return program.folderPath();
}

vr::Path GetVorranePath() {
    // Left empty by a platform that does not know the folder.
    std::array<wchar_t, MAX_PATH> programFiles{};
    SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, programFiles.data());
    return appended(vr::Path(programFiles.data(), vr::Path::eDetect), L"\\Vorrane\\");
}

vr::Path GetOstrelServerPath() { return appended(GetVorranePath(), L"\\Ostrel Server\\"); }

} // namespace vrUtils::Process
