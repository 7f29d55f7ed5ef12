// The stack that expressions are compiled and matched on.

#include "storage/MatchingStack.h"

#include "foundation/Platform.h"
#include "tests/storage/SmallThread.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"

#include <gmock/gmock.h>

#include <exception>
#include <new>
#include <ostream>
#include <regex>
#include <stdexcept>
#include <string>

using test::onSmallThread;
using testing::StrEq;
using testing::ThrowsMessage;
using vrUtils::Storage::matchingStackNeeded;
using vrUtils::Storage::onMatchingStack;

namespace {

constexpr std::size_t longestName = 32767;

// Fibers that were made and deleted, and threads that became one and none again.
class Fibers {
  public:
    unsigned made() const noexcept { return m_make.calls(); }
    unsigned deleted() const noexcept { return m_delete.calls(); }
    unsigned converted() const noexcept { return m_convert.calls(); }
    unsigned convertedBack() const noexcept { return m_convertBack.calls(); }
    void* lastMade() const noexcept { return m_lastMade; }
    void* lastDeleted() const noexcept { return m_lastDeleted; }

  private:
    void* m_lastMade = nullptr;
    void* m_lastDeleted = nullptr;
    test::ImportHook<decltype(CreateFiberEx)> m_make{
        "CreateFiberEx",
        [this](
            SIZE_T commit, SIZE_T reserve, DWORD flags, LPFIBER_START_ROUTINE start, void* data) {
            return m_lastMade = m_make.original()(commit, reserve, flags, start, data);
        }};
    test::ImportHook<decltype(DeleteFiber)> m_delete{"DeleteFiber", [this](void* fiber) {
                                                         m_lastDeleted = fiber;
                                                         m_delete.original()(fiber);
                                                     }};
    test::ImportHook<decltype(ConvertThreadToFiberEx)> m_convert{
        "ConvertThreadToFiberEx",
        [this](void* data, DWORD flags) { return m_convert.original()(data, flags); }};
    test::ImportHook<decltype(ConvertFiberToThread)> m_convertBack{
        "ConvertFiberToThread", [this] { return m_convertBack.original()(); }};
};

// A thread that is a fiber for the life of the object.
class FiberOfTheTest {
  public:
    FiberOfTheTest() { ConvertThreadToFiber(nullptr); }

    FiberOfTheTest(FiberOfTheTest const&) = delete;
    FiberOfTheTest& operator=(FiberOfTheTest const&) = delete;

    ~FiberOfTheTest() { ConvertFiberToThread(); }
};

// The stack of the running code, by the address of its memory.
void* runningStack() {
    MEMORY_BASIC_INFORMATION memory{};
    VirtualQuery(&memory, &memory, sizeof memory);
    return memory.AllocationBase;
}

struct WrittenOut {
    wchar_t const* expression;
    double times;

    friend void PrintTo(WrittenOut const& tested, std::ostream* stream) {
        *stream << testing::PrintToString(tested.expression);
    }
};

class RepeatedExpression : public testing::TestWithParam<WrittenOut> {};

INSTANTIATE_TEST_SUITE_P(
    WithoutNumbers, RepeatedExpression,
    testing::Values(
        WrittenOut{L"ab", 1}, WrittenOut{L"a*", 1}, WrittenOut{L"a12", 1}, WrittenOut{L"a{", 1},
        WrittenOut{L"a{}", 1}, WrittenOut{L"a{x}", 1}, WrittenOut{L"a{0}", 1},
        WrittenOut{L"a{1}", 1}));

INSTANTIATE_TEST_SUITE_P(
    WithNumbers, RepeatedExpression,
    testing::Values(
        WrittenOut{L"a{3}", 3}, WrittenOut{L"a{2,5}", 5}, WrittenOut{L"a{5,2}", 5},
        WrittenOut{L"a{12,}", 12}, WrittenOut{L"a{9}9", 9}, WrittenOut{L"a{3}b{4}", 12},
        WrittenOut{L"((a{2}){3}){4}", 24}, WrittenOut{L"a{3", 3}, WrittenOut{L"{{7}", 7},
        WrittenOut{L"a{1x9}", 9}));

// Expressions that take more of the stack for their length than most. Each matches.
class WastefulExpression : public testing::TestWithParam<wchar_t const*> {};

INSTANTIATE_TEST_SUITE_P(
    OfNames, WastefulExpression,
    testing::Values(
        L"(.*)\\.mov", L"(.*?)\\.mov", L"(a|b)*\\.mov", L"(a)+\\.mov", L"(?:(a)|(b))*\\.mov",
        L"((((a))))*\\.mov", L"(ab?c?d?e?)*\\.mov", L"(?:e|d|c|b|a)*\\.mov", L"[a-z]+\\.mov",
        L"(?:(?=a)a)*\\.mov", L"((a)*)*\\.mov", L"(\\w|.)*\\.mov", L"(a|())*\\.mov",
        L"(a{2})*\\.mov", L"(?=.*v)(.*)\\.mov"));

} // namespace

TEST(MatchingStack, RunsTheWorkOnTheThreadThatCalls) {
    DWORD thread = 0;

    onMatchingStack(L"a", 1, [&] { thread = GetCurrentThreadId(); });

    EXPECT_EQ(GetCurrentThreadId(), thread);
}

TEST(MatchingStack, IsAnotherThanThatOfTheThread) {
    void* inside = nullptr;

    onMatchingStack(L"a", 1, [&] { inside = runningStack(); });

    EXPECT_NE(runningStack(), inside);
}

TEST(MatchingStack, IsAsLargeAsNeeded) {
    std::size_t reserved = 0;
    test::ImportHook<decltype(CreateFiberEx)> const make(
        "CreateFiberEx",
        [&](SIZE_T commit, SIZE_T reserve, DWORD flags, LPFIBER_START_ROUTINE start, void* data) {
            reserved = reserve;
            EXPECT_EQ(0u, commit);
            EXPECT_EQ(DWORD{FIBER_FLAG_FLOAT_SWITCH}, flags);
            return make.original()(commit, reserve, flags, start, data);
        });

    onMatchingStack(L"(.*)\\.mov", 1000, [] {});

    EXPECT_EQ(static_cast<std::size_t>(matchingStackNeeded(L"(.*)\\.mov", 1000)), reserved);
}

TEST(MatchingStack, BringsWhatTheWorkThrows) {
    Fibers const fibers;

    EXPECT_THAT(
        [] { onMatchingStack(L"a", 1, [] { throw std::runtime_error("from the work"); }); },
        ThrowsMessage<std::runtime_error>(StrEq("from the work")));

    EXPECT_EQ(1u, fibers.deleted());
    EXPECT_FALSE(IsThreadAFiber());
}

TEST(MatchingStack, MayBeUsedWhileAnExceptionIsHandled) {
    int handled = 0;
    try {
        throw 1;
    } catch (int outer) {
        onMatchingStack(L"a", 1, [&] {
            try {
                throw 2;
            } catch (int inner) {
                handled = inner;
            }
        });
        handled += outer;
        EXPECT_NE(nullptr, std::current_exception());
    }

    EXPECT_EQ(3, handled);
    EXPECT_EQ(nullptr, std::current_exception());
}

TEST(MatchingStack, MakesTheThreadAFiberOnlyForTheWork) {
    BOOL isFiber = FALSE;

    onMatchingStack(L"a", 1, [&] { isFiber = IsThreadAFiber(); });

    EXPECT_TRUE(isFiber);
    EXPECT_FALSE(IsThreadAFiber());
}

TEST(MatchingStack, LeavesAThreadThatIsAFiberOne) {
    FiberOfTheTest const fiber;
    auto* const self = GetCurrentFiber();
    Fibers const fibers;

    onMatchingStack(L"a", 1, [] {});

    EXPECT_TRUE(IsThreadAFiber());
    EXPECT_EQ(self, GetCurrentFiber());
    EXPECT_EQ(0u, fibers.converted());
    EXPECT_EQ(0u, fibers.convertedBack());
    EXPECT_EQ(1u, fibers.deleted());
}

TEST(MatchingStack, MayBeUsedOnAMatchingStack) {
    bool wasRun = false;

    onMatchingStack(L"a", 1, [&] { onMatchingStack(L"b", 1, [&] { wasRun = true; }); });

    EXPECT_TRUE(wasRun);
    EXPECT_FALSE(IsThreadAFiber());
}

TEST(MatchingStack, IsDeleted) {
    Fibers const fibers;

    onMatchingStack(L"a", 1, [] {});

    EXPECT_EQ(1u, fibers.made());
    EXPECT_EQ(1u, fibers.deleted());
    EXPECT_EQ(fibers.lastMade(), fibers.lastDeleted());
    EXPECT_EQ(1u, fibers.converted());
    EXPECT_EQ(1u, fibers.convertedBack());
}

TEST(MatchingStack, LeavesNothingOpen) {
    onMatchingStack(L"a", 1, [] {});
    test::HandleLeakCheck const check;

    for (int turn = 0; turn < 100; ++turn)
        onMatchingStack(L"a", longestName, [] {});
}

TEST(MatchingStack, CannotBeHadOnAThreadThatCannotBeAFiber) {
    test::FailingImport<decltype(ConvertThreadToFiberEx)> const fails(
        "ConvertThreadToFiberEx", nullptr, ERROR_NOT_ENOUGH_MEMORY);
    bool wasRun = false;

    EXPECT_THROW(onMatchingStack(L"a", 1, [&] { wasRun = true; }), std::bad_alloc);

    EXPECT_FALSE(wasRun);
    EXPECT_FALSE(IsThreadAFiber());
}

TEST(MatchingStack, CannotBeHadWithoutMemory) {
    test::FailingImport<decltype(CreateFiberEx)> const fails(
        "CreateFiberEx", nullptr, ERROR_NOT_ENOUGH_MEMORY);
    bool wasRun = false;

    EXPECT_THROW(onMatchingStack(L"a", 1, [&] { wasRun = true; }), std::bad_alloc);

    EXPECT_FALSE(wasRun);
    EXPECT_FALSE(IsThreadAFiber());
}

TEST(MatchingStack, IsRefusedBeyondAGigabyte) {
    Fibers const fibers;
    bool wasRun = false;

    try {
        onMatchingStack(std::wstring(100, L'a'), longestName, [&] { wasRun = true; });
        FAIL() << "nothing is thrown";
    } catch (std::regex_error const& failure) {
        EXPECT_EQ(std::regex_constants::error_stack, failure.code());
    }

    EXPECT_FALSE(wasRun);
    EXPECT_EQ(0u, fibers.made());
}

TEST(MatchingStack, HasItsLimitAtAGigabyte) {
    constexpr double gigabyte = 1024.0 * 1024 * 1024;
    std::wstring const expression(1, L'a');
    std::size_t length = 1;
    while (matchingStackNeeded(expression, length + 1) <= gigabyte)
        ++length;
    bool wasRun = false;

    EXPECT_NO_THROW(onMatchingStack(expression, length, [&] { wasRun = true; }));
    EXPECT_THROW(onMatchingStack(expression, length + 1, [] {}), std::regex_error);

    EXPECT_TRUE(wasRun);
}

TEST(MatchingStack, IsLargerThanThatOfOtherWork) {
    EXPECT_GT(matchingStackNeeded({}, 0), 1024.0 * 1024);
}

TEST(MatchingStack, GrowsWithTheText) {
    auto const one = matchingStackNeeded(L"abc", 1) - matchingStackNeeded(L"abc", 0);

    EXPECT_GT(one, 0);
    EXPECT_EQ(100 * one, matchingStackNeeded(L"abc", 100) - matchingStackNeeded(L"abc", 0));
}

TEST_P(RepeatedExpression, CountsAsOftenAsItIsWrittenOut) {
    auto const oneCharacter = [](std::wstring const& expression) {
        return matchingStackNeeded(expression, 1) - matchingStackNeeded(expression, 0);
    };
    std::wstring const expression = GetParam().expression;
    std::wstring const plain(expression.size(), L'a');

    EXPECT_EQ(GetParam().times * oneCharacter(plain), oneCharacter(expression));
}

TEST_P(WastefulExpression, MatchesTheLongestNameFromASmallThread) {
    std::wstring const expression = GetParam();
    auto const name = std::wstring(longestName - 7, L'a') + L".mov";
    bool isMatch = false;

    onSmallThread([&] {
        onMatchingStack(expression, name.size(), [&] {
            std::wregex const compiled(expression, std::regex::ECMAScript | std::regex::icase);
            isMatch = std::regex_match(name, compiled);
        });
    });

    EXPECT_TRUE(isMatch);
}

TEST(MatchingStack, CompilesLongExpressionsFromASmallThread) {
    std::wstring const unit[] = {L"a",   L"(",  L"()",    L"a|", L"(?:a)",
                                 L"[a]", L"a*", L"(?=a)", L"(?="};
    for (auto const& piece : unit) {
        std::wstring expression;
        while (expression.size() + piece.size() <= longestName)
            expression += piece;
        int answers = 0;

        onSmallThread([&] {
            try {
                onMatchingStack(expression, 0, [&] {
                    std::wregex const compiled(
                        expression, std::regex::ECMAScript | std::regex::icase);
                    std::regex_match(L"", compiled);
                });
                ++answers;
            } catch (std::regex_error const&) {
                ++answers;
            }
        });

        EXPECT_EQ(1, answers) << testing::PrintToString(piece);
    }
}
