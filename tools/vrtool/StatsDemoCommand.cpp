#include "tools/vrtool/StatsDemoCommand.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/TransferStatistics.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Performance.h"
#include "vrUtils/counter.h"
#include "vrUtils/vrStatCollector.h"

#include <future>
#include <vector>

namespace {

constexpr char statsDemoExplanation[] =
    R"(Starts threads that count as transfers do: for each frame 65536 bytes read, as
many written, and the frame itself. Whichever thread is the last to end counts
under "LastOneOut". Then prints all statistics of the process as JSON, as any
program of the server gets them: not one addition is lost, and there is one
last thread. How long it took goes to the log, at level 7.

Ends with 0, 1 if the threads cannot be started, 2 if the arguments are wrong.

Example:
  vrtool stats-demo --threads 64 --frames 100000)";

constexpr unsigned mostThreads = 64;
constexpr unsigned mostFrames = 10000000;

// A statistic of the command's own.
constexpr int lastOneOut = 1;

constexpr auto runningTransfers = static_cast<vrUtils::CounterIDs>(0);

void transfer(unsigned frames) {
    constexpr unsigned bytesOfAFrame = 65536;

    auto& stats = vrStatCollector::Singleton();
    for (unsigned frame = 0; frame < frames; ++frame) {
        stats.AddStat(bytesReadStat, bytesOfAFrame);
        stats.AddStat(bytesWrittenStat, bytesOfAFrame);
        stats.AddStat(framesTransferredStat, 1u);
    }
    if (vrUtils::counter().Decrement(runningTransfers))
        stats.AddStat(lastOneOut, 1u);
}

void transferInThreads(unsigned threads, unsigned frames) {
    vrUtils::Performance::ElapsedTimeLogger const timing(L"vrtool");
    // All of them count as running from the start, or an early one could be alone, and the last.
    for (unsigned thread = 0; thread < threads; ++thread)
        vrUtils::counter().Increment(runningTransfers);

    std::vector<std::future<void>> transfers;
    for (unsigned thread = 0; thread < threads; ++thread)
        transfers.push_back(std::async(std::launch::async, transfer, frames));
    for (auto& each : transfers)
        each.get();
}

} // namespace

StatsDemoCommand::StatsDemoCommand()
    : Command(
          "stats-demo", "Let many threads count, print the statistics as JSON",
          statsDemoExplanation) {}

void StatsDemoCommand::declare(CLI::App& arguments) {
    arguments.add_option("--threads", m_threads, "How many, 1 to 64; 8 if not given")
        ->check(CLI::Range(1u, mostThreads).description(""))
        ->type_name("N");
    arguments.add_option("--frames", m_frames, "Frames of each thread; 100000 if not given")
        ->check(CLI::Range(1u, mostFrames).description(""))
        ->type_name("N");
}

int StatsDemoCommand::run(Console& console) const {
    auto& stats = vrStatCollector::Singleton();
    stats.SetStatName(lastOneOut, L"LastOneOut");
    transferInThreads(m_threads, m_frames);
    console.out(toUtf8(stats.asJson()));
    return ExitCode::success;
}
