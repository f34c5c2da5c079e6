// The ratio reporter that keeps each benchmark's CPU time as well, best or median as it keeps the
// real time: on a machine shared with builds the CPU time is the steadier of the two.
#ifndef ZEL_BENCH_CPU_TIMES_H
#define ZEL_BENCH_CPU_TIMES_H

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "ratio_reporter.h"

class CpuTimesReporter : public RatioReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const bool iteration = run.run_type == Run::RT_Iteration;
            if (run.error_occurred || (!iteration && run.aggregate_name != "median")) continue;
            const double time = run.GetAdjustedCPUTime();
            const auto [at, added] = cpu_.emplace(run.run_name.str(), time);
            if (!added && iteration) at->second = std::min(at->second, time);
        }
        RatioReporter::ReportRuns(runs);
    }

    // In the benchmark's own unit; 0 when it did not run.
    double Cpu(const std::string& name) const {
        auto found = cpu_.find(name);
        return found == cpu_.end() ? 0 : found->second;
    }

private:
    std::map<std::string, double> cpu_;
};

#endif  // ZEL_BENCH_CPU_TIMES_H
