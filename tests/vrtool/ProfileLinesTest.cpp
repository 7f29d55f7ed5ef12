// What the program takes for a file's lines is what the platform's profile functions give.

#include "tools/vrtool/ProfileLines.h"
#include "foundation/Platform.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Texts = std::vector<std::wstring>;

std::vector<char> bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

// The texts that a function of the platform puts one behind the other, a zero behind each.
Texts textsIn(std::wstring const& buffer, DWORD count) {
    Texts texts;
    for (std::size_t position = 0; position < count; position += texts.back().size() + 1)
        texts.emplace_back(buffer.c_str() + position);
    return texts;
}

Texts platformsHeaders(std::wstring const& file) {
    std::wstring buffer(8192, L'\0');
    return textsIn(buffer, GetPrivateProfileSectionNamesW(buffer.data(), 8192, file.c_str()));
}

Texts platformsEntries(std::wstring const& file, std::wstring const& header) {
    std::wstring buffer(32768, L'\0');
    return textsIn(
        buffer, GetPrivateProfileSectionW(header.c_str(), buffer.data(), 32768, file.c_str()));
}

Texts headersIn(std::vector<ProfileLine> const& lines) {
    Texts headers;
    for (auto const& line : lines)
        if (line.isHeader)
            headers.push_back(line.text);
    return headers;
}

Texts entriesIn(std::vector<ProfileLine> const& lines) {
    Texts entries;
    for (auto const& line : lines)
        if (!line.isHeader)
            entries.push_back(line.text);
    return entries;
}

struct Content {
    char const* name;
    std::string text;
};

void PrintTo(Content const& content, std::ostream* stream) { *stream << content.name; }

class VrtoolProfileLinesOf : public testing::TestWithParam<Content> {};

} // namespace

TEST_P(VrtoolProfileLinesOf, AreThoseOfThePlatform) {
    test::ScratchFolder const folder;
    auto const file = folder.write(L"a.reg", GetParam().text);

    auto const lines = profileLines(bytesOf(GetParam().text));

    auto const headers = headersIn(lines);
    EXPECT_EQ(platformsHeaders(file), headers);
    ASSERT_FALSE(headers.empty());
    EXPECT_EQ(platformsEntries(file, headers.front()), entriesIn(lines));
}

INSTANTIATE_TEST_SUITE_P(
    Vrtool, VrtoolProfileLinesOf,
    testing::Values(
        Content{"Dump", "[a]\r\r\n\"b\"=\"c\"\r\r\n\r\r\n\r\r\n[d]\r\r\n"},
        Content{"PlainLineFeeds", "[a]\n\"b\"=\"c\"\n"},
        Content{"NoLastLineEnd", "[a]\n\"b\"=\"c\""},
        Content{"BlanksAround", "  [a] \n \t\"b\" =  \"c\" \n"},
        Content{"BlanksInQuotes", "[a]\n\" b \"=\" c \"\n"},
        Content{"Comments", "[a]\n;x=1\n#y=2\nz=3;4\n"}, Content{"NoEqualsSign", "[a]\nb c\n"},
        Content{"NothingBehindTheEqualsSign", "[a]\n\"b\"=\n"},
        Content{"TwoEqualsSigns", "[a]\n\"b = c\" = \"d = e\"\n"},
        Content{"HeaderWithBrackets", "[a[b]c] tail\nx=1\n"},
        Content{"HeaderWithoutEnd", "[a]\n[b\nx=1\n"},
        Content{"HighBytes", "[\xE4]\n\"\xFF\"=\"\x80\x9F\"\n"},
        Content{"Utf8Mark", "\xEF\xBB\xBF[a]\n\"b\"=\"\xC3\xA4\"\n"},
        Content{"LowByteFirst", std::string("\xFF\xFE[\0a\0]\0\n\0b\0=\0\x16\x04", 16)},
        Content{"HighByteFirst", std::string("\xFE\xFF\0[\0a\0]\0\n\0b\0=\x04\x16", 16)}),
    [](auto const& test) { return test.param.name; });

TEST(VrtoolProfileLines, HaveTheirNumbersInTheFile) {
    auto const lines = profileLines(bytesOf("\r\r\n[a]\r\r\n; no\r\r\n\r\r\nb=c"));

    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ(2u, lines[0].number);
    EXPECT_EQ(5u, lines[1].number);
}

TEST(VrtoolProfileLines, OfAnEmptyFileAreNone) {
    EXPECT_THAT(profileLines({}), IsEmpty());
    EXPECT_THAT(profileLines(bytesOf("\r\n \t\r\n")), IsEmpty());
}

TEST(VrtoolProfileLines, TellWhichBytesTheCodePageReadsAsOthers) {
    auto const lines = profileLines(bytesOf("a=\xE4\xFF\nb=\x80\n"));

    EXPECT_TRUE(lines.at(0).isByteForByte);
    EXPECT_FALSE(lines.at(1).isByteForByte);
}

TEST(VrtoolProfileLines, AreTheirOwnCharactersBehindAByteOrderMark) {
    EXPECT_TRUE(profileLines(bytesOf("\xEF\xBB\xBF\xE2\x82\xAC=1")).at(0).isByteForByte);
}
