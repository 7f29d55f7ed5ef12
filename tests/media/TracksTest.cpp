#include "vrUtils/Tracks.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

std::wstring nameOf(std::int32_t type) {
    return vrUtils::Tracks::typeName(static_cast<vrTrackType>(type));
}

} // namespace

TEST(Tracks, KindsHaveTheirNames) {
    std::map<std::int32_t, std::wstring> const names{
        {0, L"Undefined"}, {1, L"Master"}, {2, L"Timecode"}, {3, L"Video"},
        {4, L"Audio"},     {5, L"Data"},   {6, L"Segment"},  {7, L"Comment"}};

    for (auto const& [type, name] : names)
        EXPECT_EQ(name, nameOf(type)) << type;
}

TEST(Tracks, AnyOtherNumberIsUnknown) {
    for (std::int32_t const type : {8, 9, 256, 0x10000, -1, -8, INT32_MAX, INT32_MIN})
        EXPECT_EQ(L"Unknown", nameOf(type)) << type;
}

TEST(Tracks, NamesStayWhereTheyAre) {
    for (auto const type : {eTrackVideo, static_cast<vrTrackType>(99)})
        EXPECT_EQ(vrUtils::Tracks::typeName(type), vrUtils::Tracks::typeName(type));
}
