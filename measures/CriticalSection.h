#ifndef MEASURES_CRITICALSECTION_H
#define MEASURES_CRITICALSECTION_H

#include "foundation/Platform.h"

namespace vrUtils {

// The platform's lock for one process. While nobody else wants it, it is cheaper than any other.
class CriticalSection {
  public:
    CriticalSection() noexcept { InitializeCriticalSection(&m_section); }

    CriticalSection(CriticalSection const&) = delete;
    CriticalSection& operator=(CriticalSection const&) = delete;

    ~CriticalSection() { DeleteCriticalSection(&m_section); }

    void lock() noexcept { EnterCriticalSection(&m_section); }

    void unlock() noexcept { LeaveCriticalSection(&m_section); }

  private:
    CRITICAL_SECTION m_section;
};

} // namespace vrUtils

#endif
