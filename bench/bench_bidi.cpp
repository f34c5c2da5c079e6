// Bidi and Arabic shaping against FriBidi and ICU, on lines of mixed Arabic, Latin and digits, the
// same on every run. After the runs a table gives our CPU time divided by each peer's at every
// length from 16 to 4096 units (below 1: ours is faster), then the goals at 1024 units with the
// ratio beside each and a mark where it is met, then our cost per unit from 16 units to a million,
// which stays flat when the cost grows linearly with the length and a short line pays no fixed
// price; last one line per goal for bench/run-all.
#include <zel/bidi.h>

#include <benchmark/benchmark.h>
#include <fribidi.h>
#include <unicode/ubidi.h>
#include <unicode/ushape.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench_random.h"
#include "ratio_reporter.h"

namespace {

// Lengths at which ours and the peers run, and those at which ours alone runs.
const int kPeerLengths[] = {16, 64, 256, 1024, 4096};
const int kLongLengths[] = {65536, 1048576};
constexpr int kGoalLength = 1024;

// Words of Arabic letters, Latin letters and digits, with blanks and a little punctuation.
std::u16string MixedLine(size_t length) {
    Random random(0xB1D1ull);
    std::u16string line;
    while (line.size() < length) {
        const uint32_t kind = random.Next(10), size = 2 + random.Next(6);
        for (uint32_t i = 0; i < size; ++i) {
            if (kind < 5) line += static_cast<char16_t>(0x0628 + random.Next(0x0641 - 0x0628));  // Arabic letters
            else if (kind < 8) line += static_cast<char16_t>(u'a' + random.Next(26));
            else line += static_cast<char16_t>(u'0' + random.Next(10));
        }
        line += random.Next(8) == 0 ? u", " : u" ";
    }
    line.resize(length);
    return line;
}

std::vector<FriBidiChar> Wide32(const std::u16string& text) { return {text.begin(), text.end()}; }

void OursBidi(benchmark::State& state, const std::u16string& line) {
    std::u16string text = line;
    std::vector<WORD> levels(line.size());
    for (auto _ : state) {
        text = line;
        BidiString(text.data(), static_cast<DWORD>(text.size()), nullptr, levels.data(), 1, 1);
        benchmark::DoNotOptimize(text.data());
    }
}

void OursShape(benchmark::State& state, const std::u16string& line) {
    std::vector<WCHAR> out(line.size() + 1);
    for (auto _ : state) {
        ShapeString(out.data(), line.data(), static_cast<DWORD>(line.size()), nullptr, nullptr, 1, 1);
        benchmark::DoNotOptimize(out.data());
    }
}

// A caller that wants both the display order and the presentation forms of each line.
void OursBoth(benchmark::State& state, const std::u16string& line) {
    std::u16string text = line;
    std::vector<WORD> levels(line.size());
    std::vector<WCHAR> out(line.size() + 1);
    for (auto _ : state) {
        text = line;
        BidiString(text.data(), static_cast<DWORD>(text.size()), nullptr, levels.data(), 1, 1);
        ShapeString(out.data(), line.data(), static_cast<DWORD>(line.size()), nullptr, nullptr, 1, 1);
        benchmark::DoNotOptimize(text.data());
        benchmark::DoNotOptimize(out.data());
    }
}

void FriBidiLog2Vis(benchmark::State& state, const std::u16string& line) {
    std::vector<FriBidiChar> in = Wide32(line), out(in.size() + 1);
    std::vector<FriBidiLevel> levels(in.size());
    for (auto _ : state) {
        FriBidiParType base = FRIBIDI_PAR_RTL;
        fribidi_log2vis(in.data(), static_cast<FriBidiStrIndex>(in.size()), &base, out.data(), nullptr, nullptr,
                        levels.data());
        benchmark::DoNotOptimize(out.data());
    }
}

void IcuBidi(benchmark::State& state, const std::u16string& line, bool shape) {
    UErrorCode error = U_ZERO_ERROR;
    UBiDi* bidi = ubidi_openSized(static_cast<int32_t>(line.size()), 0, &error);
    std::vector<UChar> shaped(line.size() + 1), out(line.size() * 2 + 1);
    for (auto _ : state) {
        error = U_ZERO_ERROR;
        const UChar* source = line.data();
        if (shape) {
            u_shapeArabic(line.data(), static_cast<int32_t>(line.size()), shaped.data(),
                          static_cast<int32_t>(shaped.size()), U_SHAPE_LETTERS_SHAPE | U_SHAPE_LENGTH_FIXED_SPACES_NEAR,
                          &error);
            source = shaped.data();
        }
        ubidi_setPara(bidi, source, static_cast<int32_t>(line.size()), UBIDI_RTL, nullptr, &error);
        ubidi_writeReordered(bidi, out.data(), static_cast<int32_t>(out.size()), UBIDI_DO_MIRRORING, &error);
        benchmark::DoNotOptimize(out.data());
    }
    ubidi_close(bidi);
}

std::string At(const char* name, int length) { return std::string(name) + "/" + std::to_string(length); }

// Bidi and shaping against both peers at each length.
void PrintRatios(const RatioReporter& reporter) {
    printf("\nOur CPU time / peer's CPU time (below 1: ours is faster)\n");
    printf("%8s %14s %14s %14s %14s %14s %14s\n", "length", "bidi/FriBidi", "bidi/ICU", "shape/FriBidi",
           "shape/ICU", "both/FriBidi", "both/ICU");
    for (int length : kPeerLengths) {
        const double bidi = reporter.Cpu(At("BidiString", length)), shape = reporter.Cpu(At("ShapeString", length)),
                     both = reporter.Cpu(At("BidiString+ShapeString", length));
        const double fribidi = reporter.Cpu(At("fribidi_log2vis", length)),
                     icu = reporter.Cpu(At("ICU ubidi", length)),
                     icuShape = reporter.Cpu(At("ICU u_shapeArabic+ubidi", length));
        printf("%8d %14.3f %14.3f %14.3f %14.3f %14.3f %14.3f\n", length, bidi / fribidi, bidi / icu,
               shape / fribidi, shape / icuShape, both / fribidi, both / icuShape);
    }
}

// The goals at lines of 1024 units, each with its ratio and a mark when it is met.
struct Goal {
    const char* what;
    const char* ours;
    const char* peer;
    double goal;
};
const Goal kGoals[] = {
    {"BidiString / ICU ubidi", "BidiString", "ICU ubidi", 0.25},
    {"ShapeString / ICU ubidi + u_shapeArabic", "ShapeString", "ICU u_shapeArabic+ubidi", 0.35},
    {"BidiString then ShapeString / ICU ubidi + u_shapeArabic", "BidiString+ShapeString", "ICU u_shapeArabic+ubidi",
     0.5},
    {"BidiString then ShapeString / FriBidi fribidi_log2vis", "BidiString+ShapeString", "fribidi_log2vis", 0.4},
};

double GoalRatio(const RatioReporter& reporter, const Goal& g) {
    return reporter.CpuRatio(At(g.ours, kGoalLength), At(g.peer, kGoalLength));
}

void PrintGoals(const RatioReporter& reporter) {
    printf("\nGoals at %d units: our CPU time / peer's CPU time\n", kGoalLength);
    printf("%-58s %8s %8s %s\n", "work", "ratio", "goal", "met");
    for (const Goal& g : kGoals) {
        const double ratio = GoalRatio(reporter, g);
        printf("%-58s %8.3f %8.2f %s\n", g.what, ratio, g.goal, ratio <= g.goal ? "yes" : "NO");
    }
}

// Our cost per unit at every length; the goal: a 16-unit line within twice the cost per unit of a
// line of a million units.
constexpr double kFlatGoal = 2.0;

double PerUnitRatio(const RatioReporter& reporter, const char* name) {
    const int longest = kLongLengths[std::size(kLongLengths) - 1];
    const double shortest = reporter.Cpu(At(name, 16)), longLine = reporter.Cpu(At(name, longest));
    return shortest == 0 || longLine == 0 ? 0 : (shortest / 16) / (longLine / longest);
}

void PrintPerUnit(const RatioReporter& reporter) {
    std::vector<int> lengths(std::begin(kPeerLengths), std::end(kPeerLengths));
    lengths.insert(lengths.end(), std::begin(kLongLengths), std::end(kLongLengths));
    const char* const names[] = {"BidiString", "ShapeString", "BidiString+ShapeString"};
    printf("\nOur CPU ns per unit\n%8s", "length");
    for (const char* name : names) printf(" %24s", name);
    printf("\n");
    for (int length : lengths) {
        printf("%8d", length);
        for (const char* name : names) printf(" %24.2f", reporter.Cpu(At(name, length)) / length);
        printf("\n");
    }
    printf("%-58s %8s %8s %s\n", "16 units / 1M units, per unit", "ratio", "goal", "met");
    for (const char* name : names) {
        const double ratio = PerUnitRatio(reporter, name);
        printf("%-58s %8.3f %8.2f %s\n", name, ratio, kFlatGoal, ratio <= kFlatGoal ? "yes" : "NO");
    }
}

// The goal lines that bench/run-all gathers, after the tables.
void PrintGoalLines(const RatioReporter& reporter) {
    for (const Goal& g : kGoals) PrintGoalLine(std::string(g.what) + ", 1024 units", GoalRatio(reporter, g), g.goal);
    for (const char* name : {"BidiString", "ShapeString", "BidiString+ShapeString"})
        PrintGoalLine(std::string(name) + " cost per unit, 16 units / 1M units", PerUnitRatio(reporter, name),
                      kFlatGoal);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    static std::map<int, std::u16string> lines;
    const auto ours = [](int length) -> const std::u16string& {
        const std::u16string& line = lines[length] = MixedLine(static_cast<size_t>(length));
        benchmark::RegisterBenchmark(At("BidiString", length).c_str(), OursBidi, line);
        benchmark::RegisterBenchmark(At("ShapeString", length).c_str(), OursShape, line);
        benchmark::RegisterBenchmark(At("BidiString+ShapeString", length).c_str(), OursBoth, line);
        return line;
    };
    for (int length : kPeerLengths) {
        const std::u16string& line = ours(length);
        benchmark::RegisterBenchmark(At("fribidi_log2vis", length).c_str(), FriBidiLog2Vis, line);
        benchmark::RegisterBenchmark(At("ICU ubidi", length).c_str(), IcuBidi, line, false);
        benchmark::RegisterBenchmark(At("ICU u_shapeArabic+ubidi", length).c_str(), IcuBidi, line, true);
    }
    for (int length : kLongLengths) ours(length);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintRatios(reporter);
    PrintGoals(reporter);
    PrintPerUnit(reporter);
    PrintGoalLines(reporter);
    benchmark::Shutdown();
    return 0;
}
