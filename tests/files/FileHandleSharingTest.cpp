#include "vrUtils/Files/FileHandle.h"
#include "vrUtils/Files/FileQueries.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/files/Openers.h"
#include "tests/files/Outsider.h"
#include "tests/support/ChildAction.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <tuple>

using namespace vrUtils::Files;

namespace {

bool isReader(Opener const& opener) { return opener.access == GENERIC_READ; }

std::string nameOf(testing::TestParamInfo<Opener> const& tested) { return tested.param.name; }

class SharedFile : public testing::Test {
  protected:
    SharedFile() { m_folder.write(L"a.bin", "content"); }

    test::ScratchFolder m_folder;
    std::wstring const m_name = m_folder.file(L"a.bin");
    vr::Path const m_path = vr::Path::file(m_name);
};

class SharingMatrix : public SharedFile,
                      public testing::WithParamInterface<std::tuple<Opener, Opener>> {
  protected:
    Opener const m_first = std::get<0>(GetParam());
    Opener const m_second = std::get<1>(GetParam());
};

INSTANTIATE_TEST_SUITE_P(
    , SharingMatrix, testing::Combine(testing::ValuesIn(openers()), testing::ValuesIn(openers())),
    [](auto const& tested) {
        return std::string(std::get<0>(tested.param).name) + "Then" +
               std::get<1>(tested.param).name;
    });

class SharingOf : public SharedFile, public testing::WithParamInterface<Opener> {
  protected:
    std::unique_ptr<FileHandle> const m_file = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(, SharingOf, testing::ValuesIn(openers()), nameOf);

// Opens a file in the way of the opener with this index, and keeps it open.
test::ChildAction const holdElsewhere(L"hold a file handle", [](auto const& arguments) {
    auto const file = openers().at(std::stoul(arguments.at(0))).make();
    file->Open(vr::Path::file(arguments.at(1)));
    std::puts("holding");
    std::fflush(stdout);
    Sleep(INFINITE);
    return 0;
});

} // namespace

TEST_P(SharingMatrix, OnlyTwoReadersShareAFile) {
    auto const first = m_first.make();
    auto const second = m_second.make();
    first->Open(m_path);

    if (isReader(m_first) && isReader(m_second))
        EXPECT_NO_THROW(second->Open(m_path));
    else
        EXPECT_THAT([&] { second->Open(m_path); }, FailsWith(L"Unable to open file " + m_name));
}

TEST_P(SharingMatrix, RefusedOpenerLeavesTheContent) {
    auto const first = m_first.make();
    auto const second = m_second.make();
    first->Open(m_path);
    if (isReader(m_first) && isReader(m_second))
        second->Open(m_path);
    else
        EXPECT_ANY_THROW(second->Open(m_path));
    first->Close();

    EXPECT_EQ(m_first.keepsContent ? "content" : "", m_folder.read(L"a.bin"));
}

TEST_P(SharingMatrix, SecondOpenerGetsInOnceTheFirstHasClosed) {
    auto const first = m_first.make();
    auto const second = m_second.make();
    first->Open(m_path);
    first->Close();

    EXPECT_NO_THROW(second->Open(m_path));
}

TEST_P(SharingOf, AnOutsiderMayReadUnlessItIsExclusive) {
    m_file->Open(m_path);

    DWORD const expected = GetParam().share == 0 ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
    EXPECT_EQ(expected, errorOfOutsider(m_name, GENERIC_READ));
}

TEST_P(SharingOf, AnOutsiderMayNeitherWriteNorDelete) {
    m_file->Open(m_path);

    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOutsider(m_name, GENERIC_WRITE));
    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOutsider(m_name, DELETE));
    EXPECT_FALSE(DeleteFileIfExists(m_path));
}

TEST_P(SharingOf, AnOutsiderWhoSharesNothingKeepsItOut) {
    test::OwnedHandle const outsider(CreateFileW(
        m_name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));

    EXPECT_THAT([&] { m_file->Open(m_path); }, FailsWith(L"Unable to open file " + m_name));
}

class SharingAcrossProcesses : public SharedFile,
                               public testing::WithParamInterface<std::size_t> {};

INSTANTIATE_TEST_SUITE_P(
    , SharingAcrossProcesses, testing::Range(std::size_t{0}, openers().size()),
    [](auto const& tested) { return std::string(openers()[tested.param].name); });

TEST_P(SharingAcrossProcesses, OnlyTwoReadersShareAFile) {
    auto const holder = openers()[GetParam()];
    auto const child = holdElsewhere.start({std::to_wstring(GetParam()), m_name});
    ASSERT_TRUE(child->waitForOutput("holding"));

    for (auto const& opener : openers()) {
        auto const file = opener.make();
        if (isReader(holder) && isReader(opener))
            EXPECT_NO_THROW(file->Open(m_path)) << opener;
        else
            EXPECT_THAT([&] { file->Open(m_path); }, FailsWith(L"Unable to open file " + m_name))
                << opener;
    }
}

TEST_P(SharingAcrossProcesses, TheEndOfTheProcessLetsOthersIn) {
    auto const child = holdElsewhere.start({std::to_wstring(GetParam()), m_name});
    ASSERT_TRUE(child->waitForOutput("holding"));

    child->kill();

    EXPECT_NO_THROW(FileHandleWriteExclusive().Open(m_path));
}
