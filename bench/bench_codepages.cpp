// The table code pages 949, 932, 936 (with its four-byte sequences) and 950 against the C
// library's iconv and ICU's converters: a few megabytes of generated text in each language, to
// UTF-16 and back. The tables are the ones the build made beside the library (lib/Code); the text
// keeps only characters that all three convert alike, and before any timing the three outputs
// must agree. After the runs a table gives our time divided by each peer's time, and another our
// CPU time divided by the faster peer's beside the goal of that conversion, then the same once more
// as tab-separated GOAL lines for the gathered report of all benchmarks.
#include <unistd.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "codetables/code_tables.h"
#include "platform/win32.h"

#include "bench_random.h"
#include "bench_tables.h"
#include "ratio_reporter.h"

namespace {

// ---------------------------------------------------------------------------------------------
// The three converters of one code page

struct Peers {
    UINT codePage;
    iconv_t toUtf16;
    iconv_t fromUtf16;
    UConverter* icu;
};

Peers OpenPeers(UINT codePage, const char* iconvName, const char* icuName) {
    Peers peers{codePage, iconv_open("UTF-16LE", iconvName), iconv_open(iconvName, "UTF-16LE"), nullptr};
    if (peers.toUtf16 == iconv_t(-1) || peers.fromUtf16 == iconv_t(-1)) Fail(std::string("iconv lacks ") + iconvName);
    UErrorCode error = U_ZERO_ERROR;
    peers.icu = ucnv_open(icuName, &error);
    if (U_FAILURE(error)) Fail(std::string("ICU lacks ") + icuName);
    return peers;
}

// Each converts a whole text into a buffer large enough and gives the units written, or SIZE_MAX.
size_t OursToUtf16(const Peers& p, const char* in, size_t count, char16_t* out, size_t room) {
    return size_t(ZelAnsiToUnicode(0, p.codePage, in, int(count), out, int(std::min<size_t>(room, INT_MAX)), 0));
}

size_t OursFromUtf16(const Peers& p, const char16_t* in, size_t count, char* out, size_t room) {
    return size_t(ZelUnicodeToAnsi(0, p.codePage, in, int(count), out, int(std::min<size_t>(room, INT_MAX)), nullptr));
}

size_t IconvRun(iconv_t cd, const void* in, size_t inBytes, void* out, size_t outBytes) {
    char* src = const_cast<char*>(static_cast<const char*>(in));
    char* dst = static_cast<char*>(out);
    size_t outLeft = outBytes;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    if (iconv(cd, &src, &inBytes, &dst, &outLeft) == size_t(-1)) return SIZE_MAX;
    return outBytes - outLeft;
}

size_t IconvToUtf16(const Peers& p, const char* in, size_t count, char16_t* out, size_t room) {
    const size_t bytes = IconvRun(p.toUtf16, in, count, out, room * 2);
    return bytes == SIZE_MAX ? SIZE_MAX : bytes / 2;
}

size_t IconvFromUtf16(const Peers& p, const char16_t* in, size_t count, char* out, size_t room) {
    return IconvRun(p.fromUtf16, in, count * 2, out, room);
}

size_t IcuToUtf16(const Peers& p, const char* in, size_t count, char16_t* out, size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_reset(p.icu);
    const int32_t n = ucnv_toUChars(p.icu, out, int32_t(room), in, int32_t(count), &error);
    return U_FAILURE(error) ? SIZE_MAX : size_t(n);
}

size_t IcuFromUtf16(const Peers& p, const char16_t* in, size_t count, char* out, size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_reset(p.icu);
    const int32_t n = ucnv_fromUChars(p.icu, out, int32_t(room), in, int32_t(count), &error);
    return U_FAILURE(error) ? SIZE_MAX : size_t(n);
}

// ---------------------------------------------------------------------------------------------
// The text: only characters that all three encode to the same bytes and read back alike.

class CommonCharacters {
public:
    explicit CommonCharacters(const Peers& peers) : peers_(peers), known_(0x110000, -1) {}

    bool Keeps(char32_t c) {
        int8_t& known = known_[c];
        if (known < 0) known = Check(c);
        return known == 1;
    }

private:
    int8_t Check(char32_t c) const {
        std::u16string unit;
        if (c >= 0x10000) {
            unit = {char16_t(0xD800 + ((c - 0x10000) >> 10)), char16_t(0xDC00 + (c & 0x3FF))};
        } else {
            unit = {char16_t(c)};
        }
        char bytes[3][16];
        size_t counts[3] = {OursFromUtf16(peers_, unit.data(), unit.size(), bytes[0], 16),
                            IconvFromUtf16(peers_, unit.data(), unit.size(), bytes[1], 16),
                            IcuFromUtf16(peers_, unit.data(), unit.size(), bytes[2], 16)};
        for (size_t count : counts)
            if (count == SIZE_MAX || count != counts[0]) return 0;
        if (std::string(bytes[0], counts[0]) != std::string(bytes[1], counts[1]) ||
            std::string(bytes[0], counts[0]) != std::string(bytes[2], counts[2]))
            return 0;
        // '?' is what an unmapped character becomes.
        if (counts[0] == 1 && bytes[0][0] == '?' && c != U'?') return 0;
        char16_t back[3][8];
        size_t backCounts[3] = {OursToUtf16(peers_, bytes[0], counts[0], back[0], 8),
                                IconvToUtf16(peers_, bytes[0], counts[0], back[1], 8),
                                IcuToUtf16(peers_, bytes[0], counts[0], back[2], 8)};
        for (int i = 0; i < 3; ++i)
            if (backCounts[i] != unit.size() || std::u16string(back[i], backCounts[i]) != unit) return 0;
        return 1;
    }

    const Peers& peers_;
    std::vector<int8_t> known_;
};

struct Script {
    char32_t first;
    char32_t last;
    uint32_t weight;  // in 1000
};

// Words drawn from the scripts by weight, spaces between them in Korean and the Latin words,
// sentence ends of the language.
std::u16string GenerateText(const Peers& peers, const std::vector<Script>& scripts, bool spaces, char32_t stop,
                            size_t units) {
    CommonCharacters common(peers);
    Random random(0xC0DE9A6Eull);
    std::u16string text;
    text.reserve(units + 64);
    auto append = [&](char32_t c) {
        if (c >= 0x10000) {
            text += char16_t(0xD800 + ((c - 0x10000) >> 10));
            text += char16_t(0xDC00 + (c & 0x3FF));
        } else {
            text += char16_t(c);
        }
    };
    while (text.size() < units) {
        const uint32_t words = 3 + random.Next(10);
        for (uint32_t w = 0; w < words; ++w) {
            uint32_t pick = random.Next(1000);
            const Script* script = &scripts.back();
            for (const Script& s : scripts) {
                if (pick < s.weight) {
                    script = &s;
                    break;
                }
                pick -= s.weight;
            }
            const uint32_t length = 1 + random.Next(4);
            for (uint32_t i = 0; i < length;) {
                const char32_t c = script->first + random.Next(uint32_t(script->last - script->first + 1));
                if (!common.Keeps(c)) continue;
                append(c);
                ++i;
            }
            if (spaces || script->last < 0x80) text += u' ';
        }
        append(stop);
        text += random.Next(4) == 0 ? u'\n' : u' ';
    }
    return text;
}

// ---------------------------------------------------------------------------------------------
// Registration, the agreement check and the ratios

const char* const kPeerNames[] = {"ours", "iconv", "ICU"};

template <typename From, typename To>
using Convert = size_t (*)(const Peers&, const From*, size_t, To*, size_t);

template <typename From, typename To>
void Register(const std::string& name, const Peers& peers, const std::basic_string<From>& in, size_t room,
              const Convert<From, To> (&contenders)[3]) {
    std::basic_string<To> expected;
    for (int i = 0; i < 3; ++i) {
        std::vector<To> out(room);
        const size_t count = contenders[i](peers, in.data(), in.size(), out.data(), room);
        if (count == SIZE_MAX || count + 1 >= room) Fail(name + ": " + kPeerNames[i] + " failed");
        const std::basic_string<To> got(out.data(), count);
        if (i == 0) {
            expected = got;
        } else if (got != expected) {
            Fail(name + ": ours and " + kPeerNames[i] + " disagree");
        }
    }
    std::printf("%s: %zu bytes in, %zu bytes out; all three agree\n", name.c_str(), in.size() * sizeof(From),
                expected.size() * sizeof(To));
    for (int i = 0; i < 3; ++i) {
        const Convert<From, To> convert = contenders[i];
        benchmark::RegisterBenchmark((name + "/" + kPeerNames[i]).c_str(),
                                     [&peers, &in, room, convert](benchmark::State& state) {
                                         std::vector<To> out(room);
                                         for (auto _ : state) {
                                             size_t count = convert(peers, in.data(), in.size(), out.data(), room);
                                             benchmark::DoNotOptimize(count);
                                             benchmark::ClobberMemory();
                                         }
                                         state.SetBytesProcessed(int64_t(state.iterations()) *
                                                                 int64_t(in.size() * sizeof(From)));
                                     });
    }
}

void UseTablesOfTheBuild() {
    const std::string root = RegisterTablesOfTheBuild();
    for (UINT page : {949u, 932u, 936u, 950u})
        if (EnsureCodePageTbl(page) != kZelTableReady)
            Fail("no table for code page " + std::to_string(page) + " in " + root + "/Code");
}

struct Language {
    const char* name;
    UINT codePage;
    const char* iconvName;
    const char* icuName;
    std::vector<Script> scripts;
    bool spaces;
    char32_t stop;
};

// The share of four-byte sequences among the characters of a text of code page 936.
double FourByteShare(const std::string& bytes) {
    size_t characters = 0;
    size_t fourByte = 0;
    for (size_t at = 0; at < bytes.size(); ++characters) {
        const unsigned char b = static_cast<unsigned char>(bytes[at]);
        const unsigned char next = at + 1 < bytes.size() ? static_cast<unsigned char>(bytes[at + 1]) : 0;
        if (b < 0x81) {
            at += 1;
        } else if (next >= 0x30 && next <= 0x39) {
            at += 4;
            ++fourByte;
        } else {
            at += 2;
        }
    }
    return characters == 0 ? 0 : double(fourByte) / double(characters);
}

struct Goal {
    const char* conversion;
    const char* work;  // as the gathered report names it
    double ratio;      // our time over the faster peer's time, at most
};

constexpr Goal kGoals[] = {
    {"949 Korean to UTF-16", "code page decode 949", 0.40},
    {"949 Korean from UTF-16", "code page encode 949", 0.40},
    {"932 Japanese to UTF-16", "code page decode 932", 0.25},
    {"932 Japanese from UTF-16", "code page encode 932", 0.40},
    {"936 Chinese to UTF-16", "code page decode 936", 0.35},
    {"936 Chinese from UTF-16", "code page encode 936", 0.40},
    {"950 Chinese to UTF-16", "code page decode 950", 0.25},
    {"950 Chinese from UTF-16", "code page encode 950", 0.40},
    {"936 4-byte 10% to UTF-16", "code page 936 with 10 % four-byte sequences, decode", 0.50},
    {"936 4-byte 10% from UTF-16", "code page 936 with 10 % four-byte sequences, encode", 0.40},
};

// Our CPU time over the faster peer's, or 0 when one of them did not run. CPU time, because the
// machine is shared: another process's work does not count against either side.
double RatioToFasterPeer(const RatioReporter& reporter, const std::string& conversion) {
    const double ours = reporter.Cpu(conversion + "/ours");
    const double best = std::min(reporter.Cpu(conversion + "/iconv"), reporter.Cpu(conversion + "/ICU"));
    return ours == 0 || best == 0 ? 0 : ours / best;
}

// Each conversion's time over the faster of the two peers, beside its goal; then one line a goal
// for the gathered report: GOAL, the work, the ratio and the goal, separated by tabs.
void PrintGoals(const RatioReporter& reporter, const std::vector<std::string>& conversions, int labelWidth) {
    std::printf("\nOur time / the faster peer's time, and the goal (* met)\n");
    for (const std::string& conversion : conversions) {
        const double ratio = RatioToFasterPeer(reporter, conversion);
        if (ratio == 0) continue;
        std::printf("%-*s %8.3f", labelWidth, conversion.c_str(), ratio);
        for (const Goal& goal : kGoals)
            if (conversion == goal.conversion)
                std::printf("  <= %.2f %s", goal.ratio, ratio <= goal.ratio ? "*" : "");
        std::printf("\n");
    }
    std::printf("\n");
    for (const Goal& goal : kGoals) {
        const double ratio = RatioToFasterPeer(reporter, goal.conversion);
        if (ratio == 0) continue;
        std::printf("GOAL\t%s / best of iconv and ICU\t%.3f\t%.2f\n", goal.work, ratio, goal.ratio);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    UseTablesOfTheBuild();

    static const Language languages[] = {
        {"949 Korean", 949, "CP949", "windows-949", {{0xAC00, 0xD7A3, 850}, {0x4E00, 0x9FA5, 30}, {U'a', U'z', 120}},
         true, U'.'},
        {"932 Japanese", 932, "CP932", "windows-31j",
         {{0x4E00, 0x9FA5, 450}, {0x3041, 0x3093, 300}, {0x30A1, 0x30F6, 150}, {0xFF61, 0xFF9F, 30}, {U'a', U'z', 70}},
         false, 0x3002},
        {"936 Chinese", 936, "GB18030", "gb18030",
         {{0x4E00, 0x9FA5, 820}, {0x3400, 0x4DB5, 50}, {0x20000, 0x2A6D6, 30}, {0xAC00, 0xD7A3, 30}, {U'a', U'z', 70}},
         false, 0x3002},
        {"950 Chinese", 950, "CP950", "windows-950", {{0x4E00, 0x9FA5, 920}, {U'a', U'z', 80}}, false, 0x3002},
        // About one character in ten written in four bytes: Hangul, the first extension of the
        // ideographs and the ideographs beyond the basic plane.
        {"936 4-byte 10%", 936, "GB18030", "gb18030",
         {{0x4E00, 0x9FA5, 890}, {0x3400, 0x4DB5, 40}, {0xAC00, 0xD7A3, 40}, {0x20000, 0x2A6D6, 30}}, false, 0x3002},
    };

    static std::vector<Peers> peers;
    static std::vector<std::u16string> texts;
    static std::vector<std::string> encoded;
    peers.reserve(std::size(languages));
    texts.reserve(std::size(languages));
    encoded.reserve(std::size(languages));
    std::vector<std::string> conversions;
    for (const Language& language : languages) {
        peers.push_back(OpenPeers(language.codePage, language.iconvName, language.icuName));
        const Peers& p = peers.back();
        texts.push_back(GenerateText(p, language.scripts, language.spaces, language.stop, 1500000));
        const std::u16string& text = texts.back();
        std::string bytes(text.size() * 4 + 4, '\0');
        bytes.resize(OursFromUtf16(p, text.data(), text.size(), bytes.data(), bytes.size()));
        encoded.push_back(bytes);
        if (language.codePage == 936)
            std::printf("%s: %.1f %% of the characters in four bytes\n", language.name, 100 * FourByteShare(bytes));

        const std::string to = std::string(language.name) + " to UTF-16";
        const std::string from = std::string(language.name) + " from UTF-16";
        const Convert<char, char16_t> toUtf16[3] = {&OursToUtf16, &IconvToUtf16, &IcuToUtf16};
        const Convert<char16_t, char> fromUtf16[3] = {&OursFromUtf16, &IconvFromUtf16, &IcuFromUtf16};
        Register(to, p, encoded.back(), encoded.back().size() + 2, toUtf16);
        Register(from, p, text, text.size() * 4 + 4, fromUtf16);
        conversions.push_back(to);
        conversions.push_back(from);
    }

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios(conversions, {"iconv", "ICU"}, 28);
    PrintGoals(reporter, conversions, 28);
    benchmark::Shutdown();
    return 0;
}
