// What paths cost in allocations, and what they are worth when one fails.

#include "vrUtils/Path.h"

#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

using test::AllocationCounter;
using vr::Path;

// --- cost -----------------------------------------------------------------------------------------

TEST(PathAllocation, SecondNormalFormCostsOneAllocation) {
    auto path = Path::file(L"//server/share/Media/day/clip.mxf");
    path.str();
    AllocationCounter const counter;

    auto const text = path.str();

    EXPECT_EQ(1u, counter.allocations());
    EXPECT_EQ(LR"(\\server\share\Media\day\clip.mxf)", text);
}

TEST(PathAllocation, ParseCostsTheSplitterAndOneAllocationAFolder) {
    auto const path = Path::file(L"//server/share/Media/1234567/a file name of any length.mxf");
    AllocationCounter const counter;

    auto const& parts = path.components();

    EXPECT_EQ(1u + 3u, counter.allocations());
    EXPECT_EQ(3u, parts.folders().size());
}

TEST(PathAllocation, ParseWithoutFoldersCostsTheSplitterAlone) {
    auto const path = Path::file(L"C:/a file name of any length.mxf");
    AllocationCounter const counter;

    path.components();

    EXPECT_EQ(1u, counter.allocations());
}

TEST(PathAllocation, FolderOfMoreThanSevenCharactersCostsItsCharactersToo) {
    auto const path = Path::folder(L"C:/1234567/12345678/");
    AllocationCounter const counter;

    path.components();

    EXPECT_EQ(1u + 2u + 1u, counter.allocations());
}

TEST(PathAllocation, TextThatTheSplitterCannotHoldCostsOneMore) {
    auto const path = Path::file(L"C:/" + std::wstring(300, L'n'));
    AllocationCounter const counter;

    path.components();

    EXPECT_EQ(1u + 1u, counter.allocations());
}

TEST(PathAllocation, DetectionIsTheOnlyParse) {
    AllocationCounter counter;
    Path const path(L"C:/Media/clip.mxf", Path::eDetect);
    auto const made = counter.allocations();

    path.components();

    EXPECT_EQ(1u + 1u + 1u, made);
    EXPECT_EQ(made, counter.allocations());
}

TEST(PathAllocation, QuestionsToAParsedPathCostNothing) {
    auto const path = Path::file(L"C:/Media/day/clip.mxf");
    auto const root = Path::folder(L"c:/media/day/and a long name");
    path.components();
    root.components();
    AllocationCounter const counter;

    EXPECT_EQ(21u, path.size());
    EXPECT_TRUE(path.isAbsolute());
    EXPECT_FALSE(path.hasCommonRoot(root));
    EXPECT_FALSE(path == root);

    EXPECT_EQ(0u, counter.allocations());
}

TEST(PathAllocation, CopyCostsItsTextAlone) {
    auto const path = Path::file(L"C:/Media/day/clip.mxf");
    path.components();
    AllocationCounter const counter;

    Path const copy(path);

    EXPECT_EQ(1u, counter.allocations());
    EXPECT_FALSE(copy.empty());
}

TEST(PathAllocation, MoveCostsNothing) {
    auto path = Path::file(L"C:/Media/day/clip.mxf");
    path.components();
    AllocationCounter const counter;

    Path const moved(std::move(path));

    EXPECT_FALSE(moved.empty());
    EXPECT_EQ(0u, counter.allocations());
}

TEST(PathAllocation, EverythingIsReleased) {
    AllocationCounter const counter;
    {
        auto path = Path::file(L"//server/share/Media/a long folder name/clip.mxf");
        path.components();
        Path assigned;
        assigned = path;
        assigned += path;
        assigned.components();
    }

    EXPECT_LT(0u, counter.allocations());
    EXPECT_EQ(counter.allocations(), counter.releases());
}

// --- failed allocations ---------------------------------------------------------------------------

TEST(PathAllocation, EachFailureInMakingAndParsingComesOut) {
    std::wstring const text = L"//server/share/a long folder name/" + std::wstring(300, L'n');

    auto const failures = test::failEachAllocation([&] {
        auto path = Path::file(text);
        path.str();
    });

    EXPECT_LE(5u, failures);
}

TEST(PathAllocation, EachFailureInJoiningComesOut) {
    auto const left = Path::folder(L"C:/Media/a long folder name");
    auto const right = Path::file(L"another long folder name/clip.mxf");

    auto const failures = test::failEachAllocation([&] { left + right; });

    EXPECT_LE(2u, failures);
}

TEST(PathAllocation, EachFailureInTakingRootsAwayComesOut) {
    auto const path = Path::file(L"C:/Media/a long folder name/clip.mxf");
    auto const root = Path::folder(L"C:/Media/");

    auto const failures = test::failEachAllocation([&] { path.removeCommonRoot(root); });

    EXPECT_LE(1u, failures);
}

TEST(PathAllocation, FailedParseLeavesThePathUnparsed) {
    auto path = Path::file(L"C:/Media/clip.mxf");
    {
        AllocationCounter counter;
        counter.failAt(2);
        EXPECT_THROW(path.components(), std::bad_alloc);
    }

    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
}

TEST(PathAllocation, FailedAssignmentOfTextLeavesTheBuilderAlone) {
    vr::PathCreator path(L"before");
    {
        AllocationCounter counter;
        counter.failAt(1);
        EXPECT_THROW(path = L"a text that needs the heap", std::bad_alloc);
    }

    EXPECT_EQ(L"before", path.get());
}

TEST(PathAllocation, FailedAppendingOfAFolderLeavesThePathAlone) {
    auto path = Path::folder(L"C:/a/");
    path.components();
    {
        AllocationCounter counter;
        counter.failAt(1);
        EXPECT_THROW(path.AppendFolderIfNotPresent(L"a long folder name"), std::bad_alloc);
    }

    EXPECT_EQ(LR"(C:\a\)", path.str());
}

TEST(PathAllocation, FailedAssignmentOfAPathLeavesItUsable) {
    auto const source = Path::file(L"C:/Media/clip.mxf");
    auto path = Path::file(L"b.c");
    {
        AllocationCounter counter;
        counter.failAt(1);
        EXPECT_THROW(path = source, std::bad_alloc);
    }

    EXPECT_EQ(L"b.c", path.str());
    path = source;
    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
}
