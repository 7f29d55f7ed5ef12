// Every line that a lock file logs: level, module, format and values, in order.

#include "tests/files/LockFiles.h"
#include "tests/support/LogRecorder.h"

#include <optional>

using namespace vrUtils::Files;
using test::FailingImport;
using testing::AllOf;
using testing::ElementsAreArray;
using testing::Field;

namespace {

using Line = testing::Matcher<test::LogLine const&>;

std::vector<std::wstring> textsOf(std::vector<test::LogValue> const& values) {
    std::vector<std::wstring> texts;
    for (auto const& value : values)
        texts.push_back(value.text);
    return texts;
}

// A line of level 7 with this format, byte for byte, and these texts as its values.
Line traced(std::wstring const& format, std::vector<std::wstring> const& texts) {
    return AllOf(
        Field("level", &test::LogLine::level, 7),
        Field("module", &test::LogLine::module, L"vrUtils"),
        Field("format", &test::LogLine::format, format),
        Field("values", &test::LogLine::values, testing::ResultOf(textsOf, texts)));
}

class LockFileLog : public LockFiles {
  protected:
    Line traced(std::wstring const& format) const { return ::traced(format, {m_text}); }

    std::vector<Line> lines(std::vector<std::wstring> const& formats) const {
        std::vector<Line> lines;
        for (auto const& format : formats)
            lines.push_back(
                format.find(L" name [%s]") == std::wstring::npos
                    ? traced(format)
                    : ::traced(format, {L"VR-7", m_text}));
        return lines;
    }

    // Logs what a release logs, and nothing of what came before it.
    void release() {
        std::optional<LockFile> lock(std::in_place, m_path);
        m_log.clear();
        lock.reset();
    }

    ComputerNamed m_computer{L"VR-7"};
    test::LogRecorder m_log;
};

} // namespace

TEST_F(LockFileLog, TellsEachStepOfTaking) {
    LockFile const lock(m_path);

    EXPECT_THAT(
        m_log.lines(),
        ElementsAreArray(lines(
            {L"Locking file [%s]", L"Opening lock file for [%s]", L"Opened lock file for [%s]",
             L"Writing name [%s] to lock file for [%s]", L"Wrote name [%s] to lock file for [%s]",
             L"Locking lock file for [%s]", L"Locked lock file for [%s]"})));
}

TEST_F(LockFileLog, TellsEachStepOfTheRelease) {
    release();

    EXPECT_THAT(
        m_log.lines(), ElementsAreArray(lines(
                           {L"Unlocking file [%s]", L"Unlocking lock file for [%s]",
                            L"Unlocked lock file for [%s]", L"Closing lock file for [%s]",
                            L"Closed lock file for [%s]", L"Deleting lock file for [%s]",
                            L"Deleted lock file for [%s]"})));
}

TEST_F(LockFileLog, EndsWithTheFailureWhereAnotherHasTheLock) {
    LockFile const lock(m_path);
    m_log.clear();

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAreArray(lines(
            {L"Locking file [%s]", L"Opening lock file for [%s]", L"Failed to lock file [%s]"})));
}

TEST_F(LockFileLog, EndsWithTheFailureWhereTheFolderIsMissing) {
    auto const text = m_folder.file(L"no folder\\clip.mxf");

    EXPECT_THAT([&] { LockFile const lock(vr::Path::file(text)); }, FailsToLock(text));

    EXPECT_THAT(
        m_log.lines(), ElementsAreArray(
                           {::traced(L"Locking file [%s]", {text}),
                            ::traced(L"Opening lock file for [%s]", {text}),
                            ::traced(L"Failed to lock file [%s]", {text})}));
}

TEST_F(LockFileLog, EndsWithTheFailureWhereTheNameCannotBeWritten) {
    FailingImport<decltype(WriteFile)> const full("WriteFile", FALSE, ERROR_DISK_FULL);

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAreArray(lines(
            {L"Locking file [%s]", L"Opening lock file for [%s]", L"Opened lock file for [%s]",
             L"Writing name [%s] to lock file for [%s]", L"Failed to lock file [%s]"})));
}

TEST_F(LockFileLog, EndsWithTheFailureWhereTheRangeCannotBeLocked) {
    FailingImport<decltype(LockFileEx)> const refused("LockFileEx", FALSE, ERROR_LOCK_VIOLATION);

    EXPECT_THAT([&] { take(); }, FailsToLock(m_text));

    EXPECT_THAT(
        m_log.lines(),
        ElementsAreArray(lines(
            {L"Locking file [%s]", L"Opening lock file for [%s]", L"Opened lock file for [%s]",
             L"Writing name [%s] to lock file for [%s]", L"Wrote name [%s] to lock file for [%s]",
             L"Locking lock file for [%s]", L"Failed to lock file [%s]"})));
}

TEST_F(LockFileLog, GoesOnWhereTheRangeCannotBeUnlocked) {
    FailingImport<decltype(UnlockFile)> const refused("UnlockFile", FALSE, ERROR_NOT_LOCKED);

    release();

    EXPECT_THAT(
        m_log.lines(), ElementsAreArray(lines(
                           {L"Unlocking file [%s]", L"Unlocking lock file for [%s]",
                            L"Failed to unlock lock file for [%s]", L"Closing lock file for [%s]",
                            L"Closed lock file for [%s]", L"Deleting lock file for [%s]",
                            L"Deleted lock file for [%s]"})));
}

TEST_F(LockFileLog, SaysDeletedWhereTheFileCannotBeDeleted) {
    FailingImport<decltype(DeleteFileW)> const refused("DeleteFileW", FALSE, ERROR_ACCESS_DENIED);

    release();

    EXPECT_THAT(
        m_log.lines(), ElementsAreArray(lines(
                           {L"Unlocking file [%s]", L"Unlocking lock file for [%s]",
                            L"Unlocked lock file for [%s]", L"Closing lock file for [%s]",
                            L"Closed lock file for [%s]", L"Deleting lock file for [%s]",
                            L"Deleted lock file for [%s]"})));
}

TEST_F(LockFileLog, ShowsAnEmptyNameWhereTheComputerHasNone) {
    ComputerNamed const nameless({});

    LockFile const lock(m_path);

    auto const lines = m_log.lines();
    EXPECT_THAT(lines.at(3), ::traced(L"Writing name [%s] to lock file for [%s]", {L"", m_text}));
    EXPECT_THAT(lines.at(4), ::traced(L"Wrote name [%s] to lock file for [%s]", {L"", m_text}));
}

TEST_F(LockFileLog, ShowsTheNormalFormOfThePath) {
    LockFile const lock(vr::Path::file(m_folder.path() + L"//clip.mxf"));

    EXPECT_THAT(
        m_log.lines(),
        testing::Each(Field(
            &test::LogLine::values, testing::Contains(Field(&test::LogValue::text, m_text)))));
}

TEST_F(LockFileLog, TakesAPercentSignAsAnyOther) {
    auto const text = m_folder.file(L"%s%n 100%.mxf");

    { LockFile const lock(vr::Path::file(text)); }

    auto const texts = m_log.texts();
    EXPECT_EQ(14u, texts.size());
    EXPECT_EQ(L"Locking file [" + text + L"]", texts.front());
    EXPECT_EQ(L"Deleted lock file for [" + text + L"]", texts.back());
}
