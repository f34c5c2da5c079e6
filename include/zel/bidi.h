// Bidirectional text: Unicode character properties, the bidi algorithm and Arabic shaping.
#ifndef ZEL_BIDI_H
#define ZEL_BIDI_H

#include <zel/wintypes.h>

// ---------------------------------------------------------------------------------------------
// Unicode character properties

// Bidirectional classes, as stored in the property byte.
enum ZelBidiClass : WORD {
    ZelBidiON = 0,
    ZelBidiL = 1,
    ZelBidiR = 2,
    ZelBidiAN = 3,
    ZelBidiEN = 4,
    ZelBidiAL = 5,
    ZelBidiNSM = 6,
    ZelBidiCS = 7,
    ZelBidiES = 8,
    ZelBidiET = 9,
    ZelBidiBN = 10,
    ZelBidiS = 11,
    ZelBidiWS = 12,
    ZelBidiB = 13,
    ZelBidiRLE = 14,
    ZelBidiRLO = 15,
    ZelBidiLRO = 16,
    ZelBidiLRE = 17,
    ZelBidiPDF = 18,
};

// The general category, 0 to 30.
ZEL_API WORD GetUnicodeCategory(WCHAR c);
// The class as the property byte stores it: WS, S and the explicit controls stay apart.
ZEL_API WORD ZelClassFromChWS(WCHAR c);
// The class after the class mapping: S and WS come back as ON.
ZEL_API WORD ZelClassFromChN(WCHAR c);
// The joining type, 0 to 3.
ZEL_API WORD ZelBidiJoining(WCHAR c);
// The decomposition tag, 0 to 17.
ZEL_API WORD ZelDecompositionTag(WCHAR c);
// 1 when the character is mirrored, else 0.
ZEL_API int BidiMirrored(WCHAR c);
// The partner of a mirrored character that has one, else the character itself.
ZEL_API WCHAR GetBidiMirroredChar(WCHAR c);

// ---------------------------------------------------------------------------------------------
// Bidi algorithm
//
// One line of text at a time: levels are resolved from classes with the base level the caller
// gives, and the line is put into display order in place. No explicit embedding is acted on and
// no paragraph is split: the explicit controls and paragraph separators resolve as BN. A class of
// 0xFFFF marks a position that the resolution passes over. A count above 0x7FFFFFFF, which only a
// negative length turned unsigned gives, counts as 0.

// Resolves the levels of count positions from their classes: on return classes holds L, R, AN or
// EN (BN where a BN stayed alone) and levels the resolved levels, at most baseLevel + 2. Only the
// lowest bit of baseLevel gives the direction; its lower 16 bits are the level stored. text isn't
// read. *raised, when raised isn't null, becomes 1 when some level went above the base level.
// Gives count; 0 with nothing done when classes or levels is null.
ZEL_API DWORD BidiAlgorithm(LONG baseLevel, const WCHAR* text, DWORD count, WORD* classes, WORD* levels,
                            DWORD* raised);
// Puts trailing white space, and white space in front of a segment or paragraph separator, back to
// the base level. classes are the classes as the property byte stores them (ZelClassFromChWS).
// Null arrays do nothing.
ZEL_API void BidiResolveWhitespace(WORD baseLevel, const WORD* classes, WORD* levels, DWORD count);
// Resolves and reorders count units of text in place into display order; direction 1 means a
// right-to-left line. classes and levels, when not null, receive the stored classes and the levels
// in logical order; mirror asks for mirrored characters at odd levels to be swapped for their
// partners. Gives count, or 0 with nothing changed when text is null or a long line found no
// memory for its scratch space.
ZEL_API DWORD BidiString(WCHAR* text, DWORD count, WORD* classes, WORD* levels, int mirror, int direction);

// ---------------------------------------------------------------------------------------------
// Arabic shaping
// Shapes count units of logical text for display: resolves the levels, reorders, and writes the
// presentation forms of U+0600 to U+06FF with the lam-alef ligatures, and U+200B in place of the
// formatting controls. destination holds count + 1 units; it is zero-terminated unless the text
// needs neither reordering nor shaping (no level raised, direction not 1), in which case the count
// units are copied exactly. classes and levels hold count units each or are null. A nonzero mirror
// mirrors characters at odd levels; direction 1 is right to left, and the destination then begins
// with the rightmost character of the display. Gives count, or 0 with an empty destination when a
// long line found no memory for its scratch space.
ZEL_API DWORD ShapeString(WCHAR* destination, const WCHAR* source, DWORD count, WORD* classes, WORD* levels,
                          int mirror, int direction);
// The presentation form number form (0 isolated, 1 final, 2 initial, 3 medial) of the letter
// U+06xx with the low byte low; c is not read. A letter without forms gives itself.
ZEL_API WCHAR GetBidiShape(WCHAR c, BYTE low, int form);
// The ligature of lam in form form with the alef whose low byte is alefLow (0x22 to 0x27); U+FFFD
// where there is none.
ZEL_API WCHAR GetArabicUnicodeLamAlefMapping(BYTE alefLow, int form);
// What the character at index of a shaped text is as a presentation form: 4 initial, 5 medial,
// 0x85 medial behind a final form, 6 final, 7 isolated, 0 anything else.
ZEL_API BYTE BidiExtendableChar(const WCHAR* text, DWORD count, DWORD index);

#endif  // ZEL_BIDI_H
