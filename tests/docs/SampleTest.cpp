// The checks that samples are given: that they see a promise that does not hold.

#include "tests/docs/Sample.h"

#include <gtest/gtest-spi.h>

using test::matchesPage;
using test::Sample;

TEST(PageText, MatchesItselfOnly) {
    EXPECT_TRUE(matchesPage("C:\\Media", "C:\\Media"));
    EXPECT_FALSE(matchesPage("C:\\Media\\", "C:\\Media"));
    EXPECT_FALSE(matchesPage("", "C:\\Media"));
}

TEST(PageText, IsEmptyWhereThePageSaysSo) {
    EXPECT_TRUE(matchesPage("", "(empty)"));
    EXPECT_FALSE(matchesPage("(empty)", "(empty)"));
}

TEST(PageText, MayHaveAnythingInAGap) {
    EXPECT_TRUE(matchesPage("error 5 of 7", "error ... of ..."));
    EXPECT_TRUE(matchesPage("error  of ", "error ... of ..."));
    EXPECT_TRUE(matchesPage("abab", "...ab"));
    EXPECT_TRUE(matchesPage("", "..."));
}

TEST(PageText, HasAllThatStandsAroundAGap) {
    EXPECT_FALSE(matchesPage("an error 5", "error ..."));
    EXPECT_FALSE(matchesPage("error 5 of", "error ... of ..."));
    EXPECT_FALSE(matchesPage("error 5!", "error ...5"));
    EXPECT_FALSE(matchesPage("aba", "ab...ba"));
    EXPECT_FALSE(matchesPage("a c b", "a...b...c"));
}

TEST(PageText, ShowsEachKindOfValue) {
    EXPECT_EQ(L"true", test::pageText(true));
    EXPECT_EQ(L"-1", test::pageText(-1));
    EXPECT_EQ(L"a, b", test::pageText(std::list<std::wstring>{L"a", L"b"}));
    EXPECT_EQ(L"movie", test::pageText(std::vector<char>{'m', 'o', 'v', 'i', 'e'}));
    EXPECT_EQ(L"C:\\a", test::pageText(vr::Path::file(L"C:/a")));
    EXPECT_EQ(L"0x80E0609D", test::pageHex(0x80E0609DU));
}

TEST_F(Sample, ShowsItsFolderAsPagesDo) {
    EXPECT_EQ("C:\\Media\\clip.mxf", onPage(test::pageText(clip)));
    EXPECT_EQ("[C:\\Media\\]", onPage(L"[" + test::pageText(folder) + L"]"));
}

TEST_F(Sample, SeesAValueThatIsAnother) {
    EXPECT_NONFATAL_FAILURE(SHOWS("6", vrUtils::Files::FileLength(clip)), "matchesPage");
    EXPECT_NONFATAL_FAILURE(SHOWS_HEX("0xA", 11), "matchesPage");
    EXPECT_NONFATAL_FAILURE(EQUALS(6U, vrUtils::Files::FileLength(clip)), "5");
}

TEST_F(Sample, SeesAFailureThatIsAnother) {
    vrUnsetValueException const failure({}, 1, L"text", 0x80004005);

    EXPECT_NONFATAL_FAILURE(THROWS(vrException, std::nullopt, "...", throw failure;), "Unset");
    EXPECT_NONFATAL_FAILURE(THROWS(vrUnsetValueException, 1U, "...", throw failure;), "Code");
    EXPECT_NONFATAL_FAILURE(
        THROWS(vrUnsetValueException, std::nullopt, "other", throw failure;), "matchesPage");
    EXPECT_NONFATAL_FAILURE(THROWS(vrException, std::nullopt, "...", onPage({});), "nothing");
}

TEST_F(Sample, SeesALogLineThatIsMissing) {
    { vrUtils::Performance::ElapsedTimeLogger const timing(L"Ingest"); }

    EXPECT_NONFATAL_FAILURE(LOGGED(6, "Ingest", "Elapsed time : ..."), "not among");
    EXPECT_NONFATAL_FAILURE(LOGGED(7, "Export", "Elapsed time : ..."), "not among");
    EXPECT_NONFATAL_FAILURE(LOGGED(7, "Ingest", "... failed"), "not among");
    LOGGED(7, "Ingest", "Elapsed time : ...");
}

TEST_F(Sample, SeesAProgramThatFailsOrPrintsSomethingElse) {
    EXPECT_NONFATAL_FAILURE(expectProgram([] { return 1; }, ""), "result");
    EXPECT_NONFATAL_FAILURE(expectProgram([] { return 0; }, "text"), "matchesPage");
}

TEST_F(Sample, SeesAPromiseThatNobodyComesTo) {
    promise(2);
    reach(0);
    reach(0);

    EXPECT_NONFATAL_FAILURE(Sample::TearDown(), "were come to");
    reach(1);
}
