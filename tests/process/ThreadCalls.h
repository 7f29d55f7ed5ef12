#ifndef TESTS_PROCESS_THREADCALLS_H
#define TESTS_PROCESS_THREADCALLS_H

#include "tests/process/CallOrder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"

#include <process.h>

// A second handle to the same object, for what is to be asked after the first one is closed.
inline test::OwnedHandle secondHandleTo(HANDLE handle) {
    HANDLE second = nullptr;
    auto* const self = GetCurrentProcess();
    DuplicateHandle(self, handle, self, &second, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return test::OwnedHandle(second);
}

inline test::OwnedHandle newEvent() {
    return test::OwnedHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

inline bool isSignalled(HANDLE handle) { return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0; }

inline bool becomesSignalled(HANDLE handle) {
    auto const milliseconds = std::chrono::milliseconds(test::ceiling).count();
    return WaitForSingleObject(handle, static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
}

inline bool isOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

// The handles of the threads that the library starts while this object lives.
class ThreadStarts {
  public:
    HANDLE last() const { return m_last; }

    unsigned count() const { return m_hook.calls(); }

  private:
    HANDLE m_last = nullptr;
    test::ImportHook<decltype(_beginthreadex)> m_hook{"_beginthreadex", [this](auto... arguments) {
                                                          auto const thread =
                                                              m_hook.original()(arguments...);
                                                          m_last = reinterpret_cast<HANDLE>(thread);
                                                          return thread;
                                                      }};
};

// The calls by which the library stops and joins its threads, and what it closes, in order.
class ThreadCalls {
  public:
    std::vector<Call> calls() const { return m_order.calls(); }

  private:
    CallOrder m_order;
    test::ImportHook<decltype(SetEvent)> m_set{"SetEvent", [this](HANDLE event) {
                                                   m_order.add({"SetEvent", event});
                                                   return m_set.original()(event);
                                               }};
    test::ImportHook<decltype(WaitForSingleObject)> m_wait{
        "WaitForSingleObject", [this](HANDLE handle, DWORD milliseconds) {
            m_order.add({"WaitForSingleObject", handle, milliseconds});
            return m_wait.original()(handle, milliseconds);
        }};
    test::ImportHook<decltype(TerminateThread)> m_terminate{
        "TerminateThread", [this](HANDLE thread, DWORD code) {
            m_order.add({"TerminateThread", thread, code});
            return m_terminate.original()(thread, code);
        }};
    test::ImportHook<decltype(CloseHandle)> m_close{"CloseHandle", [this](HANDLE handle) {
                                                        m_order.add({"CloseHandle", handle});
                                                        return m_close.original()(handle);
                                                    }};
};

#endif
