#include "tools/vrtool/FileState.h"

#include "tests/support/ImportHook.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/Carried.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"

namespace {

constexpr std::uint64_t second = 10'000'000;

// What a source of this time is to a target of that one.
bool isCopy(std::uint64_t source, std::uint64_t target) {
    return isCopyOf({7, source, false, false}, {7, target, false, false});
}

} // namespace

TEST(VrtoolFileState, TellsSizeAndTime) {
    test::ScratchFolder const folder;
    auto const path = folder.write(L"a", "12345");
    test::setLastWrite(path, test::someTime);

    auto const state = stateOf(vr::Path::file(path));

    ASSERT_TRUE(state);
    EXPECT_EQ(5u, state->size);
    EXPECT_EQ(test::someTime, state->lastWrite);
    EXPECT_FALSE(state->isFolder || state->isReadOnly);
}

TEST(VrtoolFileState, TellsFoldersAndReadOnlyFiles) {
    test::ScratchFolder const folder;
    auto const path = folder.write(L"a", "");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);

    EXPECT_TRUE(stateOf(vr::Path::file(path))->isReadOnly);
    EXPECT_TRUE(stateOf(vr::Path::file(folder.path()))->isFolder);
}

TEST(VrtoolFileState, IsNoneForWhatIsNotThere) {
    test::ScratchFolder const folder;

    EXPECT_FALSE(stateOf(vr::Path::file(folder.file(L"a"))));
    EXPECT_FALSE(stateOf(vr::Path::file(folder.file(L"b\\a"))));
}

TEST(VrtoolFileState, IsAFailureWhereTheFileSystemGivesNone) {
    test::FailingImport<decltype(GetFileAttributesExW)> const fails(
        "GetFileAttributesExW", FALSE, ERROR_BAD_NETPATH, 1, test::thisProgram());

    try {
        stateOf(vr::Path::file(L"C:\\a"));
        FAIL();
    } catch (TransferFailure const& failure) {
        EXPECT_EQ(L"cannot look at \"C:\\a\": " + systemText(ERROR_BAD_NETPATH), failure.text());
    }
}

TEST(VrtoolCopyState, IsToldBySizeAndTime) {
    FileState const source{7, test::someTime, false, false};

    EXPECT_TRUE(isCopyOf(source, source));
    EXPECT_FALSE(isCopyOf(source, {8, test::someTime, false, false}));
    EXPECT_FALSE(isCopyOf(source, {7, test::someTime + 1, false, false}));
    EXPECT_FALSE(isCopyOf(source, {7, test::someTime, true, false}));
}

TEST(VrtoolCopyState, AllowsForTargetsThatKeepTimesCoarsely) {
    auto const even = 2 * second * 6'675'000'000;

    EXPECT_TRUE(isCopy(even + second + 1, even));
    EXPECT_TRUE(isCopy(even + second + 1, even + 2 * second));
    EXPECT_TRUE(isCopy(even + second + 5, even + second));
    EXPECT_TRUE(isCopy(even + 19'999, even + 10'000));
    EXPECT_TRUE(isCopy(even + 9, even));
}

TEST(VrtoolCopyState, AllowsForNoMoreThanTheyLose) {
    auto const even = 2 * second * 6'675'000'000;

    EXPECT_FALSE(isCopy(even + 2 * second, even));
    EXPECT_FALSE(isCopy(even + second + 5, even + 5));
    EXPECT_FALSE(isCopy(even + 2 * second + 1, even + second));
    EXPECT_FALSE(isCopy(even, even + 5));
}
