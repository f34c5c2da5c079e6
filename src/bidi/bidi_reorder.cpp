// Display order in one pass: each run at the lowest odd level or above is turned around, and the
// runs one level higher inside it are turned around once more, which leaves them in reading order.
#include "bidi/bidi_internal.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "bidi/unicode_lookup.h"

namespace zelbidi {

namespace {

// The four units of a 64-bit word in the opposite order.
inline uint64_t Reversed4(uint64_t v) {
    v = (v >> 32) | (v << 32);
    return ((v >> 16) & 0x0000FFFF0000FFFFull) | ((v & 0x0000FFFF0000FFFFull) << 16);
}

// Reverses [first, last) in place, four units from each end at a time.
void ReverseUnits(WCHAR* first, WCHAR* last) {
    while (last - first >= 8) {
        uint64_t front, back;
        std::memcpy(&front, first, sizeof front);
        std::memcpy(&back, last - 4, sizeof back);
        front = Reversed4(front);
        back = Reversed4(back);
        std::memcpy(first, &back, sizeof back);
        std::memcpy(last - 4, &front, sizeof front);
        first += 4;
        last -= 4;
    }
    std::reverse(first, last);
}

// The first index from i below end whose level is (kSame) or isn't (!kSame) level, four levels
// at a time while four are left.
template <bool kSame>
DWORD Scan(const WORD* levels, DWORD i, DWORD end, unsigned level) {
    constexpr uint64_t kOnes = 0x0001000100010001ull, kHighs = 0x8000800080008000ull;
    const uint64_t all = kOnes * level;
    while (end - i >= 4) {
        uint64_t four;
        std::memcpy(&four, levels + i, sizeof four);
        const uint64_t x = four ^ all;  // a zero unit where the level is level
        const bool anySame = ((x - kOnes) & ~x & kHighs) != 0;
        if (kSame ? anySame : x != 0) break;
        i += 4;
    }
    while (i < end && (levels[i] == level) != kSame) ++i;
    return i;
}

// The run [start, end) at lowest or above: every unit to the mirror place of the run, and then
// each higher run inside it, turned around with the rest, turned back.
template <bool kMirror>
void TurnRun(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD start, DWORD end,
             unsigned lowest) {
    WCHAR* const turn = out + start + end - 1;
    DWORD j = start;
    for (; end - j >= 4; j += 4) {
        uint64_t four;
        std::memcpy(&four, text + j, sizeof four);
        four = Reversed4(four);
        std::memcpy(turn - j - 3, &four, sizeof four);
    }
    for (; j < end; ++j) *(turn - j) = text[j];
    // Only the units at the lowest odd level have an odd level. Mirrored characters are few: the
    // property bytes are looked through eight at a time.
    if (kMirror) {
        for (j = start; j < end; ++j) {
            if (props && end - j >= 8) {
                uint64_t eight;
                std::memcpy(&eight, props + j, sizeof eight);
                if (!(eight & 0x8080808080808080ull)) {
                    j += 7;
                    continue;
                }
            }
            if ((!props || (props[j] >> kMirroredShift)) && levels[j] == lowest) *(turn - j) = MirrorOf(text[j]);
        }
    }
    for (DWORD j = Scan<false>(levels, start, end, lowest); j < end; j = Scan<false>(levels, j, end, lowest)) {
        const DWORD higher = j;
        j = Scan<true>(levels, j, end, lowest);
        ReverseUnits(turn - (j - 1), turn - higher + 1);
    }
}

template <bool kMirror>
void Reorder(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD count, WORD baseLevel) {
    // At an odd base level the whole line is one run.
    if (baseLevel & 1) {
        TurnRun<kMirror>(out, text, props, levels, 0, count, baseLevel);
        return;
    }
    const unsigned lowest = baseLevel + 1u;
    DWORD i = 0;
    while (i < count) {
        if (levels[i] < lowest) {
            out[i] = text[i];
            ++i;
            continue;
        }
        const DWORD start = i;
        while (i < count && levels[i] >= lowest) ++i;
        TurnRun<kMirror>(out, text, props, levels, start, i, lowest);
    }
}

}  // namespace

void ReorderInto(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD count, WORD baseLevel,
                 bool mirror) {
    if (mirror) Reorder<true>(out, text, props, levels, count, baseLevel);
    else Reorder<false>(out, text, props, levels, count, baseLevel);
}

}  // namespace zelbidi
