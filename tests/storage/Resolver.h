#ifndef TESTS_STORAGE_RESOLVER_H
#define TESTS_STORAGE_RESOLVER_H

// A name service that knows a few hosts, in place of the platform's:
//
//     test::Resolver resolver{"mediaserver"};
//     EXPECT_FALSE(FindFileAsAliasIfNecessary(&path));
//     EXPECT_THAT(resolver.asked(), ElementsAre("mediaserver1x", "mediaserver1", "mediaserver"));
//
// It may be asked from any thread, like the platform.

#include "foundation/Platform.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include "tests/support/ImportHook.h"

#include <functional>
#include <initializer_list>
#include <list>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace test {

class Resolver {
  public:
    Resolver(std::initializer_list<std::string> hosts) : m_hosts(hosts) {}

    void learn(std::string host) {
        std::lock_guard const guard(m_lock);
        m_hosts.insert(std::move(host));
    }

    // Is called for each look-up, before it is answered.
    void whenAsked(std::function<void()> action) { m_whenAsked = std::move(action); }

    // The hosts that were asked for, in order.
    std::vector<std::string> asked() const {
        std::lock_guard const guard(m_lock);
        return m_asked;
    }

    // What the last error was set to, in order.
    std::vector<int> errors() const {
        std::lock_guard const guard(m_lock);
        return m_errors;
    }

    // How often an answer was given back.
    unsigned freed() const noexcept { return m_free.calls(); }

    // The answers that nobody has given back.
    std::size_t outstanding() const {
        std::lock_guard const guard(m_lock);
        return m_answers.size();
    }

    // Whether no look-up asked for a service or gave hints, and nothing but answers was freed.
    bool wasUsedCleanly() const {
        std::lock_guard const guard(m_lock);
        return m_clean;
    }

  private:
    int answer(char const* host, char const* service, addrinfo const* hints, addrinfo** result) {
        if (m_whenAsked)
            m_whenAsked();
        std::lock_guard const guard(m_lock);
        m_clean = m_clean && !service && !hints;
        m_asked.emplace_back(host);
        if (m_hosts.count(host) == 0)
            return WSAHOST_NOT_FOUND;
        *result = &m_answers.emplace_back();
        return 0;
    }

    void release(addrinfo* answer) {
        std::lock_guard const guard(m_lock);
        auto const before = m_answers.size();
        m_answers.remove_if([=](auto const& given) { return &given == answer; });
        m_clean = m_clean && m_answers.size() < before;
    }

    void noteError(int error) {
        std::lock_guard const guard(m_lock);
        m_errors.push_back(error);
    }

    std::set<std::string> m_hosts;
    std::function<void()> m_whenAsked;
    mutable std::mutex m_lock;
    std::vector<std::string> m_asked;
    std::vector<int> m_errors;
    std::list<addrinfo> m_answers;
    bool m_clean = true;
    ImportHook<int(char const*, char const*, addrinfo const*, addrinfo**)> m_ask{
        "getaddrinfo",
        [this](char const* host, char const* service, addrinfo const* hints, addrinfo** result) {
            return answer(host, service, hints, result);
        }};
    ImportHook<void(addrinfo*)> m_free{
        "freeaddrinfo", [this](addrinfo* answer) { release(answer); }};
    ImportHook<void(int)> m_setError{"WSASetLastError", [this](int error) { noteError(error); }};
};

} // namespace test

#endif
