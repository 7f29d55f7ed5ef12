#include "tools/vrtool/OwnChildren.h"

#include "tools/vrtool/Platform.h"

#include <tlhelp32.h>

#include <system_error>

std::set<std::uint32_t> ownChildren() {
    HANDLE const snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    auto const error = GetLastError();
    if (snapshot == INVALID_HANDLE_VALUE)
        throw std::system_error(
            static_cast<int>(error), std::system_category(), "cannot list the processes");

    std::set<std::uint32_t> children;
    auto const parent = GetCurrentProcessId();
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL found = Process32FirstW(snapshot, &entry); found;
         found = Process32NextW(snapshot, &entry))
        if (entry.th32ParentProcessID == parent)
            children.insert(entry.th32ProcessID);
    CloseHandle(snapshot);
    return children;
}
