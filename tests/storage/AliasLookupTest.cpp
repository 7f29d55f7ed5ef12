// Missing files looked for under other names of their machines. The table of aliases is the
// process's: each test has hosts of its own, none of which begins with another one's.

#include "vrUtils/Storage/AliasLookup.h"
#include "vrUtils/Files/AliasSubstitution.h"

#include "tests/files/PathType.h"
#include "tests/storage/Resolver.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <future>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using vr::Path;
using vrUtils::Files::FileExistsAllowingAliasSubstitution;
using vrUtils::Storage::FindFileAsAliasIfNecessary;

namespace {

// The files of a network.
class RemoteFiles {
  public:
    explicit RemoteFiles(std::set<std::wstring> paths = {}) : m_paths(std::move(paths)) {}

    // The paths that were asked for, in order.
    std::vector<std::wstring> const& asked() const { return m_asked; }

  private:
    std::set<std::wstring> m_paths;
    std::vector<std::wstring> m_asked;
    test::ImportHook<decltype(GetFileAttributesExW)> m_hook{
        "GetFileAttributesExW", [this](wchar_t const* path, GET_FILEEX_INFO_LEVELS, void*) -> BOOL {
            m_asked.emplace_back(path);
            return m_paths.count(path) != 0;
        }};
};

using LookUp = bool (*)(Path*);

// What the two operations have in common.
struct Operation {
    char const* name;
    LookUp lookUp;
    std::wstring hostEnd;

    friend void PrintTo(Operation const& operation, std::ostream* stream) {
        *stream << operation.name;
    }
};

class AliasLookUp : public testing::TestWithParam<Operation> {
  protected:
    bool find(Path* path) const { return GetParam().lookUp(path); }

    // A host that no other test has.
    std::wstring host(std::wstring const& name) const { return name + GetParam().hostEnd; }

    static std::string narrow(std::wstring const& text) { return test::utf8(text); }

    test::Resolver m_resolver{};
};

INSTANTIATE_TEST_SUITE_P(
    Both, AliasLookUp,
    testing::Values(
        Operation{"files", FileExistsAllowingAliasSubstitution, L"-one"},
        Operation{"storage", FindFileAsAliasIfNecessary, L"-two"}),
    testing::PrintToStringParamName());

class FileExistsUnderAlias : public testing::Test {
  protected:
    test::Resolver m_resolver{"alias-files"};
};

class FindFileAsAlias : public testing::Test {
  protected:
    test::Resolver m_resolver{"alias-storage"};
};

// A path of so many characters on a host.
std::wstring pathOfLength(std::wstring const& host, std::size_t length) {
    auto path = L"\\\\" + host + L"\\share\\";
    return path.append(length - path.size(), L'n');
}

// The real name service, in a process whose table is empty.
test::ChildAction const lookUpReally(L"look up really", [](auto const& paths) {
    for (auto const& text : paths) {
        Path path(text, Path::eFile);
        auto const* const exists = FileExistsAllowingAliasSubstitution(&path) ? "there" : "missing";
        std::printf("%s %s; ", exists, test::utf8(path.str()).c_str());
    }
    std::printf("done");
    return 0;
});

} // namespace

TEST_P(AliasLookUp, OfAFileThatIsThereCostsOneQuery) {
    auto const text = L"\\\\" + host(L"there") + L"\\Share\\A.mov";
    RemoteFiles const files({text});
    Path path(text, Path::eFile);

    EXPECT_TRUE(find(&path));

    EXPECT_EQ(text, path.str());
    EXPECT_EQ(1u, files.asked().size());
    EXPECT_THAT(m_resolver.asked(), IsEmpty());
}

TEST_P(AliasLookUp, FindsAFolderToo) {
    test::ScratchFolder const folder;
    auto path = Path::folder(folder.path() + L'\\');

    EXPECT_TRUE(find(&path));
}

TEST_P(AliasLookUp, LeavesALocalPathAsItIs) {
    test::ScratchFolder const folder;
    auto const text = folder.file(L"Missing.mov");
    Path path(text, Path::eFile);

    EXPECT_FALSE(find(&path));

    EXPECT_EQ(text, path.str());
    EXPECT_THAT(m_resolver.asked(), IsEmpty());
}

TEST_P(AliasLookUp, LeavesThePathAsItIsWhereNoHostResolves) {
    RemoteFiles const files;
    auto const text = L"\\\\" + host(L"unknown") + L"\\Share\\A.mov";
    Path path(text, Path::eFolder);

    EXPECT_FALSE(find(&path));

    EXPECT_THAT(path, IsPath(text, Path::eFolder));
    EXPECT_EQ(4u, m_resolver.asked().size());
}

TEST_P(AliasLookUp, FindsTheFileOnTheHostThatResolves) {
    auto const server = host(L"found");
    m_resolver.learn(narrow(server));
    RemoteFiles const files({L"\\\\" + server + L"\\share\\a.mov"});
    Path path(L"\\\\" + server + L"1X\\Share\\A.mov", Path::eFile);

    EXPECT_TRUE(find(&path));

    EXPECT_EQ(L"\\\\" + server + L"\\share\\a.mov", path.str());
    EXPECT_THAT(
        files.asked(),
        ElementsAre(L"\\\\" + server + L"1X\\Share\\A.mov", L"\\\\" + server + L"\\share\\a.mov"));
}

TEST_P(AliasLookUp, KeepsTheRewrittenPathWhereTheFileIsMissing) {
    auto const server = host(L"missing");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    Path path(L"\\\\" + server + L"1\\Share\\A.mov", Path::eFolder);

    EXPECT_FALSE(find(&path));

    EXPECT_THAT(path, IsPath(L"\\\\" + server + L"\\share\\a.mov", Path::eFile));
}

TEST_P(AliasLookUp, DetectsTheTypeOfTheRewrittenPath) {
    auto const server = host(L"folders");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    Path path(L"\\\\" + server + L"\\Share\\A.mov\\", Path::eFile);

    find(&path);

    EXPECT_THAT(path, IsPath(L"\\\\" + server + L"\\share\\a.mov\\", Path::eFolder));
}

TEST_P(AliasLookUp, RemembersTheHostForBothOperations) {
    auto const server = host(L"kept");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    Path first(L"\\\\" + server + L"12\\s\\a", Path::eFile);
    find(&first);
    auto const lookUps = m_resolver.asked().size();
    Path second(L"\\\\" + server + L"12\\t\\b", Path::eFile);
    Path third(second);

    FileExistsAllowingAliasSubstitution(&second);
    FindFileAsAliasIfNecessary(&third);

    EXPECT_EQ(L"\\\\" + server + L"\\t\\b", second.str());
    EXPECT_EQ(L"\\\\" + server + L"\\t\\b", third.str());
    EXPECT_EQ(lookUps, m_resolver.asked().size());
}

TEST_P(AliasLookUp, ReplacesWhatTheCodePageLacks) {
    auto const server = host(L"page");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    Path path(L"\\\\" + server + L"\\\u00E9\u0416.mov", Path::eFile);

    find(&path);

    EXPECT_EQ(L"\\\\" + server + L"\\\u00E9_.mov", path.str());
}

TEST_P(AliasLookUp, SetsTheLastErrorOfWinsock) {
    auto const server = host(L"error");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    Path path(L"\\\\" + server + L"1\\a", Path::eFile);

    find(&path);

    EXPECT_THAT(m_resolver.errors(), ElementsAre(WSAHOST_NOT_FOUND, 0));
}

TEST_P(AliasLookUp, GivesAllBack) {
    auto const server = host(L"balance");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    Path path(L"\\\\" + server + L"123\\a", Path::eFile);
    test::HandleLeakCheck const check;

    find(&path);

    EXPECT_EQ(1u, m_resolver.freed());
    EXPECT_TRUE(m_resolver.wasUsedCleanly());
}

TEST_P(AliasLookUp, IsOpenToOthersWhileItBlocks) {
    auto const server = host(L"blocked");
    m_resolver.learn(narrow(server));
    RemoteFiles const files;
    std::atomic<bool> isAsked{false};
    auto isAnswered = std::future_status::timeout;
    m_resolver.whenAsked([&] {
        if (!isAsked.exchange(true)) {
            auto const other = std::async(std::launch::async, [&] {
                Path path(L"\\\\" + host(L"other") + L"\\a", Path::eFile);
                find(&path);
            });
            isAnswered = other.wait_for(test::ceiling);
        }
    });
    Path path(L"\\\\" + server + L"\\a", Path::eFile);

    find(&path);

    EXPECT_EQ(std::future_status::ready, isAnswered);
}

TEST_F(FileExistsUnderAlias, AsksAgainWhereNothingHasChanged) {
    RemoteFiles const files;
    auto const text = std::wstring(L"C:\\missing.mov");
    Path path(text, Path::eFile);

    EXPECT_FALSE(FileExistsAllowingAliasSubstitution(&path));

    EXPECT_THAT(files.asked(), ElementsAre(text, text));
}

TEST_F(FindFileAsAlias, DoesNotAskAgainWhereNothingHasChanged) {
    RemoteFiles const files;
    auto const text = std::wstring(L"C:\\missing.mov");
    Path path(text, Path::eFile);

    EXPECT_FALSE(FindFileAsAliasIfNecessary(&path));

    EXPECT_THAT(files.asked(), ElementsAre(text));
}

// A path's normal form has no forward slash, but the code page may make one: of U+FF0F.
TEST_F(FileExistsUnderAlias, TakesForwardSlashesForSeparators) {
    m_resolver.learn("slashed");
    RemoteFiles const files;
    Path path(L"\\\\SLASHED\uFF0FA\\a.mov", Path::eFile);

    FileExistsAllowingAliasSubstitution(&path);

    EXPECT_EQ(L"\\\\slashed\\a\\a.mov", path.str());
    EXPECT_THAT(m_resolver.asked(), ElementsAre("slashed"));
}

TEST_F(FindFileAsAlias, DoesNotTakeForwardSlashesForSeparators) {
    RemoteFiles const files;
    Path path(L"\\\\STORAGE-ALIAS\uFF0FA\\a.mov", Path::eFile);

    FindFileAsAliasIfNecessary(&path);

    EXPECT_THAT(
        m_resolver.asked(),
        ElementsAre("storage-alias/a", "storage-alias/", "storage-alias", "storage-alia"));
}

TEST_F(FileExistsUnderAlias, RewritesAPathThatFitsTheBuffer) {
    RemoteFiles const files;
    auto const text = pathOfLength(L"ALIAS-FILES", 259);
    Path path(text, Path::eFile);

    EXPECT_FALSE(FileExistsAllowingAliasSubstitution(&path));

    EXPECT_EQ(pathOfLength(L"alias-files", 259), path.str());
}

TEST_F(FileExistsUnderAlias, LeavesAPathThatWouldBeCut) {
    for (std::size_t const length : {260u, 261u, 262u, 1000u}) {
        RemoteFiles const files;
        auto const text = pathOfLength(L"ALIAS-FILES", length);
        Path path(text, Path::eFile);

        EXPECT_FALSE(FileExistsAllowingAliasSubstitution(&path));

        EXPECT_EQ(text, path.str());
        EXPECT_EQ(2u, files.asked().size());
    }
    EXPECT_THAT(m_resolver.asked(), IsEmpty());
}

TEST_F(FindFileAsAlias, RewritesAPathThatFitsTheBuffer) {
    for (std::size_t const length : {258u, 259u, 260u}) {
        RemoteFiles const files;
        Path path(pathOfLength(L"ALIAS-STORAGE", length), Path::eFile);

        EXPECT_FALSE(FindFileAsAliasIfNecessary(&path));

        EXPECT_EQ(pathOfLength(L"alias-storage", length), path.str());
    }
}

TEST_F(FindFileAsAlias, CutsALongerPath) {
    for (std::size_t const length : {261u, 262u, 1000u}) {
        RemoteFiles const files;
        Path path(pathOfLength(L"ALIAS-STORAGE", length), Path::eFile);

        EXPECT_FALSE(FindFileAsAliasIfNecessary(&path));

        EXPECT_EQ(pathOfLength(L"alias-storage", 260), path.str());
    }
}

TEST_F(FindFileAsAlias, LeavesALongPathWhoseHostIsUnknown) {
    RemoteFiles const files;
    auto const text = pathOfLength(L"STRANGE-HOST", 300);
    Path path(text, Path::eFile);

    EXPECT_FALSE(FindFileAsAliasIfNecessary(&path));

    EXPECT_EQ(text, path.str());
}

TEST(RealAliasLookUp, CutsTheHostUntilItResolves) {
    auto const child = lookUpReally.start({L"\\\\LocalHostXYZ\\Missing\\A.mov"});

    EXPECT_TRUE(child->waitForOutput("missing \\\\localhost\\missing\\a.mov; done"));
}

TEST(RealAliasLookUp, TakesAHostThatResolvesForItself) {
    auto const child =
        lookUpReally.start({L"\\\\LocalHost\\Missing\\A.mov", L"\\\\localhost2\\Missing\\B.mov"});

    EXPECT_TRUE(child->waitForOutput(
        "missing \\\\localhost\\missing\\a.mov; missing \\\\localhost2\\missing\\b.mov; done"));
}

TEST(RealAliasLookUp, GivesUpBehindThreeCharacters) {
    auto const child = lookUpReally.start({L"\\\\localhostWXYZ\\Missing\\A.mov"});

    EXPECT_TRUE(child->waitForOutput("missing \\\\localhostWXYZ\\Missing\\A.mov; done"));
}
