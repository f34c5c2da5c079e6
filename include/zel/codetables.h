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
// terminator; a size counts the whole output buffer, terminator included. The result is the
// number of units written without the terminator, except that a conversion by the system with a
// length of -1 counts the terminator too. A size below 2 writes only a terminator and gives 0.
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
