#ifndef TESTS_PROCESS_CALLORDER_H
#define TESTS_PROCESS_CALLORDER_H

#include "foundation/Platform.h"

#include <mutex>
#include <ostream>
#include <string>
#include <vector>

// A call of the platform, with the one handle and the one number that tell what it is for.
struct Call {
    std::string name;
    void* handle = nullptr;
    unsigned long number = 0;

    friend bool operator==(Call const& left, Call const& right) {
        return left.name == right.name && left.handle == right.handle &&
               left.number == right.number;
    }

    friend std::ostream& operator<<(std::ostream& stream, Call const& call) {
        return stream << call.name << '(' << call.handle << ", " << call.number << ')';
    }
};

// Keeps the calls that hooks report, in order, from whatever thread:
//
//     CallOrder order;
//     test::ImportHook<decltype(SetEvent)> const hook("SetEvent", [&](HANDLE event) {
//         order.add({"SetEvent", event});
//         return hook.original()(event);
//     });
class CallOrder {
  public:
    void add(Call call) {
        std::lock_guard const lock(m_mutex);
        m_calls.push_back(std::move(call));
    }

    std::vector<Call> calls() const {
        std::lock_guard const lock(m_mutex);
        return m_calls;
    }

  private:
    mutable std::mutex m_mutex;
    std::vector<Call> m_calls;
};

#endif
