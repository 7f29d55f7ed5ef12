// What the program says to arguments that make no sense: why, how it is used, and that nothing was
// done.

#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Words = std::vector<std::wstring>;

struct WrongArguments {
    char const* name;
    Words arguments;
    std::string reason;
    std::string usage;
};

void PrintTo(WrongArguments const& arguments, std::ostream* stream) { *stream << arguments.reason; }

} // namespace

class VrtoolWrongArguments : public testing::TestWithParam<WrongArguments> {};

TEST_P(VrtoolWrongArguments, GiveUsageOnStandardErrorAndTwo) {
    auto const run = test::runTool(GetParam().arguments);

    EXPECT_THAT(run.error, StartsWith("vrtool: " + GetParam().reason + "\n\n"));
    EXPECT_THAT(run.error, HasSubstr("Usage: vrtool " + GetParam().usage));
    EXPECT_EQ("", run.out);
    EXPECT_EQ(2u, run.exitCode);
}

INSTANTIATE_TEST_SUITE_P(
    Vrtool, VrtoolWrongArguments,
    testing::Values(
        WrongArguments{"None", {}, "A subcommand is required", "[OPTIONS] SUBCOMMAND"},
        WrongArguments{
            "UnknownSubcommand",
            {L"inspekt", L"a"},
            "A subcommand is required",
            "[OPTIONS] SUBCOMMAND"},
        WrongArguments{
            "UnknownOption",
            {L"inspect", L"--jason", L"a"},
            "The following argument was not expected: --jason",
            "inspect [OPTIONS] PATH..."},
        WrongArguments{
            "InspectWithoutPath", {L"inspect"}, "PATH is required", "inspect [OPTIONS] PATH..."},
        WrongArguments{
            "InspectWithAnOptionOnly",
            {L"inspect", L"--json"},
            "PATH is required",
            "inspect [OPTIONS] PATH..."},
        WrongArguments{"PathWithoutText", {L"path"}, "TEXT is required", "path [OPTIONS] TEXT"},
        WrongArguments{
            "PathWithTwoTexts",
            {L"path", L"a", L"[b]"},
            "The following argument was not expected: [b]",
            "path [OPTIONS] TEXT"},
        WrongArguments{
            "PathWithATextBeyondAscii",
            {L"path", L"a", L"\u00fc%s\U0001F3AC"},
            "The following argument was not expected: \xC3\xBC%s\xF0\x9F\x8E\xAC",
            "path [OPTIONS] TEXT"},
        WrongArguments{
            "SettingsGetWithoutName",
            {L"settings", L"get"},
            "NAME is required",
            "settings get [OPTIONS] NAME"},
        WrongArguments{
            "SettingsGetWithAnUnknownName",
            {L"settings", L"get", L"[a]"},
            "NAME: no setting has the name [a]",
            "settings get [OPTIONS] NAME"},
        WrongArguments{
            "SettingsSetWithoutValue",
            {L"settings", L"set", L"MaximumTransfers"},
            "VALUE is required",
            "settings set [OPTIONS] NAME VALUE"},
        WrongArguments{
            "SettingsSetWithTwoValues",
            {L"settings", L"set", L"InterplayWSHost", L"a", L"b"},
            "The following argument was not expected: b",
            "settings set [OPTIONS] NAME VALUE"},
        WrongArguments{
            "SettingsSubcommandThatIsNone",
            {L"settings", L"list"},
            "The following argument was not expected: list",
            "settings [OPTIONS] [SUBCOMMAND]"},
        WrongArguments{
            "RegistryWithoutSubcommand",
            {L"registry"},
            "A subcommand is required",
            "registry [OPTIONS] SUBCOMMAND"},
        WrongArguments{
            "DumpWithoutFile",
            {L"registry", L"dump", L"HKCU\\A"},
            "FILE is required",
            "registry dump [OPTIONS] KEY FILE"},
        WrongArguments{
            "DumpOfAWholeHive",
            {L"registry", L"dump", L"HKCU\\", L"a.reg"},
            "KEY: HKCU\\ names a whole hive; a key below it is wanted",
            "registry dump [OPTIONS] KEY FILE"},
        WrongArguments{
            "DumpOfAnotherHive",
            {L"registry", L"dump", L"HKU\\A", L"a.reg"},
            "KEY: HKU\\A begins with none of HKCU\\, HKEY_CURRENT_USER\\, HKLM\\, "
            "HKEY_LOCAL_MACHINE\\",
            "registry dump [OPTIONS] KEY FILE"},
        WrongArguments{
            "RestoreIntoAWholeHive",
            {L"registry", L"restore", L"HKLM", L"a.reg"},
            "KEY: HKLM names a whole hive; a key below it is wanted",
            "registry restore [OPTIONS] KEY FILE"},
        WrongArguments{
            "TimeLimitOfNothing",
            {L"registry", L"restore", L"HKCU\\A", L"a.reg", L"--time-limit", L"0"},
            "--time-limit: Value 0 not in range 1 to 86400",
            "registry restore [OPTIONS] KEY FILE"},
        WrongArguments{
            "TimeLimitOfMoreThanADay",
            {L"registry", L"restore", L"HKCU\\A", L"a.reg", L"--time-limit", L"86401"},
            "--time-limit: Value 86401 not in range 1 to 86400",
            "registry restore [OPTIONS] KEY FILE"},
        WrongArguments{
            "TimeLimitOfACheck",
            {L"registry", L"restore", L"HKCU\\A", L"a.reg", L"--time-limit", L"2", L"--check"},
            "--check excludes --time-limit",
            "registry restore [OPTIONS] KEY FILE"},
        WrongArguments{
            "RunWithoutProgram",
            {L"run", L"--timeout", L"5", L"--"},
            "PROGRAM is required",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "RunWithAnOptionAheadOfTheMark",
            {L"run", L"a.exe", L"--fast"},
            "The following argument was not expected: --fast",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "TimeoutOfNothing",
            {L"run", L"--timeout", L"0", L"--", L"a"},
            "--timeout: Value 0 not in range 1 to 86400",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "TimeoutOfMoreThanADay",
            {L"run", L"--timeout", L"86401", L"--", L"a"},
            "--timeout: Value 86401 not in range 1 to 86400",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "PollOfNothing",
            {L"run", L"--poll", L"0", L"--", L"a"},
            "--poll: Value 0 not in range 1 to 60000",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "PollOfMoreThanAMinute",
            {L"run", L"--poll", L"60001", L"--", L"a"},
            "--poll: Value 60001 not in range 1 to 60000",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "VariableWithoutValue",
            {L"run", L"--env", L"A", L"--", L"a"},
            "--env: A is not of the form NAME=VALUE",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "VariableWithoutName",
            {L"run", L"--env", L"A=1", L"--env", L"=b", L"--", L"a"},
            "--env: =b is not of the form NAME=VALUE",
            "run [OPTIONS] PROGRAM..."},
        WrongArguments{
            "WatchWithoutProcess",
            {L"watch", L"--grace", L"5"},
            "PID is required",
            "watch [OPTIONS] PID"},
        WrongArguments{
            "WatchWithoutGrace", {L"watch", L"5"}, "--grace is required", "watch [OPTIONS] PID"},
        WrongArguments{
            "WatchOfNoNumber",
            {L"watch", L"five", L"--grace", L"5"},
            "PID: Value five not in range 1 to 4294967295",
            "watch [OPTIONS] PID"},
        WrongArguments{
            "GraceOfMoreThanADay",
            {L"watch", L"5", L"--grace", L"86401"},
            "--grace: Value 86401 not in range 0 to 86400",
            "watch [OPTIONS] PID"},
        WrongArguments{
            "TerminateWithoutProcess",
            {L"terminate"},
            "PID is required",
            "terminate [OPTIONS] PID"},
        WrongArguments{
            "TerminateOfProcessNought",
            {L"terminate", L"0"},
            "PID: Value 0 not in range 1 to 4294967295",
            "terminate [OPTIONS] PID"},
        WrongArguments{
            "TerminateOfNoProcessId",
            {L"terminate", L"4294967296"},
            "PID: Value 4294967296 not in range 1 to 4294967295",
            "terminate [OPTIONS] PID"},
        WrongArguments{
            "LockWithoutFile", {L"lock"}, "FILE is required", "lock [OPTIONS] FILE PROGRAM..."},
        WrongArguments{
            "LockWithoutProgram",
            {L"lock", L"C:\\a.mxf"},
            "PROGRAM is required",
            "lock [OPTIONS] FILE PROGRAM..."},
        WrongArguments{
            "ServicesStartWithoutName",
            {L"services", L"start"},
            "NAME is required",
            "services start [OPTIONS] NAME"},
        WrongArguments{
            "ServicesStopOfTwo",
            {L"services", L"stop", L"sync", L"engine"},
            "The following argument was not expected: engine",
            "services stop [OPTIONS] NAME"},
        WrongArguments{
            "ServicesSubcommandThatIsNone",
            {L"services", L"pause"},
            "The following argument was not expected: pause",
            "services [OPTIONS] [SUBCOMMAND]"},
        WrongArguments{
            "WhoamiWithAnArgument",
            {L"whoami", L"me"},
            "The following argument was not expected: me",
            "whoami [OPTIONS]"},
        WrongArguments{
            "WidthThatIsNoNumber",
            {L"--width", L"many", L"path", L"a"},
            "--width: Value many not in range 0 to 32767",
            "path [OPTIONS] TEXT"},
        WrongArguments{
            "WidthBelowZero",
            {L"path", L"a", L"--width", L"-1"},
            "--width: Value -1 not in range 0 to 32767",
            "path [OPTIONS] TEXT"}),
    [](auto const& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    VrtoolNetwork, VrtoolWrongArguments,
    testing::Values(
        WrongArguments{"PortWithoutPort", {L"port"}, "PORT is required", "port [OPTIONS] PORT"},
        WrongArguments{
            "PortThatIsNoNumber",
            {L"port", L"many"},
            "PORT: Value many not in range 0 to 4294967295",
            "port [OPTIONS] PORT"},
        WrongArguments{
            "PortBelowZero",
            {L"port", L"-1"},
            "PORT: Value -1 not in range 0 to 4294967295",
            "port [OPTIONS] PORT"},
        WrongArguments{
            "PortTooLarge",
            {L"port", L"4294967296"},
            "PORT: Value 4294967296 not in range 0 to 4294967295",
            "port [OPTIONS] PORT"},
        WrongArguments{
            "EndpointWithoutText", {L"endpoint"}, "TEXT is required", "endpoint [OPTIONS] TEXT"},
        WrongArguments{
            "InstanceWithoutService",
            {L"endpoint", L"a", L"--instance", L"2"},
            "--instance requires --service",
            "endpoint [OPTIONS] TEXT"},
        WrongArguments{
            "InstanceThatIsNoNumber",
            {L"endpoint", L"a", L"--instance", L"two", L"--service", L"60772"},
            "--instance: Value two not in range 0 to 4294967295",
            "endpoint [OPTIONS] TEXT"},
        WrongArguments{
            "ServiceThatIsNoNumber",
            {L"endpoint", L"a", L"--service", L"vrTransfer"},
            "--service: Value vrTransfer not in range 0 to 4294967295",
            "endpoint [OPTIONS] TEXT"},
        WrongArguments{"WhereWithoutPath", {L"where"}, "PATH is required", "where [OPTIONS] PATH"},
        WrongArguments{
            "SameWithOnePath",
            {L"same", L"C:\\a"},
            "SECOND is required",
            "same [OPTIONS] FIRST SECOND"},
        WrongArguments{
            "SameWithThreePaths",
            {L"same", L"a", L"b", L"c"},
            "The following argument was not expected: c",
            "same [OPTIONS] FIRST SECOND"},
        WrongArguments{
            "ConnectWithoutPort",
            {L"connect", L"a"},
            "PORT is required",
            "connect [OPTIONS] HOST PORT"},
        WrongArguments{
            "ConnectToPortZero",
            {L"connect", L"a", L"0"},
            "PORT: Value 0 not in range 1 to 65535",
            "connect [OPTIONS] HOST PORT"},
        WrongArguments{
            "ConnectToAPortTooLarge",
            {L"connect", L"a", L"65536"},
            "PORT: Value 65536 not in range 1 to 65535",
            "connect [OPTIONS] HOST PORT"}),
    [](auto const& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    VrtoolStorage, VrtoolWrongArguments,
    testing::Values(
        WrongArguments{
            "DiskWithoutBytes",
            {L"disk", L"C:\\"},
            "BYTES is required",
            "disk [OPTIONS] TARGET BYTES"},
        WrongArguments{
            "DiskOfNoNumber",
            {L"disk", L"C:\\", L"much"},
            "BYTES: Value much not in range 0 to 18446744073709551615",
            "disk [OPTIONS] TARGET BYTES"},
        WrongArguments{
            "DiskBelowZero",
            {L"disk", L"C:\\", L"-1"},
            "BYTES: Value -1 not in range 0 to 18446744073709551615",
            "disk [OPTIONS] TARGET BYTES"},
        WrongArguments{
            "DiskOfTooManyBytes",
            {L"disk", L"C:\\", L"18446744073709551616"},
            "BYTES: Value 18446744073709551616 not in range 0 to 18446744073709551615",
            "disk [OPTIONS] TARGET BYTES"},
        WrongArguments{
            "SidecarWithoutPattern",
            {L"sidecar", L"a", L"--regex", L"a", L"--folder", L"a", L"--name", L"a"},
            "--pattern is required",
            "sidecar [OPTIONS] MOVIE"},
        WrongArguments{"FindWithoutPath", {L"find"}, "PATH is required", "find [OPTIONS] PATH"},
        WrongArguments{"IndexWithoutPath", {L"index"}, "PATH is required", "index [OPTIONS] PATH"},
        WrongArguments{
            "ArchiveWithoutExtension",
            {L"archive", L"a"},
            "EXTENSION is required",
            "archive [OPTIONS] PATH EXTENSION"},
        WrongArguments{
            "NumberWithoutLimit",
            {L"number", L"a"},
            "LIMIT is required",
            "number [OPTIONS] BASE LIMIT"},
        WrongArguments{
            "NumberOfTooManyEntries",
            {L"number", L"a", L"2147483648"},
            "LIMIT: Value 2147483648 not in range 0 to 2147483647",
            "number [OPTIONS] BASE LIMIT"},
        WrongArguments{
            "PlacesWithAnArgument",
            {L"places", L"here"},
            "The following argument was not expected: here",
            "places [OPTIONS]"},
        WrongArguments{
            "RemoveThatIsNotRecoverable",
            {L"remove", L"a"},
            "--recoverable is required",
            "remove [OPTIONS] PATH"},
        WrongArguments{
            "RemoveWithoutPath",
            {L"remove", L"--recoverable"},
            "PATH is required",
            "remove [OPTIONS] PATH"}),
    [](auto const& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    VrtoolStatistics, VrtoolWrongArguments,
    testing::Values(
        WrongArguments{
            "NoThreads",
            {L"stats-demo", L"--threads", L"0"},
            "--threads: Value 0 not in range 1 to 64",
            "stats-demo [OPTIONS]"},
        WrongArguments{
            "TooManyThreads",
            {L"stats-demo", L"--threads", L"65"},
            "--threads: Value 65 not in range 1 to 64",
            "stats-demo [OPTIONS]"},
        WrongArguments{
            "NoFrames",
            {L"stats-demo", L"--frames", L"0"},
            "--frames: Value 0 not in range 1 to 10000000",
            "stats-demo [OPTIONS]"},
        WrongArguments{
            "TooManyFrames",
            {L"stats-demo", L"--frames", L"10000001"},
            "--frames: Value 10000001 not in range 1 to 10000000",
            "stats-demo [OPTIONS]"},
        WrongArguments{
            "StatsDemoOfSomething",
            {L"stats-demo", L"something"},
            "The following argument was not expected: something",
            "stats-demo [OPTIONS]"}),
    [](auto const& test) { return test.param.name; });
