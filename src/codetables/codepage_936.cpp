// Four-byte sequences of code page 936: the place L of a code in the sequence of four-byte codes,
// found through the runs of the basic plane, and the four bytes of a place.
#include <algorithm>

#include "codetables/codepage_table_path.h"
#include "codetables/gb_four_byte_runs.h"

namespace {

// V of the first four-byte code beyond the basic plane, 0x90 0x30 0x81 0x30.
constexpr long kFirstSupplementaryValue = 1876218;

constexpr long kLastCodePoint = 0x10FFFF;

}  // namespace

// The run walks below, once for every place and every code point, give two direct tables: the
// code point of each place of the basic plane, and the four bytes of each code point (in the
// order they are written, 0 for none: no four-byte code has a zero byte). Filled on first use.
// The units of places keep one unit more, never read as a place: the block kernel reads a place
// as 32 bits, the unit behind it with it.
const WCHAR* Zel936UnitsOfPlaces() {
    static WCHAR units[kZelFourByteBasicPlaneCodes + 1];
    static const bool filled = [] {
        for (DWORD place = 0; place < kZelFourByteBasicPlaneCodes; ++place) {
            BYTE bytes[4];
            Zel936FourBytesOfPlace(place, bytes);
            WCHAR unit[2];
            Zel936FourBytesToUnicodeByRuns(bytes[0], bytes[1], bytes[2], bytes[3], unit);
            units[place] = unit[0];
        }
        return true;
    }();
    (void)filled;
    return units;
}

const DWORD* Zel936FourByteCodes() {
    static DWORD codes[0x10000];
    static const bool filled = [] {
        for (DWORD u = 0; u < 0x10000; ++u) {
            const long place = (u >= 0xD800 && u <= 0xDFFF) ? -1 : Zel936FourBytePlaceOf(WCHAR(u));
            if (place < 0) continue;
            BYTE bytes[4];
            Zel936FourBytesOfPlace(DWORD(place), bytes);
            codes[u] = DWORD(bytes[0]) | DWORD(bytes[1]) << 8 | DWORD(bytes[2]) << 16 | DWORD(bytes[3]) << 24;
        }
        return true;
    }();
    (void)filled;
    return codes;
}

int Zel936FourBytesToUnicode(BYTE b1, BYTE b2, BYTE b3, BYTE b4, WCHAR units[2]) {
    const long value = ((long{b1} * 10 + b2) * 126 + b3) * 10 + b4;
    if (value >= kFirstSupplementaryValue) {
        const long codePoint = value - kZel936SupplementaryBase;
        // Bytes beyond the last plane have nothing to stand for.
        if (codePoint > kLastCodePoint) {
            units[0] = 0xFFFD;
            return 1;
        }
        units[0] = WCHAR(0xD800 + ((codePoint - 0x10000) >> 10));
        units[1] = WCHAR(0xDC00 + (codePoint & 0x3FF));
        return 2;
    }
    const long place = value - kZel936FirstFourByteValue;
    if (place >= 0 && place < long(kZelFourByteBasicPlaneCodes)) {
        units[0] = Zel936UnitsOfPlaces()[place];
        return 1;
    }
    return Zel936FourBytesToUnicodeByRuns(b1, b2, b3, b4, units);
}

int Zel936FourBytesToUnicodeByRuns(BYTE b1, BYTE b2, BYTE b3, BYTE b4, WCHAR units[2]) {
    const long value = ((long{b1} * 10 + b2) * 126 + b3) * 10 + b4;
    if (value >= kFirstSupplementaryValue) return Zel936FourBytesToUnicode(b1, b2, b3, b4, units);
    // The first run whose running sum passes L; the surrogates' run repeats the sum before it and
    // so is never the one.
    const long place = value - kZel936FirstFourByteValue;
    const DWORD* ends = kZelFourByteRunSums.ends;
    const DWORD* end = ends + kZelFourByteRunCount;
    const DWORD* at = place < 0 ? ends : std::upper_bound(ends, end, DWORD(place));
    if (at == end) {
        units[0] = kZel936OpenerMarker;
        return 1;
    }
    const long run = at - ends;
    units[0] = WCHAR(kZelFourByteRuns[run].last - long(*at) + place + 1);
    return 1;
}

void Zel936FourBytesOfPlace(DWORD place, BYTE bytes[4]) {
    bytes[3] = BYTE(place % 10 + 0x30);
    bytes[2] = BYTE((place / 10) % 126 + 0x81);
    bytes[1] = BYTE((place / 1260) % 10 + 0x30);
    bytes[0] = BYTE(place / 12600 + 0x81);
}

long Zel936FourBytePlaceOf(WCHAR u) {
    const ZelFourByteRun* runs = kZelFourByteRuns;
    const ZelFourByteRun* end = runs + kZelFourByteRunCount;
    const ZelFourByteRun* run =
        std::lower_bound(runs, end, u, [](const ZelFourByteRun& r, WCHAR value) { return r.last < value; });
    if (run == end || u < run->first || run->first == kZelSurrogateRunFirst) return -1;
    const long k = run - runs;
    const DWORD before = k == 0 ? 0 : kZelFourByteRunSums.ends[k - 1];
    return long(before) + (u - run->first);
}

DWORD Zel936FourByteCode(WCHAR u) { return Zel936FourByteCodes()[u]; }

long Zel936SupplementaryPlaceOf(DWORD codePoint) { return long(codePoint) + kZel936PairPlaceOffset; }
