#include "vrUtils/Storage/DiskSpace.h"

#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "vrUtils/Storage/ShareConnection.h"

namespace vrUtils::Storage {

namespace {

constexpr unsigned bitsOfMegabyte = 20;

// A log line has room for 32 bits.
long megabytes(std::uint64_t bytes) {
    return static_cast<long>(static_cast<std::uint32_t>(bytes >> bitsOfMegabyte));
}

bool readFreeBytes(vr::PathCreator const& folder, std::uint64_t& bytes) {
    ULARGE_INTEGER free{};
    if (!GetDiskFreeSpaceExW(folder.c_str(), nullptr, nullptr, &free))
        return false;
    bytes = free.QuadPart;
    return true;
}

long unknown(wchar_t const* format, DWORD error) {
    VL_WriteLog(LogLevel::failure, logModule, format, error);
    return DiskSpaceUnknown;
}

bool mayBeRefusedUser(DWORD error) {
    return error == ERROR_LOGON_FAILURE || error == ERROR_ACCESS_DENIED;
}

long compare(std::uint64_t free, std::uint64_t required) {
    if (required <= free) {
        VL_WriteLog(
            LogLevel::information, logModule, L"Available disk-space [%ld]MB, required [%ld]MB",
            megabytes(free), megabytes(required));
        return 0;
    }
    VL_WriteLog(
        LogLevel::failure, logModule,
        L"Not enough available disk-space, remaining [%ld]MB, required [%ld]MB", megabytes(free),
        megabytes(required));
    return DiskSpaceNotEnough;
}

} // namespace

long CheckForDiskSpace(SrvrParam const* server, std::uint64_t required) {
    vr::PathCreator folder(server->host, server->folder, nullptr, nullptr);
    folder.append(L"\\");
    std::uint64_t free = 0;
    if (readFreeBytes(folder, free))
        return compare(free, required);
    auto const error = GetLastError();
    if (!mayBeRefusedUser(error) || server->userName.empty())
        return unknown(
            L"Could not determine available disk-space on destination, errcode = %d", error);

    if (ConnectAsUserWithRetCode(folder, server->userName.c_str(), server->password.c_str()) != 0)
        // Readers of the log know the last error of the thread here, not the connection's result.
        return unknown(
            L"Could not determine available disk-space on destination - invalid login "
            L"credentials, errcode = %d",
            GetLastError());
    if (!readFreeBytes(folder, free)) {
        auto const refusal = GetLastError();
        return unknown(
            L"Could not determine available disk-space on destination(login failed?), errcode = %d",
            refusal);
    }
    return compare(free, required);
}

} // namespace vrUtils::Storage
