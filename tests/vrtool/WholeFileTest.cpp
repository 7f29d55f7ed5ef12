#include "tools/vrtool/WholeFile.h"

#include "tests/support/ImportHook.h"
#include "tests/vrtool/Carried.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"

using testing::ElementsAre;

namespace {

class VrtoolWholeFile : public testing::Test {
  protected:
    std::wstring failureOf(WholeFile& file, std::uint64_t size) const {
        try {
            file.commit(size);
        } catch (TransferFailure const& failure) {
            return failure.text();
        }
        return {};
    }

    test::ScratchFolder const folder;
    vr::Path const path = vr::Path::file(folder.file(L"a.mxf"));
};

} // namespace

TEST_F(VrtoolWholeFile, IsWrittenBesideItsTarget) {
    WholeFile const file(path);

    EXPECT_EQ(folder.file(L"a.mxf.part"), vr::Path(file.part()).str());
    EXPECT_THAT(folder.names(), ElementsAre());
}

TEST_F(VrtoolWholeFile, TakesThePlaceOfTheOldOne) {
    folder.write(L"a.mxf", "old");
    folder.write(L"a.mxf.part", "brand-new");

    WholeFile(path).commit(9);

    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
    EXPECT_EQ("brand-new", folder.read(L"a.mxf"));
}

TEST_F(VrtoolWholeFile, GoesWithTheObjectUnlessItIsCommitted) {
    folder.write(L"a.mxf", "old");
    {
        WholeFile const file(path);
        folder.write(L"a.mxf.part", "half");
    }

    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
    EXPECT_EQ("old", folder.read(L"a.mxf"));
}

TEST_F(VrtoolWholeFile, StaysAPartUntilAllOfItIsThere) {
    folder.write(L"a.mxf", "old");
    WholeFile file(path);
    folder.write(L"a.mxf.part", "half");

    EXPECT_EQ(
        L"not all of it has arrived at \"" + folder.file(L"a.mxf.part") + L'"', failureOf(file, 5));
    EXPECT_EQ("old", folder.read(L"a.mxf"));
}

TEST_F(VrtoolWholeFile, FailsWithoutAPart) {
    WholeFile file(path);

    EXPECT_EQ(
        L"not all of it has arrived at \"" + folder.file(L"a.mxf.part") + L'"', failureOf(file, 0));
}

TEST_F(VrtoolWholeFile, LeavesATargetThatIsOpenAsItIs) {
    test::OwnedHandle const reader(CreateFileW(
        folder.write(L"a.mxf", "old").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
        OPEN_EXISTING, 0, nullptr));
    {
        WholeFile file(path);
        folder.write(L"a.mxf.part", "new");
        EXPECT_THAT(
            failureOf(file, 3),
            testing::StartsWith(L"cannot take the place of \"" + folder.file(L"a.mxf") + L"\": "));
    }

    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
    EXPECT_EQ("old", folder.read(L"a.mxf"));
}

TEST_F(VrtoolWholeFile, FailsWithThePlatformsReason) {
    test::FailingImport<decltype(MoveFileExW)> const fails(
        "MoveFileExW", FALSE, ERROR_BAD_NETPATH, 1, test::thisProgram());
    WholeFile file(path);
    folder.write(L"a.mxf.part", "new");

    EXPECT_EQ(
        L"cannot take the place of \"" + folder.file(L"a.mxf") + L"\": " +
            systemText(ERROR_BAD_NETPATH),
        failureOf(file, 3));
}

TEST_F(VrtoolWholeFile, SavesATextOverAnother) {
    folder.write(L"a.mxf", "an older text");

    saveWhole("text", path);

    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
    EXPECT_EQ("text", folder.read(L"a.mxf"));
}

TEST_F(VrtoolWholeFile, KeepsTheOldTextWhereTheNewOneFindsNoRoom) {
    folder.write(L"a.mxf", "old");
    test::FailingImport<decltype(WriteFile)> const fails(
        "WriteFile", FALSE, ERROR_DISK_FULL, test::everyCall, test::thisProgram());

    EXPECT_THROW(saveWhole("text", path), TransferFailure);
    EXPECT_THAT(folder.names(), ElementsAre(L"a.mxf"));
    EXPECT_EQ("old", folder.read(L"a.mxf"));
}
