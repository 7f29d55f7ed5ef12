// The table of mappings is one for the process: each test has a share of its own name.

#include "vrUtils/Files/UncToLocalPath.h"

#include "tests/files/FakeNetwork.h"
#include "tests/files/PathType.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <cctype>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

using test::Logged;
using testing::ElementsAre;
using testing::IsEmpty;
using vr::Path;
using vrUtils::Files::uncToLocalPath;

namespace {

class UncToLocalPath : public testing::Test {
  protected:
    // The first call has its own tests.
    static void SetUpTestSuite() { test::resolveOnceWithoutDrives(); }

    // The name of this test's share, in lower case.
    static std::wstring share() {
        std::string const name = testing::UnitTest::GetInstance()->current_test_info()->name();
        std::wstring lowered;
        for (char const c : name)
            lowered += static_cast<wchar_t>(std::tolower(static_cast<unsigned char>(c)));
        return lowered;
    }

    // The root of this test's share on this computer.
    static std::wstring root() { return L"\\\\localhost\\" + share() + L'\\'; }

    // This computer offers the share over this folder.
    void offer(std::wstring const& folder, std::wstring const& server = L"localhost") {
        m_shares.emplace(
            std::initializer_list<test::Shares::Folders::value_type>{{{server, share()}, folder}});
    }

    // The share is in the table, over this folder; nothing is offered any more.
    void map(std::wstring const& folder) {
        offer(folder);
        uncToLocalPath(Path::folder(root()));
        m_shares.emplace(std::initializer_list<test::Shares::Folders::value_type>{});
        m_log.clear();
    }

    std::vector<std::wstring> asked() const { return m_shares->asked(); }

    std::optional<test::Shares> m_shares;
    test::ThisComputer const m_computer{L"HOST1"};
    test::NameService const m_names{{"host1", {"10.0.0.1"}}, {"server", {"10.0.0.2"}}};
    test::LogRecorder m_log;
};

using UncByShare = UncToLocalPath;
using UncByTable = UncToLocalPath;

} // namespace

TEST_F(UncToLocalPath, PathWithoutAShareComesBackAndAsksNothing) {
    offer(L"D:\\");
    for (auto const& path :
         {Path::folder(L"C:\\Media\\"), Path::file(L"C:\\Media\\a.mov"),
          Path::file(L"Media\\a.mov"), Path::folder(L"Media\\"), Path::folder(L"\\\\localhost"),
          Path::file(L"\\\\localhost\\"), Path::file(L"\\\\localhost\\Media"),
          Path(L"\\\\localhost\\Media", Path::eDetect), Path()})
        EXPECT_THAT(uncToLocalPath(path), IsPath(path.components().wholePath(), typeOf(path)));

    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(m_names.asked(), IsEmpty());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(UncToLocalPath, PathOfAnotherMachineComesBackAsItWas) {
    offer(L"D:\\");
    auto const path = Path::file(L"\\\\SERVER:80\\Share\\Clips\\A.mov");

    EXPECT_THAT(uncToLocalPath(path), IsPath(L"\\\\SERVER:80\\Share\\Clips\\A.mov", Path::eFile));

    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(UncToLocalPath, UnchangedPathKeepsItsTypeAndTheTextAsEntered) {
    offer(L"D:\\");
    EXPECT_THAT(
        uncToLocalPath(Path::folder(L"\\\\SERVER\\Share\\Day.1")),
        IsPath(L"\\\\SERVER\\Share\\Day.1", Path::eFolder));
    EXPECT_THAT(
        uncToLocalPath(Path::file(L"\\\\SERVER\\Share\\Day\\")),
        IsPath(L"\\\\SERVER\\Share\\Day\\", Path::eFile));
    // As a copy does, and an assigned path does not.
    EXPECT_EQ(L"C:a.mov", textOf(uncToLocalPath(Path::file(L"C:a.mov"))));
}

TEST_F(UncToLocalPath, OtherMachineIsLookedUpAtEachCall) {
    offer(L"D:\\");
    auto const path = Path::folder(L"\\\\Server\\Share\\");

    uncToLocalPath(path);
    uncToLocalPath(path);

    EXPECT_THAT(m_names.asked(), ElementsAre("host1", "server", "host1", "server"));
}

TEST_F(UncByShare, FileGivesTheFolderBehindTheShareAndTheRest) {
    offer(L"D:\\Store", L"host1");

    EXPECT_THAT(
        uncToLocalPath(Path::file(L"\\\\HOST1\\" + share() + L"\\Clips\\Day 1\\Take1.mov")),
        IsPath(L"D:\\Store\\Clips\\Day 1\\Take1.mov", Path::eFile));
}

TEST_F(UncByShare, LiteralsAreAskedForByTheirName) {
    offer(L"D:\\Store\\", L"127.0.0.1");

    EXPECT_THAT(
        uncToLocalPath(Path::file(L"\\\\127.0.0.1\\" + share() + L"\\x.mov")),
        IsPath(L"D:\\Store\\x.mov", Path::eFile));
    EXPECT_THAT(asked(), ElementsAre(L"127.0.0.1|" + share() + L"|2"));
    EXPECT_THAT(m_names.asked(), IsEmpty());
}

TEST_F(UncByShare, RowsOfTwoNamesForOneMachineDiffer) {
    map(L"D:\\Store\\");
    offer(L"E:\\", L"127.0.0.1");

    EXPECT_EQ(L"E:\\x", uncToLocalPath(Path::file(L"\\\\127.0.0.1\\" + share() + L"\\x")).str());
    EXPECT_EQ(L"D:\\Store\\x", uncToLocalPath(Path::file(root() + L"x")).str());
}

TEST_F(UncByShare, ServerAndShareAreAskedForTrimmedInLowerCase) {
    offer(L"D:\\");

    uncToLocalPath(Path::file(L"//LOCALHOST:8080//Media/Day/A.mov"));

    EXPECT_THAT(asked(), ElementsAre(L"localhost:8080|media|2"));
}

TEST_F(UncByShare, FolderBehindTheShareIsClosedByABackslashIfByNothingElse) {
    struct Row {
        wchar_t const* folder;
        wchar_t const* result;
    };
    for (auto const& [folder, result] :
         {Row{L"D:\\Store", L"D:\\Store\\Clips\\a"}, Row{L"D:\\Store\\", L"D:\\Store\\Clips\\a"},
          Row{L"D:/Store/", L"D:\\Store\\Clips\\a"}, Row{L"D:", L"D:\\Clips\\a"},
          Row{L"Store", L"Store\\Clips\\a"}, Row{L"", L"Clips\\a"},
          Row{L"\\\\other\\media", L"\\\\other\\media\\Clips\\a"}}) {
        auto const name = share() + std::to_wstring(m_log.lines().size());
        m_shares.emplace(std::initializer_list<test::Shares::Folders::value_type>{
            {{L"localhost", name}, folder}});

        EXPECT_EQ(
            result, textOf(uncToLocalPath(Path::file(L"\\\\localhost\\" + name + L"\\Clips\\a"))));
    }
}

TEST_F(UncByShare, FolderComesBackAsAFile) {
    offer(L"D:\\Store");

    EXPECT_THAT(
        uncToLocalPath(Path::folder(root() + L"Clips\\")),
        IsPath(L"D:\\Store\\Clips\\", Path::eFile));
}

TEST_F(UncByShare, FolderThatNoBackslashClosesIsTakenForItsName) {
    offer(L"D:\\Store");

    EXPECT_THAT(
        uncToLocalPath(Path::folder(root() + L"Day.1")), IsPath(L"D:\\Store\\Day.1", Path::eFile));
}

TEST_F(UncByShare, AnswerIsToldAtLevelFiveWithTheRootOfTheShare) {
    offer(L"D:\\Store");

    uncToLocalPath(Path::file(L"\\\\LocalHost\\" + share() + L"\\Clips\\A.mov"));

    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(
                           5, L"uncToLocalPath: NetShareGetInfo resolved UNC \"" + root() +
                                  L"\" to local path \"D:\\Store\\Clips\\A.mov\"")));
    EXPECT_EQ(
        L"uncToLocalPath: NetShareGetInfo resolved UNC \"%s\" to local path \"%s\"",
        m_log.lines().front().format);
}

TEST_F(UncByShare, AnswerBecomesARow) {
    offer(L"D:\\Store");
    uncToLocalPath(Path::file(root() + L"a.mov"));

    EXPECT_THAT(
        uncToLocalPath(Path::file(root() + L"Clips\\b.mov")),
        IsPath(L"D:\\Store\\Clips\\b.mov", Path::eFile));
    EXPECT_THAT(asked(), ElementsAre(L"localhost|" + share() + L"|2"));
}

TEST_F(UncByShare, SecondCallForTheSameFileSaysNothing) {
    offer(L"D:\\Store");
    uncToLocalPath(Path::file(root() + L"a.mov"));
    m_log.clear();

    EXPECT_EQ(L"D:\\Store\\a.mov", uncToLocalPath(Path::file(root() + L"a.mov")).str());

    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(UncByShare, SecondCallForAnotherFileIsToldAtLevelSix) {
    offer(L"D:\\Store");
    uncToLocalPath(Path::file(root() + L"a.mov"));
    m_log.clear();

    uncToLocalPath(Path::file(root() + L"b.mov"));

    EXPECT_THAT(m_log.lines(), ElementsAre(Logged(6, testing::HasSubstr(L"\"D:\\Store\\b.mov\""))));
}

TEST_F(UncByShare, EmptyFolderBehindTheShareIsAskedForAgainAndToldOnce) {
    offer({});

    EXPECT_THAT(uncToLocalPath(Path::file(root() + L"x\\a")), IsPath(L"x\\a", Path::eFile));
    EXPECT_THAT(uncToLocalPath(Path::file(root() + L"x\\a")), IsPath(L"x\\a", Path::eFile));

    EXPECT_EQ(2u, asked().size());
    EXPECT_THAT(m_log.lines(), ElementsAre(Logged(5, testing::HasSubstr(L"\"x\\a\""))));
}

TEST_F(UncByShare, EmptyFolderBehindTheShareMayLeaveNothing) {
    offer({});

    EXPECT_THAT(uncToLocalPath(Path::folder(root())), IsPath(L"", Path::eFile));
}

TEST_F(UncByShare, ShareWithoutAServerNameIsAskedForWithoutOne) {
    offer(L"D:\\Store", {});

    EXPECT_EQ(L"D:\\Store\\a", uncToLocalPath(Path::file(L"\\\\\\" + share() + L"\\a")).str());
    EXPECT_THAT(asked(), ElementsAre(L"|" + share() + L"|2"));
}

TEST_F(UncByShare, FailureLeavesThePathAndIsToldEachTime) {
    m_shares.emplace(std::initializer_list<test::Shares::Folders::value_type>{}, 2310u);
    auto const path = Path::file(L"\\\\LocalHost:80\\Missing\\Clips\\A.mov");
    auto const line = Logged(
        7,
        L"uncToLocalPath: NetShareGetInfo failed on \"\\\\localhost:80\\missing\\\" - error 2310");

    for (int call = 0; call < 2; ++call)
        EXPECT_THAT(
            uncToLocalPath(path), IsPath(L"\\\\LocalHost:80\\Missing\\Clips\\A.mov", Path::eFile));

    EXPECT_THAT(m_log.lines(), ElementsAre(line, line));
    EXPECT_EQ(
        L"uncToLocalPath: NetShareGetInfo failed on \"%s\" - error %ld",
        m_log.lines().front().format);
    EXPECT_EQ(2u, asked().size());
}

TEST_F(UncByShare, FailureKeepsTheTypeOfThePath) {
    m_shares.emplace(
        std::initializer_list<test::Shares::Folders::value_type>{}, ERROR_ACCESS_DENIED);

    EXPECT_THAT(
        uncToLocalPath(Path::folder(root() + L"Day.1")), IsPath(root() + L"Day.1", Path::eFolder));
}

TEST_F(UncByShare, AnswerIsFreed) {
    offer(L"D:\\Store");

    uncToLocalPath(Path::file(root() + L"a.mov"));

    EXPECT_EQ(1u, m_shares->freed());
    EXPECT_EQ(0u, m_shares->outstanding());
    EXPECT_TRUE(m_shares->wereFreedSoundly());
}

TEST_F(UncByShare, MissingAnswerIsFreedAsNull) {
    m_shares.emplace(std::initializer_list<test::Shares::Folders::value_type>{});

    uncToLocalPath(Path::file(root() + L"a.mov"));

    EXPECT_EQ(1u, m_shares->freed());
    EXPECT_TRUE(m_shares->wereFreedSoundly());
}

TEST_F(UncByShare, AnswerIsFreedWhateverAllocationFails) {
    auto const path = Path::file(root() + std::wstring(300, L'a'));
    unsigned round = 0;

    test::failEachAllocation([&] {
        // A row would answer the next round: each has a computer of its own.
        auto const server = L"localhost:" + std::to_wstring(++round);
        offer(L"D:\\" + std::wstring(300, L's'), server);
        auto const unc = Path::file(L"\\\\" + server + L'\\' + share() + L"\\Clips\\a.mov");
        struct Check {
            test::Shares const& shares;

            ~Check() {
                EXPECT_EQ(shares.asked().size(), shares.freed());
                EXPECT_EQ(0u, shares.outstanding());
                EXPECT_TRUE(shares.wereFreedSoundly());
            }
        } const check{*m_shares};
        uncToLocalPath(unc);
    });

    EXPECT_LT(20u, round);
}

TEST_F(UncByTable, MachineAndShareMatchInAnyCaseAndTheRestKeepsItsOwn) {
    map(L"M:\\");

    EXPECT_THAT(
        uncToLocalPath(
            Path::file(L"\\\\LOCALHOST\\MachineAndShareMatchInAnyCaseAndTheRestKeepsItsOwn\\Clips\\"
                       L"Take1.mov")),
        IsPath(L"M:\\Clips\\Take1.mov", Path::eFile));
}

TEST_F(UncByTable, FolderComesBackAsAFolder) {
    map(L"M:\\");

    EXPECT_THAT(uncToLocalPath(Path::folder(root())), IsPath(L"M:\\", Path::eFolder));
    EXPECT_THAT(
        uncToLocalPath(Path::folder(root() + L"Day.1\\")), IsPath(L"M:\\Day.1\\", Path::eFolder));
    EXPECT_THAT(
        uncToLocalPath(Path::file(root() + L"Clips\\")), IsPath(L"M:\\Clips\\", Path::eFolder));
}

TEST_F(UncByTable, FolderThatNoBackslashClosesIsTakenForAFile) {
    map(L"M:\\");

    EXPECT_THAT(uncToLocalPath(Path::folder(root() + L"Day.1")), IsPath(L"M:\\Day.1", Path::eFile));
}

TEST_F(UncByTable, PortBelongsToTheMachine) {
    map(L"M:\\");

    uncToLocalPath(Path::file(L"\\\\localhost:80\\" + share() + L"\\a.mov"));

    EXPECT_THAT(asked(), ElementsAre(L"localhost:80|" + share() + L"|2"));
}

TEST_F(UncByTable, HitIsToldAtLevelSixWithTheWholePath) {
    map(L"M:\\");

    uncToLocalPath(Path::file(L"//LocalHost/" + share() + L"/Clips/A.mov"));

    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(
                           6, L"uncToLocalPath: \nResolved UNC path \n\"\\\\LocalHost\\" + share() +
                                  L"\\Clips\\A.mov\"\n to local path \n\"M:\\Clips\\A.mov\"\n")));
    EXPECT_EQ(
        L"uncToLocalPath: \nResolved UNC path \n\"%s\"\n to local path \n\"%s\"\n",
        m_log.lines().front().format);
}

TEST_F(UncByTable, HitIsToldOnceForEachResultWhateverTheCaseOfTheMachine) {
    map(L"M:\\");

    for (auto const* const host : {L"\\\\localhost\\", L"\\\\LOCALHOST\\"})
        uncToLocalPath(Path::file(host + share() + L"\\a.mov"));
    EXPECT_EQ(1u, m_log.lines().size());

    // Another result, since folders and names keep their case.
    uncToLocalPath(Path::file(root() + L"A.mov"));
    EXPECT_EQ(2u, m_log.lines().size());
}

TEST_F(UncByTable, OneResultOfTwoSharesIsToldForEach) {
    map(L"M:\\");
    uncToLocalPath(Path::file(root() + L"a.mov"));
    offer(L"M:\\", L"127.0.0.1");

    uncToLocalPath(Path::file(L"\\\\127.0.0.1\\" + share() + L"\\a.mov"));

    EXPECT_THAT(m_log.lines(), ElementsAre(Logged(6, testing::_), Logged(5, testing::_)));
}

TEST_F(UncByTable, HitMakesNoCallOfThePlatform) {
    map(L"M:\\");
    test::FailingImport<decltype(RegCreateKeyExW)> const key("RegCreateKeyExW", 1, 1);
    test::Drives const drives{};

    uncToLocalPath(Path::file(root() + L"a.mov"));
    uncToLocalPath(Path::folder(root()));

    EXPECT_EQ(0u, key.calls());
    EXPECT_EQ(0u, drives.lists());
    EXPECT_THAT(drives.asked(), IsEmpty());
    EXPECT_THAT(drives.connected(), IsEmpty());
    EXPECT_THAT(m_names.asked(), IsEmpty());
    EXPECT_EQ(0u, m_computer.calls());
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_EQ(0u, m_shares->freed());
}

TEST_F(UncByTable, ThirtyFourthRowLeavesTheOldestShareToThePlatform) {
    map(L"M:\\");
    for (int row = 2; row <= 34; ++row) {
        EXPECT_EQ(L"M:\\", uncToLocalPath(Path::folder(root())).str()) << "row " << row;
        auto const server = L"localhost:" + std::to_wstring(row);
        offer(L"D:\\", server);
        uncToLocalPath(Path::folder(L"\\\\" + server + L'\\' + share() + L'\\'));
    }
    offer(L"E:\\");

    EXPECT_EQ(L"E:\\", uncToLocalPath(Path::folder(root())).str());
    EXPECT_EQ(1u, asked().size());
}

TEST_F(UncByTable, NameWithAColonKeepsWhatItsParseLeaves) {
    map(L"M:\\");

    EXPECT_EQ(L"M:\\a", uncToLocalPath(Path::file(root() + L"a:stream")).str());
    EXPECT_EQ(L"M:\\a.b:c", uncToLocalPath(Path::file(root() + L"a.b:c")).str());
    // By itself it reads as a drive.
    EXPECT_EQ(L"M:\\.:\\x", uncToLocalPath(Path::file(root() + L".:x")).str());
}

TEST_F(UncByTable, ExhaustedHeapComesOutAsSuch) {
    map(L"M:\\");
    auto const path = Path::file(root() + L"Clips\\Day 1\\" + std::wstring(300, L'a'));

    EXPECT_LT(5u, test::failEachAllocation([&] { uncToLocalPath(path); }));
}

TEST_F(UncToLocalPath, CallsThatFailLeaveNoHandleOpen) {
    // The platform itself is asked, and knows no share here.
    uncToLocalPath(Path::file(root() + L"a.mov"));
    test::HandleLeakCheck const check;

    EXPECT_EQ(root() + L"a.mov", uncToLocalPath(Path::file(root() + L"a.mov")).str());
    uncToLocalPath(Path::file(L"\\\\server\\share\\a.mov"));
}
