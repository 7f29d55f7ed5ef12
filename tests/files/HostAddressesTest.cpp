#include "files/HostAddresses.h"

#include "tests/files/FakeNetwork.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Files::getComputerName;
using vrUtils::Files::getHostAddresses;

namespace {

class HostAddresses : public testing::Test {
  protected:
    test::ThisComputer const m_computer{L"HOST1"};
    test::NameService const m_names{
        {"host1", {"10.0.0.1", "10.0.0.2"}},
        {"server", {"192.168.7.30", "192.168.7.4", "255.255.255.255", "0.0.0.0"}},
        {"twice", {"10.0.0.9", "10.0.0.9"}},
        {"none", {}},
        {"m\xFCnchen", {"10.0.0.7"}},
        {"_", {"10.0.0.8"}},
        {"", {"172.16.0.1"}}};
};

} // namespace

TEST_F(HostAddresses, AreDottedTextsInTheOrderOfTheService) {
    EXPECT_THAT(
        getHostAddresses(L"server"),
        ElementsAre(L"192.168.7.30", L"192.168.7.4", L"255.255.255.255", L"0.0.0.0"));
}

TEST_F(HostAddresses, AreNotMadeUnique) {
    EXPECT_THAT(getHostAddresses(L"twice"), ElementsAre(L"10.0.0.9", L"10.0.0.9"));
}

TEST_F(HostAddresses, SlashesAroundTheNameDoNotCount) {
    for (auto const* const name : {L"\\\\server\\", L"//server/", L"\\server", L"server\\/\\"})
        EXPECT_EQ(4u, getHostAddresses(name).size()) << name;

    EXPECT_THAT(m_names.asked(), ElementsAre("server", "server", "server", "server"));
}

TEST_F(HostAddresses, NameIsAskedForInLowerCase) {
    EXPECT_EQ(4u, getHostAddresses(L"\\\\SerVer\\").size());

    EXPECT_THAT(m_names.asked(), ElementsAre("server"));
}

TEST_F(HostAddresses, NameIsAskedForInTheCodePageOfTheSystem) {
    EXPECT_THAT(getHostAddresses(L"m\u00FCnchen"), ElementsAre(L"10.0.0.7"));
    EXPECT_THAT(getHostAddresses(L"\u4E2D"), ElementsAre(L"10.0.0.8"));
}

TEST_F(HostAddresses, OfAnUnknownHostAreNone) {
    EXPECT_THAT(getHostAddresses(L"nosuchhost"), IsEmpty());
}

TEST_F(HostAddresses, OfAHostWithoutAddressesAreNone) {
    EXPECT_THAT(getHostAddresses(L"none"), IsEmpty());
}

TEST_F(HostAddresses, ServiceIsAskedOnce) {
    getHostAddresses(L"nosuchhost");

    EXPECT_THAT(m_names.asked(), ElementsAre("nosuchhost"));
    EXPECT_EQ(0u, m_computer.calls());
}

TEST_F(HostAddresses, OfTheEmptyNameAreThoseOfTheComputersName) {
    for (auto const* const name : {L"", L"\\\\", L"/"})
        EXPECT_THAT(getHostAddresses(name), ElementsAre(L"10.0.0.1", L"10.0.0.2")) << name;

    EXPECT_THAT(m_names.asked(), ElementsAre("host1", "host1", "host1"));
}

TEST_F(HostAddresses, OfTheEmptyNameAreThePlatformsOwnIfTheComputersNameHasNone) {
    test::ThisComputer const computer(L"UNLISTED");

    EXPECT_THAT(getHostAddresses({}), ElementsAre(L"172.16.0.1"));
    EXPECT_THAT(m_names.asked(), ElementsAre("unlisted", ""));
}

TEST_F(HostAddresses, OfTheEmptyNameAreThePlatformsOwnIfTheComputerHasNoName) {
    test::ThisComputer const computer(L"SIXTEEN-LETTERS-");

    EXPECT_THAT(getHostAddresses({}), ElementsAre(L"172.16.0.1"));
    EXPECT_THAT(m_names.asked(), ElementsAre(""));
}

TEST_F(HostAddresses, OfTheEmptyNameMayBeNone) {
    test::ThisComputer const computer(L"UNLISTED");
    test::NameService const nobody{};

    EXPECT_THAT(getHostAddresses({}), IsEmpty());
    EXPECT_THAT(nobody.asked(), ElementsAre("unlisted", ""));
}

TEST(OwnName, IsToldAsThePlatformWritesIt) {
    test::ThisComputer const computer(L"Host1");

    EXPECT_EQ(L"Host1", getComputerName());
    EXPECT_TRUE(computer.wasAskedCleanly());
    EXPECT_EQ(1u, computer.calls());
}

TEST(OwnName, OfFifteenCharactersIsTold) {
    test::ThisComputer const computer(L"FIFTEEN-LETTERS");

    EXPECT_EQ(L"FIFTEEN-LETTERS", getComputerName());
}

TEST(OwnName, OfSixteenCharactersIsEmpty) {
    test::ThisComputer const computer(L"SIXTEEN-LETTERS-");

    EXPECT_EQ(L"", getComputerName());
}

TEST(OwnName, IsEmptyIfTheCallFails) {
    test::FailingImport<decltype(GetComputerNameW)> const fails(
        "GetComputerNameW", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_EQ(L"", getComputerName());
}

TEST(OwnName, IsWhatTheBufferHoldsWhateverTheCallSays) {
    test::ImportHook const hook("GetComputerNameW", [](wchar_t* buffer, DWORD*) -> BOOL {
        buffer[0] = L'A';
        return FALSE;
    });

    EXPECT_EQ(L"A", getComputerName());
}
