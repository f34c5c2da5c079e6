// The console reporter of the benchmarks, which also keeps each benchmark's best time (the median
// where only aggregates are reported), so that a program can print its ratios to the peers.
#ifndef ZEL_BENCH_RATIO_REPORTER_H
#define ZEL_BENCH_RATIO_REPORTER_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const bool iteration = run.run_type == Run::RT_Iteration;
            if (run.error_occurred || (!iteration && run.aggregate_name != "median")) continue;
            const double time = run.GetAdjustedRealTime();
            const auto [at, added] = times_.emplace(run.run_name.str(), time);
            if (!added && iteration) at->second = std::min(at->second, time);
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // The best time of a benchmark by its name, or 0 when it did not run.
    double Time(const std::string& name) const {
        auto found = times_.find(name);
        return found == times_.end() ? 0 : found->second;
    }

    // One row a conversion: the time of "<conversion>/ours" over that of "<conversion>/<peer>".
    void PrintRatios(const std::vector<std::string>& conversions, const std::vector<const char*>& peers,
                     int labelWidth) const {
        std::printf("\nOur time / peer's time (below 1: ours is faster)\n%-*s", labelWidth, "");
        for (const char* peer : peers) std::printf(" %10s", peer);
        std::printf("\n");
        for (const std::string& conversion : conversions) {
            const double ours = Time(conversion + "/ours");
            if (ours == 0) continue;
            std::printf("%-*s", labelWidth, conversion.c_str());
            for (const char* peer : peers) {
                const double theirs = Time(conversion + "/" + peer);
                if (theirs == 0) std::printf(" %10s", "-");
                else std::printf(" %10.3f", ours / theirs);
            }
            std::printf("\n");
        }
    }

private:
    std::map<std::string, double> times_;
};

#endif  // ZEL_BENCH_RATIO_REPORTER_H
