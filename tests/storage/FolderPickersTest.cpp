// The pickers over a shell of the tests' own, and the platform's dialogs driven for real.

#include "vrUtils/Storage/FolderPickers.h"

#include "foundation/Platform.h"
#include "tests/storage/DialogUser.h"
#include "tests/storage/FakeShell.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "vrUtils/Storage/Exceptions.h"

#include <gmock/gmock.h>

#include <objbase.h>

#include <optional>
#include <string>

using namespace vrUtils::Storage;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr DWORD staleError = 0x4BC;

// The windows of other programs are of no matter: no fake shows one.
HWND const ownerWindow = GetDesktopWindow();

class FolderPicker : public testing::Test {
  protected:
    bool browse(std::wstring const& host = {}) {
        return BrowseForFolder(host, L"Where to?", &result, nullptr);
    }

    bool browseForComputer() { return BrowseForComputer(L"Which one?", &result, nullptr); }

    std::wstring parsedFor(std::wstring const& host) {
        browse(host);
        return shell.desktop().parsed().back();
    }

    test::FakeShell shell;
    std::wstring result = L"before";
};

// Whether the call throws that there is no such host.
MATCHER_P2(LacksHost, error, host, "fails for want of " + testing::PrintToString(host)) {
    try {
        arg();
    } catch (vrBadHostException const& failure) {
        *result_listener << "whose text is " << testing::PrintToString(failure.text()) << ", error "
                         << failure.error();
        return failure.text() == host && failure.error() == error;
    }
    *result_listener << "which throws nothing";
    return false;
}

} // namespace

TEST_F(FolderPicker, TellsTheDialogWhatToShow) {
    BrowseForFolder({}, L"Where to?", &result, ownerWindow);

    ASSERT_EQ(1u, shell.dialogs().size());
    auto const& dialog = shell.dialogs().front();
    EXPECT_EQ(ownerWindow, dialog.owner);
    EXPECT_EQ(L"Where to?", dialog.title);
    EXPECT_EQ(1u, dialog.flags);
    EXPECT_EQ(test::FakeShell::network, dialog.root);
    EXPECT_TRUE(dialog.wasOtherwiseZero);
}

TEST_F(FolderPicker, TellsTheDialogForComputersWhatToShow) {
    BrowseForComputer(L"Which one?", &result, ownerWindow);

    ASSERT_EQ(1u, shell.dialogs().size());
    auto const& dialog = shell.dialogs().front();
    EXPECT_EQ(ownerWindow, dialog.owner);
    EXPECT_EQ(L"Which one?", dialog.title);
    EXPECT_EQ(0x1000u, dialog.flags);
    EXPECT_EQ(test::FakeShell::network, dialog.root);
    EXPECT_TRUE(dialog.wasOtherwiseZero);
}

TEST_F(FolderPicker, BeginsAtTheNetwork) {
    browse();
    browseForComputer();

    EXPECT_THAT(shell.specialFolders(), ElementsAre(18, 18));
    EXPECT_THAT(shell.desktop().parsed(), IsEmpty());
}

TEST_F(FolderPicker, BeginsAtTheHostIfThereIsOne) {
    browse(L"srv");

    ASSERT_EQ(1u, shell.dialogs().size());
    EXPECT_EQ(LR"(\\srv)", shell.dialogs().front().root);
    EXPECT_TRUE(shell.desktop().wasAskedCleanly());
}

TEST_F(FolderPicker, TakesTheHostWithAndWithoutSlashes) {
    EXPECT_EQ(LR"(\\srv)", parsedFor(L"srv"));
    EXPECT_EQ(LR"(\\srv)", parsedFor(LR"(\\srv)"));
    EXPECT_EQ(LR"(\\srv)", parsedFor(LR"(\\srv\)"));
    EXPECT_EQ(LR"(\\srv)", parsedFor(L"//srv/"));
    EXPECT_EQ(LR"(\\srv\share)", parsedFor(LR"(\\srv\share\)"));
    EXPECT_EQ(LR"(\\)", parsedFor(LR"(\\)"));
}

TEST_F(FolderPicker, ClosesTheFolderByABackslash) {
    shell.chooses(LR"(C:\Media\Day 1)");

    EXPECT_TRUE(browse());

    EXPECT_EQ(LR"(C:\Media\Day 1\)", result);
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, AddsNoSecondBackslash) {
    shell.chooses(LR"(C:\)");

    EXPECT_TRUE(browse());

    EXPECT_EQ(LR"(C:\)", result);
}

TEST_F(FolderPicker, GivesABackslashForAChoiceWithoutPath) {
    shell.chooses({});

    EXPECT_TRUE(browse());

    EXPECT_EQ(LR"(\)", result);
}

TEST_F(FolderPicker, TakesTheLongestPath) {
    std::wstring const longest(MAX_PATH - 1, L'a');
    shell.chooses(longest);

    EXPECT_TRUE(browse());

    EXPECT_EQ(longest + L'\\', result);
}

TEST_F(FolderPicker, GivesAComputersNameAsItIsShown) {
    shell.chooses(LR"(\\MEDIA01)");
    shell.shows(L"media01");

    EXPECT_TRUE(browseForComputer());

    EXPECT_EQ(L"media01", result);
    EXPECT_EQ(0u, shell.pathsAsked());
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, GivesTheLongestNameOfAComputer) {
    std::wstring const longest(MAX_PATH - 1, L'b');
    shell.chooses(LR"(\\MEDIA01)");
    shell.shows(longest);

    EXPECT_TRUE(browseForComputer());

    EXPECT_EQ(longest, result);
}

TEST_F(FolderPicker, GivesAnEmptyNameOfAComputerAsItIs) {
    shell.chooses(LR"(\\MEDIA01)");
    shell.shows({});

    EXPECT_TRUE(browseForComputer());

    EXPECT_EQ(L"", result);
}

TEST_F(FolderPicker, LeavesTheResultIfTheUserCancels) {
    EXPECT_FALSE(browse());
    EXPECT_FALSE(browse(L"srv"));
    EXPECT_FALSE(browseForComputer());

    EXPECT_EQ(L"before", result);
    EXPECT_EQ(0u, shell.pathsAsked());
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, GivesAllBackWhereItBeganAtAHost) {
    shell.chooses(LR"(\\srv\media)");

    EXPECT_TRUE(browse(L"srv"));

    EXPECT_EQ(LR"(\\srv\media\)", result);
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, ShowsNoDialogForABadHost) {
    shell.desktop().refuse(E_INVALIDARG);
    SetLastError(staleError);

    EXPECT_THAT([&] { browse(LR"(\\bad\)"); }, LacksHost(staleError, std::wstring(LR"(\\bad)")));

    EXPECT_THAT(shell.dialogs(), IsEmpty());
    EXPECT_EQ(L"before", result);
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, FindsNoHostWithoutADesktop) {
    test::FailingImport<decltype(SHGetDesktopFolder)> const fails(
        "SHGetDesktopFolder", E_OUTOFMEMORY, staleError);

    EXPECT_THAT([&] { browse(L"srv"); }, LacksHost(staleError, std::wstring(LR"(\\srv)")));

    EXPECT_THAT(shell.dialogs(), IsEmpty());
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, BeginsAtTheDesktopWithoutANetwork) {
    test::FailingImport<decltype(SHGetSpecialFolderLocation)> const fails(
        "SHGetSpecialFolderLocation", E_FAIL, staleError);
    shell.chooses(LR"(C:\Media)");

    EXPECT_TRUE(browse());

    EXPECT_EQ(LR"(C:\Media\)", result);
    ASSERT_EQ(1u, shell.dialogs().size());
    EXPECT_EQ(std::nullopt, shell.dialogs().front().root);
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, NeedsNoNetworkForAHost) {
    test::FailingImport<decltype(SHGetSpecialFolderLocation)> const fails(
        "SHGetSpecialFolderLocation", E_FAIL, staleError);

    EXPECT_FALSE(browse(L"srv"));

    EXPECT_EQ(LR"(\\srv)", shell.dialogs().front().root);
    EXPECT_TRUE(shell.hasAllBack());
}

TEST_F(FolderPicker, GivesTheChoiceWhereTheShellHasNoAllocator) {
    test::FailingImport<decltype(SHGetMalloc)> const fails(
        "SHGetMalloc", E_FAIL, staleError, test::everyCall);
    shell.chooses(LR"(C:\Media)");

    EXPECT_TRUE(browse());

    EXPECT_EQ(LR"(C:\Media\)", result);
    EXPECT_EQ(2u, fails.calls());
}

namespace {

// The platform's own dialogs, on a thread that has entered COM.
class FolderDialog : public testing::Test {
  protected:
    FolderDialog() { CoInitialize(nullptr); }
    ~FolderDialog() override { CoUninitialize(); }

    std::wstring result = L"before";
};

// In place of the network, which has no folders here, a folder of the test's own.
class Neighbourhood {
  public:
    explicit Neighbourhood(std::wstring const& folder)
        : m_hook("SHGetSpecialFolderLocation", [folder](HWND, int, ITEMIDLIST** list) -> HRESULT {
              *list = ILCreateFromPathW(folder.c_str());
              return *list ? S_OK : E_FAIL;
          }) {}

  private:
    test::ImportHook<decltype(SHGetSpecialFolderLocation)> m_hook;
};

} // namespace

TEST_F(FolderDialog, GivesTheFolderThatIsChosen) {
    test::ScratchFolder const folder;
    Neighbourhood const neighbourhood(folder.makeFolder(L"Day 1"));
    test::DialogUser const user(IDOK);

    EXPECT_TRUE(BrowseForFolder({}, L"Where to?", &result, nullptr));

    EXPECT_EQ(folder.file(LR"(Day 1\)"), result);
    EXPECT_EQ(L"Where to?", user.title());
}

// The network has no path, but some platforms have a text for it.
TEST_F(FolderDialog, ClosesTheNetworkItselfByABackslash) {
    test::DialogUser const user(IDOK);

    EXPECT_TRUE(BrowseForFolder({}, L"Where to?", &result, nullptr));

    EXPECT_TRUE(user.hasSeenDialog());
    EXPECT_THAT(result, EndsWith(LR"(\)"));
    EXPECT_THAT(result, Not(EndsWith(LR"(\\)")));
}

// Some platforms show a name with all that is above it.
TEST_F(FolderDialog, GivesTheNameOfWhatIsChosenAsAComputer) {
    test::ScratchFolder const folder;
    Neighbourhood const neighbourhood(folder.makeFolder(L"MEDIA01"));
    test::DialogUser const user(IDOK);

    EXPECT_TRUE(BrowseForComputer(L"Which one?", &result, nullptr));

    EXPECT_THAT(result, EndsWith(L"MEDIA01"));
    EXPECT_EQ(L"Which one?", user.title());
}

TEST_F(FolderDialog, LeavesTheResultIfTheUserCancels) {
    test::DialogUser const user(IDCANCEL);

    EXPECT_FALSE(BrowseForFolder({}, L"Where to?", &result, nullptr));

    EXPECT_TRUE(user.hasSeenDialog());
    EXPECT_EQ(L"before", result);
}

TEST_F(FolderDialog, ForComputersLeavesTheResultIfTheUserCancels) {
    test::DialogUser const user(IDCANCEL);

    EXPECT_FALSE(BrowseForComputer(L"Which one?", &result, nullptr));

    EXPECT_TRUE(user.hasSeenDialog());
    EXPECT_EQ(L"before", result);
}

TEST_F(FolderDialog, IsNotShownForABadHost) {
    test::DialogUser const user(IDCANCEL);

    EXPECT_THROW(
        BrowseForFolder(LR"(\\media01.invalid\)", L"Where to?", &result, nullptr),
        vrBadHostException);

    EXPECT_FALSE(user.hasSeenDialog());
    EXPECT_EQ(L"before", result);
}

TEST_F(FolderDialog, LeavesNoHandleOpen) {
    auto const browse = [&](WPARAM button) {
        test::DialogUser const user(button);
        BrowseForFolder({}, L"Where to?", &result, nullptr);
        EXPECT_THROW(BrowseForFolder(L"bad", L"", &result, nullptr), vrBadHostException);
    };
    browse(IDOK);
    browse(IDCANCEL);

    test::HandleLeakCheck const check;
    browse(IDOK);
    browse(IDCANCEL);
}
