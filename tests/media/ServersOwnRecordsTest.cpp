// The library built with the server's own records in place of its stand-ins; this program compiles
// what reads them anew.

#include "tests/media/Transfers.h"
#include "vrUtils/AssetManagement.h"
#include "vrUtils/Assets.h"
#include "vrUtils/OverMidnightInPointAdjuster.h"
#include "vrUtils/Servers.h"
#include "vrUtils/Tracks.h"

#include <gtest/gtest.h>

static_assert(eFrameRate120 == 9, "the records are the server's own");

TEST(ServersOwnRecords, ServeTheWalkOverAnItem) {
    MyMobID mob;
    mob.duration = 2000;
    mob.baseTimecode = 90000;
    MobListNode last{&mob};
    MobListNode first{&mob, &last};
    vrAssetItem item;
    item.mobs.reset(new MobList{&first});

    EXPECT_EQ(&mob, vrUtils::Assets::getFirstMobID(item));
    EXPECT_EQ(&mob, vrUtils::Assets::getNextMobID(item));
    EXPECT_EQ(&last, item.mobs->current);
    EXPECT_EQ(2000u, vrUtils::Assets::getDuration(item));
    EXPECT_EQ(90000u, vrUtils::Assets::getBaseTC(item));
}

TEST(ServersOwnRecords, ServeTheMessageNames) {
    using namespace vrUtils::AssetManagement;
    auto transfer = test::transferOf(L"clip1.mxf");
    test::put(transfer.sourceName, std::wstring(400, L's'));

    EXPECT_EQ(LR"(\\server\share\Media\clip1.xml)", CreateMAMMsgFileName(&transfer, {}));
    transfer.type = 20;
    EXPECT_EQ(
        LR"(\\server\share\Media\)" + std::wstring(400, L's') + L".xml",
        CreateMetadataMsgFileName(&transfer, {}, {}));
    test::add(transfer, vr::Path::file(L"first.mxf"));
    EXPECT_EQ(LR"(\\server\share\Media\first.xml)", CreateMAMMsgFileName(&transfer, {}));
}

TEST(ServersOwnRecords, ServeTheTables) {
    EXPECT_EQ(2160500u, OverMidnightInPointAdjuster(2159000, 2000, 500, eFrameRate25).Adjust());
    EXPECT_EQ(500u, OverMidnightInPointAdjuster(2159000, 2000, 500, eFrameRate120).Adjust());
    EXPECT_EQ(eArchiveSecond, vrUtils::Servers::getArchiveSupport(eServerTape));
    EXPECT_STREQ(L"Comment", vrUtils::Tracks::typeName(eTrackComment));
    EXPECT_STREQ(L"Unknown", vrUtils::Tracks::typeName(eTrackCaptions));
}
