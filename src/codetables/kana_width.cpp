// Half-width and full-width Katakana, one character at a time.
#include <zel/codetables.h>

#include "codetables/kana_tables.h"

WCHAR HalfKanaToFullKana(WCHAR c) {
    if (c >= zelkana::kHalfFirst && c <= zelkana::kHalfLast) return zelkana::kHalfToFull[c - zelkana::kHalfFirst];
    return c;
}

int FullKanaToHalfKana(WCHAR c, WCHAR* output) {
    if (!output) return 0;
    if (c >= zelkana::kFullFirst && c <= zelkana::kFullLast) {
        const WCHAR* row = zelkana::kFullToHalf[c - zelkana::kFullFirst];
        int n = 0;
        for (; row[n]; ++n) output[n] = row[n];
        if (n) {
            output[n] = 0;
            return n;
        }
    }
    switch (c) {
        case 0x3001: c = 0xFF64; break;  // ideographic comma
        case 0x3002: c = 0xFF61; break;  // ideographic full stop
        case 0x300C: c = 0xFF62; break;  // corner brackets
        case 0x300D: c = 0xFF63; break;
        default: break;
    }
    output[0] = c;
    output[1] = 0;
    return 1;
}
