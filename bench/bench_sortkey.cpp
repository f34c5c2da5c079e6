// Sorting a million Hangul words by their sort index keys against sorting them by ICU's collation
// keys for Korean, in the same run: making the keys alone, and making the keys and sorting by
// them. Before any timing both orders of the words must agree. After the runs a table gives our
// CPU time divided by ICU's, and the goal line of the keys.
#include <unistd.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <benchmark/benchmark.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "codetables/code_tables.h"
#include "platform/win32.h"

#include "bench_random.h"
#include "bench_tables.h"
#include "ratio_reporter.h"

namespace {

void UseTablesOfTheBuild() {
    const std::string root = RegisterTablesOfTheBuild();
    if (LoadUnicodeTbl() != kZelTableReady) Fail("no main code tables in " + root + "/Code");
}

// Words of one to four modern syllables, each with its terminator, one after the other.
struct Words {
    std::u16string units;
    std::vector<uint32_t> starts;
};

Words GenerateWords(size_t count) {
    Random random(0x50A7);
    Words words;
    words.starts.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        words.starts.push_back(uint32_t(words.units.size()));
        const uint32_t length = 1 + random.Next(4);
        for (uint32_t j = 0; j < length; ++j) words.units.push_back(char16_t(0xAC00 + random.Next(11172)));
        words.units.push_back(0);
    }
    return words;
}

const char16_t* Word(const Words& words, size_t i) { return words.units.data() + words.starts[i]; }
size_t WordLength(const Words& words, size_t i) {
    const size_t end = i + 1 < words.starts.size() ? words.starts[i + 1] : words.units.size();
    return end - words.starts[i] - 1;
}

// Keys of all words, one after the other, with where each begins; and an order sorted by them.
template <typename Unit>
struct Keys {
    std::vector<Unit> units;
    std::vector<uint32_t> starts;
    std::vector<uint32_t> lengths;

    std::basic_string_view<Unit> Of(uint32_t i) const { return {units.data() + starts[i], lengths[i]}; }
    std::vector<uint32_t> Order() const {
        std::vector<uint32_t> order(starts.size());
        std::iota(order.begin(), order.end(), 0);
        std::sort(order.begin(), order.end(), [this](uint32_t a, uint32_t b) { return Of(a) < Of(b); });
        return order;
    }
};

void OurKeys(const Words& words, Keys<DWORD>& keys) {
    keys.units.resize(words.units.size());
    keys.starts.resize(words.starts.size());
    keys.lengths.resize(words.starts.size());
    for (size_t i = 0; i < words.starts.size(); ++i) {
        const uint32_t at = words.starts[i];
        keys.starts[i] = at;
        keys.lengths[i] = uint32_t(ZelUnicodeToSortIndex(0, Word(words, i), -1, keys.units.data() + at,
                                                         int(WordLength(words, i) + 1)));
    }
}

void IcuKeys(const UCollator* collator, const Words& words, Keys<uint8_t>& keys) {
    keys.units.clear();
    keys.starts.resize(words.starts.size());
    keys.lengths.resize(words.starts.size());
    uint8_t key[256];
    for (size_t i = 0; i < words.starts.size(); ++i) {
        const int32_t length = ucol_getSortKey(collator, Word(words, i), int32_t(WordLength(words, i)), key, sizeof key);
        if (length <= 0 || length > int32_t(sizeof key)) Fail("ICU gave no sort key");
        keys.starts[i] = uint32_t(keys.units.size());
        keys.lengths[i] = uint32_t(length - 1);  // without the terminating zero
        keys.units.insert(keys.units.end(), key, key + length - 1);
    }
}

// Both orders must give the same sequence of words; equal words may stand in either order.
void CheckOrdersAgree(const Words& words, const std::vector<uint32_t>& ours, const std::vector<uint32_t>& icu) {
    for (size_t i = 0; i < ours.size(); ++i) {
        if (std::u16string_view(Word(words, ours[i])) != std::u16string_view(Word(words, icu[i])))
            Fail("the two orders differ at word " + std::to_string(i));
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    UseTablesOfTheBuild();

    UErrorCode error = U_ZERO_ERROR;
    static UCollator* collator = ucol_open("ko", &error);
    if (U_FAILURE(error)) Fail("ICU has no collator for ko");

    static const Words words = GenerateWords(1000000);
    {
        Keys<DWORD> ours;
        Keys<uint8_t> icu;
        OurKeys(words, ours);
        IcuKeys(collator, words, icu);
        CheckOrdersAgree(words, ours.Order(), icu.Order());
    }

    const std::string keysOnly = "keys of 1M Hangul words";
    const std::string sorted = "sort 1M Hangul words";
    benchmark::RegisterBenchmark((keysOnly + "/ours").c_str(), [](benchmark::State& state) {
        Keys<DWORD> keys;
        for (auto _ : state) {
            OurKeys(words, keys);
            benchmark::DoNotOptimize(keys.units.data());
        }
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((keysOnly + "/ICU").c_str(), [](benchmark::State& state) {
        Keys<uint8_t> keys;
        for (auto _ : state) {
            IcuKeys(collator, words, keys);
            benchmark::DoNotOptimize(keys.units.data());
        }
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((sorted + "/ours").c_str(), [](benchmark::State& state) {
        Keys<DWORD> keys;
        for (auto _ : state) {
            OurKeys(words, keys);
            benchmark::DoNotOptimize(keys.Order().data());
        }
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((sorted + "/ICU").c_str(), [](benchmark::State& state) {
        Keys<uint8_t> keys;
        for (auto _ : state) {
            IcuKeys(collator, words, keys);
            benchmark::DoNotOptimize(keys.Order().data());
        }
    })->Unit(benchmark::kMillisecond);

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios({keysOnly, sorted}, {"ICU"}, 26);
    PrintGoalLine("Hangul sort keys of 1M Korean words / ICU Korean collator keys",
                  reporter.CpuRatio(keysOnly + "/ours", keysOnly + "/ICU"), 0.15);
    benchmark::Shutdown();
    ucol_close(collator);
    return 0;
}
