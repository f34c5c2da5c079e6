// What the fuzz targets share: a check that stops the run, so that the fuzzer keeps the input, and
// output buffers guarded by a canary.
#ifndef ZEL_FUZZ_FUZZ_CHECK_H
#define ZEL_FUZZ_FUZZ_CHECK_H

#include <cstddef>
#include <cstdlib>
#include <vector>

inline void Check(bool condition) {
    if (!condition) std::abort();
}

// An output buffer of size units with a canary behind it. Verify checks a conversion's count and
// terminator against the size and that nothing was written past it.
template <typename Unit>
struct Output {
    static constexpr size_t kCanary = 16;
    explicit Output(int size) : units(size_t(size) + kCanary, Unit(0x5A)), size(size) {}
    void Verify(int count) const {
        Check(count >= 0 && count <= (size > 0 ? size - 1 : 0));
        if (size > 0) Check(units[size_t(count)] == 0);
        for (size_t i = size_t(size); i < units.size(); ++i) Check(units[i] == Unit(0x5A));
    }
    Unit* data() { return units.data(); }
    std::vector<Unit> units;
    int size;
};

#endif  // ZEL_FUZZ_FUZZ_CHECK_H
