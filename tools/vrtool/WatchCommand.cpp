#include "tools/vrtool/WatchCommand.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/OwnedHandle.h"
#include "tools/vrtool/ProcessId.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TimeLimits.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/ProcessWatchdog.h"

namespace {

constexpr char watchExplanation[] =
    R"(Watches over a process until it has ended. Once `vrtool terminate PID`, or any
program that signals the event "terminate_PID", asks for it, the process has
the grace period to end, and is killed then. Ctrl-C calls the watch off, also
in the grace period.

Ends with 0 when the process has ended, by itself or by the kill; 1 if it
cannot be watched or killed; 2 if the arguments are wrong; 4 after Ctrl-C.

Example:
  vrtool watch 4711 --grace 30)";

// Time for what is as good as done: the watch's own thread behind its kill, a process that was
// killed.
constexpr std::uint32_t momentMs = 1000;

enum class Event { ended, cancelled, watchIsOver };

Event waitFor(
    OwnedHandle const& process, CancelKey const& key,
    vrUtils::ProcessWatchdog::ProcessTerminator& watchdog) {
    HANDLE const events[] = {process.get(), key.event()};
    for (;;) {
        switch (WaitForMultipleObjects(2, events, FALSE, momentMs)) {
        case WAIT_OBJECT_0:
            return Event::ended;
        case WAIT_OBJECT_0 + 1:
            return Event::cancelled;
        default:
            // The watch makes one attempt, and says to nobody but the log that it failed.
            if (watchdog.join(0))
                return Event::watchIsOver;
        }
    }
}

} // namespace

WatchCommand::WatchCommand()
    : Command(
          "watch", "Kill a process once it is asked for, after a grace period", watchExplanation) {}

void WatchCommand::declare(CLI::App& arguments) {
    declareProcessId(arguments, m_processId);
    arguments.add_option("--grace", m_graceSeconds, "What the process has left when it is to end")
        ->required()
        ->check(CLI::Range(0u, secondsOfADay).description(""))
        ->type_name("SECONDS");
}

int WatchCommand::run(Console& console) const {
    auto const name = "process " + std::to_string(m_processId);
    auto const fail = [&](std::string const& what) {
        console.error("vrtool: " + name + what + '\n');
        return ExitCode::failure;
    };

    // As long as it is open, no other process can get the id and be killed in place of this one.
    OwnedHandle const process(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, m_processId));
    auto const error = GetLastError();
    if (!process)
        return fail(" cannot be watched: " + toUtf8(systemText(error)));

    CancelKey const key;
    vrUtils::ProcessWatchdog::ProcessTerminator watchdog(m_processId, m_graceSeconds);
    console.out("Watching " + name + ".\n");
    auto const event = waitFor(process, key, watchdog);
    if (event == Event::cancelled) {
        console.out("The watch over " + name + " is called off.\n");
        return ExitCode::cancelled;
    }
    if (event == Event::watchIsOver &&
        WaitForSingleObject(process.get(), momentMs) != WAIT_OBJECT_0)
        return fail(" could not be killed");

    bool const wasKilled = event == Event::watchIsOver || watchdog.join(momentMs);
    console.out(wasKilled ? "Killed " + name + ".\n" : "The " + name + " has ended by itself.\n");
    return ExitCode::success;
}
