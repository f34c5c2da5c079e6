// Text conversions between KChar and UTF-16 over the single-unit conversions, with substitutes
// and the multi-code sequences of old Hangul.
#include "codetables/code_tables.h"
#include "codetables/hangul.h"
#include "codetables/kchar_internal.h"

namespace {

// Loads the main tables on first use; true when they are ready.
bool MainTablesReady() {
    if (ZelMainTableState() == kZelTableNotTried) LoadUnicodeTbl();
    return ZelMainTableState() == kZelTableReady;
}

// Writes a zero-terminated string at out[count], cut where the room for the terminator begins.
template <typename Unit>
int WriteCut(Unit* out, int count, int limit, const Unit* string) {
    while (count < limit && *string) out[count++] = *string++;
    return count;
}

template <typename Unit>
void Clear(Unit* buffer, int size) {
    for (int i = 0; i < size; ++i) buffer[i] = 0;
}

bool IsPuaJamo(WCHAR u) { return u >= kZelPuaInitialBase && u <= kZelPuaJamoLast; }

int PuaJamoColumn(WCHAR u) {
    if (u < kZelPuaMedialBase) return kZelJamoInitial;
    if (u < kZelPuaFinalBase) return kZelJamoMedial;
    return kZelJamoFinal;
}

// Copies the private-use Jamo that follow from text[0] in the order initial, medial, final, one of
// each at most, into the multi-code buffer. Gives how many were copied.
int CollectSequence(const WCHAR* text, int left) {
    WCHAR* multi = GetMultiCode();
    Clear(multi, kZelMultiCodeUnits);
    int taken = 0;
    int lastColumn = -1;
    while (taken < left && taken < 3 && IsPuaJamo(text[taken]) && PuaJamoColumn(text[taken]) > lastColumn) {
        lastColumn = PuaJamoColumn(text[taken]);
        multi[taken] = text[taken];
        ++taken;
    }
    return taken;
}

}  // namespace

int ZelKCharLength(const KChar* text) { return ZelTextUnits(text, -1); }

int ZelKCharToUnicode(DWORD flags, const KChar* text, int length, WCHAR* buffer, int size, const WCHAR* substitute) {
    if (!buffer || size < 1) return 0;
    if (!MainTablesReady()) return ZelKCharFallbackToUnicode(text, length, buffer, size, false);
    Clear(buffer, size);
    if (!text) return 0;
    const int count = ZelTextUnits(text, length);
    const int limit = size - 1;
    int written = 0;
    for (int i = 0; i < count && written < limit && text[i]; ++i) {
        const WCHAR r = ZelKCharToUnicodeBase(text[i], flags);
        if (r == kZelMultiCodeResult) {
            const WCHAR* multi = GetMultiCode();
            int units = 0;
            while (units < kZelMultiCodeUnits && multi[units]) ++units;
            // A sequence is written whole or not at all; what follows may still fit.
            if (units <= limit - written)
                for (int k = 0; k < units; ++k) buffer[written++] = multi[k];
        } else if (r == kZelNoUnicode && substitute && text[i] != kZelNoKChar) {
            written = WriteCut(buffer, written, limit, substitute);
        } else {
            buffer[written++] = r;
        }
    }
    buffer[written] = 0;
    return written;
}

int ZelUnicodeToKChar(DWORD flags, const WCHAR* text, int length, KChar* buffer, int size, const KChar* substitute) {
    if (!buffer || size < 1) return 0;
    if (!MainTablesReady()) return ZelUnicodeFallbackToKChar(text, length, buffer, size, false);
    Clear(buffer, size);
    if (!text) return 0;
    const int count = ZelTextUnits(text, length);
    const int limit = size - 1;
    int written = 0;
    for (int i = 0; i < count && written < limit && text[i];) {
        const WCHAR u = text[i];
        KChar r = kZelNoKChar;
        int used = 1;
        if (IsPuaJamo(u)) {
            const int taken = CollectSequence(text + i, count - i);
            r = ZelUnicodeToKCharBase(kZelMultiCodeResult, flags);
            if (r != kZelNoKChar)
                used = taken;
            else
                r = ZelUnicodeToKCharBase(u, flags);
        } else {
            r = ZelUnicodeToKCharBase(u, flags);
        }
        if (r == kZelNoKChar && substitute && u != kZelNoUnicode)
            written = WriteCut(buffer, written, limit, substitute);
        else
            buffer[written++] = r;
        i += used;
    }
    buffer[written] = 0;
    return written;
}

WCHAR ZelMultiUnicodeToUniCode(int mode, int* split) {
    if (!MainTablesReady()) return kZelNoUnicode;
    ZelSetMultiMode(mode != 0 ? 1 : 0);
    int ignored = 0;
    return MultiCodeToUnicode(split ? split : &ignored);
}
