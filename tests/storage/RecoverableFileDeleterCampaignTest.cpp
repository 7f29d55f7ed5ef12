// Processes that are killed anywhere in a deletion that can be undone: the file or its copy is
// there, whole, and comes back.

#include "vrUtils/Storage/RecoverableFileDeleter.h"

#include "tests/storage/Tree.h"
#include "tests/support/Campaign.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

using vrUtils::Storage::RecoverableFileDeleter;

namespace {

// Where a process is when it is killed. On the way it deletes and recovers without a pause, and may
// be anywhere. At the places behind it stops and waits for its end: ahead of each platform call
// that changes the disk, behind it, and half way through either copy.
constexpr unsigned onTheWay = 0;
constexpr unsigned callsOfDeletion = 8;
constexpr unsigned copiesOfDeletion = 2;
constexpr unsigned placeCount = 1 + 2 * callsOfDeletion + copiesOfDeletion;

// Large enough for a kill to come in the middle of a copy.
constexpr std::size_t fileSize = std::size_t{2} << 20;

std::string content() {
    std::string bytes(fileSize, '\0');
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<char>(index % 251);
    return bytes;
}

// Stops this process at one of the places, which it passes in their order.
class StopAt {
  public:
    explicit StopAt(unsigned place) : m_place(place) {}

  private:
    template <typename Signature>
    struct Hook {
        Hook(StopAt& stop, char const* import)
            : hook(import, [this, &stop](auto... arguments) {
                  stop.reach();
                  auto const result = hook.original()(arguments...);
                  stop.reach();
                  return result;
              }) {}

        test::ImportHook<Signature> hook;
    };

    void reach() {
        if (++m_reached != m_place)
            return;
        std::puts("reached");
        std::fflush(stdout);
        Sleep(INFINITE);
    }

    BOOL copy(LPCWSTR from, LPCWSTR to, BOOL keepsExisting) {
        reach();
        if (m_reached + 1 == m_place)
            copyHalf(from, to);
        reach();
        auto const copied = m_copy.original()(from, to, keepsExisting);
        reach();
        return copied;
    }

    static void copyHalf(std::filesystem::path const& from, std::filesystem::path const& to) {
        std::ifstream source(from, std::ios::binary);
        std::string bytes(fileSize / 2, '\0');
        source.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        std::ofstream(to, std::ios::binary) << bytes;
    }

    unsigned m_place;
    unsigned m_reached = 0;
    Hook<decltype(CreateDirectoryW)> m_create{*this, "CreateDirectoryW"};
    test::ImportHook<decltype(CopyFileW)> m_copy{
        "CopyFileW", [this](auto... arguments) { return copy(arguments...); }};
    Hook<decltype(SetFileAttributesW)> m_attributes{*this, "SetFileAttributesW"};
    Hook<decltype(DeleteFileW)> m_delete{*this, "DeleteFileW"};
    Hook<decltype(RemoveDirectoryW)> m_remove{*this, "RemoveDirectoryW"};
};

void deleteAndRecover(vr::Path const& file) {
    RecoverableFileDeleter deleter(file, L"Host");
    deleter.Delete();
    deleter.Recover();
}

test::ChildAction const beKilled(L"be killed in a deletion", [](auto const& arguments) {
    auto const file = vr::Path::file(arguments.at(0));
    StopAt const stop(std::stoul(arguments.at(1)));
    deleteAndRecover(file);
    std::puts("reached");
    std::fflush(stdout);
    for (;;)
        deleteAndRecover(file);
    return 0;
});

// A file with a process that deletes it, and the place where that is to be killed.
struct Deletion {
    explicit Deletion(unsigned wanted) : place(wanted) {}

    bool isWhole(std::wstring const& name) const {
        return folder.exists(name) && folder.read(name) == content();
    }

    unsigned place;
    test::ScratchFolder folder;
    std::wstring file = folder.write(L"clip.mxf", content());
    std::unique_ptr<test::ChildProcess> process = beKilled.start({file, std::to_wstring(place)});
};

// Every second process is killed on the way.
unsigned anyPlace(test::Campaign& campaign) {
    return campaign.below(2) == 0 ? onTheWay : static_cast<unsigned>(campaign.below(placeCount));
}

} // namespace

TEST(RecoverableFileDeleterCampaign, KilledProcessesNeverLoseTheFile) {
    unsigned kills = 0;
    unsigned brokenFiles = 0;
    unsigned brokenCopies = 0;
    std::array<unsigned, placeCount> killed{};
    test::Campaign campaign(8);
    while (campaign.nextRound()) {
        // Two at a time: most of the time goes into their start.
        std::array<std::unique_ptr<Deletion>, 2> deletions;
        for (auto& deletion : deletions)
            deletion = std::make_unique<Deletion>(anyPlace(campaign));

        for (auto const& deletion : deletions) {
            SCOPED_TRACE(testing::Message() << campaign << ", at place " << deletion->place);
            ASSERT_TRUE(deletion->process->waitForOutput("reached"));
            if (deletion->place == onTheWay)
                deletion->process->wait(std::chrono::milliseconds(campaign.below(40)));

            deletion->process->kill();
            ++kills;
            ++killed[deletion->place];

            auto const isFileWhole = deletion->isWhole(L"clip.mxf");
            auto const isCopyWhole = deletion->isWhole(L"Recovery\\clip.mxf");
            ASSERT_TRUE(isFileWhole || isCopyWhole);
            brokenFiles += isFileWhole ? 0 : 1;
            brokenCopies += isCopyWhole ? 0 : 1;

            if (!isFileWhole)
                RecoverableFileDeleter(vr::Path::file(deletion->file), L"Host").Recover();
            ASSERT_TRUE(deletion->isWhole(L"clip.mxf"));
        }
    }
    std::printf(
        "%u processes killed; %u times the copy alone was whole, %u times the file alone\n", kills,
        brokenFiles, brokenCopies);
    for (unsigned place = 0; place < placeCount; ++place)
        std::printf("%s%u", place == 0 ? "kills at each place: " : " ", killed[place]);
    std::puts("");
}

// Each place once, so that none depends on chance.
class RecoverableFileDeleterKilledAt : public testing::TestWithParam<unsigned> {};

INSTANTIATE_TEST_SUITE_P(EachPlace, RecoverableFileDeleterKilledAt, testing::Range(1u, placeCount));

TEST_P(RecoverableFileDeleterKilledAt, LeavesTheFileOrItsCopyWhole) {
    Deletion const deletion(GetParam());
    ASSERT_TRUE(deletion.process->waitForOutput("reached"));

    deletion.process->kill();

    ASSERT_TRUE(deletion.isWhole(L"clip.mxf") || deletion.isWhole(L"Recovery\\clip.mxf"));
    if (!deletion.isWhole(L"clip.mxf"))
        RecoverableFileDeleter(vr::Path::file(deletion.file), L"Host").Recover();
    EXPECT_TRUE(deletion.isWhole(L"clip.mxf"));
}
