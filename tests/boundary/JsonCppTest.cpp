// A host that links this library alone has the whole JsonCpp interface.

#include <json/json.h>

#include <gtest/gtest.h>

#include <sstream>

// The classes of the older interface are part of what is passed on.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

// Quotes, an umlaut and an emoji in UTF-8.
std::string const text = "a \"quoted\" \xC3\xBC \xF0\x9F\x8E\xAC";

Json::Value document() {
    Json::Value root;
    root["name"] = text;
    root["counts"].append(1);
    root["counts"].append(2.5);
    root["none"] = Json::Value::null;
    return root;
}

Json::Value parsed(std::string const& json) {
    Json::Value root;
    Json::Reader reader(Json::Features::all());
    EXPECT_TRUE(reader.parse(json, root)) << reader.getFormattedErrorMessages();
    return root;
}

} // namespace

TEST(JsonCpp, FastWriterAndReaderRoundTrip) {
    EXPECT_EQ(document(), parsed(Json::FastWriter().write(document())));
}

TEST(JsonCpp, StyledWriterAndReaderRoundTrip) {
    EXPECT_EQ(document(), parsed(Json::StyledWriter().write(document())));
    EXPECT_EQ(document(), parsed(document().toStyledString()));
}

TEST(JsonCpp, StyledStreamWriterWritesToTheHostsStream) {
    std::ostringstream stream;

    Json::StyledStreamWriter("  ").write(stream, document());

    EXPECT_EQ(document(), parsed(stream.str()));
}

TEST(JsonCpp, StrictFeaturesRefuseComments) {
    Json::Value root;
    Json::Reader reader(Json::Features::strictMode());

    EXPECT_FALSE(reader.parse("// comment\n{}", root));
    EXPECT_FALSE(reader.good());
}

TEST(JsonCpp, StaticStringKeepsTheHostsText) {
    static char const constant[] = "a constant";

    Json::Value const value{Json::StaticString(constant)};

    EXPECT_EQ(constant, value.asCString());
}

TEST(JsonCpp, ItsExceptionsReachTheHost) {
    EXPECT_THROW(Json::Value("text").asInt(), Json::LogicError);
    EXPECT_THROW(Json::Value("text").asInt(), std::exception);
}
