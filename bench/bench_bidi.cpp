// Bidi and Arabic shaping against FriBidi and ICU, on lines of 16 to 4096 units of mixed Arabic,
// Latin and digits, the same on every run. After the runs a table gives our time divided by each
// peer's for every length (below 1: ours is faster), and our time per unit, which stays flat when
// the cost grows linearly with the length.
#include <zel/bidi.h>

#include <benchmark/benchmark.h>
#include <fribidi.h>
#include <unicode/ubidi.h>
#include <unicode/ushape.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "ratio_reporter.h"

namespace {

const int kLengths[] = {16, 64, 256, 1024, 4096};

// Words of Arabic letters, Latin letters and digits, with blanks and a little punctuation.
std::u16string MixedLine(size_t length) {
    uint64_t state = 0xB1D1ull;
    auto next = [&state](uint32_t bound) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<uint32_t>((state >> 33) % bound);
    };
    std::u16string line;
    while (line.size() < length) {
        const uint32_t kind = next(10), size = 2 + next(6);
        for (uint32_t i = 0; i < size; ++i) {
            if (kind < 5) line += static_cast<char16_t>(0x0628 + next(0x0641 - 0x0628));  // Arabic letters
            else if (kind < 8) line += static_cast<char16_t>(u'a' + next(26));
            else line += static_cast<char16_t>(u'0' + next(10));
        }
        line += next(8) == 0 ? u", " : u" ";
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

// Bidi and shaping against both peers at each line length, and ours in ns per unit.
void PrintRatios(const RatioReporter& reporter) {
    printf("\nOur time / peer's time (below 1: ours is faster); ours in ns per unit\n");
    printf("%8s %14s %14s %14s %14s %12s %12s\n", "length", "bidi/FriBidi", "bidi/ICU", "shape/FriBidi",
           "shape/ICU", "bidi ns/u", "shape ns/u");
    for (int length : kLengths) {
        const std::string n = "/" + std::to_string(length);
        const double bidi = reporter.Time("BidiString" + n), shape = reporter.Time("ShapeString" + n);
        const double fribidi = reporter.Time("fribidi_log2vis" + n), icu = reporter.Time("ICU ubidi" + n),
                     icuShape = reporter.Time("ICU u_shapeArabic+ubidi" + n);
        printf("%8d %14.3f %14.3f %14.3f %14.3f %12.2f %12.2f\n", length, bidi / fribidi, bidi / icu,
               shape / fribidi, shape / icuShape, bidi / length, shape / length);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    static std::map<int, std::u16string> lines;
    for (int length : kLengths) {
        const std::u16string& line = lines[length] = MixedLine(static_cast<size_t>(length));
        const std::string n = "/" + std::to_string(length);
        benchmark::RegisterBenchmark(("BidiString" + n).c_str(), OursBidi, line);
        benchmark::RegisterBenchmark(("ShapeString" + n).c_str(), OursShape, line);
        benchmark::RegisterBenchmark(("fribidi_log2vis" + n).c_str(), FriBidiLog2Vis, line);
        benchmark::RegisterBenchmark(("ICU ubidi" + n).c_str(), IcuBidi, line, false);
        benchmark::RegisterBenchmark(("ICU u_shapeArabic+ubidi" + n).c_str(), IcuBidi, line, true);
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintRatios(reporter);
    benchmark::Shutdown();
    return 0;
}
