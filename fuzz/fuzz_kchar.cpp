// Random UTF-16 to KChar and back, and random KChar to UTF-16, with random flags, sizes and
// substitutes. The tables are the sample set beside the build when there is one, else tables with
// scrambled mappings written once into a temporary ${Common}, so that every class of the code
// space, the pair searches and the old Hangul sequences turn up. Behind every output buffer lies a
// canary: nothing may be written past the size, a substitute is cut at the end, the count is never
// above size - 1 and the text is terminated; the multi-code buffer always ends inside its 10 units.
#include <sys/stat.h>
#include <unistd.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_tables.h"
#include "codetables/sort_index.h"
#include "platform/win32.h"

#include "fuzz_check.h"

namespace {

constexpr int kMultiCodeUnits = 10;
const char* const kKinds[] = {"gen", "com", "pua", "cjk", "chs", "jpn", "cht", "kor", "u2k", "k2u", "aux"};

uint32_t Mix(uint32_t x) {
    x *= 2654435761u;
    x ^= x >> 15;
    x *= 2246822519u;
    return x ^ (x >> 13);
}

// A KChar of any class, with a share of "no mapping".
uint16_t ScrambledKChar(uint32_t seed) {
    const uint32_t h = Mix(seed);
    switch (h % 8) {
    case 0: return 0x3441;
    case 1: return uint16_t((h >> 8) % 0x80);
    case 2: return uint16_t(0x3800 + (h >> 8) % 0x800);
    case 3: return uint16_t(0x4000 + (h >> 8) % 0x4000);
    case 4: return uint16_t(0x3441);
    default: return uint16_t(0x8000 | (h >> 8));
    }
}

// A code point of the ranges that the conversions treat apart.
uint16_t ScrambledUnicode(uint32_t seed) {
    const uint32_t h = Mix(seed ^ 0x9E3779B9u);
    switch (h % 6) {
    case 0: return uint16_t(0x3400 + (h >> 8) % 0x6C00);
    case 1: return uint16_t(0xF900 + (h >> 8) % 0x200);
    case 2: return uint16_t(0xE000 + (h >> 8) % 0x1900);
    case 3: return uint16_t(0x1100 + (h >> 8) % 0x100);
    default: return uint16_t(h >> 8);
    }
}

char g_directory[] = "/tmp/zel-fuzz-kchar-XXXXXX";

void RemoveTables() {
    const std::string code = std::string(g_directory) + "/Code";
    for (const char* kind : kKinds) std::remove(zeltables::FileName(code, 320, kind).c_str());
    ::rmdir(code.c_str());
    ::rmdir(g_directory);
}

void Write(const std::string& code, const char* kind, const std::vector<uint16_t>& elements, size_t count) {
    Check(zeltables::WriteFile(zeltables::FileName(code, 320, kind), zeltables::Header{}, count,
                               zeltables::Payload16(elements)));
}

std::string WriteTables() {
    const char* directory = mkdtemp(g_directory);
    Check(directory != nullptr);
    std::atexit(RemoveTables);
    const std::string code = std::string(directory) + "/Code";
    Check(::mkdir(code.c_str(), 0755) == 0);
    const size_t sizes[] = {16384, 3328, 25600, 28416};
    uint32_t seed = 1;
    for (int k = 0; k < 4; ++k) {
        std::vector<uint16_t> elements(sizes[k]);
        for (size_t i = 0; i < elements.size(); ++i) {
            // The Jamo fields of a "pua" record are any small value; its KChar any code.
            const bool field = k == 2 && i % 4 != 0;
            elements[i] = field ? uint16_t(Mix(seed++) % 160) : ScrambledKChar(seed++);
            if (k == 3 && elements[i] != 0x3441) elements[i] = uint16_t(0x4000 + elements[i] % 0x6F00);
        }
        Write(code, kKinds[k], elements, k == 2 ? elements.size() / 4 : elements.size());
    }
    for (int k = 4; k < 11; ++k) {
        std::vector<uint16_t> pairs(400);
        for (size_t i = 0; i < pairs.size(); i += 2) {
            const bool kcharFirst = k == 9;
            const bool kcharSecond = k == 8 || k == 10;
            pairs[i] = kcharFirst ? ScrambledKChar(seed++) : ScrambledUnicode(seed++);
            pairs[i + 1] = kcharSecond ? ScrambledKChar(seed++) : ScrambledUnicode(seed++);
        }
        Write(code, kKinds[k], pairs, pairs.size());
    }
    return directory;
}

// The sample set beside the build (build/<preset>/lib/Code), if the generator made one.
std::string SampleSet() {
    char self[PATH_MAX] = {};
    const ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) return {};
    std::string dir(self, size_t(n));
    for (int up = 0; up < 2; ++up) dir = dir.substr(0, dir.rfind('/'));
    struct stat info;
    if (::stat((dir + "/lib/Code").c_str(), &info) != 0) return {};
    return dir + "/lib";
}

void UseTables() {
    std::string common = SampleSet();
    ZelUnregisterPath(u"Common");
    if (!common.empty()) {
        Check(ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(common.c_str()).c_str()));
        if (LoadUnicodeTbl() == kZelTableReady) return;
        ZelResetCodeTablesForTest();
        ZelUnregisterPath(u"Common");
    }
    common = WriteTables();
    Check(ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(common.c_str()).c_str()));
    Check(LoadUnicodeTbl() == kZelTableReady);
}

void CheckMultiCode() {
    const WCHAR* multi = GetMultiCode();
    bool ended = false;
    for (int i = 0; i < kMultiCodeUnits; ++i) ended = ended || multi[i] == 0;
    Check(ended);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = (UseTables(), true);
    (void)ready;
    if (size < 8 || size > 8192) return 0;
    DWORD flags = 0;
    std::memcpy(&flags, data, 4);
    const int outSize = int(((data[4] << 8) | data[5]) % 600);
    const size_t substituteLength = data[6] % 24;
    const bool counted = data[7] & 1;
    const bool substitute = data[7] & 2;
    data += 8;
    size -= 8;

    // The text in a buffer of its own length plus one terminator, so that a read past it is caught.
    const size_t unitCount = size / 2;
    auto wide = std::make_unique<WCHAR[]>(unitCount + 1);
    auto kchar = std::make_unique<KChar[]>(unitCount + 1);
    std::memcpy(wide.get(), data, unitCount * 2);
    std::memcpy(kchar.get(), data, unitCount * 2);
    wide[unitCount] = 0;
    kchar[unitCount] = 0;
    const int length = counted ? int(unitCount) : -1;

    // Substitutes made of the start of the text, so that they are often long and odd.
    std::vector<WCHAR> wideSubstitute(substituteLength + 1, 0);
    std::vector<KChar> kcharSubstitute(substituteLength + 1, 0);
    for (size_t i = 0; i < substituteLength; ++i) {
        wideSubstitute[i] = WCHAR(0x41 + i % 26);
        kcharSubstitute[i] = KChar(0x61 + i % 26);
    }

    Output<KChar> toKChar(outSize);
    toKChar.Verify(ZelUnicodeToKChar(flags, wide.get(), length, toKChar.data(), outSize,
                                     substitute ? kcharSubstitute.data() : nullptr));
    CheckMultiCode();

    Output<WCHAR> back(outSize);
    back.Verify(ZelKCharToUnicode(flags, toKChar.data(), -1, back.data(), outSize,
                                  substitute ? wideSubstitute.data() : nullptr));
    CheckMultiCode();

    Output<WCHAR> fromKChar(outSize);
    fromKChar.Verify(ZelKCharToUnicode(flags, kchar.get(), length, fromKChar.data(), outSize,
                                       substitute ? wideSubstitute.data() : nullptr));
    CheckMultiCode();

    // Sort keys: the table walk gives the plain walk's keys and count, and writes no further.
    // No terminator is written, so the unit at the count is canary as well.
    Output<DWORD> keys(outSize);
    std::vector<DWORD> plainKeys(size_t(outSize) + 1, 0);
    const int keyCount = ZelUnicodeToSortIndex(flags, wide.get(), length, keys.data(), outSize);
    Check(keyCount >= 0 && keyCount <= std::max(outSize - 1, 0));
    for (size_t i = size_t(keyCount); i < keys.units.size(); ++i) Check(keys.units[i] == 0x5A);
    Check(keyCount == ZelUnicodeToSortIndexReference(flags, wide.get(), plainKeys.data(), outSize));
    Check(std::equal(plainKeys.begin(), plainKeys.begin() + keyCount, keys.units.begin()));

    // The multi-code buffer with whatever the text brings.
    WCHAR* multi = GetMultiCode();
    for (size_t i = 0; i < 3; ++i) multi[i] = i < unitCount ? wide[i] : 0;
    multi[3] = 0;
    int split = 0;
    ZelMultiUnicodeToUniCode(flags & 1, &split);
    CheckMultiCode();

    // The same with no tables at all.
    Output<WCHAR> system(outSize);
    const int systemCount = ZelKCharToUnicode(flags, kchar.get(), length, system.data(), outSize);
    system.Verify(systemCount);
    Output<KChar> systemBack(outSize);
    systemBack.Verify(ZelUnicodeToKChar(flags, wide.get(), length, systemBack.data(), outSize));
    return 0;
}
