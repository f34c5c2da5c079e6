// The UTF converters against the C library's iconv and ICU, on a few megabytes of generated text,
// the same on every run: Korean and Japanese sentences with ASCII words among them; Korean
// sentences with ASCII words; English only. Before any timing the three must give the same output;
// after the runs a table gives our time divided by each peer's time, for each conversion (below 1:
// ours is faster), and a second one our goals against ICU beside those ratios.
#include <zel/strings.h>

#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bench_random.h"
#include "ratio_reporter.h"

namespace {

// ---------------------------------------------------------------------------------------------
// The text

void AsciiWord(Random& random, std::u32string& text) {
    const uint32_t length = 2 + random.Next(8);
    for (uint32_t i = 0; i < length; ++i) text += char32_t('a' + random.Next(26));
}

void KoreanWord(Random& random, std::u32string& text) {
    const uint32_t length = 1 + random.Next(4);
    for (uint32_t i = 0; i < length; ++i) text += char32_t(0xAC00 + random.Next(11172));
}

void JapaneseWord(Random& random, std::u32string& text) {
    // Kanji with hiragana endings, or a katakana word.
    if (random.Next(4) == 0) {
        const uint32_t length = 2 + random.Next(5);
        for (uint32_t i = 0; i < length; ++i) text += char32_t(0x30A1 + random.Next(0x52));
        return;
    }
    const uint32_t kanji = 1 + random.Next(3), kana = random.Next(4);
    for (uint32_t i = 0; i < kanji; ++i) text += char32_t(0x4E00 + random.Next(0x5000));
    for (uint32_t i = 0; i < kana; ++i) text += char32_t(0x3041 + random.Next(0x52));
}

// Sentences: 45 in 100 Korean, 35 Japanese, 20 English; an ASCII word now and then in the others.
std::u32string GenerateText(size_t characters) {
    Random random(0x5A17C0DEull);
    std::u32string text;
    text.reserve(characters + 256);
    while (text.size() < characters) {
        const uint32_t language = random.Next(100);
        const uint32_t words = 3 + random.Next(10);
        for (uint32_t w = 0; w < words; ++w) {
            if (language >= 80 || random.Next(8) == 0) {
                AsciiWord(random, text);
            } else if (language < 45) {
                KoreanWord(random, text);
            } else {
                JapaneseWord(random, text);
            }
            if (language < 45 || language >= 80 || w + 1 == words) text += U' ';
        }
        text += language >= 45 && language < 80 ? U"\u3002" : U".";
        text += random.Next(4) == 0 ? U'\n' : U' ';
    }
    return text;
}

// Sentences of 3 to `most` words, each written by word(random, text) and followed by a space, the
// last by a full stop; a line ends now and then.
template <typename Word>
std::u32string GenerateSentences(uint64_t seed, size_t characters, uint32_t most, Word word) {
    Random random(seed);
    std::u32string text;
    text.reserve(characters + 256);
    while (text.size() < characters) {
        const uint32_t words = 3 + random.Next(most - 2);
        for (uint32_t w = 0; w < words; ++w) {
            word(random, text);
            text += w + 1 == words ? U"." : U" ";
        }
        text += random.Next(4) == 0 ? U'\n' : U' ';
    }
    return text;
}

// Korean: Hangul words, an ASCII word or a number now and then.
std::u32string GenerateKorean(size_t characters) {
    return GenerateSentences(0x4B0C0DEull, characters, 12, [](Random& random, std::u32string& text) {
        const uint32_t kind = random.Next(10);
        if (kind == 0) {
            AsciiWord(random, text);
        } else if (kind == 1) {
            for (uint32_t digits = 1 + random.Next(4); digits > 0; --digits) text += char32_t('0' + random.Next(10));
        } else {
            KoreanWord(random, text);
        }
    });
}

// English: ASCII only, a comma now and then.
std::u32string GenerateAscii(size_t characters) {
    return GenerateSentences(0xA5C11ull, characters, 14, [](Random& random, std::u32string& text) {
        AsciiWord(random, text);
        if (random.Next(8) == 0) text += U',';
    });
}

struct Corpus {
    std::vector<ZelUTF8> utf8;
    std::vector<ZelUTF16> utf16;
    std::vector<ZelUTF32> utf32;
};

Corpus Encode(const std::u32string& text) {
    Corpus c;
    c.utf32.assign(text.begin(), text.end());
    c.utf16.resize(c.utf32.size() * 2);
    c.utf8.resize(c.utf32.size() * 4);
    const ZelUTF32* src = c.utf32.data();
    ZelUTF16* tgt16 = c.utf16.data();
    ZelConvertUTF32toUTF16(&src, src + c.utf32.size(), &tgt16, tgt16 + c.utf16.size(), ZelConvStrict);
    c.utf16.resize(size_t(tgt16 - c.utf16.data()));
    src = c.utf32.data();
    ZelUTF8* tgt8 = c.utf8.data();
    ZelConvertUTF32toUTF8(&src, src + c.utf32.size(), &tgt8, tgt8 + c.utf8.size(), ZelConvStrict);
    c.utf8.resize(size_t(tgt8 - c.utf8.data()));
    return c;
}

// ---------------------------------------------------------------------------------------------
// The contenders. Each converts a whole text into a buffer large enough and gives the number of
// units written, or SIZE_MAX on failure.

template <typename From, typename To>
using Contender = std::function<size_t(const From*, size_t, To*, size_t)>;

template <typename From, typename To>
Contender<From, To> Ours(ZelConvResult (*convert)(const From**, const From*, To**, To*, DWORD)) {
    return [convert](const From* in, size_t count, To* out, size_t room) {
        const From* src = in;
        To* tgt = out;
        if (convert(&src, in + count, &tgt, out + room, ZelConvStrict) != ZelConvOk) return SIZE_MAX;
        return size_t(tgt - out);
    };
}

// The descriptor is opened once, before any timing, and lives as long as the program.
template <typename From, typename To>
Contender<From, To> Iconv(const char* to, const char* from) {
    const iconv_t cd = iconv_open(to, from);
    if (cd == iconv_t(-1)) {
        std::fprintf(stderr, "iconv cannot convert from %s to %s\n", from, to);
        std::exit(1);
    }
    return [cd](const From* in, size_t count, To* out, size_t room) {
        char* inBytes = const_cast<char*>(reinterpret_cast<const char*>(in));
        size_t inLeft = count * sizeof(From);
        char* outBytes = reinterpret_cast<char*>(out);
        size_t outLeft = room * sizeof(To);
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        if (iconv(cd, &inBytes, &inLeft, &outBytes, &outLeft) == size_t(-1)) return SIZE_MAX;
        return size_t(outBytes - reinterpret_cast<char*>(out)) / sizeof(To);
    };
}

size_t IcuFromUtf8(const ZelUTF8* in, size_t count, ZelUTF16* out, size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8(out, int32_t(room), &length, reinterpret_cast<const char*>(in), int32_t(count), &error);
    return U_FAILURE(error) ? SIZE_MAX : size_t(length);
}

size_t IcuToUtf8(const ZelUTF16* in, size_t count, ZelUTF8* out, size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8(reinterpret_cast<char*>(out), int32_t(room), &length, in, int32_t(count), &error);
    return U_FAILURE(error) ? SIZE_MAX : size_t(length);
}

size_t IcuToUtf32(const ZelUTF16* in, size_t count, ZelUTF32* out, size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF32(reinterpret_cast<UChar32*>(out), int32_t(room), &length, in, int32_t(count), &error);
    return U_FAILURE(error) ? SIZE_MAX : size_t(length);
}

// ---------------------------------------------------------------------------------------------
// Registration, the agreement check, and the table of ratios

const char* const kPeers[] = {"ours", "iconv", "ICU"};

template <typename From, typename To>
void Register(const std::string& conversion, const std::vector<From>& in, size_t room,
              const Contender<From, To> (&contenders)[3]) {
    std::vector<To> expected;
    for (int i = 0; i < 3; ++i) {
        std::vector<To> out(room);
        const size_t count = contenders[i](in.data(), in.size(), out.data(), room);
        if (count == SIZE_MAX) {
            std::fprintf(stderr, "%s: %s failed\n", conversion.c_str(), kPeers[i]);
            std::exit(1);
        }
        out.resize(count);
        if (i == 0) {
            expected = out;
        } else if (out != expected) {
            std::fprintf(stderr, "%s: %s and %s disagree\n", conversion.c_str(), kPeers[0], kPeers[i]);
            std::exit(1);
        }
    }
    std::printf("%s: %zu bytes in, %zu bytes out; all three agree\n", conversion.c_str(), in.size() * sizeof(From),
                expected.size() * sizeof(To));

    for (int i = 0; i < 3; ++i) {
        const Contender<From, To> convert = contenders[i];
        benchmark::RegisterBenchmark(
            (conversion + "/" + kPeers[i]).c_str(), [&in, room, convert](benchmark::State& state) {
                std::vector<To> out(room);
                for (auto _ : state) {
                    size_t count = convert(in.data(), in.size(), out.data(), room);
                    benchmark::DoNotOptimize(count);
                    benchmark::ClobberMemory();
                }
                state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(in.size() * sizeof(From)));
            });
    }
}

// Our goals against ICU: a CPU-time ratio at or below the goal meets it. The work names the
// goal in the line that bench/run-all gathers.
struct Goal {
    const char* conversion;
    const char* work;
    double ratio;
};

void PrintGoals(const RatioReporter& reporter, const std::vector<Goal>& goals, int labelWidth) {
    std::printf("\nGoals against ICU (CPU time)\n%-*s %10s %10s\n", labelWidth, "", "ratio", "goal");
    for (const Goal& goal : goals) {
        const double ratio =
            reporter.CpuRatio(std::string(goal.conversion) + "/ours", std::string(goal.conversion) + "/ICU");
        if (ratio == 0) continue;
        std::printf("%-*s %10.3f %10.2f  %s\n", labelWidth, goal.conversion, ratio, goal.ratio,
                    ratio <= goal.ratio ? "met" : "NOT MET");
    }
    for (const Goal& goal : goals)
        PrintGoalLine(goal.work,
                      reporter.CpuRatio(std::string(goal.conversion) + "/ours", std::string(goal.conversion) + "/ICU"),
                      goal.ratio);
}

}  // namespace

int main(int argc, char** argv) {
    // Three repetitions unless the command line says otherwise: the ratios take each contender's
    // best, since on a busy machine a run that lost the processor for a while says nothing of the code.
    std::vector<char*> args(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=3";
    args.insert(args.begin() + 1, repetitions);
    argc = int(args.size());
    argv = args.data();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    const bool little = std::endian::native == std::endian::little;
    const char* utf16 = little ? "UTF-16LE" : "UTF-16BE";
    const char* utf32 = little ? "UTF-32LE" : "UTF-32BE";
    static const Corpus mixed = Encode(GenerateText(2000000));
    static const Corpus korean = Encode(GenerateKorean(1000000));
    static const Corpus ascii = Encode(GenerateAscii(2000000));
    const std::vector<std::string> conversions = {"UTF-8 to UTF-16",         "UTF-16 to UTF-8",
                                                  "UTF-16 to UTF-32",        "UTF-8 to UTF-16, Korean",
                                                  "UTF-16 to UTF-8, Korean", "UTF-8 to UTF-16, ASCII"};

    const Contender<ZelUTF8, ZelUTF16> from8[3] = {Ours(&ZelConvertUTF8toUTF16),
                                                   Iconv<ZelUTF8, ZelUTF16>(utf16, "UTF-8"), &IcuFromUtf8};
    const Contender<ZelUTF16, ZelUTF8> to8[3] = {Ours(&ZelConvertUTF16toUTF8), Iconv<ZelUTF16, ZelUTF8>("UTF-8", utf16),
                                                 &IcuToUtf8};
    const Contender<ZelUTF16, ZelUTF32> to32[3] = {Ours(&ZelConvertUTF16toUTF32),
                                                   Iconv<ZelUTF16, ZelUTF32>(utf32, utf16), &IcuToUtf32};
    Register(conversions[0], mixed.utf8, mixed.utf8.size(), from8);
    Register(conversions[1], mixed.utf16, mixed.utf16.size() * 3, to8);
    Register(conversions[2], mixed.utf16, mixed.utf16.size(), to32);
    Register(conversions[3], korean.utf8, korean.utf8.size(), from8);
    Register(conversions[4], korean.utf16, korean.utf16.size() * 3, to8);
    Register(conversions[5], ascii.utf8, ascii.utf8.size(), from8);

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios(conversions, {"iconv", "ICU"}, 24);
    PrintGoals(reporter,
               {{"UTF-8 to UTF-16, Korean", "UTF-8 -> UTF-16, Korean mixed with ASCII / ICU", 0.3},
                {"UTF-16 to UTF-8, Korean", "UTF-16 -> UTF-8, Korean mixed with ASCII / ICU", 0.3},
                {"UTF-8 to UTF-16, ASCII", "UTF-8 -> UTF-16, ASCII only / ICU", 0.2}},
               24);
    benchmark::Shutdown();
    return 0;
}
