#include "vrUtils/Path.h"

#include "PathProbes.h"

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>
#include <utility>

using vr::Path;

namespace {

using namespace std::string_literals;

// A path whose parse no longer fits its text: the builder was changed after the path was read.
Path staleAs(std::wstring const& parsed, std::wstring const& added) {
    Path path;
    auto& builder = path.modify(Path::eFile).append(parsed);
    path.components();
    builder.append(added);
    return path;
}

} // namespace

// --- shape ----------------------------------------------------------------------------------------

TEST(Path, InheritsTheBuilderPrivately) {
    EXPECT_TRUE((std::is_base_of_v<vr::PathCreator, Path>));
    EXPECT_FALSE((std::is_convertible_v<Path*, vr::PathCreator*>));
    EXPECT_FALSE((std::is_convertible_v<Path const&, vr::PathCreator const&>));
}

TEST(Path, NormalFormIsNotForConstPaths) {
    EXPECT_TRUE((std::is_same_v<decltype(&Path::str), std::wstring (Path::*)()>));
    EXPECT_FALSE((std::is_invocable_v<decltype(&Path::str), Path const&>));
}

TEST(Path, QuestionsAreForConstPaths) {
    EXPECT_TRUE((std::is_invocable_r_v<bool, decltype(&Path::empty), Path const&>));
    EXPECT_TRUE((std::is_invocable_r_v<bool, decltype(&Path::isRelative), Path const&>));
    EXPECT_TRUE((std::is_invocable_r_v<bool, decltype(&Path::isAbsolute), Path const&>));
    EXPECT_TRUE((std::is_same_v<std::uint64_t (Path::*)() const, decltype(&Path::size)>));
    EXPECT_TRUE(
        (std::is_invocable_r_v<bool, decltype(&Path::hasCommonRoot), Path const&, Path const&>));
    EXPECT_TRUE(
        (std::is_same_v<vr::PathSplitter const& (Path::*)() const, decltype(&Path::components)>));
}

TEST(Path, TypesHaveTheirValues) {
    EXPECT_EQ(0, Path::eFolder);
    EXPECT_EQ(1, Path::eDetect);
    EXPECT_EQ(2, Path::eFile);
}

TEST(Path, MovesWithoutThrowing) {
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<Path>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Path>);
}

// --- constructors ---------------------------------------------------------------------------------

TEST(Path, DefaultIsTheEmptyFolder) {
    Path path;

    EXPECT_TRUE(path.empty());
    EXPECT_EQ(0u, path.size());
    EXPECT_EQ(L"", path.str());
    EXPECT_TRUE(path.isRelative());
    EXPECT_FALSE(isOfAFile(path));
}

TEST(Path, IsMadeFromAString) {
    Path path(L"C:/Media/clip.mxf"s, Path::eFile);

    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
    EXPECT_TRUE(isOfAFile(path));
}

TEST(Path, IsMadeFromAPointer) {
    Path path(L"C:/Media/day.1", Path::eFolder);

    EXPECT_EQ(LR"(C:\Media\day.1)", path.str());
    EXPECT_FALSE(isOfAFile(path));
}

TEST(Path, TypeDecidesWhetherADotIsAnExtension) {
    auto const* text = LR"(C:\Media\day.1)";

    EXPECT_EQ(L"", Path(text, Path::eFolder).components().extension());
    EXPECT_EQ(L".1", Path(text, Path::eFile).components().extension());
    EXPECT_EQ(L".1", Path(text, Path::eDetect).components().extension());
}

TEST(Path, TextWithANameIsDetectedAsAFile) {
    for (auto const* text : {L"C:/a.b", L"C:/a", L"a", L".b", L"//host/share", L"//host.dom", L"."})
        EXPECT_TRUE(isOfAFile(Path(text, Path::eDetect))) << testing::PrintToString(text);
}

TEST(Path, TextWithoutANameIsDetectedAsAFolder) {
    for (auto const* text :
         {L"", L"C:/a.b/", L"C:", L"C:/", L"//host", L"//host.dom/", L"/", L"a/"})
        EXPECT_FALSE(isOfAFile(Path(text, Path::eDetect))) << testing::PrintToString(text);
}

TEST(Path, DetectionTakesStringsToo) {
    EXPECT_TRUE(isOfAFile(Path(L"C:/a"s, Path::eDetect)));
    EXPECT_FALSE(isOfAFile(Path(L"C:/a/"s, Path::eDetect)));
}

// --- factories ------------------------------------------------------------------------------------

TEST(Path, FolderFromText) {
    auto path = Path::folder(L"C:/Media/day.1");

    EXPECT_EQ(LR"(C:\Media\day.1)", path.str());
    EXPECT_FALSE(isOfAFile(path));
}

TEST(Path, FolderOnAHost) {
    auto path = Path::folder(L"/server/", L"share/day.1");

    EXPECT_EQ(LR"(\\server\share\day.1)", path.str());
    EXPECT_FALSE(isOfAFile(path));
}

TEST(Path, FileFromText) {
    auto path = Path::file(L"C:/Media/clip.mxf");

    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
    EXPECT_TRUE(isOfAFile(path));
}

TEST(Path, FileOnAHost) {
    auto path = Path::file(L"server", L"share/Media", L"clip");

    EXPECT_EQ(LR"(\\server\share\Media\clip)", path.str());
    EXPECT_TRUE(isOfAFile(path));
}

TEST(Path, DottedNameOnAHostStillHasItsExtension) {
    auto const path = Path::file(L"server", L"share", L"clip.mxf");

    EXPECT_EQ(L"clip", path.components().fileName());
    EXPECT_EQ(L".mxf", path.components().extension());
}

TEST(Path, FileOnAHostWithItsExtensionApart) {
    auto path = Path::file(L"server", L"share", L"clip", L".mxf");

    EXPECT_EQ(LR"(\\server\share\clip.mxf)", path.str());
    EXPECT_EQ(L".mxf", path.components().extension());
    EXPECT_TRUE(isOfAFile(path));
}

TEST(Path, ExtensionApartWithoutItsDotJoinsTheName) {
    auto const path = Path::file(L"server", L"share", L"clip", L"mxf");

    EXPECT_EQ(L"clipmxf", path.components().fileName());
    EXPECT_EQ(L"", path.components().extension());
}

TEST(Path, EmptyHostGivesNoRoot) {
    auto path = Path::file(L"", L"C:/Media", L"clip", L".mxf");

    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
}

TEST(Path, FactoriesReadStringsUpToTheirFirstZero) {
    auto path = Path::file(L"server", L"share\0x"s, L"clip\0x"s, L".mxf\0x"s);

    EXPECT_EQ(LR"(\\server\share\clip.mxf)", path.str());
}

// --- copies, moves, assignment --------------------------------------------------------------------

TEST(Path, CopyHoldsTheTextAsItWasEntered) {
    Path source;
    source.modify(Path::eFile).appendRaw(L"/a//b.c");

    Path copy(source);

    EXPECT_EQ(L"/a//b.c", enteredText(copy, Path::eFile));
}

TEST(Path, CopyHasTheTypeOfItsSource) {
    EXPECT_TRUE(isOfAFile(Path(Path::file(L"a.b"))));
    EXPECT_FALSE(isOfAFile(Path(Path::folder(L"a.b"))));
}

TEST(Path, CopyParsesForItself) {
    auto source = staleAs(L"a", L"b.c");
    auto const& builderChangedLater = source;

    Path copy(builderChangedLater);

    EXPECT_EQ(LR"(a\b.c)", copy.str());
}

TEST(Path, CopyOfADriveRelativePathStaysRelative) {
    auto const source = Path::file(L"C:foo");

    Path const copy(source);

    EXPECT_TRUE(copy.isRelative());
}

TEST(Path, AssignedDriveRelativePathBecomesAbsolute) {
    auto const source = Path::file(L"C:foo");
    Path path;

    path = source;

    EXPECT_TRUE(path.isAbsolute());
    EXPECT_EQ(LR"(C:\foo)", path.str());
}

TEST(Path, AssignmentTakesTheNormalForm) {
    auto const source = Path::file(L"/a//b.c");
    auto path = Path::folder(L"before");

    auto& result = path = source;

    EXPECT_EQ(LR"(a\b.c)", enteredText(path, Path::eFile));
    EXPECT_EQ(&path, &result);
}

TEST(Path, AssignmentTakesTheType) {
    auto path = Path::folder(L"before");
    auto other = Path::file(L"before");

    path = Path::file(L"a.b");
    other = Path::folder(L"a.b");

    EXPECT_EQ(L".b", path.components().extension());
    EXPECT_EQ(L"", other.components().extension());
}

TEST(Path, AssignmentDropsTheParse) {
    auto path = Path::file(L"before.x");
    path.str();

    path = Path::file(L"after.y");

    EXPECT_EQ(L"after.y", path.str());
}

TEST(Path, AssignmentToItselfNormalises) {
    auto path = Path::file(L"C:foo//bar.x");
    auto const& same = path;

    path = same;

    EXPECT_EQ(LR"(C:foo\bar.x)", enteredText(path, Path::eFile));
}

TEST(Path, AssignmentFromATemporaryTakesTheNormalFormToo) {
    Path path;

    path = Path::file(L"C:foo");

    EXPECT_TRUE(path.isAbsolute());
}

TEST(Path, MoveHoldsTheTextAsItWasEntered) {
    auto source = Path::file(L"C:foo");

    Path moved(std::move(source));

    EXPECT_TRUE(moved.isRelative());
    EXPECT_EQ(L"C:foo", enteredText(moved, Path::eFile));
}

TEST(Path, MovedFromIsEmptyAndUsable) {
    for (auto const* text : {L"a.b", L"C:/of a length that needs the heap/and/some/folders/a.b"}) {
        auto source = Path::file(text);
        source.str();

        Path const moved(std::move(source));

        EXPECT_TRUE(source.empty());
        EXPECT_EQ(L"", source.str());
        source += Path::file(L"c.d");
        EXPECT_EQ(L"c.d", source.str());
    }
}

// --- joining --------------------------------------------------------------------------------------

TEST(Path, AppendsAPath) {
    auto path = Path::folder(L"C:/Media");

    auto& result = path += Path::file(L"day/clip.mxf");

    EXPECT_EQ(LR"(C:\Media\day\clip.mxf)", path.str());
    EXPECT_EQ(&path, &result);
}

TEST(Path, AppendingTakesTheTypeOfTheRightSide) {
    auto file = Path::folder(L"C:/Media");
    auto folder = Path::file(L"C:/Media");

    file += Path::file(L"day.1");
    folder += Path::folder(L"day.1");

    EXPECT_EQ(L".1", file.components().extension());
    EXPECT_EQ(L"", folder.components().extension());
}

TEST(Path, AppendingAnEmptyFolderStillChangesTheType) {
    auto path = Path::file(L"a.b");

    path += Path();

    EXPECT_EQ(L"a.b", path.components().fileName());
}

TEST(Path, AppendsTheNormalFormOfTheRightSide) {
    auto path = Path::folder(L"a");

    path += Path::file(L"//x//y.z/");

    EXPECT_EQ(LR"(a\\x\y.z\)", enteredText(path, Path::eFile));
}

TEST(Path, AbsoluteRightSideStandsInside) {
    auto path = Path::folder(L"a");

    path += Path::file(L"C:/x");

    EXPECT_EQ(LR"(a\C:\x)", path.str());
}

TEST(Path, AppendsItself) {
    auto path = Path::file(L"a/b.c");

    path += path;

    EXPECT_EQ(LR"(a\b.c\a\b.c)", path.str());
}

TEST(Path, AppendsItsOwnTextThroughTheBuilder) {
    auto path = Path::folder(L"a/b/");
    auto& builder = path.modify(Path::eFolder);

    builder.append(builder.c_str());

    EXPECT_EQ(LR"(a\b\a\b\)", path.str());
}

TEST(Path, SumIsACopyOfTheLeftWithTheRightAppended) {
    auto const left = Path::folder(L"C:foo");
    auto const right = Path::file(L"day/clip.mxf");

    auto sum = left + right;

    EXPECT_EQ(LR"(C:foo\day\clip.mxf)", enteredText(sum, Path::eFile));
}

TEST(Path, SumLeavesBothSidesAlone) {
    auto left = Path::folder(L"a");
    auto right = Path::file(L"b.c");

    auto const sum = left + right;

    EXPECT_EQ(L"a", left.str());
    EXPECT_EQ(L"b.c", right.str());
    EXPECT_TRUE(isOfAFile(sum));
}

// --- questions ------------------------------------------------------------------------------------

TEST(Path, EmptyLooksAtTheTextAndSizeAtTheNormalForm) {
    auto const path = Path::folder(L"\\");

    EXPECT_FALSE(path.empty());
    EXPECT_EQ(0u, path.size());
}

TEST(Path, SizeCountsTheAddedBackslash) {
    EXPECT_EQ(3u, Path::folder(L"C:").size());
    EXPECT_EQ(7u, Path::folder(L"//host").size());
}

TEST(Path, PathsWithRootOrDriveAreAbsolute) {
    for (auto const* text : {L"C:", L"C:/a", L"//host", L"//host/share/a.b", L"C://///h/x"}) {
        EXPECT_TRUE(Path::folder(text).isAbsolute()) << testing::PrintToString(text);
        EXPECT_FALSE(Path::folder(text).isRelative()) << testing::PrintToString(text);
    }
}

TEST(Path, AllOthersAreRelative) {
    for (auto const* text : {L"", L"/", L"/a/b.c", L"a", L"C:foo", L"C:foo/bar", L"..", L"//"}) {
        EXPECT_TRUE(Path::folder(text).isRelative()) << testing::PrintToString(text);
        EXPECT_FALSE(Path::folder(text).isAbsolute()) << testing::PrintToString(text);
    }
}

TEST(Path, NormalFormIsTheSameEachTime) {
    auto path = Path::file(L"//server/share//a.b");

    auto const first = path.str();

    EXPECT_EQ(LR"(\\server\share\a.b)", first);
    EXPECT_EQ(first, path.str());
}

TEST(Path, StreamsTheNormalForm) {
    std::wostringstream stream;

    stream << L'[' << Path::file(L"/foo//a.b") << L']';

    EXPECT_EQ(LR"([foo\a.b])", stream.str());
}

// --- parse and change in place --------------------------------------------------------------------

TEST(Path, ParsesOnceAndKeepsTheParse) {
    auto path = Path::file(L"C:/a.b");

    auto const* parts = &path.components();
    path.str();
    path.size();
    path.isRelative();
    path.hasCommonRoot(path);

    EXPECT_EQ(parts, &path.components());
}

TEST(Path, ModifyGivesTheBuilder) {
    auto path = Path::folder(L"C:/Media");

    path.modify(Path::eFile).append(L"clip").appendRaw(L".mxf");

    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
    EXPECT_EQ(L".mxf", path.components().extension());
}

TEST(Path, ModifyDropsTheParse) {
    auto path = Path::folder(L"C:/Media");
    path.str();

    path.modify(Path::eFolder).append(L"day");

    EXPECT_EQ(LR"(C:\Media\day)", path.str());
}

TEST(Path, ModifyAloneChangesTheType) {
    auto path = Path::folder(L"a.b");
    EXPECT_EQ(L"", path.components().extension());

    path.modify(Path::eFile);

    EXPECT_EQ(L".b", path.components().extension());
}

TEST(Path, ModifyKeepsTheText) {
    auto path = Path::folder(L"C:foo");

    EXPECT_EQ(L"C:foo", path.modify(Path::eFolder).get());
    EXPECT_TRUE(path.isRelative());
}

TEST(Path, ModifyDoesNotDetect) {
    auto path = Path::folder(L"\\");
    path.modify(Path::eDetect);
    auto probe = Path::folder(L"a.b");

    // Resolved, the type of a text without a name would be that of a folder.
    probe += path;

    EXPECT_EQ(L".b", probe.components().extension());
}

TEST(Path, ModifiedToDetectParsesAsAFile) {
    auto path = Path::folder(L"C:/Media");

    path.modify(Path::eDetect).append(L"day.1");

    EXPECT_EQ(L".1", path.components().extension());
}

TEST(Path, BuilderUsedAfterAReadDoesNotReachTheParse) {
    auto path = Path::folder(L"a");
    auto& builder = path.modify(Path::eFolder);
    path.str();

    builder.append(L"b");

    EXPECT_EQ(L"a", path.str());
    path.modify(Path::eFolder);
    EXPECT_EQ(LR"(a\b)", path.str());
}

TEST(Path, BuilderWithForwardSlashesStillReadsInNormalForm) {
    auto path = Path::folder(L"//host/share/");

    path.modify(Path::eFolder).convertToForwardSlash();

    EXPECT_EQ(LR"(\\host\share\)", path.str());
}
