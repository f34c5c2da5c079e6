// The console reporter of the benchmarks, which also keeps each benchmark's best real and CPU time
// (the median where only aggregates are reported), so that a program can print its ratios to the
// peers. On a machine shared with builds the CPU time is the steadier of the two. PrintGoalLine
// writes a goal in the one form that bench/run-all gathers from every benchmark.
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
            Keep(times_, run.run_name.str(), run.GetAdjustedRealTime(), iteration);
            Keep(cpu_, run.run_name.str(), run.GetAdjustedCPUTime(), iteration);
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // The best time of a benchmark by its name, or 0 when it did not run.
    double Time(const std::string& name) const { return Find(times_, name); }
    // The same in CPU time.
    double Cpu(const std::string& name) const { return Find(cpu_, name); }

    // One row a conversion: the CPU time of "<conversion>/ours" over that of "<conversion>/<peer>".
    void PrintRatios(const std::vector<std::string>& conversions, const std::vector<const char*>& peers,
                     int labelWidth) const {
        std::printf("\nOur CPU time / peer's CPU time (below 1: ours is faster)\n%-*s", labelWidth, "");
        for (const char* peer : peers) std::printf(" %10s", peer);
        std::printf("\n");
        for (const std::string& conversion : conversions) {
            const double ours = Cpu(conversion + "/ours");
            if (ours == 0) continue;
            std::printf("%-*s", labelWidth, conversion.c_str());
            for (const char* peer : peers) {
                const double theirs = Cpu(conversion + "/" + peer);
                if (theirs == 0) std::printf(" %10s", "-");
                else std::printf(" %10.3f", ours / theirs);
            }
            std::printf("\n");
        }
    }

    // The CPU time of ours over that of peer, or 0 when either did not run.
    double CpuRatio(const std::string& ours, const std::string& peer) const {
        const double a = Cpu(ours), b = Cpu(peer);
        return a == 0 || b == 0 ? 0 : a / b;
    }

private:
    using Times = std::map<std::string, double>;
    static void Keep(Times& times, const std::string& name, double time, bool iteration) {
        const auto [at, added] = times.emplace(name, time);
        if (!added && iteration) at->second = std::min(at->second, time);
    }
    static double Find(const Times& times, const std::string& name) {
        auto found = times.find(name);
        return found == times.end() ? 0 : found->second;
    }

    Times times_;
    Times cpu_;
};

// One goal for bench/run-all, after a benchmark's own summary: "GOAL", the work, the ratio (three
// decimals) and the goal it must stay at or below (two), separated by tabs. A ratio of 0 (a side
// that did not run) prints nothing.
inline void PrintGoalLine(const std::string& work, double ratio, double goal) {
    if (ratio > 0) std::printf("GOAL\t%s\t%.3f\t%.2f\n", work.c_str(), ratio, goal);
}

// The same for a measure of our own side alone, where 0 is a result (nothing lost, nothing added):
// printed whenever its work ran.
inline void PrintGoalValue(const std::string& work, double value, double goal, bool ran) {
    if (ran) std::printf("GOAL\t%s\t%.3f\t%.2f\n", work.c_str(), value, goal);
}

#endif  // ZEL_BENCH_RATIO_REPORTER_H
