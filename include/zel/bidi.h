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

// ---------------------------------------------------------------------------------------------
// Arabic shaping

#endif  // ZEL_BIDI_H
