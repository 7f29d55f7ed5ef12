#include "vrUtils/Files/MachineIdentity.h"

#include "tests/files/FakeNetwork.h"
#include "tests/files/PathType.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using vr::Path;
using namespace vrUtils::Files;

namespace {

// A computer with two addresses, and some around it.
class MachineIdentity : public testing::Test {
  protected:
    static std::vector<std::wstring> resolved(Path const& path) {
        std::vector<std::wstring> texts;
        for (auto const& element : resolveHostInPathToIPAddresses(path))
            texts.push_back(element.components().wholePath());
        return texts;
    }

    static bool isHere(std::wstring const& text) {
        return isPathToThisMachine(Path(text, Path::eDetect));
    }

    static bool areTogether(std::wstring const& first, std::wstring const& second) {
        return arePathsToSameMachine(Path(first, Path::eDetect), Path(second, Path::eDetect));
    }

    static std::wstring replaced(std::wstring const& text) {
        return replaceLocalhostWithMachineName(Path(text, Path::eDetect)).str();
    }

    test::ThisComputer const m_computer{L"HOST1"};
    test::NameService const m_names{
        {"host1", {"10.0.0.1", "10.0.0.2"}},
        {"alias", {"10.9.9.9", "10.0.0.2"}},
        {"server", {"10.0.0.3"}},
        {"10.0.0.1", {"10.0.0.1"}},
        {"127.0.0.2", {"127.0.0.2"}}};
};

using IsPathToThisMachine = MachineIdentity;
using ArePathsToSameMachine = MachineIdentity;
using ResolveHostInPath = MachineIdentity;
using ReplaceLocalhost = MachineIdentity;

} // namespace

TEST_F(IsPathToThisMachine, PathWithADriveAlwaysIs) {
    for (auto const* const text : {L"C:\\x", L"Z:\\x", L"C:\\", L"c:/Media/clip.mxf"})
        EXPECT_TRUE(isHere(text)) << text;

    EXPECT_THAT(m_names.asked(), IsEmpty());
    EXPECT_EQ(0u, m_computer.calls());
}

TEST_F(IsPathToThisMachine, RelativePathNeverIs) {
    for (auto const* const text : {L"x\\y.mov", L"x", L"", L"\\x\\", L"C:x", L"localhost\\x\\"})
        EXPECT_FALSE(isHere(text)) << text;

    EXPECT_THAT(m_names.asked(), IsEmpty());
}

TEST_F(IsPathToThisMachine, LiteralsAreInAnyCaseWithAnyPort) {
    for (auto const* const text :
         {L"\\\\localhost\\share\\", L"\\\\LOCALHOST:9000\\share\\", L"\\\\LocalHost\\a.mov",
          L"\\\\localhost", L"//localhost/share/", L"\\\\127.0.0.1\\share\\",
          L"\\\\127.0.0.1:80\\share\\a.mov"})
        EXPECT_TRUE(isHere(text)) << text;

    EXPECT_THAT(m_names.asked(), IsEmpty());
    EXPECT_EQ(0u, m_computer.calls());
}

TEST_F(IsPathToThisMachine, OtherFormsOfLoopbackAreDecidedByTheirAddress) {
    EXPECT_FALSE(isHere(L"\\\\127.0.0.2\\share\\"));
    EXPECT_FALSE(isHere(L"\\\\127.1\\share\\"));
    EXPECT_FALSE(isHere(L"\\\\localhost.\\share\\"));
}

TEST_F(IsPathToThisMachine, OwnNameIs) { EXPECT_TRUE(isHere(L"\\\\Host1\\share\\")); }

TEST_F(IsPathToThisMachine, NameWithOneAddressInCommonIs) {
    EXPECT_TRUE(isHere(L"\\\\alias\\share\\"));
    EXPECT_TRUE(isHere(L"\\\\10.0.0.1\\share\\"));
    EXPECT_TRUE(isHere(L"\\\\ALIAS:8080\\share\\a.mov"));
}

TEST_F(IsPathToThisMachine, NameWithNoAddressInCommonIsNot) {
    EXPECT_FALSE(isHere(L"\\\\server\\share\\"));
}

TEST_F(IsPathToThisMachine, UnknownNameIsNot) { EXPECT_FALSE(isHere(L"\\\\nosuchhost\\share\\")); }

TEST_F(IsPathToThisMachine, OwnNameIsNotIfItCannotBeResolved) {
    test::NameService const nobody{};

    EXPECT_FALSE(isHere(L"\\\\host1\\share\\"));
}

TEST_F(IsPathToThisMachine, RootWithoutANameIs) { EXPECT_TRUE(isHere(L"\\\\\\share\\")); }

TEST_F(IsPathToThisMachine, OwnNameIsLookedUpFirst) {
    isHere(L"\\\\SERVER:80\\share\\");

    EXPECT_THAT(m_names.asked(), ElementsAre("host1", "server"));
}

TEST_F(IsPathToThisMachine, BothAreLookedUpEvenIfThisComputerHasNoAddress) {
    test::NameService const names{{"server", {"10.0.0.3"}}};

    EXPECT_FALSE(isHere(L"\\\\server\\share\\"));
    EXPECT_THAT(names.asked(), ElementsAre("host1", "server"));
}

TEST_F(IsPathToThisMachine, NothingIsRemembered) {
    isHere(L"\\\\server\\share\\");
    isHere(L"\\\\server\\share\\");

    EXPECT_THAT(m_names.asked(), ElementsAre("host1", "server", "host1", "server"));
}

TEST_F(IsPathToThisMachine, ComputerWithoutANameIsKnownByItsAddresses) {
    test::ThisComputer const computer(L"SIXTEEN-LETTERS-");
    test::NameService const names{{"", {"10.0.0.1"}}, {"host", {"10.0.0.1"}}};

    EXPECT_TRUE(isHere(L"\\\\host\\share\\"));
    EXPECT_THAT(names.asked(), ElementsAre("", "host"));
}

TEST_F(ArePathsToSameMachine, OneNameInTwoPathsIs) {
    EXPECT_TRUE(areTogether(L"\\\\server\\a\\", L"\\\\SERVER\\b\\c.mov"));
}

TEST_F(ArePathsToSameMachine, PortsDoNotCount) {
    EXPECT_TRUE(areTogether(L"\\\\server:80\\a\\", L"\\\\server:81\\a\\"));
    EXPECT_TRUE(areTogether(L"\\\\localhost:80\\a.mov", L"\\\\host1\\a\\"));
}

TEST_F(ArePathsToSameMachine, AnyAddressInCommonIsEnough) {
    EXPECT_TRUE(areTogether(L"\\\\alias\\a\\", L"\\\\host1\\a\\"));
    EXPECT_TRUE(areTogether(L"\\\\host1\\a\\", L"\\\\alias\\a\\"));
}

TEST_F(ArePathsToSameMachine, DifferentAddressesAreNot) {
    EXPECT_FALSE(areTogether(L"\\\\server\\a\\", L"\\\\host1\\a\\"));
}

TEST_F(ArePathsToSameMachine, UnknownNameIsNotEvenTogetherWithItself) {
    EXPECT_FALSE(areTogether(L"\\\\nosuchhost\\a\\", L"\\\\nosuchhost\\a\\"));
    EXPECT_FALSE(areTogether(L"\\\\nosuchhost\\a\\", L"\\\\server\\a\\"));
    EXPECT_FALSE(areTogether(L"\\\\server\\a\\", L"\\\\nosuchhost\\a\\"));
}

TEST_F(ArePathsToSameMachine, DriveIsOnThisComputer) {
    EXPECT_TRUE(areTogether(L"C:\\a\\", L"\\\\host1\\b\\"));
    EXPECT_TRUE(areTogether(L"\\\\localhost\\b\\", L"Z:\\a\\"));
    EXPECT_TRUE(areTogether(L"C:\\a\\", L"D:\\b.mov"));
    EXPECT_FALSE(areTogether(L"C:\\a\\", L"\\\\server\\b\\"));
}

TEST_F(ArePathsToSameMachine, RelativePathIsOnThisComputerHere) {
    EXPECT_TRUE(areTogether(L"x\\y.mov", L"C:\\a\\"));
    EXPECT_FALSE(isHere(L"x\\y.mov"));
}

TEST_F(ArePathsToSameMachine, DriveIsKnownEvenIfTheComputersNameIsNot) {
    test::NameService const names{{"", {"10.0.0.1"}}};

    EXPECT_TRUE(areTogether(L"C:\\a\\", L"D:\\b\\"));
}

TEST_F(ArePathsToSameMachine, EachPathIsLookedUpOnceTheFirstOneFirst) {
    areTogether(L"\\\\SERVER\\a\\", L"\\\\alias\\b\\");

    EXPECT_THAT(m_names.asked(), ElementsAre("server", "alias"));
}

TEST_F(ArePathsToSameMachine, SecondPathIsLookedUpEvenIfTheFirstIsUnknown) {
    areTogether(L"\\\\nosuchhost\\a\\", L"\\\\server\\b\\");

    EXPECT_THAT(m_names.asked(), ElementsAre("nosuchhost", "server"));
}

TEST_F(ArePathsToSameMachine, LiteralsAndDrivesAreLookedUpAsThisComputer) {
    areTogether(L"\\\\127.0.0.1\\a\\", L"C:\\b\\");

    EXPECT_THAT(m_names.asked(), ElementsAre("host1", "host1"));
}

TEST_F(ResolveHostInPath, GivesThePathOnceForEachAddressInOrder) {
    EXPECT_THAT(
        resolved(Path::file(L"\\\\localhost:9000\\media\\x.mov")),
        ElementsAre(L"\\\\10.0.0.1:9000\\media\\x.mov", L"\\\\10.0.0.2:9000\\media\\x.mov"));
    EXPECT_THAT(
        resolved(Path::file(L"\\\\Alias\\Media\\Day 1\\X.mov")),
        ElementsAre(L"\\\\10.9.9.9\\Media\\Day 1\\X.mov", L"\\\\10.0.0.2\\Media\\Day 1\\X.mov"));
}

TEST_F(ResolveHostInPath, LiteralsStandForTheComputersName) {
    for (auto const* const text : {L"\\\\LOCALHOST\\a\\", L"\\\\127.0.0.1\\a\\"})
        EXPECT_THAT(
            resolved(Path::folder(text)), ElementsAre(L"\\\\10.0.0.1\\a\\", L"\\\\10.0.0.2\\a\\"))
            << text;

    EXPECT_THAT(m_names.asked(), ElementsAre("host1", "host1"));
}

TEST_F(ResolveHostInPath, UnknownHostGivesNothing) {
    EXPECT_THAT(resolved(Path::file(L"\\\\nosuchhost\\a\\x.mov")), IsEmpty());
    EXPECT_THAT(m_names.asked(), ElementsAre("nosuchhost"));
}

TEST_F(ResolveHostInPath, PathWithoutAHostIsOnThisComputerAndLosesItsDrive) {
    EXPECT_THAT(
        resolved(Path::file(L"C:\\a\\x.mov")),
        ElementsAre(L"\\\\10.0.0.1\\a\\x.mov", L"\\\\10.0.0.2\\a\\x.mov"));
    EXPECT_THAT(
        resolved(Path::file(L"a\\x.mov")),
        ElementsAre(L"\\\\10.0.0.1\\a\\x.mov", L"\\\\10.0.0.2\\a\\x.mov"));
    EXPECT_THAT(resolved(Path::folder(L"C:\\")), ElementsAre(L"\\\\10.0.0.1\\", L"\\\\10.0.0.2\\"));
}

TEST_F(ResolveHostInPath, PortIsKeptUnlessItIsZero) {
    auto const resolvedServer = [](std::wstring const& port) {
        return resolved(Path::folder(L"\\\\server:" + port + L"\\a\\"));
    };

    EXPECT_THAT(resolvedServer(L"1"), ElementsAre(L"\\\\10.0.0.3:1\\a\\"));
    EXPECT_THAT(resolvedServer(L"0060772"), ElementsAre(L"\\\\10.0.0.3:60772\\a\\"));
    EXPECT_THAT(resolvedServer(L"99999999999"), ElementsAre(L"\\\\10.0.0.3:4294967295\\a\\"));
    EXPECT_THAT(resolvedServer(L"0"), ElementsAre(L"\\\\10.0.0.3\\a\\"));
    EXPECT_THAT(resolvedServer(L"x"), ElementsAre(L"\\\\10.0.0.3\\a\\"));
}

TEST_F(ResolveHostInPath, FolderStaysAFolderAndFileAFile) {
    EXPECT_THAT(
        resolveHostInPathToIPAddresses(Path::folder(L"\\\\server\\media\\")),
        ElementsAre(HasType(Path::eFolder)));
    EXPECT_THAT(
        resolveHostInPathToIPAddresses(Path::file(L"\\\\server\\media\\x.mov")),
        ElementsAre(HasType(Path::eFile)));
}

TEST_F(ResolveHostInPath, NameAtTheEndMakesAFile) {
    auto const resolvedFolder =
        resolveHostInPathToIPAddresses(Path::folder(L"\\\\server\\a\\day.1"));

    ASSERT_THAT(resolvedFolder, ElementsAre(HasType(Path::eFile)));
    EXPECT_EQ(L".1", resolvedFolder.front().components().extension());
}

TEST_F(ResolveHostInPath, FileWithoutANameBecomesAFolder) {
    EXPECT_THAT(
        resolveHostInPathToIPAddresses(Path::file(L"\\\\server\\a\\")),
        ElementsAre(HasType(Path::eFolder)));
}

TEST_F(ResolveHostInPath, HostAloneGivesAddressesAlone) {
    EXPECT_THAT(resolved(Path::file(L"\\\\server")), ElementsAre(L"\\\\10.0.0.3\\"));
}

TEST_F(ReplaceLocalhost, PutsTheBareNameInFrontOfTheFolders) {
    EXPECT_EQ(L"HOST1media\\x.mov", replaced(L"\\\\localhost\\media\\x.mov"));
    EXPECT_EQ(L"HOST1media\\", replaced(L"\\\\LOCALHOST\\media\\"));
    EXPECT_EQ(L"HOST1", replaced(L"\\\\localhost\\"));
    EXPECT_EQ(L"HOST1x.mov", replaced(L"\\\\127.0.0.1\\x.mov"));
}

TEST_F(ReplaceLocalhost, KeepsThePortBehindTheName) {
    EXPECT_EQ(L"HOST1:8080media\\x.mov", replaced(L"\\\\127.0.0.1:8080\\media\\x.mov"));
}

TEST_F(ReplaceLocalhost, LowersAnyOtherHost) {
    EXPECT_EQ(L"\\\\server\\Media\\x.mov", replaced(L"\\\\Server\\Media\\x.mov"));
    EXPECT_EQ(L"\\\\host1\\Media\\", replaced(L"\\\\HOST1\\Media\\"));
    EXPECT_EQ(L"\\\\127.0.0.2\\Media\\", replaced(L"\\\\127.0.0.2\\Media\\"));
}

TEST_F(ReplaceLocalhost, PutsThePortOfAnyOtherHostBehindTheBackslash) {
    EXPECT_EQ(L"\\\\server\\:8080Media\\x.mov", replaced(L"\\\\Server:8080\\Media\\x.mov"));
}

TEST_F(ReplaceLocalhost, DropsTheDrive) {
    EXPECT_EQ(L"a\\x.mov", replaced(L"C:\\a\\x.mov"));
    EXPECT_EQ(L"", replaced(L"C:\\"));
}

TEST_F(ReplaceLocalhost, LeavesARelativePathAlone) {
    EXPECT_EQ(L"A\\x.mov", replaced(L"A\\x.mov"));
}

TEST_F(ReplaceLocalhost, NameOfOneLetterAndThePortReadAsADrive) {
    test::ThisComputer const computer(L"A");

    EXPECT_EQ(L"A:8080media\\x.mov", replaced(L"\\\\localhost:8080\\media\\x.mov"));
    EXPECT_EQ(L"A:\\8080x.mov", replaced(L"\\\\localhost:8080\\x.mov"));
}

TEST_F(ReplaceLocalhost, ComputerWithoutANameLeavesTheFolders) {
    test::ThisComputer const computer(L"SIXTEEN-LETTERS-");

    EXPECT_EQ(L"media\\x.mov", replaced(L"\\\\localhost\\media\\x.mov"));
}

TEST_F(ReplaceLocalhost, NameAtTheEndMakesAFile) {
    EXPECT_THAT(
        replaceLocalhostWithMachineName(Path::folder(L"\\\\localhost\\a\\day.1")),
        HasType(Path::eFile));
    EXPECT_THAT(
        replaceLocalhostWithMachineName(Path::file(L"\\\\localhost\\a\\")), HasType(Path::eFolder));
}

TEST_F(ReplaceLocalhost, LooksNothingUp) {
    for (auto const* const text : {L"\\\\localhost\\a\\", L"\\\\server\\a\\", L"C:\\a\\", L"a\\"})
        replaced(text);

    EXPECT_THAT(m_names.asked(), IsEmpty());
    EXPECT_EQ(1u, m_computer.calls());
}

TEST_F(MachineIdentity, WritesNothingToTheLog) {
    test::LogRecorder const log;

    for (auto const* const text :
         {L"\\\\server\\a\\", L"\\\\nosuchhost\\a\\", L"C:\\a\\", L"a\\"}) {
        isHere(text);
        areTogether(text, text);
        resolved(Path::folder(text));
        replaced(text);
    }

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(MachineIdentity, FailedCallsOpenNothing) {
    test::FailingImport<decltype(GetComputerNameW)> const noName(
        "GetComputerNameW", FALSE, ERROR_ACCESS_DENIED, test::everyCall);
    test::FailingImport<decltype(gethostbyname)> const noService(
        "gethostbyname", nullptr, WSANOTINITIALISED, test::everyCall);
    test::HandleLeakCheck const check;

    EXPECT_FALSE(isHere(L"\\\\host1\\a\\"));
    EXPECT_FALSE(areTogether(L"C:\\a\\", L"C:\\a\\"));
    EXPECT_THAT(resolved(Path::folder(L"C:\\a\\")), IsEmpty());
    EXPECT_EQ(L"a\\", replaced(L"\\\\localhost\\a\\"));
}

TEST_F(MachineIdentity, ExhaustedHeapComesOutAsSuch) {
    auto const path = Path::file(L"\\\\alias:8080\\media\\x.mov");

    EXPECT_LT(0u, test::failEachAllocation([&] { isPathToThisMachine(path); }));
    EXPECT_LT(0u, test::failEachAllocation([&] { arePathsToSameMachine(path, path); }));
    EXPECT_LT(0u, test::failEachAllocation([&] { resolveHostInPathToIPAddresses(path); }));
    EXPECT_LT(0u, test::failEachAllocation([&] { replaceLocalhostWithMachineName(path); }));
}

// With the platform's own name service; whatever this computer is called, it is known.
TEST(MachineIdentityHere, ThisComputerIsKnownByEveryOneOfItsNames) {
    std::array<wchar_t, 16> name{};
    DWORD size = 16;
    ASSERT_TRUE(GetComputerNameW(name.data(), &size));
    auto const own = Path::folder(std::wstring(L"\\\\") + name.data() + L"\\share\\");

    EXPECT_TRUE(isPathToThisMachine(own));
    EXPECT_TRUE(arePathsToSameMachine(Path::folder(L"C:\\a\\"), own));
    EXPECT_TRUE(arePathsToSameMachine(Path::folder(L"\\\\localhost\\a\\"), own));
    EXPECT_FALSE(resolveHostInPathToIPAddresses(own).empty());
    EXPECT_TRUE(isPathToThisMachine(resolveHostInPathToIPAddresses(own).front()));
}

TEST(MachineIdentityHere, UnknownHostIsNoMachine) {
    auto const unknown = Path::folder(L"\\\\nosuchhost.invalid\\share\\");

    EXPECT_FALSE(isPathToThisMachine(unknown));
    EXPECT_FALSE(arePathsToSameMachine(unknown, unknown));
    EXPECT_TRUE(resolveHostInPathToIPAddresses(unknown).empty());
}
