// Names of files and keys come from outside, and reach the log as part of a format.

#include "foundation/Log.h"
#include "tests/support/Campaign.h"
#include "tests/support/ChildAction.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <array>

namespace {

std::wstring hostileName(test::Campaign& campaign) {
    static constexpr std::array pieces{L"%s",  L"%n",   L"%d",  L"%.500s", L"%I64x", L"%999999999d",
                                       L"%*s", L"%hs",  L"%ls", L"%%",     L"\\",    L".",
                                       L"a",   L"\xFC", L"%",   L"\xD800"};
    std::wstring name;
    for (auto count = campaign.below(40); count > 0; --count)
        name += pieces[campaign.below(pieces.size())];
    return name;
}

std::wstring lineFor(std::wstring const& name) { return L"Failed to create [" + name + L"]"; }

// With the log itself, which keeps its file open as long as the process lives.
test::ChildAction const logHostileNames(L"log hostile names", [](auto const&) {
    test::Campaign campaign(10000);
    while (campaign.nextRound())
        vrUtils::logComposed(vrUtils::LogLevel::warning, lineFor(hostileName(campaign)));
    vrUtils::logComposed(vrUtils::LogLevel::warning, L"all names are logged");
    return 0;
});

} // namespace

TEST(LogCampaign, HostileNamesReachTheLogAsFormats) {
    test::LogRecorder recorder;
    test::Campaign campaign(10000);
    while (campaign.nextRound()) {
        auto const line = lineFor(hostileName(campaign));
        recorder.clear();

        vrUtils::logComposed(vrUtils::LogLevel::warning, line);

        ASSERT_THAT(recorder.lines(), testing::ElementsAre(test::LoggedFormat(4, line)))
            << campaign;
    }
}

TEST(LogCampaign, ProcessSurvivesHostileNames) {
    test::ScratchFolder const folder;
    test::ChildStart start;
    // A child is not waited for longer than this, however long the campaign is to be.
    start.environment = {
        {L"VORRANELOG_FILE", folder.file(L"names.log")}, {L"VRUTILS_TORTURE_SECONDS", L"10"}};

    EXPECT_EQ(0u, logHostileNames.start({}, start)->exitCode());

    EXPECT_THAT(folder.read(L"names.log"), testing::EndsWith("all names are logged\r\n"));
}
