// A worker thread that ends when it is asked to. It waits on the stop event, so that a stop comes
// through at once, and its destructor stops it before its own members go.

#include <vrUtils/Threads.h>

#include <atomic>
#include <future>
#include <iostream>

#include <windows.h>

namespace {

constexpr std::uint32_t stopTimeoutMs = 5000;
constexpr DWORD pollIntervalMs = 10;

class FolderPoller : public vrUtils::Threads::Threaded {
  public:
    FolderPoller() : Threaded(stopTimeoutMs, ownStopEvent()) { StartThread(); }

    ~FolderPoller() override { StopThread(); }

    void waitForThirdPoll() { m_thirdPoll.get_future().wait(); }

    int polls() const { return m_polls; }

    bool hasEnded() const { return m_hasEnded; }

  private:
    unsigned int ThreadProcess() override {
        while (WaitForSingleObject(stopEvent(), pollIntervalMs) == WAIT_TIMEOUT)
            if (++m_polls == 3)
                m_thirdPoll.set_value();
        m_hasEnded = true;
        return 0;
    }

    std::atomic<int> m_polls{0};
    std::atomic<bool> m_hasEnded{false};
    std::promise<void> m_thirdPoll;
};

} // namespace

int main() {
    FolderPoller poller;
    poller.waitForThirdPoll();
    std::wcout << L"polled three times\n";

    std::wcout << (poller.join(0) ? L"has ended by itself\n" : L"still at work\n");
    poller.StopThread();
    std::wcout << (poller.hasEnded() ? L"ended when asked\n" : L"had to be killed\n");
    return poller.hasEnded() && poller.polls() >= 3 ? 0 : 1;
}
