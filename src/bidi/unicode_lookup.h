// The property look-ups as inline reads of the generated tables, for the inner loops of the
// resolution and the shaper: two indexed loads each, no call. The exported look-ups are these.
#ifndef ZEL_BIDI_UNICODE_LOOKUP_H
#define ZEL_BIDI_UNICODE_LOOKUP_H

#include <zel/bidi.h>
#include <zel/wintypes.h>

#include "bidi/unicode_property_tables.h"

namespace zelbidi {

inline BYTE PropertyByteOf(WCHAR c) { return kPropertyPages[kPropertyIndex[c >> 8]][c & 0xFF]; }

inline WORD CategoryOf(WCHAR c) { return kCategoryPages[kCategoryIndex[c >> 8]][c & 0xFF]; }

// The classes that the resolution steps work with: the separators S and WS, and the value 19 that
// no character has, become ON; every other class stays.
inline constexpr BYTE kResolveClassMap[kClassBits + 1] = {
    ZelBidiON,  ZelBidiL,   ZelBidiR,   ZelBidiAN,  ZelBidiEN,  ZelBidiAL,  ZelBidiNSM, ZelBidiCS,
    ZelBidiES,  ZelBidiET,  ZelBidiBN,  ZelBidiON,  ZelBidiON,  ZelBidiB,   ZelBidiRLE, ZelBidiRLO,
    ZelBidiLRO, ZelBidiLRE, ZelBidiPDF, ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,
    ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,  ZelBidiON,
};

inline WORD StoredClassOf(WCHAR c) { return PropertyByteOf(c) & kClassBits; }
inline WORD ResolveClassOf(WCHAR c) { return kResolveClassMap[PropertyByteOf(c) & kClassBits]; }
inline WORD JoiningOf(WCHAR c) { return (PropertyByteOf(c) >> kJoiningShift) & kJoiningBits; }
inline bool IsMirrored(WCHAR c) { return (PropertyByteOf(c) >> kMirroredShift) != 0; }

// The partner of a mirrored character; the others, and mirrored ones without a partner, stay.
inline WCHAR MirrorOf(WCHAR c) {
    if (!IsMirrored(c)) return c;
    for (int i = 0; i < kMirrorListSize; ++i) {
        if (kMirrorList[i] == c) return kMirrorList[i ^ 1];
    }
    return c;
}

}  // namespace zelbidi

#endif  // ZEL_BIDI_UNICODE_LOOKUP_H
