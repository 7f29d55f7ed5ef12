#include "tools/vrtool/FileCopy.h"

#include "tests/support/ByteBuilder.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/Carried.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"
#include "vrUtils/vrStatCollector.h"

using testing::ElementsAre;

namespace {

class VrtoolFileCopy : public testing::Test {
  protected:
    CopiedFile copy(std::wstring const& name = L"a") {
        return copyFile(
            vr::Path::file(folder.file(name)), vr::Path::file(folder.file(L"b")), buffer,
            [this](std::uint64_t done) { seen.push_back(done); });
    }

    // Why the copy fails.
    std::wstring failure() {
        try {
            copy();
        } catch (TransferFailure const& failure) {
            return failure.text();
        }
        return {};
    }

    std::wstring text(wchar_t const* what, std::wstring const& name, DWORD error) const {
        return what + (L" \"" + folder.file(name)) + L"\": " + systemText(error);
    }

    test::ScratchFolder const folder;
    std::vector<unsigned char> buffer = std::vector<unsigned char>(4);
    std::vector<std::uint64_t> seen;
};

template <typename Signature>
class FailingHere : public test::FailingImport<Signature> {
  public:
    FailingHere(char const* import, DWORD error)
        : test::FailingImport<Signature>(import, FALSE, error, 1, test::thisProgram()) {}
};

} // namespace

TEST_F(VrtoolFileCopy, TakesContentAndTimeAlong) {
    test::setLastWrite(folder.write(L"a", "0123456789"), test::someTime);

    auto const copied = copy();

    EXPECT_EQ(10u, copied.size);
    EXPECT_EQ("0123456789", folder.read(L"b"));
    EXPECT_EQ(test::someTime, test::lastWriteOf(folder.file(L"b")));
}

TEST_F(VrtoolFileCopy, TellsHowFarItIsAfterEachPiece) {
    folder.write(L"a", "0123456789");

    copy();

    EXPECT_THAT(seen, ElementsAre(4, 8, 10));
}

TEST_F(VrtoolFileCopy, CountsTheBytesOfAllPieces) {
    folder.write(L"a", "0123456789");
    auto& stats = vrStatCollector::Singleton();
    auto const read = stats.GetStat(0x10000);
    auto const written = stats.GetStat(0x10001);

    copy();

    EXPECT_EQ(10u, stats.GetStat(0x10000) - read);
    EXPECT_EQ(10u, stats.GetStat(0x10001) - written);
}

TEST_F(VrtoolFileCopy, WritesOverALongerFile) {
    folder.write(L"a", "new");
    folder.write(L"b", "much older");

    copy();

    EXPECT_EQ("new", folder.read(L"b"));
}

TEST_F(VrtoolFileCopy, TakesAnEmptyFile) {
    folder.write(L"a", "");

    EXPECT_EQ(0u, copy().size);
    EXPECT_EQ("", folder.read(L"b"));
}

TEST_F(VrtoolFileCopy, LearnsTheFormatOfARecording) {
    buffer.resize(1000);
    folder.write(L"a.WAV", test::wavHead(48000, 24));

    auto const copied = copy(L"a.WAV");

    ASSERT_TRUE(copied.format);
    EXPECT_EQ(48000u, copied.format->samplesPerSecond);
    EXPECT_EQ(24u, copied.format->bitsPerSample);
    EXPECT_EQ(L"", copied.formatFailure);
}

TEST_F(VrtoolFileCopy, TellsWhatIsWrongWithARecordingAndTakesItAlong) {
    buffer.resize(1000);
    folder.write(L"a.wav", "no recording, whatever its name says");

    auto const copied = copy(L"a.wav");

    EXPECT_FALSE(copied.format);
    EXPECT_EQ(L"Missing RIFF tag", copied.formatFailure);
    EXPECT_EQ("no recording, whatever its name says", folder.read(L"b"));
}

TEST_F(VrtoolFileCopy, TellsWhatIsWrongWithAnEmptyRecording) {
    folder.write(L"a.aif", "");

    EXPECT_NE(L"", copy(L"a.aif").formatFailure);
}

TEST_F(VrtoolFileCopy, FailsWithTheReasonForAMissingSource) {
    EXPECT_EQ(text(L"cannot read", L"a", ERROR_FILE_NOT_FOUND), failure());
    EXPECT_FALSE(folder.exists(L"b"));
}

TEST_F(VrtoolFileCopy, FailsForASourceThatIsStillBeingWritten) {
    test::OwnedHandle const writer(CreateFileW(
        folder.write(L"a", "half").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
        0, nullptr));

    EXPECT_EQ(text(L"cannot read", L"a", ERROR_SHARING_VIOLATION), failure());
}

TEST_F(VrtoolFileCopy, FailsForATargetThatCannotBeWritten) {
    folder.write(L"a", "x");
    folder.makeFolder(L"b");

    EXPECT_EQ(text(L"cannot write", L"b", ERROR_ACCESS_DENIED), failure());
}

TEST_F(VrtoolFileCopy, FailsWithTheReasonOfEachCall) {
    folder.write(L"a", "x");
    {
        FailingHere<decltype(ReadFile)> const fails("ReadFile", ERROR_CRC);
        EXPECT_EQ(text(L"cannot read", L"a", ERROR_CRC), failure());
    }
    {
        FailingHere<decltype(WriteFile)> const fails("WriteFile", ERROR_DISK_FULL);
        EXPECT_EQ(text(L"cannot write", L"b", ERROR_DISK_FULL), failure());
    }
    {
        FailingHere<decltype(GetFileTime)> const fails("GetFileTime", ERROR_NOT_SUPPORTED);
        EXPECT_EQ(text(L"cannot read the time of", L"a", ERROR_NOT_SUPPORTED), failure());
    }
    FailingHere<decltype(SetFileTime)> const fails("SetFileTime", ERROR_NOT_SUPPORTED);
    EXPECT_EQ(text(L"cannot set the time of", L"b", ERROR_NOT_SUPPORTED), failure());
}

TEST_F(VrtoolFileCopy, FailsWhenADiskTakesOnlyAPartOfAPiece) {
    folder.write(L"a", "xyz");
    test::ImportHook<decltype(WriteFile)> const hook(
        "WriteFile",
        [&](HANDLE file, LPCVOID bytes, DWORD, LPDWORD count, LPOVERLAPPED overlapped) {
            return hook.original()(file, bytes, 1, count, overlapped);
        },
        test::thisProgram());

    EXPECT_EQ(text(L"cannot write all of", L"b", ERROR_DISK_FULL), failure());
}

TEST_F(VrtoolFileCopy, EndsWithWhatTheListenerThrows) {
    folder.write(L"a", "0123456789");

    EXPECT_THROW(
        copyFile(
            vr::Path::file(folder.file(L"a")), vr::Path::file(folder.file(L"b")), buffer,
            [](std::uint64_t) { throw TransferCancelled(); }),
        TransferCancelled);
    EXPECT_EQ("0123", folder.read(L"b"));
}

TEST_F(VrtoolFileCopy, LeavesNoHandleOpen) {
    folder.write(L"a", "x");
    copy();
    test::HandleLeakCheck const check;

    copy();
    FailingHere<decltype(ReadFile)> const fails("ReadFile", ERROR_CRC);
    EXPECT_NE(L"", failure());
}
