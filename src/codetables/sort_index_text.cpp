// Sort keys of a text and the text of keys. Both load the main tables on first use, as the
// private-use syllables need their records, and do nothing without them.
#include <zel/codetables.h>

#include "codetables/code_tables.h"
#include "codetables/hangul.h"
#include "codetables/sort_index.h"

namespace {

bool MainTablesReady() {
    if (ZelMainTableState() == kZelTableNotTried) LoadUnicodeTbl();
    return ZelMainTableState() == kZelTableReady;
}

constexpr UINT kSyllableFirst = 0xAC00;
constexpr UINT kSyllableCount = 11172;
constexpr UINT kFinals = 28;
constexpr UINT kMedials = 21;

// The keys of the modern syllables, which depend on no loaded table, in two parts: the initial
// and medial fields by syllable / 28, the final field by syllable % 28. A key is the two ORed,
// so a syllable costs two reads of tables that stay in the first-level cache.
struct SyllableKeys {
    DWORD initialMedial[kSyllableCount / kFinals];
    DWORD final[kFinals];

    SyllableKeys() {
        for (UINT i = 0; i < kSyllableCount / kFinals; ++i) {
            initialMedial[i] = ZelMakeSortIndex(Uni2SUni_JamoIndex(int(i / kMedials), kZelJamoInitial),
                                                Uni2SUni_JamoIndex(int(i % kMedials + 1), kZelJamoMedial), 0);
        }
        for (UINT i = 0; i < kFinals; ++i) final[i] = DWORD(Uni2SUni_JamoIndex(int(i), kZelJamoFinal) & 0xFF);
    }

    DWORD Of(UINT syllable) const {
        const UINT pair = syllable / kFinals;
        return initialMedial[pair] | final[syllable - pair * kFinals];
    }
};

const SyllableKeys& TheSyllableKeys() {
    static const SyllableKeys keys;
    return keys;
}

}  // namespace

int ZelUnicodeToSortIndex(DWORD flags, const WCHAR* text, int, DWORD* buffer, int size) {
    if (!MainTablesReady() || size < 2 || !text || !buffer) return 0;
    const SyllableKeys& syllables = TheSyllableKeys();
    const int limit = size - 1;
    int written = 0;
    for (; written < limit; ++written) {
        const UINT u = text[written];
        // Modern syllables, the most of any Korean text, take the tables; below U+1100 nothing has
        // a key; the rest, old Hangul and Jamo among them, take the one-character call.
        if (u - kSyllableFirst < kSyllableCount) {
            buffer[written] = syllables.Of(u - kSyllableFirst);
        } else if (u < 0x1100) {
            if (u == 0) break;
            buffer[written] = kZelSortNoKey;
        } else {
            buffer[written] = static_cast<DWORD>(ZelUnicodeToSortIndexBase(flags, u));
        }
    }
    return written;
}

int ZelUnicodeToSortIndexReference(DWORD flags, const WCHAR* text, DWORD* buffer, int size) {
    if (!MainTablesReady() || size < 2 || !text || !buffer) return 0;
    int written = 0;
    for (; text[written] != 0 && written < size - 1; ++written) {
        buffer[written] = static_cast<DWORD>(ZelUnicodeToSortIndexBase(flags, text[written]));
    }
    return written;
}

int ZelSortIndexToUnicode(DWORD flags, const DWORD* indexes, int, WCHAR* buffer, int size) {
    if (!MainTablesReady() || size < 2 || !indexes || !buffer) return 0;
    int written = 0;
    for (; indexes[written] != 0 && written < size - 1; ++written) {
        buffer[written] = ZelSortIndexToUnicodeBase(flags, indexes[written]);
    }
    return written;
}
