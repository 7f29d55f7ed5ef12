// A trivial program started, and waited for until it has ended.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/Process.h"

#include <cstdlib>
#include <string>

#include <boost/process/child.hpp>

#ifdef PEER_POCO
#include <Poco/Process.h>
#endif

namespace {

// Beside this program.
std::wstring const program = vrUtils::Process::GetOstrelBinaryPath() + L"Nothing.exe";

std::int32_t ours() {
    vrUtils::Process::ExternalProcess process(L"nothing", 60, {});
    process.addArg(program);
    return process.Execute();
}

DWORD raw() {
    STARTUPINFOW start{};
    PROCESS_INFORMATION process{};
    auto line = program;
    CreateProcessW(
        nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_UNICODE_ENVIRONMENT, nullptr, nullptr,
        &start, &process);
    WaitForSingleObject(process.hProcess, 60000);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

int boostChild() {
    boost::process::child child(program);
    child.wait();
    return child.exit_code();
}

int bySystem() { return _wsystem(program.c_str()); }

#ifdef PEER_POCO
int poco() {
    static std::string const narrow(program.begin(), program.end());
    return Poco::Process::launch(narrow, {}).wait();
}
#endif

} // namespace

void benchmarks::registerCandidates() {
    candidate("process-start", "ours", ours);
    candidate("process-start", "limit", raw);
    candidate("process-start", "boost", boostChild);
    candidate("process-start", "system", bySystem);
#ifdef PEER_POCO
    candidate("process-start", "poco", poco);
#endif
}
