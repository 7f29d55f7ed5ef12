// The table of aliases, stage by stage, with what it traces.

#include "storage/PathAliasTable.h"

#include "tests/storage/Resolver.h"
#include "tests/support/Campaign.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <future>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Storage::PathAliasTable;
using vrUtils::Storage::pathAliasTable;

namespace {

// The lines of a table, as they arrive in a file.
class Trace {
  public:
    Trace() : m_stream(_wfopen(m_folder.file(L"trace").c_str(), L"wb")) {}

    Trace(Trace const&) = delete;
    Trace& operator=(Trace const&) = delete;
    ~Trace() { std::fclose(m_stream); }

    std::FILE* stream() const { return m_stream; }

    std::string text() const {
        std::fflush(m_stream);
        return m_folder.read(L"trace");
    }

  private:
    test::ScratchFolder m_folder;
    std::FILE* m_stream;
};

class AliasTable : public testing::Test {
  protected:
    // The path as it is rewritten; none if it is not, and has stayed as it was.
    std::optional<std::string> rewritten(std::string const& path) {
        auto text = path;
        if (m_table.substitute(text))
            return text;
        EXPECT_EQ(path, text);
        return std::nullopt;
    }

    test::Resolver m_resolver{};
    Trace m_trace;
    PathAliasTable m_table{m_trace.stream()};
};

struct CutHost {
    char const* host;
    // What is looked up, none of which resolves.
    std::vector<std::string> asked;

    friend void PrintTo(CutHost const& cut, std::ostream* stream) { *stream << cut.host; }
};

class UnknownHost : public AliasTable, public testing::WithParamInterface<CutHost> {};

INSTANTIATE_TEST_SUITE_P(
    OfAnyLength, UnknownHost,
    testing::Values(
        CutHost{"", {}}, CutHost{"a", {"a"}}, CutHost{"ab", {"ab", "a"}},
        CutHost{"abc", {"abc", "ab", "a"}}, CutHost{"abcd", {"abcd", "abc", "ab", "a"}},
        CutHost{"abcde", {"abcde", "abcd", "abc", "ab"}}));

// The same as the table, written out character by character in a buffer of 260.
class ModelTable {
  public:
    explicit ModelTable(std::vector<std::string> hosts) : m_hosts(std::move(hosts)) {}

    void add(std::string const& key, std::string const& value) { m_pairs.emplace_back(key, value); }

    bool substitute(std::array<char, 260>& buffer) {
        std::string lowered = buffer.data();
        for (auto& character : lowered)
            character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));

        for (auto const& [key, value] : m_pairs)
            if (lowered.compare(0, key.size(), key) == 0)
                return store(value + lowered.substr(key.size()), buffer);

        for (auto const& pair : m_pairs) {
            auto const& key = pair.first;
            if (key.compare(0, 2, "\\\\") != 0)
                continue;
            auto const keyHost = key.substr(2, endOfHost(key) - 2);
            if (keyHost.empty() || lowered.compare(0, 2, "\\\\") != 0)
                continue;
            auto const pathHost = lowered.substr(2, endOfHost(lowered) - 2);
            if (pathHost.compare(0, keyHost.size(), keyHost) == 0)
                return store(lowered.replace(2, pathHost.size(), keyHost), buffer);
        }

        if (lowered.compare(0, 2, "\\\\") != 0)
            return false;
        auto const end = endOfHost(lowered);
        for (int cut = 0; cut <= 3; ++cut) {
            auto const length = static_cast<int>(end) - cut - 2;
            if (length <= 0)
                continue;
            auto const candidate = lowered.substr(2, static_cast<std::size_t>(length));
            if (!resolves(candidate))
                continue;
            auto const key = lowered.substr(0, end);
            m_pairs.emplace_back(key, "\\\\" + candidate);
            return store(lowered.replace(2, end - 2, candidate), buffer);
        }
        return false;
    }

    std::size_t lookUps() const { return m_lookUps; }

  private:
    static std::size_t endOfHost(std::string const& path) {
        return std::min(path.find('\\', 2), path.size());
    }

    static bool store(std::string const& text, std::array<char, 260>& buffer) {
        std::strcpy(buffer.data(), text.c_str());
        return true;
    }

    bool resolves(std::string const& host) {
        ++m_lookUps;
        return std::find(m_hosts.begin(), m_hosts.end(), host) != m_hosts.end();
    }

    std::vector<std::string> m_hosts;
    std::vector<std::pair<std::string, std::string>> m_pairs;
    std::size_t m_lookUps = 0;
};

} // namespace

TEST_P(UnknownHost, IsLookedUpAtMostFourTimesAndNeverEmpty) {
    EXPECT_EQ(std::nullopt, rewritten("\\\\" + std::string(GetParam().host) + "\\Share\\A.mov"));

    EXPECT_EQ(GetParam().asked, m_resolver.asked());
}

TEST_P(UnknownHost, MayEndThePath) {
    EXPECT_EQ(std::nullopt, rewritten("\\\\" + std::string(GetParam().host)));

    EXPECT_EQ(GetParam().asked, m_resolver.asked());
}

TEST_P(UnknownHost, LeavesNothingBehind) {
    rewritten("\\\\" + std::string(GetParam().host) + "\\s");

    EXPECT_FALSE(m_table.changed());
    EXPECT_EQ("", m_trace.text());
    EXPECT_EQ(0u, m_resolver.freed());
}

TEST_F(AliasTable, AsksForTheHostAsItStands) {
    m_resolver.learn("media");

    EXPECT_EQ("\\\\media\\share\\a.mov", rewritten("\\\\Media\\Share\\A.MOV"));

    EXPECT_THAT(m_resolver.asked(), ElementsAre("media"));
    EXPECT_EQ(
        "changed (trimmed) hostname \\\\Media\\Share\\A.MOV -> \\\\media\\share\\a.mov\n",
        m_trace.text());
}

TEST_F(AliasTable, CutsUpToThreeCharactersOffTheHost) {
    for (auto const* const more : {"1", "12", "123"}) {
        PathAliasTable table;
        m_resolver.learn("media");
        std::string path = std::string("\\\\media") + more + "\\s\\a.mov";

        EXPECT_TRUE(table.substitute(path));

        EXPECT_EQ("\\\\media\\s\\a.mov", path);
    }
}

TEST_F(AliasTable, DoesNotCutFourCharactersOffTheHost) {
    m_resolver.learn("media");

    EXPECT_EQ(std::nullopt, rewritten("\\\\media1234\\s"));

    EXPECT_THAT(m_resolver.asked(), ElementsAre("media1234", "media123", "media12", "media1"));
}

TEST_F(AliasTable, StopsAtTheLongestHostThatResolves) {
    m_resolver.learn("media");
    m_resolver.learn("media1");

    EXPECT_EQ("\\\\media1\\s", rewritten("\\\\media12\\s"));

    EXPECT_THAT(m_resolver.asked(), ElementsAre("media12", "media1"));
}

TEST_F(AliasTable, CutsAHostDownToItsFirstCharacter) {
    m_resolver.learn("m");

    EXPECT_EQ("\\\\m\\s", rewritten("\\\\m123\\s"));
}

TEST_F(AliasTable, TakesAPathThatEndsInTheHost) {
    m_resolver.learn("media");

    EXPECT_EQ("\\\\media", rewritten("\\\\media1"));
}

TEST_F(AliasTable, PassesEachResultOnAsTheLastError) {
    m_resolver.learn("media");

    rewritten("\\\\media12\\s");

    EXPECT_THAT(m_resolver.errors(), ElementsAre(WSAHOST_NOT_FOUND, WSAHOST_NOT_FOUND, 0));
}

TEST_F(AliasTable, GivesTheAddressesBackOnce) {
    m_resolver.learn("media");

    rewritten("\\\\media12\\s");

    EXPECT_EQ(1u, m_resolver.freed());
    EXPECT_EQ(0u, m_resolver.outstanding());
    EXPECT_TRUE(m_resolver.wasUsedCleanly());
}

TEST_F(AliasTable, ChangesWithTheFirstPair) {
    m_resolver.learn("media");
    EXPECT_FALSE(m_table.changed());

    rewritten("\\\\media\\s");

    EXPECT_TRUE(m_table.changed());
}

TEST_F(AliasTable, LeavesWhatIsNoNetworkPathAlone) {
    m_table.add("\\\\media", "\\\\store");

    for (auto const* const path : {"", "\\", "\\media\\a", "C:\\media\\a", "media", "//media/a"})
        EXPECT_EQ(std::nullopt, rewritten(path)) << path;

    EXPECT_THAT(m_resolver.asked(), IsEmpty());
    EXPECT_EQ("", m_trace.text());
}

TEST_F(AliasTable, RewritesByAKnownPrefixWithoutLookUp) {
    m_table.add("\\\\media1x", "\\\\media");

    EXPECT_EQ("\\\\media\\share\\a.mov", rewritten("\\\\MEDIA1X\\Share\\A.mov"));

    EXPECT_THAT(m_resolver.asked(), IsEmpty());
    EXPECT_EQ(
        "changed path \\\\MEDIA1X\\Share\\A.mov -> \\\\media\\share\\a.mov\n", m_trace.text());
}

TEST_F(AliasTable, TakesAPrefixForEveryLongerHost) {
    m_table.add("\\\\media1x", "\\\\media");

    EXPECT_EQ("\\\\mediayz\\a", rewritten("\\\\media1xyz\\a"));
}

TEST_F(AliasTable, TakesTheFirstOfTwoPrefixes) {
    m_table.add("\\\\media", "\\\\a");
    m_table.add("\\\\media1", "\\\\b");

    EXPECT_EQ("\\\\a1\\s", rewritten("\\\\media1\\s"));
}

TEST_F(AliasTable, PassesOverAPrefixThatDoesNotFit) {
    m_table.add("\\\\other", "\\\\a");
    m_table.add("\\\\media", "\\\\b");

    EXPECT_EQ("\\\\b\\s", rewritten("\\\\media\\s"));
}

TEST_F(AliasTable, KeepsEqualKeys) {
    m_table.add("\\\\media", "\\\\a");
    m_table.add("\\\\media", "\\\\b");

    EXPECT_EQ("\\\\a\\s", rewritten("\\\\media\\s"));
}

TEST_F(AliasTable, RemembersTheHostThatWorked) {
    m_resolver.learn("mediaserver");
    rewritten("\\\\mediaserver1x\\share\\a.mov");

    EXPECT_EQ("\\\\mediaserver\\other\\b.mov", rewritten("\\\\MediaServer1x\\Other\\b.mov"));

    EXPECT_THAT(m_resolver.asked(), ElementsAre("mediaserver1x", "mediaserver1", "mediaserver"));
}

TEST_F(AliasTable, RemembersAHostThatStandsForItself) {
    m_resolver.learn("media");
    rewritten("\\\\media\\a");

    EXPECT_EQ("\\\\media2\\b", rewritten("\\\\media2\\B"));

    EXPECT_THAT(m_resolver.asked(), ElementsAre("media"));
}

TEST_F(AliasTable, DoesNotRememberAFailure) {
    rewritten("\\\\media\\a");
    m_resolver.learn("media");

    EXPECT_EQ("\\\\media\\a", rewritten("\\\\media\\a"));
}

TEST_F(AliasTable, CutsAHostDownToThatOfAKey) {
    m_table.add("\\\\media\\old", "\\\\store\\new");

    EXPECT_EQ("\\\\media\\share\\a.mov", rewritten("\\\\Media12345\\Share\\a.mov"));

    EXPECT_THAT(m_resolver.asked(), IsEmpty());
    EXPECT_EQ(
        "changed (partial match) hostname \\\\Media12345\\Share\\a.mov -> "
        "\\\\media\\share\\a.mov\n",
        m_trace.text());
}

TEST_F(AliasTable, CutsTheHostOfAPathThatIsNothingElse) {
    m_table.add("\\\\media\\old", "\\\\store\\new");

    EXPECT_EQ("\\\\media", rewritten("\\\\media12"));
}

TEST_F(AliasTable, PassesOverKeysThatCannotCut) {
    m_resolver.learn("media");
    m_table.add("xxmedia\\old", "a");
    m_table.add("\\xmedia\\old", "b");
    m_table.add("\\\\\\old", "\\\\c");
    m_table.add("\\\\media12\\old", "\\\\d");

    EXPECT_EQ("\\\\media\\s", rewritten("\\\\media1\\s"));

    EXPECT_THAT(m_resolver.asked(), ElementsAre("media1", "media"));
}

TEST_F(AliasTable, LooksForAPrefixInAllPairsBeforeItCuts) {
    m_table.add("\\\\media\\old", "\\\\a");
    m_table.add("\\\\media12", "\\\\b");

    EXPECT_EQ("\\\\b\\s", rewritten("\\\\media12\\s"));
}

TEST_F(AliasTable, LowersOnlyTheLettersAToZ) {
    m_resolver.learn("media");

    EXPECT_EQ("\\\\media\\\xC9t\xE9 \xFF.mov", rewritten("\\\\MEDIA\\\xC9T\xE9 \xFF.MOV"));
}

TEST_F(AliasTable, TracesNothingWithoutAStream) {
    PathAliasTable table;
    table.add("\\\\media", "\\\\store");
    std::string path = "\\\\media\\a";

    EXPECT_TRUE(table.substitute(path));

    EXPECT_EQ("\\\\store\\a", path);
}

TEST_F(AliasTable, TracesPercentSignsAsTheyAre) {
    m_table.add("\\\\media", "\\\\store");

    rewritten("\\\\media\\100%s%n");

    EXPECT_EQ("changed path \\\\media\\100%s%n -> \\\\store\\100%s%n\n", m_trace.text());
}

TEST_F(AliasTable, OfTheProcessIsOne) { EXPECT_EQ(&pathAliasTable(), &pathAliasTable()); }

TEST_F(AliasTable, IsOpenToOthersDuringALookUp) {
    m_table.add("\\\\known", "\\\\store");
    auto isAnswered = std::future_status::timeout;
    m_resolver.whenAsked([&] {
        auto const other = std::async(std::launch::async, [&] { rewritten("\\\\known\\a"); });
        isAnswered = other.wait_for(test::ceiling);
    });
    m_resolver.learn("media");

    EXPECT_EQ("\\\\media\\a", rewritten("\\\\media\\a"));

    EXPECT_EQ(std::future_status::ready, isAnswered);
}

TEST_F(AliasTable, StormOfEightThreadsLosesNoPair) {
    constexpr unsigned threadCount = 8;
    constexpr unsigned hostsOfAThread = 50;
    auto const host = [](unsigned thread, unsigned number) {
        return 'h' + std::to_string(1000 + thread * hostsOfAThread + number);
    };
    for (unsigned thread = 0; thread < threadCount; ++thread)
        for (unsigned number = 0; number < hostsOfAThread; ++number)
            m_resolver.learn(host(thread, number));
    std::atomic<unsigned> faults{0};
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([&, thread] {
            for (unsigned number = 0; number < hostsOfAThread; ++number)
                for (auto const* const more : {"xyz", "", "xyz"}) {
                    auto path = "\\\\" + host(thread, number) + more + "\\A";
                    if (!m_table.substitute(path) || path != "\\\\" + host(thread, number) + "\\a")
                        ++faults;
                }
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(0u, faults);
    EXPECT_EQ(0u, m_resolver.outstanding());
    // Four for each host with more behind it, one for the host itself, none for what is known.
    EXPECT_EQ(threadCount * hostsOfAThread * 5, m_resolver.asked().size());
}

TEST_F(AliasTable, RandomPathsAreRewrittenAsWrittenOutStepByStep) {
    test::Campaign campaign(5000);
    while (campaign.nextRound()) {
        auto const text = [&](char const* alphabet, std::size_t longest) {
            std::string made(campaign.below(longest + 1), ' ');
            for (auto& character : made)
                character = alphabet[campaign.below(std::strlen(alphabet))];
            return made;
        };
        std::vector<std::string> hosts;
        for (int host = 0; host < 3; ++host)
            hosts.push_back(text("ab", 3));
        test::Resolver resolver{hosts.at(0), hosts.at(1), hosts.at(2)};
        ModelTable model(hosts);
        PathAliasTable table;
        for (auto pairs = campaign.below(3); pairs > 0; --pairs) {
            std::string key = campaign.below(4) ? "\\\\" : "";
            key += text("ab", 4);
            key += text("\\b", 3);
            auto const value = "\\\\" + text("abc", 3);
            // The empty key is one of no path.
            if (key.empty())
                continue;
            model.add(key, value);
            table.add(key, value);
        }
        for (int turn = 0; turn < 8; ++turn) {
            std::string path = campaign.below(8) ? "\\\\" : "";
            path += text("aAbB", 6);
            path += text("\\aB", 4);
            auto const asMet = path;
            std::array<char, 260> buffer{};
            path.copy(buffer.data(), path.size());

            ASSERT_EQ(model.substitute(buffer), table.substitute(path)) << campaign << asMet;
            ASSERT_EQ(buffer.data(), path) << campaign << asMet;
            ASSERT_EQ(model.lookUps(), resolver.asked().size()) << campaign << asMet;
        }
    }
}
