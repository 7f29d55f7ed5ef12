#include "vrUtils/Path.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

using vr::PathSplitter;

namespace {

using namespace std::string_literals;

constexpr bool asFile = true;
constexpr bool asFolder = false;

struct Parse {
    char const* situation;
    std::wstring text;
    bool isFile;
    std::wstring root;
    std::wstring drive;
    std::wstring folders;
    std::wstring name;
    std::wstring extension;
};

void PrintTo(Parse const& parse, std::ostream* stream) {
    *stream << parse.situation << ": " << testing::PrintToString(parse.text);
}

class PathSplitterParse : public testing::TestWithParam<Parse> {};

std::string situationOf(testing::TestParamInfo<Parse> const& row) { return row.param.situation; }

} // namespace

TEST_P(PathSplitterParse, GivesTheParts) {
    auto const& expected = GetParam();

    PathSplitter const parts(expected.text, expected.isFile);

    EXPECT_EQ(expected.root, parts.root());
    EXPECT_EQ(expected.drive, parts.drive());
    EXPECT_EQ(expected.folders, parts.folderText());
    EXPECT_EQ(expected.name, parts.fileName());
    EXPECT_EQ(expected.extension, parts.extension());
}

INSTANTIATE_TEST_SUITE_P(
    Drive, PathSplitterParse,
    testing::Values(
        Parse{
            "File", LR"(C:\Media\clip.mxf)", asFile, L"", LR"(C:\)", LR"(Media\)", L"clip",
            L".mxf"},
        Parse{
            "ForwardSlashes", L"C:/Media/clip.mxf", asFile, L"", LR"(C:\)", LR"(Media\)", L"clip",
            L".mxf"},
        Parse{"MixedSlashes", LR"(C:/a\b/c.d)", asFile, L"", LR"(C:\)", LR"(a\b\)", L"c", L".d"},
        Parse{"Folder", LR"(C:\Media\day\)", asFolder, L"", LR"(C:\)", LR"(Media\day\)", L"", L""},
        Parse{
            "FolderWithoutClosingBackslash", LR"(C:\Media\day)", asFolder, L"", LR"(C:\)",
            LR"(Media\)", L"day", L""},
        Parse{"FileInTheDriveItself", LR"(C:\a.b)", asFile, L"", LR"(C:\)", L"", L"a", L".b"},
        Parse{"AloneAsFile", L"C:", asFile, L"", LR"(C:\)", L"", L"", L""},
        Parse{"AloneAsFolder", L"C:", asFolder, L"", LR"(C:\)", L"", L"", L""},
        Parse{"WithBackslash", LR"(C:\)", asFolder, L"", LR"(C:\)", L"", L"", L""},
        Parse{"WithForwardSlash", L"C:/", asFile, L"", LR"(C:\)", L"", L"", L""},
        Parse{"AnyCharacterIsALetter", LR"(1:\x)", asFile, L"", LR"(1:\)", L"", L"x", L""},
        Parse{"BackslashAsLetter", LR"(\:\x)", asFile, L"", LR"(\:\)", L"", L"x", L""},
        Parse{"ForwardSlashAsLetter", L"/:/x", asFile, L"", LR"(\:\)", L"", L"x", L""},
        Parse{"DoubledSeparatorBehindIt", LR"(C:\\x)", asFile, L"", LR"(C:\)", L"", L"x", L""},
        Parse{
            "DoubledSeparatorsCollapse", LR"(C:\a\\\b\\c.d)", asFile, L"", LR"(C:\)", LR"(a\b\)",
            L"c", L".d"},
        Parse{"NotBeyondTheSecondCharacter", LR"(ab:\c)", asFile, L"", L"", LR"(ab:\)", L"c", L""}),
    situationOf);

INSTANTIATE_TEST_SUITE_P(
    DriveRelative, PathSplitterParse,
    testing::Values(
        Parse{"Name", L"C:foo", asFile, L"", L"", LR"(C:\)", L"foo", L""},
        Parse{"FolderName", L"C:foo", asFolder, L"", L"", LR"(C:\)", L"foo", L""},
        Parse{"FolderAndName", LR"(C:foo\bar.x)", asFile, L"", L"", LR"(C:foo\)", L"bar", L".x"},
        Parse{"ForwardSlashes", L"C:foo/bar.x", asFile, L"", L"", LR"(C:foo\)", L"bar", L".x"},
        Parse{"Extension", L"C:.x", asFile, L"", L"", LR"(C:\)", L"", L".x"},
        Parse{"StreamOfNoName", L"C::s", asFile, L"", L"", LR"(C:\)", L"", L""},
        Parse{"TwoColons", L"::", asFile, L"", L"", LR"(::\)", L"", L""},
        Parse{"TwoColonsAndSeparator", LR"(::\x)", asFile, L"", L"", LR"(::\)", L"x", L""},
        Parse{"BackslashAsLetter", LR"(\:x)", asFile, L"", L"", LR"(:\)", L"x", L""}),
    situationOf);

INSTANTIATE_TEST_SUITE_P(
    Network, PathSplitterParse,
    testing::Values(
        Parse{
            "File", LR"(\\host\share\clip.mxf)", asFile, LR"(\\host\)", L"", LR"(share\)", L"clip",
            L".mxf"},
        Parse{
            "ForwardSlashes", L"//host/share/clip.mxf", asFile, LR"(\\host\)", L"", LR"(share\)",
            L"clip", L".mxf"},
        Parse{"HostAsFolder", LR"(\\host)", asFolder, LR"(\\host\)", L"", L"", L"", L""},
        Parse{"HostAsFile", LR"(\\host)", asFile, LR"(\\host\)", L"", L"", L"", L""},
        Parse{"HostInForwardSlashes", L"//host", asFile, LR"(\\host\)", L"", L"", L"", L""},
        Parse{"HostWithTrailingDot", LR"(\\host.)", asFile, LR"(\\host.\)", L"", L"", L"", L""},
        Parse{"ClosedHostAsFile", LR"(\\host\)", asFile, LR"(\\host\)", L"", L"", L"", L""},
        Parse{"ClosedHostAsFolder", LR"(\\host\)", asFolder, LR"(\\host\)", L"", L"", L"", L""},
        Parse{
            "DottedHostAsFolder", LR"(\\host.dom)", asFolder, LR"(\\host.dom\)", L"", L"", L"",
            L""},
        Parse{"DottedHostAsFileIsAName", LR"(\\host.dom)", asFile, L"", L"", L"", L"host", L".dom"},
        Parse{
            "ClosedDottedHostAsFile", LR"(\\host.dom\)", asFile, LR"(\\host.dom\)", L"", L"", L"",
            L""},
        Parse{"AddressAsFileIsAName", LR"(\\10.0.0.1)", asFile, L"", L"", L"", L"10.0.0", L".1"},
        Parse{"AddressAsFolder", LR"(\\10.0.0.1)", asFolder, LR"(\\10.0.0.1\)", L"", L"", L"", L""},
        Parse{"PortIsLostAsFolder", LR"(\\host:8080)", asFolder, LR"(\\host\)", L"", L"", L"", L""},
        Parse{"PortIsLostAsFile", LR"(\\host:8080)", asFile, LR"(\\host\)", L"", L"", L"", L""},
        Parse{
            "PortOfClosedHost", LR"(\\host:8080\)", asFile, LR"(\\host:8080\)", L"", L"", L"", L""},
        Parse{
            "PortBeforeShare", LR"(\\host:8080\share\x.y)", asFile, LR"(\\host:8080\)", L"",
            LR"(share\)", L"x", L".y"},
        Parse{
            "PortOfAddressAsFolder", LR"(\\10.0.0.1:80)", asFolder, LR"(\\10.0.0.1:80\)", L"", L"",
            L"", L""},
        Parse{
            "PortOfAddressAsFileIsAStream", LR"(\\10.0.0.1:80)", asFile, L"", L"", L"", L"10.0.0",
            L".1:80"},
        Parse{
            "UnclosedShareAsFolderIsAName", LR"(\\srv\share)", asFolder, LR"(\\srv\)", L"", L"",
            L"share", L""},
        Parse{
            "UnclosedShareAsFileIsAName", LR"(\\srv\share)", asFile, LR"(\\srv\)", L"", L"",
            L"share", L""},
        Parse{
            "ClosedShare", LR"(\\srv\share\)", asFolder, LR"(\\srv\)", L"", LR"(share\)", L"", L""},
        Parse{
            "DoubledSeparatorsCollapse", LR"(\\a\\b\c)", asFile, LR"(\\a\)", L"", LR"(b\)", L"c",
            L""},
        Parse{"TwoBackslashesAreNothing", LR"(\\)", asFile, L"", L"", L"", L"", L""},
        Parse{
            "ThreeBackslashesAreARootWithoutHost", LR"(\\\)", asFolder, LR"(\\\)", L"", L"", L"",
            L""},
        Parse{"NameBehindThreeBackslashes", LR"(\\\x)", asFile, LR"(\\\)", L"", L"", L"x", L""},
        Parse{
            "BehindADrive", LR"(C:\\\h\s\x.y)", asFile, LR"(\\h\)", LR"(C:\)", LR"(s\)", L"x",
            L".y"},
        Parse{
            "UnclosedHostBehindADriveIsAName", LR"(C:\\\h)", asFile, L"", LR"(C:\)", L"", L"h",
            L""}),
    situationOf);

INSTANTIATE_TEST_SUITE_P(
    Relative, PathSplitterParse,
    testing::Values(
        Parse{"EmptyAsFile", L"", asFile, L"", L"", L"", L"", L""},
        Parse{"EmptyAsFolder", L"", asFolder, L"", L"", L"", L"", L""},
        Parse{"OneCharacter", L"C", asFile, L"", L"", L"", L"C", L""},
        Parse{"OneBackslashIsNothing", LR"(\)", asFile, L"", L"", L"", L"", L""},
        Parse{"LeadingBackslashIsLost", LR"(\a\b.c)", asFile, L"", L"", LR"(a\)", L"b", L".c"},
        Parse{"FoldersAndName", LR"(a\b\c.d)", asFile, L"", L"", LR"(a\b\)", L"c", L".d"},
        Parse{"BlanksStay", L" a / b . c ", asFile, L"", L"", LR"( a \)", L" b ", L". c "},
        Parse{"ColonInAFolder", LR"(x\a:b\c.d)", asFile, L"", L"", LR"(x\a:b\)", L"c", L".d"},
        Parse{"TextEndsAtItsFirstZero", L"a\\b.c\0d\\e"s, asFile, L"", L"", LR"(a\)", L"b", L".c"}),
    situationOf);

INSTANTIATE_TEST_SUITE_P(
    Extension, PathSplitterParse,
    testing::Values(
        Parse{"BeginsAtTheLastDot", L"a.b.c", asFile, L"", L"", L"", L"a.b", L".c"},
        Parse{"OfADotFileIsAll", L".hid", asFile, L"", L"", L"", L"", L".hid"},
        Parse{
            "DotOfAFolderStaysInTheName", LR"(C:\a\dir.ext)", asFolder, L"", LR"(C:\)", LR"(a\)",
            L"dir.ext", L""},
        Parse{"DotsOfAFolderStayInTheName", L"a.b.c", asFolder, L"", L"", L"", L"a.b.c", L""},
        Parse{"LeadingDotOfAFolderStays", L".hid", asFolder, L"", L"", L"", L".hid", L""},
        Parse{"DotInAFolderAbove", LR"(a.b\c)", asFile, L"", L"", LR"(a.b\)", L"c", L""},
        Parse{"TrailingDotStaysInTheName", L"b.", asFile, L"", L"", L"", L"b.", L""},
        Parse{"TrailingDotOfAFolderStays", L"b.", asFolder, L"", L"", L"", L"b.", L""},
        Parse{"OneDotIsAName", L".", asFile, L"", L"", L"", L".", L""},
        Parse{"TwoDotsAreAName", L"..", asFile, L"", L"", L"", L"..", L""},
        Parse{"TwoDotsAsFolderAreAName", LR"(a\..)", asFolder, L"", L"", LR"(a\)", L"..", L""},
        Parse{"TwoDotsClosedAreAFolder", LR"(..\)", asFile, L"", L"", LR"(..\)", L"", L""},
        Parse{"DotsBehindTheName", L"b..", asFile, L"", L"", L"", L"b..", L""},
        Parse{"PercentSignsAreText", L"%s%n.%d", asFile, L"", L"", L"", L"%s%n", L".%d"}),
    situationOf);

INSTANTIATE_TEST_SUITE_P(
    Stream, PathSplitterParse,
    testing::Values(
        Parse{
            "IsDroppedWithoutADot", LR"(C:\a\b:str)", asFile, L"", LR"(C:\)", LR"(a\)", L"b", L""},
        Parse{
            "OfAFolderIsDroppedWithoutADot", LR"(C:\a\b:str)", asFolder, L"", LR"(C:\)", LR"(a\)",
            L"b", L""},
        Parse{
            "StaysInTheExtension", LR"(C:\b.mxf:str)", asFile, L"", LR"(C:\)", L"", L"b",
            L".mxf:str"},
        Parse{
            "OfADottedFolderStaysInTheName", LR"(C:\b.mxf:str)", asFolder, L"", LR"(C:\)", L"",
            L"b.mxf:str", L""},
        Parse{
            "WithADotMovesTheExtension", LR"(C:\b.mxf:s.t)", asFile, L"", LR"(C:\)", L"",
            L"b.mxf:s", L".t"},
        Parse{
            "WithADotOfAFolder", LR"(C:\b.mxf:s.t)", asFolder, L"", LR"(C:\)", L"", L"b.mxf:s.t",
            L""},
        Parse{
            "WithATrailingDotLeavesNoExtension", LR"(C:\b.mxf:s.)", asFile, L"", LR"(C:\)", L"",
            L"b.mxf:s.", L""},
        Parse{
            "WithItsOnlyDotBehindTheColonIsDropped", LR"(C:\b:s.t)", asFile, L"", LR"(C:\)", L"",
            L"b", L""},
        Parse{
            "BeginsAtTheLastColon", LR"(C:\a:b.c:d)", asFile, L"", LR"(C:\)", L"", L"a:b", L".c:d"},
        Parse{
            "OfTwoColonsBehindTheDotStays", LR"(C:\a.b:c:d)", asFile, L"", LR"(C:\)", L"", L"a",
            L".b:c:d"},
        Parse{"OfNoNameIsDropped", LR"(C:\:s)", asFile, L"", LR"(C:\)", L"", L"", L""},
        Parse{"EmptyStreamIsDropped", LR"(C:\b:)", asFile, L"", LR"(C:\)", L"", L"b", L""},
        Parse{
            "EmptyStreamBehindADotStays", LR"(C:\b.c:)", asFile, L"", LR"(C:\)", L"", L"b",
            L".c:"}),
    situationOf);

TEST(PathSplitter, PartsOfADrivePathAddUp) {
    PathSplitter const parts(LR"(C:\Media\day\clip.mxf)", asFile);

    EXPECT_EQ(LR"(C:\)", parts.rootAndDrive());
    EXPECT_EQ(LR"(C:\Media\day\)", parts.folderPath());
    EXPECT_EQ(LR"(C:\Media\day\clip)", parts.pathNoExtension());
    EXPECT_EQ(LR"(C:\Media\day\clip.mxf)", parts.wholePath());
    EXPECT_EQ(L"clip.mxf", parts.fullName());
}

TEST(PathSplitter, PartsOfANetworkPathAddUp) {
    PathSplitter const parts(L"//host:80/share/clip.mxf", asFile);

    EXPECT_EQ(LR"(\\host:80\)", parts.rootAndDrive());
    EXPECT_EQ(LR"(\\host:80\share\)", parts.folderPath());
    EXPECT_EQ(LR"(\\host:80\share\clip)", parts.pathNoExtension());
    EXPECT_EQ(LR"(\\host:80\share\clip.mxf)", parts.wholePath());
}

TEST(PathSplitter, RootStandsBeforeTheDrive) {
    PathSplitter const parts(LR"(C:\\\h\s\x.y)", asFile);

    EXPECT_EQ(LR"(\\h\C:\)", parts.rootAndDrive());
    EXPECT_EQ(LR"(\\h\C:\s\x.y)", parts.wholePath());
}

TEST(PathSplitter, FoldersAreListedInOrder) {
    PathSplitter const parts(LR"(C:\one\\Two\three three\clip)", asFile);

    EXPECT_EQ((std::list<std::wstring>{L"one", L"Two", L"three three"}), parts.folders());
}

TEST(PathSplitter, NoFoldersGiveAnEmptyList) {
    PathSplitter const parts(LR"(\\srv\share)", asFolder);

    EXPECT_TRUE(parts.folders().empty());
}

TEST(PathSplitter, LetterOfADriveRelativePathIsAFolder) {
    PathSplitter const parts(LR"(C:foo\bar)", asFile);

    EXPECT_EQ((std::list<std::wstring>{L"C:foo"}), parts.folders());
}

// --- host, port, share ----------------------------------------------------------------------------

namespace {

struct Root {
    char const* situation;
    std::wstring text;
    std::wstring host;
    std::uint32_t port;
    std::wstring firstFolder;
};

void PrintTo(Root const& root, std::ostream* stream) {
    *stream << root.situation << ": " << testing::PrintToString(root.text);
}

class PathSplitterRoot : public testing::TestWithParam<Root> {};

} // namespace

TEST_P(PathSplitterRoot, GivesHostPortAndShare) {
    auto const& expected = GetParam();

    PathSplitter const parts(expected.text, asFile);

    EXPECT_EQ(expected.host, parts.host());
    EXPECT_EQ(expected.port, parts.port());
    EXPECT_EQ(expected.firstFolder, parts.firstFolder());
}

INSTANTIATE_TEST_SUITE_P(
    Text, PathSplitterRoot,
    testing::Values(
        Root{"HostAndShare", LR"(\\h\s\t\x.y)", LR"(\\h\)", 0, LR"(s\)"},
        Root{"HostAlone", LR"(\\h)", LR"(\\h\)", 0, L""},
        Root{"UnclosedShare", LR"(\\h\s)", LR"(\\h\)", 0, L""},
        Root{"NoRootButFolders", LR"(C:\s\x.y)", L"", 0, L""},
        Root{"Relative", LR"(s\x.y)", L"", 0, L""}, Root{"Empty", L"", L"", 0, L""},
        Root{"Port", LR"(\\h:8080\s\)", LR"(\\h\)", 8080, LR"(s\)"},
        Root{"PortZero", LR"(\\h:0\)", LR"(\\h\)", 0, L""},
        Root{"PortIsNoNumber", LR"(\\h:abc\)", LR"(\\h\)", 0, L""},
        Root{"PortBeginsWithANumber", LR"(\\h:12ab\)", LR"(\\h\)", 12, L""},
        Root{"PortBehindABlank", LR"(\\h: 7\)", LR"(\\h\)", 7, L""},
        Root{"PortIsDecimal", LR"(\\h:010\)", LR"(\\h\)", 10, L""},
        Root{"PortBeyondSixteenBits", LR"(\\h:70000\)", LR"(\\h\)", 70000, L""},
        Root{"PortTooLarge", LR"(\\h:4294967296\)", LR"(\\h\)", 0xFFFFFFFF, L""},
        Root{"PortWithMinusSignWraps", LR"(\\h:-2\)", LR"(\\h\)", 0xFFFFFFFE, L""},
        Root{"EmptyPort", LR"(\\h:\)", LR"(\\h\)", 0, L""},
        Root{"ThreePieces", LR"(\\h:1:2\)", LR"(\\h\)", 0, L""},
        Root{"EmptyPiecesDoNotCount", LR"(\\h::5\)", LR"(\\h\)", 5, L""},
        Root{"PortWithoutHostIsTheHost", LR"(\\:80\)", LR"(\\80\)", 0, L""},
        Root{"RootWithoutHostStands", LR"(\\\s\)", LR"(\\\)", 0, LR"(s\)"},
        Root{"RootOfAColonStands", LR"(\\:\s\)", LR"(\\:\)", 0, LR"(s\)"},
        Root{"BehindADrive", LR"(C:\\\h:9\s\x)", LR"(\\h\)", 9, LR"(s\)"}),
    [](auto const& row) { return row.param.situation; });

// --- values ---------------------------------------------------------------------------------------

TEST(PathSplitter, HasNoVirtualOperations) { EXPECT_FALSE(std::is_polymorphic_v<PathSplitter>); }

TEST(PathSplitter, CopiesAreIndependent) {
    for (auto const length : {5u, 500u}) {
        auto const folder = std::wstring(length, L'f');
        auto original = std::make_unique<PathSplitter>(L"C:\\" + folder + L"\\a.b", asFile);

        PathSplitter const copy(*original);
        original.reset();

        EXPECT_EQ(L"C:\\" + folder + L"\\a.b", copy.wholePath());
        EXPECT_EQ((std::list<std::wstring>{folder}), copy.folders());
    }
}

TEST(PathSplitter, StaysWholeWhenItIsMovedFrom) {
    for (auto const length : {5u, 500u}) {
        auto const text = L"C:\\" + std::wstring(length, L'f') + L"\\a.b";
        PathSplitter original(text, asFile);

        PathSplitter const moved(std::move(original));

        EXPECT_EQ(text, moved.wholePath());
        EXPECT_EQ(text, original.wholePath());
    }
}

TEST(PathSplitter, AssignmentTakesEveryPart) {
    PathSplitter shorter(L"a.b", asFile);
    PathSplitter longer(L"C:\\" + std::wstring(500, L'f') + L"\\c.d", asFile);
    auto const shortText = shorter.wholePath();
    auto const longText = longer.wholePath();

    auto const kept = shorter;
    shorter = longer;
    longer = kept;

    EXPECT_EQ(longText, shorter.wholePath());
    EXPECT_EQ(shortText, longer.wholePath());
    EXPECT_TRUE(longer.folders().empty());
}
