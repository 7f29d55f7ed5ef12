// The splitter against its rules, on random texts.

#include "vrUtils/Path.h"

#include "PathSplitterModel.h"
#include "RandomText.h"

#include <gtest/gtest.h>

namespace {

constexpr std::wstring_view alphabet = L"\\/:.aBC1 \u00E9";

void expectTheSameParts(std::wstring const& text, bool isFile) {
    PathSplitterModel const model(text, isFile);
    vr::PathSplitter const parts(text, isFile);
    SCOPED_TRACE(testing::PrintToString(text) + (isFile ? " as a file" : " as a folder"));

    ASSERT_EQ(model.root, parts.root());
    ASSERT_EQ(model.drive, parts.drive());
    ASSERT_EQ(model.dir, parts.folderText());
    ASSERT_EQ(model.folders, parts.folders());
    ASSERT_EQ(model.name, parts.fileName());
    ASSERT_EQ(model.ext, parts.extension());

    ASSERT_EQ(model.root + model.drive, parts.rootAndDrive());
    ASSERT_EQ(model.root + model.drive + model.dir, parts.folderPath());
    ASSERT_EQ(model.root + model.drive + model.dir + model.name, parts.pathNoExtension());
    ASSERT_EQ(model.root + model.drive + model.dir + model.name + model.ext, parts.wholePath());
    ASSERT_EQ(model.name + model.ext, parts.fullName());

    ASSERT_EQ(model.host(), parts.host());
    ASSERT_EQ(model.port(), parts.port());
    ASSERT_EQ(model.firstFolder(), parts.firstFolder());
}

} // namespace

TEST(PathSplitterModel, AgreesOnEveryTextOfFourCharacters) {
    auto const size = alphabet.size();
    for (std::size_t number = 0; number < size * size * size * size; ++number) {
        std::wstring text;
        for (auto rest = number; text.size() < 4; rest /= size)
            text += alphabet[rest % size];

        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, true));
        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, false));
    }
}

TEST(PathSplitterModel, AgreesOnRandomShortTexts) {
    test::Campaign campaign(200000);
    RandomText<wchar_t> texts(alphabet, campaign);
    while (campaign.nextRound()) {
        auto const text = texts.upTo(14);

        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, true));
        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, false));
    }
}

TEST(PathSplitterModel, AgreesOnRandomNetworkTexts) {
    test::Campaign campaign(50000);
    RandomText<wchar_t> texts(L"\\:.a1", campaign);
    while (campaign.nextRound()) {
        auto const text = L"\\\\" + texts.upTo(10);

        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, true));
        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, false));
    }
}

// Around the length up to which the text of the parts stands inside the splitter.
TEST(PathSplitterModel, AgreesOnRandomTextsAroundTheCapacity) {
    test::Campaign campaign(10000);
    RandomText<wchar_t> texts(L"\\:.aaaaaaaaaaaaaaaaaaa", campaign);
    while (campaign.nextRound()) {
        auto const text = texts.between(245, 270);

        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, true));
        ASSERT_NO_FATAL_FAILURE(expectTheSameParts(text, false));
    }
}
