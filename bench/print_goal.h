// One line a goal after a benchmark's own summary, which bench/run-all gathers:
// GOAL <tab> what was measured <tab> the measured figure <tab> the goal it must not pass.
#ifndef ZEL_BENCH_PRINT_GOAL_H
#define ZEL_BENCH_PRINT_GOAL_H

#include <cstdio>
#include <string>

inline void PrintGoal(const std::string& work, double measured, double goal) {
    std::printf("GOAL\t%s\t%.3f\t%.2f\n", work.c_str(), measured, goal);
}

#endif  // ZEL_BENCH_PRINT_GOAL_H
