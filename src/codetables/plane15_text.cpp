// Text between the library's form and the outside form with surrogate pairs. Both directions
// clear the whole output first, so whatever they write is terminated by the cleared units.
#include <zel/codetables.h>
#include <zel/strings.h>

#include <cstring>

#include "codetables/code_tables.h"
#include "codetables/plane15_map.h"

namespace {

bool IsHighSurrogate(WCHAR u) { return u >= 0xD800 && u <= 0xDBFF; }
bool IsLowSurrogate(WCHAR u) { return u >= 0xDC00 && u <= 0xDFFF; }

// Loads the Yi table on first use; what it comes to decides only whether text passes through.
void EnsureYiTable() {
    if (ZelYiPuaTableState() == kZelTableNotTried) LoadUniYi2UniSurrogatePuaTbl();
}

// What both text calls do first: without room nothing happens; otherwise the Yi table is loaded on
// first use and the whole output cleared. Gives the count of units to read, or -1 without room.
int StartText(const WCHAR* text, int length, WCHAR* buffer, int size) {
    if (size < 2 || !buffer) return -1;
    EnsureYiTable();
    std::memset(buffer, 0, static_cast<size_t>(size) * sizeof(WCHAR));
    return ZelTextUnits(text, length);
}

}  // namespace

int ZelUnicodeToSurrogatePua(DWORD, const WCHAR* text, int length, WCHAR* buffer, int size) {
    const int count = StartText(text, length, buffer, size);
    if (count < 0) return 0;
    int written = 0;
    for (int i = 0; i < count && text[i] != 0 && written < size - 1; ++i) {
        // Room for size - 2 units: one place is always left for the terminator, and a pair needs
        // two. Without the table a character is written even where that room is 0, and a plain
        // character with room 0 finds none; neither can pass size - 1.
        written += UniYi2UniSurrogatePuaEx(text[i], buffer + written, size - 2 - written);
    }
    return written;
}

int ZelSurrogatePuaToUnicode(DWORD, const WCHAR* text, int length, WCHAR* buffer, int size) {
    const int count = StartText(text, length, buffer, size);
    if (count < 0) return 0;
    int written = 0;
    int i = 0;
    while (i < count && text[i] != 0 && written < size - 1) {
        const WCHAR unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < count && IsLowSurrogate(text[i + 1])) {
            written += SurrogatePairToUni((static_cast<DWORD>(unit) << 16) | text[i + 1],
                                          buffer + written, size - 1 - written);
            i += 2;
            continue;
        }
        if (!IsLowSurrogate(unit)) buffer[written++] = unit;  // a lone low half is dropped
        ++i;
    }
    return written;
}
