// Transfers that are killed wherever they are: every target is the old file or the new one, whole.

#include "tests/support/Campaign.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/RunHere.h"
#include "tools/vrtool/TransferCommand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <list>

namespace {

// Ends this process, as a kill does, at one of the calls that change what is on disk.
class DeathAt {
  public:
    explicit DeathAt(unsigned call) : m_call(call) {}

    unsigned calls() const { return m_calls; }

  private:
    template <typename Signature>
    struct Hook {
        Hook(DeathAt& death, char const* import, HMODULE module)
            : hook(
                  import,
                  [this, &death](auto... arguments) {
                      if (++death.m_calls == death.m_call)
                          TerminateProcess(GetCurrentProcess(), 99);
                      return hook.original()(arguments...);
                  },
                  module) {}

        test::ImportHook<Signature> hook;
    };

    unsigned m_call;
    unsigned m_calls = 0;
    HMODULE m_tool = test::thisProgram();
    HMODULE m_library = test::moduleUnderTest();
    Hook<decltype(CreateFileW)> m_create{*this, "CreateFileW", m_tool};
    Hook<decltype(WriteFile)> m_write{*this, "WriteFile", m_tool};
    Hook<decltype(SetFileTime)> m_time{*this, "SetFileTime", m_tool};
    Hook<decltype(MoveFileExW)> m_move{*this, "MoveFileExW", m_tool};
    Hook<decltype(CreateDirectoryW)> m_folder{*this, "CreateDirectoryW", m_tool};
    Hook<decltype(RemoveDirectoryW)> m_removal{*this, "RemoveDirectoryW", m_tool};
    Hook<decltype(CreateFileW)> m_lockFile{*this, "CreateFileW", m_library};
    Hook<decltype(WriteFile)> m_lockName{*this, "WriteFile", m_library};
    Hook<decltype(LockFileEx)> m_lock{*this, "LockFileEx", m_library};
    Hook<decltype(CopyFileW)> m_copy{*this, "CopyFileW", m_library};
    Hook<decltype(DeleteFileW)> m_deletion{*this, "DeleteFileW", m_library};
    Hook<decltype(CreateDirectoryW)> m_target{*this, "CreateDirectoryW", m_library};
};

test::ToolRun transferHere(std::wstring const& from, std::wstring const& to) {
    return test::runHere<TransferCommand>(
        "transfer", {test::utf8(to), test::utf8(from), "--replace"});
}

test::ChildAction const beKilled(L"be killed in a transfer", [](auto const& arguments) {
    DeathAt const death(static_cast<unsigned>(std::stoul(arguments.at(2))));
    auto const run = transferHere(arguments.at(0), arguments.at(1));
    std::printf("calls %u\n", death.calls());
    return static_cast<int>(run.exitCode);
});

// A source folder of files that are new, changed or the same at the target.
class Media {
  public:
    Media() {
        add(L"a new.mxf", {}, 1'500'000);
        add(L"b changed.mxf", std::string(300'000, 'o'), 2'500'000);
        add(L"c empty.mxf", std::string(10, 'o'), 0);
        add(L"d short.mxf", std::string(1'200'000, 'o'), 7);
    }

    std::wstring from() const { return m_scratch.file(L"from"); }

    std::wstring to() const { return m_scratch.file(L"to"); }

    // Each target is the old one or the new one, and each message that is there is all there.
    void expectWhole() const {
        for (auto const& file : m_files) {
            SCOPED_TRACE(test::utf8(file.name));
            auto const target = L"to\\from\\" + file.name;
            // Only a file that never was may be missing.
            EXPECT_TRUE(m_scratch.exists(target) || file.old.empty());
            EXPECT_TRUE(!m_scratch.exists(target) || isOneOf(m_scratch.read(target), file));
            auto const message = L"to\\from\\messages\\" + file.name + L".xml";
            EXPECT_TRUE(!m_scratch.exists(message) || isWholeMessage(m_scratch.read(message)));
        }
    }

    // All files are new, and nothing is left of a dead transfer but perhaps the old file.
    void expectComplete() const {
        std::vector<std::wstring> names;
        for (auto const& file : m_files) {
            names.push_back(file.name);
            EXPECT_TRUE(m_scratch.read(L"to\\from\\" + file.name) == file.content);
        }
        auto there = m_scratch.names(L"to\\from");
        there.erase(std::remove(there.begin(), there.end(), L"Recovery"), there.end());
        names.push_back(L"messages");
        EXPECT_EQ(names, there);
        EXPECT_EQ(m_files.size(), m_scratch.names(L"to\\from\\messages").size());
    }

  private:
    struct File {
        std::wstring name;
        std::string old;
        std::string content;
    };

    static bool isOneOf(std::string const& bytes, File const& file) {
        return bytes == file.old || bytes == file.content;
    }

    static bool isWholeMessage(std::string const& text) {
        std::string const end = "</transfer>\n";
        return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
    }

    void add(std::wstring const& name, std::string const& old, std::size_t size) {
        m_files.push_back({name, old, std::string(size, 'n')});
        m_scratch.write(L"from\\" + name, m_files.back().content);
        if (!old.empty())
            m_scratch.write(L"to\\from\\" + name, old);
    }

    test::ScratchFolder m_scratch;
    std::list<File> m_files;
};

// A number that a child has written behind a word.
unsigned numberBehind(std::string const& word, std::string const& text) {
    auto const at = text.find(word);
    return at == std::string::npos
               ? 0
               : static_cast<unsigned>(std::stoul(text.substr(at + word.size())));
}

void expectCompletion(Media const& media) {
    auto const run = test::runTool({L"transfer", media.from(), media.to(), L"--replace"});
    EXPECT_EQ(0u, run.exitCode) << run.error;
    media.expectComplete();
}

} // namespace

TEST(VrtoolTransferCampaign, KilledAtAnyCallIsCompletedByTheNext) {
    Media const undisturbed;
    auto const whole = beKilled.start({undisturbed.from(), undisturbed.to(), L"0"});
    ASSERT_EQ(0u, whole->exitCode());
    auto const calls = numberBehind("calls ", whole->output());
    ASSERT_LT(40u, calls);

    test::Campaign campaign(12);
    unsigned killed = 0;
    while (campaign.nextRound()) {
        Media const media;
        auto const call = 1 + campaign.below(calls);
        SCOPED_TRACE(testing::Message() << campaign << ", at call " << call << " of " << calls);

        auto const child = beKilled.start({media.from(), media.to(), std::to_wstring(call)});
        ASSERT_EQ(99u, child->exitCode());
        ++killed;

        media.expectWhole();
        expectCompletion(media);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    std::printf("%u transfers killed, at one of %u calls each\n", killed, calls);
}

TEST(VrtoolTransferCampaign, KilledAtAnyMomentIsCompletedByTheNext) {
    test::ChildStart start;
    start.program = test::besideTestProgram(L"vrtool.exe");
    test::Campaign campaign(6);
    unsigned killed = 0;
    std::chrono::milliseconds length(200);
    while (campaign.nextRound()) {
        Media const media;
        SCOPED_TRACE(testing::Message() << campaign);

        auto const begin = std::chrono::steady_clock::now();
        test::ChildProcess child({L"transfer", media.from(), media.to(), L"--replace"}, start);
        auto const moment = static_cast<std::size_t>(length.count());
        if (child.wait(std::chrono::milliseconds(campaign.below(moment))))
            length = std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now() - begin);
        else
            ++killed;
        child.kill();

        media.expectWhole();
        expectCompletion(media);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    std::printf("%u transfers killed\n", killed);
}
