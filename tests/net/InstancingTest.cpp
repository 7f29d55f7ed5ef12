#include "vrUtils/Instancing.h"

#include "FailsForPort.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ImportHook.h"

#include <optional>
#include <ostream>
#include <string>
#include <thread>

using namespace vrUtils::Instancing;

namespace {

// For its life the process is this instance.
class InstanceSetter {
  public:
    explicit InstanceSetter(std::uint32_t instance) : m_before(currentInstance()) {
        setInstance(instance);
    }

    InstanceSetter(InstanceSetter const&) = delete;
    InstanceSetter& operator=(InstanceSetter const&) = delete;

    ~InstanceSetter() { setInstance(m_before); }

  private:
    std::uint32_t m_before;
};

struct BasePort {
    std::uint32_t port;
    wchar_t const* service;

    friend void PrintTo(BasePort const& tested, std::ostream* stream) { *stream << tested.port; }
};

BasePort const basePorts[] = {
    {60772, L"vrObserver"},
    {60773, L"vrObserverCB"},
    {60774, L"vrTransfer"},
    {60775, L"vrTransferCB"},
    {60776, nullptr},
    {60777, L"vrDBServer"},
    {60778, L"vrMarshalSync"},
    {60779, L"vrCliSyncServer"},
    {60780, L"vrArchiveDriver"},
    {60781, L"vrArchiveDriverCB"},
    {60782, L"EricssonMAM HTTP server"},
    {60783, L"OstrelSync HTTP server"},
    {60784, L"OstrelControl HTTP server"},
    {60785, L"OstrelEngine HTTP server"},
    {60786, L"PFR Indexer"},
    {60787, nullptr},
};

class BasePortOf : public testing::TestWithParam<BasePort> {
  protected:
    // The description in an instance, or the failure where the port has no service.
    static void expectDescribed(std::uint32_t port, std::wstring const& service) {
        if (GetParam().service)
            EXPECT_EQ(
                L"port " + std::to_wstring(port) + L" (is " + service + L")",
                descriptionOfPort(port));
        else
            EXPECT_THAT(
                [port] { descriptionOfPort(port); },
                FailsForPort(
                    L"No description for port " + std::to_wstring(port) + L" (base port " +
                    std::to_wstring(GetParam().port) + L")"));
    }

    static std::wstring service() { return GetParam().service ? GetParam().service : L""; }
};

INSTANTIATE_TEST_SUITE_P(Block, BasePortOf, testing::ValuesIn(basePorts), [](auto const& tested) {
    return std::to_string(tested.param.port);
});

// A developer's debugger, or none, and how often it was stopped at.
class FakeDebugger {
  public:
    explicit FakeDebugger(bool isAttached)
        : m_inquiry("IsDebuggerPresent", [=]() -> BOOL { return isAttached; }),
          m_break("DebugBreak", [this] { m_allocations = m_counter.allocations(); }) {}

    unsigned breaks() const noexcept { return m_break.calls(); }

    // What the library had allocated when the debugger was stopped at last.
    std::optional<unsigned> allocationsBefore() const noexcept { return m_allocations; }

  private:
    test::AllocationCounter m_counter;
    std::optional<unsigned> m_allocations;
    test::ImportHook<BOOL()> m_inquiry;
    test::ImportHook<void()> m_break;
};

struct Failure {
    char const* name;
    void (*call)();
    wchar_t const* message;

    friend void PrintTo(Failure const& failure, std::ostream* stream) { *stream << failure.name; }
};

class WrongPort : public testing::TestWithParam<Failure> {};

INSTANTIATE_TEST_SUITE_P(
    , WrongPort,
    testing::Values(
        Failure{
            "BelowTheBlock", [] { instancePort(60771, 0); },
            L"Expected port >= 60772, given 60771"},
        Failure{
            "BelowTheBlockOfAnyInstance", [] { instancePort(60771, 1); },
            L"Expected port >= 60772, given 60771"},
        Failure{"Zero", [] { instancePort(0, 0); }, L"Expected port >= 60772, given 0"},
        Failure{
            "AboveTheBlock", [] { instancePort(60788, 0); },
            L"Expected port <= 60787, given 60788"},
        Failure{
            "AboveTheBlockOfAnyInstance", [] { instancePort(60788, 1); },
            L"Expected port <= 60787, given 60788"},
        Failure{
            "Last", [] { instancePort(0xFFFFFFFF, 3); },
            L"Expected port <= 60787, given 4294967295"},
        Failure{
            "BelowTheBlockOfTheCurrentInstance", [] { instancePort(80); },
            L"Expected port >= 60772, given 80"},
        Failure{
            "AboveTheBlockOfTheCurrentInstance", [] { instancePort(60788); },
            L"Expected port <= 60787, given 60788"},
        Failure{"OfNoInstance", [] { instanceFromPort(60771); }, L"Expected port >= 60772"},
        Failure{"ZeroOfNoInstance", [] { instanceFromPort(0); }, L"Expected port >= 60772"},
        Failure{"OfAHost", [] { instanceFromHost(L"host:80"); }, L"Expected port >= 60772"},
        Failure{"Missing", [] { instanceFromHost(L"host:"); }, L"Expected port >= 60772"},
        Failure{"OfLetters", [] { instanceFromHost(L"host:abc"); }, L"Expected port >= 60772"},
        Failure{
            "BehindTwoColons", [] { instanceFromHost(L"host::60790"); }, L"Expected port >= 60772"},
        Failure{
            "ForAHost", [] { instanceHost(L"host:80", 60771); },
            L"Expected port >= 60772, given 60771"},
        Failure{
            "ForAHostAbove", [] { instanceHost(L"", 60788); },
            L"Expected port <= 60787, given 60788"},
        Failure{
            "ChangedFrom", [] { changePortPreservingInstance(L"host:80", 60772); },
            L"Expected port >= 60772"},
        Failure{
            "ChangedFromBeforeChangedTo", [] { changePortPreservingInstance(L"host:80", 80); },
            L"Expected port >= 60772"},
        Failure{
            "ChangedTo", [] { changePortPreservingInstance(L"host", 80); },
            L"Expected port >= 60772, given 80"},
        Failure{
            "ChangedToAbove", [] { changePortPreservingInstance(L"host:60790", 60790); },
            L"Expected port <= 60787, given 60790"},
        Failure{"Undescribed", [] { descriptionOfPort(60771); }, L"Expected port >= 60772"},
        Failure{
            "OfNoService", [] { descriptionOfPort(60792); },
            L"No description for port 60792 (base port 60776)"}),
    [](auto const& tested) { return std::string(tested.param.name); });

} // namespace

TEST(CurrentInstance, IsThePlainSystemAtFirst) { EXPECT_EQ(0u, currentInstance()); }

TEST(CurrentInstance, MayBeAnyNumber) {
    InstanceSetter const setter(7);
    EXPECT_EQ(7u, currentInstance());

    setInstance(0xFFFFFFFF);

    EXPECT_EQ(0xFFFFFFFFu, currentInstance());
}

TEST(CurrentInstance, IsThatOfTheWholeProcess) {
    InstanceSetter const setter(1);

    std::thread([] { setInstance(2); }).join();

    EXPECT_EQ(2u, currentInstance());
    EXPECT_EQ(60804u, instancePort(60772));
}

TEST_P(BasePortOf, InstanceZeroIsThePortItself) {
    EXPECT_EQ(GetParam().port, instancePort(GetParam().port, 0));
}

TEST_P(BasePortOf, FurtherInstancesIsABlockHigherForEach) {
    EXPECT_EQ(GetParam().port + 16, instancePort(GetParam().port, 1));
    EXPECT_EQ(GetParam().port + 1600, instancePort(GetParam().port, 100));
}

TEST_P(BasePortOf, CurrentInstanceIsPlacedByIt) {
    EXPECT_EQ(GetParam().port, instancePort(GetParam().port));
    InstanceSetter const setter(3);

    EXPECT_EQ(GetParam().port + 48, instancePort(GetParam().port));
}

TEST_P(BasePortOf, AnyInstanceBelongsToIt) {
    EXPECT_EQ(0u, instanceFromPort(GetParam().port));
    EXPECT_EQ(1u, instanceFromPort(GetParam().port + 16));
    EXPECT_EQ(9u, instanceFromPort(GetParam().port + 144));
}

TEST_P(BasePortOf, InstanceZeroIsDescribedByItsService) {
    expectDescribed(GetParam().port, service());
}

TEST_P(BasePortOf, FurtherInstancesIsDescribedByInstanceAndService) {
    expectDescribed(GetParam().port + 16, L"instance 1 of " + service());
    expectDescribed(GetParam().port + 160, L"instance 10 of " + service());
}

TEST(InstancePort, IsNotKeptBelowTheLastPortOfTheTransport) {
    EXPECT_EQ(65540u, instancePort(60772, 298));
    EXPECT_EQ(1060772u, instancePort(60772, 62500));
}

TEST(InstancePort, Wraps) {
    EXPECT_EQ(60772u, instancePort(60772, 0x10000000));
    EXPECT_EQ(60756u, instancePort(60772, 0xFFFFFFFF));
    EXPECT_EQ(60787u, instancePort(60787, 0xF0000000));
}

TEST(InstanceFromPort, HasNoUpperBound) {
    EXPECT_EQ(297u, instanceFromPort(65535));
    EXPECT_EQ(298u, instanceFromPort(65540));
    EXPECT_EQ(268431657u, instanceFromPort(0xFFFFFFFF));
}

TEST(InstanceFromHost, IsZeroWithoutColon) {
    InstanceSetter const setter(5);

    EXPECT_EQ(0u, instanceFromHost(L"host"));
    EXPECT_EQ(0u, instanceFromHost(L""));
    EXPECT_EQ(0u, instanceFromHost(L"80"));
}

TEST(InstanceFromHost, IsThatOfThePort) {
    EXPECT_EQ(0u, instanceFromHost(L"host:60772"));
    EXPECT_EQ(1u, instanceFromHost(L"host:60790"));
    EXPECT_EQ(1u, instanceFromHost(L":60788"));
    EXPECT_EQ(1u, instanceFromHost(L"host: \t60790"));
    EXPECT_EQ(1u, instanceFromHost(L"host:60790/x"));
}

TEST(InstanceFromHost, ReadsNoFurtherThanTheSecondColon) {
    EXPECT_EQ(1u, instanceFromHost(L"host:60790:60999"));
}

TEST(InstanceFromHost, TakesANumberTooLargeForTheLargest) {
    EXPECT_EQ(268431657u, instanceFromHost(L"host:4294967296"));
    EXPECT_EQ(268431657u, instanceFromHost(L"host:-1"));
}

TEST(InstanceHost, IsTheBareHostInThePlainSystem) {
    EXPECT_EQ(L"host", instanceHost(L"host", 60772));
    EXPECT_EQ(L"host", instanceHost(L"host:60790", 60787));
    EXPECT_EQ(L"host", instanceHost(L"host:80", 60772));
    EXPECT_EQ(L"", instanceHost(L"", 60772));
}

TEST(InstanceHost, HasThePortOfAFurtherInstance) {
    InstanceSetter const setter(2);

    EXPECT_EQ(L"host:60804", instanceHost(L"host", 60772));
    EXPECT_EQ(L"host:60819", instanceHost(L"host:80", 60787));
    EXPECT_EQ(L"host:60804", instanceHost(L"host:abc:1", 60772));
    EXPECT_EQ(L":60804", instanceHost(L"", 60772));
}

TEST(InstanceHost, IsBareWhereTheSumWrapsToTheBasePort) {
    InstanceSetter const setter(0x10000000);

    EXPECT_EQ(L"host", instanceHost(L"host", 60772));
}

TEST(ChangedPort, IsWrittenInThePlainSystemToo) {
    EXPECT_EQ(L"host:60774", changePortPreservingInstance(L"host", 60774));
    EXPECT_EQ(L"host:60774", changePortPreservingInstance(L"host:60772", 60774));
    EXPECT_EQ(L":60774", changePortPreservingInstance(L"", 60774));
}

TEST(ChangedPort, IsOfTheSameInstance) {
    EXPECT_EQ(L"host:60788", changePortPreservingInstance(L"host:60790", 60772));
    EXPECT_EQ(L"host:60819", changePortPreservingInstance(L"host:60804:1", 60787));
}

TEST(ChangedPort, HasNothingToDoWithTheCurrentInstance) {
    InstanceSetter const setter(2);

    EXPECT_EQ(L"host:60774", changePortPreservingInstance(L"host", 60774));
    EXPECT_EQ(L"host:60788", changePortPreservingInstance(L"host:60790", 60772));
}

TEST(InstanceRegPath, IsWhatIsGivenInEveryInstance) {
    EXPECT_EQ(L"Software\\Ostrel", instanceRegPath(L"Software\\Ostrel"));
    EXPECT_EQ(L"", instanceRegPath(L""));
    InstanceSetter const setter(2);

    EXPECT_EQ(L"Software\\Ostrel", instanceRegPath(L"Software\\Ostrel"));
}

TEST(InstanceDbFilePath, IsThePathItselfInThePlainSystem) {
    EXPECT_EQ(L"C:\\db\\main.fdb", instanceDbFilePath(vr::Path::file(L"C:\\db\\main.fdb")));
    EXPECT_EQ(L"C:\\db\\", instanceDbFilePath(vr::Path::folder(L"C:/db/")));
    EXPECT_EQ(L"main.fdb", instanceDbFilePath(vr::Path::file(L"main.fdb")));
    EXPECT_EQ(L"", instanceDbFilePath(vr::Path()));
}

TEST(InstanceDbFilePath, IsInASubfolderOfAFurtherInstance) {
    InstanceSetter const setter(2);

    EXPECT_EQ(
        L"C:\\db\\Instance2\\main.fdb", instanceDbFilePath(vr::Path::file(L"C:\\db\\main.fdb")));
    EXPECT_EQ(
        L"\\\\srv\\share\\db\\Instance2\\main.a.fdb",
        instanceDbFilePath(vr::Path::file(L"\\\\srv\\share\\db\\main.a.fdb")));
    EXPECT_EQ(L"C:\\Instance2\\main", instanceDbFilePath(vr::Path::file(L"C:\\main")));
    EXPECT_EQ(L"C:\\db\\Instance2\\main", instanceDbFilePath(vr::Path::file(L"C:/db/main")));
}

TEST(InstanceDbFilePath, OfARelativePathBeginsWithTheSubfolder) {
    InstanceSetter const setter(12);

    EXPECT_EQ(L"Instance12\\main.fdb", instanceDbFilePath(vr::Path::file(L"main.fdb")));
    EXPECT_EQ(L"db\\Instance12\\main.fdb", instanceDbFilePath(vr::Path::file(L"db\\main.fdb")));
}

TEST(InstanceDbFilePath, OfAFolderHasNoName) {
    InstanceSetter const setter(0xFFFFFFFF);

    EXPECT_EQ(L"C:\\db\\Instance4294967295\\", instanceDbFilePath(vr::Path::folder(L"C:\\db\\")));
    EXPECT_EQ(L"Instance4294967295\\", instanceDbFilePath(vr::Path()));
}

TEST(InstancedSystemName, IsEmptyInThePlainSystem) { EXPECT_EQ(L"", makeInstancedSystemName()); }

TEST(InstancedSystemName, HasTheNumberOfAFurtherInstance) {
    InstanceSetter const setter(1);
    EXPECT_EQ(L"System 1", makeInstancedSystemName());

    setInstance(0xFFFFFFFF);

    EXPECT_EQ(L"System 4294967295", makeInstancedSystemName());
}

TEST(DescriptionOfPort, HasNothingToDoWithTheCurrentInstance) {
    InstanceSetter const setter(2);

    EXPECT_EQ(L"port 60772 (is vrObserver)", descriptionOfPort(60772));
    EXPECT_EQ(L"port 60790 (is instance 1 of vrTransfer)", descriptionOfPort(60790));
}

TEST_P(WrongPort, Fails) { EXPECT_THAT(GetParam().call, FailsForPort(GetParam().message)); }

TEST_P(WrongPort, LeavesTheCurrentInstance) {
    InstanceSetter const setter(4);

    EXPECT_ANY_THROW(GetParam().call());

    EXPECT_EQ(4u, currentInstance());
}

TEST_P(WrongPort, StopsADebuggerThatIsAttached) {
    FakeDebugger const debugger(true);

    EXPECT_THAT(GetParam().call, FailsForPort(GetParam().message));

    EXPECT_EQ(1u, debugger.breaks());
}

TEST_P(WrongPort, StopsNobodyElse) {
    FakeDebugger const debugger(false);

    EXPECT_THAT(GetParam().call, FailsForPort(GetParam().message));

    EXPECT_EQ(0u, debugger.breaks());
}

TEST(WrongPortBreak, ComesBeforeTheFailureIsMade) {
    FakeDebugger const debugger(true);

    EXPECT_ANY_THROW(descriptionOfPort(60776));

    EXPECT_EQ(0u, debugger.allocationsBefore());
}
