// Places that follow from the machine: what they are called, what is made on disk, how they fail.

#include "vrUtils/Storage/KnownPlaces.h"

#include "foundation/Platform.h"
#include "tests/storage/FakeKnownFolders.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/PathPrinter.h"
#include "tests/support/ScratchComputerName.h"
#include "tests/support/ScratchFolder.h"
#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <string>
#include <typeinfo>

using namespace vrUtils::Storage;
using test::Logged;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr DWORD staleError = 0x4BC;

constexpr wchar_t commonDataFailure[] = L"Unable to find Common Application Data Folder";

// The shell refuses with a result of its own, and leaves the last error of somebody else.
using FailingShell = test::FailingImport<decltype(SHGetKnownFolderPath)>;
constexpr char shellCall[] = "SHGetKnownFolderPath";

// Whether the call throws a failure of storage, of no kind that is derived from it.
MATCHER_P2(FailsPlainly, error, text, "fails with " + testing::PrintToString(std::wstring(text))) {
    try {
        arg();
    } catch (vrStorageException const& failure) {
        *result_listener << "whose text is " << testing::PrintToString(failure.text()) << ", error "
                         << failure.error();
        return typeid(failure) == typeid(vrStorageException) && failure.text() == text &&
               failure.error() == error;
    }
    *result_listener << "which throws nothing";
    return false;
}

MATCHER(LacksComputerName, "fails for want of a computer name") {
    try {
        arg();
    } catch (vrException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message());
        return failure.message() ==
                   L"Failed to determine computer name when getting OstrelMedia path" &&
               failure.file() == L"Storage" && failure.line() == 1102 &&
               failure.code() == 0x80004005;
    }
    *result_listener << "which throws nothing";
    return false;
}

// Whether a path takes what is joined to it for a folder. A folder's path does, but not one whose
// text decides, even if the text ends in a separator.
bool isFoldersPath(vr::Path const& path) {
    vr::Path copy;
    auto& creator = copy.modify(vr::Path::eFile);
    copy = path;
    creator.append(L"a.b");
    return copy.components().extension().empty();
}

MATCHER_P(IsFolder, text, "is the folder " + testing::PrintToString(std::wstring(text))) {
    return arg.components().wholePath() == text && isFoldersPath(arg);
}

MATCHER_P(IsDetected, text, "is the text " + testing::PrintToString(std::wstring(text))) {
    return arg.components().wholePath() == text && !isFoldersPath(arg);
}

class CommonDataFolder : public testing::Test {
  protected:
    std::wstring in(std::wstring const& name) const { return folder.file(name); }

    test::ScratchFolder const folder;
    test::FakeKnownFolders const shell{folder.path()};
};

} // namespace

TEST(ProgramFileFolder, IsThatOfTheSystem) {
    EXPECT_THAT(GetProgramFileFolder(), IsDetected(LR"(C:\Program Files)"));
}

TEST(ProgramFileFolder, IsAskedForByItsId) {
    test::FakeKnownFolders const shell(LR"(X:\Programs)");

    auto const programs = GetProgramFileFolder();

    EXPECT_THAT(programs, IsDetected(LR"(X:\Programs)"));
    EXPECT_TRUE(shell.id() == FOLDERID_ProgramFiles);
    EXPECT_TRUE(shell.wereAskedCleanly());
    EXPECT_EQ(1u, shell.calls());
}

TEST(ProgramFileFolder, FreesTheShellsText) {
    test::FakeKnownFolders const shell(LR"(X:\Programs)");

    GetProgramFileFolder();

    EXPECT_TRUE(shell.wasFreed());
    EXPECT_EQ(1u, shell.timesFreed());
}

TEST(ProgramFileFolder, FailsWithTheLastErrorWhateverTheShellsResult) {
    FailingShell const fails(shellCall, E_ACCESSDENIED, staleError);

    EXPECT_THAT(
        GetProgramFileFolder, FailsPlainly(staleError, L"Unable to find Program Files folder"));
}

TEST(ProgramFileFolder, IsAskedForAtEachCall) {
    FailingShell const fails(shellCall, E_FAIL, staleError);

    EXPECT_THROW(GetProgramFileFolder(), vrStorageException);

    EXPECT_THAT(GetProgramFileFolder(), IsDetected(LR"(C:\Program Files)"));
    EXPECT_EQ(2u, fails.calls());
}

TEST_F(CommonDataFolder, IsAskedForByItsId) {
    GetVorraneCommonAppDataFolder(nullptr);

    EXPECT_TRUE(shell.id() == FOLDERID_ProgramData);
    EXPECT_TRUE(shell.wereAskedCleanly());
    EXPECT_EQ(1u, shell.calls());
    EXPECT_TRUE(shell.wasFreed());
    EXPECT_EQ(1u, shell.timesFreed());
}

TEST_F(CommonDataFolder, OfTheProductIsMade) {
    auto const product = GetVorraneCommonAppDataFolder(nullptr);

    EXPECT_THAT(product, IsDetected(in(L"Vorrane\\")));
    EXPECT_THAT(folder.names(), ElementsAre(L"Vorrane"));
}

TEST_F(CommonDataFolder, OfTheProductHasSubfolders) {
    auto const logs = GetVorraneCommonAppDataFolder(LR"(Logs\Transfer\)");

    EXPECT_THAT(logs, IsDetected(in(LR"(Vorrane\Logs\Transfer\)")));
    EXPECT_THAT(folder.names(LR"(Vorrane\Logs)"), ElementsAre(L"Transfer"));
}

TEST_F(CommonDataFolder, OfTheProductMayBeThere) {
    folder.write(LR"(Vorrane\Logs\a.txt)", "a");

    auto const logs = GetVorraneCommonAppDataFolder(L"Logs\\");

    EXPECT_THAT(logs, IsDetected(in(LR"(Vorrane\Logs\)")));
    EXPECT_EQ("a", folder.read(LR"(Vorrane\Logs\a.txt)"));
}

TEST_F(CommonDataFolder, WithoutAClosingSeparatorIsAFilesNameAndNotMade) {
    auto const file = GetVorraneCommonAppDataFolder(LR"(Logs\Transfer)");

    EXPECT_THAT(file, IsDetected(in(LR"(Vorrane\Logs\Transfer)")));
    EXPECT_EQ(L"Transfer", file.components().fullName());
    EXPECT_THAT(folder.names(L"Vorrane"), ElementsAre(L"Logs"));
    EXPECT_THAT(folder.names(LR"(Vorrane\Logs)"), IsEmpty());
}

TEST_F(CommonDataFolder, OfAnEmptyNameIsTheProducts) {
    EXPECT_THAT(GetVorraneCommonAppDataFolder(L""), IsDetected(in(L"Vorrane\\")));
    EXPECT_THAT(folder.names(), ElementsAre(L"Vorrane"));
}

TEST_F(CommonDataFolder, IsMadeLevelByLevel) {
    test::LogRecorder const recorder;

    GetVorraneCommonAppDataFolder(L"Logs\\");

    auto const level = [](std::wstring const& path) {
        return Logged(7, L"Creating Folder [" + path + L']');
    };
    EXPECT_THAT(
        recorder.lines(),
        testing::IsSupersetOf(
            {level(folder.path()), level(in(L"Vorrane")), level(in(LR"(Vorrane\Logs)"))}));
}

TEST_F(CommonDataFolder, FailsPlainlyWhereAFolderCannotBeMade) {
    folder.write(L"Vorrane", "a file");

    EXPECT_THAT(
        [] { GetVorraneCommonAppDataFolder(L"Logs\\"); },
        FailsPlainly(DWORD{ERROR_PATH_NOT_FOUND}, commonDataFailure));
    EXPECT_THAT(folder.names(), ElementsAre(L"Vorrane"));
}

TEST_F(CommonDataFolder, FailsWithTheLastErrorOfItsMaking) {
    test::FailingImport<decltype(CreateDirectoryW)> const fails(
        "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_THAT(
        [] { GetVorraneCommonAppDataFolder(nullptr); },
        FailsPlainly(DWORD{ERROR_ACCESS_DENIED}, commonDataFailure));
    EXPECT_EQ(1u, fails.calls());
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(CommonDataFolder, FailsPlainlyWithoutTheShell) {
    FailingShell const fails(shellCall, E_FAIL, staleError);

    EXPECT_THAT(
        [] { GetVorraneCommonAppDataFolder(nullptr); },
        FailsPlainly(staleError, commonDataFailure));
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(CommonDataFolder, OfTheFileReaderIsAskedForByItsId) {
    GetPFRCommonAppDataFolder(nullptr);

    EXPECT_TRUE(shell.id() == FOLDERID_ProgramData);
    EXPECT_TRUE(shell.wereAskedCleanly());
    EXPECT_TRUE(shell.wasFreed());
    EXPECT_EQ(1u, shell.timesFreed());
}

TEST_F(CommonDataFolder, OfTheFileReaderIsNotMade) {
    test::ImportHook<decltype(CreateDirectoryW)> const makes(
        "CreateDirectoryW", [](auto...) { return TRUE; });

    auto const whole = GetPFRCommonAppDataFolder(nullptr);
    auto const below = GetPFRCommonAppDataFolder(LR"(Cache\1\)");

    EXPECT_THAT(whole, IsDetected(in(L"Quantum\\")));
    EXPECT_THAT(below, IsDetected(in(LR"(Quantum\Cache\1\)")));
    EXPECT_EQ(0u, makes.calls());
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(CommonDataFolder, OfTheFileReaderIsReadByItsText) {
    auto const file = GetPFRCommonAppDataFolder(L"cache.db");

    EXPECT_THAT(file, IsDetected(in(LR"(Quantum\cache.db)")));
    EXPECT_EQ(L"cache.db", file.components().fullName());
}

TEST_F(CommonDataFolder, OfTheFileReaderLogsNothing) {
    test::LogRecorder const recorder;

    GetPFRCommonAppDataFolder(L"Cache\\");

    EXPECT_THAT(recorder.lines(), IsEmpty());
}

TEST_F(CommonDataFolder, OfTheFileReaderFailsPlainlyWithoutTheShell) {
    FailingShell const fails(shellCall, E_FAIL, staleError);

    EXPECT_THAT(
        [] { GetPFRCommonAppDataFolder(nullptr); }, FailsPlainly(staleError, commonDataFailure));
}

TEST(CommonDataFolderOfTheSystem, TakesAFolder) {
    auto const name = L"test-" + std::to_wstring(GetCurrentProcessId()) + L'\\';

    auto const made = GetVorraneCommonAppDataFolder(name.c_str());
    auto const wasMade = RemoveDirectoryW(made.components().wholePath().c_str());

    EXPECT_THAT(made, IsDetected(LR"(C:\ProgramData\Vorrane\)" + name));
    EXPECT_TRUE(wasMade);
}

TEST(CommonDataFolderOfTheSystem, IsTheFileReadersToo) {
    EXPECT_THAT(
        GetPFRCommonAppDataFolder(L"Cache\\"), IsDetected(LR"(C:\ProgramData\Quantum\Cache\)"));
}

TEST(OstrelMediaPath, IsAShareOfThisComputer) {
    test::ScratchComputerName const name(L"MEDIA01");

    auto const media = GetOstrelMediaPath();

    EXPECT_THAT(media, IsFolder(LR"(\\MEDIA01\OstrelMedia\)"));
}

TEST(OstrelMediaPath, TakesANameOfFifteenCharacters) {
    test::ScratchComputerName const name(L"FIFTEEN-LETTERS");

    EXPECT_THAT(GetOstrelMediaPath(), IsFolder(LR"(\\FIFTEEN-LETTERS\OstrelMedia\)"));
}

TEST(OstrelMediaPath, FailsForANameOfSixteenCharacters) {
    test::ScratchComputerName const name(L"SIXTEEN-LETTERS-");

    EXPECT_THAT(GetOstrelMediaPath, LacksComputerName());
}

TEST(OstrelMediaPath, OffersSixteenCharactersForTheName) {
    DWORD offered = 0;
    test::ImportHook<decltype(::GetComputerNameW)> const hook(
        "GetComputerNameW", [&](wchar_t* name, DWORD* units) -> BOOL {
            offered = *units;
            *name = L'A';
            *units = 1;
            return TRUE;
        });

    EXPECT_THAT(GetOstrelMediaPath(), IsFolder(LR"(\\A\OstrelMedia\)"));
    EXPECT_EQ(16u, offered);
}

TEST(ReferenceMoviesPath, IsAFolderOfTheShare) {
    test::ScratchComputerName const name(L"MEDIA01");

    auto const movies = GetReferenceMoviesPath();

    EXPECT_THAT(movies, IsFolder(LR"(\\MEDIA01\OstrelMedia\ReferenceMovies\)"));
}

TEST(ReferenceMoviesPath, FailsAsTheShareDoes) {
    test::FailingImport<decltype(::GetComputerNameW)> const fails(
        "GetComputerNameW", FALSE, ERROR_BUFFER_OVERFLOW);

    EXPECT_THAT(GetReferenceMoviesPath, LacksComputerName());
    EXPECT_EQ(1u, fails.calls());
}

TEST(LocalOstrelMediaPath, IsFixed) {
    auto const media = GetLocalOstrelMediaPath();

    EXPECT_THAT(media, IsDetected(LR"(C:\OstrelMedia\)"));
}

TEST(LocalReferenceMoviesPath, IsAFolderInIt) {
    auto const movies = GetLocalReferenceMoviesPath();

    EXPECT_THAT(movies, IsFolder(LR"(C:\OstrelMedia\ReferenceMovies\)"));
}

TEST(LocalReferenceMoviesPath, NeedsNeitherShellNorComputerNameNorDisk) {
    FailingShell const shell(shellCall, E_FAIL, staleError, test::everyCall);
    test::FailingImport<decltype(::GetComputerNameW)> const name(
        "GetComputerNameW", FALSE, ERROR_BUFFER_OVERFLOW, test::everyCall);
    test::FailingImport<decltype(CreateDirectoryW)> const makes(
        "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED, test::everyCall);

    GetLocalReferenceMoviesPath();

    EXPECT_EQ(0u, shell.calls() + name.calls() + makes.calls());
}

TEST_F(CommonDataFolder, PassesOnThatThereIsNoMemory) {
    EXPECT_LT(
        0u, test::failEachAllocation([] { GetVorraneCommonAppDataFolder(L"a subfolder\\"); }));
    EXPECT_LT(0u, test::failEachAllocation([] { GetPFRCommonAppDataFolder(L"a subfolder\\"); }));

    EXPECT_EQ(shell.calls(), shell.timesFreed());
}

TEST(ProgramFileFolder, PassesOnThatThereIsNoMemory) {
    test::FakeKnownFolders const shell(L"X:\\a folder whose name needs memory");

    EXPECT_LT(0u, test::failEachAllocation(GetProgramFileFolder));

    EXPECT_EQ(shell.calls(), shell.timesFreed());
}

TEST(KnownPlaces, LeaveNoHandleOpen) {
    auto const askForAll = [] {
        GetProgramFileFolder();
        GetPFRCommonAppDataFolder(nullptr);
        GetReferenceMoviesPath();
        FailingShell const fails(shellCall, E_FAIL, staleError, test::everyCall);
        EXPECT_THROW(GetProgramFileFolder(), vrStorageException);
        EXPECT_THROW(GetVorraneCommonAppDataFolder(nullptr), vrStorageException);
    };
    askForAll();

    test::HandleLeakCheck const check;
    askForAll();
}
