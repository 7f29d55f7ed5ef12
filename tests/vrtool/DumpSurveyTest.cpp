// What the survey of a dump file says, and that a restore then does what was said.

#include "tools/vrtool/DumpSurvey.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/ScratchKey.h"
#include "tests/support/WideText.h"
#include "vrUtils/Registry.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace vrUtilsRegistry = vrUtils::Registry;

namespace {

using Texts = std::vector<std::string>;

constexpr char root[] = "HKEY_CURRENT_USER\\Software\\Tree";

DumpSurvey surveyOf(std::string const& content) {
    return surveyDump({content.begin(), content.end()}, test::fromUtf8(root));
}

std::string header(std::string const& subkey = "\\") { return '[' + (root + subkey) + "]\r\r\n"; }

Texts reasonsIn(DumpSurvey const& survey) {
    Texts reasons;
    for (auto const& loss : survey.losses)
        reasons.push_back(std::to_string(loss.line) + ": " + test::utf8(loss.why));
    return reasons;
}

Texts reasonsFor(std::string const& content) { return reasonsIn(surveyOf(content)); }

// What becomes of a value that a file holds.
enum class Fate { kept, ended, missing, changed };

struct Entry {
    char const* name;
    std::string line;
    std::string why;
    Fate fate;
    // For what comes back changed.
    DWORD type = REG_NONE;
    std::vector<unsigned char> data = {};
};

void PrintTo(Entry const& entry, std::ostream* stream) { *stream << entry.line; }

std::vector<unsigned char> textData(std::wstring const& text) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(text.c_str());
    return {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)};
}

class VrtoolSurveyOf : public testing::TestWithParam<Entry> {};

} // namespace

TEST_P(VrtoolSurveyOf, TellsTheTruth) {
    auto const& entry = GetParam();
    test::ScratchKey const key;
    test::ScratchFolder const folder;
    auto const tree = L"HKEY_CURRENT_USER\\" + key.path();
    auto const content = '[' + test::utf8(tree) + "\\]\r\r\n" + entry.line + "\r\r\n";
    auto const file = vr::Path::file(folder.write(L"a.reg", content));

    auto const survey = surveyDump({content.begin(), content.end()}, tree);
    vrUtilsRegistry::RegDumper const dumper(HKEY_CURRENT_USER, tree);
    bool ended = false;
    try {
        dumper.restoreRegistry(file);
    } catch (std::out_of_range const&) {
        ended = true;
    }

    EXPECT_EQ(entry.why.empty() ? Texts() : Texts{"2: " + entry.why}, reasonsIn(survey));
    EXPECT_EQ(entry.fate == Fate::ended, ended);
    auto const value = key.get(L"n");
    EXPECT_EQ(entry.fate == Fate::kept || entry.fate == Fate::changed, value.has_value());
    if (value && entry.type != REG_NONE) {
        EXPECT_EQ((test::RegistryValue{entry.type, entry.data}), *value);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Vrtool, VrtoolSurveyOf,
    testing::Values(
        Entry{"Text", R"("n"="a \" = b")", "", Fate::kept, REG_SZ, textData(L"a \\\" = b")},
        Entry{"EmptyText", R"("n"="")", "", Fate::kept, REG_SZ, textData(L"")},
        Entry{"Number", R"("n"=dword:0000BEef)", "", Fate::kept, REG_DWORD, {0xEF, 0xBE, 0, 0}},
        Entry{"SmallDecimalBytes", R"("n"=hex:00,09)", "", Fate::kept, REG_BINARY, {0, 9}},
        Entry{"HexBytes", R"("n"=hex:0a,FF)", "", Fate::kept, REG_BINARY, {10, 255}},
        Entry{"List", R"("n"=hex(7):6a,00,00,00)", "", Fate::kept, REG_MULTI_SZ, {0x6A, 0, 0, 0}},
        Entry{
            "NothingBehindTheEqualsSign", R"("n"=)",
            "nothing behind the equals sign: the restore ends here", Fate::ended},
        Entry{
            "ListOfTwo",
            R"("n"=hex(7):6a,00,00,00,6b,00,00,00,00,00)",
            "",
            Fate::kept,
            REG_MULTI_SZ,
            {0x6A, 0, 0, 0, 0x6B, 0, 0, 0, 0, 0}},
        Entry{"NoEqualsSign", R"("n")", "no equals sign: ignored", Fate::missing},
        Entry{
            "TextWithHex", R"("n"="hexagon")", "a text that holds \"hex\": not restored",
            Fate::missing},
        Entry{
            "TextWithHexOfSeven", R"("n"="hex(7):")", "a text that holds \"hex(7)\": not restored",
            Fate::missing},
        Entry{
            "TextWithDword", R"("n"="a dword")", "a text that holds \"dword\": not restored",
            Fate::missing},
        Entry{
            "UnknownType", R"("n"=hex(2):61,00)", "of an unknown type: not restored",
            Fate::missing},
        Entry{
            "NumberWithTail", R"("n"=dword:12x)", "not a hexadecimal number: not restored",
            Fate::missing},
        Entry{
            "NumberWithoutDigits",
            R"("n"=dword:)",
            "not a number of one to eight digits: becomes 0",
            Fate::changed,
            REG_DWORD,
            {0, 0, 0, 0}},
        Entry{
            "NumberTooLarge",
            R"("n"=dword:100000001)",
            "not a number of one to eight digits: becomes 4294967295",
            Fate::changed,
            REG_DWORD,
            {255, 255, 255, 255}},
        Entry{
            "NumberBelowZero",
            R"("n"=dword:-1)",
            "not a number of one to eight digits: becomes 4294967295",
            Fate::changed,
            REG_DWORD,
            {255, 255, 255, 255}},
        Entry{
            "DecimalBytes",
            R"("n"=hex:05,10)",
            "bytes before the file's first dword are decimal: come back as others",
            Fate::changed,
            REG_BINARY,
            {5, 16}},
        Entry{
            "DecimalBytesOfThreeDigits",
            R"("n"=hex:100,01)",
            "bytes before the file's first dword are decimal: come back as others",
            Fate::changed,
            REG_BINARY,
            {0x10, 0}},
        Entry{
            "DecimalBytesThatEndInOneDigit", R"("n"=hex:100,100)",
            "the last byte has one digit only: the restore ends here", Fate::ended},
        Entry{
            "OneDigitAtTheEnd", R"("n"=hex:0a,f)",
            "the last byte has one digit only: the restore ends here", Fate::ended},
        Entry{
            "ListWithOneDigitAtTheEnd", R"("n"=hex(7):6a,0)",
            "the last byte has one digit only: the restore ends here", Fate::ended},
        Entry{
            "NoHexDigits",
            R"("n"=hex:xa,bb)",
            "not bytes of two digits and commas: come back as others",
            Fate::changed,
            REG_BINARY,
            {0x0A, 0xBB}},
        Entry{
            "OtherSeparators",
            R"("n"=hex:aa bb)",
            "not bytes of two digits and commas: come back as others",
            Fate::changed,
            REG_BINARY,
            {0xAA, 0xBB}},
        Entry{
            "NoBytes", R"("n"=hex:)",
            "no bytes; there may have been more than 1,024, which are not dumped", Fate::changed,
            REG_BINARY},
        Entry{"EmptyList", R"("n"=hex(7):)", "an empty list: not restored", Fate::missing},
        Entry{
            "ListOfOddLength",
            R"("n"=hex(7):6a,00,00,00,00)",
            "an odd number of bytes: a zero is added",
            Fate::changed,
            REG_MULTI_SZ,
            {0x6A, 0, 0, 0, 0, 0}},
        Entry{
            "ListBehindItsEnd",
            R"("n"=hex(7):6a,00,00,00,00,00,6b,00)",
            "what stands behind its first empty string is lost",
            Fate::changed,
            REG_MULTI_SZ,
            {0x6A, 0, 0, 0, 0, 0}},
        Entry{
            "ListThatBeginsWithItsEnd",
            R"("n"=hex(7):00,00,6b,00)",
            "what stands behind its first empty string is lost",
            Fate::changed,
            REG_MULTI_SZ,
            {0, 0}},
        Entry{
            "DecimalList",
            R"("n"=hex(7):97,00,00,00)",
            "bytes before the file's first dword are decimal: come back as others",
            Fate::changed,
            REG_MULTI_SZ,
            {0x97, 0, 0, 0}},
        Entry{
            "TextWithoutQuotes", R"("n"=abc)",
            "a text not in quotes: its first and its last character are lost", Fate::changed,
            REG_SZ, textData(L"b")},
        Entry{
            "TextWithoutItsLastQuote", R"("n"="abc)",
            "a text not in quotes: its first and its last character are lost", Fate::changed,
            REG_SZ, textData(L"ab")},
        Entry{
            "OneQuote", R"("n"=")",
            "a text not in quotes: its first and its last character are lost", Fate::changed,
            REG_SZ, textData(L"")},
        Entry{
            "NameWithoutQuotes", "xnx=\"a\"",
            "the name does not stand in quotes: comes back as \"n\"", Fate::changed, REG_SZ,
            textData(L"a")},
        Entry{
            "DefaultValueOfTheRegistryEditor", "@=\"a\"",
            "the name does not stand in quotes: comes back as \"=\"a\"\"", Fate::missing},
        Entry{
            "EqualsSignInTheName", R"("a=b"="c")",
            "the name does not stand in quotes: comes back as \"\"", Fate::missing},
        Entry{
            "HeaderWithoutBracket", "[HKEY_CURRENT_USER\\Software", "no equals sign: ignored",
            Fate::missing},
        Entry{
            "BytesOfTheCodePage", "\"n\"=\"\x80\"",
            "bytes from 80 on that the code page reads as other characters", Fate::changed, REG_SZ,
            textData(L"\u20AC")},
        Entry{
            "HighBytesOfNoOtherMeaning", "\"n\"=\"\xE4\"", "", Fate::kept, REG_SZ,
            textData(L"\u00E4")}),
    [](auto const& test) { return test.param.name; });

TEST(VrtoolSurvey, CountsKeysAndValues) {
    auto const survey = surveyOf(
        "Windows Registry Editor Version 5.00\r\r\n" + header() + "\"a\"=\"1\"\r\r\n" +
        "\"b\"=dword:00000001\r\r\n\r\r\n\r\r\n" + header("\\Sub") + "\"c\"=hex:01\r\r\n");

    EXPECT_EQ(2u, survey.keys);
    EXPECT_EQ(3u, survey.values);
    EXPECT_THAT(reasonsIn(survey), IsEmpty());
}

TEST(VrtoolSurvey, TakesBytesForHexadecimalBehindTheFirstNumber) {
    EXPECT_THAT(
        reasonsFor(
            header() + "\"a\"=hex:10\r\r\n\"b\"=dword:00000001\r\r\n\"c\"=hex:10\r\r\n" +
            header("\\Sub") + "\"d\"=hex:10\r\r\n"),
        ElementsAre("2: bytes before the file's first dword are decimal: come back as others"));
}

TEST(VrtoolSurvey, TakesTheRootWithAndWithoutItsBackslashAndInAnyCase) {
    EXPECT_THAT(reasonsFor(header()), IsEmpty());
    EXPECT_THAT(reasonsFor(header("")), IsEmpty());
    EXPECT_THAT(reasonsFor("[hkey_current_user\\SOFTWARE\\tree\\Sub]\r\n"), IsEmpty());
}

TEST(VrtoolSurvey, FindsHeadersThatAreTooShort) {
    EXPECT_THAT(
        reasonsFor("[HKEY_CURRENT_USER\\Software\\Tre]\n"),
        ElementsAre("1: shorter than the name of the key: the restore ends here"));
}

TEST(VrtoolSurvey, FindsHeadersOfOtherTrees) {
    EXPECT_THAT(
        reasonsFor(
            "[HKEY_CURRENT_USER\\Software\\Oaks\\Sub]\n[HKEY_LOCALMACHINE\\Software\\Tree\\Sub]\n" +
            header("s\\Sub")),
        ElementsAre(
            "1: not of this tree: is restored into it as \"\\Sub\"",
            "2: not of this tree: is restored into it as \"\\Sub\"",
            "3: not of this tree: is restored into it as \"s\\Sub\""));
}

TEST(VrtoolSurvey, FindsNamesOfKeysThatAreRefusedForEver) {
    std::string const longest(255, 'k');

    EXPECT_THAT(reasonsFor(header("\\" + longest + "\\" + longest)), IsEmpty());
    EXPECT_THAT(
        reasonsFor(header("\\a\\" + longest + "k\\b")),
        ElementsAre("1: a key's name of more than 255 characters: the restore never ends"));
}

TEST(VrtoolSurvey, FindsHeadersThatStandTwice) {
    EXPECT_THAT(
        reasonsFor(header("\\Sub") + header("\\Other") + header("\\SUB") + "\"not read\"=\r\r\n"),
        ElementsAre("3: the header of line 1 again: the lines below it are not read"));
}

TEST(VrtoolSurvey, FindsHeadersWithBlanksAtTheirEnds) {
    auto const* const why = "1: blanks at the ends of the name are lost, and the lines below it";

    EXPECT_THAT(reasonsFor(header("\\Sub ")), ElementsAre(why));
    EXPECT_THAT(reasonsFor(header("\\ Sub")), IsEmpty());
    EXPECT_EQ(why, reasonsFor("[ HKEY_CURRENT_USER\\Software\\Tree]").at(0));
}

TEST(VrtoolSurvey, FindsEmptyHeaders) {
    EXPECT_THAT(
        reasonsFor(header() + "[]\n\"not read\"=\n" + header("\\Sub") + "\"read\"=\n"),
        ElementsAre(
            "2: an empty header: the lines below it are not read",
            "5: nothing behind the equals sign: the restore ends here"));
}

TEST(VrtoolSurvey, FindsLinesBeforeTheFirstHeader) {
    EXPECT_THAT(
        reasonsFor("Windows Registry Editor Version 5.00\n\"a\"=\"b\"\n" + header()),
        ElementsAre("2: stands before the first header: is not read"));
}

TEST(VrtoolSurvey, FindsBytesOfTheCodePageInHeaders) {
    EXPECT_THAT(
        reasonsFor(header("\\\x8A")),
        ElementsAre("1: bytes from 80 on that the code page reads as other characters"));
}

TEST(VrtoolSurvey, FindsThatThereIsNothingToRestore) {
    EXPECT_THAT(reasonsFor(""), ElementsAre("1: has no header: nothing is restored"));
    EXPECT_THAT(
        reasonsFor("Windows Registry Editor Version 5.00\n"),
        ElementsAre("1: has no header: nothing is restored"));
}

TEST(VrtoolSurvey, CutsWhatItShows) {
    auto const survey = surveyOf(header() + "\"" + std::string(100, 'n') + "\"=\n");

    EXPECT_EQ(L'"' + std::wstring(58, L'n') + L"\u2026", survey.losses.at(0).what);
}

TEST(VrtoolSurvey, ShowsHeadersInTheirBrackets) {
    EXPECT_EQ(L"[a]", surveyOf("[a]").losses.at(0).what);
}

namespace {

// What a file is said to lose, and what really comes back of it.
class VrtoolSurveyOfLongFiles : public testing::Test {
  protected:
    std::string keyHeader(std::string const& subkey) const {
        return "[HKEY_CURRENT_USER\\" + test::utf8(key.path()) + subkey + "]\n";
    }

    // A section of so many characters, a zero behind each line included. The last value's line has
    // seven, and one more for its zero.
    std::string sectionOf(std::size_t characters) const {
        constexpr std::size_t around = 7;
        constexpr std::size_t first = 30000;
        return keyHeader("\\") + "\"a\"=\"" + std::string(first - around, 'x') + "\"\n\"b\"=\"" +
               std::string(characters - first - around - 8, 'y') + "\"\n\"c\"=\"z\"\n";
    }

    Texts lossesOf(std::string const& content) const {
        test::ScratchFolder const folder;
        auto const tree = L"HKEY_CURRENT_USER\\" + key.path();
        vrUtilsRegistry::RegDumper const dumper(HKEY_CURRENT_USER, tree);
        dumper.restoreRegistry(vr::Path::file(folder.write(L"a.reg", content)));
        return reasonsIn(surveyDump({content.begin(), content.end()}, tree));
    }

    test::ScratchKey const key;
};

constexpr char cutSection[] =
    "more than 32,766 characters in the section: cut, and the rest of it is lost";
constexpr char cutHeaders[] =
    "more than 8,190 characters of headers: cut, and the rest of the file is lost";

} // namespace

TEST_F(VrtoolSurveyOfLongFiles, HaveSectionsThatJustFit) {
    EXPECT_THAT(lossesOf(sectionOf(32766)), IsEmpty());

    EXPECT_EQ(L"z", key.getText(L"c"));
}

TEST_F(VrtoolSurveyOfLongFiles, HaveSectionsThatAreCut) {
    EXPECT_THAT(lossesOf(sectionOf(32768)), ElementsAre(std::string("4: ") + cutSection));

    EXPECT_NE(L"z", key.getText(L"c").value_or(L""));
}

TEST_F(VrtoolSurveyOfLongFiles, TellTheFirstLineThatIsCut) {
    EXPECT_THAT(lossesOf(sectionOf(32766 + 9)), ElementsAre(std::string("3: ") + cutSection));
}

TEST_F(VrtoolSurveyOfLongFiles, HaveALimitForEachSection) {
    auto const content =
        sectionOf(32766) + keyHeader("\\Sub") + "\"a\"=\"" + std::string(30000, 'x') + "\"\n";

    EXPECT_THAT(lossesOf(content), IsEmpty());
}

TEST_F(VrtoolSurveyOfLongFiles, HaveALimitForTheirHeaders) {
    std::string content;
    std::size_t rest = 8190;
    auto const add = [&](std::string const& subkey) {
        content += keyHeader(subkey) + "\"a\"=\"b\"\n";
        rest -= keyHeader(subkey).size() - 2;
    };
    auto const prefix = keyHeader("\\").size() - 2;
    int number = 100;
    while (rest > 3 * prefix)
        add('\\' + std::to_string(number++));
    auto const room = rest - prefix;
    auto const fits = content + keyHeader('\\' + std::string(room, 'z')) + "\"a\"=\"b\"\n";
    auto const cut = content + keyHeader('\\' + std::string(room + 2, 'y')) + "\"a\"=\"b\"\n";

    EXPECT_THAT(lossesOf(fits), IsEmpty());
    EXPECT_TRUE(key.get(L"a", std::wstring(room, L'z')));
    auto const losses = lossesOf(cut);
    ASSERT_EQ(1u, losses.size());
    EXPECT_THAT(losses[0], testing::EndsWith(cutHeaders));
    EXPECT_FALSE(key.get(L"a", std::wstring(room + 2, L'y')));
}
