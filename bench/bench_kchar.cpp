// KChar conversion on a few MB of Korean text: modern syllables and spaces, Hanja, symbols, and
// some old Hangul (single old Jamo and private-use Jamo sequences). KChar has no peer elsewhere,
// so this reports throughput alone: MB/s of UTF-16 input or output and ns per unit.
#include <benchmark/benchmark.h>
#include <unistd.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_random.h"
#include "codetables/code_tables.h"
#include "codetables/kchar_internal.h"
#include "platform/win32.h"
#include "bench_tables.h"
#include "ratio_reporter.h"

namespace {

constexpr DWORD kFlags = KConvSymbol | KConvHanja | KConvHangul | KConvOldHangul;
constexpr size_t kUnits = 1500000;  // 3 MB of UTF-16

void UseTablesOfTheBuild() {
    const std::string root = RegisterTablesOfTheBuild();
    if (LoadUnicodeTbl() != kZelTableReady) Fail("no KChar tables in " + root + "/Code");
}

// The characters of one kind that the tables map, to draw the text from.
std::vector<WCHAR> Mapped(unsigned first, unsigned last) {
    std::vector<WCHAR> found;
    for (unsigned u = first; u <= last; ++u)
        if (ZelUnicodeToKCharBase(WCHAR(u), kFlags) != kZelNoKChar) found.push_back(WCHAR(u));
    if (found.empty()) found.push_back(WCHAR(first));
    return found;
}

std::u16string GenerateText() {
    Random random(70);
    const std::vector<WCHAR> hanja = Mapped(0x4E00, 0x9FA5);
    const std::vector<WCHAR> symbols = Mapped(0x2000, 0x33FF);
    std::vector<WCHAR> oldJamo;
    for (int n = 0; n < kZelJohabJamoCount; ++n)
        if (JohabJamoTbl[n] >= 0x1113 && JohabJamoTbl[n] <= 0x11F9) oldJamo.push_back(JohabJamoTbl[n]);
    std::u16string text;
    text.reserve(kUnits + 4);
    while (text.size() < kUnits) {
        const uint32_t kind = random.Next(100);
        if (kind < 70) text += WCHAR(0xAC00 + random.Next(11172));
        else if (kind < 82) text += u' ';
        else if (kind < 92) text += hanja[random.Next(uint32_t(hanja.size()))];
        else if (kind < 96) text += symbols[random.Next(uint32_t(symbols.size()))];
        else if (kind < 98) text += oldJamo[random.Next(uint32_t(oldJamo.size()))];
        else {
            // A private-use sequence of initial, medial and final.
            text += WCHAR(0xF784 + 1 + random.Next(129));
            text += WCHAR(0xF806 + 1 + random.Next(99));
            text += WCHAR(0xF86A + random.Next(150));
        }
    }
    return text;
}

void SetRates(benchmark::State& state, size_t wideUnits) {
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(wideUnits * sizeof(WCHAR)));
    state.counters["ns/unit"] = benchmark::Counter(double(wideUnits), benchmark::Counter::kIsIterationInvariantRate |
                                                                         benchmark::Counter::kInvert);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    UseTablesOfTheBuild();

    static const std::u16string text = GenerateText();
    static std::vector<KChar> kchar(text.size() + 1);
    const int kcharCount =
        ZelUnicodeToKChar(kFlags, text.data(), int(text.size()), kchar.data(), int(kchar.size()), nullptr);
    static std::vector<WCHAR> wide(text.size() * 3 + 1);
    const int wideCount = ZelKCharToUnicode(kFlags, kchar.data(), kcharCount, wide.data(), int(wide.size()), nullptr);
    std::printf("Text: %zu UTF-16 units, %d KChar units, %d units back\n", text.size(), kcharCount, wideCount);

    benchmark::RegisterBenchmark("ZelUnicodeToKChar", [](benchmark::State& state) {
        std::vector<KChar> out(text.size() + 1);
        for (auto _ : state) {
            benchmark::DoNotOptimize(
                ZelUnicodeToKChar(kFlags, text.data(), int(text.size()), out.data(), int(out.size()), nullptr));
        }
        SetRates(state, text.size());
    });
    benchmark::RegisterBenchmark("ZelKCharToUnicode", [kcharCount](benchmark::State& state) {
        std::vector<WCHAR> out(size_t(kcharCount) * 3 + 1);
        int written = 0;
        for (auto _ : state) {
            written = ZelKCharToUnicode(kFlags, kchar.data(), kcharCount, out.data(), int(out.size()), nullptr);
            benchmark::DoNotOptimize(written);
        }
        SetRates(state, size_t(written));
    });

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n%-20s %10s %10s\n", "conversion", "MB/s", "ns/unit");
    const struct {
        const char* name;
        double units;
    } rows[] = {{"ZelUnicodeToKChar", double(text.size())}, {"ZelKCharToUnicode", double(wideCount)}};
    for (const auto& row : rows) {
        const double ns = reporter.Time(row.name);
        if (ns == 0) continue;
        std::printf("%-20s %10.1f %10.2f\n", row.name, row.units * 2 / ns * 1e3, ns / row.units);
    }
    benchmark::Shutdown();
    return 0;
}
