// What is found out about a file where the platform fails or a file lies on slow storage.

#include "tools/vrtool/Inspection.h"

#include "tests/support/ByteBuilder.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace {

class VrtoolInspection : public testing::Test {
  protected:
    test::ScratchFolder folder;
    std::wstring clip = folder.write(L"clip.wav", test::wavHead(48000, 24));
};

} // namespace

TEST_F(VrtoolInspection, DoesNotOpenAFileThatIsOffline) {
    test::ImportHook<decltype(GetFileAttributesExW)> hook(
        "GetFileAttributesExW", [&](LPCWSTR name, GET_FILEEX_INFO_LEVELS level, void* data) {
            BOOL const result = hook.original()(name, level, data);
            static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data)->dwFileAttributes |=
                FILE_ATTRIBUTE_OFFLINE;
            return result;
        });
    test::ImportHook<decltype(CreateFileW)> opens(
        "CreateFileW", [&](auto... arguments) { return opens.original()(arguments...); });

    auto const inspection = inspectFile(vr::Path::file(clip));

    EXPECT_EQ(true, inspection.offline);
    EXPECT_EQ(std::nullopt, inspection.samplesPerSecond);
    EXPECT_EQ(L"", inspection.failure);
    EXPECT_EQ(0u, opens.calls());
}

TEST_F(VrtoolInspection, NamesAReadThatFails) {
    test::FailingImport<decltype(ReadFile)> const fails(
        "ReadFile", FALSE, ERROR_CRC, 1, test::thisProgram());

    auto const inspection = inspectFile(vr::Path::file(clip));

    EXPECT_EQ(L"ReadFile failed on \"" + clip + L"\" - error 23", inspection.failure);
    EXPECT_EQ(std::nullopt, inspection.samplesPerSecond);
}

TEST_F(VrtoolInspection, KeepsWhatThePathTellsWhenTheFileHasGone) {
    auto const inspection = inspectFile(vr::Path::file(folder.file(L"gone.wav")));

    EXPECT_EQ(L"gone", inspection.name);
    EXPECT_EQ(L"gone.wav", inspection.legalName);
    EXPECT_EQ(std::nullopt, inspection.size);
    EXPECT_EQ(std::nullopt, inspection.offline);
    EXPECT_EQ(
        L"GetFileAttributesEx failed on \"" + folder.file(L"gone.wav") + L"\" - error 2",
        inspection.failure);
}

TEST_F(VrtoolInspection, KeepsWhatIsKnownBeforeALaterFailure) {
    // Size, age and the offline flag are three questions; the third one fails.
    test::FailingImport<decltype(GetFileAttributesExW)> const fails(
        "GetFileAttributesExW", FALSE, ERROR_ACCESS_DENIED, 3);

    auto const inspection = inspectFile(vr::Path::file(clip));

    EXPECT_EQ(test::wavHead(48000, 24).size(), inspection.size);
    EXPECT_EQ(0u, inspection.ageHours);
    EXPECT_EQ(std::nullopt, inspection.offline);
    EXPECT_EQ(L"GetFileAttributesEx failed on \"" + clip + L"\" - error 5", inspection.failure);
}

TEST_F(VrtoolInspection, ReadsOnlyTheHead) {
    DWORD bytesRead = 0;
    test::ImportHook<decltype(ReadFile)> hook(
        "ReadFile",
        [&](HANDLE file, void* buffer, DWORD size, DWORD* count, OVERLAPPED* overlapped) {
            bytesRead += size;
            return hook.original()(file, buffer, size, count, overlapped);
        },
        test::thisProgram());

    inspectFile(vr::Path::file(clip));

    EXPECT_EQ(1u, hook.calls());
    EXPECT_EQ(64u * 1024u, bytesRead);
}

TEST_F(VrtoolInspection, LeavesNoHandleOpen) {
    auto const broken = vr::Path::file(folder.write(L"broken.wav", "RIFF"));
    // The first throw of a module opens handles that stay.
    inspectFile(broken);
    test::HandleLeakCheck const check;

    inspectFile(vr::Path::file(clip));
    inspectFile(broken);
}
