// Unicode character properties: each look-up reads the index by the high byte, then the page entry
// by the low byte.
#include <zel/bidi.h>

#include "bidi/unicode_lookup.h"

using namespace zelbidi;

ZEL_API WORD GetUnicodeCategory(WCHAR c) { return CategoryOf(c); }

ZEL_API WORD ZelClassFromChWS(WCHAR c) { return StoredClassOf(c); }

ZEL_API WORD ZelClassFromChN(WCHAR c) { return ResolveClassOf(c); }

ZEL_API WORD ZelBidiJoining(WCHAR c) { return JoiningOf(c); }

ZEL_API WORD ZelDecompositionTag(WCHAR c) {
    return kDecompositionPool[kDecompositionPages[kDecompositionIndex[c >> 8]][c & 0xFF]];
}

ZEL_API int BidiMirrored(WCHAR c) { return IsMirrored(c) ? 1 : 0; }

ZEL_API WCHAR GetBidiMirroredChar(WCHAR c) { return MirrorOf(c); }
