// `vrtool inspect` as its users run it.

#include "foundation/Platform.h"
#include "tests/support/ByteBuilder.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"
#include "tests/vrtool/WorkingFolder.h"
#include "tools/vrtool/SystemText.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

test::OwnedHandle open(std::wstring const& path, DWORD access) {
    return test::OwnedHandle(CreateFileW(
        path.c_str(), access, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Moves the last write so many minutes back.
void setAge(std::wstring const& path, std::int64_t minutes) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER time{{now.dwLowDateTime, now.dwHighDateTime}};
    time.QuadPart -= static_cast<ULONGLONG>(minutes * 60 * 10'000'000);
    FILETIME const written{time.LowPart, time.HighPart};
    auto const file = open(path, FILE_WRITE_ATTRIBUTES);
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &written));
}

std::vector<std::string> namesIn(Json::Value const& array) {
    std::vector<std::string> names;
    for (auto const& file : array)
        names.push_back(file["name"].asString() + file["extension"].asString());
    return names;
}

class VrtoolInspect : public testing::Test {
  protected:
    // The object of the only file that is inspected.
    Json::Value inspectOne(std::wstring const& path) {
        auto const array = test::runTool({L"inspect", L"--json", path}).json();
        EXPECT_EQ(1u, array.size());
        return array[0];
    }

    // Whether the program made a failure of this one file, and which.
    std::string failureOf(std::wstring const& path) {
        auto const run = test::runTool({L"inspect", L"--json", path});
        EXPECT_EQ(1u, run.exitCode);
        EXPECT_EQ("", run.error);
        return run.json()[0]["failure"].asString();
    }

    std::string const missing = "vrtool: no such file or folder: ";
    test::ScratchFolder folder;
};

} // namespace

TEST_F(VrtoolInspect, TellsEveryFactInJson) {
    auto const path = folder.write(L"~day 1\\clip.wav", test::wavHead(96000, 24));

    auto const file = inspectOne(path);

    EXPECT_EQ(test::utf8(path), file["path"].asString());
    EXPECT_EQ(test::utf8(path.substr(0, 3)), file["rootOrDrive"].asString());
    EXPECT_EQ(std::count(path.begin(), path.end(), L'\\') - 1, file["folderCount"].asInt());
    EXPECT_EQ("clip", file["name"].asString());
    EXPECT_EQ(".wav", file["extension"].asString());
    EXPECT_EQ(test::wavHead(96000, 24).size(), file["size"].asUInt64());
    EXPECT_EQ(0u, file["ageHours"].asUInt());
    EXPECT_EQ(Json::Value(false), file["offline"]);
    EXPECT_EQ("clip.wav", file["legalName"].asString());
    EXPECT_EQ(96000u, file["samplesPerSecond"].asUInt());
    EXPECT_EQ(24u, file["bitsPerSample"].asUInt());
    EXPECT_EQ(Json::Value(), file["failure"]);
    EXPECT_EQ(12u, file.size());
}

TEST_F(VrtoolInspect, ShowsEveryFactInTheTable) {
    auto const path = folder.write(L"clip.wav", test::wavHead(44100, 16));
    auto const broken = folder.write(L"z.wav", "this is no audio file");
    auto const depth = std::to_string(std::count(path.begin(), path.end(), L'\\') - 1);
    auto const drive = test::utf8(path.substr(0, 3));
    auto const size = std::to_string(test::wavHead(44100, 16).size());

    auto const run = test::runTool({L"inspect", folder.path()});

    auto const lines = run.lines();
    ASSERT_EQ(3u, lines.size());
    EXPECT_THAT(
        test::cellsOf(lines[0]), ElementsAre(
                                     "PATH", "ROOT", "DEPTH", "NAME", "EXT", "BYTES", "HOURS",
                                     "OFFLINE", "LEGAL NAME", "HZ", "BITS", "FAILURE"));
    EXPECT_THAT(
        test::cellsOf(lines[1]), ElementsAre(
                                     test::utf8(path), drive, depth, "clip", ".wav", size, "0",
                                     "no", "clip.wav", "44100", "16"));
    EXPECT_THAT(
        test::cellsOf(lines[2]), ElementsAre(
                                     test::utf8(broken), drive, depth, "z", ".wav", "21", "0", "no",
                                     "z.wav", "-", "-", "Missing RIFF tag"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, EndsWithZeroWhenAllIsWell) {
    folder.write(L"clip.wav", test::wavHead(44100, 16));
    folder.write(L"notes.txt", "no audio");

    auto const run = test::runTool({L"inspect", folder.path()});

    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolInspect, ReadsTheHeadsOfAiffFilesByAnyOfTheirExtensions) {
    for (auto const* name : {L"a.aif", L"b.aiff", L"c.AIFF"})
        folder.write(name, test::aiffHead(test::extended(8000), 8));
    folder.write(L"d.aifc", test::aiffHead(test::extended(8000), 8, {{}, {{"SSND", {0}}}, "AIFC"}));

    auto const run = test::runTool({L"inspect", L"--json", folder.path()});

    for (auto const& file : run.json()) {
        EXPECT_EQ(8000u, file["samplesPerSecond"].asUInt()) << file;
        EXPECT_EQ(8u, file["bitsPerSample"].asUInt()) << file;
    }
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolInspect, KnowsWavFilesWithoutRegardToCase) {
    auto const file = inspectOne(folder.write(L"CLIP.WaV", test::wavHead(48000, 16)));

    EXPECT_EQ(48000u, file["samplesPerSecond"].asUInt());
}

TEST_F(VrtoolInspect, DoesNotReadFilesThatAreNoAudio) {
    auto const path = folder.write(L"clip.mxf", "");
    auto const held = open(path, GENERIC_READ);

    auto const file = inspectOne(path);

    EXPECT_EQ(Json::Value(), file["samplesPerSecond"]);
    EXPECT_EQ(Json::Value(), file["bitsPerSample"]);
    EXPECT_EQ(Json::Value(), file["failure"]);
}

TEST_F(VrtoolInspect, TellsWhyAnAudioFileIsBroken) {
    auto const insufficient = "Insufficient data for tag parse read";

    EXPECT_EQ(insufficient, failureOf(folder.write(L"empty.wav", "")));
    EXPECT_EQ(insufficient, failureOf(folder.write(L"short.wav", "RIFF")));
    EXPECT_EQ("Missing RIFF tag", failureOf(folder.write(L"text.wav", "this is no audio file")));
    EXPECT_EQ("Missing WAVE tag", failureOf(folder.write(L"avi.wav", "RIFF....AVI ....")));
    EXPECT_EQ("Missing FORM tag", failureOf(folder.write(L"text.aif", "this is no audio file")));
    EXPECT_EQ("Missing AIFF/AIFC tag", failureOf(folder.write(L"svx.aiff", "FORM....8SVX....")));
}

TEST_F(VrtoolInspect, LooksForTheFormatInTheFirst64KibibytesOnly) {
    test::HeadLayout nearFormat{{{"JUNK", test::Bytes(64 * 1024 - 61)}}};
    test::HeadLayout farFormat{{{"JUNK", test::Bytes(64 * 1024 - 44)}}};

    auto const within = folder.write(L"near.wav", test::wavHead(48000, 16, nearFormat));
    auto const beyond = folder.write(L"far.wav", test::wavHead(48000, 16, farFormat));

    EXPECT_EQ(48000u, inspectOne(within)["samplesPerSecond"].asUInt());
    EXPECT_EQ("Insufficient data for tag parse read", failureOf(beyond));
}

TEST_F(VrtoolInspect, SaysThatAFileCannotBeOpened) {
    auto const path = folder.write(L"held.wav", test::wavHead(48000, 16));
    auto const held = open(path, GENERIC_READ);

    auto const run = test::runTool({L"inspect", L"--json", path});

    EXPECT_EQ("Unable to open file " + test::utf8(path), run.json()[0]["failure"].asString());
    EXPECT_EQ(test::wavHead(48000, 16).size(), run.json()[0]["size"].asUInt64());
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, CountsWholeHoursOfAge) {
    auto const young = folder.write(L"young.txt", "");
    auto const old = folder.write(L"old.txt", "");
    setAge(young, 59);
    setAge(old, 61 + 24 * 60);

    EXPECT_EQ(0u, inspectOne(young)["ageHours"].asUInt());
    EXPECT_EQ(25u, inspectOne(old)["ageHours"].asUInt());
}

TEST_F(VrtoolInspect, GivesTheNameThatTheLibraryFindsLegal) {
    EXPECT_EQ("-a~b.txt", inspectOne(folder.write(L"~a~b.txt", ""))["legalName"].asString());
}

TEST_F(VrtoolInspect, ShowsTheAgeOfAFutureFileAsHostsSeeIt) {
    auto const path = folder.write(L"future.txt", "");
    setAge(path, -150);

    EXPECT_EQ(0xFFFFFFFEu, inspectOne(path)["ageHours"].asUInt());
}

TEST_F(VrtoolInspect, WalksFoldersInTheOrderOfNames) {
    for (auto const* name : {L"b.txt", L"A\\z.txt", L"A\\B\\c.txt", L"C.txt"})
        folder.write(name, "");

    auto const run = test::runTool({L"inspect", L"--json", folder.path()});

    EXPECT_THAT(namesIn(run.json()), ElementsAre("c.txt", "z.txt", "b.txt", "C.txt"));
}

TEST_F(VrtoolInspect, KeepsTheOrderOfItsArguments) {
    auto const z = folder.write(L"z.txt", "");
    auto const a = folder.write(L"a.txt", "");

    auto const run = test::runTool({L"inspect", z, a, z, L"--json"});

    EXPECT_THAT(namesIn(run.json()), ElementsAre("z.txt", "a.txt", "z.txt"));
}

TEST_F(VrtoolInspect, TakesAFolderInAnySpelling) {
    folder.write(L"day.1\\a.txt", "");
    auto forward = folder.file(L"day.1");
    std::replace(forward.begin(), forward.end(), L'\\', L'/');

    auto const plain = test::runTool({L"inspect", folder.file(L"day.1")});

    EXPECT_THAT(plain.out, HasSubstr(test::utf8(folder.file(L"day.1\\a.txt"))));
    EXPECT_EQ(plain.out, test::runTool({L"inspect", folder.file(L"day.1\\")}).out);
    EXPECT_EQ(plain.out, test::runTool({L"inspect", forward}).out);
}

TEST_F(VrtoolInspect, NamesAMissingPathAndGoesOn) {
    auto const there = folder.write(L"there.txt", "");
    auto const gone = folder.file(L"gone.txt");

    auto const run = test::runTool({L"inspect", L"--json", gone, there});

    EXPECT_EQ(missing + '"' + test::utf8(gone) + "\"\n", run.error);
    EXPECT_THAT(namesIn(run.json()), ElementsAre("there.txt"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, NamesEachMissingPathInALineOfItsOwn) {
    auto const run = test::runTool({L"inspect", L"C:\\no\\way\\a", {}, L"C:\\b%s%n.wav"});

    EXPECT_EQ(
        missing + "\"C:\\no\\way\\a\"\n" + missing + "\"\"\n" + missing + "\"C:\\b%s%n.wav\"\n",
        run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, GivesTheErrorOfAPathThatCannotBeReached) {
    auto const run = test::runTool({L"inspect", folder.file(L"*.wav")});

    EXPECT_EQ(
        "vrtool: cannot reach \"" + test::utf8(folder.file(L"*.wav")) +
            "\": " + test::utf8(systemText(ERROR_INVALID_NAME)) + '\n',
        run.error);
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, MissingPathsAloneGiveAnEmptyArray) {
    auto const run = test::runTool({L"inspect", L"--json", folder.file(L"gone")});

    EXPECT_EQ("[]\n", run.out);
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, SaysThatAFolderHoldsNoFiles) {
    auto const table = test::runTool({L"inspect", folder.path()});
    auto const json = test::runTool({L"inspect", L"--json", folder.path()});

    EXPECT_EQ("No files.\n", table.out);
    EXPECT_EQ(0u, table.exitCode);
    EXPECT_EQ("[]\n", json.out);
    EXPECT_EQ(0u, json.exitCode);
}

struct Name {
    char const* kind;
    std::wstring text;
};

void PrintTo(Name const& name, std::ostream* stream) { *stream << name.kind; }

class VrtoolInspectNames : public testing::TestWithParam<Name> {};

TEST_P(VrtoolInspectNames, ComeThroughAsTheyAre) {
    test::ScratchFolder const folder;
    auto const path = folder.write(GetParam().text + L".wav", test::wavHead(48000, 16));
    auto const name = test::utf8(GetParam().text);

    auto const table = test::runTool({L"inspect", path});
    auto const json = test::runTool({L"inspect", L"--json", path}).json();

    EXPECT_EQ(0u, table.exitCode) << table.error;
    EXPECT_THAT(table.out, HasSubstr(test::utf8(path)));
    EXPECT_EQ(name, json[0]["name"].asString());
    EXPECT_EQ(name + ".wav", json[0]["legalName"].asString());
    EXPECT_EQ(48000u, json[0]["samplesPerSecond"].asUInt());
}

INSTANTIATE_TEST_SUITE_P(
    VrtoolInspect, VrtoolInspectNames,
    testing::Values(
        Name{"Umlauts", L"K\u00f6ln \u00fcber M\u00fcnchen"}, Name{"Emoji", L"\U0001F3AC take 1"},
        Name{"OtherScripts", L"\u0416\u65e5\u672c"}, Name{"PercentSigns", L"100%s%n%d%%"},
        Name{"Brackets", L"[a,b]"}, Name{"OneBracket", L"[x"}, Name{"Plus", L"++"},
        Name{"Option", L"--json"}, Name{"Number", L"-1"}, Name{"Equals", L"a=b;c"},
        Name{"ShellCharacters", L"'quoted' & ^caret^ #{}$!@"}, Name{"TwoBlanks", L"two  blanks"}),
    [](auto const& test) { return test.param.kind; });

TEST_F(VrtoolInspect, TakesNamesThatOtherProgramsReadAsLists) {
    folder.write(L"[a,b]\\1.txt", "");
    folder.write(L"[c]\\2.txt", "");
    folder.write(L"++\\3.txt", "");
    test::WorkingFolder const inside(folder.path());

    auto const run = test::runTool({L"inspect", L"--json", L"[a,b]", L"[c]", L"++", L"[c]\\2.txt"});

    EXPECT_THAT(namesIn(run.json()), ElementsAre("1.txt", "2.txt", "3.txt", "2.txt"));
    EXPECT_EQ("", run.error);
}

TEST_F(VrtoolInspect, TakesANameWithLeadingDashesBehindADoubleDash) {
    folder.write(L"--json", "");
    test::WorkingFolder const inside(folder.path());

    auto const run = test::runTool({L"inspect", L"--json", L"--", L"--json"});

    EXPECT_THAT(namesIn(run.json()), ElementsAre("--json"));
}

TEST_F(VrtoolInspect, ShowsRelativePathsAsTheyAre) {
    folder.write(L"day 1\\a.txt", "");
    test::WorkingFolder const inside(folder.path());

    auto const file = inspectOne(L"day 1");

    EXPECT_EQ("day 1\\a.txt", file["path"].asString());
    EXPECT_EQ("", file["rootOrDrive"].asString());
    EXPECT_EQ(1, file["folderCount"].asInt());
}

TEST_F(VrtoolInspect, TakesASlashInFrontForAPathNotAnOption) {
    auto const run = test::runTool({L"inspect", L"/json"});

    EXPECT_EQ(missing + "\"json\"\n", run.error);
}

TEST_F(VrtoolInspect, ShowsLongNamesInFullInAPipe) {
    std::wstring const name(200, L'n');
    auto const path = folder.write(std::wstring(120, L'f') + L'\\' + name + L".wav", "RIFF");

    auto const run = test::runTool({L"inspect", path});

    auto const cells = test::cellsOf(run.lines().at(1));
    EXPECT_EQ(test::utf8(path), cells[0]);
    EXPECT_EQ(test::utf8(name), cells[3]);
    EXPECT_EQ(test::utf8(name) + ".wav", cells[8]);
    EXPECT_EQ("Insufficient data for tag parse read", cells.back());
}

TEST_F(VrtoolInspect, NamesAMissingPathOf300Characters) {
    std::wstring const name(300, L'n');

    auto const run = test::runTool({L"inspect", L"C:\\" + name + L".wav"});

    EXPECT_THAT(run.error, testing::StartsWith("vrtool: "));
    EXPECT_THAT(run.error, HasSubstr("\"C:\\" + test::utf8(name) + ".wav\""));
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolInspect, FitsATerminalOfEightyColumns) {
    folder.write(L"A recording whose name is rather long.wav", "no audio in here at all");
    folder.write(L"\u00fcber.wav", test::wavHead(48000, 16));

    auto const run = test::runTool({L"inspect", folder.path(), L"--width", L"79"});

    EXPECT_EQ(
        "PATH\n"
        "  ROOT DEPTH NAME           EXT  BYTES HOURS OFFLINE LEGAL NAME         HZ BITS\n"
        "  FAILURE\n",
        run.out.substr(0, run.out.find("FAILURE") + 8));
    EXPECT_THAT(run.out, HasSubstr("\n  Missing RIFF tag\n"));
    EXPECT_THAT(
        run.out,
        HasSubstr(
            " A recording w\u2026 .wav    23     0 no      A recording wh\u2026     -    -\n"));
}

TEST_F(VrtoolInspect, WritesUtf8InJsonWithoutEscapes) {
    auto const path = folder.write(L"K\u00f6ln \U0001F3AC.txt", "");

    auto const run = test::runTool({L"inspect", L"--json", path});

    EXPECT_THAT(run.out, HasSubstr("\"K\u00f6ln \U0001F3AC\""));
}
