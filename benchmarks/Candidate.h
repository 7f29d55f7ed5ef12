#ifndef BENCHMARKS_CANDIDATE_H
#define BENCHMARKS_CANDIDATE_H

// How a program of this folder declares what it measures: rows of candidates, which do the same
// work. The tables are made from the names, "row/candidate"; ours is the candidate "ours".

#include <benchmark/benchmark.h>

#include <string>
#include <utility>

namespace benchmarks {

// Registers one candidate.
// @param work one run of the operation; what it returns counts as used
// @param threads how many do it at the same time
template <class Work>
void candidate(char const* row, char const* name, Work work, int threads = 1) {
    auto const measure = [work = std::move(work)](benchmark::State& state) {
        for (auto _ : state) {
            auto result = work();
            benchmark::DoNotOptimize(result);
            // What the work reads counts as changed, so that no run can lean on the one before.
            benchmark::ClobberMemory();
        }
    };
    // The clock of the processor's time is too coarse here to settle the number of runs.
    auto* const registered =
        benchmark::RegisterBenchmark((std::string(row) + '/' + name).c_str(), measure);
    registered->UseRealTime()->Threads(threads);
}

// Registers one candidate whose work uses up what it works on.
// @param prepare makes it anew ahead of each run, and is not measured
template <class Prepare, class Work>
void preparedCandidate(char const* row, char const* name, Prepare prepare, Work work) {
    auto const measure = [=](benchmark::State& state) {
        for (auto _ : state) {
            state.PauseTiming();
            prepare();
            state.ResumeTiming();
            auto result = work();
            benchmark::DoNotOptimize(result);
            benchmark::ClobberMemory();
        }
    };
    benchmark::RegisterBenchmark((std::string(row) + '/' + name).c_str(), measure)->UseRealTime();
}

// Declares the candidates of a program; each program defines it.
void registerCandidates();

} // namespace benchmarks

#endif
