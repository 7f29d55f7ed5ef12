#include "vrUtils/Path.h"

#include "RandomText.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

using vr::PathCreator;

namespace {

using namespace std::string_literals;

// A builder whose text is exactly this, whatever separators it holds.
PathCreator holding(std::wstring const& text) {
    PathCreator path;
    path.appendRaw(text);
    return path;
}

} // namespace

TEST(PathCreator, DefaultIsEmpty) {
    PathCreator const path;

    EXPECT_TRUE(path.empty());
    EXPECT_EQ(L"", path.get());
    EXPECT_STREQ(L"", path.c_str());
}

TEST(PathCreator, IsMadeFromAString) {
    PathCreator const path(L"C:/Media/Clips/"s);

    EXPECT_EQ(LR"(C:\Media\Clips\)", path.get());
}

TEST(PathCreator, IsMadeFromAPointer) {
    PathCreator const path(L"C:/Media/Clips/");

    EXPECT_EQ(LR"(C:\Media\Clips\)", path.get());
}

TEST(PathCreator, ConvertsFromTextImplicitly) {
    EXPECT_TRUE((std::is_convertible_v<std::wstring, PathCreator>));
    EXPECT_TRUE((std::is_convertible_v<wchar_t const*, PathCreator>));
}

TEST(PathCreator, HasNoVirtualOperationButTheDestructor) {
    // One pointer to the operations and the text, nothing else.
    EXPECT_TRUE(std::has_virtual_destructor_v<PathCreator>);
    EXPECT_EQ(sizeof(void*) + sizeof(std::wstring), sizeof(PathCreator));
}

TEST(PathCreator, ReadsAStringUpToItsFirstZero) {
    auto const text = L"a/b\0c"s;

    PathCreator const made(text);
    PathCreator assigned;
    assigned = text;

    EXPECT_EQ(LR"(a\b)", made.get());
    EXPECT_EQ(LR"(a\b)", assigned.get());
}

TEST(PathCreator, CopyTakesTheTextAsItStands) {
    auto const source = holding(L"a/b\\/");

    PathCreator const copy(source);

    EXPECT_EQ(L"a/b\\/", copy.get());
}

TEST(PathCreator, CopyAssignmentTakesTheTextAsItStands) {
    auto const source = holding(L"a/b\\/");
    PathCreator path(L"before");

    auto& result = path = source;

    EXPECT_EQ(L"a/b\\/", path.get());
    EXPECT_EQ(&path, &result);
}

TEST(PathCreator, CopyAssignmentToItselfChangesNothing) {
    auto path = holding(L"a/b");
    auto const& same = path;

    path = same;

    EXPECT_EQ(L"a/b", path.get());
}

TEST(PathCreator, MoveTakesTheTextAsItStands) {
    auto source = holding(L"a/b, long enough to stand on the heap");

    PathCreator const made(std::move(source));

    EXPECT_EQ(L"a/b, long enough to stand on the heap", made.get());
}

TEST(PathCreator, MoveAssignmentTakesTheTextAsItStands) {
    auto source = holding(L"a/b, long enough to stand on the heap");
    PathCreator path(L"before");

    path = std::move(source);

    EXPECT_EQ(L"a/b, long enough to stand on the heap", path.get());
}

TEST(PathCreator, StringAssignmentNormalises) {
    PathCreator path(L"before");

    auto& result = path = L"//host/share"s;

    EXPECT_EQ(LR"(\\host\share)", path.get());
    EXPECT_EQ(&path, &result);
}

TEST(PathCreator, PointerAssignmentNormalises) {
    PathCreator path(L"before");

    auto& result = path = L"//host/share";

    EXPECT_EQ(LR"(\\host\share)", path.get());
    EXPECT_EQ(&path, &result);
}

TEST(PathCreator, AssigningEmptyTextEmpties) {
    PathCreator path(L"before");

    path = L"";

    EXPECT_TRUE(path.empty());
}

TEST(PathCreator, AssigningItsOwnTextNormalises) {
    auto path = holding(L"a/b/c, long enough to stand on the heap");

    path = path.c_str();

    EXPECT_EQ(LR"(a\b\c, long enough to stand on the heap)", path.get());
}

TEST(PathCreator, AssigningTheEndOfItsOwnTextKeepsJustThat) {
    auto path = holding(L"a/b/c, long enough to stand on the heap");

    path = path.c_str() + 2;

    EXPECT_EQ(LR"(b\c, long enough to stand on the heap)", path.get());
}

// --- append ---------------------------------------------------------------------------------------

namespace {

struct Joint {
    char const* situation;
    std::wstring before;
    std::wstring piece;
    std::wstring after;
};

void PrintTo(Joint const& joint, std::ostream* stream) { *stream << joint.situation; }

class PathCreatorAppend : public testing::TestWithParam<Joint> {};

} // namespace

TEST_P(PathCreatorAppend, Joins) {
    auto const& joint = GetParam();
    auto withString = holding(joint.before);
    auto withPointer = holding(joint.before);

    auto& result = withString.append(joint.piece);
    withPointer.append(joint.piece.c_str());

    EXPECT_EQ(joint.after, withString.get());
    EXPECT_EQ(joint.after, withPointer.get());
    EXPECT_EQ(&withString, &result);
}

INSTANTIATE_TEST_SUITE_P(
    Text, PathCreatorAppend,
    testing::Values(
        Joint{"PieceToEmptyTextStandsAlone", L"", L"a", L"a"},
        Joint{"SecondPieceGetsOneBackslash", L"a", L"b", LR"(a\b)"},
        Joint{"EmptyPieceToEmptyTextChangesNothing", L"", L"", L""},
        Joint{"EmptyPieceAddsNoSeparator", L"a", L"", L"a"},
        Joint{"EmptyPieceBehindSeparatorChangesNothing", LR"(a\)", L"", LR"(a\)"},
        Joint{"PieceOfSlashesConverts", L"", L"/a/b//c/", LR"(\a\b\\c\)"},
        Joint{"NameBehindBackslashAlone", LR"(\)", L"a", LR"(\a)"},
        Joint{"SeparatorOnBothSidesMeetsAsOne", LR"(a\)", LR"(\b)", LR"(a\b)"},
        Joint{"ForwardSlashBehindBackslashIsDropped", LR"(a\)", L"/b", LR"(a\b)"},
        Joint{"OnlyOneOfTwoBackslashesIsDropped", LR"(a\)", LR"(\\b)", LR"(a\\b)"},
        Joint{"BackslashBehindBackslashVanishes", LR"(a\)", LR"(\)", LR"(a\)"},
        Joint{"BackslashBehindNameCloses", L"a", LR"(\)", LR"(a\)"},
        Joint{"SeparatorOfThePieceServes", L"a", LR"(\b)", LR"(a\b)"},
        Joint{"TwoSeparatorsOfThePieceStay", L"a", LR"(\\b)", LR"(a\\b)"},
        Joint{"LeadingBackslashesEnterEmptyText", L"", LR"(\\host)", LR"(\\host)"},
        Joint{"ForwardSlashesEnterEmptyTextConverted", L"", L"//host", LR"(\\host)"},
        Joint{"TrailingSeparatorsStay", L"a", LR"(b\\)", LR"(a\b\\)"},
        Joint{"BlanksAreAnOrdinaryPiece", L"a", L"  ", LR"(a\  )"},
        Joint{"ForwardSlashInTheTextIsNoSeparator", L"a/", L"b", LR"(a/\b)"},
        Joint{"BackslashBehindForwardSlashStays", L"a/", LR"(\b)", LR"(a/\b)"},
        Joint{"TextItselfIsNotConverted", L"a/b", L"c/d", LR"(a/b\c\d)"},
        Joint{"PieceEndsAtItsFirstZero", L"a", L"b\0c"s, LR"(a\b)"},
        Joint{"PieceThatBeginsWithZeroIsEmpty", L"a", L"\0b"s, L"a"},
        Joint{"PercentSignsAndSurrogatesStay", L"a", L"%s%n\xD800", L"a\\%s%n\xD800"}),
    [](auto const& row) { return row.param.situation; });

TEST(PathCreator, AppendsItsOwnText) {
    for (auto const* text :
         {L"a", L"a/b", LR"(a\)", LR"(\a\)", L"of a length that needs the heap"}) {
        auto path = holding(text);
        auto expected = holding(text);
        expected.append(std::wstring(text));

        path.append(path.c_str());

        EXPECT_EQ(expected.get(), path.get());
    }
}

TEST(PathCreator, AppendsItsOwnTextWhereThatHasToMove) {
    for (std::size_t const length : {7u, 100u, 1000u}) {
        std::wstring const text(length, L'x');
        vr::PathCreator path;
        path.appendRaw(text);

        path.append(path.c_str() + 1);

        EXPECT_EQ(text + L'\\' + text.substr(1), path.get());
    }
}

TEST(PathCreator, AppendsItsOwnTextRaw) {
    auto path = holding(L"a/b, long enough to stand on the heap");

    path.appendRaw(path.c_str() + 32);

    EXPECT_EQ(L"a/b, long enough to stand on the heap heap", path.get());
}

TEST(PathCreator, AppendCallsChain) {
    PathCreator path(L"C:/Media");

    path.append(L"/Clips/").append(L"a").appendRaw(L".mxf"s).appendRaw(L".tmp");

    EXPECT_EQ(LR"(C:\Media\Clips\a.mxf.tmp)", path.get());
}

TEST(PathCreator, AppendRawAddsTextAsItIs) {
    PathCreator path(L"a");

    path.appendRaw(L"/b"s).appendRaw(L"\\/c").appendRaw(L"");

    EXPECT_EQ(L"a/b\\/c", path.get());
}

TEST(PathCreator, AppendRawReadsAStringUpToItsFirstZero) {
    PathCreator path(L"a");

    path.appendRaw(L"b\0c"s);

    EXPECT_EQ(L"ab", path.get());
}

TEST(PathCreator, ClearEmpties) {
    PathCreator path(L"a");

    path.clear();

    EXPECT_TRUE(path.empty());
    EXPECT_STREQ(L"", path.c_str());
}

TEST(PathCreator, EmptyLooksAtTheLengthOnly) {
    EXPECT_FALSE(PathCreator(L" ").empty());
    EXPECT_FALSE(PathCreator(L"\\").empty());
}

TEST(PathCreator, GetIsACopy) {
    PathCreator path(L"a");

    auto const text = path.get();
    path.append(L"b");

    EXPECT_EQ(L"a", text);
}

TEST(PathCreator, ConvertsToForwardSlashesInPlace) {
    PathCreator path(LR"(\\host\share/a\)");

    path.convertToForwardSlash();

    EXPECT_EQ(L"//host/share/a/", path.get());
}

TEST(PathCreator, NothingTurnsForwardSlashesBack) {
    PathCreator path(LR"(a\b\)");
    path.convertToForwardSlash();

    path.append(LR"(\c\d)");

    EXPECT_EQ(LR"(a/b/\c\d)", path.get());
}

// --- host, folder, name, extension ----------------------------------------------------------------

TEST(PathCreator, JoinsHostFolderNameAndExtension) {
    PathCreator const path(L"server", L"share/Media", L"clip", L".mxf");

    EXPECT_EQ(LR"(\\server\share\Media\clip.mxf)", path.get());
}

TEST(PathCreator, NameAndExtensionMayBeNull) {
    PathCreator const path(L"server", L"share", nullptr, nullptr);

    EXPECT_EQ(LR"(\\server\share)", path.get());
}

TEST(PathCreator, ExtensionJoinsTheFolderIfThereIsNoName) {
    PathCreator const path(L"server", L"share", nullptr, L".x");

    EXPECT_EQ(LR"(\\server\share.x)", path.get());
}

TEST(PathCreator, EmptyNameAndExtensionAddNothing) {
    PathCreator const path(L"server", L"share", L"", L"");

    EXPECT_EQ(LR"(\\server\share)", path.get());
}

TEST(PathCreator, EmptyFolderAddsNothing) {
    PathCreator const path(L"server", L"", L"name", nullptr);

    EXPECT_EQ(LR"(\\server\name)", path.get());
}

TEST(PathCreator, ExtensionIsNeitherConvertedNorGivenADot) {
    PathCreator const path(L"server", L"share", L"name", L"/x");

    EXPECT_EQ(LR"(\\server\share\name/x)", path.get());
}

TEST(PathCreator, HostLosesItsSlashes) {
    PathCreator const path(L"\\/server/\\", L"share", nullptr, nullptr);

    EXPECT_EQ(LR"(\\server\share)", path.get());
}

TEST(PathCreator, HostLosesItsWhiteSpace) {
    PathCreator const path(L" \t\r\nserver\n\r\t ", L"share", nullptr, nullptr);

    EXPECT_EQ(LR"(\\server\share)", path.get());
}

TEST(PathCreator, HostLosesWhiteSpaceInsideSlashes) {
    PathCreator const path(L"\\\\ server //", L"share", nullptr, nullptr);

    EXPECT_EQ(LR"(\\server\share)", path.get());
}

TEST(PathCreator, HostKeepsSlashesInsideWhiteSpace) {
    PathCreator const path(L"  \\\\name", L"share", nullptr, nullptr);

    EXPECT_EQ(LR"(\\\name\share)", path.get());
}

TEST(PathCreator, HostOfNothingGivesNoPrefix) {
    for (auto const* host : {L"", L"\\\\", L"/\\/", L" \t", L"\\ \\"}) {
        PathCreator const path(host, L"folder", L"name", nullptr);

        EXPECT_EQ(LR"(folder\name)", path.get()) << "host " << testing::PrintToString(host);
    }
}

TEST(PathCreator, FolderKeepsItsLeadingBackslashesWithoutAHost) {
    PathCreator const path(L"", L"//server/share", nullptr, nullptr);

    EXPECT_EQ(LR"(\\server\share)", path.get());
}

// --- against the rules, literally -----------------------------------------------------------------

namespace {

// The rules of joining, one after the other, with a copy at each step.
std::wstring joinedByTheRules(std::wstring const& path, std::wstring const& piece) {
    auto copy = piece;
    for (auto& character : copy)
        if (character == L'/')
            character = L'\\';
    if (copy.empty())
        return path;
    if (!path.empty() && path.back() == L'\\') {
        if (copy.front() == L'\\')
            return path + copy.substr(1);
        return path + copy;
    }
    if (path.empty())
        return copy;
    if (copy.front() == L'\\')
        return path + copy;
    return path + L"\\" + copy;
}

} // namespace

TEST(PathCreator, AgreesWithTheRulesOnRandomPieces) {
    test::Campaign campaign(50000);
    RandomText<wchar_t> texts(L"\\\\//ab. ", campaign);
    while (campaign.nextRound()) {
        auto expected = texts.upTo(4);
        auto path = holding(expected);
        for (int pieces = 0; pieces < 3; ++pieces) {
            auto const before = path.get();
            auto const piece = texts.upTo(4);
            expected = joinedByTheRules(expected, piece);

            path.append(piece);

            ASSERT_EQ(expected, path.get())
                << testing::PrintToString(before) << " and " << testing::PrintToString(piece);
        }
    }
}
