// The code table files in memory: the tables that the loaders fill and the conversions read, the
// state word of each group, and the loaders. Every table is a plain process-wide array on the heap,
// null until its group is ready; ready tables are never written again until UnloadUnicodeTbl.
#ifndef ZEL_CODETABLES_CODE_TABLES_H
#define ZEL_CODETABLES_CODE_TABLES_H

#include <zel/wintypes.h>

// State of a group of tables.
enum ZelTableState : int {
    kZelTableNotTried = 0,
    kZelTableBusyOrFailed = 1,  // being read, or tried and failed: not read again
    kZelTableReady = 2,
};

// Kind ids of the code table files, in the order of loading; the name of each is its file kind.
enum ZelTableKind : int {
    kZelKindGen, kZelKindCom, kZelKindPua, kZelKindCjk, kZelKindChs, kZelKindJpn, kZelKindCht, kZelKindKor,
    kZelKindU2k, kZelKindK2u, kZelKindHan, kZelKindAux, kZelKindZel, kZelKind949, kZelKind1361, kZelKind932,
    kZelKind936, kZelKind950, kZelKind9566, kZelKindExt,
};
const char* ZelTableKindName(int kind);  // "gen" ... "9566", "ext" for the rest

// KChar that means no mapping, and the Unicode that does.
constexpr WORD kZelNoKChar = 0x3441;
constexpr WORD kZelNoUnicode = 0xFFFD;

// The units to read of a text that comes with a length: -1 stands for the text up to its zero
// unit, and any other negative length, or a null text, for no text at all, so that a counted text
// is never read as a terminated one.
template <typename Unit>
int ZelTextUnits(const Unit* text, int length) {
    if (!text || length < -1) return 0;
    if (length >= 0) return length;
    int n = 0;
    while (text[n]) ++n;
    return n;
}

// A pair of a pair table, in file order.
struct ZelCodePair {
    WORD first;
    WORD second;
};

// ---------------------------------------------------------------------------------------------
// The main group (LoadUnicodeTbl, LoadVariantTbls)

extern WORD* Uni2KCharGenTbl;  // 16384: code point
extern WORD* Uni2KCharComTbl;  // 3328: as the "com" payload
extern WORD* Uni2KCharPuaTbl;  // 6400 records of 4: (code point - 0xE000) x 4
extern WORD* Uni2KCharCjkTbl;  // 28416: as the "cjk" payload
extern WORD* KChar2UniGenTbl;  // 16384: KChar below 0x4000
extern WORD* KChar2UniCjkTbl;  // 28416: KChar - 0x4000
extern ZelCodePair* ChsVariantTbl;
extern ZelCodePair* JpnVariantTbl;
extern ZelCodePair* ChtVariantTbl;
extern ZelCodePair* KorVariantTbl;
extern ZelCodePair* Uni2KCharExtraTbl;
extern ZelCodePair* KChar2UniExtraTbl;
extern DWORD ChsVariantCount, JpnVariantCount, ChtVariantCount, KorVariantCount;  // pairs
extern DWORD Uni2KCharExtraCount, KChar2UniExtraCount;                           // pairs
extern WORD* AuxPairTbl;  // (Unicode, KChar) pairs
extern DWORD AuxPairCount;  // 16-bit units, two a pair
extern DWORD* YiPuaTbl;     // code point - 0xA700
extern DWORD YiPuaCount;

// ---------------------------------------------------------------------------------------------
// Code pages 949, 1361, 932, 936, 950 and 9566

struct ZelCodePageTables {
    const WORD* mb2Uni;  // code - firstCode, mb2UniCount entries, 0xFFFD for none
    DWORD mb2UniCount;   // always 0x10000 - firstCode: what the file lacks stays 0xFFFD
    const WORD* uni2Mb;  // 65536 entries: below 0x100 a single byte, else high and low byte; 0x3F for none
    WORD firstCode;      // F
};

// The tables of a ready code page, or null: the state must be 2, which EnsureCodePageTbl arranges.
const ZelCodePageTables* ZelCodePageTablesOf(UINT codePage);
// First code F of a table code page, or 0 for any other code page.
WORD ZelFirstCodeOf(UINT codePage);

// Markers of code page 936: a code point with a four-byte form, and two bytes that open one.
constexpr WORD kZel936FourByteMarker = 0x8130;
constexpr WORD kZel936OpenerMarker = 0xAC00;

// ---------------------------------------------------------------------------------------------
// Loaders

// Gives 1 and the path (MAX_PATH units) of the kind's file; with number 0 the highest number
// found in ${Common}\Code, which is given back in number.
int FindCodeTableFile(int kind, int* number, WCHAR* path);
ZEL_API int LoadUnicodeTbl();
ZEL_API void UnloadUnicodeTbl();
ZEL_API int LoadUniYi2UniSurrogatePuaTbl();
void LoadVariantTbls(int number);
int LoadAuxTbl();
int LoadCodePageTbl(UINT codePage);
int EnsureCodePageTbl(UINT codePage);  // 1 for any code page but the six

// The state words, for the conversions and for zel codetables.
int ZelMainTableState();
int ZelAuxTableState();
int ZelYiPuaTableState();
int ZelCodePageTableState(UINT codePage);  // 1 for any code page but the six

// For the tests alone: frees what is loaded and sets every state back to 0, also those left at 1
// by a failed load, which nothing else ever resets.
void ZelResetCodeTablesForTest();

#endif  // ZEL_CODETABLES_CODE_TABLES_H
