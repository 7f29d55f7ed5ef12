#include "vrUtils/ServerRecords.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

// The records have no behaviour; what counts is that the server's modules find each member where
// they put it.

namespace {

template <typename Record, typename Member>
std::ptrdiff_t offsetIn(Record const& record, Member const& member) {
    return reinterpret_cast<char const*>(&member) - reinterpret_cast<char const*>(&record);
}

} // namespace

template <typename Enumeration>
class ServerEnumeration : public testing::Test {};

using ServerEnumerations = testing::Types<EFrameRate, EServerType, EArchiveSource, vrTrackType>;
TYPED_TEST_SUITE(ServerEnumeration, ServerEnumerations, );

TYPED_TEST(ServerEnumeration, IsASigned32BitNumber) {
    EXPECT_TRUE((std::is_same_v<std::int32_t, std::underlying_type_t<TypeParam>>));
    EXPECT_TRUE((std::is_convertible_v<TypeParam, std::int32_t>));
}

TYPED_TEST(ServerEnumeration, TakesInAnyValue) {
    for (std::int32_t const value : {99, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(value, static_cast<std::int32_t>(static_cast<TypeParam>(value)));
}

TYPED_TEST(ServerEnumeration, IsZeroByDefault) { EXPECT_EQ(0, TypeParam()); }

TEST(ServerRecords, FrameRatesHaveTheirValues) {
    EXPECT_EQ(0, eFrameRateUnknown);
    EXPECT_EQ(1, eFrameRate25);
    EXPECT_EQ(2, eFrameRate30);
    EXPECT_EQ(3, eFrameRate2997Drop);
    EXPECT_EQ(4, eFrameRate24);
    EXPECT_EQ(5, eFrameRate2398);
    EXPECT_EQ(6, eFrameRate50);
    EXPECT_EQ(7, eFrameRate60);
    EXPECT_EQ(8, eFrameRate5994Drop);
}

TEST(ServerRecords, TrackTypesHaveTheirValues) {
    EXPECT_EQ(0, eTrackUndefined);
    EXPECT_EQ(1, eTrackMaster);
    EXPECT_EQ(2, eTrackTimecode);
    EXPECT_EQ(3, eTrackVideo);
    EXPECT_EQ(4, eTrackAudio);
    EXPECT_EQ(5, eTrackData);
    EXPECT_EQ(6, eTrackSegment);
    EXPECT_EQ(7, eTrackComment);
}

TEST(ServerRecords, ServerTypesAndArchiveSourcesHaveTheirValues) {
    EXPECT_EQ(0, eServerUnknown);
    EXPECT_EQ(22, eServerCombiningArchive);
    EXPECT_EQ(0, eArchiveNone);
    EXPECT_EQ(1, eArchiveFirst);
    EXPECT_EQ(2, eArchiveSecond);
}

TEST(ServerRecords, MobIdIsSixWords) {
    EXPECT_TRUE(std::is_standard_layout_v<MyMobID>);
    EXPECT_EQ(24u, sizeof(MyMobID));
    EXPECT_EQ(0u, offsetof(MyMobID, tag));
    EXPECT_EQ(4u, offsetof(MyMobID, unread));
    EXPECT_EQ(16u, offsetof(MyMobID, duration));
    EXPECT_EQ(20u, offsetof(MyMobID, baseTimecode));
}

TEST(ServerRecords, MobIdIsZeroByDefault) {
    MyMobID const mob;

    EXPECT_EQ(0u, mob.tag);
    for (auto const word : mob.unread)
        EXPECT_EQ(0u, word);
    EXPECT_EQ(0u, mob.duration);
    EXPECT_EQ(0u, mob.baseTimecode);
}

TEST(ServerRecords, ValidTagIsTheLettersMobb) {
    EXPECT_EQ(('m' << 24 | 'o' << 16 | 'b' << 8 | 'b'), MyMobID::validTag);
}

TEST(ServerRecords, MobListIsThreePointers) {
    EXPECT_TRUE(std::is_standard_layout_v<MobList>);
    EXPECT_EQ(3 * sizeof(void*), sizeof(MobList));
    EXPECT_EQ(0u, offsetof(MobList, first));
    EXPECT_EQ(sizeof(void*), offsetof(MobList, unread));
    EXPECT_EQ(2 * sizeof(void*), offsetof(MobList, current));
}

TEST(ServerRecords, MobListNodeIsTwoPointers) {
    EXPECT_TRUE(std::is_standard_layout_v<MobListNode>);
    EXPECT_EQ(2 * sizeof(void*), sizeof(MobListNode));
    EXPECT_EQ(0u, offsetof(MobListNode, mob));
    EXPECT_EQ(sizeof(void*), offsetof(MobListNode, next));
}

TEST(ServerRecords, PointersAreNullByDefault) {
    MobList const list;
    MobListNode const node;
    vrAssetItem const item;

    EXPECT_EQ(nullptr, list.first);
    EXPECT_EQ(nullptr, list.unread);
    EXPECT_EQ(nullptr, list.current);
    EXPECT_EQ(nullptr, node.mob);
    EXPECT_EQ(nullptr, node.next);
    EXPECT_EQ(nullptr, item.mobs);
}

TEST(ServerRecords, CopiesOfAnItemShareTheList) {
    vrAssetItem item;
    item.mobs.reset(new MobList);

    auto const copy = item;

    EXPECT_EQ(item.mobs, copy.mobs);
    EXPECT_EQ(2, item.mobs.use_count());
}

TEST(ServerRecords, ServerMembersLieInTheirOrder) {
    SrvrParam const server;

    EXPECT_EQ(0, offsetIn(server, server.host));
    EXPECT_LT(offsetIn(server, server.host), offsetIn(server, server.type));
    EXPECT_LT(offsetIn(server, server.type), offsetIn(server, server.userName));
    EXPECT_LT(offsetIn(server, server.userName), offsetIn(server, server.password));
    EXPECT_LT(offsetIn(server, server.password), offsetIn(server, server.folder));
}

TEST(ServerRecords, TransferMembersLieInTheirOrder) {
    TransferParams const transfer;
    SrvrParam const& target = transfer;

    EXPECT_EQ(0, offsetIn(transfer, target));
    EXPECT_LT(offsetIn(transfer, transfer.folder), offsetIn(transfer, transfer.relativeRoot));
    EXPECT_LT(
        offsetIn(transfer, transfer.relativeRoot), offsetIn(transfer, transfer.metadataFolder));
    EXPECT_LT(offsetIn(transfer, transfer.metadataFolder), offsetIn(transfer, transfer.fileName));
    EXPECT_LT(offsetIn(transfer, transfer.fileName), offsetIn(transfer, transfer.files));
    EXPECT_LT(offsetIn(transfer, transfer.files), offsetIn(transfer, transfer.sourceName));
}

TEST(ServerRecords, TextArraysHold260Characters) {
    EXPECT_EQ(260u, std::extent_v<decltype(SrvrParam::folder)>);
    EXPECT_EQ(260u, std::extent_v<decltype(TransferParams::relativeRoot)>);
    EXPECT_EQ(260u, std::extent_v<decltype(TransferParams::metadataFolder)>);
    EXPECT_EQ(260u, std::extent_v<decltype(TransferParams::fileName)>);
    EXPECT_EQ(260u, std::extent_v<decltype(TransferParams::sourceName)>);
}

TEST(ServerRecords, TransferIsEmptyByDefault) {
    TransferParams const transfer;

    EXPECT_TRUE(transfer.host.empty() && transfer.userName.empty() && transfer.password.empty());
    EXPECT_EQ(0u, transfer.type);
    EXPECT_TRUE(transfer.files.empty());
    for (auto const* text :
         {&transfer.folder, &transfer.relativeRoot, &transfer.metadataFolder, &transfer.fileName,
          &transfer.sourceName})
        for (auto const character : *text)
            ASSERT_EQ(L'\0', character);
}

TEST(ServerRecords, TransferFileGivesNameAndNumber) {
    TransferFile const file(vr::Path::file(L"C:/Media/clip.mxf"), 7);

    EXPECT_TRUE(vr::Path::file(L"C:\\Media\\clip.mxf") == file.Name());
    EXPECT_EQ(7u, file.Number());
}

TEST(ServerRecords, TransferFilesKeepTheirNamesAsEntered) {
    // Relative as entered, absolute in its normal form.
    std::deque<TransferFile> files;
    files.emplace_back(vr::Path::file(L"C:clip.mxf"), 1);

    auto const copy = files;

    EXPECT_TRUE(copy.front().Name().isRelative());
    EXPECT_EQ(1u, copy.front().Number());
}
