// Inside the KChar conversions: the Johab tables, the lookups of each class of the code space, and
// the conversions through code page 1361 that stand in when the tables are absent.
#ifndef ZEL_CODETABLES_KCHAR_INTERNAL_H
#define ZEL_CODETABLES_KCHAR_INTERNAL_H

#include <zel/codetables.h>
#include <zel/wintypes.h>

// Boundaries of the KChar code space.
constexpr KChar kZelKCharAuxFirst = 0x3800;
constexpr KChar kZelKCharHanjaFirst = 0x4000;
constexpr KChar kZelKCharHangulFirst = 0x8000;

// The medial mark of JohabFieldTbl and the size of JohabJamoTbl.
constexpr BYTE kZelJohabJamoMark = 0xFF;
constexpr int kZelJohabJamoCount = 308;

extern const BYTE JohabFieldTbl[32][3];
extern const BYTE IndexToJohabTbl[96][3];
extern const WORD JohabJamoTbl[kZelJohabJamoCount];

// All four language flags.
constexpr DWORD kZelKConvLanguages = KConvChs | KConvJpn | KConvKor | KConvCht;

// The Johab code of three Uni indexes (an index of 96 or more takes the column's default).
KChar ZelJohabOfIndexes(int initial, int medial, int final);

// Searches of the pair tables: the KChar of the first "aux" pair with this Unicode (0x3441 when
// none or the table isn't ready), and the Unicode of the first with this KChar (U+FFFD).
KChar ZelAuxKCharOf(WCHAR u);
WCHAR ZelAuxUnicodeOf(KChar h);
// The first "u2k" pair's KChar for u, 0x3441 for none; the first "k2u" pair's Unicode for h, U+FFFD.
KChar ZelExtraKCharOf(WCHAR u);
WCHAR ZelExtraUnicodeOf(KChar h);

// Language variant steps of Hanja: toward Unicode by the one language flag set, and toward KChar
// by every flag set, Kor, Jpn, Chs, Cht, refusing a compatibility ideograph.
WCHAR ZelVariantToUnicode(WCHAR u, DWORD flags);
WCHAR ZelVariantToHanja(WCHAR v, DWORD flags);

// The composed private-use syllable whose "pua" record holds h, or U+FFFD.
WCHAR ZelPuaByKChar(KChar h);

// Text conversions through code page 1361, for text without tables. The fallbacks go through the
// front end (a ready 1361 table or the system); the overloads through the system alone.
int ZelKCharFallbackToUnicode(const KChar* text, int length, WCHAR* buffer, int size, bool systemOnly);
int ZelUnicodeFallbackToKChar(const WCHAR* text, int length, KChar* buffer, int size, bool systemOnly);

// Length of a zero-terminated KChar text.
int ZelKCharLength(const KChar* text);

#endif  // ZEL_CODETABLES_KCHAR_INTERNAL_H
