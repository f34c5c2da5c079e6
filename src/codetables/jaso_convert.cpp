// Conversions of a syllable or Jamo into its three KS (compatibility) or private-use Jamo, and of
// three KS Jamo back into one character.
#include "codetables/hangul.h"

namespace {

constexpr WCHAR kCompatBase = 0x3130;
constexpr int kCompatCount = 96;

// Offset of a compatibility Jamo into the Compat tables; 96 and more read entry 0.
int CompatOffset(WCHAR unit) {
    const int offset = static_cast<int>(unit) - kCompatBase;
    return offset >= 0 && offset < kCompatCount ? offset : 0;
}

}  // namespace

int UniHangul2UniKSJaso(UINT u, WCHAR* buffer, int size) {
    if (buffer == nullptr || size < 1) return 0;
    int values[3] = {0, 0, 0};
    DecomposeHangul(u, &values[0], &values[1], &values[2]);
    // Shift medial and final into the conjoining block, so that all three index JamoToCompatTbl.
    values[1] += 0x60;
    values[2] += 0xA7;
    int written = 0;
    for (int i = 0; i < 3 && written < size - 1; ++i) {
        if (values[i] < 0 || values[i] >= 256 || JamoToCompatTbl[values[i]] == 0) break;
        buffer[written++] = static_cast<WCHAR>(kCompatBase + JamoToCompatTbl[values[i]]);
    }
    buffer[written] = 0;
    return written == 3 ? 1 : 0;
}

int UniHangul2UniPUAJaso(UINT u, WCHAR* buffer, int size) {
    if (buffer == nullptr || size < 1) return 0;
    int values[3] = {0, 0, 0};
    DecomposeToSUni(u, &values[0], &values[1], &values[2]);
    const WCHAR bases[3] = {kZelPuaInitialBase, kZelPuaMedialBase, kZelPuaFinalBase};
    int written = 0;
    for (int i = 0; i < 3 && written < size - 1; ++i) buffer[written++] = static_cast<WCHAR>(bases[i] + values[i]);
    buffer[written] = 0;
    return written == 3 ? 1 : 0;
}

WCHAR UniKSJaso2UniHangul(const WCHAR* units) {
    if (units == nullptr) return 0xFFFD;
    int initial = kZelNoInitial;
    int medial = 0;
    int final = 0;
    if (units[0] != 0 && CompatChoTbl[CompatOffset(units[0])] != kZelNoInitial)
        initial = CompatChoTbl[CompatOffset(units[0])];
    if (units[1] != 0 && CompatJungTbl[CompatOffset(units[1])] != 0) medial = CompatJungTbl[CompatOffset(units[1])];
    if (units[2] != 0 && CompatJongTbl[CompatOffset(units[2])] != 0) final = CompatJongTbl[CompatOffset(units[2])];
    IndexesToMultiCode(initial, medial, final);
    int split = 0;
    return MultiCodeToUnicode(&split);
}
