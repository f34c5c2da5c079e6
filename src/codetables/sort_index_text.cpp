// Sort keys of a text and the text of keys. Both load the main tables on first use, as the
// private-use syllables need their records, and do nothing without them.
#include <zel/codetables.h>

#include "codetables/code_tables.h"

namespace {

bool MainTablesReady() {
    if (ZelMainTableState() == kZelTableNotTried) LoadUnicodeTbl();
    return ZelMainTableState() == kZelTableReady;
}

}  // namespace

int ZelUnicodeToSortIndex(DWORD flags, const WCHAR* text, int, DWORD* buffer, int size) {
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
