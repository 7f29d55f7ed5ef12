#ifndef TESTS_SUPPORT_HANDLECOUNT_H
#define TESTS_SUPPORT_HANDLECOUNT_H

// Finds handles that the code under test leaves open:
//
//     test::HandleLeakCheck const check;
//     EXPECT_THROW(LoadSmallFile(missing), vrException);
//
// Some calls of the platform open handles at their first use that stay for good; such a call is
// made once before the check.

#include "foundation/Platform.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

// The open handles of this process, in ascending order.
std::vector<std::uintptr_t> openHandles();

// Their number.
std::size_t handleCount();

// Fails the test if more handles are open at its end than at its beginning. Other threads must have
// ended, or do nothing, at both points.
class HandleLeakCheck {
  public:
    HandleLeakCheck() : m_before(openHandles()) {}

    HandleLeakCheck(HandleLeakCheck const&) = delete;
    HandleLeakCheck& operator=(HandleLeakCheck const&) = delete;
    ~HandleLeakCheck();

  private:
    std::vector<std::uintptr_t> m_before;
};

} // namespace test

#endif
