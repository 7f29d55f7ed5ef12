#ifndef FOUNDATION_MUTEX_H
#define FOUNDATION_MUTEX_H

#include "foundation/Platform.h"

namespace vrUtils {

// A mutex that needs no memory and cannot fail. The runtime's takes memory at its first lock, and
// where there is none fails with what no caller of ours expects.
class Mutex {
  public:
    constexpr Mutex() noexcept = default;
    Mutex(Mutex const&) = delete;
    Mutex& operator=(Mutex const&) = delete;

    void lock() noexcept { AcquireSRWLockExclusive(&m_lock); }

    void unlock() noexcept { ReleaseSRWLockExclusive(&m_lock); }

  private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};

} // namespace vrUtils

#endif
