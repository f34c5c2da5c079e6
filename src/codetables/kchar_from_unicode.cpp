// One Unicode to KChar. The range of the code point picks one lookup; whatever that lookup can't
// map is looked for among the auxiliary pairs at the end.
#include "codetables/code_tables.h"
#include "codetables/hangul.h"
#include "codetables/kchar_internal.h"

namespace {

constexpr int kPuaRecordUnits = 4;

bool In(WCHAR u, unsigned first, unsigned last) { return u >= first && u <= last; }

bool IsCompatibilityJamo(WCHAR u) { return In(u, 0x3130, 0x318F); }

KChar GeneralToKChar(WCHAR u, DWORD flags) {
    if (!(flags & KConvSymbol)) return kZelNoKChar;
    if (Uni2KCharGenTbl && Uni2KCharGenTbl[u] != kZelNoKChar) return Uni2KCharGenTbl[u];
    return ZelExtraKCharOf(u);
}

// Index of the "com" table: U+A000 to U+A6FF, U+A800 to U+A8FF, U+FB00 to U+FFFF.
int CommonIndex(WCHAR u) {
    if (u < 0xA700) return u - 0xA000;
    if (u < 0xA900) return u - 0xA100;
    return u - 0xF300;
}

KChar CommonToKChar(WCHAR u) {
    if (!Uni2KCharComTbl) return kZelNoKChar;
    const KChar h = Uni2KCharComTbl[CommonIndex(u)];
    return h != kZelNoKChar ? h : ZelExtraKCharOf(u);
}

// Index of the "cjk" table: U+3400 to U+9FFF, U+A700 to U+A7FF, U+F900 to U+FAFF.
int CjkIndex(WCHAR v) {
    if (v < 0xA000) return v - 0x3400;
    if (v < 0xA800) return v - 0x3B00;
    return v - 0x8C00;
}

bool IsHanjaRange(WCHAR v) { return In(v, 0x3400, 0x9FFF) || In(v, 0xA700, 0xA7FF) || In(v, 0xF900, 0xFAFF); }

KChar HanjaLookup(WCHAR v) {
    // A variant may lead outside the ranges of the table; only the pairs can answer for it then.
    if (Uni2KCharCjkTbl && IsHanjaRange(v)) {
        const KChar h = Uni2KCharCjkTbl[CjkIndex(v)];
        if (h != kZelNoKChar) return h;
    }
    return ZelExtraKCharOf(v);
}

KChar HanjaToKChar(WCHAR u, DWORD flags) {
    WCHAR v = u;
    for (int pass = 0; pass < 2; ++pass) {
        if (flags & KConvHanja) {
            const KChar h = HanjaLookup(v);
            if (h != kZelNoKChar) return h;
        }
        if (pass > 0 || !(flags & kZelKConvLanguages)) break;
        v = ZelVariantToHanja(v, flags);
    }
    return kZelNoKChar;
}

bool IsModernJamoOrSyllable(WCHAR u) {
    return In(u, 0xAC00, 0xD7A3) || In(u, 0x1100, 0x1112) || In(u, 0x1161, 0x1175) || In(u, 0x11A8, 0x11C2);
}

bool IsOldJamo(WCHAR u) {
    return In(u, 0x1113, 0x1159) || In(u, 0x1176, 0x11A2) || In(u, 0x11C3, 0x11F9) || IsCompatibilityJamo(u);
}

// The code of a single Jamo: initial field x 1024 + final field, medial field 0.
KChar JohabJamoCode(WCHAR u) {
    for (int n = 0; n < kZelJohabJamoCount; ++n)
        if (JohabJamoTbl[n] == u) return static_cast<KChar>(0x8000 + (n / 32) * 1024 + n % 32);
    return kZelNoKChar;
}

KChar HangulToKChar(WCHAR u, DWORD flags) {
    if (flags & KConvHangul) {
        if (IsCompatibilityJamo(u)) {
            const KChar h = GeneralToKChar(u, flags);
            if (h != kZelNoKChar) return h;
        } else if (IsModernJamoOrSyllable(u)) {
            int initial = kZelNoInitial, medial = 0, final = 0;
            DecomposeHangul(u, &initial, &medial, &final);
            return ZelJohabOfIndexes(initial, medial, final);
        }
    }
    if ((flags & KConvOldHangul) && IsOldJamo(u)) return JohabJamoCode(u);
    return kZelNoKChar;
}

// The SUni index that the multi-code buffer holds at a position, if the unit there lies in the
// range of that position's column.
int SUniAt(const WCHAR* units, int column) {
    static constexpr WCHAR kFirst[3] = {kZelPuaInitialBase, kZelPuaMedialBase, kZelPuaFinalBase};
    static constexpr WCHAR kLast[3] = {kZelPuaMedialBase - 1, kZelPuaFinalBase - 1, kZelPuaJamoLast};
    const WCHAR unit = units[column];
    return In(unit, kFirst[column], kLast[column]) ? unit - kFirst[column] : 0;
}

KChar MultiCodeToKChar(DWORD flags) {
    if (!(flags & KConvOldHangul)) return kZelNoKChar;
    const WCHAR r = MultiCodeToUnicode(nullptr);
    if (r == kZelNoUnicode) return kZelNoKChar;
    if (r != kZelMultiCodeResult) return HangulToKChar(r, flags);
    // No single Unicode form: the Johab code of the sequence's own Jamo.
    const WCHAR* units = GetMultiCode();
    return ZelJohabOfIndexes(SUni2Uni_JamoIndex(SUniAt(units, kZelJamoInitial), kZelJamoInitial),
                             SUni2Uni_JamoIndex(SUniAt(units, kZelJamoMedial), kZelJamoMedial),
                             SUni2Uni_JamoIndex(SUniAt(units, kZelJamoFinal), kZelJamoFinal));
}

KChar PrivateUseToKChar(WCHAR u, DWORD flags) {
    const KChar h = ZelAuxKCharOf(u);
    if (h != kZelNoKChar || !(flags & KConvOldHangul) || !Uni2KCharPuaTbl) return h;
    return Uni2KCharPuaTbl[(u - 0xE000) * kPuaRecordUnits];
}

KChar Lookup(WCHAR u, DWORD flags) {
    if (In(u, 0x1100, 0x11FF) || IsCompatibilityJamo(u) || In(u, 0xAC00, 0xD7A3)) return HangulToKChar(u, flags);
    if (IsHanjaRange(u)) return HanjaToKChar(u, flags);
    if (u < 0x4000) return GeneralToKChar(u, flags);
    if (In(u, 0xE000, 0xF8FF)) return PrivateUseToKChar(u, flags);
    if (u == kZelMultiCodeResult) return MultiCodeToKChar(flags);
    if (In(u, 0xA000, 0xA6FF) || In(u, 0xA800, 0xA8FF) || u >= 0xFB00) return CommonToKChar(u);
    return kZelNoKChar;
}

}  // namespace

KChar ZelJohabOfIndexes(int initial, int medial, int final) {
    const int i = initial >= 0 && initial < 96 ? IndexToJohabTbl[initial][0] : 1;
    const int m = medial >= 0 && medial < 96 ? IndexToJohabTbl[medial][1] : 2;
    const int f = final >= 0 && final < 96 ? IndexToJohabTbl[final][2] : 1;
    return static_cast<KChar>(0x8000 + i * 1024 + m * 32 + f);
}

KChar ZelUnicodeToKCharBase(WCHAR u, DWORD flags) {
    const KChar h = Lookup(u, flags);
    return h != kZelNoKChar ? h : ZelAuxKCharOf(u);
}
