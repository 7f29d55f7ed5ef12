// The first call of a process fills the table of mappings; each test has a process of its own for
// it, which tells what happens there in the order in which it does.

#include "vrUtils/Files/UncToLocalPath.h"

#include "tests/files/FakeNetwork.h"
#include "tests/support/AbsentKey.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;
using vr::Path;
using vrUtils::Files::uncToLocalPath;

namespace {

void say(std::wstring const& line) { std::printf("%s\n", test::utf8(line).c_str()); }

// Tells each call of the platform that the loading makes, ahead of it.
class Narrator {
    template <typename Signature>
    struct Told {
        explicit Told(char const* import)
            : hook(import, [this, import](auto... arguments) {
                  std::printf("%s\n", import);
                  return hook.original()(arguments...);
              }) {}

        test::ImportHook<Signature> hook;
    };

    Told<decltype(RegCreateKeyExW)> m_key{"RegCreateKeyExW"};
    Told<decltype(WNetAddConnection2W)> m_connect{"WNetAddConnection2W"};
    Told<decltype(GetLogicalDriveStringsW)> m_list{"GetLogicalDriveStringsW"};
    Told<decltype(WNetGetUniversalNameW)> m_universalName{"WNetGetUniversalNameW"};
    Told<decltype(NetShareGetInfo)> m_share{"NetShareGetInfo"};
};

// Resolves the paths one behind the other, on a machine with a disk and two connected drives.
test::ChildAction const resolve(L"resolve network paths", [](auto const& paths) {
    test::Drives const drives{
        {L"C:\\", {}}, {L"M:\\", L"\\\\Srv\\Media\\"}, {L"L:\\", L"\\\\localhost\\Mine\\"}};
    Narrator const narrator;
    test::LogRecorder log;
    for (auto const& path : paths) {
        auto const result = uncToLocalPath(Path(path, Path::eDetect)).str();
        for (auto const& line : log.texts())
            say(line.substr(0, line.find(L'\n')));
        log.clear();
        say(L"= " + result);
    }
    return 0;
});

// The same where nothing can be had: no key, no list of drives.
test::ChildAction const resolveInVain(L"resolve network paths in vain", [](auto const& paths) {
    Narrator const narrator;
    test::FailingImport<decltype(RegCreateKeyExW)> const noKey(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS, test::everyCall);
    test::FailingImport<decltype(GetLogicalDriveStringsW)> const noList(
        "GetLogicalDriveStringsW", 0, ERROR_NO_SYSTEM_RESOURCES, test::everyCall);
    test::LogRecorder log;
    for (auto const& path : paths)
        say(L"= " + uncToLocalPath(Path(path, Path::eDetect)).str());
    for (auto const& line : log.texts())
        say(line);
    std::printf("%u keys, %u lists\n", noKey.calls(), noList.calls());
    return 0;
});

// The first call again and again, with an allocation failing each time, until it gets by.
test::ChildAction const resolveWithoutMemory(L"resolve without memory", [](auto const&) {
    test::Drives const drives{{L"C:\\", {}}, {L"M:\\", L"\\\\srv\\media\\"}};
    auto const failures = test::failEachAllocation(
        [] { uncToLocalPath(Path::file(L"\\\\srv\\media\\Day 1\\a long name of a clip.mov")); });
    std::printf("%s\n", failures > 10 && drives.lists() > 1 ? "loaded again" : "not loaded again");
    say(L"= " + uncToLocalPath(Path::file(L"\\\\srv\\media\\a.mov")).str());
    return testing::Test::HasFailure() ? 1 : 0;
});

// Eight first calls at the same time.
test::ChildAction const resolveTogether(L"resolve together", [](auto const&) {
    test::Drives const drives{{L"M:\\", L"\\\\srv\\media\\"}};
    std::atomic<unsigned> ready{0};
    std::atomic<unsigned> right{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&] {
            ++ready;
            while (ready < 8)
                std::this_thread::yield();
            if (uncToLocalPath(Path::file(L"\\\\srv\\media\\a.mov")).str() == L"M:\\a.mov")
                ++right;
        });
    for (auto& thread : threads)
        thread.join();
    std::printf("%u of 8\n", unsigned{right});
    return drives.lists() >= 1 && drives.lists() <= 8 ? 0 : 1;
});

class FirstUncToLocalPath : public testing::Test {
  protected:
    static std::vector<std::string> linesOf(test::ChildProcess const& child) {
        std::vector<std::string> lines;
        std::istringstream output(child.output());
        for (std::string line; std::getline(output, line);) {
            line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
            lines.push_back(line);
        }
        EXPECT_EQ(0u, child.exitCode());
        return lines;
    }

    // What is told of the loading.
    static std::vector<std::string> const& loading() {
        static std::vector<std::string> const lines{
            "RegCreateKeyExW",
            "WNetAddConnection2W",
            "GetLogicalDriveStringsW",
            "WNetGetUniversalNameW",
            "WNetGetUniversalNameW",
            "WNetGetUniversalNameW",
            "Failed to map local path [C:\\]: err=0x4bc",
            "Local path [M:\\] mapped to [\\\\Srv\\Media\\]",
            "Local path [L:\\] mapped to [\\\\localhost\\Mine\\]"};
        return lines;
    }

    // What is told of the loading, and these lines behind it.
    static std::vector<std::string> loadingAnd(std::vector<std::string> const& more) {
        auto lines = loading();
        lines.insert(lines.end(), more.begin(), more.end());
        return lines;
    }

    test::AbsentKey const m_product{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
    test::RegistryPlace const m_key{HKEY_LOCAL_MACHINE, L"Software\\Vorrane\\Ostrel\\DriveMapping"};
};

} // namespace

TEST_F(FirstUncToLocalPath, LoadsForAnyPathAndBeforeItAnswers) {
    m_key.setText(L"M:", L"\\\\srv\\media");

    for (std::wstring const path :
         {L"C:\\x.mov", L"x\\y.mov", L"", L"\\\\srv\\", L"\\\\srv\\other.mov"})
        EXPECT_THAT(
            linesOf(*resolve.start({path})),
            ElementsAreArray(loadingAnd({"= " + test::utf8(path)})));
}

TEST_F(FirstUncToLocalPath, IsAnsweredByWhatItLoads) {
    m_key.setText(L"M:", L"\\\\srv\\media");

    EXPECT_THAT(
        linesOf(*resolve.start({L"\\\\SRV\\Media\\Clips\\Take1.mov"})),
        ElementsAreArray(loadingAnd({"uncToLocalPath: ", "= M:\\Clips\\Take1.mov"})));
}

TEST_F(FirstUncToLocalPath, IsTheOnlyOneThatLoads) {
    m_key.setText(L"M:", L"\\\\srv\\media");

    EXPECT_THAT(
        linesOf(*resolve.start({L"C:\\x.mov", L"C:\\x.mov", L"\\\\srv\\media\\"})),
        ElementsAreArray(loadingAnd({"= C:\\x.mov", "= C:\\x.mov", "uncToLocalPath: ", "= M:\\"})));
}

TEST_F(FirstUncToLocalPath, DriveBeatsTheShareOfThisMachine) {
    m_key.setText(L"M:", L"\\\\srv\\media");

    EXPECT_THAT(
        linesOf(*resolve.start({L"\\\\localhost\\mine\\a.mov", L"\\\\localhost\\other\\a.mov"})),
        ElementsAreArray(loadingAnd(
            {"uncToLocalPath: ", "= L:\\a.mov", "NetShareGetInfo",
             "uncToLocalPath: NetShareGetInfo failed on \"\\\\localhost\\other\\\" - error 2310",
             "= \\\\localhost\\other\\a.mov"})));
}

TEST_F(FirstUncToLocalPath, IsTheOnlyOneThatLoadsEvenIfEverythingFails) {
    EXPECT_THAT(
        linesOf(*resolveInVain.start({L"\\\\localhost\\media\\a.mov", L"C:\\x", L"C:\\x"})),
        ElementsAre(
            "NetShareGetInfo", "= \\\\localhost\\media\\a.mov", "= C:\\x", "= C:\\x",
            "uncToLocalPath: GetLogicalDriveStrings failed - error 1450",
            "uncToLocalPath: NetShareGetInfo failed on \"\\\\localhost\\media\\\" - error 2310",
            "1 keys, 1 lists"));
}

TEST_F(FirstUncToLocalPath, LoadsAgainWhereTheMemoryWasExhausted) {
    EXPECT_THAT(linesOf(*resolveWithoutMemory.start()), ElementsAre("loaded again", "= M:\\a.mov"));
}

TEST_F(FirstUncToLocalPath, OfSeveralThreadsIsRightForAll) {
    EXPECT_THAT(linesOf(*resolveTogether.start()), ElementsAre("8 of 8"));
}
