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

void PrintRatio(const RatioReporter& reporter, const std::string& what, const std::string& ours,
                const std::string& theirs, double target) {
    const auto a = reporter.times.find(ours);
    const auto b = reporter.times.find(theirs);
    if (a == reporter.times.end() || b == reporter.times.end() || b->second <= 0) {
        std::printf("%s ratio: not measured\n", what.c_str());
        return;
    }
    const double ratio = a->second / b->second;
    std::printf("%s ratio: %.2f (%s %.2f ms / %s %.2f ms; target <= %.1f) %s\n", what.c_str(),
                ratio, ours.c_str(), a->second, theirs.c_str(), b->second, target,
                ratio <= target ? "ok" : "OVER TARGET");
}

} // namespace bench
