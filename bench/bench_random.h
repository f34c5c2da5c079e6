// A small, fixed random sequence for the benchmarks' sample text, the same in every run.
#ifndef ZEL_BENCH_BENCH_RANDOM_H
#define ZEL_BENCH_BENCH_RANDOM_H

#include <cstdint>

class Random {
public:
    explicit Random(uint64_t seed) : state_(seed) {}
    uint32_t Next(uint32_t bound) {
        state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
        return uint32_t((state_ >> 33) % bound);
    }

private:
    uint64_t state_;
};

#endif  // ZEL_BENCH_BENCH_RANDOM_H
