#include "tests/support/HandleCount.h"

#include "tests/support/OwnedHandle.h"

#include <gtest/gtest.h>

#include <winternl.h>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace test {

namespace {

// The list of all handles of the system, which the platform's headers do not declare. The plain
// question for the number of a process's handles is not answered on every platform.
constexpr int extendedHandleInformation = 64;
constexpr NTSTATUS lengthMismatch = static_cast<NTSTATUS>(0xC0000004);

struct HandleEntry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT backTrace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

struct HandleList {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};

// The headers' enumeration of questions is too narrow for this one.
using Query = NTSTATUS(NTAPI*)(int, void*, ULONG, ULONG*);

Query systemQuery() {
    auto const function =
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    return reinterpret_cast<Query>(reinterpret_cast<void (*)()>(function));
}

std::vector<std::uintptr_t> systemHandleList() {
    auto const query = systemQuery();
    std::vector<std::uintptr_t> buffer(std::size_t{1} << 14);
    NTSTATUS status = lengthMismatch;
    while (status == lengthMismatch) {
        buffer.resize(buffer.size() * 2);
        status = query(
            extendedHandleInformation, buffer.data(),
            static_cast<ULONG>(buffer.size() * sizeof buffer[0]), nullptr);
    }
    if (status != 0)
        throw platformFailure(RtlNtStatusToDosError(status), "cannot list the handles");
    return buffer;
}

} // namespace

std::vector<std::uintptr_t> openHandles() {
    auto const buffer = systemHandleList();
    auto const& list = *reinterpret_cast<HandleList const*>(buffer.data());
    std::vector<std::uintptr_t> handles;
    for (auto* entry = list.entries; entry != list.entries + list.count; ++entry)
        if (entry->process == GetCurrentProcessId())
            handles.push_back(entry->handle);
    std::sort(handles.begin(), handles.end());
    return handles;
}

std::size_t handleCount() { return openHandles().size(); }

HandleLeakCheck::~HandleLeakCheck() {
    auto const after = openHandles();
    if (after.size() <= m_before.size())
        return;
    std::vector<std::uintptr_t> added;
    std::set_difference(
        after.begin(), after.end(), m_before.begin(), m_before.end(), std::back_inserter(added));
    std::ostringstream list;
    for (auto const handle : added)
        list << " 0x" << std::hex << handle;
    ADD_FAILURE() << after.size() - m_before.size()
                  << " handles were left open, of these:" << list.str();
}

} // namespace test
