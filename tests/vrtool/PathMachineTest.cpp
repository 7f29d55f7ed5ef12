// What the tool finds out of a path's machine, over a network that answers as each test wants.

#include "tools/vrtool/PathMachine.h"

#include "foundation/Platform.h"
#include "tests/support/AbsentKey.h"
#include "tests/support/ImportHook.h"
#include "tests/support/WideText.h"
#include "vrUtils/Storage/ShareConnection.h"

#include <winsock2.h>

#include <lm.h>
#include <winnetwk.h>

#include <gtest/gtest.h>

#include <array>

namespace {

// A host of two addresses, whatever its name is.
class TwoAddresses {
  public:
    TwoAddresses() {
        m_host.h_addrtype = AF_INET;
        m_host.h_length = sizeof(in_addr);
        m_host.h_addr_list = m_addresses.data();
    }

  private:
    char m_first[4]{10, 0, 0, 1};
    char m_second[4]{10, 0, 0, 2};
    std::array<char*, 3> m_addresses{m_first, m_second, nullptr};
    hostent m_host{};
    test::ImportHook<decltype(gethostbyname)> m_hook{
        "gethostbyname", [this](char const*) { return &m_host; }};
};

Json::Value addressesAt(std::wstring const& text) {
    return addressesOf(vr::Path(text, vr::Path::eDetect));
}

// The share that the library asks the platform to connect to.
std::string shareAskedFor(std::wstring const& path) {
    std::wstring share;
    test::ImportHook<decltype(WNetAddConnection2W)> const connects(
        "WNetAddConnection2W", [&](NETRESOURCEW* resource, auto...) -> DWORD {
            share = resource->lpRemoteName;
            return NO_ERROR;
        });
    vrUtils::Storage::ConnectAsUser(path, nullptr, nullptr);
    return test::utf8(share);
}

// Whoever asks for a local path leaves the key of the drive mappings behind.
class VrtoolPathMachine : public testing::Test {
  private:
    test::AbsentKey const m_product{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
};

} // namespace

TEST_F(VrtoolPathMachine, HasEveryAddressOfItsHost) {
    TwoAddresses const network;

    auto const addresses = addressesAt(LR"(\\media01:8080\share\a.mxf)");

    ASSERT_EQ(2u, addresses.size());
    EXPECT_EQ("10.0.0.1", addresses[0].asString());
    EXPECT_EQ("10.0.0.2", addresses[1].asString());
}

TEST_F(VrtoolPathMachine, IsThisOneWithoutAHost) {
    TwoAddresses const network;

    EXPECT_EQ(2u, addressesAt(L"C:\\a").size());
    EXPECT_EQ(2u, addressesAt(L"a\\b").size());
}

TEST_F(VrtoolPathMachine, HasNoAddressIfItsHostIsNotKnown) {
    EXPECT_EQ(Json::Value(Json::arrayValue), addressesAt(LR"(\\media01.invalid\share\a.mxf)"));
}

TEST_F(VrtoolPathMachine, HasTheNameOfItsHostWithoutBackslashesAndPort) {
    EXPECT_EQ("Media01", hostOf(vr::Path::file(LR"(\\Media01:8080\share\a.mxf)")).asString());
    EXPECT_TRUE(hostOf(vr::Path::file(L"C:\\a")).isNull());
}

struct SharePath {
    char const* name;
    wchar_t const* path;
};

void PrintTo(SharePath const& path, std::ostream* stream) { *stream << path.name; }

class VrtoolSharePaths : public testing::TestWithParam<SharePath> {};

TEST_P(VrtoolSharePaths, LeadToTheShareThatAConnectionAsksFor) {
    auto const asked = shareAskedFor(GetParam().path);

    EXPECT_EQ(asked, connectionShareOf(GetParam().path).asString());
    EXPECT_NE("", asked);
}

INSTANTIATE_TEST_SUITE_P(
    Vrtool, VrtoolSharePaths,
    testing::Values(
        SharePath{"DeepFile", LR"(\\media01\share\a\b.mov)"},
        SharePath{"Share", LR"(\\media01\share\)"},
        SharePath{"ShareWithoutBackslash", LR"(\\media01\share)"},
        SharePath{"Port", LR"(\\Media01:8080\Share\a)"}, SharePath{"Host", LR"(\\media01\)"},
        SharePath{"Slashes", L"//media01/share/a"}),
    [](auto const& test) { return test.param.name; });

TEST(VrtoolConnectionShare, IsThatOfThePath) {
    EXPECT_EQ(R"(\\media01\share)", connectionShareOf(LR"(\\media01\share\a\b.mov)").asString());
}

// It is a file's name.
TEST(VrtoolConnectionShare, IsNoneOfADottedHostThatNoBackslashCloses) {
    EXPECT_TRUE(connectionShareOf(LR"(\\10.0.0.1)").isNull());
    EXPECT_EQ(R"(\\10.0.0.1\)", connectionShareOf(LR"(\\10.0.0.1\)").asString());
}

TEST(VrtoolConnectionShare, IsNoneWithoutAHost) {
    EXPECT_TRUE(connectionShareOf(L"C:\\share\\a.mov").isNull());
    EXPECT_TRUE(connectionShareOf(L"share\\a.mov").isNull());
    EXPECT_TRUE(connectionShareOf({}).isNull());
}

TEST(VrtoolWhereabouts, HaveTheLocalPathOfAShareOfThisMachine) {
    std::wstring folder = L"D:\\Media";
    SHARE_INFO_2 share{};
    share.shi2_path = folder.data();
    test::ImportHook<decltype(NetShareGetInfo)> const asks(
        "NetShareGetInfo", [&](auto, auto, auto, BYTE** information) -> NET_API_STATUS {
            *information = reinterpret_cast<BYTE*>(&share);
            return NERR_Success;
        });
    test::ImportHook<decltype(NetApiBufferFree)> const frees(
        "NetApiBufferFree", [](void*) -> NET_API_STATUS { return NERR_Success; });
    TwoAddresses const network;

    auto const facts = whereaboutsOf(LR"(\\localhost\known\Day 1\a.mxf)");

    EXPECT_EQ(
        R"(WHAT             VALUE
path             \\localhost\known\Day 1\a.mxf
host             localhost
addresses        10.0.0.1, 10.0.0.2
thisMachine      yes
localPath        D:\Media\Day 1\a.mxf
resolution       local path
connectionShare  \\localhost\known
)",
        tableOf(facts, {}));
}
