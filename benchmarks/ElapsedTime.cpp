// A scope timed for the log, whose level leaves such lines out unless they are asked for.

#include "benchmarks/Candidate.h"

#include "VorraneLog/VorraneLog.h"
#include "foundation/Platform.h"
#include "vrUtils/Performance.h"

#include <chrono>
#include <string>

namespace {

std::wstring const module = L"Transcoder";

int ours() {
    vrUtils::Performance::ElapsedTimeLogger const timing(module);
    return 0;
}

LONGLONG twoReads() {
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceCounter(&start);
    QueryPerformanceCounter(&end);
    return end.QuadPart - start.QuadPart;
}

int readsAndLine() {
    auto const milliseconds = static_cast<unsigned>(twoReads() / 10000);
    VL_WriteLog(7, module.c_str(), L"Elapsed time : %u", milliseconds);
    return 0;
}

std::chrono::nanoseconds steadyClock() {
    auto const start = std::chrono::steady_clock::now();
    return std::chrono::steady_clock::now() - start;
}

} // namespace

void benchmarks::registerCandidates() {
    candidate("elapsed-time", "ours", ours);
    candidate("elapsed-time", "reads", twoReads);
    candidate("elapsed-time", "reads-and-line", readsAndLine);
    candidate("elapsed-time", "steady_clock", steadyClock);
}
