// The Jamo numberings and the decomposition of every Hangul form into them.
#include "codetables/code_tables.h"
#include "codetables/hangul.h"

namespace {

constexpr WORD kNoEntry = 0xFFFF;
constexpr int kSUniRows = 160;
constexpr int kUniRows = 96;
constexpr int kUniDefaults[3] = {kZelNoInitial, 0, 0};

constexpr UINT kSyllableFirst = 0xAC00;
constexpr UINT kSyllableLast = 0xD7A3;
constexpr UINT kCompatFirst = 0x3130;
constexpr UINT kCompatLast = 0x318F;

bool IsValidColumn(int column) { return column >= kZelJamoInitial && column <= kZelJamoFinal; }

// Uni indexes of a syllable, a conjoining Jamo or a compatibility Jamo; false for anything else.
bool ModernToUni(UINT u, int* initial, int* medial, int* final) {
    if (u >= kSyllableFirst && u <= kSyllableLast) {
        const UINT s = u - kSyllableFirst;
        *initial = static_cast<int>(s / 588);
        *medial = static_cast<int>((s % 588) / 28 + 1);
        *final = static_cast<int>(s % 28);
        return true;
    }
    if (u >= 0x1100 && u <= 0x11FF) {
        *initial = kZelNoInitial;
        *medial = 0;
        *final = 0;
        if (u <= 0x1159) {
            *initial = static_cast<int>(u - 0x1100);
        } else if (u >= 0x1161 && u <= 0x11A2) {
            *medial = static_cast<int>(u - 0x1160);
        } else if (u >= 0x11A8 && u <= 0x11F9) {
            *final = static_cast<int>(u - 0x11A7);
        }
        return true;
    }
    if (u >= kCompatFirst && u <= kCompatLast) {
        const UINT offset = u - kCompatFirst;
        *initial = kZelNoInitial;
        *medial = 0;
        *final = 0;
        if (CompatChoTbl[offset] != kZelNoInitial) {
            *initial = CompatChoTbl[offset];
        } else if (CompatJungTbl[offset] != 0) {
            *medial = CompatJungTbl[offset];
        } else if (CompatJongTbl[offset] != 0) {
            *final = CompatJongTbl[offset];
        }
        return true;
    }
    return false;
}

// SUni index of a private-use Jamo in its own column; false outside U+F784 to U+F8FF.
bool PuaJamoColumn(UINT u, int* column, int* index) {
    if (u < kZelPuaInitialBase || u > kZelPuaJamoLast) return false;
    if (u < kZelPuaMedialBase) {
        *column = kZelJamoInitial;
        *index = static_cast<int>(u - kZelPuaInitialBase);
    } else if (u < kZelPuaFinalBase) {
        *column = kZelJamoMedial;
        *index = static_cast<int>(u - kZelPuaMedialBase);
    } else {
        *column = kZelJamoFinal;
        *index = static_cast<int>(u - kZelPuaFinalBase);
    }
    return true;
}

}  // namespace

int SUni2Uni_JamoIndex(int index, int column) {
    if (!IsValidColumn(column)) return 0;
    if (index < 0 || index >= kSUniRows || SUni2UniTbl[index][column] == kNoEntry) return kUniDefaults[column];
    return SUni2UniTbl[index][column];
}

int Uni2SUni_JamoIndex(int index, int column) {
    if (!IsValidColumn(column) || index < 0 || index >= kUniRows) return 0;
    const WORD value = Uni2SUniTbl[index][column];
    return value == kNoEntry ? 0 : value;
}

bool ZelIsPuaOldSyllable(UINT u) { return u >= 0xE0BC && u <= 0xF66E && (u < 0xF000 || u > 0xF0FF); }

void PuaJamoFields(UINT u, int* initial, int* medial, int* final) {
    *initial = 0;
    *medial = 0;
    *final = 0;
    constexpr UINT kRecords = 6400;
    if (u < 0xE000 || u - 0xE000 >= kRecords) return;
    if (ZelMainTableState() != kZelTableReady || Uni2KCharPuaTbl == nullptr) return;
    const WORD* record = Uni2KCharPuaTbl + (u - 0xE000) * 4;
    *initial = record[1];
    *medial = record[2];
    *final = record[3];
}

void DecomposeHangul(UINT u, int* initial, int* medial, int* final) {
    if (ModernToUni(u, initial, medial, final)) return;
    int sUni[3] = {0, 0, 0};
    int column = 0;
    int index = 0;
    if (ZelIsPuaOldSyllable(u)) {
        PuaJamoFields(u, &sUni[0], &sUni[1], &sUni[2]);
    } else if (PuaJamoColumn(u, &column, &index)) {
        sUni[column] = index;
    } else {
        return;
    }
    *initial = SUni2Uni_JamoIndex(sUni[0], kZelJamoInitial);
    *medial = SUni2Uni_JamoIndex(sUni[1], kZelJamoMedial);
    *final = SUni2Uni_JamoIndex(sUni[2], kZelJamoFinal);
}

void DecomposeToSUni(UINT u, int* initial, int* medial, int* final) {
    int uni[3];
    if (ModernToUni(u, &uni[0], &uni[1], &uni[2])) {
        *initial = Uni2SUni_JamoIndex(uni[0], kZelJamoInitial);
        *medial = Uni2SUni_JamoIndex(uni[1], kZelJamoMedial);
        *final = Uni2SUni_JamoIndex(uni[2], kZelJamoFinal);
        return;
    }
    if (ZelIsPuaOldSyllable(u)) {
        PuaJamoFields(u, initial, medial, final);
        return;
    }
    int column = 0;
    int index = 0;
    if (!PuaJamoColumn(u, &column, &index)) return;
    int* const targets[3] = {initial, medial, final};
    *targets[column] = index;
}
