// `vrtool places` on this computer.

#include "tools/vrtool/PlacesCommand.h"

#include "tests/support/ImportHook.h"
#include "tests/support/ScratchComputerName.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/RunHere.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

#include <shlobj.h>

TEST(VrtoolPlaces, AreShown) {
    test::ScratchComputerName const name(L"MEDIA01");

    auto const run = test::runTool({L"places"});

    EXPECT_EQ(
        R"(WHAT                  VALUE
programFiles          C:\Program Files
vorraneData           C:\ProgramData\Vorrane\
quantumData           C:\ProgramData\Quantum\
media                 \\MEDIA01\OstrelMedia\
referenceMovies       \\MEDIA01\OstrelMedia\ReferenceMovies\
localMedia            C:\OstrelMedia\
localReferenceMovies  C:\OstrelMedia\ReferenceMovies\
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolPlaces, TellProgramsTheSame) {
    auto const run = test::runTool({L"places", L"--json"});
    auto const document = run.json();

    EXPECT_EQ(R"(C:\ProgramData\Quantum\)", document["quantumData"].asString());
    EXPECT_EQ(Json::Value(Json::objectValue), document["failures"]);
    EXPECT_EQ(8u, document.size());
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolPlaces, ThatAreNotKnownShowWhy) {
    test::ScratchComputerName const name(L"SIXTEEN-LETTERS-");

    auto const run = test::runTool({L"places", L"--json"});
    auto const document = run.json();

    EXPECT_TRUE(document["media"].isNull());
    EXPECT_EQ(
        "Failed to determine computer name when getting OstrelMedia path",
        document["failures"]["media"].asString());
    EXPECT_EQ(2u, document["failures"].size());
    EXPECT_EQ(R"(C:\OstrelMedia\)", document["localMedia"].asString());
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolPlaces, OfAShellThatFailsShowWhy) {
    test::FailingImport<decltype(SHGetKnownFolderPath)> const fails(
        "SHGetKnownFolderPath", E_FAIL, ERROR_ACCESS_DENIED, test::everyCall);

    auto const run = test::runHere<PlacesCommand>("places", {"--json"});
    auto const failures = run.json()["failures"];

    EXPECT_EQ("Unable to find Program Files folder", failures["programFiles"].asString());
    EXPECT_EQ("Unable to find Common Application Data Folder", failures["vorraneData"].asString());
    EXPECT_EQ("Unable to find Common Application Data Folder", failures["quantumData"].asString());
    EXPECT_EQ(3u, failures.size());
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolPlaces, HaveASubfolderThatIsMade) {
    auto const name = L"vrtool-" + std::to_wstring(GetCurrentProcessId());
    auto const product = LR"(C:\ProgramData\Vorrane\)" + name;

    auto const run = test::runTool({L"places", L"--json", L"--subfolder", name + LR"(\Day 1\)"});
    auto const wasMade = RemoveDirectoryW((product + LR"(\Day 1)").c_str()) != FALSE;
    RemoveDirectoryW(product.c_str());

    EXPECT_TRUE(wasMade);
    EXPECT_EQ(test::utf8(product) + R"(\Day 1\)", run.json()["vorraneData"].asString());
    EXPECT_EQ(
        R"(C:\ProgramData\Quantum\)" + test::utf8(name) + R"(\Day 1\)",
        run.json()["quantumData"].asString());
}
