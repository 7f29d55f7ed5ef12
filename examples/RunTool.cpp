// Other programs under a time limit. Arguments are quoted as they are added, the result tells how
// it ended, and a callback keeps the host alive meanwhile. A program is never killed: after a
// time-out or a cancel it runs on by itself.

#include <vrUtils/Process.h>

#include <iostream>
#include <string>

namespace Process = vrUtils::Process;

namespace {

constexpr std::uint32_t limitSeconds = 15;

class ImpatientUser : public Process::ExternalProcessCallback {
  public:
    void OnPoll() override {}

    bool ShouldCancel() override { return true; }
};

std::wstring nameOf(std::int32_t result) {
    switch (result) {
    case 0:
        return L"done";
    case Process::ExternalProcessFailed:
        return L"failed, and the log tells how";
    case Process::ExternalProcessTimedOut:
        return L"runs on past its limit";
    case Process::ExternalProcessCancelled:
        return L"called off, and runs on to its own end";
    default:
        return L"unknown";
    }
}

std::int32_t run(Process::ExternalProcess& tool, std::wstring const& exitCode) {
    tool.args() << L"cmd.exe" << L"/c" << L"exit" << exitCode;
    auto const result = tool.Execute();
    std::wcout << tool.commandLine() << L": " << nameOf(result) << L'\n';
    return result;
}

} // namespace

int main() {
    Process::ExternalProcess good(L"good tool", limitSeconds, L"RunTool");
    Process::ExternalProcess bad(L"bad tool", limitSeconds, L"RunTool");
    ImpatientUser user;
    Process::ExternalProcess cancelled(L"slow tool", limitSeconds, L"RunTool", &user, 1);

    std::wcout << L"as an argument: "
               << Process::ExternalProcess::quoteArg(L"C:\\My Media\\clip.mxf") << L'\n';
    auto const isAsExpected = run(good, L"0") == 0 &&
                              run(bad, L"3") == Process::ExternalProcessFailed &&
                              run(cancelled, L"0") == Process::ExternalProcessCancelled;
    return isAsExpected ? 0 : 1;
}
