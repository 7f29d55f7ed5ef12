#include "tests/support/ImportHook.h"

#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

using Converter = decltype(MultiByteToWideChar);

// The library converts the source name of an exception with one platform call.
std::wstring convertedByLibrary() { return vrException("ab", 1, L"", 0).file(); }

int answerX(UINT, DWORD, LPCCH, int, LPWSTR buffer, int) {
    *buffer = L'X';
    return 1;
}

int answerY(UINT, DWORD, LPCCH, int, LPWSTR buffer, int) {
    *buffer = L'Y';
    return 1;
}

} // namespace

TEST(ImportHook, ReplacementAnswersTheCall) {
    UINT page = 99;

    test::ImportHook const hook(
        "MultiByteToWideChar",
        [&page](UINT codePage, DWORD, LPCCH, int, LPWSTR buffer, int) -> int {
            page = codePage;
            *buffer = L'Q';
            return 1;
        });

    EXPECT_EQ(L"Q", convertedByLibrary());
    EXPECT_EQ(UINT{CP_ACP}, page);
}

TEST(ImportHook, OriginalIsBackWhenTheHookHasGone) {
    { test::ImportHook const hook("MultiByteToWideChar", answerX); }

    EXPECT_EQ(L"ab", convertedByLibrary());
}

TEST(ImportHook, CountsCallsAndPassesThemOn) {
    test::ImportHook<Converter> hook(
        "MultiByteToWideChar", [&](auto... arguments) { return hook.original()(arguments...); });

    convertedByLibrary();

    EXPECT_EQ(L"ab", convertedByLibrary());
    EXPECT_EQ(2u, hook.calls());
}

TEST(ImportHook, InnerHookOfTheSameImportWinsAndUnwinds) {
    test::ImportHook const outer("MultiByteToWideChar", answerX);
    {
        test::ImportHook const inner("MultiByteToWideChar", answerY);
        EXPECT_EQ(L"Y", convertedByLibrary());
    }

    EXPECT_EQ(L"X", convertedByLibrary());
}

TEST(ImportHook, OuterHookMayGoFirst) {
    auto outer = std::make_unique<test::ImportHook<Converter>>("MultiByteToWideChar", answerX);
    std::optional<test::ImportHook<Converter>> inner;
    inner.emplace(
        "MultiByteToWideChar", [&](auto... arguments) { return inner->original()(arguments...); });

    outer.reset();
    EXPECT_EQ(L"ab", convertedByLibrary());
    inner.reset();

    EXPECT_EQ(L"ab", convertedByLibrary());
}

TEST(ImportHook, TwoHooksOfOneSignatureAreKeptApart) {
    using Allocate = void*(std::size_t);
    test::ImportHook<void(void*)> releases(
        "free", [&](void* block) { releases.original()(block); });
    test::ImportHook<Allocate> first(
        "malloc", [&](std::size_t size) { return first.original()(size); });
    test::ImportHook<Allocate> second(
        "malloc", [&](std::size_t size) { return second.original()(size); });

    { vrException const failure("ab", 1, std::wstring(100, L'm'), 0); }

    EXPECT_LT(0u, first.calls());
    EXPECT_EQ(first.calls(), second.calls());
    EXPECT_EQ(first.calls(), releases.calls());
}

TEST(ImportHook, HooksTheImportsOfTheTestProgramItself) {
    test::ImportHook const hook(
        "GetTickCount64", []() -> ULONGLONG { return 42; }, test::thisProgram());

    EXPECT_EQ(42u, GetTickCount64());
}

TEST(ImportHook, HooksTheImportsOfAModuleByName) {
    auto const library = test::loadedModule(L"vrUtils.dll");

    test::ImportHook const hook("MultiByteToWideChar", answerX, library);

    EXPECT_EQ(L"X", convertedByLibrary());
}

TEST(ImportHook, ReplacementMayChangeItsOwnState) {
    test::ImportHook const hook(
        "GetTickCount64", [tick = ULONGLONG{0}]() mutable { return ++tick; }, test::thisProgram());

    GetTickCount64();

    EXPECT_EQ(2u, GetTickCount64());
}

TEST(ImportHook, UnknownImportIsRefused) {
    EXPECT_THROW(test::ImportHook("NoSuchCall", answerX), std::runtime_error);
}

TEST(ImportHook, RefusedHookLeavesItsGateFree) {
    for (int attempt = 0; attempt < 100; ++attempt)
        EXPECT_THROW(test::ImportHook("NoSuchCall", answerX), std::runtime_error);

    EXPECT_NO_THROW(test::ImportHook("MultiByteToWideChar", answerX));
}

TEST(ImportHook, TooManyHooksOfOneSignatureAreRefused) {
    std::vector<std::unique_ptr<test::ImportHook<Converter>>> hooks;
    for (int count = 0; count < 16; ++count)
        hooks.push_back(
            std::make_unique<test::ImportHook<Converter>>("MultiByteToWideChar", answerX));

    EXPECT_THROW(test::ImportHook("MultiByteToWideChar", answerY), std::runtime_error);

    hooks.clear();
    EXPECT_EQ(L"ab", convertedByLibrary());
}

TEST(ImportHook, CallsFromManyThreadsAreAllCounted) {
    test::ImportHook<Converter> hook(
        "MultiByteToWideChar", [&](auto... arguments) { return hook.original()(arguments...); });

    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count)
        threads.emplace_back([] {
            for (int call = 0; call < 1000; ++call)
                convertedByLibrary();
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(4000u, hook.calls());
}

TEST(ImportHook, ModuleThatIsNotLoadedIsRefused) {
    EXPECT_THROW(test::loadedModule(L"NoSuchModule.dll"), std::runtime_error);
}

TEST(ImportHook, TellsWhatAModuleImports) {
    EXPECT_TRUE(test::hasImport("VL_WriteLog", test::moduleUnderTest()));
    EXPECT_FALSE(test::hasImport("NoSuchCall", test::moduleUnderTest()));
}

TEST(FailingImport, FailsTheCallOfTheGivenNumber) {
    test::FailingImport<Converter> const fails("MultiByteToWideChar", 0, ERROR_CRC, 2);

    EXPECT_EQ(L"ab", convertedByLibrary());
    EXPECT_EQ(L"", convertedByLibrary());
    EXPECT_EQ(L"ab", convertedByLibrary());
    EXPECT_EQ(3u, fails.calls());
}

TEST(FailingImport, SetsTheLastErrorOfTheFailedCall) {
    test::FailingImport<Converter> const fails("MultiByteToWideChar", 0, ERROR_CRC);

    convertedByLibrary();
    auto const error = GetLastError();

    EXPECT_EQ(DWORD{ERROR_CRC}, error);
}

TEST(FailingImport, FailsEveryCall) {
    test::FailingImport<Converter> const fails(
        "MultiByteToWideChar", 0, ERROR_CRC, test::everyCall);

    EXPECT_EQ(L"", convertedByLibrary());
    EXPECT_EQ(L"", convertedByLibrary());
}
