#include "tools/vrtool/TerminateCommand.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/OwnedHandle.h"
#include "tools/vrtool/ProcessId.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"

namespace {

constexpr char terminateExplanation[] =
    R"(Signals the event "terminate_PID". Whoever watches over the process, such as
`vrtool watch PID`, kills it then when its grace period is over. This program
kills nothing itself, and does not wait for the end.

Ends with 0, with 1 if nobody watches over the process, 2 if the arguments are
wrong.

Example:
  vrtool terminate 4711)";

// @return the platform's error; ERROR_SUCCESS if the event is signalled now
DWORD signal(std::wstring const& event) {
    OwnedHandle const opened(OpenEventW(EVENT_MODIFY_STATE, FALSE, event.c_str()));
    auto const openError = GetLastError();
    if (!opened)
        return openError;
    bool const isSet = SetEvent(opened.get()) != 0;
    auto const setError = GetLastError();
    return isSet ? ERROR_SUCCESS : setError;
}

} // namespace

TerminateCommand::TerminateCommand()
    : Command("terminate", "Ask for the end of a process that is watched", terminateExplanation) {}

void TerminateCommand::declare(CLI::App& arguments) { declareProcessId(arguments, m_processId); }

int TerminateCommand::run(Console& console) const {
    auto const id = std::to_string(m_processId);
    auto const error = signal(L"terminate_" + fromUtf8(id));
    if (error == ERROR_SUCCESS) {
        console.out("Asked for the end of process " + id + ".\n");
        return ExitCode::success;
    }

    auto const why =
        error == ERROR_FILE_NOT_FOUND
            ? "nobody watches over process " + id
            : "the event terminate_" + id + " cannot be signalled: " + toUtf8(systemText(error));
    console.error("vrtool: " + why + '\n');
    return ExitCode::failure;
}
