// The searches by pair that back the direct tables: the auxiliary area, the extra pairs, the
// language variants and the "pua" records. All are linear and run only for what the direct
// tables don't hold.
#include "codetables/code_tables.h"
#include "codetables/kchar_internal.h"

namespace {

constexpr int kPuaRecords = 6400;
constexpr int kPuaRecordUnits = 4;

// The pair table of one language flag.
const ZelCodePair* VariantTable(DWORD flag, DWORD* count) {
    switch (flag) {
        case KConvChs: *count = ChsVariantCount; return ChsVariantTbl;
        case KConvJpn: *count = JpnVariantCount; return JpnVariantTbl;
        case KConvKor: *count = KorVariantCount; return KorVariantTbl;
        case KConvCht: *count = ChtVariantCount; return ChtVariantTbl;
        default: *count = 0; return nullptr;
    }
}

}  // namespace

KChar ZelAuxKCharOf(WCHAR u) {
    if (ZelAuxTableState() != kZelTableReady || !AuxPairTbl) return kZelNoKChar;
    for (DWORD i = 0; i + 1 < AuxPairCount; i += 2)
        if (AuxPairTbl[i] == u) return AuxPairTbl[i + 1];
    return kZelNoKChar;
}

WCHAR ZelAuxUnicodeOf(KChar h) {
    if (ZelAuxTableState() != kZelTableReady || !AuxPairTbl) return kZelNoUnicode;
    for (DWORD i = 0; i + 1 < AuxPairCount; i += 2)
        if (AuxPairTbl[i + 1] == h) return AuxPairTbl[i];
    return kZelNoUnicode;
}

KChar ZelExtraKCharOf(WCHAR u) {
    if (Uni2KCharExtraTbl)
        for (DWORD i = 0; i < Uni2KCharExtraCount; ++i)
            if (Uni2KCharExtraTbl[i].first == u) return Uni2KCharExtraTbl[i].second;
    return kZelNoKChar;
}

WCHAR ZelExtraUnicodeOf(KChar h) {
    if (KChar2UniExtraTbl)
        for (DWORD i = 0; i < KChar2UniExtraCount; ++i)
            if (KChar2UniExtraTbl[i].first == h) return KChar2UniExtraTbl[i].second;
    return kZelNoUnicode;
}

WCHAR ZelVariantToUnicode(WCHAR u, DWORD flags) {
    const DWORD languages = flags & kZelKConvLanguages;
    // Exactly one language: a power of two.
    if (languages == 0 || (languages & (languages - 1)) != 0) return u;
    DWORD count = 0;
    const ZelCodePair* pairs = VariantTable(languages, &count);
    if (!pairs) return u;
    for (DWORD i = 0; i < count; ++i)
        if (pairs[i].first == u) return pairs[i].second;
    return u;
}

WCHAR ZelVariantToHanja(WCHAR v, DWORD flags) {
    static constexpr DWORD kOrder[] = {KConvKor, KConvJpn, KConvChs, KConvCht};
    WCHAR result = v;
    for (DWORD flag : kOrder) {
        if (!(flags & flag)) continue;
        DWORD count = 0;
        const ZelCodePair* pairs = VariantTable(flag, &count);
        if (!pairs) continue;
        for (DWORD i = 0; i < count; ++i) {
            if (pairs[i].second == v) {
                result = pairs[i].first;
                break;
            }
        }
        if (result != v) break;  // the first language that changes the value decides
    }
    // A compatibility ideograph never stands for a unified one on the way to KChar.
    if (result != v && result >= 0xF900 && result <= 0xFAFF) return v;
    return result;
}

WCHAR ZelPuaByKChar(KChar h) {
    if (!Uni2KCharPuaTbl) return kZelNoUnicode;
    for (int i = 0; i < kPuaRecords; ++i)
        if (Uni2KCharPuaTbl[i * kPuaRecordUnits] == h) return static_cast<WCHAR>(0xE000 + i);
    return kZelNoUnicode;
}
