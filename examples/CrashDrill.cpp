// A drill: a process that is told to die at a named point dies there, as in a real crash, and its
// supervisor has to see it. Options are a command line of their own, split by the library.

#include <vrUtils/CmdLineProcessor.h>
#include <vrUtils/Crashing.h>
#include <vrUtils/Process.h>

#include <iostream>
#include <string>

#include <process.h>

namespace {

// Takes options such as: -crash "after copy" -crash cleanup
void primeCrashes(std::wstring const& options) {
    vrUtils::CmdLineProcessor::Processor line;
    line.Process(options);
    for (std::uint64_t at = 0; at + 1 < line.GetNumParameters(); ++at)
        if (line.GetParameter(at) == L"-crash")
            vrUtils::Crashing::primeCrash(line.GetParameter(at + 1));
}

int transfer() {
    primeCrashes(L"-crash \"after copy\"");
    std::wcout << L"copied\n" << std::flush;
    vrUtils::Crashing::crashIfRequired(L"before copy");
    vrUtils::Crashing::crashIfRequired(L"after copy");
    std::wcout << L"moved into place\n";
    return 0;
}

} // namespace

int main(int count, char**) {
    using vrUtils::CmdLineProcessor::BadCommandLineException;
    try {
        if (count > 1)
            return transfer();
        primeCrashes(L"-crash \"after");
    } catch (BadCommandLineException const& failure) {
        std::wcout << L"refused: " << failure.message() << L'\n' << std::flush;
    }

    auto const program = vrUtils::Process::GetOstrelBinaryPath() + L"CrashDrill.exe";
    auto const result = _wspawnl(_P_WAIT, program.c_str(), L"CrashDrill", L"transfer", nullptr);
    std::wcout
        << (result == 1 ? L"the transfer died and is to be done again\n"
                        : L"the drill went wrong\n");
    return result == 1 ? 0 : 1;
}
