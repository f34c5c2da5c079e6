// The presentation forms of the letters of U+0600 to U+06FF and the lam-alef ligatures.
#include <array>

#include <zel/bidi.h>

#include "bidi/shaping_internal.h"

namespace {

// A row of the shape table: the first form and how many forms follow it contiguously (0, 1 or 3).
struct ShapeRow {
    WCHAR first;
    WORD further;
};

struct ShapeEntry {
    BYTE low;
    WCHAR first;
    WORD further;
};

// The rows that differ from "the character itself, no further forms".
constexpr ShapeEntry kShapeEntries[] = {
    {0x21, 0xFE80, 0}, {0x22, 0xFE81, 1}, {0x23, 0xFE83, 1}, {0x24, 0xFE85, 1}, {0x25, 0xFE87, 1},
    {0x26, 0xFE89, 3}, {0x27, 0xFE8D, 1}, {0x28, 0xFE8F, 3}, {0x29, 0xFE93, 1}, {0x2A, 0xFE95, 3},
    {0x2B, 0xFE99, 3}, {0x2C, 0xFE9D, 3}, {0x2D, 0xFEA1, 3}, {0x2E, 0xFEA5, 3}, {0x2F, 0xFEA9, 1},
    {0x30, 0xFEAB, 1}, {0x31, 0xFEAD, 1}, {0x32, 0xFEAF, 1}, {0x33, 0xFEB1, 3}, {0x34, 0xFEB5, 3},
    {0x35, 0xFEB9, 3}, {0x36, 0xFEBD, 3}, {0x37, 0xFEC1, 3}, {0x38, 0xFEC5, 3}, {0x39, 0xFEC9, 3},
    {0x3A, 0xFECD, 3}, {0x41, 0xFED1, 3}, {0x42, 0xFED5, 3}, {0x43, 0xFED9, 3}, {0x44, 0xFEDD, 3},
    {0x45, 0xFEE1, 3}, {0x46, 0xFEE5, 3}, {0x47, 0xFEE9, 3}, {0x48, 0xFEED, 1}, {0x4A, 0xFEF1, 3},
    {0x71, 0xFB50, 1}, {0x79, 0xFB66, 3}, {0x7A, 0xFB5E, 3}, {0x7B, 0xFB52, 3}, {0x7E, 0xFB56, 3},
    {0x7F, 0xFB62, 3}, {0x80, 0xFB5A, 3}, {0x83, 0xFB76, 3}, {0x84, 0xFB72, 3}, {0x86, 0xFB7A, 3},
    {0x87, 0xFB7E, 3}, {0x88, 0xFB88, 1}, {0x8C, 0xFB84, 1}, {0x8D, 0xFB82, 1}, {0x8E, 0xFB86, 1},
    {0x91, 0xFB8C, 1}, {0x98, 0xFB8A, 1}, {0xA4, 0xFB6A, 3}, {0xA6, 0xFB6E, 3}, {0xA9, 0xFB8E, 3},
    {0xAD, 0xFBD3, 3}, {0xAF, 0xFB92, 3}, {0xB1, 0xFB9A, 3}, {0xB3, 0xFB96, 3}, {0xBB, 0xFBA0, 3},
    {0xBE, 0xFBAA, 3}, {0xC0, 0xFBA4, 1}, {0xC1, 0xFBA6, 3}, {0xC5, 0xFBE0, 1}, {0xC6, 0xFBD9, 1},
    {0xC7, 0xFBD7, 1}, {0xC8, 0xFBDB, 1}, {0xC9, 0xFBE2, 1}, {0xCB, 0xFBDE, 1}, {0xCC, 0xFBFC, 3},
    {0xD0, 0xFBE4, 3}, {0xD2, 0xFBAE, 1}, {0xD3, 0xFBB0, 1},
};

constexpr std::array<ShapeRow, 256> MakeShapeTable() {
    std::array<ShapeRow, 256> table{};
    for (unsigned low = 0; low < 256; ++low) table[low] = {static_cast<WCHAR>(0x0600 + low), 0};
    for (const ShapeEntry& e : kShapeEntries) table[e.low] = {e.first, e.further};
    return table;
}

constexpr std::array<ShapeRow, 256> kShapeTbl = MakeShapeTable();

// Alef maksura: its forms are not contiguous.
constexpr BYTE kAlefMaksuraLow = 0x49;
constexpr WCHAR kAlefMaksuraForms[4] = {0xFEEF, 0xFEF0, 0xFBE8, 0xFBE9};

// By the low byte of the alef (0x22 to 0x27) and the form of the lam. Only the initial and medial
// lam forms make a ligature; 0x24 and 0x26 are no alefs.
constexpr BYTE kLamAlefFirstLow = 0x22;
constexpr WCHAR kLamAlefTbl[6][4] = {
    {0xFFFD, 0xFFFD, 0xFEF5, 0xFEF6},  // U+0622
    {0xFFFD, 0xFFFD, 0xFEF7, 0xFEF8},  // U+0623
    {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD},  // U+0624
    {0xFFFD, 0xFFFD, 0xFEF9, 0xFEFA},  // U+0625
    {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD},  // U+0626
    {0xFFFD, 0xFFFD, 0xFEFB, 0xFEFC},  // U+0627
};

}  // namespace

WCHAR GetBidiShape(WCHAR /*c*/, BYTE low, int form) {
    if (low == kAlefMaksuraLow) {
        // Forms outside 0 to 3 have no cell; they get the replacement character.
        return (form >= 0 && form <= 3) ? kAlefMaksuraForms[form] : WCHAR{0xFFFD};
    }
    const ShapeRow& row = kShapeTbl[low];
    if (row.further == 0) return row.first;
    return static_cast<WCHAR>(row.first + form);
}

WCHAR GetArabicUnicodeLamAlefMapping(BYTE alefLow, int form) {
    if (alefLow < kLamAlefFirstLow || alefLow >= kLamAlefFirstLow + 6 || form < 0 || form > 3) return 0xFFFD;
    return kLamAlefTbl[alefLow - kLamAlefFirstLow][form];
}
