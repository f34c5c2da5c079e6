// The table path of the code page front end: the six double-byte code pages read through their
// tables in memory, one table read a character.
#ifndef ZEL_CODETABLES_CODEPAGE_TABLE_PATH_H
#define ZEL_CODETABLES_CODEPAGE_TABLE_PATH_H

#include <zel/wintypes.h>

#include "codetables/code_tables.h"
#include "codetables/gb_four_byte_runs.h"

// Code page 0 is the system's ANSI code page, 1 its OEM code page; any other number stands for
// itself.
UINT ZelResolveCodePage(UINT codePage);

// Narrow text (length -1: up to its terminator) to wide text in buffer, at most size - 1 units and
// a terminator; gives the units written. A size below 1 or a missing buffer writes nothing.
int ZelTableToUnicode(UINT codePage, const ZelCodePageTables& tables, const char* text, int length,
                      WCHAR* buffer, int size);
// Wide text to narrow text in buffer, at most size - 1 bytes and a terminator; gives the bytes
// written. Unmapped code points give what the table holds for them, the byte 0x3F.
int ZelTableFromUnicode(UINT codePage, const ZelCodePageTables& tables, const WCHAR* text, int length,
                        char* buffer, int size);

// The same two conversions one character at a time, with every bound checked at every step: the
// plain form of the rules, which the walks above must match unit for unit and byte for byte.
int ZelTableToUnicodeOneByOne(UINT codePage, const ZelCodePageTables& tables, const char* text, int length,
                              WCHAR* buffer, int size);
int ZelTableFromUnicodeOneByOne(UINT codePage, const ZelCodePageTables& tables, const WCHAR* text, int length,
                                char* buffer, int size);

// ---------------------------------------------------------------------------------------------
// Four-byte sequences of code page 936

// The units of a four-byte sequence, taken as the bytes stand: one unit of the basic plane or
// the two halves of a pair. Gives 1 or 2.
int Zel936FourBytesToUnicode(BYTE b1, BYTE b2, BYTE b3, BYTE b4, WCHAR units[2]);
// The same through the walk of the runs, which fills the direct table that the above reads.
int Zel936FourBytesToUnicodeByRuns(BYTE b1, BYTE b2, BYTE b3, BYTE b4, WCHAR units[2]);

// V of the first four-byte code, 0x81 0x30 0x81 0x30: place 0.
constexpr long kZel936FirstFourByteValue = 1687218;
// V - this is the code point beyond the basic plane.
constexpr long kZel936SupplementaryBase = 1810682;

// The same for the four bytes at p, a place of the basic plane read from unitsOfPlaces
// (Zel936UnitsOfPlaces()) in place of the call. Writes only the units it gives.
inline int Zel936FourBytesAt(const BYTE* p, const WCHAR* unitsOfPlaces, WCHAR* units) {
    const long place = ((long{p[0]} * 10 + p[1]) * 126 + p[2]) * 10 + p[3] - kZel936FirstFourByteValue;
    if (place >= 0 && place < long(kZelFourByteBasicPlaneCodes)) {
        units[0] = unitsOfPlaces[place];
        return 1;
    }
    return Zel936FourBytesToUnicode(p[0], p[1], p[2], p[3], units);
}

// The four bytes of place L in the sequence of four-byte codes.
void Zel936FourBytesOfPlace(DWORD place, BYTE bytes[4]);

// The place of a code point of the basic plane that carries the four-byte marker, counted from 0
// for U+0080; -1 when it lies before the run that the walk stops at, so that it has no place.
long Zel936FourBytePlaceOf(WCHAR u);
// The four bytes of a code point of the basic plane other than a surrogate, in the order they are
// written (the first in the lowest byte), or 0 when it has no place. One table read.
DWORD Zel936FourByteCode(WCHAR u);
// The two direct tables behind the above: the four bytes of each code point of the basic plane
// (0 for none, and for the surrogates), and the unit of each place below
// kZelFourByteBasicPlaneCodes.
const DWORD* Zel936FourByteCodes();
const WCHAR* Zel936UnitsOfPlaces();
// The place of a code point beyond the basic plane: the code point + kZel936PairPlaceOffset.
constexpr long kZel936PairPlaceOffset = 123464;
long Zel936SupplementaryPlaceOf(DWORD codePoint);

#endif  // ZEL_CODETABLES_CODEPAGE_TABLE_PATH_H
