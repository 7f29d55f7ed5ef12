#ifndef FOUNDATION_HANDLE_H
#define FOUNDATION_HANDLE_H

#include "foundation/Platform.h"

#include <winsvc.h>

namespace vrUtils {

// Owns one handle of the platform and closes it when its scope ends. Which kind it is stands in the
// traits: the type of the value, the value that means "none", and the call that closes.
//
// Closing leaves the last error as it was, so that an owner may go out of scope between a failed
// call and the line that reports it. An owner belongs to one thread at a time.
template <typename Traits>
class Handle {
  public:
    using Value = typename Traits::Value;

    Handle() noexcept = default;

    explicit Handle(Value value) noexcept : m_value(value) {}

    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    Handle(Handle&& other) noexcept : m_value(other.release()) {}

    Handle& operator=(Handle&& other) noexcept {
        reset(other.release());
        return *this;
    }

    ~Handle() { reset(); }

    // Whether there is a handle.
    explicit operator bool() const noexcept { return m_value != Traits::none(); }

    // The handle, still owned.
    Value get() const noexcept { return m_value; }

    // Gives the handle up without closing it.
    [[nodiscard]] Value release() noexcept {
        auto const value = m_value;
        m_value = Traits::none();
        return value;
    }

    // Closes the handle and takes over the other, which must not be the same one.
    void reset(Value value = Traits::none()) noexcept {
        if (*this) {
            auto const error = GetLastError();
            Traits::close(m_value);
            SetLastError(error);
        }
        m_value = value;
    }

    // Where a platform call writes the handle that it opens; closes what was there before.
    Value* receive() noexcept {
        reset();
        return &m_value;
    }

  private:
    Value m_value = Traits::none();
};

struct FileTraits {
    using Value = HANDLE;

    static Value none() noexcept { return INVALID_HANDLE_VALUE; }

    static void close(Value value) noexcept { CloseHandle(value); }
};

// Events, processes, threads and mutexes: the calls that make or open them report a failure with null.
struct ObjectTraits {
    using Value = HANDLE;

    static Value none() noexcept { return nullptr; }

    static void close(Value value) noexcept { CloseHandle(value); }
};

struct FindTraits {
    using Value = HANDLE;

    static Value none() noexcept { return INVALID_HANDLE_VALUE; }

    static void close(Value value) noexcept { FindClose(value); }
};

// The service manager, and the services in it.
struct ServiceTraits {
    using Value = SC_HANDLE;

    static Value none() noexcept { return nullptr; }

    static void close(Value value) noexcept { CloseServiceHandle(value); }
};

struct RegistryTraits {
    using Value = HKEY;

    static Value none() noexcept { return nullptr; }

    static void close(Value value) noexcept { RegCloseKey(value); }
};

struct ModuleTraits {
    using Value = HMODULE;

    static Value none() noexcept { return nullptr; }

    static void close(Value value) noexcept { FreeLibrary(value); }
};

using FileOwner = Handle<FileTraits>;
using EventOwner = Handle<ObjectTraits>;
using ProcessOwner = Handle<ObjectTraits>;
using ThreadOwner = Handle<ObjectTraits>;
using FindOwner = Handle<FindTraits>;
using ServiceOwner = Handle<ServiceTraits>;
using RegistryOwner = Handle<RegistryTraits>;
using ModuleOwner = Handle<ModuleTraits>;

} // namespace vrUtils

#endif
