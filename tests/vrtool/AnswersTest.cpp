// What a user answers, line by line.

#include "tools/vrtool/Answers.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/AnswersFile.h"
#include "tests/vrtool/KeyConsole.h"
#include "tools/vrtool/CancelKey.h"

#include <gtest/gtest.h>

#include <string>
#include <system_error>

namespace {

using Answer = std::optional<std::string>;

class VrtoolAnswers : public testing::Test {
  protected:
    CancelKey const key;
};

} // namespace

TEST_F(VrtoolAnswers, AreTheLinesInOrder) {
    test::AnswersFile const input("yes\nundo\n");

    EXPECT_EQ(Answer("yes"), nextAnswer(key));
    EXPECT_EQ(Answer("undo"), nextAnswer(key));
    EXPECT_EQ(Answer(), nextAnswer(key));
}

TEST_F(VrtoolAnswers, HaveNeitherCaseNorBlanksAtTheirEnds) {
    test::AnswersFile const input(" \tYes, please \r\n");

    EXPECT_EQ(Answer("yes, please"), nextAnswer(key));
}

TEST_F(VrtoolAnswers, MayBeEmpty) {
    test::AnswersFile const input("\r\n\nx\n");

    EXPECT_EQ(Answer(""), nextAnswer(key));
    EXPECT_EQ(Answer(""), nextAnswer(key));
    EXPECT_EQ(Answer("x"), nextAnswer(key));
}

TEST_F(VrtoolAnswers, MayLackTheLastLinesEnd) {
    test::AnswersFile const input("done");

    EXPECT_EQ(Answer("done"), nextAnswer(key));
    EXPECT_EQ(Answer(), nextAnswer(key));
}

TEST_F(VrtoolAnswers, ThatAreTooLongAreCut) {
    test::AnswersFile const input(std::string(5000, 'a') + "\nyes\n");

    EXPECT_EQ(Answer(std::string(1024, 'a')), nextAnswer(key));
    EXPECT_EQ(Answer("yes"), nextAnswer(key));
}

TEST_F(VrtoolAnswers, EndWithTheKey) {
    test::AnswersFile const input("yes\n");
    SetEvent(key.event());

    EXPECT_EQ(Answer(), nextAnswer(key));
}

TEST_F(VrtoolAnswers, NeedAnEvent) {
    test::AnswersFile const input("yes\n");
    test::FailingImport<decltype(CreateEventW)> const fails(
        "CreateEventW", nullptr, ERROR_NOT_ENOUGH_MEMORY, 1, test::thisProgram());

    EXPECT_THROW(nextAnswer(key), std::system_error);
}

// The runtime keeps the handles of a few threads that have ended for the next ones; how many
// depends on how threads meet.
TEST_F(VrtoolAnswers, LeaveNoHandleOpen) {
    constexpr std::size_t answers = 100;
    std::string lines;
    for (std::size_t line = 0; line < 2 * answers; ++line)
        lines += "yes\n";
    test::AnswersFile const input(lines);
    for (std::size_t answer = 0; answer < answers; ++answer)
        nextAnswer(key);
    auto const before = test::handleCount();

    for (std::size_t answer = 0; answer < answers; ++answer)
        EXPECT_EQ(Answer("yes"), nextAnswer(key));

    EXPECT_LT(test::handleCount(), before + answers / 4);
}
