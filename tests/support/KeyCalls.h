#ifndef TESTS_SUPPORT_KEYCALLS_H
#define TESTS_SUPPORT_KEYCALLS_H

// What a module asks of the registry's keys while this object lives:
//
//     test::KeyCalls const calls;
//     ReadLocalMachineString(path, name);
//     EXPECT_THAT(calls.made(), ElementsAre(test::opens(HKEY_LOCAL_MACHINE, path)));
//
// Calls go through to the platform, but for those that an answer is given to:
//
//     test::KeyCalls const calls([](test::KeyCall const& call) {
//         return call.kind == test::KeyCall::open ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
//     });

#include "tests/support/ImportHook.h"
#include "tests/support/WideText.h"

#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace test {

// One call that opens a key or makes it.
struct KeyCall {
    enum Kind { open, create };

    Kind kind = open;
    HKEY parent = nullptr;
    std::wstring subkey;
    // Options, class and reserved words are all to be zero.
    bool plain = true;
    REGSAM access = 0;
    bool hasAttributes = false;

    friend bool operator==(KeyCall const& left, KeyCall const& right) {
        auto const tied = [](KeyCall const& call) {
            return std::tie(
                call.kind, call.parent, call.subkey, call.plain, call.access, call.hasAttributes);
        };
        return tied(left) == tied(right);
    }

    friend void PrintTo(KeyCall const& call, std::ostream* stream) {
        *stream << (call.kind == open ? "opens" : "creates")
                << (call.plain ? " " : ", not plainly, ") << call.parent << " \""
                << utf8(call.subkey) << "\" with access 0x" << std::hex << call.access << std::dec
                << (call.hasAttributes ? " and attributes" : "");
    }
};

// The call that asks for all there is.
inline KeyCall opens(HKEY parent, std::wstring const& subkey) {
    return {KeyCall::open, parent, subkey, true, 0x10000000, false};
}

// The call that makes a key to read and write.
inline KeyCall creates(HKEY parent, std::wstring const& subkey) {
    return {KeyCall::create, parent, subkey, true, 0x2001F, false};
}

// The call that makes the product's root key.
inline KeyCall createsProductRoot() {
    return {KeyCall::create, HKEY_LOCAL_MACHINE, L"Software\\Vorrane\\Ostrel", true, 0x2001F, true};
}

class KeyCalls {
  public:
    // The error that a call fails with; ERROR_SUCCESS lets it through.
    using Answer = std::function<LSTATUS(KeyCall const&)>;

    explicit KeyCalls(Answer answer = [](KeyCall const&) { return ERROR_SUCCESS; })
        : m_answer(std::move(answer)) {}

    std::vector<KeyCall> const& made() const noexcept { return m_made; }

    // The keys that were handed out, and those that were closed, in order.
    std::vector<HKEY> const& handedOut() const noexcept { return m_handedOut; }

    std::vector<HKEY> const& closed() const noexcept { return m_closed; }

  private:
    template <typename Call>
    LSTATUS note(KeyCall const& call, HKEY* key, Call const& goThrough) {
        m_made.push_back(call);
        LSTATUS status = m_answer(call);
        if (status != ERROR_SUCCESS)
            return status;
        status = goThrough();
        if (status == ERROR_SUCCESS)
            m_handedOut.push_back(*key);
        return status;
    }

    Answer m_answer;
    std::vector<KeyCall> m_made;
    std::vector<HKEY> m_handedOut;
    std::vector<HKEY> m_closed;

    ImportHook<decltype(RegOpenKeyExW)> m_open{
        "RegOpenKeyExW",
        [this](HKEY parent, LPCWSTR subkey, DWORD options, REGSAM access, HKEY* key) {
            return note({KeyCall::open, parent, subkey, options == 0, access, false}, key, [&] {
                return m_open.original()(parent, subkey, options, access, key);
            });
        }};
    ImportHook<decltype(RegCreateKeyExW)> m_create{
        "RegCreateKeyExW",
        [this](
            HKEY parent, LPCWSTR subkey, DWORD reserved, LPWSTR className, DWORD options,
            REGSAM access, SECURITY_ATTRIBUTES* attributes, HKEY* key, DWORD* disposition) {
            bool const plain = reserved == 0 && !className && options == 0 && !disposition;
            return note(
                {KeyCall::create, parent, subkey, plain, access, attributes != nullptr}, key, [&] {
                    return m_create.original()(
                        parent, subkey, reserved, className, options, access, attributes, key,
                        disposition);
                });
        }};
    ImportHook<decltype(RegCloseKey)> m_close{"RegCloseKey", [this](HKEY key) {
                                                  m_closed.push_back(key);
                                                  return m_close.original()(key);
                                              }};
};

// A platform on which every key is refused with these errors.
inline KeyCalls::Answer refusing(LSTATUS toOpen, LSTATUS toCreate) {
    return [=](KeyCall const& call) { return call.kind == KeyCall::open ? toOpen : toCreate; };
}

} // namespace test

#endif
