// Every text parses by the same rules, however long it is and whatever stands in it.

#include "vrUtils/Path.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_literals;

// 3, 255 and 256 are where fixed buffers of paths used to end.
class PathTextLimits : public testing::TestWithParam<std::size_t> {
  protected:
    std::wstring const part = std::wstring(GetParam(), L'p');
};

} // namespace

TEST_P(PathTextLimits, NameIsNotCut) {
    auto path = vr::Path::file(L"C:/a/" + part + L".x");

    EXPECT_EQ(part, path.components().fileName());
    EXPECT_EQ(L".x", path.components().extension());
    EXPECT_EQ(L"C:\\a\\" + part + L".x", path.str());
}

TEST_P(PathTextLimits, ExtensionIsNotCut) {
    auto path = vr::Path::file(L"C:/a/n." + part);

    EXPECT_EQ(L"n", path.components().fileName());
    EXPECT_EQ(L"." + part, path.components().extension());
    EXPECT_EQ(L"C:\\a\\n." + part, path.str());
}

TEST_P(PathTextLimits, StreamIsNotCut) {
    auto const path = vr::Path::file(L"C:/n.x:" + part + L".t");

    EXPECT_EQ(L"n.x:" + part, path.components().fileName());
    EXPECT_EQ(L".t", path.components().extension());
}

TEST_P(PathTextLimits, FolderIsNotCut) {
    auto path = vr::Path::folder(L"C:/a/" + part + L"/b/");

    EXPECT_EQ(L"a\\" + part + L"\\b\\", path.components().folderText());
    EXPECT_EQ((std::list<std::wstring>{L"a", part, L"b"}), path.components().folders());
    EXPECT_EQ(L"C:\\a\\" + part + L"\\b\\", path.str());
}

TEST_P(PathTextLimits, UnclosedFolderIsNotCut) {
    auto const path = vr::Path::folder(L"C:/a/" + part + L"." + part);

    EXPECT_EQ(part + L"." + part, path.components().fileName());
    EXPECT_EQ(L"", path.components().extension());
}

TEST_P(PathTextLimits, HostIsNotCut) {
    auto path = vr::Path::file(L"//" + part + L":80/s/n.x");

    EXPECT_EQ(L"\\\\" + part + L":80\\", path.components().root());
    EXPECT_EQ(L"\\\\" + part + L"\\", path.components().host());
    EXPECT_EQ(80u, path.components().port());
    EXPECT_EQ(L"\\\\" + part + L":80\\s\\n.x", path.str());
}

TEST_P(PathTextLimits, HostAloneIsNotCut) {
    auto path = vr::Path::folder(L"//" + part);

    EXPECT_EQ(L"\\\\" + part + L"\\", path.str());
}

TEST_P(PathTextLimits, DriveRelativeNameIsNotCut) {
    auto path = vr::Path::file(L"C:" + part);

    EXPECT_TRUE(path.isRelative());
    EXPECT_EQ(L"C:\\" + part, path.str());
}

TEST_P(PathTextLimits, AsManyFoldersAsThatAreListed) {
    std::wstring text = L"C:";
    for (std::size_t folder = 0; folder < GetParam(); ++folder)
        text += L"/f";

    auto path = vr::Path::folder(text + L"/");

    EXPECT_EQ(GetParam(), path.components().folders().size());
    EXPECT_EQ(3 + 2 * GetParam(), path.size());
}

TEST_P(PathTextLimits, AsManySeparatorsAsThatCollapse) {
    auto path = vr::Path::file(L"C:\\a" + std::wstring(GetParam(), L'/') + L"b.c");

    EXPECT_EQ(LR"(C:\a\b.c)", path.str());
}

TEST_P(PathTextLimits, JoiningIsNotCut) {
    auto path = vr::Path::folder(L"C:\\" + part);

    path += vr::Path::file(part + L"\\n.x");

    EXPECT_EQ(L"C:\\" + part + L"\\" + part + L"\\n.x", path.str());
}

INSTANTIATE_TEST_SUITE_P(
    Characters, PathTextLimits,
    testing::Values(1, 3, 4, 254, 255, 256, 257, 258, 259, 260, 261, 300, 4000, 32767),
    testing::PrintToStringParamName());

TEST(PathText, LoneSurrogatesAreText) {
    auto path = vr::Path::file(L"C:/\xD800/\xDC00.\xDBFF");

    EXPECT_EQ(L"\xDC00", path.components().fileName());
    EXPECT_EQ(L"C:\\\xD800\\\xDC00.\xDBFF", path.str());
}

TEST(PathText, PercentSignsAreText) {
    auto path = vr::Path::file(L"C:/%s%n/%d.%x");

    EXPECT_EQ(LR"(C:\%s%n\%d.%x)", path.str());
}

TEST(PathText, EndsAtItsFirstZero) {
    auto path = vr::Path::file(L"C:/a.b\0/c.d"s);

    EXPECT_EQ(LR"(C:\a.b)", path.str());
}

TEST(PathText, CharactersThatFileSystemsRefuseAreText) {
    auto path = vr::Path::file(L"C:/a?*<>|\"\x01/b\t.\n");

    EXPECT_EQ(L"C:\\a?*<>|\"\x01\\b\t.\n", path.str());
}
