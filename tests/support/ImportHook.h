#ifndef TESTS_SUPPORT_IMPORTHOOK_H
#define TESTS_SUPPORT_IMPORTHOOK_H

// Import hooks: for its life, an object stands between a module and one platform call it imports.
//
//     test::ImportHook hook("GetDriveTypeW", [&](LPCWSTR root) -> UINT {
//         asked = root;
//         return DRIVE_REMOTE;
//     });
//
// A replacement that passes the call on names the signature, so that it may speak of its own hook:
//
//     test::ImportHook<decltype(ReadFile)> hook("ReadFile", [&](auto... arguments) {
//         return hook.original()(arguments...);
//     });
//
// A call that only has to fail needs no replacement:
//
//     test::FailingImport<decltype(ReadFile)> fails("ReadFile", FALSE, ERROR_CRC);
//
// The module is `vrUtils.dll`, or in a test of private helpers, where that is not loaded, the test
// program itself. There the hook also catches what the test itself and its framework call.
//
// A hook may be put on top of another one of the same import, and each may go first. A call that is
// still running in another thread must have returned before its hook goes. Compilers may keep the
// address of an import for the length of one function: a module is to be called into after the hook
// has been made, and again after it has gone, never from one function that spans both.

#include "foundation/Platform.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

namespace test {

// `vrUtils.dll` where it is loaded, the test program itself otherwise.
HMODULE moduleUnderTest();

// The test program itself.
HMODULE thisProgram();

// A module that is loaded; throws std::runtime_error if it is not.
HMODULE loadedModule(std::wstring const& name);

// Whether the module imports a function of this name, from whatever other module.
bool hasImport(std::string const& import, HMODULE module);

// An import that points to another function while this object lives. It is for functions that no
// ImportHook can stand for, such as those with variable arguments.
class ImportPatch {
  public:
    using Function = void (*)();

    // Throws std::runtime_error unless the module imports exactly one function of this name.
    ImportPatch(std::string const& import, Function replacement, HMODULE module);
    ImportPatch(ImportPatch const&) = delete;
    ImportPatch& operator=(ImportPatch const&) = delete;
    ~ImportPatch();

    Function original() const noexcept { return m_original; }

  private:
    Function* m_place;
    Function m_original;
    Function m_replacement;
};

template <typename Signature>
class ImportHook;

template <typename Result, typename... Arguments>
class ImportHook<Result(Arguments...)> {
  public:
    using Function = Result (*)(Arguments...);
    using Replacement = std::function<Result(Arguments...)>;

    ImportHook(
        std::string const& import, Replacement replacement, HMODULE module = moduleUnderTest())
        : m_replacement(std::move(replacement)),
          m_gate(this),
          m_patch(import, reinterpret_cast<ImportPatch::Function>(m_gate.entrance()), module) {}

    // How often the import has been called since the hook was made.
    unsigned calls() const noexcept { return m_calls; }

    // The function that the hook stands for.
    Function original() const noexcept { return reinterpret_cast<Function>(m_patch.original()); }

  private:
    // Hooks of one signature that may live at the same time.
    static constexpr std::size_t gateCount = 16;

    // A plain function of the import's signature for each living hook, since an import cannot point
    // to an object.
    class Gate {
      public:
        explicit Gate(ImportHook* hook) : m_index(claim(hook)) {}

        Gate(Gate const&) = delete;
        Gate& operator=(Gate const&) = delete;

        ~Gate() { s_hooks[m_index] = nullptr; }

        Function entrance() const { return entranceAt(std::make_index_sequence<gateCount>()); }

      private:
        static std::size_t claim(ImportHook* hook) {
            for (std::size_t index = 0; index < gateCount; ++index) {
                ImportHook* vacant = nullptr;
                if (s_hooks[index].compare_exchange_strong(vacant, hook))
                    return index;
            }
            throw std::runtime_error("too many import hooks of one signature at the same time");
        }

        template <std::size_t... indexes>
        Function entranceAt(std::index_sequence<indexes...>) const {
            return std::array<Function, gateCount>{enter<indexes>...}[m_index];
        }

        template <std::size_t index>
        static Result enter(Arguments... arguments) {
            ImportHook& hook = *s_hooks[index];
            ++hook.m_calls;
            return hook.m_replacement(std::forward<Arguments>(arguments)...);
        }

        inline static std::array<std::atomic<ImportHook*>, gateCount> s_hooks{};
        std::size_t m_index;
    };

    Replacement m_replacement;
    std::atomic<unsigned> m_calls{0};
    Gate m_gate;
    ImportPatch m_patch;
};

template <typename Call>
struct SignatureOf : SignatureOf<decltype(std::function(std::declval<Call>()))> {};

template <typename Signature>
struct SignatureOf<std::function<Signature>> {
    using Type = Signature;
};

template <typename Name, typename Call, typename... Module>
ImportHook(Name, Call, Module...) -> ImportHook<typename SignatureOf<Call>::Type>;

// Every call of an import that is to fail, instead of one of them.
inline constexpr unsigned everyCall = 0;

template <typename Signature>
class FailingImport;

// One call of an import fails, and so tests what its caller makes of that; the others go through.
template <typename Result, typename... Arguments>
class FailingImport<Result(Arguments...)> {
  public:
    // @param result what the failing call gives
    // @param lastError the platform's last error behind it
    // @param failingCall the number of the call that fails, from 1; or `everyCall`
    FailingImport(
        std::string const& import, Result result, DWORD lastError, unsigned failingCall = 1,
        HMODULE module = moduleUnderTest())
        : m_result(result),
          m_lastError(lastError),
          m_failingCall(failingCall),
          m_hook(
              import, [this](Arguments... arguments) { return answer(arguments...); }, module) {}

    // How often the import has been called, the failed call included.
    unsigned calls() const noexcept { return m_calls; }

  private:
    Result answer(Arguments... arguments) {
        unsigned const call = ++m_calls;
        if (m_failingCall != everyCall && call != m_failingCall)
            return m_hook.original()(arguments...);
        SetLastError(m_lastError);
        return m_result;
    }

    Result m_result;
    DWORD m_lastError;
    unsigned m_failingCall;
    std::atomic<unsigned> m_calls{0};
    ImportHook<Result(Arguments...)> m_hook;
};

} // namespace test

#endif
