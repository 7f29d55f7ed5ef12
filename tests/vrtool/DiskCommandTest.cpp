// `vrtool disk`, on a disk whose free space is the tests' own.

#include "tools/vrtool/DiskCommand.h"

#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/RunHere.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// Answers the library's question and the tool's own.
class FixedSpace {
  public:
    explicit FixedSpace(std::uint64_t bytes) : m_bytes(bytes) {}

    // The folders that the library asked for, and the tool.
    std::vector<std::wstring> const& library() const { return m_library; }
    std::vector<std::wstring> const& tool() const { return m_tool; }

  private:
    using Call = decltype(GetDiskFreeSpaceExW);

    test::ImportHook<Call>::Replacement answer(std::vector<std::wstring>& asked) {
        return [&](wchar_t const* folder, ULARGE_INTEGER*, ULARGE_INTEGER*,
                   ULARGE_INTEGER* free) -> BOOL {
            asked.emplace_back(folder);
            free->QuadPart = m_bytes;
            return TRUE;
        };
    }

    std::uint64_t m_bytes;
    std::vector<std::wstring> m_library;
    std::vector<std::wstring> m_tool;
    test::ImportHook<Call> m_libraryHook{"GetDiskFreeSpaceExW", answer(m_library)};
    test::ImportHook<Call> m_toolHook{"GetDiskFreeSpaceExW", answer(m_tool), test::thisProgram()};
};

test::ToolRun disk(std::string const& target, std::string const& bytes) {
    return test::runHere<DiskCommand>("disk", {bytes, target});
}

} // namespace

TEST(VrtoolDisk, TellsThatExactlyEnoughIsEnough) {
    FixedSpace const space(250'000'000'000);

    auto const run = disk(R"(C:\Media)", "250000000000");

    EXPECT_EQ(
        R"(WHAT           VALUE
target         C:\Media\
freeBytes      250000000000
requiredBytes  250000000000
verdict        enough
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolDisk, TellsThatAByteIsMissing) {
    FixedSpace const space(250'000'000'000);

    auto const run = disk(R"(C:\Media\)", "250000000001");

    EXPECT_THAT(run.out, HasSubstr("\nverdict        not enough\n"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolDisk, TakesTheLargestNumber) {
    FixedSpace const space(18446744073709551615u);

    auto const run = disk(R"(C:\)", "18446744073709551615");

    EXPECT_THAT(run.out, HasSubstr("\nrequiredBytes  18446744073709551615\n"));
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolDisk, AsksForTheFolderOfAShare) {
    FixedSpace const space(1);

    disk(R"(\\media01\share/Day 1)", "1");

    EXPECT_THAT(space.library(), ElementsAre(LR"(\\media01\share\Day 1\)"));
    EXPECT_EQ(space.library(), space.tool());
}

TEST(VrtoolDisk, AsksForTheFolderOfADisk) {
    FixedSpace const space(1);

    disk(R"(C:\Media\Day.1\)", "1");

    EXPECT_THAT(space.library(), ElementsAre(LR"(C:\Media\Day.1\)"));
    EXPECT_EQ(space.library(), space.tool());
}

TEST(VrtoolDisk, AsksForTheLongestFolder) {
    FixedSpace const space(1);
    std::string const longest(258, 'a');

    disk(longest, "1");

    EXPECT_THAT(space.library(), ElementsAre(test::fromUtf8(longest) + L'\\'));
}

TEST(VrtoolDisk, RefusesALongerFolder) {
    FixedSpace const space(1);

    auto const run = disk(std::string(259, 'a'), "1");

    EXPECT_EQ("vrtool: TARGET: a folder has at most 259 characters\n", run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(2u, run.exitCode);
    EXPECT_THAT(space.library(), testing::IsEmpty());
}

TEST(VrtoolDisk, TellsThatNobodyCanTell) {
    test::ScratchFolder const folder;
    auto const missing = folder.file(L"missing");

    auto const run = test::runTool({L"disk", L"--json", missing, L"0"});
    auto const document = run.json();

    EXPECT_EQ(test::utf8(missing) + '\\', document["target"].asString());
    EXPECT_TRUE(document.isMember("freeBytes") && document["freeBytes"].isNull());
    EXPECT_EQ(0u, document["requiredBytes"].asUInt());
    EXPECT_EQ("unknown", document["verdict"].asString());
    EXPECT_THAT(document["failures"]["freeBytes"].asString(), HasSubstr("error 2"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolDisk, TellsOfARealDisk) {
    auto const run = test::runTool({L"disk", L"--json", LR"(C:\)", L"1"});
    auto const document = run.json();

    EXPECT_GT(document["freeBytes"].asUInt64(), 1u);
    EXPECT_EQ("enough", document["verdict"].asString());
    EXPECT_EQ(5u, document.size());
    EXPECT_EQ(0u, run.exitCode);
}
