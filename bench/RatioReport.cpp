#include "RatioReport.h"

#include <cstdio>

namespace bench {

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
            const std::string name = run.run_name.function_name;
            const double time = run.GetAdjustedCPUTime();
            const auto known = times.find(name);
            if (known == times.end() || time < known->second) {
                times[name] = time;
            }
        }
    }
    ConsoleReporter::ReportRuns(runs);
}

namespace {

// `speed`: the ratio is theirs over ours and must reach the target; otherwise ours over theirs
// and must stay below it.
void Print(const RatioReporter& reporter, const std::string& what, const std::string& ours,
           const std::string& theirs, double target, bool speed) {
    const auto a = reporter.times.find(ours);
    const auto b = reporter.times.find(theirs);
    if (a == reporter.times.end() || b == reporter.times.end() || a->second <= 0 ||
        b->second <= 0) {
        std::printf("%s ratio: not measured\n", what.c_str());
        return;
    }
    const double ratio = speed ? b->second / a->second : a->second / b->second;
    const bool met = speed ? ratio >= target : ratio <= target;
    std::printf("%s ratio: %.2f (%s %.2f ms / %s %.2f ms; target %s %.*f) %s\n", what.c_str(),
                ratio, ours.c_str(), a->second, theirs.c_str(), b->second,
                speed ? ">=" : "<=", speed ? 2 : 1, target,
                met ? "ok" : (speed ? "UNDER TARGET" : "OVER TARGET"));
}

} // namespace

void PrintRatio(const RatioReporter& reporter, const std::string& what, const std::string& ours,
                const std::string& theirs, double target) {
    Print(reporter, what, ours, theirs, target, false);
}

void PrintSpeedRatio(const RatioReporter& reporter, const std::string& what,
                     const std::string& ours, const std::string& theirs, double target) {
    Print(reporter, what, ours, theirs, target, true);
}

} // namespace bench
