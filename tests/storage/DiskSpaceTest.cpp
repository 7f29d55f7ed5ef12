// Whether a transfer has room, on disks and over a network that answer as each test wants it to.

#include "vrUtils/Storage/DiskSpace.h"

#include "foundation/Platform.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchShare.h"

#include <winnetwk.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

using namespace vrUtils::Storage;
using test::Logged;
using test::LoggedFormat;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint64_t megabyte = 1 << 20;
constexpr std::uint64_t beyond32Bits = std::uint64_t{1} << 32;

SrvrParam serverWith(std::wstring const& folder) {
    SrvrParam server;
    server.host = L"srv";
    folder.copy(server.folder, folder.size());
    return server;
}

// What the disk answers to one question.
struct Answer {
    DWORD error;
    std::uint64_t free;
};

class DiskSpace : public testing::Test {
  protected:
    long check(std::uint64_t required) { return CheckForDiskSpace(&m_server, required); }

    // The lines but those of the connection, which are another operation's.
    std::vector<test::LogLine> lines() const {
        std::vector<test::LogLine> lines;
        for (auto const& line : m_log.lines())
            if (line.format.find(L"disk-space") != std::wstring::npos)
                lines.push_back(line);
        return lines;
    }

    SrvrParam m_server = serverWith(L"share\\media");
    // The last one is repeated.
    std::vector<Answer> m_answers{{0, 100 * megabyte}};
    DWORD m_connectAnswer = 0;
    DWORD m_connectLastError = 0;
    std::vector<std::wstring> m_asked;
    std::vector<std::wstring> m_connected;
    unsigned m_disconnected = 0;
    test::LogRecorder m_log;

  private:
    BOOL
    answer(LPCWSTR folder, ULARGE_INTEGER* available, ULARGE_INTEGER* total, ULARGE_INTEGER* free) {
        EXPECT_EQ(nullptr, available);
        EXPECT_EQ(nullptr, total);
        auto const& given = m_answers.at(std::min(m_asked.size(), m_answers.size() - 1));
        m_asked.push_back(folder);
        if (given.error != 0) {
            SetLastError(given.error);
            return FALSE;
        }
        free->QuadPart = given.free;
        return TRUE;
    }

    test::ImportHook<decltype(GetDiskFreeSpaceExW)> const m_space{
        "GetDiskFreeSpaceExW", [this](auto... arguments) { return answer(arguments...); }};
    test::ImportHook<decltype(WNetAddConnection2W)> const m_connect{
        "WNetAddConnection2W",
        [this](NETRESOURCEW* resource, wchar_t const* secret, wchar_t const* user, DWORD) {
            m_connected.push_back(
                std::wstring(user) + L':' + secret + L'@' + resource->lpRemoteName);
            SetLastError(m_connectLastError);
            return m_connectAnswer;
        }};
    test::ImportHook<decltype(WNetCancelConnection2W)> const m_cancel{
        "WNetCancelConnection2W", [this](auto...) -> DWORD {
            ++m_disconnected;
            return 0;
        }};
};

// A disk that refuses: how, to whom, what the connection answers, and what the disk does then.
struct Refusal {
    DWORD error;
    wchar_t const* user;
    DWORD connectAnswer;
    DWORD connectLastError;
    Answer retry;
    // What is to come of it.
    unsigned connections;
    unsigned questions;
    long result;
    int level;
    wchar_t const* line;

    friend void PrintTo(Refusal const& refusal, std::ostream* stream) {
        *stream << "error " << refusal.error << ", user " << testing::PrintToString(refusal.user)
                << ", connection " << refusal.connectAnswer << ", then " << refusal.retry.error;
    }
};

constexpr wchar_t enough[] = L"Available disk-space [7]MB, required [3]MB";
constexpr wchar_t tooLittle[] = L"Not enough available disk-space, remaining [2]MB, required [3]MB";
constexpr Answer room{0, 7 * megabyte};
constexpr Answer narrow{0, 2 * megabyte};
constexpr Answer notAsked{0, 0};

class RefusedDiskSpace : public DiskSpace, public testing::WithParamInterface<Refusal> {};

// The errors that are not about the user, with a user and without.
INSTANTIATE_TEST_SUITE_P(
    Otherwise, RefusedDiskSpace,
    testing::Values(
        Refusal{
            2, L"", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 2"},
        Refusal{
            2, L"user", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 2"},
        Refusal{
            53, L"user", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 53"},
        Refusal{
            4, L"user", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 4"},
        Refusal{
            6, L"user", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 6"},
        Refusal{
            1325, L"user", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 1325"},
        Refusal{
            1327, L"user", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 1327"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutUser, RefusedDiskSpace,
    testing::Values(
        Refusal{
            5, L"", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 5"},
        Refusal{
            1326, L"", 0, 0, notAsked, 0, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination, errcode = 1326"}));

// The number is the last error of the thread, whatever the connection answers.
INSTANTIATE_TEST_SUITE_P(
    NotConnected, RefusedDiskSpace,
    testing::Values(
        Refusal{
            5, L"user", 1222, 2250, notAsked, 1, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination - invalid login "
            L"credentials, errcode = 2250"},
        Refusal{
            1326, L"user", 1222, 2250, notAsked, 1, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination - invalid login "
            L"credentials, errcode = 2250"},
        Refusal{
            5, L"user", 86, 0, notAsked, 1, 1, 0x00E0801F, 3,
            L"Could not determine available disk-space on destination - invalid login "
            L"credentials, errcode = 0"}));

INSTANTIATE_TEST_SUITE_P(
    ConnectedButRefusedAgain, RefusedDiskSpace,
    testing::Values(
        Refusal{
            5,
            L"user",
            0,
            2250,
            {5, 0},
            1,
            2,
            0x00E0801F,
            3,
            L"Could not determine available disk-space on destination(login failed?), "
            L"errcode = 5"},
        Refusal{
            5,
            L"user",
            0,
            2250,
            {1326, 0},
            1,
            2,
            0x00E0801F,
            3,
            L"Could not determine available disk-space on destination(login failed?), "
            L"errcode = 1326"},
        Refusal{
            1326,
            L"user",
            0,
            2250,
            {53, 0},
            1,
            2,
            0x00E0801F,
            3,
            L"Could not determine available disk-space on destination(login failed?), "
            L"errcode = 53"}));

INSTANTIATE_TEST_SUITE_P(
    Connected, RefusedDiskSpace,
    testing::Values(
        Refusal{5, L"user", 0, 2250, room, 1, 2, 0, 6, enough},
        Refusal{1326, L"user", 0, 2250, room, 1, 2, 0, 6, enough},
        Refusal{5, L"user", 0, 2250, narrow, 1, 2, static_cast<long>(0x80C06006), 3, tooLittle},
        Refusal{
            1326, L"user", 0, 2250, narrow, 1, 2, static_cast<long>(0x80C06006), 3, tooLittle}));

} // namespace

TEST_P(RefusedDiskSpace, IsAskedForOnceMoreOnlyAsAUser) {
    auto const& refusal = GetParam();
    m_server.userName = refusal.user;
    m_answers = {{refusal.error, 0}, refusal.retry};
    m_connectAnswer = refusal.connectAnswer;
    m_connectLastError = refusal.connectLastError;

    EXPECT_EQ(refusal.result, check(3 * megabyte));

    EXPECT_THAT(lines(), ElementsAre(Logged(refusal.level, std::wstring(refusal.line))));
    EXPECT_THAT(m_connected, SizeIs(refusal.connections));
    EXPECT_THAT(m_asked, SizeIs(refusal.questions));
}

TEST_F(DiskSpace, HasThreeResults) {
    EXPECT_EQ(0x00E0801FL, DiskSpaceUnknown);
    EXPECT_EQ(0x80C06006UL, static_cast<unsigned long>(DiskSpaceNotEnough));
    EXPECT_GT(0L, DiskSpaceNotEnough);
}

TEST_F(DiskSpace, IsAskedOfTheFolderOnTheHost) {
    check(0);
    m_server = serverWith(L"share\\media\\");
    check(0);
    m_server = serverWith(L"/share/a/");
    check(0);
    m_server = serverWith(L"");
    check(0);
    m_server.host = L"\\\\srv\\ ";
    check(0);

    EXPECT_THAT(
        m_asked, ElementsAre(
                     L"\\\\srv\\share\\media\\", L"\\\\srv\\share\\media\\", L"\\\\srv\\share\\a\\",
                     L"\\\\srv\\", L"\\\\srv\\"));
}

TEST_F(DiskSpace, IsEnoughWhenThereIsMore) {
    EXPECT_EQ(0, check(40 * megabyte));

    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(6, L"Available disk-space [100]MB, required [40]MB")));
    EXPECT_THAT(m_connected, IsEmpty());
}

TEST_F(DiskSpace, IsNotEnoughWhenThereIsLess) {
    EXPECT_EQ(DiskSpaceNotEnough, check(140 * megabyte));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(3, L"Not enough available disk-space, remaining [100]MB, required [140]MB")));
}

TEST_F(DiskSpace, IsComparedInBytes) {
    EXPECT_EQ(0, check(100 * megabyte - 1));
    EXPECT_EQ(0, check(100 * megabyte));
    EXPECT_EQ(DiskSpaceNotEnough, check(100 * megabyte + 1));

    EXPECT_THAT(
        m_log.texts(),
        ElementsAre(
            L"Available disk-space [100]MB, required [99]MB",
            L"Available disk-space [100]MB, required [100]MB",
            L"Not enough available disk-space, remaining [100]MB, required [100]MB"));
}

TEST_F(DiskSpace, OfNothingIsEnoughEvenOnAFullDisk) {
    m_answers = {{0, 0}};

    EXPECT_EQ(0, check(0));
    EXPECT_EQ(DiskSpaceNotEnough, check(1));

    EXPECT_THAT(
        m_log.texts(), ElementsAre(
                           L"Available disk-space [0]MB, required [0]MB",
                           L"Not enough available disk-space, remaining [0]MB, required [0]MB"));
}

TEST_F(DiskSpace, IsComparedInAll64Bits) {
    m_answers = {{0, std::numeric_limits<std::uint64_t>::max()}};
    EXPECT_EQ(0, check(std::numeric_limits<std::uint64_t>::max()));

    m_answers = {{0, beyond32Bits}};
    EXPECT_EQ(0, check(beyond32Bits));
    EXPECT_EQ(DiskSpaceNotEnough, check(beyond32Bits + 1));
    EXPECT_EQ(DiskSpaceNotEnough, check(2 * beyond32Bits));
}

TEST_F(DiskSpace, IsLoggedInMegabytesCutTo32Bits) {
    m_answers = {{0, (beyond32Bits + 5) * megabyte}};

    EXPECT_EQ(0, check((beyond32Bits + 1) * megabyte));
    EXPECT_EQ(DiskSpaceNotEnough, check((2 * beyond32Bits + 7) * megabyte));
    m_answers = {{0, (beyond32Bits / 2) * megabyte}};
    EXPECT_EQ(0, check((beyond32Bits / 2 - 1) * megabyte));

    EXPECT_THAT(
        m_log.texts(), ElementsAre(
                           L"Available disk-space [5]MB, required [1]MB",
                           L"Not enough available disk-space, remaining [5]MB, required [7]MB",
                           L"Available disk-space [-2147483648]MB, required [2147483647]MB"));
}

TEST_F(DiskSpace, IsLoggedAsValues) {
    check(0);
    check(200 * megabyte);
    m_answers = {{2, 0}};
    check(0);

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            LoggedFormat(6, L"Available disk-space [%ld]MB, required [%ld]MB"),
            LoggedFormat(
                3, L"Not enough available disk-space, remaining [%ld]MB, required [%ld]MB"),
            LoggedFormat(
                3, L"Could not determine available disk-space on destination, errcode = %d")));
}

TEST_F(DiskSpace, IsConnectedToAsTheServersUserAndStaysSo) {
    m_server.userName = L"D\\user";
    m_server.password = L"s3cret";
    m_answers = {{5, 0}, room};

    EXPECT_EQ(0, check(0));

    EXPECT_THAT(m_connected, ElementsAre(L"D\\user:s3cret@\\\\srv\\share"));
    EXPECT_THAT(m_asked, ElementsAre(L"\\\\srv\\share\\media\\", L"\\\\srv\\share\\media\\"));
    EXPECT_EQ(0u, m_disconnected);
}

TEST_F(DiskSpace, LogsTheConnectionAheadOfItsAnswer) {
    m_server.userName = L"user";
    m_answers = {{5, 0}, room};

    check(0);

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(6, L"Server : [\\\\srv\\] WNetAddConnection2 connecting to \"\\\\srv\\share\""),
            Logged(6, L"Available disk-space [7]MB, required [0]MB")));
}

TEST_F(DiskSpace, LeavesTheServerAsItIs) {
    m_server.userName = L"user";
    m_server.password = L"s3cret";
    m_answers = {{5, 0}, {5, 0}};

    check(0);

    EXPECT_EQ(L"srv", m_server.host);
    EXPECT_EQ(L"user", m_server.userName);
    EXPECT_EQ(L"s3cret", m_server.password);
    EXPECT_STREQ(L"share\\media", m_server.folder);
}

TEST(DiskSpaceHere, OfAShareIsRead) {
    test::ScratchShare const share;
    auto server = serverWith(L"share");
    server.host = share.host();
    test::LogRecorder const log;

    EXPECT_EQ(0, CheckForDiskSpace(&server, 0));
    EXPECT_EQ(
        DiskSpaceNotEnough, CheckForDiskSpace(&server, std::numeric_limits<std::uint64_t>::max()));

    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            LoggedFormat(6, L"Available disk-space [%ld]MB, required [%ld]MB"),
            LoggedFormat(
                3, L"Not enough available disk-space, remaining [%ld]MB, required [%ld]MB")));
}

TEST(DiskSpaceHere, OfAnUnknownHostIsUnknown) {
    auto server = serverWith(L"share");
    server.host = L"vrtest.invalid";
    server.userName = L"user";
    test::LogRecorder const log;

    EXPECT_EQ(DiskSpaceUnknown, CheckForDiskSpace(&server, 0));

    EXPECT_THAT(
        log.lines(),
        ElementsAre(LoggedFormat(
            3, L"Could not determine available disk-space on destination, errcode = %d")));
}

TEST(DiskSpaceHere, LeaksNothing) {
    auto server = serverWith(L"share");
    server.host = L"vrtest.invalid";
    CheckForDiskSpace(&server, 0);
    test::HandleLeakCheck const check;

    CheckForDiskSpace(&server, 0);
}
