#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>
#include <vector>

namespace quoravel {

/// The usual table, and the medians kept: of processor time, so that it does not matter what else
/// the machine is doing.
class Medians : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& report) override {
        ConsoleReporter::ReportRuns(report);
        for (const Run& run : report)
            if (run.aggregate_name == "median")
                nanoseconds[run.run_name.function_name] =
                    run.GetAdjustedCPUTime() * 1e9 /
                    benchmark::GetTimeUnitMultiplier(run.time_unit);
    }

    std::map<std::string, double> nanoseconds;
};

/// Runs everything that is registered and gives the medians by name.
inline std::map<std::string, double> RunAll(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    return medians.nanoseconds;
}

} // namespace quoravel
