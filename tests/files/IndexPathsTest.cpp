// From the archive to its index and back.

#include "vrUtils/Files/IndexPaths.h"

#include "tests/files/PathType.h"
#include "vrUtils/Files/Exceptions.h"
#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <optional>
#include <ostream>
#include <string>
#include <type_traits>

using namespace vrUtils::Files;
using vr::Path;

namespace {

static_assert(std::is_empty_v<ArchiveToIndexPathConverter>);
static_assert(std::is_empty_v<IndexToArchivePathConverter>);
static_assert(std::is_copy_assignable_v<ArchiveToIndexPathConverter>);
static_assert(std::is_copy_assignable_v<IndexToArchivePathConverter>);
static_assert(!std::is_base_of_v<vrException, vrInvalidIndexPathException>);

std::wstring indexOf(Path const& path) {
    return ArchiveToIndexPathConverter().GetIndexPath(path).str();
}

std::wstring archiveOf(Path const& path, std::wstring const& extension = L".mxf") {
    return IndexToArchivePathConverter().GetArchivePath(path, extension).str();
}

// The path that the exception of a refusal holds; none if the path was not refused.
std::optional<Path> refusedPath(Path const& path) {
    try {
        archiveOf(path);
    } catch (vrInvalidIndexPathException const& refusal) {
        return refusal.path();
    }
    return std::nullopt;
}

struct Conversion {
    wchar_t const* from;
    wchar_t const* to;

    friend void PrintTo(Conversion const& conversion, std::ostream* stream) {
        *stream << testing::PrintToString(conversion.from);
    }
};

class IndexPath : public testing::TestWithParam<Conversion> {};

class ArchivePath : public testing::TestWithParam<Conversion> {};

class RefusedIndexPath : public testing::TestWithParam<wchar_t const*> {};

INSTANTIATE_TEST_SUITE_P(
    OfTheNetwork, IndexPath,
    testing::Values(
        Conversion{L"\\\\arc\\vault\\2011\\clip.mxf", L"\\\\arc\\vault\\PFR-INDEX\\2011\\clip.mov"},
        Conversion{L"\\\\arc\\vault\\clip.mxf", L"\\\\arc\\vault\\PFR-INDEX\\clip.mov"},
        Conversion{L"\\\\arc\\clip.mxf", L"\\\\arc\\PFR-INDEX\\clip.mov"},
        Conversion{L"//arc/vault/2011/clip.mxf", L"\\\\arc\\vault\\PFR-INDEX\\2011\\clip.mov"},
        Conversion{L"\\\\arc:8080\\v\\clip.mxf", L"\\\\arc:8080\\v\\PFR-INDEX\\clip.mov"},
        Conversion{L"\\\\arc\\v\\v\\v\\clip.mxf", L"\\\\arc\\v\\PFR-INDEX\\v\\v\\clip.mov"},
        Conversion{L"\\\\arc\\V\\v\\clip.mxf", L"\\\\arc\\V\\PFR-INDEX\\v\\clip.mov"},
        Conversion{L"\\\\arc\\a\\ab\\clip.mxf", L"\\\\arc\\a\\PFR-INDEX\\ab\\clip.mov"}));

INSTANTIATE_TEST_SUITE_P(
    OfADrive, IndexPath,
    testing::Values(
        Conversion{L"D:\\vault\\2011\\clip.mxf", L"D:\\PFR-INDEX\\vault\\2011\\clip.mov"},
        Conversion{L"D:\\x.mxf", L"D:\\PFR-INDEX\\x.mov"},
        // In its normal form it has a drive.
        Conversion{L"D:clip.mxf", L"D:\\PFR-INDEX\\clip.mov"}));

INSTANTIATE_TEST_SUITE_P(
    Relative, IndexPath,
    testing::Values(
        Conversion{L"vault\\clip.mxf", L"PFR-INDEX\\vault\\clip.mov"},
        Conversion{L"clip.mxf", L"PFR-INDEX\\clip.mov"}));

INSTANTIATE_TEST_SUITE_P(
    OfAnyName, IndexPath,
    testing::Values(
        Conversion{L"\\\\a\\b\\clip.take.mxf", L"\\\\a\\b\\PFR-INDEX\\clip.take.mov"},
        Conversion{L"\\\\a\\b\\clip", L"\\\\a\\b\\PFR-INDEX\\clip.mov"},
        Conversion{L"\\\\a\\b\\clip.MOV", L"\\\\a\\b\\PFR-INDEX\\clip.mov"},
        Conversion{L"\\\\a\\b\\clip.", L"\\\\a\\b\\PFR-INDEX\\clip..mov"},
        Conversion{L"\\\\a\\b.c\\clip.mxf", L"\\\\a\\b.c\\PFR-INDEX\\clip.mov"},
        Conversion{
            L"\\\\a\\b\\\u00C9t\u00E9 \u0416.mxf",
            L"\\\\a\\b\\PFR-INDEX\\\u00C9t\u00E9 \u0416.mov"}));

INSTANTIATE_TEST_SUITE_P(
    OfWhatIsNoArchive, IndexPath,
    testing::Values(
        Conversion{L"\\\\a\\b\\PFR-INDEX\\x.mov", L"\\\\a\\b\\PFR-INDEX\\PFR-INDEX\\x.mov"},
        Conversion{L"\\\\a\\b\\c\\", L"\\\\a\\b\\PFR-INDEX\\c\\.mov"},
        Conversion{L"\\\\a", L"\\\\a\\PFR-INDEX.mov"}, Conversion{L"D:\\", L"D:\\PFR-INDEX.mov"},
        Conversion{L"", L"PFR-INDEX.mov"}));

INSTANTIATE_TEST_SUITE_P(
    BelowTheShare, ArchivePath,
    testing::Values(
        Conversion{L"\\\\arc\\vault\\PFR-INDEX\\2011\\clip.mov", L"\\\\arc\\vault\\2011\\clip.mxf"},
        Conversion{L"\\\\arc\\vault\\PFR-INDEX\\clip.mov", L"\\\\arc\\vault\\clip.mxf"},
        Conversion{L"//arc/vault/PFR-INDEX/clip.mov", L"\\\\arc\\vault\\clip.mxf"},
        Conversion{L"\\\\arc:80\\v\\PFR-INDEX\\clip.mov", L"\\\\arc:80\\v\\clip.mxf"}));

INSTANTIATE_TEST_SUITE_P(
    AtAnyDepth, ArchivePath,
    testing::Values(
        Conversion{L"\\\\a\\PFR-INDEX\\x.mov", L"\\\\a\\x.mxf"},
        Conversion{L"\\\\a\\b\\c\\d\\PFR-INDEX\\x.mov", L"\\\\a\\b\\c\\d\\x.mxf"},
        Conversion{L"\\\\a\\PFR-INDEX\\b\\PFR-INDEX\\x.mov", L"\\\\a\\b\\x.mxf"},
        Conversion{L"\\\\a\\PFR-INDEX\\PFR-INDEX\\PFR-INDEX\\x.mov", L"\\\\a\\x.mxf"},
        Conversion{L"\\\\a\\b\\PFR-INDEX\\pfr-index\\x.mov", L"\\\\a\\b\\pfr-index\\x.mxf"},
        Conversion{L"\\\\a\\b\\PFR-INDEX\\PFR-INDEX2\\x.mov", L"\\\\a\\b\\PFR-INDEX2\\x.mxf"}));

INSTANTIATE_TEST_SUITE_P(
    OfAnyName, ArchivePath,
    testing::Values(
        Conversion{L"\\\\a\\b\\PFR-INDEX\\clip.take.mov", L"\\\\a\\b\\clip.take.mxf"},
        Conversion{L"\\\\a\\b\\PFR-INDEX\\PFR-INDEX.mov", L"\\\\a\\b\\PFR-INDEX.mxf"},
        // The extension joins whatever stands before it.
        Conversion{L"\\\\a\\b\\PFR-INDEX\\.mov", L"\\\\a\\b.mxf"}));

INSTANTIATE_TEST_SUITE_P(
    OfNoNetworkPath, RefusedIndexPath,
    testing::Values(
        L"D:\\PFR-INDEX\\x.mov", L"D:\\vault\\PFR-INDEX\\x.mov", L"PFR-INDEX\\x.mov", L"x.mov", L"",
        L"\\PFR-INDEX\\x.mov"));

INSTANTIATE_TEST_SUITE_P(
    OfAnotherExtension, RefusedIndexPath,
    testing::Values(
        L"\\\\a\\b\\PFR-INDEX\\x.MOV", L"\\\\a\\b\\PFR-INDEX\\x.Mov", L"\\\\a\\b\\PFR-INDEX\\x.mxf",
        L"\\\\a\\b\\PFR-INDEX\\x", L"\\\\a\\b\\PFR-INDEX\\x.mov.", L"\\\\a\\b\\PFR-INDEX\\x.movx",
        L"\\\\a\\b\\PFR-INDEX\\"));

INSTANTIATE_TEST_SUITE_P(
    OutsideTheIndex, RefusedIndexPath,
    testing::Values(
        L"\\\\a\\b\\x.mov", L"\\\\a\\b\\pfr-index\\x.mov", L"\\\\a\\b\\PFR-INDEX2\\x.mov",
        L"\\\\a\\b\\PFR-INDEX.mov", L"\\\\PFR-INDEX\\b\\x.mov", L"\\\\a\\b\\ PFR-INDEX\\x.mov"));

} // namespace

TEST_P(IndexPath, RepeatsTheArchiveBelowTheIndexFolder) {
    EXPECT_EQ(GetParam().to, indexOf(Path::file(GetParam().from)));
}

TEST_P(IndexPath, IsTheSameWhateverTheTypeOfThePath) {
    EXPECT_EQ(GetParam().to, indexOf(Path::folder(GetParam().from)));
    EXPECT_EQ(GetParam().to, indexOf(Path(GetParam().from, Path::eDetect)));
}

TEST(IndexPath, TakesAFoldersLastWordForAFile) {
    EXPECT_EQ(L"\\\\a\\b\\PFR-INDEX\\day.mov", indexOf(Path::folder(L"\\\\a\\b\\day.1")));
}

TEST(IndexPath, IsAFiles) {
    auto const index = ArchiveToIndexPathConverter().GetIndexPath(Path::folder(L"\\\\a\\b\\c"));

    EXPECT_THAT(index, HasType(Path::eFile));
}

TEST(IndexPath, LeavesTheArchivePathAsItIs) {
    Path const path(L"D:clip.mxf", Path::eFile);

    indexOf(path);

    EXPECT_EQ(L"D:clip.mxf", textOf(path));
}

TEST(IndexPath, MayBeOfAnyLength) {
    std::wstring const folder(20000, L'f');
    std::wstring const name(12000, L'n');

    EXPECT_EQ(
        L"\\\\a\\b\\PFR-INDEX\\" + folder + L'\\' + name + L".mov",
        indexOf(Path::file(L"\\\\a\\b\\" + folder + L'\\' + name + L".mxf")));
}

TEST_P(ArchivePath, LeavesTheIndexFolderOut) {
    EXPECT_EQ(GetParam().to, archiveOf(Path::file(GetParam().from)));
}

TEST_P(ArchivePath, IsTheSameWhateverTheTypeOfThePath) {
    EXPECT_EQ(GetParam().to, archiveOf(Path::folder(GetParam().from)));
    EXPECT_EQ(GetParam().to, archiveOf(Path(GetParam().from, Path::eDetect)));
}

TEST(ArchivePath, TakesTheExtensionAsItStands) {
    auto const path = Path::file(L"\\\\a\\b\\PFR-INDEX\\x.mov");

    EXPECT_EQ(L"\\\\a\\b\\xmxf", archiveOf(path, L"mxf"));
    EXPECT_EQ(L"\\\\a\\b\\x", archiveOf(path, L""));
    EXPECT_EQ(L"\\\\a\\b\\x.a.b", archiveOf(path, L".a.b"));
}

TEST(ArchivePath, HasTheTypeOfItsText) {
    IndexToArchivePathConverter const converter;
    auto const entry = Path::file(L"\\\\a\\b\\PFR-INDEX\\x.mov");
    auto const nameless = Path::file(L"\\\\a\\b\\PFR-INDEX\\.mov");

    EXPECT_THAT(converter.GetArchivePath(entry, L".mxf"), HasType(Path::eFile));
    EXPECT_THAT(converter.GetArchivePath(nameless, L"\\"), HasType(Path::eFolder));
}

TEST(ArchivePath, OfAnIndexPathIsTheArchivePathAgain) {
    for (auto const* const archive :
         {L"\\\\arc\\vault\\2011\\clip.mxf", L"\\\\arc\\vault\\clip.mxf", L"\\\\arc\\clip.a.mxf"}) {
        auto const index = ArchiveToIndexPathConverter().GetIndexPath(Path::file(archive));

        EXPECT_EQ(archive, archiveOf(index));
    }
}

TEST_P(RefusedIndexPath, IsThrown) {
    auto const path = Path::file(GetParam());

    auto const refused = refusedPath(path);

    ASSERT_TRUE(refused.has_value());
    EXPECT_EQ(textOf(path), textOf(*refused));
}

TEST(RefusedIndexPath, IsACopyOfTheArgument) {
    auto const refused = refusedPath(Path(L"D:day.1", Path::eFolder));

    ASSERT_TRUE(refused.has_value());
    EXPECT_EQ(L"D:day.1", textOf(*refused));
    EXPECT_THAT(*refused, HasType(Path::eFolder));
}

TEST(RefusedIndexPath, MayBeWhatTheIndexOfADriveHas) {
    auto const index = ArchiveToIndexPathConverter().GetIndexPath(Path::file(L"D:\\x.mxf"));

    EXPECT_EQ(L"D:\\PFR-INDEX\\x.mov", textOf(index));
    EXPECT_TRUE(refusedPath(index).has_value());
}
