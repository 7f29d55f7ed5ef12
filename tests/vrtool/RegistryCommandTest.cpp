// `vrtool registry` as its users run it.

#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/ScratchKey.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"
#include "tests/vrtool/WorkingFolder.h"

#include <gmock/gmock.h>
#include <tlhelp32.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr char opening[] = "Windows Registry Editor Version 5.00\r\r\n";

class VrtoolRegistry : public testing::Test {
  protected:
    VrtoolRegistry() : name(L"HKCU\\" + key.path()) {}

    test::ToolRun dump(std::wstring const& path) const {
        return test::runTool({L"registry", L"dump", name, path});
    }

    test::ToolRun restore(std::vector<std::wstring> const& options = {}) const {
        std::vector<std::wstring> arguments{L"registry", L"restore", name, file};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return test::runTool(arguments);
    }

    // The tree's root as it stands in a file, with what follows it.
    std::string inFile(std::string const& rest = {}) const {
        return "HKEY_CURRENT_USER\\" + test::utf8(key.path()) + rest;
    }

    std::string header(std::string const& subkey = "\\") const {
        return '[' + inFile(subkey) + "]\r\r\n";
    }

    // Writes the file that is restored.
    void content(std::string const& text) const { folder.write(L"a.reg", text); }

    static void expectFailure(test::ToolRun const& run, std::string const& error) {
        EXPECT_EQ("vrtool: " + error + '\n', run.error);
        EXPECT_EQ(1u, run.exitCode);
    }

    void makeVolatile(std::wstring const& subkey) const {
        HKEY made = nullptr;
        RegCreateKeyExW(
            HKEY_CURRENT_USER, key.key(subkey).c_str(), 0, nullptr, REG_OPTION_VOLATILE,
            KEY_ALL_ACCESS, nullptr, &made, nullptr);
        RegCloseKey(made);
    }

    // A restore of this file never ends: below a key that does not outlive the session no lasting
    // one can be made. The value that it writes first says that it is at work.
    void contentWithoutEnd() const {
        makeVolatile(L"passing");
        content(header() + "\"begun\"=dword:00000001\r\r\n" + header("\\passing\\lasting"));
    }

    test::ScratchKey const key;
    test::ScratchFolder const folder;
    std::wstring const name;
    std::wstring const file = folder.file(L"a.reg");
};

// A change below a key, from the object's making on.
class ChangeOf {
  public:
    explicit ChangeOf(test::ScratchKey const& key) : m_event(CreateEventW(nullptr, 1, 0, nullptr)) {
        RegOpenKeyExW(key.hive(), key.path().c_str(), 0, KEY_NOTIFY, &m_key);
        RegNotifyChangeKeyValue(m_key, TRUE, REG_NOTIFY_CHANGE_LAST_SET, m_event.get(), TRUE);
    }
    ChangeOf(ChangeOf const&) = delete;
    ChangeOf& operator=(ChangeOf const&) = delete;
    ~ChangeOf() { RegCloseKey(m_key); }

    bool wait() const { return WaitForSingleObject(m_event.get(), 20000) == WAIT_OBJECT_0; }

  private:
    test::OwnedHandle m_event;
    HKEY m_key = nullptr;
};

// The process that another one has started; null if there is none.
test::OwnedHandle childOf(std::uint32_t parent) {
    constexpr DWORD access = SYNCHRONIZE | PROCESS_TERMINATE;
    test::OwnedHandle const snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL found = Process32FirstW(snapshot.get(), &entry); found;
         found = Process32NextW(snapshot.get(), &entry))
        if (entry.th32ParentProcessID == parent)
            return test::OwnedHandle(OpenProcess(access, FALSE, entry.th32ProcessID));
    return nullptr;
}

// Whether a process ends; if it does not, it is ended, since it would never do so by itself.
bool ends(test::OwnedHandle const& process) {
    bool const hasEnded = WaitForSingleObject(process.get(), 20000) == WAIT_OBJECT_0;
    if (!hasEnded)
        TerminateProcess(process.get(), 99);
    return hasEnded;
}

// A key below the machine's hive that goes with the object.
class MachineKey {
  public:
    MachineKey() = default;
    MachineKey(MachineKey const&) = delete;
    MachineKey& operator=(MachineKey const&) = delete;
    ~MachineKey() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str()); }

    std::wstring const path = L"Software\\vrUtilsTests-" + std::to_wstring(GetCurrentProcessId());
};

} // namespace

TEST_F(VrtoolRegistry, DumpsATreeAndSaysHowMuch) {
    key.setText(L"a", L"text");
    key.setNumber(L"b", 0xBEEF, L"Sub");
    key.set(L"c", REG_BINARY, {10, 255}, L"Sub");

    auto const run = dump(file);

    EXPECT_EQ("Wrote 2 keys with 3 values to " + test::utf8(file) + ".\n", run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ(
        opening + header() + "\"a\"=\"text\"\r\r\n\r\r\n\r\r\n" + header("\\Sub") +
            "\"b\"=dword:0000beef\r\r\n\"c\"=hex:0a,ff\r\r\n\r\r\n\r\r\n",
        folder.read(L"a.reg"));
}

TEST_F(VrtoolRegistry, CountsOneAsOne) {
    key.setText(L"a", L"text");

    EXPECT_EQ("Wrote 1 key with 1 value to " + test::utf8(file) + ".\n", dump(file).out);
}

TEST_F(VrtoolRegistry, SaysThatADumpWillNotComeBackWhole) {
    key.set(L"a", REG_EXPAND_SZ, {65, 0, 0, 0});
    key.set(L"b", REG_BINARY, {10});

    auto const run = dump(file);

    EXPECT_EQ(
        "Wrote 1 key with 2 values to " + test::utf8(file) +
            ".\nA restore will not bring everything back: 2 losses, told by `vrtool registry "
            "restore --check`.\n",
        run.out);
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolRegistry, DumpsByRelativeNamesIntoTheCurrentFolder) {
    test::WorkingFolder const inside(folder.path());

    auto const run = dump(L"bare.reg");

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_TRUE(folder.exists(L"bare.reg"));
}

TEST_F(VrtoolRegistry, SaysThatThereIsNoKeyToDump) {
    auto const missing = name + L"\\gone";

    auto const run = test::runTool({L"registry", L"dump", missing, file});

    expectFailure(run, inFile("\\gone") + " cannot be dumped: it, or a key in it, does not open");
    EXPECT_FALSE(folder.exists(L"a.reg"));
}

TEST_F(VrtoolRegistry, SaysThatTheFileCannotBeWritten) {
    test::OwnedHandle const held(
        CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, CREATE_NEW, 0, nullptr));

    for (auto const& [path, number] :
         {std::pair(file, "32"), std::pair(folder.path(), "5"),
          std::pair(folder.file(L"gone\\a.reg"), "3"), std::pair(folder.file(L"a?.reg"), "123")}) {
        auto const run = dump(path);
        EXPECT_THAT(run.error, StartsWith("vrtool: cannot write " + test::utf8(path) + ": "));
        EXPECT_THAT(run.error, HasSubstr(std::string("(error ") + number + ")\n"));
        EXPECT_EQ("", run.out);
        EXPECT_EQ(1u, run.exitCode);
    }
}

TEST_F(VrtoolRegistry, SaysThatNoFileStandsThereInTheEnd) {
    auto const path = folder.file(std::wstring(256, L'n'));

    auto const run = dump(path);

    EXPECT_THAT(run.error, StartsWith("vrtool: cannot write " + test::utf8(path)));
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolRegistry, RestoresWhatItHasDumped) {
    key.setText(L"a", L"text \u00fc");
    key.setNumber(L"b", 7, L"Sub");
    key.set(L"c", REG_BINARY, {10, 255}, L"Sub\\Deep");
    dump(file);
    RegDeleteTreeW(key.hive(), key.path().c_str());

    auto const run = restore();

    EXPECT_EQ("Restored " + inFile() + " from " + test::utf8(file) + ".\n", run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ(L"text \u00fc", key.getText(L"a"));
    EXPECT_EQ(7u, key.getNumber(L"b", L"Sub"));
    EXPECT_EQ((test::RegistryValue{REG_BINARY, {10, 255}}), key.get(L"c", L"Sub\\Deep"));
}

TEST_F(VrtoolRegistry, RestoresByRelativeNamesFromTheCurrentFolder) {
    content(header() + "\"a\"=\"b\"\r\r\n");
    test::WorkingFolder const inside(folder.path());

    auto const run =
        test::runTool({L"registry", L"restore", name, L"a.reg", L"--time-limit", L"20"});

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_EQ(L"b", key.getText(L"a"));
}

TEST_F(VrtoolRegistry, TakesTheMachinesTreesBothWays) {
    MachineKey const machine;
    std::wstring const value(L"b");
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, machine.path.c_str(), L"a", REG_SZ, value.c_str(), 4);

    auto const dumped = test::runTool({L"registry", L"dump", L"HKLM\\" + machine.path, file});
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, machine.path.c_str());
    auto const restored = test::runTool({L"registry", L"restore", L"HKLM\\" + machine.path, file});

    EXPECT_THAT(
        folder.read(L"a.reg"),
        HasSubstr("[HKEY_LOCALMACHINE\\" + test::utf8(machine.path) + "\\]\r\r\n"));
    EXPECT_EQ(0u, dumped.exitCode + restored.exitCode) << dumped.error << restored.error;
    EXPECT_THAT(restored.out, HasSubstr("Restored HKEY_LOCAL_MACHINE\\"));
    wchar_t read[2]{};
    DWORD size = sizeof read;
    RegGetValueW(
        HKEY_LOCAL_MACHINE, machine.path.c_str(), L"a", RRF_RT_REG_SZ, nullptr, read, &size);
    EXPECT_EQ(value, read);
}

TEST_F(VrtoolRegistry, TellsWhatIsLostAndRestoresTheRest) {
    content(header() + "\"a\"=\"hexagon\"\r\r\n\"b\"=\"kept\"\r\r\n");

    auto const run = restore();

    EXPECT_EQ(
        "LINE  WHAT           WILL NOT COME BACK AS IT WAS\n"
        "   2  \"a\"=\"hexagon\"  a text that holds \"hex\": not restored\n"
        "Restored " +
            inFile() + " from " + test::utf8(file) + ".\n",
        run.out);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ(L"kept", key.getText(L"b"));
    EXPECT_EQ(std::nullopt, key.get(L"a"));
}

TEST_F(VrtoolRegistry, ChecksWithoutRestoring) {
    content(header() + "\"a\"=\"hexagon\"\r\r\n\"b\"=\"kept\"\r\r\n");

    auto const run = restore({L"--check"});

    EXPECT_EQ(
        "LINE  WHAT           WILL NOT COME BACK AS IT WAS\n"
        "   2  \"a\"=\"hexagon\"  a text that holds \"hex\": not restored\n",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_EQ(std::nullopt, key.get(L"b"));
}

TEST_F(VrtoolRegistry, SaysThatAFileComesBackWhole) {
    content(header() + "\"b\"=\"kept\"\r\r\n");

    auto const run = restore({L"--check"});

    EXPECT_EQ("Everything in the file will come back as it was.\n", run.out);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ(std::nullopt, key.get(L"b"));
}

TEST_F(VrtoolRegistry, ChecksWithoutMakingTheKey) {
    content(header("\\Sub\\"));

    test::runTool({L"registry", L"restore", L"--check", name + L"\\Sub", file});

    EXPECT_FALSE(key.exists(L"Sub"));
}

TEST_F(VrtoolRegistry, SaysThatThereIsNoFile) {
    for (auto const& run : {restore(), restore({L"--check"}), restore({L"--time-limit", L"9"})}) {
        expectFailure(run, "Unable to open file " + test::utf8(file));
        EXPECT_EQ("", run.out);
    }
}

TEST_F(VrtoolRegistry, SaysThatNothingWasRestored) {
    auto const error = "nothing was restored: " + test::utf8(file) + " holds no value";

    content("");
    expectFailure(restore(), error);
    content(header());
    expectFailure(restore(), error);
}

TEST_F(VrtoolRegistry, MakesNoKeyForAFileWithoutHeaders) {
    content("");

    test::runTool({L"registry", L"restore", name + L"\\Sub", file});

    EXPECT_FALSE(key.exists(L"Sub"));
}

TEST_F(VrtoolRegistry, SaysThatALineEndedTheRestore) {
    content(header() + "\"a\"=\"kept\"\r\r\n\"b\"=\r\r\n\"c\"=\"lost\"\r\r\n");

    auto const run = restore();

    expectFailure(
        run, "a line of " + test::utf8(file) + " ended the restore; what is before it is restored");
    EXPECT_THAT(run.out, HasSubstr("nothing behind the equals sign: the restore ends here"));
    EXPECT_EQ(L"kept", key.getText(L"a"));
    EXPECT_EQ(std::nullopt, key.get(L"c"));
}

TEST_F(VrtoolRegistry, SaysThatTheLastValueWasNotWritten) {
    content(header() + "\"a\"=hex(7):\r\r\n");

    auto const run = restore();

    EXPECT_THAT(run.error, StartsWith("vrtool: the last value was not written: "));
    EXPECT_THAT(run.error, HasSubstr("(error 13)\n"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolRegistry, SaysThatTheKeyCannotBeMade) {
    makeVolatile(L"passing");
    content(header() + "\"a\"=\"b\"\r\r\n");

    auto const run = test::runTool({L"registry", L"restore", name + L"\\passing\\lasting", file});

    expectFailure(run, inFile("\\passing\\lasting") + " can be neither opened nor made");
}

TEST_F(VrtoolRegistry, RestoresWithinATimeAndTellsEverythingOnce) {
    content(header() + "\"a\"=\"hexagon\"\r\r\n\"b\"=\"kept\"\r\r\n");

    auto const limited = restore({L"--time-limit", L"20"});

    EXPECT_EQ(restore().out, limited.out);
    EXPECT_EQ("", limited.error);
    EXPECT_EQ(0u, limited.exitCode);
    EXPECT_EQ(L"kept", key.getText(L"b"));
}

TEST_F(VrtoolRegistry, PassesOnHowARestoreWithinATimeFailed) {
    content(header() + "\"a\"=\r\r\n");

    auto const run = restore({L"--time-limit", L"20"});

    expectFailure(
        run, "a line of " + test::utf8(file) + " ended the restore; what is before it is restored");
}

TEST_F(VrtoolRegistry, EndsARestoreThatNeverEndsAtItsLimit) {
    contentWithoutEnd();
    ChangeOf const change(key);
    test::ChildProcess const tool(
        {L"registry", L"restore", name, file, L"--time-limit", L"2"},
        {test::besideTestProgram(L"vrtool.exe")});
    ASSERT_TRUE(change.wait());
    auto const child = childOf(tool.id());
    ASSERT_TRUE(child);

    EXPECT_EQ(1u, tool.exitCode());
    EXPECT_EQ(
        "vrtool: the restore did not end within 2 seconds and was stopped; what was restored by "
        "then stays\n",
        tool.output());
    EXPECT_TRUE(ends(child));
    EXPECT_EQ(1u, key.getNumber(L"begun"));
}

TEST_F(VrtoolRegistry, TakesTheRestoreAlongWhenItIsEndedItself) {
    contentWithoutEnd();
    ChangeOf const change(key);
    test::ChildProcess tool(
        {L"registry", L"restore", name, file, L"--time-limit", L"86400"},
        {test::besideTestProgram(L"vrtool.exe")});
    ASSERT_TRUE(change.wait());
    auto const child = childOf(tool.id());
    ASSERT_TRUE(child);

    tool.kill();

    EXPECT_TRUE(ends(child));
}

TEST_F(VrtoolRegistry, WaitsWithoutALimitForAKeyThatIsRefused) {
    contentWithoutEnd();
    ChangeOf const change(key);
    test::ChildProcess tool(
        {L"registry", L"restore", name, file}, {test::besideTestProgram(L"vrtool.exe")});
    ASSERT_TRUE(change.wait());

    EXPECT_FALSE(tool.wait(std::chrono::milliseconds(500)));
    EXPECT_EQ(nullptr, childOf(tool.id()));
}
