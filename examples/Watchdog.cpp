// A tool that hangs, and the watchdog that ends it: once termination is requested the tool has a
// grace period, and is killed when that is over. The tool here is this program, started once more.

#include <vrUtils/Process.h>
#include <vrUtils/ProcessWatchdog.h>

#include <cstdint>
#include <iostream>

#include <process.h>
#include <windows.h>

namespace {

constexpr std::uint32_t graceSeconds = 1;

// Something goes wrong, and the tool waits for what never comes.
int hang() {
    Sleep(INFINITE);
    return 0;
}

// The tool's handle, which is 0 if it could not be started.
HANDLE startTool() {
    auto const program = vrUtils::Process::GetOstrelBinaryPath() + L"Watchdog.exe";
    auto const handle = _wspawnl(_P_NOWAIT, program.c_str(), L"Watchdog", L"hang", nullptr);
    return handle == -1 ? nullptr : reinterpret_cast<HANDLE>(handle);
}

} // namespace

int main(int count, char**) {
    if (count > 1)
        return hang();

    auto* const tool = startTool();
    if (!tool)
        return 1;
    try {
        vrUtils::ProcessWatchdog::ProcessTerminator watchdog(GetProcessId(tool), graceSeconds);
        std::wcout << L"the tool hangs, and is watched\n" << std::flush;
        watchdog.RequestTerminationAndWait();
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        TerminateProcess(tool, 1);
    }
    auto const hasEnded = WaitForSingleObject(tool, graceSeconds * 1000) == WAIT_OBJECT_0;
    CloseHandle(tool);
    std::wcout << (hasEnded ? L"the tool has ended\n" : L"the tool hangs on\n");
    return hasEnded ? 0 : 1;
}
