// The examples, each run as a reader would run it.

#include "tests/examples/ExampleRun.h"

#include <gmock/gmock.h>

using test::Example;

namespace {

class Examples : public testing::TestWithParam<Example> {};

} // namespace

TEST_P(Examples, DoWhatTheyTeach) { test::expectLesson(GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    All, Examples,
    testing::Values(
        Example{
            "AudioHead",
            {"48000 Hz, 24 bits", "no format: Insufficient data for tag parse read",
             "no format: Missing RIFF tag", "no format: Insufficient data for tag parse read",
             "nothing is known ahead of Parse"}},
        Example{
            "Companions",
            {"subtitles of Clip1.MOV: Clip1_en.srt", "subtitles of Clip2.mov: none", "there",
             R"(not found at \\127.0.0.1\no such share\clip.mov)"}},
        Example{
            "CrashDrill",
            {"refused: Mismatched quotes in Command Line", "copied",
             "the transfer died and is to be done again"}},
        Example{
            "DerivedNames",
            {R"(indexed as \\arc\vault\PFR-INDEX\2011\clip.mov)",
             R"(archived as \\arc\vault\2011\clip.mxf)",
             R"(message \\playout\Media\News\done_clip1.xml)",
             R"(metadata \\playout\Media\News\clip1.json)",
             R"(indexed as D:\PFR-INDEX\vault\clip.mov)",
             R"(no way back from D:\PFR-INDEX\vault\clip.mov)"}},
        Example{
            "Failures",
            {"not there yet: Value not set (UtilValue, code 0x80004005)",
             R"(asked without looking first: GetFileAttributesEx failed on )"
             R"("C:\no such folder\clip.mxf" - error 3 (Files, code 0x80004005))"}},
        Example{
            "Instances",
            {"[] observer at srv, transfer at srv:60774", R"(database D:\Db\vr.db)",
             "[System 2] observer at srv:60804, transfer at srv:60806",
             R"(database D:\Db\Instance2\vr.db)",
             "srv is asked at port 60804 (is instance 2 of vrObserver)",
             R"(connecting to "srv:60804" (port 60804 (is instance 2 of vrObserver)))",
             "refused: Expected port >= 60772, given 80"}},
        Example{
            "KeyValues",
            {"clip: clip1.mxf", "frames is no text but Uint32", "Clip is not given",
             "lasts 60 seconds, replaces", "clip: clip1.mxf", "clip: clip1-again.mxf",
             "frames is no text but Uint32", "replace is not given"}},
        Example{
            "LockedFile",
            {"the first one holds the clip", "the second one has to wait",
             "the third one changes the clip", "left nothing behind"}},
        Example{
            "Paths",
            {R"(clip: \\server\share\Media\day.1\clip.take.mxf)",
             R"(host \\server\, share share\, name clip.take, extension .mxf)", "folder: share",
             "folder: Media", "folder: day.1", "as a folder: day.1", "as a file: day", "one path",
             R"(moved: D:\Archive\Media\day.1\clip.take.mxf)",
             "copied: relative, assigned: absolute"}},
        Example{
            "RecordingTimes",
            {"media objects: 2", "in-point: 750 stands for 2160750, frame 2250 of 3000",
             "track: Timecode", "combines with its archive"}},
        Example{"Reports", {"loudness: passed", "made the page"}},
        Example{
            "RunTool",
            {R"(as an argument: "C:\My Media\clip.mxf")", "cmd.exe /c exit 0: done",
             "cmd.exe /c exit 3: failed, and the log tells how",
             "cmd.exe /c exit 0: called off, and runs on to its own end"}},
        Example{
            "SafeReplace",
            {"not replaced: the source has gone", "the clip is old", "the clip is new"}},
        Example{
            "Shares", {R"(Failed to connect to share \\no-such-server\media\)", "out of reach"}},
        Example{
            "SmallFiles",
            {"legal name: News- -Live- 20-15.txt", "length: 11, age in hours: 0",
             "read back: fit for air", "too long for 4 bytes", "removed"}},
        Example{"Sockets", {"at 25 frames"}},
        Example{"Statistics", {"all transfers have ended", "bytes read: 16384", "retries: 4"}},
        Example{
            "Text",
            {"asked for: Clip 1.mxf", "asked for: Clip 2.mxf", "asked for: 100%.mxf",
             "refused: Invalid URL sequence", "kind: RIFF"}},
        Example{
            "TransferFolder",
            {"room for 1 MB: enough", "room for far too much: not enough",
             "room on no drive: unknown", "made", "removed again"}},
        Example{"Watchdog", {"the tool hangs, and is watched", "the tool has ended"}},
        Example{"Worker", {"polled three times", "still at work", "ended when asked"}}),
    [](auto const& test) { return test.param.name; });

// Its lines begin with the numbers of process and thread, so they are looked at one by one.
TEST(LogExample, ShowsTheLinesOfItsLevelAsTheyStandInTheFile) {
    auto const run = test::runExample("Log");

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_THAT(
        run.output, testing::MatchesRegex(
                        "6\tLogExample\t\\d+\t\\d+\tCopying \\[C:.Media.clip.mxf\\], 1 of 3\n"
                        "3\tLogExample\t\\d+\t\\d+\t\\[Log.cpp:\\d+\\] Copy failed, error 112\n"
                        "4\tLogExample\t\\d+\t\\d+\tOdd title \\[100%s<U\\+000A>forged line\\]\n"));
}

TEST(ExampleRun, TellsTheFirstLineThatIsMissing) {
    test::ExampleRun const run{0, "first\nsecond\n", {}};

    EXPECT_EQ("", run.firstMissing({"first", "second"}));
    EXPECT_EQ("first", run.firstMissing({"second", "first"}));
    EXPECT_EQ("sec", run.firstMissing({"first", "sec"}));
    EXPECT_EQ("first", run.firstMissing({"first", "first"}));
}
