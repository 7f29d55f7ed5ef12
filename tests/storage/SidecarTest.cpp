// Companion files of movies: the rule, the look into the folder, and what is logged.

#include "vrUtils/Storage/Sidecar.h"

#include "tests/storage/FakeEntries.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

using test::Logged;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Storage::FindSidecarFile;

namespace {

constexpr wchar_t anyMovie[] = L"(.*)\\.mov";

class Sidecar : public testing::Test {
  protected:
    std::wstring folder() const { return m_folder.path() + L'\\'; }

    std::wstring find(std::wstring const& name, std::wstring const& pattern = L"*") const {
        return FindSidecarFile(L"Clip1.MOV", anyMovie, folder(), name, pattern);
    }

    auto searching(std::wstring const& name) const {
        return Logged(7, L"Searching for sidecar file [" + name + L"] in [" + folder() + L"]");
    }

    auto found(std::wstring const& name) const {
        return Logged(7, L"Found sidecar [" + folder() + name + L"]");
    }

    auto foundNone() const {
        return Logged(4, L"Failed to find matching sidecar in [" + folder() + L"]");
    }

    static auto ambiguous(std::wstring const& first, std::wstring const& other) {
        return Logged(4, L"Ambiguous sidecar could be [" + first + L"] or [" + other + L"]");
    }

    // Whether the attribute is on the file now; not every disk keeps each.
    bool mark(std::wstring const& file, DWORD attribute) const {
        auto const path = m_folder.file(file);
        SetFileAttributesW(path.c_str(), attribute);
        return (GetFileAttributesW(path.c_str()) & attribute) != 0;
    }

    test::ScratchFolder m_folder;
    test::LogRecorder m_log;
};

struct FilledName {
    wchar_t const* movieFile;
    wchar_t const* regex;
    wchar_t const* sidecarName;
    wchar_t const* filled;

    friend void PrintTo(FilledName const& tested, std::ostream* stream) {
        *stream << testing::PrintToString(tested.sidecarName) << " for "
                << testing::PrintToString(tested.movieFile) << " by "
                << testing::PrintToString(tested.regex);
    }
};

class SidecarName : public testing::TestWithParam<FilledName> {};

INSTANTIATE_TEST_SUITE_P(
    WithCaptures, SidecarName,
    testing::Values(
        FilledName{L"Clip1.MOV", anyMovie, L"\\1.xml", L"Clip1.xml"},
        FilledName{L"Clip1.MOV", anyMovie, L"\\0.xml", L"Clip1.MOV.xml"},
        FilledName{L"a_b.mov", L"(.)_(.)\\.mov", L"\\2\\1\\2", L"bab"},
        FilledName{L"abcdefghi", L"(.)(.)(.)(.)(.)(.)(.)(.)(.)", L"\\9\\1", L"ia"},
        // There are no captures above nine.
        FilledName{L"abcdefghij", L"(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)", L"\\10", L"a0"},
        FilledName{L"x", L"()x", L"[\\1]", L"[]"},
        FilledName{L"x.mov", L"(.*)\\.mov", L"\\1", L"x"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutCaptures, SidecarName,
    testing::Values(
        FilledName{L"x.mov", anyMovie, L"fixed.xml", L"fixed.xml"},
        FilledName{L"x.mov", anyMovie, L"", L""},
        FilledName{L"x.mov", anyMovie, L"\\7.xml", L"\\7.xml"},
        FilledName{L"x.mov", anyMovie, L"\\2", L"\\2"},
        FilledName{L"b", L"(a)|(b)", L"\\1-\\2", L"\\1-b"},
        FilledName{L"x.mov", anyMovie, L"\\", L"\\"},
        FilledName{L"x.mov", anyMovie, L"a\\", L"a\\"},
        FilledName{L"x.mov", anyMovie, L"\\1\\", L"x\\"},
        FilledName{L"x.mov", anyMovie, L"\\d\\.\\/", L"\\d\\.\\/"},
        // The character behind the nine is no digit, however many captures there are.
        FilledName{L"abcdefghijk", L"(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)", L"\\:", L"\\:"},
        FilledName{L"x.mov", anyMovie, L"\\\u0661", L"\\\u0661"}));

INSTANTIATE_TEST_SUITE_P(
    WithSeveralBackslashes, SidecarName,
    testing::Values(
        FilledName{L"x.mov", anyMovie, L"\\\\1", L"\\x"},
        FilledName{L"x.mov", anyMovie, L"\\\\\\1", L"\\\\x"},
        FilledName{L"x.mov", anyMovie, L"\\7\\1", L"\\7x"},
        FilledName{L"x.mov", anyMovie, L"\\\\", L"\\\\"}));

INSTANTIATE_TEST_SUITE_P(
    OfNamesThatLookLikePlaceholders, SidecarName,
    testing::Values(
        FilledName{L"\\2x.mov", L"(.*)(x)\\.mov", L"\\1\\2", L"\\2x"},
        FilledName{L"\\.mov", L"(.*)\\.mov", L"\\11", L"\\1"},
        FilledName{L"$1.mov", L"(.*)\\.mov", L"\\1$&", L"$1$&"}));

struct MovieName {
    wchar_t const* movieFile;
    wchar_t const* regex;

    friend void PrintTo(MovieName const& tested, std::ostream* stream) {
        *stream << testing::PrintToString(tested.movieFile) << " by "
                << testing::PrintToString(tested.regex);
    }
};

class RefusedMovie : public Sidecar, public testing::WithParamInterface<MovieName> {};

INSTANTIATE_TEST_SUITE_P(
    Any, RefusedMovie,
    testing::Values(
        MovieName{L"Clip1.mxf", anyMovie}, MovieName{L"Clip1.mov.bak", anyMovie},
        MovieName{L"Clip1.mov", L"lip1\\.mov"}, MovieName{L"Clip1.mov", L"Clip1"},
        MovieName{L"", L"."}, MovieName{L"Clip1.mov", L""},
        // Only the letters A to Z have two cases.
        MovieName{L"\u00C9.mov", L"\u00E9\\.mov"}));

class BadExpression : public Sidecar, public testing::WithParamInterface<wchar_t const*> {};

INSTANTIATE_TEST_SUITE_P(
    Any, BadExpression,
    testing::Values(
        L"(", L"[", L"*a", L"a\\", L"a{2,1}", L"[z-a]", L"(a)\\7", L"(?<a>b)",
        L"a{100000}{100000}"));

} // namespace

TEST_P(SidecarName, IsFilledFromTheMoviesName) {
    test::ImportHook<decltype(GetFileAttributesW)> const exists(
        "GetFileAttributesW", [](wchar_t const*) -> DWORD { return FILE_ATTRIBUTE_ARCHIVE; });
    test::LogRecorder const log;
    auto const& [movieFile, regex, sidecarName, filled] = GetParam();

    EXPECT_EQ(
        L"F:\\" + std::wstring(filled),
        FindSidecarFile(movieFile, regex, L"F:\\", sidecarName, L"*"));

    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            Logged(7, L"Searching for sidecar file [" + std::wstring(filled) + L"] in [F:\\]"),
            Logged(7, L"Found sidecar [F:\\" + std::wstring(filled) + L"]")));
}

TEST_F(Sidecar, IsTheFileOfTheFilledName) {
    m_folder.write(L"Clip1.xml", "");
    m_folder.write(L"Clip1.xmlx", "");

    EXPECT_EQ(folder() + L"Clip1.xml", find(L"\\1.xml"));

    EXPECT_THAT(m_log.lines(), ElementsAre(searching(L"Clip1.xml"), found(L"Clip1.xml")));
}

TEST_F(Sidecar, HasTheCaseOfTheMovie) {
    m_folder.write(L"cLIP1.XML", "");

    EXPECT_EQ(folder() + L"Clip1.xml", find(L"\\1.xml"));
}

TEST_F(Sidecar, IsNotSearchedForWhereTheFilledNameExists) {
    m_folder.write(L"Clip1.xml", "");
    test::FakeEntries const entries{{L"other.xml", FILE_ATTRIBUTE_ARCHIVE}};

    find(L"\\1.xml");

    EXPECT_THAT(entries.patterns(), IsEmpty());
}

TEST_F(Sidecar, MayBeAFolderOfTheFilledName) {
    m_folder.makeFolder(L"Clip1.xml");

    EXPECT_EQ(folder() + L"Clip1.xml", find(L"\\1.xml"));
}

TEST_F(Sidecar, MayBeAnyFileOfTheFilledName) {
    m_folder.write(L".Clip1", "");
    mark(L".Clip1", FILE_ATTRIBUTE_HIDDEN);

    EXPECT_EQ(folder() + L".Clip1", find(L".\\1"));
}

TEST_F(Sidecar, MayBeInAFolderBelow) {
    m_folder.write(L"meta\\Clip1.xml", "");

    EXPECT_EQ(folder() + L"meta\\Clip1.xml", find(L"meta\\\\1.xml"));
}

TEST_F(Sidecar, IsTheFolderItselfForAnEmptyName) {
    EXPECT_EQ(folder(), find(L""));

    EXPECT_THAT(m_log.lines(), ElementsAre(searching(L""), found(L"")));
}

TEST_F(Sidecar, IsTheFileThatMatchesTheFilledName) {
    m_folder.write(L"Clip1_v2.xml", "");

    EXPECT_EQ(folder() + L"Clip1_v2.xml", find(L"\\1_.*\\.xml"));

    EXPECT_THAT(m_log.lines(), ElementsAre(searching(L"Clip1_.*\\.xml"), found(L"Clip1_v2.xml")));
}

TEST_F(Sidecar, MatchesWithoutRegardToCase) {
    m_folder.write(L"CLIP1.Xml", "");

    EXPECT_EQ(folder() + L"CLIP1.Xml", find(L"\\1\\.xml"));
}

TEST_F(Sidecar, MatchesLettersBeyondAsciiByTheirCase) {
    m_folder.write(L"\u00C9.xml", "");

    EXPECT_EQ(L"", find(L"\u00E9\\.xml"));
    EXPECT_EQ(folder() + L"\u00C9.xml", find(L"\u00C9\\.xml"));
}

TEST_F(Sidecar, MatchesTheWholeOfAName) {
    m_folder.write(L"Clip1.xml.bak", "");
    m_folder.write(L"xClip1.xml", "");

    EXPECT_EQ(L"", find(L"\\1\\.xml"));
}

TEST_F(Sidecar, TakesACaptureForAnExpression) {
    m_folder.write(L"Clipx1.xml", "");

    EXPECT_EQ(
        folder() + L"Clipx1.xml",
        FindSidecarFile(L"Clip.1.mov", anyMovie, folder(), L"\\1\\.xml", L"*"));
}

TEST_F(Sidecar, IsLookedForAmongTheEntriesOfTheSearchPattern) {
    m_folder.write(L"Clip1.txt", "");
    m_folder.write(L"Clip1.xml", "");

    EXPECT_EQ(folder() + L"Clip1.xml", find(L"\\1\\.(txt|xml)", L"*.xml"));
}

TEST_F(Sidecar, IsSearchedForInTheFolderAsItStands) {
    test::FakeEntries const entries{{L"Clip1.xml", FILE_ATTRIBUTE_ARCHIVE}};

    EXPECT_EQ(
        L"F:\\meta_Clip1.xml",
        FindSidecarFile(L"Clip1.mov", anyMovie, L"F:\\meta_", L"\\1\\.xml", L"*.x?l"));

    EXPECT_THAT(entries.patterns(), ElementsAre(L"F:\\meta_*.x?l"));
}

TEST_F(Sidecar, IsNoFolderThatMatches) {
    m_folder.makeFolder(L"Clip1.xml");

    EXPECT_EQ(L"", find(L"\\1\\.xml"));

    EXPECT_THAT(m_log.lines(), ElementsAre(searching(L"Clip1\\.xml"), foundNone()));
}

TEST_F(Sidecar, IsNoHiddenFile) {
    m_folder.write(L"Clip1.xml", "");
    if (!mark(L"Clip1.xml", FILE_ATTRIBUTE_HIDDEN))
        GTEST_SKIP() << "this disk does not keep the attribute of hidden files";

    EXPECT_EQ(L"", find(L"\\1\\.xml"));
}

TEST_F(Sidecar, IsNoSystemFile) {
    m_folder.write(L"Clip1.xml", "");
    if (!mark(L"Clip1.xml", FILE_ATTRIBUTE_SYSTEM))
        GTEST_SKIP() << "this disk does not keep the attribute of system files";

    EXPECT_EQ(L"", find(L"\\1\\.xml"));
}

TEST_F(Sidecar, MayBeReadOnly) {
    m_folder.write(L"Clip1.xml", "");
    ASSERT_TRUE(mark(L"Clip1.xml", FILE_ATTRIBUTE_READONLY));

    EXPECT_EQ(folder() + L"Clip1.xml", find(L"\\1\\.xml"));
}

TEST_F(Sidecar, HasANameThatDoesNotBeginWithADot) {
    test::FakeEntries const entries{
        {L".", FILE_ATTRIBUTE_ARCHIVE},
        {L"..", FILE_ATTRIBUTE_ARCHIVE},
        {L".hidden.xml", FILE_ATTRIBUTE_ARCHIVE}};

    EXPECT_EQ(L"", find(L".*"));
}

TEST_F(Sidecar, HasNoneOfTheAttributesOfWhatIsNoPlainFile) {
    constexpr DWORD excluded = 0x15656;
    for (unsigned bit = 0; bit < 32; ++bit) {
        auto const attribute = DWORD{1} << bit;
        test::FakeEntries const entries{{L"first.xml", attribute}, {L"second.xml", attribute}};

        auto const isFound = find(L".*\\.xml") == folder() + L"first.xml";

        EXPECT_EQ((attribute & excluded) == 0, isFound) << std::hex << attribute;
        EXPECT_EQ(0, entries.openSearches());
    }
}

TEST_F(Sidecar, HasNoneOfThoseAttributesBesideOthers) {
    test::FakeEntries const entries{
        {L"a.xml", FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_OFFLINE},
        {L"b.xml", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY},
        {L"c.xml", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_COMPRESSED}};

    EXPECT_EQ(folder() + L"c.xml", find(L".*\\.xml"));
}

TEST_F(Sidecar, MayHaveNoAttributesAtAll) {
    test::FakeEntries const entries{{L"a.xml", 0}};

    EXPECT_EQ(folder() + L"a.xml", find(L".*\\.xml"));
}

TEST_F(Sidecar, IsTheFirstOfTwoThatMatch) {
    m_folder.write(L"Clip1_a.xml", "");
    m_folder.write(L"Clip1_b.xml", "");

    EXPECT_EQ(folder() + L"Clip1_a.xml", find(L"\\1_.\\.xml"));

    EXPECT_THAT(
        m_log.lines(), ElementsAre(
                           searching(L"Clip1_.\\.xml"), ambiguous(L"Clip1_a.xml", L"Clip1_b.xml"),
                           found(L"Clip1_a.xml")));
}

TEST_F(Sidecar, IsTheFirstInTheOrderOfTheFileSystem) {
    test::FakeEntries const entries{
        {L"none.txt", FILE_ATTRIBUTE_ARCHIVE},
        {L"c.xml", FILE_ATTRIBUTE_ARCHIVE},
        {L"a.xml", FILE_ATTRIBUTE_ARCHIVE},
        {L"hidden.xml", FILE_ATTRIBUTE_HIDDEN},
        {L"b.xml", FILE_ATTRIBUTE_ARCHIVE}};

    EXPECT_EQ(folder() + L"c.xml", find(L".*\\.xml"));

    EXPECT_THAT(
        m_log.lines(), ElementsAre(
                           searching(L".*\\.xml"), ambiguous(L"c.xml", L"a.xml"),
                           ambiguous(L"c.xml", L"b.xml"), found(L"c.xml")));
}

TEST_F(Sidecar, IsNoneWhereNothingMatches) {
    m_folder.write(L"Clip2.xml", "");

    EXPECT_EQ(L"", find(L"\\1\\.xml"));

    EXPECT_THAT(m_log.lines(), ElementsAre(searching(L"Clip1\\.xml"), foundNone()));
}

TEST_F(Sidecar, IsNoneInAMissingFolder) {
    EXPECT_EQ(L"", FindSidecarFile(L"a.mov", anyMovie, folder() + L"none\\", L"\\1", L"*"));

    EXPECT_THAT(
        m_log.texts(), ElementsAre(
                           L"Searching for sidecar file [a] in [" + folder() + L"none\\]",
                           L"Failed to find matching sidecar in [" + folder() + L"none\\]"));
}

TEST_F(Sidecar, LogsNamesAsValues) {
    FindSidecarFile(L"100%s%n.mov", anyMovie, L"F:\\%s%n\\", L"\\1%s%n", L"*");

    EXPECT_THAT(
        m_log.lines(), ElementsAre(
                           test::LoggedFormat(7, L"Searching for sidecar file [%s] in [%s]"),
                           test::LoggedFormat(4, L"Failed to find matching sidecar in [%s]")));
    EXPECT_EQ(L"100%s%n%s%n", m_log.lines().at(0).values.at(0).text);
    EXPECT_EQ(L"F:\\%s%n\\", m_log.lines().at(1).values.at(0).text);
}

TEST_P(RefusedMovie, HasNoSidecar) {
    auto const& [movieFile, regex] = GetParam();

    EXPECT_EQ(L"", FindSidecarFile(movieFile, regex, folder(), L"", L"*"));

    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(
                           3, L"Movie file [" + std::wstring(movieFile) +
                                  L"] failed to match regular expression [" + regex + L"]")));
}

TEST_F(Sidecar, IsLookedForBesideAnEmptyMovieName) {
    m_folder.write(L"a.xml", "");

    EXPECT_EQ(folder() + L"a.xml", FindSidecarFile({}, {}, folder(), L"a.xml", L"*"));
}

TEST_P(BadExpression, OfTheMovieIsLogged) {
    EXPECT_EQ(L"", FindSidecarFile(L"a.mov", GetParam(), folder(), L"x", L"*"));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(3, L"Failed to parse sidecar regex [" + std::wstring(GetParam()) + L"]")));
    EXPECT_FALSE(IsThreadAFiber());
}

TEST_P(BadExpression, OfTheSidecarIsLoggedAsThatOfTheMovie) {
    test::FakeEntries const entries{{L"a", FILE_ATTRIBUTE_ARCHIVE}};

    EXPECT_EQ(L"", find(GetParam()));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            searching(GetParam()), Logged(3, L"Failed to parse sidecar regex [(.*)\\.mov]")));
    EXPECT_THAT(entries.patterns(), IsEmpty());
    EXPECT_FALSE(IsThreadAFiber());
}

TEST_F(Sidecar, WithAPlaceholderOfNoCaptureIsABadExpression) {
    EXPECT_EQ(L"", find(L"\\7.xml"));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            searching(L"\\7.xml"), Logged(3, L"Failed to parse sidecar regex [(.*)\\.mov]")));
}
