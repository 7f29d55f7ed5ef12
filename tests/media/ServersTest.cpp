#include "vrUtils/Servers.h"

#include <gtest/gtest.h>

#include <map>

using vrUtils::Servers::getArchiveSupport;
using vrUtils::Servers::isCombiningArchive;

namespace {

std::int32_t archiveOf(std::int32_t type) {
    return getArchiveSupport(static_cast<EServerType>(type));
}

bool isCombining(std::int32_t type) { return isCombiningArchive(static_cast<EServerType>(type)); }

} // namespace

TEST(Servers, KindsHaveTheirArchives) {
    std::map<std::int32_t, std::int32_t> const archives{
        {1, 1}, {2, 1}, {7, 1}, {8, 1}, {9, 1}, {12, 1}, {13, 2}, {17, 1}, {18, 1}, {19, 1}};

    for (std::int32_t type = -5; type <= 40; ++type) {
        auto const archive = archives.find(type);
        EXPECT_EQ(archive == archives.end() ? 0 : archive->second, archiveOf(type)) << type;
    }
}

// Their low bits are those of kinds that have one.
TEST(Servers, NumbersFarOffHaveNoArchive) {
    for (std::int32_t const type :
         {0x101, 0x10001, -255, INT32_MIN, INT32_MIN + 1, INT32_MIN + 13, INT32_MAX})
        EXPECT_EQ(0, archiveOf(type)) << type;
}

TEST(Servers, OnlyOneKindCombinesWithItsArchive) {
    for (std::int32_t type = -5; type <= 40; ++type)
        EXPECT_EQ(type == 22, isCombining(type)) << type;
    for (std::int32_t const type : {-22, 22 + 256, 22 + 0x10000, INT32_MIN + 22, INT32_MAX})
        EXPECT_FALSE(isCombining(type)) << type;
}

TEST(Servers, TheKindThatCombinesHasNoArchiveOfItsOwn) { EXPECT_EQ(0, archiveOf(22)); }
