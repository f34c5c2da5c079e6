// The general exchange of half-width and full-width characters.
#include <zel/codetables.h>

#include "codetables/kana_tables.h"

namespace {

constexpr WCHAR kFullOffset = 0xFEE0;  // from U+0021 to U+FF01

}  // namespace

WCHAR ZelUniHalfFullChange(WCHAR c, int direction) {
    using namespace zelkana;
    if (direction == 0) {
        if (c == 0x0020) return 0x3000;
        if (c >= 0x0021 && c <= 0x007E) return static_cast<WCHAR>(c + kFullOffset);
        // The half-width Katakana and punctuation pair with their half-to-full entries.
        if (c >= kHalfPairFirst && c <= kHalfLast) return kHalfToFull[c - kHalfFirst];
        for (const WidthPair* row = kOtherWidthPairs; row->half; ++row) {
            if (row->half == c) return row->full;
        }
        return c;
    }
    if (direction == 1) {
        if (c == 0x3000) return 0x0020;
        if (c >= 0xFF01 && c <= 0xFF5E) return static_cast<WCHAR>(c - kFullOffset);
        // Row by row from the top: the Katakana pairs, then the others. The first match counts.
        for (WCHAR half = kHalfPairFirst; half <= kHalfLast; ++half) {
            if (kHalfToFull[half - kHalfFirst] == c) return half;
        }
        for (const WidthPair* row = kOtherWidthPairs; row->half; ++row) {
            if (row->full == c) return row->half;
        }
        return c;
    }
    return c;
}
