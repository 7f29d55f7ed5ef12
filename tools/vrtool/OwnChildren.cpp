#include "tools/vrtool/OwnChildren.h"

#include "tools/vrtool/OwnedHandle.h"

#include <tlhelp32.h>

#include <system_error>

std::set<std::uint32_t> ownChildren() {
    OwnedHandle const snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    auto const error = GetLastError();
    if (snapshot.get() == INVALID_HANDLE_VALUE)
        throw std::system_error(
            static_cast<int>(error), std::system_category(), "cannot list the processes");

    std::set<std::uint32_t> children;
    auto const parent = GetCurrentProcessId();
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL found = Process32FirstW(snapshot.get(), &entry); found;
         found = Process32NextW(snapshot.get(), &entry))
        if (entry.th32ParentProcessID == parent)
            children.insert(entry.th32ProcessID);
    return children;
}
