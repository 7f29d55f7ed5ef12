#include "vrUtils/ProcessStatus.h"

#include "foundation/Platform.h"
#include "tests/process/ThreadCalls.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace ProcessStatus = vrUtils::ProcessStatus;

namespace {

test::ChildAction const printStatus(L"print the status text", [](auto const&) {
    std::fputs(test::utf8(ProcessStatus::status()).c_str(), stdout);
    return 0;
});

// Longer than what a string holds in itself.
std::wstring const longText(100, L'a');

} // namespace

TEST(ProcessStatus, IsIntialisingAtFirst) {
    EXPECT_EQ("intialising", printStatus.start()->output());
}

TEST(ProcessStatus, IsTheTextThatWasSetLast) {
    ProcessStatus::status(L"loading");
    ProcessStatus::status(L"working on 100%s");

    EXPECT_EQ(L"working on 100%s", ProcessStatus::status());
}

TEST(ProcessStatus, CanBeEmpty) {
    ProcessStatus::status(L"");

    EXPECT_EQ(L"", ProcessStatus::status());
}

TEST(ProcessStatus, KeepsEveryCharacter) {
    std::wstring const text(L"one\0two", 7);

    ProcessStatus::status(text);

    EXPECT_EQ(text, ProcessStatus::status());
}

TEST(ProcessStatus, IsACopy) {
    ProcessStatus::status(longText);
    auto const before = ProcessStatus::status();

    ProcessStatus::status(L"later");

    EXPECT_EQ(longText, before);
}

TEST(ProcessStatus, IsOneForAllThreads) {
    std::thread([] { ProcessStatus::status(L"from another thread"); }).join();

    EXPECT_EQ(L"from another thread", ProcessStatus::status());
}

TEST(ProcessStatus, IsOfThisProcessAlone) {
    ProcessStatus::status(L"here");

    EXPECT_EQ("intialising", printStatus.start()->output());
}

TEST(ProcessStatus, IsNeverHalfOfTwoTexts) {
    // Each text is one letter throughout, and so long as no other.
    std::vector<std::wstring> const texts{
        std::wstring(5, L'a'), std::wstring(3000, L'b'), std::wstring(200, L'c')};
    ProcessStatus::status(texts[0]);
    std::atomic<bool> done{false};
    std::atomic<unsigned> torn{0};
    std::vector<std::thread> readers;
    for (int number = 0; number < 8; ++number)
        readers.emplace_back([&] {
            while (!done) {
                auto const text = ProcessStatus::status();
                torn += text != texts[0] && text != texts[1] && text != texts[2];
            }
        });

    for (std::size_t round = 0; round < 20000; ++round)
        ProcessStatus::status(texts[round % texts.size()]);
    done = true;
    for (auto& reader : readers)
        reader.join();

    EXPECT_EQ(0u, torn);
}

namespace {

// Stops the first allocation of a writer in its midst, until it is released.
class StoppedWriter {
  public:
    StoppedWriter()
        : m_thread([this] {
              m_id = GetCurrentThreadId();
              ProcessStatus::status(longText);
          }) {}

    ~StoppedWriter() {
        SetEvent(m_release.get());
        m_thread.join();
    }

    bool hasStopped() const { return becomesSignalled(m_stopped.get()); }

  private:
    std::atomic<DWORD> m_id{0};
    test::OwnedHandle m_stopped = newEvent();
    test::OwnedHandle m_release = newEvent();
    test::ImportHook<void*(std::size_t)> m_hook{"malloc", [this](std::size_t size) {
                                                    if (GetCurrentThreadId() == m_id) {
                                                        SetEvent(m_stopped.get());
                                                        becomesSignalled(m_release.get());
                                                    }
                                                    return m_hook.original()(size);
                                                }};
    std::thread m_thread;
};

} // namespace

TEST(ProcessStatus, ReadersDoNotWaitForAWriter) {
    ProcessStatus::status(L"before");
    {
        StoppedWriter const writer;
        ASSERT_TRUE(writer.hasStopped());
        EXPECT_EQ(L"before", ProcessStatus::status());
    }

    EXPECT_EQ(longText, ProcessStatus::status());
}

TEST(ProcessStatus, WritersWaitForOneAnother) {
    std::future<void> second;
    {
        StoppedWriter const writer;
        ASSERT_TRUE(writer.hasStopped());
        second = std::async(std::launch::async, [] { ProcessStatus::status(L"second"); });

        EXPECT_EQ(std::future_status::timeout, second.wait_for(std::chrono::milliseconds(100)));
    }
    second.get();

    EXPECT_EQ(L"second", ProcessStatus::status());
}

TEST(ProcessStatus, FailedSetLeavesTheTextAsItWas) {
    ProcessStatus::status(L"before");

    auto const failed = test::failEachAllocation([] {
        try {
            ProcessStatus::status(longText);
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(L"before", ProcessStatus::status());
            throw;
        }
    });

    EXPECT_GT(failed, 0u);
    EXPECT_EQ(longText, ProcessStatus::status());
}

TEST(ProcessStatus, FailedReadComesOut) {
    ProcessStatus::status(longText);

    EXPECT_EQ(1u, test::failEachAllocation([] { ProcessStatus::status(); }));
}
