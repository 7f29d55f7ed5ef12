// What each operation answers for each form of path: the table of docs/paths-and-machines.md.

#include "tests/files/FakeNetwork.h"
#include "tests/support/WideText.h"
#include "vrUtils/Files/MachineIdentity.h"
#include "vrUtils/Files/UncToLocalPath.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

using vr::Path;
using namespace vrUtils::Files;

namespace {

struct Form {
    wchar_t const* text;
    bool isHere;
    bool isWithDrive;
    // The first element; empty if there is none.
    wchar_t const* resolved;
    wchar_t const* replaced;
    wchar_t const* local;

    friend std::ostream& operator<<(std::ostream& stream, Form const& form) {
        return stream << test::utf8(form.text);
    }
};

// A computer that shares D:\Store as "media", and that knows the share of a server as M:.
class FormsOfPaths : public testing::TestWithParam<Form> {
  protected:
    void SetUp() override {
        test::FailingImport<decltype(RegCreateKeyExW)> const noKey(
            "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
        test::Drives const noDrives{};
        // What a drive letter brings is in the table before a process can see to it; a share that
        // was here for a moment makes the same row.
        test::NameService const here{{"host1", {"10.0.0.1"}}, {"server", {"10.0.0.1"}}};
        test::Shares const drive{{{L"server", L"media"}, L"M:\\"}};
        uncToLocalPath(Path::folder(L"\\\\server\\media\\"));
    }

    Path const m_path{GetParam().text, Path::eDetect};
    test::ThisComputer const m_computer{L"HOST1"};
    test::NameService const m_names{
        {"host1", {"10.0.0.1", "10.0.0.2"}},
        {"10.0.0.1", {"10.0.0.1"}},
        {"127.0.0.2", {"127.0.0.2"}},
        {"server", {"10.0.0.3"}}};
    test::Shares const m_shares{
        {{L"localhost", L"media"}, L"D:\\Store"},
        {{L"host1", L"media"}, L"D:\\Store"},
        {{L"10.0.0.1", L"media"}, L"D:\\Store"},
        {{L"", L"media"}, L"D:\\Store"}};
};

} // namespace

TEST_P(FormsOfPaths, AreAnsweredAsTheTableSays) {
    auto const elements = resolveHostInPathToIPAddresses(m_path);

    EXPECT_EQ(GetParam().isHere, isPathToThisMachine(m_path));
    EXPECT_EQ(GetParam().isWithDrive, arePathsToSameMachine(m_path, Path::folder(L"C:\\")));
    EXPECT_EQ(
        GetParam().resolved,
        elements.empty() ? std::wstring() : elements.front().components().wholePath());
    EXPECT_EQ(GetParam().replaced, replaceLocalhostWithMachineName(m_path).str());
    EXPECT_EQ(GetParam().local, uncToLocalPath(m_path).str());
}

INSTANTIATE_TEST_SUITE_P(
    All, FormsOfPaths,
    testing::Values(
        Form{L"C:\\a\\x.mov", true, true, L"\\\\10.0.0.1\\a\\x.mov", L"a\\x.mov", L"C:\\a\\x.mov"},
        Form{L"C:\\", true, true, L"\\\\10.0.0.1\\", L"", L"C:\\"},
        Form{L"C:x.mov", false, true, L"\\\\10.0.0.1\\C:\\x.mov", L"C:\\x.mov", L"C:\\x.mov"},
        Form{L"a\\x.mov", false, true, L"\\\\10.0.0.1\\a\\x.mov", L"a\\x.mov", L"a\\x.mov"},
        Form{L"", false, true, L"\\\\10.0.0.1\\", L"", L""},
        Form{
            L"\\\\localhost\\media\\x.mov", true, true, L"\\\\10.0.0.1\\media\\x.mov",
            L"HOST1media\\x.mov", L"D:\\Store\\x.mov"},
        Form{
            L"\\\\127.0.0.1:8080\\media\\x.mov", true, true, L"\\\\10.0.0.1:8080\\media\\x.mov",
            L"HOST1:8080media\\x.mov", L"\\\\127.0.0.1:8080\\media\\x.mov"},
        Form{
            L"\\\\127.0.0.2\\media\\x.mov", false, false, L"\\\\127.0.0.2\\media\\x.mov",
            L"\\\\127.0.0.2\\media\\x.mov", L"\\\\127.0.0.2\\media\\x.mov"},
        Form{
            L"\\\\HOST1\\media\\x.mov", true, true, L"\\\\10.0.0.1\\media\\x.mov",
            L"\\\\host1\\media\\x.mov", L"D:\\Store\\x.mov"},
        Form{
            L"\\\\10.0.0.1\\media\\x.mov", true, true, L"\\\\10.0.0.1\\media\\x.mov",
            L"\\\\10.0.0.1\\media\\x.mov", L"D:\\Store\\x.mov"},
        Form{
            L"\\\\\\media\\x.mov", true, true, L"\\\\10.0.0.1\\media\\x.mov", L"\\\\\\media\\x.mov",
            L"D:\\Store\\x.mov"},
        Form{
            L"\\\\Server\\Media\\x.mov", false, false, L"\\\\10.0.0.3\\Media\\x.mov",
            L"\\\\server\\Media\\x.mov", L"M:\\x.mov"},
        Form{
            L"\\\\Server:8080\\Media\\x.mov", false, false, L"\\\\10.0.0.3:8080\\Media\\x.mov",
            L"\\\\server\\:8080Media\\x.mov", L"\\\\Server:8080\\Media\\x.mov"},
        Form{
            L"\\\\Server\\Media\\", false, false, L"\\\\10.0.0.3\\Media\\", L"\\\\server\\Media\\",
            L"M:\\"},
        Form{
            L"\\\\Server\\Media", false, false, L"\\\\10.0.0.3\\Media", L"\\\\server\\Media",
            L"\\\\Server\\Media"},
        Form{L"\\\\Server", false, false, L"\\\\10.0.0.3\\", L"\\\\server\\", L"\\\\Server\\"},
        Form{
            L"\\\\nosuchhost\\a\\x.mov", false, false, L"", L"\\\\nosuchhost\\a\\x.mov",
            L"\\\\nosuchhost\\a\\x.mov"}));
