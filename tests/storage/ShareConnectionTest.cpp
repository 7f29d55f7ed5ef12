// Connections to shares, over a network that answers as each test wants it to.

#include "vrUtils/Storage/ShareConnection.h"

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "vrUtils/vrException.h"

#include <winnetwk.h>

#include <gmock/gmock.h>

#include <optional>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::Storage;
using test::Logged;
using test::LoggedFormat;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// A path that is typed would lose its words in the connection, and cannot be passed.
static_assert(!std::is_convertible_v<vr::Path, vr::PathCreator const&>);
static_assert(!std::is_constructible_v<
              NetworkShareConnection, vr::Path const&, std::wstring const&, std::wstring const&>);
static_assert(std::is_convertible_v<wchar_t const*, vr::PathCreator const&>);
static_assert(std::is_copy_constructible_v<NetworkShareConnection>);
static_assert(std::is_copy_assignable_v<NetworkShareConnection>);
static_assert(std::is_nothrow_destructible_v<NetworkShareConnection>);

constexpr wchar_t password[] = L"s3cret-pa55";

using Text = std::optional<std::wstring>;

Text textAt(wchar_t const* text) { return text ? Text(text) : std::nullopt; }

// What the platform was asked for.
struct Request {
    NETRESOURCEW resource{};
    std::wstring share;
    Text password;
    Text user;
    DWORD flags = 0;
    // Lines in the log at that time.
    std::size_t logged = 0;
};

struct Cancellation {
    std::wstring name;
    DWORD flags = 1;
    BOOL isForced = TRUE;

    friend bool operator==(Cancellation const& left, Cancellation const& right) {
        return left.name == right.name && left.flags == right.flags &&
               left.isForced == right.isForced;
    }

    friend void PrintTo(Cancellation const& cancellation, std::ostream* stream) {
        *stream << testing::PrintToString(cancellation.name) << ", flags " << cancellation.flags
                << (cancellation.isForced ? ", forced" : "");
    }
};

class ShareConnection : public testing::Test {
  protected:
    std::wstring shareOf(std::wstring const& path) {
        ConnectAsUserWithRetCode(path, L"user", password);
        return m_requests.back().share;
    }

    // The cancellations, by the names alone.
    std::vector<std::wstring> cancelled() const {
        std::vector<std::wstring> names;
        for (auto const& cancellation : m_cancellations)
            names.push_back(cancellation.name);
        return names;
    }

    DWORD m_answer = NO_ERROR;
    std::vector<Request> m_requests;
    DWORD m_cancelAnswer = NO_ERROR;
    std::vector<Cancellation> m_cancellations;
    test::LogRecorder m_log;

  private:
    test::ImportHook<decltype(WNetAddConnection2W)> const m_add{
        "WNetAddConnection2W",
        [this](NETRESOURCEW* resource, wchar_t const* secret, wchar_t const* user, DWORD flags) {
            m_requests.push_back(
                {*resource, resource->lpRemoteName, textAt(secret), textAt(user), flags,
                 m_log.lines().size()});
            return m_answer;
        }};
    test::ImportHook<decltype(WNetCancelConnection2W)> const m_cancel{
        "WNetCancelConnection2W", [this](wchar_t const* name, DWORD flags, BOOL isForced) {
            m_cancellations.push_back({name, flags, isForced});
            return m_cancelAnswer;
        }};
};

// With a text of the system for the error, or none.
class FailedShareConnection : public ShareConnection {
  protected:
    FailedShareConnection() { m_answer = ERROR_ACCESS_DENIED; }

    Text m_text = L"Access is denied.\r\n";
    DWORD m_flags = 0;
    DWORD m_error = 0;
    DWORD m_language = 0;
    // Lines in the log when the text was asked for, and when it was freed.
    std::vector<std::size_t> m_logged;
    std::vector<void*> m_allocated;
    std::vector<void*> m_freed;

  private:
    // The values of the text, which nobody passes, have a type that no template takes.
    test::ImportHook<DWORD(DWORD, void const*, DWORD, DWORD, wchar_t*, DWORD, void*)> const
        m_format{
            "FormatMessageW",
            [this](
                DWORD flags, void const*, DWORD error, DWORD language, wchar_t* place, DWORD,
                void*) -> DWORD {
                m_flags = flags;
                m_error = error;
                m_language = language;
                m_logged.push_back(m_log.lines().size());
                if (!m_text)
                    return 0;
                m_allocated.push_back(m_text->data());
                *reinterpret_cast<wchar_t**>(place) = m_text->data();
                return static_cast<DWORD>(m_text->size());
            }};
    test::ImportHook<decltype(LocalFree)> const m_free{"LocalFree", [this](HLOCAL text) -> HLOCAL {
                                                           m_freed.push_back(text);
                                                           m_logged.push_back(m_log.lines().size());
                                                           return nullptr;
                                                       }};
};

struct ShareOfPath {
    wchar_t const* path;
    wchar_t const* share;

    friend void PrintTo(ShareOfPath const& tested, std::ostream* stream) {
        *stream << testing::PrintToString(tested.path);
    }
};

class ShareOf : public ShareConnection, public testing::WithParamInterface<ShareOfPath> {};

INSTANTIATE_TEST_SUITE_P(
    Folders, ShareOf,
    testing::Values(
        ShareOfPath{L"\\\\srv\\share\\", L"\\\\srv\\share"},
        ShareOfPath{L"\\\\srv\\share\\file.mov", L"\\\\srv\\share"},
        ShareOfPath{L"\\\\srv\\share\\a\\b\\file.mov", L"\\\\srv\\share"},
        ShareOfPath{L"\\\\srv\\share\\a\\b\\", L"\\\\srv\\share"},
        ShareOfPath{L"//srv/share/a/", L"\\\\srv\\share"},
        ShareOfPath{L"\\\\Srv.Domain\\My Share$\\a\\", L"\\\\Srv.Domain\\My Share$"},
        ShareOfPath{L"\\\\srv\\share.v2\\", L"\\\\srv\\share.v2"}));

INSTANTIATE_TEST_SUITE_P(
    WithPort, ShareOf,
    testing::Values(ShareOfPath{L"\\\\srv:8080\\share\\a\\", L"\\\\srv:8080\\share"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutFolder, ShareOf,
    testing::Values(
        ShareOfPath{L"\\\\srv\\share", L"\\\\srv\\"}, ShareOfPath{L"\\\\srv\\", L"\\\\srv\\"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutRoot, ShareOf,
    testing::Values(
        ShareOfPath{L"C:\\media\\x.mov", L"\\\\\\"}, ShareOfPath{L"C:\\", L"\\\\\\"},
        ShareOfPath{L"media\\x.mov", L"\\\\\\"}, ShareOfPath{L"", L"\\\\\\"}));

// The failure of a connection with this message and this code.
MATCHER_P2(FailsToConnect, message, code, "fails with " + testing::PrintToString(message)) {
    try {
        arg();
    } catch (vrException const& failure) {
        *result_listener << "whose message is " << testing::PrintToString(failure.message())
                         << " and whose code is 0x" << std::hex << failure.code();
        return failure.message() == message && failure.file() == L"Storage" &&
               failure.line() == 768 && failure.code() == code;
    }
    *result_listener << "which throws nothing";
    return false;
}

auto connectingTo(std::wstring const& path) {
    return [path] { NetworkShareConnection(path, L"user", password); };
}

} // namespace

TEST_P(ShareOf, IsRootAndFirstFolderOfThePath) {
    EXPECT_EQ(GetParam().share, shareOf(GetParam().path));
}

TEST_F(ShareConnection, TakesLongPaths) {
    std::wstring const name(300, L'n');

    EXPECT_EQ(L"\\\\srv\\" + name, shareOf(L"\\\\srv\\" + name + L"\\" + name + L"\\x.mov"));
}

TEST_F(ShareConnection, AsksForADiskWithoutDriveLetter) {
    ConnectAsUserWithRetCode(L"\\\\srv\\share\\", L"user", password);

    ASSERT_EQ(1u, m_requests.size());
    auto const& resource = m_requests.front().resource;
    EXPECT_EQ(1u, resource.dwType);
    EXPECT_EQ(0u, resource.dwScope);
    EXPECT_EQ(0u, resource.dwDisplayType);
    EXPECT_EQ(0u, resource.dwUsage);
    EXPECT_EQ(nullptr, resource.lpLocalName);
    EXPECT_EQ(nullptr, resource.lpComment);
    EXPECT_EQ(nullptr, resource.lpProvider);
    EXPECT_EQ(0u, m_requests.front().flags);
}

TEST_F(ShareConnection, IsMadeAsTheUser) {
    ConnectAsUserWithRetCode(L"\\\\srv\\share\\", L"DOMAIN\\user", password);

    EXPECT_EQ(Text(L"DOMAIN\\user"), m_requests.at(0).user);
    EXPECT_EQ(Text(password), m_requests.at(0).password);
}

TEST_F(ShareConnection, PassesOnThatThereIsNoUser) {
    ConnectAsUserWithRetCode(L"\\\\srv\\share\\", nullptr, nullptr);

    EXPECT_EQ(std::nullopt, m_requests.at(0).user);
    EXPECT_EQ(std::nullopt, m_requests.at(0).password);
}

TEST_F(ShareConnection, PassesOnEmptyTexts) {
    ConnectAsUserWithRetCode(L"\\\\srv\\share\\", L"", L"");

    EXPECT_EQ(Text(L""), m_requests.at(0).user);
    EXPECT_EQ(Text(L""), m_requests.at(0).password);
}

TEST_F(ShareConnection, IsAttemptedOnce) {
    m_answer = ERROR_BAD_NETPATH;

    EXPECT_FALSE(ConnectAsUser(L"\\\\srv\\share\\", L"user", password));

    EXPECT_EQ(1u, m_requests.size());
}

TEST_F(ShareConnection, GivesThePlatformsResult) {
    for (DWORD const answer : {0ul, 5ul, 1219ul, 0xFFFFFFFFul}) {
        m_answer = answer;

        EXPECT_EQ(answer, ConnectAsUserWithRetCode(L"\\\\srv\\share\\", L"user", password));
        EXPECT_EQ(answer == 0, ConnectAsUser(L"\\\\srv\\share\\", L"user", password));
    }
}

TEST_F(ShareConnection, LogsBeforeItIsAttempted) {
    ConnectAsUserWithRetCode(L"\\\\srv\\share\\a\\", L"user", password);

    EXPECT_EQ(1u, m_requests.at(0).logged);
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(
            6, L"Server : [\\\\srv\\] WNetAddConnection2 connecting to \"\\\\srv\\share\"")));
}

TEST_F(ShareConnection, LogsNamesAsValues) {
    ConnectAsUserWithRetCode(L"\\\\100%s\\%n\\a\\", L"user", password);

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(LoggedFormat(6, L"Server : [%s] WNetAddConnection2 connecting to \"%s\"")));
    EXPECT_EQ(L"\\\\100%s\\%n", m_log.lines().at(0).values.at(1).text);
}

TEST_F(ShareConnection, LogsAnEmptyServer) {
    ConnectAsUser(L"C:\\media\\", L"user", password);

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(6, L"Server : [] WNetAddConnection2 connecting to \"\\\\\\\"")));
}

TEST_F(FailedShareConnection, LogsServerErrorUserAndShare) {
    m_answer = 1326;

    ConnectAsUserWithRetCode(L"\\\\srv:80\\share\\a\\", L"D\\user", password);

    EXPECT_EQ(1u, m_requests.at(0).logged);
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(
                6,
                L"Server : [\\\\srv:80\\] WNetAddConnection2 connecting to \"\\\\srv:80\\share\""),
            Logged(
                7, L"Server : \\\\srv:80\\ WNetAddConnection2 failed, error (1326), using username "
                   L"[D\\user] to connect to \"\\\\srv:80\\share\""),
            Logged(7, L"Access is denied.\r\n")));
}

TEST_F(FailedShareConnection, LogsItsValuesInOrder) {
    ConnectAsUser(L"\\\\srv\\share\\", L"%s", password);

    EXPECT_THAT(
        m_log.lines().at(1),
        LoggedFormat(
            7, L"Server : %s WNetAddConnection2 failed, error (%d), using username [%s] to connect "
               L"to \"%s\""));
    EXPECT_EQ(L"%s", m_log.lines().at(1).values.at(2).text);
}

TEST_F(FailedShareConnection, AsksForTheTextOfTheErrorBehindTheLine) {
    ConnectAsUser(L"\\\\srv\\share\\", L"user", password);

    EXPECT_EQ(0x1300u, m_flags);
    EXPECT_EQ(5u, m_error);
    EXPECT_EQ(1024u, m_language);
    EXPECT_THAT(m_logged, ElementsAre(2u, 3u));
}

TEST_F(FailedShareConnection, FreesTheTextOnce) {
    ConnectAsUser(L"\\\\srv\\share\\", L"user", password);

    EXPECT_EQ(1u, m_freed.size());
    EXPECT_EQ(m_allocated, m_freed);
}

TEST_F(FailedShareConnection, LogsTheTextAsTheFormat) {
    m_text = L"%1 is no 100%s of %n.\r\n";

    ConnectAsUser(L"\\\\srv\\share\\", L"user", password);

    EXPECT_THAT(m_log.lines().back(), LoggedFormat(7, L"%1 is no 100%s of %n.\r\n"));
}

TEST_F(FailedShareConnection, WithoutTextLogsAndFreesNothing) {
    m_text = std::nullopt;

    EXPECT_EQ(5u, ConnectAsUserWithRetCode(L"\\\\srv\\share\\", L"user", password));

    EXPECT_EQ(2u, m_log.lines().size());
    EXPECT_THAT(m_freed, IsEmpty());
}

TEST_F(ShareConnection, LogsThePlatformsOwnText) {
    m_answer = ERROR_ACCESS_DENIED;
    wchar_t text[512] = {};
    ASSERT_NE(
        0u, FormatMessageW(
                FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                ERROR_ACCESS_DENIED, 1024, text, 512, nullptr));

    ConnectAsUser(L"\\\\srv\\share\\", L"user", password);

    EXPECT_THAT(m_log.lines().back(), LoggedFormat(7, std::wstring(text)));
}

TEST_F(ShareConnection, ErrorThatThePlatformHasNoTextForIsLoggedByItsNumber) {
    m_answer = 0x2FFFFFFF;

    ConnectAsUser(L"\\\\srv\\share\\", L"user", password);

    EXPECT_EQ(2u, m_log.lines().size());
    EXPECT_THAT(m_log.texts().back(), HasSubstr(L"error (805306367)"));
}

TEST_F(FailedShareConnection, LogsThatThereIsNoUser) {
    ConnectAsUser(L"\\\\srv\\share\\", nullptr, nullptr);

    EXPECT_EQ(3u, m_log.lines().size());
    EXPECT_EQ(0u, m_log.lines().at(1).values.at(2).word);
}

TEST_F(FailedShareConnection, NeverLogsThePassword) {
    for (DWORD const answer : {0ul, 5ul, 1219ul, 1326ul}) {
        m_answer = answer;
        ConnectAsUser(L"\\\\srv\\share\\a\\", L"user", password);
        EXPECT_EQ(answer != 0, [] {
            try {
                NetworkShareConnection(L"\\\\srv\\share\\", L"user", password);
                return false;
            } catch (vrException const& failure) {
                EXPECT_THAT(failure.message(), Not(HasSubstr(password)));
                return true;
            }
        }());
    }

    EXPECT_EQ(20u, m_log.lines().size());
    for (auto const& line : m_log.lines()) {
        EXPECT_THAT(line.format, Not(HasSubstr(password)));
        EXPECT_THAT(line.text(), Not(HasSubstr(password)));
        for (auto const& value : line.values)
            EXPECT_THAT(value.text, Not(HasSubstr(password)));
    }
}

TEST_F(ShareConnection, OfAScopeIsMadeToTheShare) {
    NetworkShareConnection const connection(L"\\\\srv\\share\\a\\b.mov", L"user", password);

    ASSERT_EQ(1u, m_requests.size());
    EXPECT_EQ(L"\\\\srv\\share", m_requests.front().share);
    EXPECT_EQ(Text(L"user"), m_requests.front().user);
    EXPECT_EQ(Text(password), m_requests.front().password);
    EXPECT_THAT(m_cancellations, IsEmpty());
}

TEST_F(ShareConnection, OfAScopeEndsWithTheWholeText) {
    { NetworkShareConnection const connection(L"//srv/share/a/b.mov", L"user", password); }

    EXPECT_THAT(m_cancellations, ElementsAre(Cancellation{L"\\\\srv\\share\\a\\b.mov", 0, FALSE}));
}

TEST_F(ShareConnection, OfAScopeEndsWhetherOrNotThePlatformAgrees) {
    m_cancelAnswer = ERROR_NOT_CONNECTED;

    { NetworkShareConnection const connection(L"\\\\srv\\share\\", L"user", password); }

    EXPECT_EQ(1u, m_cancellations.size());
    EXPECT_EQ(1u, m_log.lines().size());
}

TEST_F(ShareConnection, OfAScopeEndsWithEachCopy) {
    {
        NetworkShareConnection const connection(L"\\\\srv\\share\\", L"user", password);
        { NetworkShareConnection const copy(connection); }
        EXPECT_THAT(cancelled(), ElementsAre(L"\\\\srv\\share\\"));
    }

    EXPECT_THAT(cancelled(), ElementsAre(L"\\\\srv\\share\\", L"\\\\srv\\share\\"));
    EXPECT_EQ(1u, m_requests.size());
}

TEST_F(ShareConnection, OfAScopeIsNotEndedByAssignmentButTwiceThen) {
    {
        NetworkShareConnection first(L"\\\\srv\\one\\", L"user", password);
        NetworkShareConnection const second(L"\\\\srv\\two\\", L"user", password);
        first = second;
        EXPECT_THAT(m_cancellations, IsEmpty());
    }

    EXPECT_THAT(cancelled(), ElementsAre(L"\\\\srv\\two\\", L"\\\\srv\\two\\"));
}

TEST_F(ShareConnection, OfAScopeFailsWithTheWholeText) {
    m_answer = ERROR_BAD_NETPATH;

    EXPECT_THAT(
        connectingTo(L"\\\\srv\\share\\a\\100%s.mov"),
        FailsToConnect(
            std::wstring(L"Failed to connect to share \\\\srv\\share\\a\\100%s.mov"), 0x80606002));
}

TEST_F(ShareConnection, OfAScopeFailsWithACodeOfItsOwnForAnotherUsersConnection) {
    auto const message = std::wstring(L"Failed to connect to share \\\\srv\\share\\");

    m_answer = ERROR_SESSION_CREDENTIAL_CONFLICT;
    EXPECT_THAT(connectingTo(L"\\\\srv\\share\\"), FailsToConnect(message, 0x80606005));
    m_answer = ERROR_SESSION_CREDENTIAL_CONFLICT - 1;
    EXPECT_THAT(connectingTo(L"\\\\srv\\share\\"), FailsToConnect(message, 0x80606002));
    m_answer = ERROR_SESSION_CREDENTIAL_CONFLICT + 1;
    EXPECT_THAT(connectingTo(L"\\\\srv\\share\\"), FailsToConnect(message, 0x80606002));
}

TEST_F(FailedShareConnection, LogsTheSameForAnotherUsersConnection) {
    m_answer = ERROR_SESSION_CREDENTIAL_CONFLICT;

    EXPECT_ANY_THROW(NetworkShareConnection(L"\\\\srv\\share\\", L"user", password));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(6, L"Server : [\\\\srv\\] WNetAddConnection2 connecting to \"\\\\srv\\share\""),
            Logged(
                7, L"Server : \\\\srv\\ WNetAddConnection2 failed, error (1219), using username "
                   L"[user] to connect to \"\\\\srv\\share\""),
            Logged(7, L"Access is denied.\r\n")));
}

TEST_F(ShareConnection, OfAScopeThatFailedIsNotEnded) {
    m_answer = ERROR_ACCESS_DENIED;

    EXPECT_ANY_THROW(NetworkShareConnection(L"\\\\srv\\share\\", L"user", password));

    EXPECT_THAT(m_cancellations, IsEmpty());
}

TEST_F(ShareConnection, IsEndedByName) {
    m_cancelAnswer = ERROR_NOT_CONNECTED;

    Disconnect(L"\\\\srv\\share");

    EXPECT_THAT(m_cancellations, ElementsAre(Cancellation{L"\\\\srv\\share", 0, FALSE}));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST(ShareConnectionHere, FailsForWhatIsNoShare) {
    EXPECT_FALSE(ConnectAsUser(L"C:\\media\\", L"user", password));
    EXPECT_NO_THROW(Disconnect(L"C:\\media\\"));
}

TEST(ShareConnectionHere, LogsFailureWithoutUserSafely) {
    test::ImportHook<decltype(WNetAddConnection2W)> const hook(
        "WNetAddConnection2W", [](auto...) -> DWORD { return ERROR_ACCESS_DENIED; });

    EXPECT_EQ(5u, ConnectAsUserWithRetCode(L"\\\\srv\\share\\", nullptr, nullptr));
}
