// The steps of Arabic shaping behind ShapeString: neighbours and forms in a visual buffer, and the
// walk that writes presentation forms.
#ifndef ZEL_BIDI_SHAPING_INTERNAL_H
#define ZEL_BIDI_SHAPING_INTERNAL_H

#include <zel/bidi.h>
#include <zel/wintypes.h>

#include <array>

namespace zelshape {

// Form numbers; each is also the offset of the form from the first form of a letter.
constexpr int kIsolated = 0;
constexpr int kFinal = 1;
constexpr int kInitial = 2;
constexpr int kMedial = 3;

// Joining types as the property look-up gives them.
constexpr WORD kJoinNone = 0;
constexpr WORD kJoinDual = 1;
constexpr WORD kJoinRight = 2;
constexpr WORD kJoinCausing = 3;

// What a neighbour search gives when it runs off the buffer: a character of joining type none.
constexpr WCHAR kNoBase = 0xFFFD;
// What a formatting control turns into, so that it keeps its place.
constexpr WCHAR kBlank = 0x200B;
constexpr WCHAR kLam = 0x0644;

// The general category of the marks, which the neighbour searches pass over.
constexpr WORD kCategoryMn = 1;

// Index of a search that found nothing.
constexpr DWORD kNoIndex = 0xFFFFFFFFu;

// The block that is shaped.
inline bool IsArabicBlock(WCHAR c) { return c >= 0x0600 && c <= 0x06FF; }
// The four alefs that join a lam into a ligature.
inline bool IsLigatureAlef(WCHAR c) { return c == 0x0622 || c == 0x0623 || c == 0x0625 || c == 0x0627; }
// Zero-width joiners and non-joiners, direction marks and explicit embeddings.
inline bool IsFormatControl(WCHAR c) { return (c >= 0x200C && c <= 0x200F) || (c >= 0x202A && c <= 0x202E); }

// A row of the shape table: the first form and how many forms follow it contiguously (0, 1 or 3).
struct ShapeRow {
    WCHAR first;
    WORD further;
};

// By the low byte of a character U+06xx.
extern const std::array<ShapeRow, 256> kShapeTbl;
// Alef maksura: its forms are not contiguous.
constexpr BYTE kAlefMaksuraLow = 0x49;
extern const WCHAR kAlefMaksuraForms[4];
// By the low byte of the alef (0x22 to 0x27) and the form of the lam.
constexpr BYTE kLamAlefFirstLow = 0x22;
extern const WCHAR kLamAlefTbl[6][4];

// The form number form (0 to 3) of the character U+06xx with the low byte low.
inline WCHAR ShapeOf(BYTE low, int form) {
    if (low == kAlefMaksuraLow) return kAlefMaksuraForms[form];
    const ShapeRow& row = kShapeTbl[low];
    return row.further == 0 ? row.first : static_cast<WCHAR>(row.first + form);
}

// The nearest index below index whose character is not a mark (category Mn); kNoIndex at the
// start of the buffer.
DWORD PrevBaseIndex(const WCHAR* text, DWORD index);

// Writes the presentation forms of a visual buffer of count units to destination, walking the
// buffer backwards when asked, and a terminator behind them. Gives the number of units written
// before the terminator, at most count.
DWORD ShapeVisualText(WCHAR* destination, const WCHAR* source, DWORD count, bool backwards);

}  // namespace zelshape

#endif  // ZEL_BIDI_SHAPING_INTERNAL_H
