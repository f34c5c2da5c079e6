// The constant tables of the Kana and width conversions.
#ifndef ZEL_CODETABLES_KANA_TABLES_H
#define ZEL_CODETABLES_KANA_TABLES_H

#include <zel/wintypes.h>

namespace zelkana {

// Zero-terminated lists of the class tests. Searches include the terminator.
extern const WCHAR kBaseHiragana[66];
extern const WCHAR kSmallHiragana[11];
extern const WCHAR kBaseKatakana[66];
extern const WCHAR kSmallKatakana[11];
// Ordered: h row (1 to 5), k, s, t rows (6 to 20), n row, m row, r row.
extern const WCHAR kBaseHalfKatakana[36];
extern const WCHAR kSmallHalfKatakana[10];

// U+FF60 to U+FF9F to full width.
constexpr WCHAR kHalfFirst = 0xFF60;
constexpr WCHAR kHalfLast = 0xFF9F;
extern const WCHAR kHalfToFull[64];

// U+30A0 to U+30FF to half width: up to two units and a terminator a row; an empty row has no
// half-width form.
constexpr WCHAR kFullFirst = 0x30A0;
constexpr WCHAR kFullLast = 0x30FF;
extern const WCHAR kFullToHalf[96][3];

// The kana that take the voiced sound mark, Hiragana in row 0 and Katakana in row 1, each row
// zero-terminated. The last five of a row (the h row) also take the semi-voiced mark.
constexpr int kVoicedCount = 20;
constexpr int kSemiVoicedFirst = 15;
extern const WCHAR kVoicing[2][kVoicedCount + 1];

// The width pairs that follow those of U+FF61 to U+FF9F (which are kHalfToFull's), ended by a
// zero row.
struct WidthPair {
    WCHAR half;
    WCHAR full;
};
constexpr WCHAR kHalfPairFirst = 0xFF61;
extern const WidthPair kOtherWidthPairs[21];

// The distance between a Hiragana and its Katakana.
constexpr WCHAR kKatakanaOffset = 0x60;

// Hiragana that has a Katakana 0x60 above it, and the reverse.
constexpr bool IsShiftableHiragana(WCHAR c) {
    return (c >= 0x3041 && c <= 0x3094) || (c >= 0x309D && c <= 0x309E);
}
constexpr bool IsShiftableKatakana(WCHAR c) {
    return (c >= 0x30A1 && c <= 0x30F4) || (c >= 0x30FD && c <= 0x30FE);
}

// The place of c in a zero-terminated list, counted from 1, the terminator included; 0 when absent.
int PlaceInList(const WCHAR* list, WCHAR c);

}  // namespace zelkana

#endif  // ZEL_CODETABLES_KANA_TABLES_H
