// A worker thread started, stopped and joined, and the time that a signal takes to wake one.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/Threads.h"

#include <condition_variable>
#include <mutex>
#include <process.h>
#include <thread>

#ifdef PEER_POCO
#include <Poco/Event.h>
#include <Poco/Thread.h>
#endif

namespace {

// Every body waits until it is asked to end.

class Worker : public vrUtils::Threads::Threaded {
  public:
    Worker() : Threaded(10000, ownStopEvent()) {}

    ~Worker() override { StopThread(); }

  private:
    unsigned int ThreadProcess() override { return WaitForSingleObject(stopEvent(), INFINITE); }
};

int ours() {
    Worker worker;
    worker.StartThread();
    worker.StopThread();
    return 0;
}

unsigned waitForStop(void* stop) { return WaitForSingleObject(stop, INFINITE); }

DWORD raw() {
    auto const stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    auto const thread =
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, waitForStop, stop, 0, nullptr));
    SetEvent(stop);
    auto const result = WaitForSingleObject(thread, 10000);
    CloseHandle(thread);
    CloseHandle(stop);
    return result;
}

int stdThread() {
    std::mutex mutex;
    std::condition_variable changed;
    bool stop = false;
    std::thread thread([&] {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return stop; });
    });
    {
        std::lock_guard const lock(mutex);
        stop = true;
    }
    changed.notify_one();
    thread.join();
    return 0;
}

#ifdef PEER_POCO
int poco() {
    Poco::Event stop(Poco::Event::EVENT_MANUALRESET);
    Poco::Thread thread;
    thread.startFunc([&] { stop.wait(); });
    stop.set();
    thread.join();
    return 0;
}
#endif

// A thread that answers every question of another one, until it is asked to end.
template <class Thread>
class Answering {
  public:
    Answering() : m_thread(m_question, m_answer) {}

    Answering(Answering const&) = delete;
    Answering& operator=(Answering const&) = delete;

    ~Answering() {
        m_thread.end();
        CloseHandle(m_question);
        CloseHandle(m_answer);
    }

    DWORD ask() {
        SetEvent(m_question);
        return WaitForSingleObject(m_answer, INFINITE);
    }

  private:
    HANDLE m_question = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    HANDLE m_answer = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    Thread m_thread;
};

void answerUntil(HANDLE stop, HANDLE question, HANDLE answer) {
    HANDLE const events[] = {question, stop};
    while (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0)
        SetEvent(answer);
}

class OurAnswerer : public vrUtils::Threads::Threaded {
  public:
    OurAnswerer(HANDLE question, HANDLE answer)
        : Threaded(10000, ownStopEvent()), m_question(question), m_answer(answer) {
        StartThread();
    }

    ~OurAnswerer() override { StopThread(); }

    void end() { StopThread(); }

  private:
    unsigned int ThreadProcess() override {
        answerUntil(stopEvent(), m_question, m_answer);
        return 0;
    }

    HANDLE m_question;
    HANDLE m_answer;
};

class RawAnswerer {
  public:
    RawAnswerer(HANDLE question, HANDLE answer) : m_question(question), m_answer(answer) {
        m_thread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, run, this, 0, nullptr));
    }

    void end() {
        SetEvent(m_stop);
        WaitForSingleObject(m_thread, INFINITE);
        CloseHandle(m_thread);
        CloseHandle(m_stop);
    }

  private:
    static unsigned run(void* object) {
        auto const* const self = static_cast<RawAnswerer*>(object);
        answerUntil(self->m_stop, self->m_question, self->m_answer);
        return 0;
    }

    HANDLE m_stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE m_question;
    HANDLE m_answer;
    HANDLE m_thread;
};

} // namespace

void benchmarks::registerCandidates() {
    candidate("worker", "ours", ours);
    candidate("worker", "limit", raw);
    candidate("worker", "std", stdThread);
#ifdef PEER_POCO
    candidate("worker", "poco", poco);
#endif
    static Answering<OurAnswerer> answering;
    static Answering<RawAnswerer> rawAnswering;
    candidate("wake", "ours", [] { return answering.ask(); });
    candidate("wake", "limit", [] { return rawAnswering.ask(); });
}
