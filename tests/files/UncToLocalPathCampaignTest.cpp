// Random paths against the composition written out step by step, and threads that resolve at once.

#include "vrUtils/Files/UncToLocalPath.h"

#include "tests/files/FakeNetwork.h"
#include "tests/files/PathType.h"
#include "tests/foundation/RandomText.h"
#include "tests/support/Campaign.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <set>
#include <string>
#include <thread>
#include <vector>

using vr::Path;
using vrUtils::Files::uncToLocalPath;

namespace {

class UncToLocalPathCampaign : public testing::Test {
  protected:
    static void SetUpTestSuite() { test::resolveOnceWithoutDrives(); }
};

// What is below the share, folders and name apart.
struct BelowShare {
    explicit BelowShare(Path const& path) : fileName(path.components().fullName()) {
        auto folders = path.components().folders();
        if (!folders.empty())
            folders.pop_front();
        for (auto const& folder : folders)
            rest += folder + L'\\';
    }

    std::wstring rest;
    std::wstring fileName;
};

Path composedByTable(std::wstring const& localRoot, Path const& path) {
    BelowShare const below(path);
    auto const filePart =
        below.fileName.empty() ? Path(L"", Path::eDetect) : Path::file(below.fileName);
    return Path(localRoot + below.rest, Path::eDetect) + filePart;
}

Path composedByShare(std::wstring const& base, Path const& path) {
    BelowShare const below(path);
    return Path::folder(base + below.rest) + Path::file(below.fileName);
}

void expectTheSame(Path const& composed, Path const& result) {
    ASSERT_EQ(textOf(composed), textOf(result));
    ASSERT_EQ(typeOf(composed), typeOf(result));
}

} // namespace

TEST_F(UncToLocalPathCampaign, RandomPathsAreComposedAsWrittenOutStepByStep) {
    test::LogRecorder log;
    test::Campaign campaign(5000);
    RandomText<wchar_t> texts(L"\\/:.aBC1 \u00E9", campaign);
    std::array<std::wstring, 4> const bases{L"M:\\", L"D:\\Store\\a.b\\", L"rel\\", L"\\\\o\\m\\"};
    std::size_t round = 0;
    while (campaign.nextRound()) {
        log.clear();
        auto const& base = bases[campaign.below(bases.size())];
        auto const text = L"\\\\localhost\\s" + std::to_wstring(++round) + L'\\' + texts.upTo(14);
        Path const path(text, static_cast<Path::eType>(campaign.below(3)));
        SCOPED_TRACE(testing::Message() << campaign << ": " << testing::PrintToString(text));

        {
            test::Shares const shares{{{L"localhost", L"s" + std::to_wstring(round)}, base}};
            ASSERT_NO_FATAL_FAILURE(
                expectTheSame(composedByShare(base, path), uncToLocalPath(path)));
        }
        ASSERT_NO_FATAL_FAILURE(expectTheSame(composedByTable(base, path), uncToLocalPath(path)));
    }
}

TEST_F(UncToLocalPathCampaign, StormOfEightThreadsCorruptsNothing) {
    struct Question {
        std::wstring folder;
        std::wstring answer;
    };
    test::ThisComputer const computer(L"HOST1");
    test::NameService const names{{"host1", {"10.0.0.1"}}, {"server", {"10.0.0.2"}}};
    std::atomic<unsigned long long> calls{0};
    std::atomic<unsigned long long> faults{0};
    // Rounds of 50 milliseconds, each with shares that are not in the table yet.
    test::Campaign campaign(20);
    for (unsigned round = 0; campaign.nextRound(); ++round) {
        auto const name = L"storm " + std::to_wstring(round);
        test::Shares const shares{
            {{L"localhost", name}, L"D:\\1"},
            {{L"host1", name}, L"D:\\2\\"},
            {{L"127.0.0.1", name}, L"D:/3"}};
        std::vector<Question> const questions{
            {L"\\\\LOCALHOST\\" + name + L"\\Clips\\", L"D:\\1\\Clips\\"},
            {L"\\\\HOST1\\" + name + L"\\Clips\\", L"D:\\2\\Clips\\"},
            {L"//127.0.0.1/" + name + L"/Clips/", L"D:\\3\\Clips\\"},
            {L"\\\\localhost\\missing\\", L"\\\\localhost\\missing\\"},
            {L"\\\\server\\" + name + L"\\", L"\\\\server\\" + name + L"\\"}};
        test::LogRecorder const log;
        auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
        std::vector<std::thread> threads;
        for (unsigned thread = 0; thread < 8; ++thread)
            threads.emplace_back([&] {
                for (unsigned turn = 0;
                     turn < questions.size() || std::chrono::steady_clock::now() < end; ++turn) {
                    auto const& question = questions[turn % questions.size()];
                    auto const clip = std::to_wstring(turn) + L".mov";
                    auto const result = uncToLocalPath(Path::file(question.folder + clip)).str();
                    if (result != question.answer + clip)
                        ++faults;
                    ++calls;
                }
            });
        for (auto& thread : threads)
            thread.join();

        // Both lines of a resolution have the result as their second value.
        std::set<std::wstring> told;
        for (auto const& line : log.lines()) {
            if (line.level == 7)
                continue;
            ASSERT_TRUE(told.insert(line.values.at(1).text).second)
                << campaign << ", told twice: " << test::utf8(line.text());
        }
        ASSERT_FALSE(told.empty()) << campaign;
        ASSERT_EQ(0u, faults) << campaign;
        ASSERT_EQ(0u, shares.outstanding()) << campaign;
        ASSERT_TRUE(shares.wereFreedSoundly()) << campaign;
    }
    std::printf("%llu calls of 8 threads\n", calls.load());
}
