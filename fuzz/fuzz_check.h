// What the fuzz targets share: a check that stops the run, so that the fuzzer keeps the input.
#ifndef ZEL_FUZZ_FUZZ_CHECK_H
#define ZEL_FUZZ_FUZZ_CHECK_H

#include <cstdlib>

inline void Check(bool condition) {
    if (!condition) std::abort();
}

#endif  // ZEL_FUZZ_FUZZ_CHECK_H
