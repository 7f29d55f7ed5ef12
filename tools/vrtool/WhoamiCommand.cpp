#include "tools/vrtool/WhoamiCommand.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Process.h"
#include "vrUtils/vrException.h"

#include <string>
#include <utility>

namespace Process = vrUtils::Process;

namespace {

constexpr char whoamiExplanation[] =
    R"(One row for each thing that a program of the server knows of itself: its
computer and user, where it is installed, and its memory, in bytes but for the
count of page faults. The figures of memory are those of this program. What
cannot be found out is shown as "-".

Ends with 0, with 1 if the memory cannot be asked for, 2 if the arguments are
wrong.

Example:
  vrtool whoami)";

Json::Value known(std::wstring const& text) {
    return text.empty() ? Json::Value() : Json::Value(toUtf8(text));
}

void addMemory(Facts& facts, Process::AboutProcessMem const* memory) {
    using Counter = std::pair<char const*, std::uint64_t Process::AboutProcessMem::*>;
    constexpr Counter counters[] = {
        {"pageFaultCount", &Process::AboutProcessMem::PageFaultCount},
        {"peakWorkingSetSize", &Process::AboutProcessMem::PeakWorkingSetSize},
        {"workingSetSize", &Process::AboutProcessMem::WorkingSetSize},
        {"quotaPeakPagedPoolUsage", &Process::AboutProcessMem::QuotaPeakPagedPoolUsage},
        {"quotaPagedPoolUsage", &Process::AboutProcessMem::QuotaPagedPoolUsage},
        {"quotaPeakNonPagedPoolUsage", &Process::AboutProcessMem::QuotaPeakNonPagedPoolUsage},
        {"quotaNonPagedPoolUsage", &Process::AboutProcessMem::QuotaNonPagedPoolUsage},
        {"pagefileUsage", &Process::AboutProcessMem::PagefileUsage},
        {"peakPagefileUsage", &Process::AboutProcessMem::PeakPagefileUsage},
    };
    for (auto const& [name, counter] : counters)
        facts.push_back(
            {name, memory ? Json::Value(Json::UInt64{memory->*counter}) : Json::Value()});
}

} // namespace

WhoamiCommand::WhoamiCommand()
    : Command("whoami", "Show the computer, the user, the folders, the memory", whoamiExplanation) {
}

void WhoamiCommand::declare(CLI::App& arguments) {
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int WhoamiCommand::run(Console& console) const {
    Facts facts{
        {"computer", known(Process::GetComputerNameW())},
        {"user", known(Process::GetCurrentUserName())},
        {"binaryFolder", known(Process::GetOstrelBinaryPath())},
        {"vorraneFolder", known(Process::GetVorranePath().str())},
        {"serverFolder", known(Process::GetOstrelServerPath().str())},
    };
    auto code = ExitCode::success;
    try {
        auto const memory = Process::GetCurrentProcessMemoryInfo();
        addMemory(facts, &memory);
    } catch (vrException const& failure) {
        console.error("vrtool: the memory is not known: " + toUtf8(failure.message()) + '\n');
        addMemory(facts, nullptr);
        code = ExitCode::failure;
    }

    console.out(m_json ? jsonText(objectOf(facts)) : tableOf(facts, console.width()));
    return code;
}
