// Whole file-service calls through the interface as a host makes them, each against Boost.JSON
// parsing the same answer text alone, at two sizes.
#pragma once

#include "RatioReport.h"

namespace bench {

// Registers the benchmarks; call before benchmark::RunSpecifiedBenchmarks.
void RegisterFileServiceBenchmarks();
// Prints the scaling and overhead ratios of every method measured.
void PrintFileServiceRatios(const RatioReporter& reporter);

} // namespace bench
