#include "tools/vrtool/TransferSources.h"

#include "tests/support/ScratchFolder.h"
#include "tests/vrtool/WorkingFolder.h"
#include "tools/vrtool/SystemText.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::wstring> placesOf(std::vector<TransferSource> const& sources) {
    std::vector<std::wstring> places;
    for (auto const& source : sources)
        places.push_back(source.place);
    return places;
}

class VrtoolTransferSources : public testing::Test {
  protected:
    std::vector<std::wstring> placesWithoutTraces(bool makesReports) const {
        return placesOf(withoutTraces(transferSources(folder.path() + L"\\day"), makesReports));
    }

    test::ScratchFolder const folder;
};

} // namespace

TEST_F(VrtoolTransferSources, TakesAFileByItsName) {
    auto const path = folder.write(L"day\\a.mxf", "");

    auto const sources = transferSources(path);

    ASSERT_EQ(1u, sources.size());
    EXPECT_EQ(path, vr::Path(sources[0].file).str());
    EXPECT_EQ(L"a.mxf", sources[0].place);
    EXPECT_EQ(L"", sources[0].failure);
}

TEST_F(VrtoolTransferSources, TakesAFolderAlongWithItsName) {
    folder.write(L"day\\a.mxf", "");
    folder.write(L"day\\take 1\\b.mxf", "");

    for (auto const* ending : {L"", L"\\", L"\\."})
        EXPECT_THAT(
            placesOf(transferSources(folder.file(L"day") + ending)),
            ElementsAre(L"day\\a.mxf", L"day\\take 1\\b.mxf"));
}

TEST_F(VrtoolTransferSources, LooksRelativeNamesUpInTheCurrentFolder) {
    folder.write(L"day\\a.mxf", "");
    test::WorkingFolder const inside(folder.path());

    EXPECT_THAT(placesOf(transferSources(L"day")), ElementsAre(L"day\\a.mxf"));
    EXPECT_THAT(placesOf(transferSources(L"day\\a.mxf")), ElementsAre(L"a.mxf"));
}

TEST_F(VrtoolTransferSources, FindsNothingInAnEmptyFolder) {
    EXPECT_THAT(transferSources(folder.path()), IsEmpty());
}

TEST_F(VrtoolTransferSources, KnowsFilesAndFoldersByTheirKindNotTheirName) {
    folder.write(L"day.mxf\\plain", "");

    EXPECT_THAT(placesOf(transferSources(folder.file(L"day.mxf"))), ElementsAre(L"day.mxf\\plain"));
    EXPECT_THAT(placesOf(transferSources(folder.file(L"day.mxf\\plain"))), ElementsAre(L"plain"));
}

TEST_F(VrtoolTransferSources, TellsWhatCannotBeReached) {
    auto const sources = transferSources(folder.file(L"gone.mxf"));

    ASSERT_EQ(1u, sources.size());
    EXPECT_EQ(L"gone.mxf", sources[0].place);
    EXPECT_EQ(systemText(2), sources[0].failure);
}

TEST_F(VrtoolTransferSources, AreWithoutTheTracesOfAnEarlierTransfer) {
    for (auto const* name :
         {L"day\\a.mxf", L"day\\A.MXF.part", L"day\\a.mxf.lck", L"day\\messages\\a.mxf.xml",
          L"day\\messages\\a.mxf.xml.part"})
        folder.write(name, "");

    EXPECT_THAT(placesWithoutTraces(false), ElementsAre(L"day\\a.mxf"));
}

TEST_F(VrtoolTransferSources, KeepWhatOnlyLooksLikeATrace) {
    for (auto const* name : {L"day\\b.mxf.part", L"day\\messages\\b.mxf.xml", L"day\\z.lck"})
        folder.write(name, "");

    EXPECT_THAT(
        placesWithoutTraces(false),
        ElementsAre(L"day\\b.mxf.part", L"day\\messages\\b.mxf.xml", L"day\\z.lck"));
}

TEST_F(VrtoolTransferSources, AreWithoutTheReportsThatAreMadeAnew) {
    for (auto const* name :
         {L"day\\m.mov", L"day\\pfc\\m.xml", L"day\\pfchtml\\m.html", L"day\\pfchtml\\n.html"})
        folder.write(name, "");

    EXPECT_THAT(
        placesWithoutTraces(true),
        ElementsAre(L"day\\m.mov", L"day\\pfc\\m.xml", L"day\\pfchtml\\n.html"));
    EXPECT_EQ(4u, placesWithoutTraces(false).size());
}
