// `vrtool sidecar`: the steps that lead to a companion file, or to none.

#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::HasSubstr;

namespace {

class VrtoolSidecar : public testing::Test {
  protected:
    test::ToolRun
    run(std::wstring const& movie, std::wstring const& regex, std::wstring const& name,
        std::vector<std::wstring> const& options = {}) const {
        std::vector<std::wstring> all{L"sidecar", movie,     L"--regex", regex,        L"--folder",
                                      path,       L"--name", name,       L"--pattern", L"*.xml"};
        all.insert(all.end(), options.begin(), options.end());
        return test::runTool(all);
    }

    Json::Value
    steps(std::wstring const& movie, std::wstring const& regex, std::wstring const& name) const {
        return run(movie, regex, name, {L"--json"}).json();
    }

    static Json::Value texts(std::vector<char const*> const& all) {
        Json::Value array(Json::arrayValue);
        for (auto const* const text : all)
            array.append(text ? Json::Value(text) : Json::Value());
        return array;
    }

    test::ScratchFolder const folder;
    std::wstring const path = folder.path() + L'\\';
    std::string const shown = test::utf8(path);
};

} // namespace

TEST_F(VrtoolSidecar, FindsTheExactName) {
    folder.write(L"Clip1.xml", "a");

    auto const result = run(L"Clip1.MOV", LR"((.*)\.mov)", LR"(\1.xml)");

    EXPECT_EQ(
        R"(WHAT             VALUE
movie            Clip1.MOV
regex            (.*)\.mov
matches          yes
captures         Clip1.MOV, Clip1
filledName       Clip1.xml
exactPath        )" +
            shown + R"(Clip1.xml
exactExists      yes
matchingEntries  -
passedOver       -
sidecar          )" +
            shown + R"(Clip1.xml
verdict          the exact name
)",
        result.out);
    EXPECT_EQ("", result.error);
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolSidecar, FindsTheOnlyMatch) {
    folder.write(L"Clip1_notes.XML", "a");
    folder.write(L"Clip2_notes.xml", "b");

    auto const result = run(L"Clip1.mov", LR"((.*)\.mov)", LR"(\1_.*\.xml)", {L"--json"});
    auto const document = result.json();

    EXPECT_EQ(R"(Clip1_.*\.xml)", document["filledName"].asString());
    EXPECT_EQ(Json::Value(false), document["exactExists"]);
    EXPECT_EQ(texts({"Clip1_notes.XML"}), document["matchingEntries"]);
    EXPECT_EQ(texts({}), document["passedOver"]);
    EXPECT_EQ(shown + "Clip1_notes.XML", document["sidecar"].asString());
    EXPECT_EQ("the only match", document["verdict"].asString());
    EXPECT_EQ(12u, document.size());
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolSidecar, TellsOfAllMatches) {
    folder.write(L"Clip1_a.xml", "a");
    folder.write(L"Clip1_b.xml", "b");

    auto const document = steps(L"Clip1.mov", LR"((.*)\.mov)", LR"(\1_.*\.xml)");

    EXPECT_EQ(texts({"Clip1_a.xml", "Clip1_b.xml"}), document["matchingEntries"]);
    EXPECT_EQ(shown + "Clip1_a.xml", document["sidecar"].asString());
    EXPECT_EQ("the first of 2 matches", document["verdict"].asString());
}

TEST_F(VrtoolSidecar, TellsOfWhatIsPassedOver) {
    folder.makeFolder(L"Clip1_a.xml");
    folder.write(L".Clip1_b.xml", "b");

    auto const result = run(L"Clip1.mov", LR"((.*)\.mov)", LR"(.?\1_.*\.xml)", {L"--json"});
    auto const document = result.json();

    EXPECT_EQ(texts({}), document["matchingEntries"]);
    EXPECT_THAT(document["passedOver"].toStyledString(), HasSubstr("\"Clip1_a.xml\""));
    EXPECT_TRUE(document["sidecar"].isNull());
    EXPECT_EQ("no entry matches", document["verdict"].asString());
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolSidecar, TellsThatTheMovieDoesNotMatch) {
    auto const result = run(L"Clip1.mov", LR"((.*)\.mp)", LR"(\1.xml)", {L"--json"});
    auto const document = result.json();

    EXPECT_EQ(Json::Value(false), document["matches"]);
    EXPECT_TRUE(document.isMember("captures") && document["captures"].isNull());
    EXPECT_TRUE(document["filledName"].isNull());
    EXPECT_EQ("the movie's name does not match", document["verdict"].asString());
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolSidecar, TellsThatTheFirstExpressionIsWrong) {
    auto const result = run(L"Clip1.mov", L"(.*", LR"(\1.xml)", {L"--json"});
    auto const document = result.json();

    EXPECT_TRUE(document["matches"].isNull());
    EXPECT_THAT(
        document["failures"]["matches"].asString(), HasSubstr("the expression cannot be used: "));
    EXPECT_EQ("an expression cannot be used", document["verdict"].asString());
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolSidecar, TellsThatTheFilledNameIsAWrongExpression) {
    auto const document = steps(L"Clip1.mov", LR"((.*)\.mov)", LR"(\7)");

    EXPECT_EQ(R"(\7)", document["filledName"].asString());
    EXPECT_TRUE(document["matchingEntries"].isNull());
    EXPECT_THAT(
        document["failures"]["matchingEntries"].asString(),
        HasSubstr("the expression cannot be used: "));
    EXPECT_EQ("an expression cannot be used", document["verdict"].asString());
}

TEST_F(VrtoolSidecar, TellsThatAnExpressionIsTooLong) {
    std::wstring const regex(2000, L'a');

    auto const document = steps(std::wstring(2000, L'a'), regex, L"a");

    EXPECT_EQ("too long to be tried step by step", document["failures"]["matches"].asString());
    EXPECT_TRUE(document["sidecar"].isNull());
}

TEST_F(VrtoolSidecar, TellsTheLibrarysAnswerWhereItHasNoneOfItsOwn) {
    folder.write(L"a.xml", "a");
    std::wstring const name(900, L'a');

    auto const document = steps(name, name, L"a.xml");

    EXPECT_EQ("too long to be tried step by step", document["failures"]["matches"].asString());
    EXPECT_EQ(shown + "a.xml", document["sidecar"].asString());
    EXPECT_EQ("found by the library alone", document["verdict"].asString());
}

TEST_F(VrtoolSidecar, FillsTheNameAsTheLibraryDoes) {
    auto const filled = [this](std::wstring const& name) {
        return steps(L"a-b.mov", LR"((a)-(b)(x)?\.mov)", name)["filledName"].asString();
    };

    EXPECT_EQ("a-b.mov", filled(LR"(\0)"));
    EXPECT_EQ("b_a", filled(LR"(\2_\1)"));
    EXPECT_EQ(R"(\3\4)", filled(LR"(\3\4)"));
    EXPECT_EQ(R"(\a)", filled(LR"(\\1)"));
    EXPECT_EQ(R"(a\)", filled(LR"(\1\)"));
    EXPECT_EQ(R"(\:)", filled(LR"(\:)"));
}

TEST_F(VrtoolSidecar, KnowsNoCaptureBehindTheNinth) {
    auto const document = steps(L"abcdefghij", L"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", LR"(\9\:\10)");

    EXPECT_EQ(R"(i\:a0)", document["filledName"].asString());
}

TEST_F(VrtoolSidecar, TellsWhichCaptureTookNoPart) {
    auto const document = steps(L"a-b.mov", LR"((a)-(x)?(b)\.mov)", L"c");

    EXPECT_EQ(texts({"a-b.mov", "a", nullptr, "b"}), document["captures"]);
}

TEST_F(VrtoolSidecar, TellsThatTheFolderCannotBeSearched) {
    auto const result = test::runTool(
        {L"sidecar", L"a.mov", L"--regex", L"(.*).mov", L"--folder", path + LR"(missing\)",
         L"--name", LR"(\1.xml)", L"--pattern", L"*.xml", L"--json"});
    auto const document = result.json();

    EXPECT_EQ(texts({}), document["matchingEntries"]);
    EXPECT_THAT(document["failures"]["matchingEntries"].asString(), HasSubstr("error 3"));
    EXPECT_EQ("no entry matches", document["verdict"].asString());
}

TEST_F(VrtoolSidecar, TellsOfNoFailureWhereNothingHasTheWildcard) {
    folder.write(L"a.txt", "a");

    auto const document = steps(L"a.mov", L"(.*).mov", LR"(\1.xml)");

    EXPECT_EQ(texts({}), document["matchingEntries"]);
    EXPECT_EQ(Json::Value(Json::objectValue), document["failures"]);
}
