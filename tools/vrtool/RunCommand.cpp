#include "tools/vrtool/RunCommand.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ElapsedLine.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/OwnChildren.h"
#include "tools/vrtool/TimeLimits.h"
#include "tools/vrtool/Utf8.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>
#include <vector>

namespace Process = vrUtils::Process;

namespace {

constexpr char runExplanation[] =
    R"(Runs the program as the server runs its tools, and waits for it. On a terminal
a line shows for how long. The time counts in whole polls, and is up when it
exceeds the limit. A program that is late, or whose wait Ctrl-C has ended, is
not killed: it runs on, and its process id is told. With --env the program has
no other variables than those.

Ends with 0 if the program ended with 0; 1 if it ended otherwise or could not
be started; 2 if the arguments are wrong; 3 if the time was up; 4 after Ctrl-C.

Example:
  vrtool run --timeout 60 -- C:\Tools\check.exe --fast "C:\Media\Day 1.mxf")";

constexpr std::uint32_t longestPoll = 60000;

using Variable = std::pair<std::wstring, std::wstring>;

// A name may begin with an equals sign, as those do under which the platform keeps the folders of
// drives, but these are not for users to set.
Variable variableOf(std::wstring const& text) {
    auto const end = text.find(L'=');
    if (end == 0 || end == std::wstring::npos)
        throw CLI::ValidationError("--env", toUtf8(text) + " is not of the form NAME=VALUE");
    return {text.substr(0, end), text.substr(end + 1)};
}

// Stands between the library's wait and the user.
class Watcher : public Process::ExternalProcessCallback {
  public:
    explicit Watcher(Console& console) : m_line(console) {}

    void OnPoll() override {
        auto const elapsed = std::chrono::steady_clock::now() - m_start;
        m_line.show(std::chrono::duration_cast<std::chrono::seconds>(elapsed));
    }

    bool ShouldCancel() override { return m_key.wasPressed(); }

    // The console gives the key to the program too, which may end of it before this one has heard.
    bool isKeyComing() const { return m_key.comesWithin(std::chrono::milliseconds(200)); }

  private:
    std::chrono::steady_clock::time_point const m_start = std::chrono::steady_clock::now();
    CancelKey m_key;
    ElapsedLine m_line;
};

// What became of a program that nobody waits for any more.
std::string fateOf(std::set<std::uint32_t> const& childrenBefore) {
    auto const children = ownChildren();
    std::vector<std::uint32_t> left;
    std::set_difference(
        children.begin(), children.end(), childrenBefore.begin(), childrenBefore.end(),
        std::back_inserter(left));
    return left.empty() ? "and has ended meanwhile"
                        : "and runs on as process " + std::to_string(left.front());
}

} // namespace

RunCommand::RunCommand()
    : Command("run", "Run a program under a time limit and tell how it ended", runExplanation) {}

void RunCommand::declare(CLI::App& arguments) {
    arguments.add_option("--timeout", m_seconds, "Wait no longer than that")
        ->check(CLI::Range(1u, secondsOfADay).description(""))
        ->type_name("SECONDS");
    arguments.add_option("--poll", m_pollMilliseconds, "How often to look; 200 if not given")
        ->check(CLI::Range(1u, longestPoll).description(""))
        ->type_name("MILLISECONDS");
    m_variables = arguments.add_option("--env")->take_all()->type_name("NAME=VALUE");
    m_variables->description("A variable of the program; may be given several times");
    m_folder = arguments.add_option("--cwd")->type_name("FOLDER");
    m_folder->description("The folder that the program starts in");
    m_program.declare(arguments);
    arguments.final_callback([this] {
        for (auto const& variable : CommandLine::valuesOf(*m_variables))
            variableOf(variable);
    });
}

int RunCommand::run(Console& console) const {
    auto const program = m_program.program();
    auto const end = [&](int code, std::string const& what) {
        console.error("vrtool: " + toUtf8(program) + ' ' + what + '\n');
        return code;
    };

    auto const childrenBefore = ownChildren();
    std::int32_t result = 0;
    bool isCancelled = false;
    {
        Watcher watcher(console);
        Process::ExternalProcess process(
            program, m_seconds, L"vrtool", &watcher, m_pollMilliseconds);
        prepare(process);
        result = process.Execute();
        isCancelled = result == Process::ExternalProcessCancelled ||
                      (result == Process::ExternalProcessFailed && watcher.isKeyComing());
    }

    if (result == 0)
        return ExitCode::success;
    if (isCancelled)
        return end(ExitCode::cancelled, "was cancelled, " + fateOf(childrenBefore));
    if (result == Process::ExternalProcessTimedOut)
        return end(
            ExitCode::timedOut, "did not end within " + std::to_string(m_seconds) +
                                    (m_seconds == 1 ? " second, " : " seconds, ") +
                                    fateOf(childrenBefore));
    return end(
        ExitCode::failure, "failed: it could not be started, or ended with another code than 0");
}

void RunCommand::prepare(Process::ExternalProcess& process) const {
    m_program.handTo(process);
    for (auto const& text : CommandLine::valuesOf(*m_variables)) {
        auto const [name, value] = variableOf(text);
        process.SetEnv(name, value);
    }
    for (auto const& folder : CommandLine::valuesOf(*m_folder))
        process.SetWorkingDirectory(folder);
}
