#include "vrUtils/Storage/ShareConnection.h"

#include "foundation/FailureCodes.h"
#include "foundation/Log.h"
#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "vrUtils/vrException.h"

#include <winnetwk.h>

namespace vrUtils::Storage {

namespace {

// The line that readers of this failure look for.
constexpr std::uint32_t connectFailureLine = 768;

constexpr DWORD processLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);

std::wstring shareOf(vr::PathSplitter const& parts) {
    return L"\\\\" + Strings::trimSlashes(parts.root()) + L'\\' +
           Strings::trimSlashes(parts.firstFolder());
}

void logSystemText(DWORD error) {
    wchar_t* text = nullptr;
    FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, error, processLanguage, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (!text)
        return;
    VL_WriteLog(LogLevel::trace, logModule, text);
    LocalFree(text);
}

void cancelConnection(std::wstring const& name) noexcept {
    WNetCancelConnection2W(name.c_str(), 0, FALSE);
}

} // namespace

std::uint32_t ConnectAsUserWithRetCode(
    vr::PathCreator const& path, wchar_t const* user, wchar_t const* password) {
    vr::PathSplitter const parts(path.get(), true);
    auto const root = parts.root();
    auto share = shareOf(parts);
    VL_WriteLog(
        LogLevel::information, logModule, L"Server : [%s] WNetAddConnection2 connecting to \"%s\"",
        root.c_str(), share.c_str());

    NETRESOURCEW resource{};
    resource.dwType = RESOURCETYPE_DISK;
    resource.lpRemoteName = share.data();
    auto const error = WNetAddConnection2W(&resource, password, user, 0);
    if (error == NO_ERROR)
        return 0;

    VL_WriteLog(
        LogLevel::trace, logModule,
        L"Server : %s WNetAddConnection2 failed, error (%d), using username [%s] to connect to "
        L"\"%s\"",
        root.c_str(), error, user, share.c_str());
    logSystemText(error);
    return error;
}

bool ConnectAsUser(vr::PathCreator const& path, wchar_t const* user, wchar_t const* password) {
    return ConnectAsUserWithRetCode(path, user, password) == 0;
}

void Disconnect(std::wstring const& name) { cancelConnection(name); }

NetworkShareConnection::NetworkShareConnection(
    vr::PathCreator const& path, std::wstring const& user, std::wstring const& password)
    : m_path(path.get()) {
    auto const error = ConnectAsUserWithRetCode(path, user.c_str(), password.c_str());
    m_connected = error == 0;
    if (!m_connected)
        throw vrException(
            "Storage", connectFailureLine, composeMessage(L"Failed to connect to share ", m_path),
            error == ERROR_SESSION_CREDENTIAL_CONFLICT ? ShareCredentialsConflict
                                                       : ShareConnectionFailed);
}

NetworkShareConnection::NetworkShareConnection(NetworkShareConnection const&) = default;

NetworkShareConnection& NetworkShareConnection::operator=(NetworkShareConnection const&) = default;

NetworkShareConnection::~NetworkShareConnection() {
    if (m_connected)
        cancelConnection(m_path);
}

} // namespace vrUtils::Storage
