// Unicode character properties: each look-up reads the index by the high byte, then the page entry
// by the low byte.
#include <zel/bidi.h>

#include "bidi/unicode_property_tables.h"

namespace {

using namespace zelbidi;

BYTE PropertyByte(WCHAR c) { return kPropertyPages[kPropertyIndex[c >> 8]][c & 0xFF]; }

// The classes that the resolution steps work with: the separators S and WS, and the value 19 that
// no character has, become ON; every other class stays.
constexpr WORD kClassMap[kClassBits + 1] = {
    ZelBidiON,  ZelBidiL,   ZelBidiR,   ZelBidiAN,  ZelBidiEN,  ZelBidiAL,  ZelBidiNSM, ZelBidiCS,
    ZelBidiES,  ZelBidiET,  ZelBidiBN,  ZelBidiON,  ZelBidiON,  ZelBidiB,   ZelBidiRLE, ZelBidiRLO,
    ZelBidiLRO, ZelBidiLRE, ZelBidiPDF, ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,
    ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,
};

}  // namespace

ZEL_API WORD GetUnicodeCategory(WCHAR c) {
    return kCategoryPages[kCategoryIndex[c >> 8]][c & 0xFF];
}

ZEL_API WORD ZelClassFromChWS(WCHAR c) { return PropertyByte(c) & kClassBits; }

ZEL_API WORD ZelClassFromChN(WCHAR c) { return kClassMap[PropertyByte(c) & kClassBits]; }

ZEL_API WORD ZelBidiJoining(WCHAR c) { return (PropertyByte(c) >> kJoiningShift) & kJoiningBits; }

ZEL_API WORD ZelDecompositionTag(WCHAR c) {
    return kDecompositionPool[kDecompositionPages[kDecompositionIndex[c >> 8]][c & 0xFF]];
}

ZEL_API int BidiMirrored(WCHAR c) { return PropertyByte(c) >> kMirroredShift; }

ZEL_API WCHAR GetBidiMirroredChar(WCHAR c) {
    if (!BidiMirrored(c)) return c;
    for (int i = 0; i < kMirrorListSize; ++i) {
        if (kMirrorList[i] == c) return kMirrorList[i ^ 1];
    }
    return c;
}
