// Composition of Jamo into syllables, old Hangul through the "pua" records, and the multi-code
// buffer that carries a sequence without a single code point.
#include "codetables/code_tables.h"
#include "codetables/hangul.h"

namespace {

// Per thread, plain data only: the buffer a thread fills is the one it reads right after.
thread_local WCHAR t_multiCode[kZelMultiCodeUnits];
thread_local int t_multiMode;

constexpr WCHAR kReplacement = 0xFFFD;
constexpr WCHAR kConjoiningInitial = 0x1100;
constexpr WCHAR kConjoiningMedial = 0x1160;
constexpr WCHAR kConjoiningFinal = 0x11A7;

// The "pua" records that hold composed old Hangul, split at the key where the two runs meet.
constexpr DWORD kEmptyKey = 0x01000000;
constexpr DWORD kSecondRunKey = 0x163106E;
constexpr int kFirstRunLow = 188;
constexpr int kFirstRunHigh = 4095;
constexpr int kSecondRunLow = 4352;
constexpr int kSecondRunHigh = 5742;

bool InRange(int value, int low, int high) { return value >= low && value <= high; }

// A single modern or old Jamo comes out in its compatibility form where it has one.
WCHAR ToCompatForm(WCHAR u) {
    if (u < 0x1100 || u > 0x11FF) return u;
    const WORD entry = JamoToCompatTbl[u - 0x1100];
    return entry != 0 ? static_cast<WCHAR>(0x3130 + entry) : u;
}

WCHAR StoreMultiCode(int sInitial, int sMedial, int sFinal) {
    t_multiCode[0] = static_cast<WCHAR>(kZelPuaInitialBase + sInitial);
    t_multiCode[1] = static_cast<WCHAR>(kZelPuaMedialBase + sMedial);
    t_multiCode[2] = static_cast<WCHAR>(kZelPuaFinalBase + sFinal);
    t_multiCode[3] = 0;
    return kZelMultiCodeResult;
}

DWORD PuaKey(int initial, int medial, int final) {
    return kEmptyKey + ((static_cast<DWORD>(initial) & 0xFF) << 16) + ((static_cast<DWORD>(medial) & 0xFF) << 8) +
           (static_cast<DWORD>(final) & 0xFF);
}

}  // namespace

WCHAR* GetMultiCode() { return t_multiCode; }

int ZelMultiMode() { return t_multiMode; }
void ZelSetMultiMode(int mode) { t_multiMode = mode != 0 ? 1 : 0; }

WCHAR ComposeHangul(int initial, int medial, int final, int* splitFlag) {
    int ignored = 0;
    int* split = splitFlag != nullptr ? splitFlag : &ignored;
    *split = 0;
    const bool modernInitial = InRange(initial, 0, 0x12);
    const bool modernMedial = InRange(medial, 1, 0x15);
    const bool modernFinal = InRange(final, 1, 0x1B);
    if (modernInitial && modernMedial && InRange(final, 0, 0x1B))
        return static_cast<WCHAR>(0xAC00 + (initial * 21 + medial - 1) * 28 + final);
    if (modernInitial && medial == 0 && final == 0)
        return ToCompatForm(static_cast<WCHAR>(kConjoiningInitial + initial));
    if (initial == kZelNoInitial && modernMedial && final == 0)
        return ToCompatForm(static_cast<WCHAR>(kConjoiningMedial + medial));
    if (initial == kZelNoInitial && medial == 0 && modernFinal)
        return ToCompatForm(static_cast<WCHAR>(kConjoiningFinal + final));
    if (t_multiMode == 0) return kReplacement;
    // Multi mode: the last modern Jamo of the sequence stands alone, in its conjoining form.
    WCHAR result = kReplacement;
    if (modernInitial) {
        result = static_cast<WCHAR>(kConjoiningInitial + initial);
        *split = 1;
    }
    if (modernMedial) {
        result = static_cast<WCHAR>(kConjoiningMedial + medial);
        *split = 1;
    }
    if (modernFinal) {
        result = static_cast<WCHAR>(kConjoiningFinal + final);
        *split = 1;
    }
    return result;
}

WCHAR SortedPuaSearch(int initial, int medial, int final) {
    const DWORD key = PuaKey(initial, medial, final);
    if (key == kEmptyKey) return 0;
    int low = key < kSecondRunKey ? kFirstRunLow : kSecondRunLow;
    int high = key < kSecondRunKey ? kFirstRunHigh : kSecondRunHigh;
    if (ZelMainTableState() != kZelTableReady || Uni2KCharPuaTbl == nullptr) return kReplacement;
    while (low <= high) {
        const int mid = low + (high - low + 1) / 2;
        const WORD* record = Uni2KCharPuaTbl + mid * 4;
        const DWORD recordKey = PuaKey(record[1], record[2], record[3]);
        if (key == recordKey) return static_cast<WCHAR>(0xE000 + mid);
        if (key < recordKey) {
            high = high == mid ? mid - 1 : mid;
        } else {
            low = low == mid ? mid + 1 : mid;
        }
    }
    return kReplacement;
}

WCHAR ComposeOldHangul(int sInitial, int sMedial, int sFinal) {
    const int initial = SUni2Uni_JamoIndex(sInitial, kZelJamoInitial);
    const int medial = SUni2Uni_JamoIndex(sMedial, kZelJamoMedial);
    const int final = SUni2Uni_JamoIndex(sFinal, kZelJamoFinal);
    const bool initialInLimit = InRange(sInitial, 0, kZelSUniInitialLimit - 1);
    const bool medialInLimit = InRange(sMedial, 0, kZelSUniMedialLimit - 1);
    WCHAR result = kReplacement;
    if (InRange(initial, 0x13, 0x59) && medial == 0 && final == 0) {
        result = static_cast<WCHAR>(kConjoiningInitial + initial);
    } else if (InRange(medial, 0x16, 0x42) && initial == kZelNoInitial && final == 0) {
        result = static_cast<WCHAR>(kConjoiningMedial + medial);
    } else if (InRange(final, 0x1C, 0x52) && initial == kZelNoInitial && medial == 0) {
        result = static_cast<WCHAR>(kConjoiningFinal + final);
    } else if (sFinal == 0 && ((sInitial != 0 && initialInLimit && sMedial == 0) ||
                               (sMedial != 0 && medialInLimit && sInitial == 0))) {
        return StoreMultiCode(sInitial, sMedial, sFinal);  // a lone Jamo stays a sequence
    } else if (InRange(sFinal, 1, kZelSUniFinalLimit - 1) && sInitial == 0 && sMedial == 0) {
        return StoreMultiCode(sInitial, sMedial, sFinal);
    } else if (initialInLimit && medialInLimit && InRange(sFinal, 0, kZelSUniFinalLimit - 1)) {
        result = SortedPuaSearch(sInitial, sMedial, sFinal);
    }
    if (result == kReplacement) return StoreMultiCode(sInitial, sMedial, sFinal);
    return ToCompatForm(result);
}

WCHAR IndexesToMultiCode(int initial, int medial, int final) {
    return StoreMultiCode(Uni2SUni_JamoIndex(initial, kZelJamoInitial), Uni2SUni_JamoIndex(medial, kZelJamoMedial),
                          Uni2SUni_JamoIndex(final, kZelJamoFinal));
}

WCHAR MultiCodeToUnicode(int* splitFlag) {
    const WCHAR bases[3] = {kConjoiningInitial, kConjoiningMedial, kConjoiningFinal};
    const WCHAR fillers[3] = {0x115F, 0x1160, 0x11A7};
    WCHAR conjoining[3] = {fillers[0], fillers[1], fillers[2]};
    int sUni[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        const WCHAR unit = t_multiCode[i];
        if (unit < kZelPuaInitialBase || unit > kZelPuaJamoLast) return kReplacement;
        const int column = unit < kZelPuaMedialBase ? kZelJamoInitial
                           : unit < kZelPuaFinalBase ? kZelJamoMedial
                                                     : kZelJamoFinal;
        const WCHAR columnBase = column == kZelJamoInitial  ? kZelPuaInitialBase
                                 : column == kZelJamoMedial ? kZelPuaMedialBase
                                                            : kZelPuaFinalBase;
        sUni[column] = unit - columnBase;
        conjoining[column] = static_cast<WCHAR>(bases[column] + SUni2Uni_JamoIndex(sUni[column], column));
    }
    bool modern = true;
    for (int column = 0; column < 3; ++column) {
        if (sUni[column] != 0 && conjoining[column] == fillers[column]) modern = false;  // no conjoining Jamo
    }
    if (modern) {
        const WCHAR r = ComposeHangul(conjoining[0] - bases[0], conjoining[1] - bases[1], conjoining[2] - bases[2],
                                      splitFlag);
        if (r != kReplacement) return r;
    }
    return ComposeOldHangul(sUni[0], sUni[1], sUni[2]);
}
