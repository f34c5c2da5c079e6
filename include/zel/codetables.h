// Code tables and conversion: the code page front end, Kana and width conversion.
#ifndef ZEL_CODETABLES_H
#define ZEL_CODETABLES_H

#include <zel/wintypes.h>

// ---------------------------------------------------------------------------------------------
// Code table files
//
// The mappings between Unicode, KChar and the double-byte code pages live in code table files in
// ${Common}\Code. Each group of tables is read at its first use; these give a group's state:
// 0 not tried, 1 being read or failed (not tried again), 2 ready.

// Reads the main group (KChar, sort index, variants) unless it was tried, and gives its state.
ZEL_API int LoadUnicodeTbl();
// Frees every ready group and sets it back to not tried; failed groups stay failed.
ZEL_API void UnloadUnicodeTbl();
// Reads the Yi and plane 15 table unless it was tried, and gives its state.
ZEL_API int LoadUniYi2UniSurrogatePuaTbl();

// ---------------------------------------------------------------------------------------------
// Code page front end
//
// Code page 0 is the system's ANSI code page, 1 its OEM code page. A length of -1 reads up to the
// terminator, and any other negative length is no text; a size counts the whole output buffer,
// terminator included. The result is the number of units written without the terminator, except
// that a conversion by the system with a length of -1 counts the terminator too. A size below 2 writes only a terminator and gives 0.
// Characters without a mapping become U+FFFD toward Unicode; toward a code page they become '?'
// through the tables of 949, 1361, 932, 936, 950 and 9566, and the default character or '?' by
// the system. The flags argument is not read.

ZEL_API int ZelAnsiToUnicode(DWORD flags, DWORD codePage, const char* text, int length, WCHAR* buffer, int size,
                             int ignored);
ZEL_API int ZelUnicodeToAnsi(DWORD flags, DWORD codePage, const WCHAR* text, int length, char* buffer, int size,
                             const char* defaultChar);
ZEL_API int ZelAnsiToAnsi(DWORD flags, DWORD sourceCodePage, const char* text, int length, DWORD targetCodePage,
                          char* buffer, int size, const char* defaultChar);

// The same conversions by the system alone, with no table and no default character. A size below 2
// gives 0 and writes nothing; a failed conversion gives 0 and leaves no terminator.
ZEL_API int ZelAnsiToUnicode(DWORD flags, DWORD codePage, const char* text, int length, WCHAR* buffer, int size);
ZEL_API int ZelUnicodeToAnsi(DWORD flags, DWORD codePage, const WCHAR* text, int length, char* buffer, int size);
ZEL_API int ZelAnsiToAnsi(DWORD flags, DWORD sourceCodePage, const char* text, int length, DWORD targetCodePage,
                          char* buffer, int size);

// ---------------------------------------------------------------------------------------------
// KChar conversion

// KChar is the suite's internal 16-bit code, a type of its own so that it never mixes with UTF-16
// text: 0x0000 to 0x37FF general characters (ASCII below 0x80), 0x3800 to 0x3FFF the auxiliary
// area, 0x4000 to 0x7FFF Hanja, 0x8000 to 0xFFFF Hangul in Johab form (initial in bits 14 to 10,
// medial in 9 to 5, final in 4 to 0). 0x3441 means no mapping.
typedef uint16_t KChar;

// Flags of every KChar conversion: what may be converted.
constexpr DWORD KConvSymbol = 0x00000001;     // general characters; compatibility Jamo toward KChar
constexpr DWORD KConvHanja = 0x00000100;      // Hanja
constexpr DWORD KConvChs = 0x00000200;        // language variant of Hanja by the Chs table
constexpr DWORD KConvJpn = 0x00000400;        // ... by the Jpn table
constexpr DWORD KConvKor = 0x00000800;        // ... by the Kor table
constexpr DWORD KConvCht = 0x00001000;        // ... by the Cht table
constexpr DWORD KConvHangul = 0x00010000;     // modern syllables and Jamo
constexpr DWORD KConvOldHangul = 0x00020000;  // old Jamo, private-use syllables, multi-code sequences

// One unit each way; the tables must be loaded already. ZelKCharToUnicodeBase gives U+FFFD for no
// mapping and U+FFFE when the Unicode form is the sequence now in the multi-code buffer;
// ZelUnicodeToKCharBase gives 0x3441 for no mapping and reads the multi-code buffer for U+FFFE.
ZEL_API WCHAR ZelKCharToUnicodeBase(KChar h, DWORD flags);
ZEL_API KChar ZelUnicodeToKCharBase(WCHAR u, DWORD flags);

// Text conversions. A length of -1 reads up to the terminator, any other negative length is no
// text, and a zero unit ends the text whatever the length; a size counts the whole output
// buffer, terminator included; the result is the number of units written without the terminator.
// An unmapped character becomes the substitute string when one is given (never for the input
// 0x3441 or U+FFFD themselves), cut at the end of the output. Without tables, code page 1361
// stands in and the flags and substitute are not read.
ZEL_API int ZelKCharToUnicode(DWORD flags, const KChar* text, int length, WCHAR* buffer, int size,
                              const WCHAR* substitute);
ZEL_API int ZelUnicodeToKChar(DWORD flags, const WCHAR* text, int length, KChar* buffer, int size,
                              const KChar* substitute);
// Through a wide text in between: Unicode to the code page by ZelUnicodeToAnsi, and the code page to
// Unicode by the front end.
ZEL_API int ZelKCharToAnsi(DWORD flags, DWORD codePage, const KChar* text, int length, char* buffer, int size,
                           const char* defaultChar);
ZEL_API int ZelAnsiToKChar(DWORD flags, DWORD codePage, const char* text, int length, KChar* buffer, int size,
                           const KChar* substitute);

// The same four with no table at all: KChar is taken as code page 1361 text by the system, and
// the flags are not read.
ZEL_API int ZelKCharToUnicode(DWORD flags, const KChar* text, int length, WCHAR* buffer, int size);
ZEL_API int ZelUnicodeToKChar(DWORD flags, const WCHAR* text, int length, KChar* buffer, int size);
ZEL_API int ZelKCharToAnsi(DWORD flags, DWORD codePage, const KChar* text, int length, char* buffer, int size);
ZEL_API int ZelAnsiToKChar(DWORD flags, DWORD codePage, const char* text, int length, KChar* buffer, int size);

// The Unicode of the sequence that the caller put into the multi-code buffer (U+FFFE when it has
// no single form), composed in multi mode when mode isn't 0; split receives the composition's split
// flag. Loads the main tables if they were never tried; U+FFFD when they aren't ready.
ZEL_API WCHAR ZelMultiUnicodeToUniCode(int mode, int* split);

// ---------------------------------------------------------------------------------------------
// KS and Jaso tables

// Hangul knowledge built into the library. Jamo numberings: the Uni index is the offset in the
// conjoining block (initial from U+1100 with 0x5F for none, medial from U+1160, final from U+11A7,
// 0 for none); the SUni index the offset in the private-use Jamo block (initial from U+F784, medial
// from U+F806, final from U+F86A, 0 for none). Columns: 0 initial, 1 medial, 2 final.

// The 2350 KS X 1001 Hangul syllables as Johab codes, ascending.
ZEL_API const WORD* ZelGetKSTblPtr();
// The multi-code buffer (10 units) of the calling thread: private-use initial, medial, final and a
// zero unit. A U+FFFE result of a Hangul conversion means "the sequence is here".
ZEL_API WCHAR* GetMultiCode();
// A position in the KS syllable list (the hit, or the last one looked at for a miss).
ZEL_API int KsSearch(WORD code);
// The position in the list of the 42 KS Jamo Johab codes, or -1.
ZEL_API int JasoSearch(WORD code);
// 1 for a KS X 1001 syllable's Johab code (and 0xD3C5), else 0.
ZEL_API int IsInKs(WORD code);
// Conversions between the numberings; an index without an entry gives the column's "none".
ZEL_API int SUni2Uni_JamoIndex(int index, int column);
ZEL_API int Uni2SUni_JamoIndex(int index, int column);
// Write the three compatibility (KS) or private-use Jamo of a syllable or Jamo and a terminator;
// give 1 if all three were written, 0 if size cut them short.
ZEL_API int UniHangul2UniKSJaso(UINT u, WCHAR* buffer, int size);
ZEL_API int UniHangul2UniPUAJaso(UINT u, WCHAR* buffer, int size);
// Composes three compatibility Jamo (0 for none): a code point, U+FFFD, or U+FFFE with the
// sequence in the multi-code buffer.
ZEL_API WCHAR UniKSJaso2UniHangul(const WCHAR* units);

// ---------------------------------------------------------------------------------------------
// Sort index

// A sort index is 0x01 in the top byte, then the SUni indexes of initial, medial and final, one
// byte each (0 for a missing part), so Hangul text sorts by comparing numbers. -1 means the
// character has no key; 0x01FFFFFF is a private-use character of the Hangul area without Jamo.

// The key of the code point in the low 16 bits of code. Loads nothing; the flags are not read.
ZEL_API int ZelUnicodeToSortIndexBase(DWORD flags, DWORD code);
// The character of a key: a code point, U+FFFD for a value that is no key, or U+FFFE when the key
// needs more than one unit (the units are then in the multi-code buffer). Loads nothing.
ZEL_API WCHAR ZelSortIndexToUnicodeBase(DWORD flags, DWORD index);
// The keys of text up to its zero unit (length is not read), at most size - 1 of them, without a
// terminator. Gives the count, or 0 when size is below 2 or the main tables can't be read.
ZEL_API int ZelUnicodeToSortIndex(DWORD flags, const WCHAR* text, int length, DWORD* buffer, int size);
// The characters of keys up to a key 0 (length is not read), at most size - 1 units, without a
// terminator. Gives the count, or 0 when size is below 2 or the main tables can't be read.
ZEL_API int ZelSortIndexToUnicode(DWORD flags, const DWORD* indexes, int length, WCHAR* buffer, int size);

// ---------------------------------------------------------------------------------------------
// Plane 15, private use and Yi

// Characters U+A000 to U+A8FF of the library's text stand outside for the plane 15 code point
// u + 0xE6000, for the code point of the Yi table (U+A700 to U+A7FF) or for one of four fixed
// characters (U+A400 to U+A403). A packed pair holds the high surrogate in its upper 16 bits.
// Without the Yi table everything passes through unchanged.

// The outside form of u: one unit, or a packed pair. Loads nothing.
ZEL_API DWORD UniYi2UniSurrogatePua(WCHAR u);
// Writes the outside form of u into output (room units). Gives the units written, 0 to 2; a
// character of the internal area needs room for 2 even when it comes out as one unit.
ZEL_API int UniYi2UniSurrogatePuaEx(WCHAR u, WCHAR* output, int room);
// Writes the internal character of a packed pair into output. Gives 0 or 1; a pair of the Yi
// ranges that the table doesn't hold counts 1 and leaves output as it was.
ZEL_API int SurrogatePairToUni(DWORD pair, WCHAR* output, int room);
// Text to the outside form, and back. Length -1 reads up to the zero unit, any other negative
// length is no text, and a zero unit ends the text whatever the length. The whole output is
// cleared first, so the text is terminated; gives the units written. The flags are not read.
ZEL_API int ZelUnicodeToSurrogatePua(DWORD flags, const WCHAR* text, int length, WCHAR* buffer, int size);
ZEL_API int ZelSurrogatePuaToUnicode(DWORD flags, const WCHAR* text, int length, WCHAR* buffer, int size);

// ---------------------------------------------------------------------------------------------
// Kana and width conversion

// Class tests. The lists are searched with their terminator, so character 0 counts as found by all
// but IsJpnSmallHiragana. The base lists hold the vowels and the k, s, t, n, h, m and r rows with
// their voiced forms; the ya and wa rows and the sound n are on none of them.
ZEL_API int IsJpnBaseHiragana(WCHAR c);
ZEL_API int IsJpnSmallHiragana(WCHAR c);
ZEL_API int IsJpnBaseKatakana(WCHAR c);
ZEL_API int IsJpnSmallKatakana(WCHAR c);
ZEL_API int IsJpnSmallHalfKatakana(WCHAR c);
// The place of a half-width Katakana on its base list, counted from 1, or 0: places 1 to 5 are the
// h row (which takes both sound marks), 6 to 20 the k, s and t rows, 21 to 25 the n row, 26 to 30
// the m row and 31 to 35 the r row; character 0 gives 36.
ZEL_API int IsJpnBaseHalfKatakana(WCHAR c);

// The full-width form of U+FF60 to U+FF9F; any other character is given back.
ZEL_API WCHAR HalfKanaToFullKana(WCHAR c);
// Writes the half-width form of a full-width Katakana, a voiced one as two units with its sound
// mark, and a terminator, into output (3 units). The ideographic comma, full stop and corner
// brackets take their half-width forms; anything else, Hiragana included, is written as it is.
// Gives the number of units before the terminator, 1 or 2.
ZEL_API int FullKanaToHalfKana(WCHAR c, WCHAR* output);

// Converts count units of kana to full width in the target script (0 Hiragana, 1 Katakana) and
// joins a sound mark to the kana before it where the two make one character, so the output is never
// longer than the source. Other scripts leave the script of each unit alone and join no marks.
// Gives the number of units written, without a terminator; 0 for a count below 1.
ZEL_API int ToLargeKanaStr(const WCHAR* source, int count, WCHAR* output, int script);
// Converts count units (-1: up to the terminator) to half-width Katakana, Hiragana included; a
// voiced kana becomes two units, so the output must hold twice the count. Gives the number of units
// written, without a terminator.
ZEL_API int ToSmallKanaStr(const WCHAR* source, int count, WCHAR* output);

// Exchanges a character for its other width: direction 0 to full width, 1 to half width. ASCII
// and the space pair with U+FF01 to U+FF5E and U+3000; the half-width Katakana and a few symbols
// have their own pairs. Characters without a pair, and any other direction, give the character.
ZEL_API WCHAR ZelUniHalfFullChange(WCHAR c, int direction);

#endif  // ZEL_CODETABLES_H
