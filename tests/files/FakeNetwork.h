#ifndef TESTS_FILES_FAKENETWORK_H
#define TESTS_FILES_FAKENETWORK_H

// A network of the tests' own, in place of what the platform knows of names, shares and drives:
//
//     test::ThisComputer const computer(L"HOST1");
//     test::NameService const names{{"host1", {"10.0.0.1", "10.0.0.2"}}};
//     EXPECT_TRUE(isPathToThisMachine(path));
//     EXPECT_THAT(names.asked(), ElementsAre("host1", "server"));
//
// All may be asked from any thread, like the platform.

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"
#include "vrUtils/Files/UncToLocalPath.h"

#include <lm.h>
#include <winnetwk.h>
#include <winsock2.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cwchar>
#include <initializer_list>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace test {

// The name that the platform gives this computer. It refuses one that does not fit, as the platform
// does, and so any name of 16 characters.
class ThisComputer {
  public:
    explicit ThisComputer(std::wstring name) : m_name(std::move(name)) {}

    unsigned calls() const noexcept { return m_hook.calls(); }

    // Whether each call brought a buffer of 16 zeros.
    bool wasAskedCleanly() const noexcept { return m_clean; }

  private:
    BOOL answer(wchar_t* buffer, DWORD* size) {
        m_clean = m_clean && *size == 16 &&
                  std::all_of(buffer, buffer + *size, [](wchar_t c) { return c == L'\0'; });
        if (m_name.size() >= *size) {
            SetLastError(ERROR_BUFFER_OVERFLOW);
            return FALSE;
        }
        *size = static_cast<DWORD>(m_name.copy(buffer, m_name.size()));
        return TRUE;
    }

    std::wstring const m_name;
    std::atomic<bool> m_clean{true};
    ImportHook<decltype(GetComputerNameW)> m_hook{
        "GetComputerNameW", [this](wchar_t* buffer, DWORD* size) { return answer(buffer, size); }};
};

// Hosts with their addresses; names have to match exactly, and no other name is known.
class NameService {
  public:
    using Hosts = std::map<std::string, std::vector<std::string>>;

    explicit NameService(std::initializer_list<Hosts::value_type> hosts) : m_hosts(hosts) {}

    // The names that were asked for, in order.
    std::vector<std::string> asked() const {
        std::lock_guard const guard(m_lock);
        return m_asked;
    }

  private:
    static constexpr std::size_t mostAddresses = 8;

    // A thread has one answer at a time: the next one takes its place. There is nothing to destroy
    // in it, since the runtime may free what belongs to a thread before it destroys it.
    struct Answer {
        hostent entry;
        std::array<in_addr, mostAddresses> binary;
        std::array<char*, mostAddresses + 1> list;
    };

    hostent* answer(char const* name) {
        {
            std::lock_guard const guard(m_lock);
            m_asked.emplace_back(name);
        }
        auto const host = m_hosts.find(name);
        if (host == m_hosts.end()) {
            WSASetLastError(WSAHOST_NOT_FOUND);
            return nullptr;
        }

        thread_local Answer last;
        last = {};
        for (std::size_t index = 0; index < host->second.size(); ++index) {
            last.binary.at(index).s_addr = inet_addr(host->second[index].c_str());
            last.list.at(index) = reinterpret_cast<char*>(&last.binary.at(index));
        }
        last.entry.h_addr_list = last.list.data();
        return &last.entry;
    }

    Hosts const m_hosts;
    mutable std::mutex m_lock;
    std::vector<std::string> m_asked;
    ImportHook<decltype(gethostbyname)> m_hook{
        "gethostbyname", [this](char const* name) { return answer(name); }};
};

// The shares of this computer, by the server and share name that are asked for.
class Shares {
  public:
    using Folders = std::map<std::pair<std::wstring, std::wstring>, std::wstring>;

    // @param failure what the platform answers for a share that is not there
    explicit Shares(
        std::initializer_list<Folders::value_type> folders,
        NET_API_STATUS failure = NERR_NetNameNotFound)
        : m_folders(folders), m_failure(failure) {}

    // What was asked for, as server, bar, share, bar and level, in order.
    std::vector<std::wstring> asked() const {
        std::lock_guard const guard(m_lock);
        return m_asked;
    }

    // How often the platform was told to free an answer, null included.
    unsigned freed() const noexcept { return m_free.calls(); }

    // The answers that nobody has freed.
    std::size_t outstanding() const {
        std::lock_guard const guard(m_lock);
        return m_answers.size();
    }

    // Whether all that was freed was an answer that stood, or null.
    bool wereFreedSoundly() const noexcept { return m_sound; }

  private:
    struct Answer {
        SHARE_INFO_2 information;
        std::wstring folder;
    };

    NET_API_STATUS answer(wchar_t const* server, wchar_t const* share, DWORD level, BYTE** buffer) {
        std::lock_guard const guard(m_lock);
        m_asked.push_back(std::wstring(server) + L'|' + share + L'|' + std::to_wstring(level));
        auto const folder = m_folders.find({server, share});
        // As some platforms do, a failure leaves the buffer as it is.
        if (folder == m_folders.end())
            return m_failure;
        auto const& answer =
            m_answers.emplace_back(std::make_unique<Answer>(Answer{{}, folder->second}));
        answer->information.shi2_path = answer->folder.data();
        *buffer = reinterpret_cast<BYTE*>(&answer->information);
        return NERR_Success;
    }

    NET_API_STATUS release(void* buffer) {
        std::lock_guard const guard(m_lock);
        auto const before = m_answers.size();
        m_answers.remove_if([=](auto const& answer) { return &answer->information == buffer; });
        if (buffer && m_answers.size() == before)
            m_sound = false;
        return NERR_Success;
    }

    Folders const m_folders;
    NET_API_STATUS const m_failure;
    mutable std::mutex m_lock;
    std::vector<std::wstring> m_asked;
    std::list<std::unique_ptr<Answer>> m_answers;
    std::atomic<bool> m_sound{true};
    ImportHook<decltype(NetShareGetInfo)> m_ask{
        "NetShareGetInfo", [this](LMSTR server, LMSTR share, DWORD level, BYTE** buffer) {
            return answer(server, share, level, buffer);
        }};
    ImportHook<decltype(NetApiBufferFree)> m_free{
        "NetApiBufferFree", [this](void* buffer) { return release(buffer); }};
};

// The drive letters of the machine, each by its root, with the share that it is connected to; empty
// for a disk of the machine. Connections that are asked for are noted, and refused.
class Drives {
  public:
    using Roots = std::vector<std::pair<std::wstring, std::wstring>>;

    // For a disk the call gives one error and leaves another as the last one.
    static constexpr DWORD resultForDisks = ERROR_NOT_CONNECTED;
    static constexpr DWORD lastErrorForDisks = 0x4BC;

    explicit Drives(std::initializer_list<Roots::value_type> roots) : m_roots(roots) {}

    // The connections, as local name, bar and remote name, in order.
    std::vector<std::wstring> connected() const {
        std::lock_guard const guard(m_lock);
        return m_connected;
    }

    // The drives whose share was asked for, in order.
    std::vector<std::wstring> asked() const {
        std::lock_guard const guard(m_lock);
        return m_asked;
    }

    // How often the drives were listed.
    unsigned lists() const noexcept { return m_list.calls(); }

    // Whether all calls had the arguments that they should, beside those that are noted.
    bool wereAskedCleanly() const noexcept { return m_clean; }

  private:
    void expect(bool condition) {
        if (!condition)
            m_clean = false;
    }

    DWORD list(DWORD units, wchar_t* buffer) {
        expect(units == 1024 && std::all_of(buffer, buffer + units, [](wchar_t c) {
                   return c == L'\0';
               }));
        auto* end = buffer;
        for (auto const& [root, share] : m_roots)
            end += root.copy(end, root.size()) + 1;
        // Zero would be a failure.
        return std::max(static_cast<DWORD>(end - buffer), DWORD{1});
    }

    DWORD universalName(wchar_t const* drive, DWORD level, void* buffer, DWORD* size) {
        std::lock_guard const guard(m_lock);
        m_asked.emplace_back(drive);
        expect(level == UNIVERSAL_NAME_INFO_LEVEL && *size == 1024);
        auto const found = std::find_if(
            m_roots.begin(), m_roots.end(), [=](auto const& root) { return root.first == drive; });
        if (found == m_roots.end() || found->second.empty()) {
            SetLastError(lastErrorForDisks);
            return resultForDisks;
        }
        auto* const information = static_cast<UNIVERSAL_NAME_INFOW*>(buffer);
        information->lpUniversalName = reinterpret_cast<wchar_t*>(information + 1);
        std::wcscpy(information->lpUniversalName, found->second.c_str());
        return NO_ERROR;
    }

    DWORD
    connect(NETRESOURCEW* resource, wchar_t const* password, wchar_t const* user, DWORD flags) {
        std::lock_guard const guard(m_lock);
        m_connected.push_back(std::wstring(resource->lpLocalName) + L'|' + resource->lpRemoteName);
        expect(!password && !user && flags == 0);
        expect(resource->dwType == RESOURCETYPE_DISK && !resource->lpProvider);
        expect(resource->dwScope == 0 && resource->dwDisplayType == 0 && resource->dwUsage == 0);
        expect(!resource->lpComment);
        return ERROR_NO_NETWORK;
    }

    Roots const m_roots;
    mutable std::mutex m_lock;
    std::vector<std::wstring> m_asked;
    std::vector<std::wstring> m_connected;
    std::atomic<bool> m_clean{true};
    ImportHook<decltype(GetLogicalDriveStringsW)> m_list{
        "GetLogicalDriveStringsW",
        [this](DWORD units, wchar_t* buffer) { return list(units, buffer); }};
    ImportHook<decltype(WNetGetUniversalNameW)> m_universalName{
        "WNetGetUniversalNameW",
        [this](wchar_t const* drive, DWORD level, void* buffer, DWORD* size) {
            return universalName(drive, level, buffer, size);
        }};
    ImportHook<decltype(WNetAddConnection2W)> m_connect{
        "WNetAddConnection2W",
        [this](NETRESOURCEW* resource, wchar_t const* password, wchar_t const* user, DWORD flags) {
            return connect(resource, password, user, flags);
        }};
};

// Makes the first resolution of this process, on a machine with neither settings nor drives.
inline void resolveOnceWithoutDrives() {
    FailingImport<decltype(RegCreateKeyExW)> const noKey(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
    Drives const noDrives{};
    vrUtils::Files::uncToLocalPath({});
}

} // namespace test

#endif
