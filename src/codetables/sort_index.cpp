// Sort keys of Hangul: initial, medial and final by their SUni index, so that modern and old
// Hangul sort by comparing numbers, and back from a key to the character.
#include <zel/codetables.h>

#include "codetables/code_tables.h"
#include "codetables/hangul.h"
#include "codetables/sort_index.h"

namespace {

bool InRange(DWORD u, DWORD first, DWORD last) { return u >= first && u <= last; }

bool IsHangulForm(DWORD u) {
    return InRange(u, 0x1100, 0x11FF) || InRange(u, 0x3130, 0x318F) || InRange(u, 0xAC00, 0xD7A3);
}

// Ideographs and the other blocks whose codes the Hangul rules below would misread.
bool IsIdeographBlock(DWORD u) {
    return InRange(u, 0x3400, 0x9FFF) || InRange(u, 0xA700, 0xA7FF) || InRange(u, 0xF900, 0xFAFF);
}

DWORD PrivateUseKey(DWORD u) {
    if (InRange(u, kZelPuaInitialBase, kZelPuaMedialBase - 1)) return ZelMakeSortIndex(u - kZelPuaInitialBase, 0, 0);
    if (InRange(u, kZelPuaMedialBase, kZelPuaFinalBase - 1)) return ZelMakeSortIndex(0, u - kZelPuaMedialBase, 0);
    if (InRange(u, kZelPuaFinalBase, kZelPuaJamoLast)) return ZelMakeSortIndex(0, 0, u - kZelPuaFinalBase);
    if (ZelIsPuaOldSyllable(u)) {
        int initial = 0, medial = 0, final = 0;
        PuaJamoFields(u, &initial, &medial, &final);
        return ZelMakeSortIndex(initial, medial, final);
    }
    return kZelSortPuaNoJamo;
}

}  // namespace

int ZelUnicodeToSortIndexBase(DWORD, DWORD code) {
    const DWORD u = code & 0xFFFF;
    DWORD key = kZelSortNoKey;
    if (IsHangulForm(u)) {
        int initial = kZelNoInitial, medial = 0, final = 0;
        DecomposeHangul(u, &initial, &medial, &final);
        key = ZelMakeSortIndex(Uni2SUni_JamoIndex(initial, kZelJamoInitial), Uni2SUni_JamoIndex(medial, kZelJamoMedial),
                               Uni2SUni_JamoIndex(final, kZelJamoFinal));
    } else if (u < 0x4000 || IsIdeographBlock(u)) {
        key = kZelSortNoKey;
    } else if (InRange(u, 0xE000, 0xF8FF)) {
        key = PrivateUseKey(u);
    }
    return static_cast<int>(key);
}

WCHAR ZelSortIndexToUnicodeBase(DWORD, DWORD index) {
    if ((index >> 24) != 1) return kZelNoUnicode;
    // The buffer takes the three private-use Jamo. A field too large for its range lands in the
    // next column's range or beyond the block; the composition reads the units as they stand.
    WCHAR* multi = GetMultiCode();
    multi[0] = static_cast<WCHAR>(kZelPuaInitialBase + ((index >> 16) & 0xFF));
    multi[1] = static_cast<WCHAR>(kZelPuaMedialBase + ((index >> 8) & 0xFF));
    multi[2] = static_cast<WCHAR>(kZelPuaFinalBase + (index & 0xFF));
    multi[3] = 0;
    int split = 0;
    return MultiCodeToUnicode(&split);
}
