// A host that links this library alone reads its statistics back.

#include "vrUtils/vrStatCollector.h"

#include "tests/support/WideText.h"

#include <gtest/gtest.h>
#include <json/json.h>

// The reader of the older interface is what hosts use.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

TEST(Statistics, NamesComeBackUnharmed) {
    std::wstring const name = L"a \"quoted\" \u00dcbertrag \U0001F3AC";
    auto& stats = vrStatCollector::Singleton();
    stats.SetStatName(1, &name);
    stats.AddStat(1, std::uint64_t{5} << 32);

    Json::Value root;
    Json::Reader reader;
    ASSERT_TRUE(reader.parse(test::utf8(stats.asJson()), root));

    EXPECT_EQ(std::uint64_t{5} << 32, root[test::utf8(name)].asUInt64());
    EXPECT_EQ(0u, root["BytesRead"].asUInt());
    EXPECT_EQ(6u, root.size());
}
