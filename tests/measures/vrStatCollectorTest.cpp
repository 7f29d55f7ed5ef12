#include "vrUtils/vrStatCollector.h"

#include "foundation/Platform.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ImportHook.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>
#include <json/json.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <type_traits>

using testing::Contains;
using testing::ElementsAre;

namespace {

// The statistics are the process's: each test has numbers and names of its own, or a process.

vrStatCollector& stats() { return vrStatCollector::Singleton(); }

Json::Value parsed(std::string const& text) {
    Json::Value document;
    std::string problems;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &document, &problems))
        << problems;
    return document;
}

Json::Value asDocument() { return parsed(test::utf8(stats().asJson())); }

int tellJson() {
    std::fputs(test::utf8(stats().asJson()).c_str(), stdout);
    return 0;
}

test::ChildAction const newTable(L"new table", [](auto const&) { return tellJson(); });

test::ChildAction const askedTable(L"asked table", [](auto const&) {
    return stats().GetStat(7) == 0 ? tellJson() : 1;
});

test::ChildAction const unnamedTable(L"unnamed table", [](auto const&) {
    stats().AddStat(9, 2u);
    stats().AddStat(-3, 7u);
    stats().AddStat(5, 1u);
    return tellJson();
});

Json::Value told(test::ChildAction const& action) {
    auto const child = action.start();
    EXPECT_EQ(0u, child->exitCode());
    return parsed(child->output());
}

template <typename Amount, typename = void>
constexpr bool isAdded = false;

template <typename Amount>
constexpr bool isAdded<Amount, std::void_t<decltype(stats().AddStat(1, std::declval<Amount>()))>> =
    true;

} // namespace

static_assert(std::has_virtual_destructor_v<vrStatCollector>);
static_assert(!std::is_default_constructible_v<vrStatCollector>);
static_assert(!std::is_destructible_v<vrStatCollector>);
static_assert(!std::is_copy_constructible_v<vrStatCollector>);
static_assert(!std::is_copy_assignable_v<vrStatCollector>);
static_assert(isAdded<unsigned int> && isAdded<unsigned long> && isAdded<std::uint64_t>);
static_assert(!isAdded<int>, "no guess at what is meant");

TEST(vrStatCollector, IsOneForTheProcess) {
    EXPECT_EQ(&vrStatCollector::Singleton(), &vrStatCollector::Singleton());
}

TEST(vrStatCollector, NewTableIsFiveNamesInOrder) {
    auto const child = newTable.start();

    // The child's output turns each line feed into the two characters of the platform.
    EXPECT_EQ(
        "{\r\n"
        "\t\"BytesRead\" : 0,\r\n"
        "\t\"BytesWritten\" : 0,\r\n"
        "\t\"FramesTransferred\" : 0,\r\n"
        "\t\"Transcoded\" : 0,\r\n"
        "\t\"TransferStatus\" : 0\r\n"
        "}\r\n",
        child->output());
}

TEST(vrStatCollector, KnowsTheFiveByTheirNumbers) {
    for (int number = 0; number < 5; ++number)
        stats().SetStat(0x10000 + number, 100u + static_cast<unsigned>(number));

    auto const document = asDocument();

    EXPECT_EQ(100u, document["BytesRead"].asUInt());
    EXPECT_EQ(101u, document["BytesWritten"].asUInt());
    EXPECT_EQ(102u, document["FramesTransferred"].asUInt());
    EXPECT_EQ(103u, document["Transcoded"].asUInt());
    EXPECT_EQ(104u, document["TransferStatus"].asUInt());
}

TEST(vrStatCollector, AskingForAnUnknownStatMakesIt) {
    auto const document = told(askedTable);

    EXPECT_EQ(6u, document.size());
    EXPECT_THAT(document.getMemberNames(), Contains(""));
    EXPECT_EQ(0u, document[""].asUInt());
}

TEST(vrStatCollector, UnnamedStatsAreOneMemberWithTheValueOfTheHighest) {
    auto const document = told(unnamedTable);

    EXPECT_EQ(6u, document.size());
    EXPECT_EQ(2u, document[""].asUInt());
}

TEST(vrStatCollector, StatsOfOneNameAreOneMemberWithTheValueOfTheHighest) {
    stats().SetStatName(21, L"twice");
    stats().SetStatName(20, L"twice");
    stats().AddStat(21, 1u);
    stats().AddStat(20, 2u);

    EXPECT_EQ(1u, asDocument()["twice"].asUInt());
}

TEST(vrStatCollector, StatsMayHaveAnyNumber) {
    auto const least = std::numeric_limits<int>::min();
    auto const greatest = std::numeric_limits<int>::max();
    stats().AddStat(least, 1u);
    stats().AddStat(greatest, 2u);
    stats().AddStat(-1, 3u);

    EXPECT_EQ(1u, stats().GetStat(least));
    EXPECT_EQ(2u, stats().GetStat(greatest));
    EXPECT_EQ(3u, stats().GetStat(-1));
}

TEST(vrStatCollector, AllFormsOfAddAddAlike) {
    stats().AddStat(30, 1u);
    stats().AddStat(30, 0xFFFFFFFFul);
    stats().AddStat(30, std::uint64_t{1} << 40);

    EXPECT_EQ((std::uint64_t{1} << 40) + 0x100000000u, stats().GetStat(30));
}

TEST(vrStatCollector, SumWrapsAtSixtyFourBits) {
    stats().AddStat(31, std::numeric_limits<std::uint64_t>::max());
    stats().AddStat(31, 3ul);

    EXPECT_EQ(2u, stats().GetStat(31));
}

TEST(vrStatCollector, JsonHasTheGreatestValueAsANumber) {
    stats().SetStatName(32, L"greatest");
    stats().AddStat(32, std::numeric_limits<std::uint64_t>::max());

    EXPECT_NE(std::wstring::npos, stats().asJson().find(L"\"greatest\" : 18446744073709551615"));
}

TEST(vrStatCollector, SetReplacesAndAddGoesOn) {
    stats().AddStat(33, std::uint64_t{1} << 40);

    stats().SetStat(33, 0xFFFFFFFFul);
    EXPECT_EQ(0xFFFFFFFFu, stats().GetStat(33));

    stats().AddStat(33, 1u);
    EXPECT_EQ(0x100000000u, stats().GetStat(33));
}

TEST(vrStatCollector, NameKeepsTheValue) {
    stats().AddStat(34, 5u);

    stats().SetStatName(34, L"first name");
    EXPECT_EQ(5u, asDocument()["first name"].asUInt());

    stats().SetStatName(34, L"second name");
    auto const document = asDocument();
    EXPECT_FALSE(document.isMember("first name"));
    EXPECT_EQ(5u, document["second name"].asUInt());
    EXPECT_EQ(5u, stats().GetStat(34));
}

TEST(vrStatCollector, NameAloneMakesAStat) {
    stats().SetStatName(35, L"named only");

    EXPECT_EQ(0u, asDocument()["named only"].asUInt());
    EXPECT_TRUE(asDocument().isMember("named only"));
}

TEST(vrStatCollector, NameIsTheCollectorsOwnCopy) {
    std::wstring name = L"as it was";
    stats().SetStatName(36, &name);

    name = L"as it is";

    EXPECT_TRUE(asDocument().isMember("as it was"));
}

struct Name {
    char const* name;
    std::wstring given;
    std::string member;
};

void PrintTo(Name const& name, std::ostream* stream) { *stream << name.name; }

class StatNames : public testing::TestWithParam<Name> {};

TEST_P(StatNames, StandInTheJson) {
    stats().SetStatName(40, &GetParam().given);
    stats().SetStat(40, 4711);

    EXPECT_EQ(4711u, asDocument()[GetParam().member].asUInt());
}

INSTANTIATE_TEST_SUITE_P(
    vrStatCollector, StatNames,
    testing::Values(
        Name{"Quotes", L"\"so called\"", "\"so called\""},
        Name{"Backslash", L"C:\\Media\\", "C:\\Media\\"},
        Name{"ControlCharacters", L"a\tb\nc\x01", "a\tb\nc\x01"},
        Name{
            "Umlaut", L"\u00dcbertragungen",
            "\xC3\x9C"
            "bertragungen"},
        Name{"Emoji", L"takes \U0001F3AC", "takes \xF0\x9F\x8E\xAC"},
        Name{"HalfASurrogatePair", L"a\xD83C", "a\xEF\xBF\xBD"},
        Name{"Null", std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
        Name{"Percent", L"100%s", "100%s"},
        Name{"Long", std::wstring(100000, L'x'), std::string(100000, 'x')}),
    [](auto const& test) { return test.param.name; });

TEST(vrStatCollector, AddingToAStatThatIsThereNeedsNoMemory) {
    stats().AddStat(50, 1u);
    test::AllocationCounter const counter;

    stats().AddStat(50, 1ul);
    stats().AddStat(50, std::uint64_t{1});
    stats().SetStat(50, 7);

    EXPECT_EQ(0u, counter.allocations());
    EXPECT_EQ(7u, stats().GetStat(50));
}

TEST(vrStatCollector, FailedAddOfANewStatComesOut) {
    stats().AddStat(50, 1u);

    auto const failed = test::failEachAllocation([] { stats().AddStat(51, 5u); });

    EXPECT_EQ(1u, failed);
    EXPECT_EQ(5u, stats().GetStat(51));
}

TEST(vrStatCollector, FailedNamingKeepsNameAndValue) {
    stats().SetStatName(52, L"short");
    stats().SetStat(52, 5);
    std::wstring const name = L"a name that needs the heap";

    auto const failed = test::failEachAllocation([&] { stats().SetStatName(52, &name); });

    EXPECT_EQ(1u, failed);
    EXPECT_EQ(5u, asDocument()["a name that needs the heap"].asUInt());
}

// What is done with the lock, as far as the platform sees it.
class LockCalls {
  public:
    LockCalls()
        : m_enter(
              "EnterCriticalSection",
              [this](auto* section) {
                  ++m_depth;
                  m_enter.original()(section);
              }),
          m_leave("LeaveCriticalSection", [this](auto* section) {
              --m_depth;
              m_leave.original()(section);
          }) {}

    int depth() const { return m_depth; }

    unsigned entries() const { return m_enter.calls(); }

  private:
    int m_depth = 0;
    test::ImportHook<decltype(EnterCriticalSection)> m_enter;
    test::ImportHook<decltype(LeaveCriticalSection)> m_leave;
};

TEST(vrStatCollector, EveryOperationIsUnderTheLockAndLeavesIt) {
    stats().SetStatName(53, L"locked");
    LockCalls const calls;

    stats().SetStatName(53, L"locked");
    EXPECT_EQ(1u, calls.entries());
    stats().AddStat(53, 1ul);
    EXPECT_EQ(2u, calls.entries());
    stats().AddStat(53, std::uint64_t{1});
    EXPECT_EQ(3u, calls.entries());
    stats().SetStat(53, 1);
    EXPECT_EQ(4u, calls.entries());
    stats().GetStat(53);
    EXPECT_EQ(5u, calls.entries());
    EXPECT_EQ(0, calls.depth());
}

TEST(vrStatCollector, JsonIsMadeUnderTheLockToItsLastStep) {
    std::vector<int> depths;
    stats();
    LockCalls const calls;
    test::ImportHook<decltype(MultiByteToWideChar)> const hook(
        "MultiByteToWideChar", [&](UINT page, auto... others) {
            if (page == CP_UTF8)
                depths.push_back(calls.depth());
            return hook.original()(page, others...);
        });

    stats().asJson();

    EXPECT_THAT(depths, ElementsAre(1));
    EXPECT_EQ(0, calls.depth());
}

TEST(vrStatCollector, FailureLeavesTheLock) {
    stats();
    LockCalls const calls;
    test::AllocationCounter counter;
    counter.failAt(1);

    EXPECT_THROW(stats().AddStat(54, 1u), std::bad_alloc);

    EXPECT_EQ(1u, calls.entries());
    EXPECT_EQ(0, calls.depth());
}

TEST(vrStatCollector, FailedJsonLeavesTheLockAndTheTable) {
    stats().SetStatName(55, L"a name that needs the heap in bytes too");
    LockCalls const calls;
    test::AllocationCounter counter;
    counter.failAt(1);

    EXPECT_THROW(stats().asJson(), std::bad_alloc);

    EXPECT_EQ(0, calls.depth());
    EXPECT_TRUE(asDocument().isMember("a name that needs the heap in bytes too"));
}

TEST(vrStatCollector, JsonIsWholeOrAFailure) {
    auto const whole = stats().asJson();
    test::AllocationCounter counter;
    unsigned failures = 0;

    for (unsigned number = 1, made = number; made >= number; ++number) {
        counter.reset();
        counter.failAt(number);
        try {
            EXPECT_EQ(whole, stats().asJson()) << "allocation " << number;
        } catch (std::bad_alloc const&) {
            ++failures;
        } catch (Json::RuntimeError const&) {
            ++failures;
        }
        made = counter.allocations();
        counter.failNone();
    }

    EXPECT_LT(20u, failures);
}
