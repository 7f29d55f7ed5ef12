#include "foundation/Log.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <string>

using testing::ElementsAre;
using vrUtils::logComposed;

TEST(LogComposed, WritesUnderTheNameOfTheLibrary) {
    test::LogRecorder const recorder;

    logComposed(vrUtils::LogLevel::trace, L"Locking file [C:\\a.txt]");

    EXPECT_THAT(recorder.lines(), ElementsAre(test::Logged(7, L"Locking file [C:\\a.txt]")));
}

TEST(LogComposed, WritesUnderANameOfTheCallers) {
    test::LogRecorder const recorder;

    logComposed(vrUtils::LogLevel::information, L"PFC HTML", L"50%% %d");

    EXPECT_THAT(recorder.lines(), ElementsAre(test::LoggedFormat(6, L"50%% %d", L"PFC HTML")));
}

TEST(LogComposed, TextIsTheFormat) {
    test::LogRecorder const recorder;

    logComposed(vrUtils::LogLevel::warning, L"Failed to create [50%%\\%d]");

    EXPECT_THAT(
        recorder.lines(), ElementsAre(test::LoggedFormat(4, L"Failed to create [50%%\\%d]")));
}

TEST(LogComposed, IsNoDebugLine) {
    test::LogRecorder const recorder;

    logComposed(vrUtils::LogLevel::failure, L"text");

    ASSERT_EQ(1u, recorder.lines().size());
    EXPECT_FALSE(recorder.lines().front().file.has_value());
    EXPECT_FALSE(recorder.lines().front().line.has_value());
}

TEST(LogComposed, LeavesTheLastErrorAlone) {
    test::LogRecorder const recorder;
    SetLastError(ERROR_SHARING_VIOLATION);

    logComposed(vrUtils::LogLevel::failure, L"text");

    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, GetLastError());
}

TEST(LogComposed, NeverThrows) {
    EXPECT_TRUE(noexcept(logComposed(vrUtils::LogLevel::failure, std::wstring())));
}

TEST(LogLevel, SmallerIsMoreSevere) {
    EXPECT_EQ(2, vrUtils::LogLevel::plannedEnd);
    EXPECT_EQ(3, vrUtils::LogLevel::failure);
    EXPECT_EQ(4, vrUtils::LogLevel::warning);
    EXPECT_EQ(5, vrUtils::LogLevel::change);
    EXPECT_EQ(6, vrUtils::LogLevel::information);
    EXPECT_EQ(7, vrUtils::LogLevel::trace);
}
