#include "storage/PathAliasTable.h"

#include "foundation/Platform.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <mutex>
#include <string_view>

namespace vrUtils::Storage {

namespace {

constexpr std::string_view hostMark = "\\\\";
constexpr std::size_t mostCut = 3;

struct FreeAddresses {
    void operator()(addrinfo* addresses) const noexcept { freeaddrinfo(addresses); }
};

using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::string lowerCased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return text;
}

// What stands behind the host mark, up to the next backslash.
std::string_view hostOf(std::string_view path) {
    auto const host = path.substr(hostMark.size());
    return host.substr(0, host.find('\\'));
}

std::string withHost(std::string path, std::string_view host) {
    path.replace(hostMark.size(), hostOf(path).size(), host);
    return path;
}

Addresses lookUp(std::string const& host) {
    addrinfo* addresses = nullptr;
    WSASetLastError(getaddrinfo(host.c_str(), nullptr, nullptr, &addresses));
    return Addresses(addresses);
}

// The longest form of the host that resolves, as it stands or without its last characters; empty if
// none does.
std::string_view resolvable(std::string_view host) {
    for (std::size_t cut = 0; cut <= mostCut && cut < host.size(); ++cut) {
        auto const candidate = host.substr(0, host.size() - cut);
        if (lookUp(std::string(candidate)))
            return candidate;
    }
    return {};
}

} // namespace

bool PathAliasTable::substitute(std::string& path) {
    auto const lowered = lowerCased(path);
    auto const* format = "changed path %s -> %s\n";
    auto rewritten = byKnownPrefix(lowered);
    if (!rewritten) {
        format = "changed (partial match) hostname %s -> %s\n";
        rewritten = byPartialHost(lowered);
    }
    if (!rewritten) {
        format = "changed (trimmed) hostname %s -> %s\n";
        rewritten = byTrimmedHost(lowered);
    }
    if (!rewritten)
        return false;
    trace(format, path, *rewritten);
    path = *rewritten;
    return true;
}

void PathAliasTable::add(std::string key, std::string value) {
    std::lock_guard const guard(m_lock);
    m_aliases.push_back({std::move(key), std::move(value)});
    m_changed = true;
}

bool PathAliasTable::changed() const {
    std::lock_guard const guard(m_lock);
    return m_changed;
}

// Text is compared, not hosts: a key stands for every longer host too.
std::optional<std::string> PathAliasTable::byKnownPrefix(std::string const& lowered) const {
    std::lock_guard const guard(m_lock);
    for (auto const& [key, value] : m_aliases)
        if (startsWith(lowered, key))
            return value + lowered.substr(key.size());
    return std::nullopt;
}

// The host is cut down to the key's, not to what the key stands for.
std::optional<std::string> PathAliasTable::byPartialHost(std::string const& lowered) const {
    if (!startsWith(lowered, hostMark))
        return std::nullopt;
    auto const pathHost = hostOf(lowered);

    std::lock_guard const guard(m_lock);
    for (auto const& [key, value] : m_aliases) {
        if (!startsWith(key, hostMark))
            continue;
        auto const keyHost = hostOf(key);
        if (!keyHost.empty() && startsWith(pathHost, keyHost))
            return withHost(lowered, keyHost);
    }
    return std::nullopt;
}

std::optional<std::string> PathAliasTable::byTrimmedHost(std::string const& lowered) {
    if (!startsWith(lowered, hostMark))
        return std::nullopt;
    auto const met = hostOf(lowered);
    auto const host = resolvable(met);
    if (host.empty())
        return std::nullopt;

    auto const mark = std::string(hostMark);
    add(mark + std::string(met), mark + std::string(host));
    return withHost(lowered, host);
}

void PathAliasTable::trace(
    char const* format, std::string const& asMet, std::string const& rewritten) const {
    if (m_traceStream)
        std::fprintf(m_traceStream, format, asMet.c_str(), rewritten.c_str());
}

PathAliasTable& pathAliasTable() {
    static PathAliasTable table;
    return table;
}

} // namespace vrUtils::Storage
