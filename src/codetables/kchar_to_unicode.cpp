// One KChar to Unicode, by the class of its code: general, auxiliary, Hanja, Johab Hangul.
#include "codetables/code_tables.h"
#include "codetables/hangul.h"
#include "codetables/kchar_internal.h"

namespace {

WCHAR KCharToGeneral(KChar h, DWORD flags) {
    if (!(flags & KConvSymbol)) return kZelNoUnicode;
    if (KChar2UniGenTbl && KChar2UniGenTbl[h] != kZelNoUnicode) return KChar2UniGenTbl[h];
    return ZelExtraUnicodeOf(h);
}

WCHAR KCharToHanja(KChar h, DWORD flags) {
    if (!(flags & KConvHanja)) return kZelNoUnicode;
    WCHAR u = KChar2UniCjkTbl ? KChar2UniCjkTbl[h - kZelKCharHanjaFirst] : kZelNoUnicode;
    if (u == kZelNoUnicode) u = ZelExtraUnicodeOf(h);
    if (u == kZelNoUnicode) return u;
    return (flags & kZelKConvLanguages) ? ZelVariantToUnicode(u, flags) : u;
}

WCHAR KCharToHangul(KChar h, DWORD flags) {
    const int i = (h >> 10) & 0x1F;
    const int m = (h >> 5) & 0x1F;
    const int f = h & 0x1F;
    const int initial = JohabFieldTbl[i][0];
    const int medial = JohabFieldTbl[m][1];
    const int final = JohabFieldTbl[f][2];

    if (medial == kZelJohabJamoMark) {
        // A medial field of 0 names a single Jamo by its other two fields; the other marked
        // medials are composed syllables of the private-use area.
        const int n = m * 1024 + i * 32 + f;
        if (n < kZelJohabJamoCount) return JohabJamoTbl[n] ? JohabJamoTbl[n] : kZelNoUnicode;
        return ZelPuaByKChar(h);
    }
    if (flags & KConvHangul) {
        const WCHAR r = ComposeHangul(initial, medial, final, nullptr);
        if (r != kZelNoUnicode) return r;
    }
    if (flags & KConvOldHangul) {
        const WCHAR r = ZelPuaByKChar(h);
        if (r != kZelNoUnicode) return r;
        return IndexesToMultiCode(initial, medial, final);
    }
    return kZelNoUnicode;
}

}  // namespace

WCHAR ZelKCharToUnicodeBase(KChar h, DWORD flags) {
    if (h < kZelKCharAuxFirst) return KCharToGeneral(h, flags);
    if (h < kZelKCharHanjaFirst) return ZelAuxUnicodeOf(h);
    if (h < kZelKCharHangulFirst) return KCharToHanja(h, flags);
    return KCharToHangul(h, flags);
}
