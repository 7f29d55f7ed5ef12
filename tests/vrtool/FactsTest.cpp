// The rows of one subject, as table and as object.

#include "tools/vrtool/Facts.h"

#include <gtest/gtest.h>

namespace {

Json::Value texts(std::vector<char const*> const& all) {
    Json::Value array(Json::arrayValue);
    for (auto const* const text : all)
        array.append(text);
    return array;
}

} // namespace

TEST(VrtoolFacts, ShowEveryKindOfValue) {
    Facts const facts{
        {"text", "a b"},
        {"number", 4294967295u},
        {"yes", true},
        {"no", false},
        {"list", texts({"a", "b"})},
        {"emptyText", ""},
        {"emptyList", texts({})},
        {"nothing", {}},
    };

    EXPECT_EQ(
        "WHAT       VALUE\n"
        "text       a b\n"
        "number     4294967295\n"
        "yes        yes\n"
        "no         no\n"
        "list       a, b\n"
        "emptyText\n"
        "emptyList  -\n"
        "nothing    -\n",
        tableOf(facts, {}));
}

TEST(VrtoolFacts, ShowFailuresInAColumnIfThereAreAny) {
    Facts const facts{{"a", 1}, {"b", {}, L"no b"}};

    EXPECT_TRUE(hasFailure(facts));
    EXPECT_EQ("WHAT  VALUE  FAILURE\na     1\nb     -      no b\n", tableOf(facts, {}));
}

TEST(VrtoolFacts, AreMembersOfAnObject) {
    Facts const facts{{"a", 1}, {"b", {}}};

    auto const object = objectOf(facts);

    EXPECT_FALSE(hasFailure(facts));
    EXPECT_EQ(2u, object.size());
    EXPECT_EQ(1, object["a"].asInt());
    EXPECT_TRUE(object.isMember("b") && object["b"].isNull());
}

TEST(VrtoolFacts, HaveTheirFailuresBesideThem) {
    auto const object = objectWithFailures({{"a", 1}, {"b", {}, L"no \u00FC"}});

    EXPECT_EQ(3u, object.size());
    EXPECT_EQ(1, object["a"].asInt());
    EXPECT_TRUE(object.isMember("b") && object["b"].isNull());
    EXPECT_EQ(1u, object["failures"].size());
    EXPECT_EQ("no \xC3\xBC", object["failures"]["b"].asString());
    EXPECT_EQ(Json::Value(Json::objectValue), objectWithFailures({{"a", 1}})["failures"]);
}

TEST(VrtoolFacts, KeepTheTextOfAFailure) {
    auto const fact =
        findFact("a", []() -> Json::Value { throw vrException("Test", 1, L"no a", 1u); });

    EXPECT_STREQ("a", fact.name);
    EXPECT_TRUE(fact.value.isNull());
    EXPECT_EQ(L"no a", fact.failure);
}
