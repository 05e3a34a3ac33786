// The best processor time of each benchmark over its repetitions, and the ratio lines printed
// from those times after the run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

// Keeps the best processor time per iteration of each benchmark over its repetitions: on a
// shared machine wall time and the slower repetitions say more about the neighbours.
// It takes the place of the library's own console reporter, which is the only one that the
// --benchmark_color and --benchmark_format flags configure; so it prints plain text itself, as the
// ratio lines after it are.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override;

    // Benchmark name -> best processor time per iteration, in the benchmark's unit.
    std::map<std::string, double> times;
};

// Prints "<what> ratio: R (<ours> T ms / <theirs> T ms; target <= X) ok" (or OVER TARGET), or
// "not measured" when either side did not run (filtered out, or skipped with an error).
void PrintRatio(const RatioReporter& reporter, const std::string& what, const std::string& ours,
                const std::string& theirs, double target);

// Prints "<what> ratio: R (<ours> T ms / <theirs> T ms; target >= X) ok" (or UNDER TARGET), R
// being the speed of ours over that of theirs (their time over ours), or "not measured".
void PrintSpeedRatio(const RatioReporter& reporter, const std::string& what,
                     const std::string& ours, const std::string& theirs, double target);

} // namespace bench
